#include "mensor/AddConverter.h"

#include "mensor/TextStream.h"
#include "mensor/Unit.h"
#include "mensor/arrays.h"
#include "mensor/exact_class.h"
#include "mensor/mensor_math.h"

namespace mensor {

CAddConverter::CAddConverter(double offset) : m_Offset(offset) {}
CAddConverter::~CAddConverter() = default;

CConverterPtr CAddConverter::inverse() { return std::make_shared<CAddConverter>(-m_Offset); }
double CAddConverter::convert(double x) const { return x + m_Offset; }
double CAddConverter::derivative(double) const { return 1.0; }
bool CAddConverter::isLinear() const { return false; }

bool CAddConverter::equals(CConverterPtr other) const {
    const auto* that = dynamic_cast<const CAddConverter*>(other.get());
    return that != nullptr && hashCode() == that->hashCode();
}

CConverterPtr CAddConverter::concatenate(CConverterPtr other) {
    if (const auto* that = dynamic_cast<const CAddConverter*>(other.get())) {
        return std::make_shared<CAddConverter>(m_Offset + that->getOffset());
    }
    return CConverter::concatenate(other);
}

int CAddConverter::hashCode() const { return floatToIntBits(static_cast<float>(m_Offset)); }

string_t CAddConverter::getSymbol(CUnitPtr unit) const {
    detail::CTextStream text;
    text << "[" << toStdString(unit->getSymbol()) << "+" << m_Offset << "]";
    return string_t(text.str());
}

double CAddConverter::getOffset() const { return m_Offset; }

void CAddConverter::convertArray(const double* values, double* results, std::size_t count) const {
    if (m_Offset != m_Offset || !detail::isExactly<CAddConverter>(*this)) {
        CConverter::convertArray(values, results, count);
    } else {
        detail::addAll(values, results, count, m_Offset);
    }
}

}  // namespace mensor
