// Meaning.h: what a unit of the registry means, exactly.
//
//     checked::meaningOf(SI::Newton()).toString();             // "kg·m/s²"
//     checked::meaningOf(NonSI::Hour()).toString();            // "3600 s"
//     checked::meaningOf(SI::Milli(SI::Meter())).factor();     // 1/1000, not the double next to it
//
// A unit that the library's catalogue or a pack has made means what its row in the table of
// definitions says (<mensor_exact/Definitions.h>), also where a client has moved its label. Any other
// unit means what the doubles of its converters say: the unit `SI::Meter() * 0.1` of a client is
// exactly 3602879701896397/36028797018963968 m long.
#ifndef MENSOR_CHECKED_MEANING_H
#define MENSOR_CHECKED_MEANING_H

#include <optional>

#include "mensor/Unit.h"
#include "mensor_checked/checked_export.h"
#include "mensor_exact/Meaning.h"

namespace mensor {
namespace checked {

using exact::CMeaning;

/// What `unit` means: its row; else its elements, its system unit and the converter to it, its
/// expansion into base units, followed down to the base units. Registers nothing and asks no cache.
///
/// A client's alternate unit stands for its base units: radians, steradians and bits are lost. A
/// client's own kind of converter counts as the scaling and shift that it says at 0. The dimensions
/// that CBaseUnit::setDimension sets are not looked at: a meaning is the same in every context.
/// @throws std::invalid_argument  `unit` is empty.
/// @throws std::logic_error  the expansion of a client's kind of unit does not end.
/// @throws exact::CError  the unit has no exact meaning: NOT_POSITIVE and BAD_NUMBER for a factor that is
///     no positive number, OFFSET_IN_PRODUCT, EXPONENT_RANGE, TOO_LARGE.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API CMeaning meaningOf(const CUnitPtr& unit);

/// The same, none if the unit has no exact meaning.
/// @throws std::invalid_argument, std::logic_error  as above.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API std::optional<CMeaning> tryMeaningOf(const CUnitPtr& unit);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_MEANING_H
