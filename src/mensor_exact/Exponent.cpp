#include "mensor_exact/Exponent.h"

#include "mensor_exact/Error.h"

namespace mensor::exact {

std::string CExponent::toString() const {
    std::string text = std::to_string(m_Numerator);
    return m_Denominator == 1 ? text : text + "/" + std::to_string(m_Denominator);
}

void CExponent::throwDivisionByZero() {
    throw CError(eError::DIVISION_BY_ZERO, "an exponent with the denominator zero");
}

void CExponent::throwRange() { throw CError(eError::EXPONENT_RANGE, "an exponent beyond 99"); }

}  // namespace mensor::exact
