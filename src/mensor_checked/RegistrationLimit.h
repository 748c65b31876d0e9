// RegistrationLimit.h: a limit for programs that read texts of strangers.
//
//     checked::setRegistrationLimit(1000);
//     const auto reading = checked::tryReadUnit(line);   // after 1000 new units: LIMIT_REACHED
//
// Every new unit stays until the process ends (docs/reliability.md says what one costs). With a limit, a
// reader of any number of texts needs a bounded memory. exact::read (<mensor_exact/Reading.h>) registers
// nothing and needs no limit.
#ifndef MENSOR_CHECKED_REGISTRATIONLIMIT_H
#define MENSOR_CHECKED_REGISTRATIONLIMIT_H

#include <cstddef>

#include "mensor/RegistrationBound.h"
#include "mensor_checked/checked_export.h"

namespace mensor {
namespace checked {

/// The functions of the companion register `units` units in all, counted from the start of the process,
/// and no more. At first there is no limit. What other functions of the library register does not count
/// and is not limited.
///
/// Beyond it, texts whose units are registered are read as ever. Readers refuse others as LIMIT_REACHED;
/// makers and packs throw CTooManyUnits, packs inside the CIdentityError that names the unit.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API void setRegistrationLimit(std::size_t units);

/// How many units the companion has registered since the start of the process.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API std::size_t registeredUnits();

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_REGISTRATIONLIMIT_H
