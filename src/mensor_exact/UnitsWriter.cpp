#include "mensor_exact/UnitsWriter.h"

namespace mensor::exact {

namespace {

void append(std::string& side, std::string_view name, CExponent exponent) {
    if (!side.empty()) {
        side += "·";
    }
    side += name;
    if (exponent == CExponent(2)) {
        side += "²";
    } else if (exponent == CExponent(3)) {
        side += "³";
    } else if (exponent.denominator() != 1) {
        side += "^(" + exponent.toString() + ")";
    } else if (exponent != CExponent(1)) {
        side += "^" + exponent.toString();
    }
}

}  // namespace

void CUnitsWriter::add(std::string_view name, CExponent exponent) {
    if (exponent.isZero()) {
        return;
    }
    const bool divides = exponent.numerator() < 0;
    append(divides ? m_Below : m_Above, name, divides ? -exponent : exponent);
    m_Divisors += divides ? 1 : 0;
}

std::string CUnitsWriter::text() const {
    std::string text = m_Above.empty() ? "1" : m_Above;
    if (m_Divisors > 0) {
        text += m_Divisors > 1 ? "/(" + m_Below + ")" : "/" + m_Below;
    }
    return text;
}

}  // namespace mensor::exact
