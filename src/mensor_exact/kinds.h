// kinds.h: conversions in which the radian, the steradian or the bit counts as 1.
//
//     exact::noteOnMarks("3000", "rpm", rpm, perMinute);
//     // rad counts as 1 here: 3000 rpm is 314.159 rad/s; …
#ifndef MENSOR_EXACT_KINDS_H
#define MENSOR_EXACT_KINDS_H

#include <string>
#include <string_view>

#include "mensor_exact/Meaning.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// Returns a note on a value that is converted between units of different marks (radian, steradian, bit),
/// which count as 1 there. The note is empty if the marks are the same. `number` and `unit` are the value as
/// it is written.
/// @throws CError  BAD_NUMBER, TOO_LARGE.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::string noteOnMarks(std::string_view number, std::string_view unit,
                                         const CMeaning& from, const CMeaning& to);

/// Refuses a conversion between units of different marks.
/// @throws CError  DIFFERENT_MARKS, with noteOnMarks of one unit in the message.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API void requireSameMarks(const CMeaning& from, const CMeaning& to);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_KINDS_H
