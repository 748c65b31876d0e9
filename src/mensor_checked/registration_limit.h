// registration_limit.h: a limit for programs that read untrusted texts.
//
//     checked::setRegistrationLimit(1000);
//     const auto reading = checked::tryReadUnit(line);   // after 1000 new units: LIMIT_REACHED
//
// A new unit stays until the process ends (docs/reliability.md has its size in memory). With a
// limit, a program can read any number of texts in bounded memory. exact::read (<mensor_exact/Reading.h>)
// registers nothing and needs no limit.
#ifndef MENSOR_CHECKED_REGISTRATION_LIMIT_H
#define MENSOR_CHECKED_REGISTRATION_LIMIT_H

#include <cstddef>

#include "mensor/RegistrationBound.h"
#include "mensor_checked/checked_export.h"

namespace mensor::checked {

/// Limits how many units the companion registers in all, counted from the start of the process. At first
/// there is no limit. Units that other functions register do not count and are not limited.
///
/// Once the limit is reached, texts whose units are registered are still read. Readers refuse other texts
/// as LIMIT_REACHED. The functions of making.h throw CTooManyUnits. registerPack throws the CIdentityError
/// that names the unit.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API void setRegistrationLimit(std::size_t units);

/// Returns how many units the companion has registered since the start of the process.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API std::size_t registeredUnits();

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_REGISTRATION_LIMIT_H
