#include "mensor_checked/ExactConverter.h"

#include <memory>
#include <utility>

namespace mensor::checked {

namespace {

bool areEqual(const exact::COffset& a, const exact::COffset& b) {
    return a.Sign == b.Sign && a.Size == b.Size;
}

}  // namespace

CExactConverter::CExactConverter(const exact::CConversion& conversion)
    : m_Conversion(conversion),
      m_Slope(m_Conversion.exactFactor().toDouble()),
      m_HasOffset(m_Conversion.exactOffset().Sign != 0) {}
CExactConverter::~CExactConverter() = default;

CConverterPtr CExactConverter::inverse() {
    return std::make_shared<CExactConverter>(m_Conversion.inverse());
}

double CExactConverter::convert(double x) const { return m_Conversion.convert(x); }
double CExactConverter::derivative(double) const { return m_Slope; }
bool CExactConverter::isLinear() const { return !m_HasOffset; }

// The base class compares scalings only, so a converter with an offset is compared here.
bool CExactConverter::equals(CConverterPtr other) const {
    const auto* that = dynamic_cast<const CExactConverter*>(other.get());
    const bool isSame = that != nullptr &&
                        m_Conversion.exactFactor() == that->m_Conversion.exactFactor() &&
                        areEqual(m_Conversion.exactOffset(), that->m_Conversion.exactOffset());
    return isSame || CConverter::equals(std::move(other));
}

void CExactConverter::convertArray(const double* values, double* results, std::size_t count) const {
    m_Conversion.convertAll(values, results, count);
}

}  // namespace mensor::checked
