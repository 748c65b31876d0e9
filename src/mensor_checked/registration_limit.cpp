#include "mensor_checked/registration_limit.h"

#include "mensor_checked/Lock.h"

namespace mensor::checked {

void setRegistrationLimit(std::size_t units) { Lock().setLimit(units); }

std::size_t registeredUnits() { return Lock().registered(); }

}  // namespace mensor::checked
