#include "mensor/ValueWithUnit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "mensor/require.h"

namespace mensor {

CValueWithUnit::CValueWithUnit(double value, CUnitPtr unit)
    : m_Value(value), m_Unit(std::move(unit)) {}

double CValueWithUnit::value() const { return m_Value; }
CUnitPtr CValueWithUnit::unit() const { return m_Unit; }
void CValueWithUnit::setValue(double value) { m_Value = value; }
void CValueWithUnit::setUnit(const CUnitPtr& unit) { m_Unit = unit; }

void CValueWithUnit::changeUnit(const CUnitPtr& unit) {
    m_Value = valueAs(unit);
    m_Unit = unit;
}

double CValueWithUnit::valueAs(const CUnitPtr& unit) const {
    return Convert(m_Value, m_Unit).to(unit);
}

CValueWithUnit CValueWithUnit::convertTo(const CUnitPtr& unit) const {
    return CValueWithUnit(valueAs(unit), unit);
}

CValueWithUnit& CValueWithUnit::operator+=(const CValueWithUnit& other) {
    m_Value += other.valueAs(m_Unit);
    return *this;
}

CValueWithUnit& CValueWithUnit::operator-=(const CValueWithUnit& other) {
    m_Value -= other.valueAs(m_Unit);
    return *this;
}

CValueWithUnit CValueWithUnit::operator+(const CValueWithUnit& other) const {
    CValueWithUnit sum = *this;
    sum += other;
    return sum;
}

CValueWithUnit CValueWithUnit::operator-(const CValueWithUnit& other) const {
    CValueWithUnit difference = *this;
    difference -= other;
    return difference;
}

string_t CValueWithUnit::toString() const {
    requireUnit(m_Unit, "CValueWithUnit::toString");
    // The field has a fixed width: readers skip it by its width or stop at the first zero byte.
    std::array<char, 64> field{};
    std::snprintf(field.data(), field.size(), "%f", m_Value);
    std::string text(field.data(), field.size() - 1);
    text += ' ';
    text += m_Unit->toStdString();
    return string_t(text);
}

CValueWithUnit CValueWithUnit::fromString(const std::string& text) {
    const std::size_t blank = text.find(' ');
    if (blank == std::string::npos) {
        throw std::invalid_argument("No blank between number and unit in \"" + text + "\"");
    }
    const std::size_t unitBegin = blank + 1;
    const std::size_t unitEnd = text.find(' ', unitBegin);
    CUnitPtr unit = CUnit::fromString(string_t(text.substr(unitBegin, unitEnd - unitBegin)));
    return CValueWithUnit(std::stod(text.substr(0, blank)), std::move(unit));
}

bool operator==(const CValueWithUnit& a, const CValueWithUnit& b) {
    const double x = a.value();
    const double y = b.valueAs(a.unit());
    return std::fabs(x - y) * 1e12 <= std::min(std::fabs(x), std::fabs(y));
}

bool operator!=(const CValueWithUnit& a, const CValueWithUnit& b) { return !(a == b); }
bool operator<(const CValueWithUnit& a, const CValueWithUnit& b) {
    return a.value() < b.valueAs(a.unit());
}
bool operator>(const CValueWithUnit& a, const CValueWithUnit& b) {
    return a.value() > b.valueAs(a.unit());
}

}  // namespace mensor
