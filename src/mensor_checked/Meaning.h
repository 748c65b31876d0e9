// Meaning.h: what a unit of the registry means, exactly.
//
//     checked::meaningOf(SI::Newton()).toString();             // "kg·m/s²"
//     checked::meaningOf(NonSI::Hour()).toString();            // "3600 s"
//     checked::meaningOf(SI::Milli(SI::Meter())).factor();     // 1/1000, not the double next to it
//
// A unit of the library's catalogue or of a pack means what its row in the table of definitions says
// (<mensor_exact/Definitions.h>), even if a client has moved its label. Any other unit means what the
// doubles of its converters say: a client's unit `SI::Meter() * 0.1` is exactly
// 3602879701896397/36028797018963968 m.
#ifndef MENSOR_CHECKED_MEANING_H
#define MENSOR_CHECKED_MEANING_H

#include <optional>

#include "mensor/Unit.h"
#include "mensor_checked/checked_export.h"
#include "mensor_exact/Meaning.h"

namespace mensor::checked {

using exact::CMeaning;

/// Returns what `unit` means. If it has a row, this is the row. Otherwise the meaning follows from its
/// elements, or from its system unit and the converter to it, down to the base units. Registers nothing and
/// uses no cache.
///
/// A client's alternate unit means its base units: radians, steradians and bits are lost. A converter of a
/// client's own class counts as the scaling and the shift that it has at 0. CBaseUnit::setDimension does
/// not matter: a meaning is the same in every context.
/// @throws std::invalid_argument  `unit` is empty.
/// @throws std::logic_error  the expansion of a unit of a client's own class does not end.
/// @throws exact::CError  the unit has no exact meaning: NOT_POSITIVE and BAD_NUMBER for a factor that is
///     not a positive number, OFFSET_IN_PRODUCT, EXPONENT_RANGE, TOO_LARGE.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API CMeaning meaningOf(const CUnitPtr& unit);

/// Like meaningOf, but returns none if the unit has no exact meaning.
/// @throws std::invalid_argument, std::logic_error  as meaningOf.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API std::optional<CMeaning> tryMeaningOf(const CUnitPtr& unit);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_MEANING_H
