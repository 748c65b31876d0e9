#include "mensor_exact/Error.h"

namespace mensor::exact {

CError::CError(eError code, const std::string& message)
    : std::invalid_argument(message), m_Code(code) {}
CError::CError(const CError&) = default;
CError& CError::operator=(const CError&) = default;
CError::~CError() = default;

}  // namespace mensor::exact
