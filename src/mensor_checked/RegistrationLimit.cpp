#include "mensor_checked/RegistrationLimit.h"

#include "mensor_checked/Lock.h"

namespace mensor::checked {

void setRegistrationLimit(std::size_t units) { Lock().setLimit(units); }

std::size_t registeredUnits() { return Lock().registered(); }

}  // namespace mensor::checked
