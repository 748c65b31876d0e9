// NumberText.h: finds the number at the beginning of a value. For mensor's own libraries; not installed.
#ifndef MENSOR_EXACT_NUMBERTEXT_H
#define MENSOR_EXACT_NUMBERTEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mensor_exact/Refusal.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

enum class eNumber : std::uint8_t { DECIMAL, NAN_WORD, INFINITY_WORD };

/// The parts of a value in its text.
struct CNumberText {
    eNumber Kind = eNumber::DECIMAL;
    bool IsNegative = false;
    CSpan Size;                 ///< the number without its sign, as std::from_chars reads it
    CSpan Whole;                ///< the number with its sign
    std::size_t UnitBegin = 0;  ///< after the number and blanks
};

/// Finds the number at the beginning of a value. Refuses words such as "inf" unless `mayBeNotFinite`.
/// Also refuses a second number in place of the unit.
///
/// Returns false and sets `refusal` if the text is refused. Allocates no memory.
MENSOR_EXACT_API bool findNumber(std::string_view text, bool mayBeNotFinite, CNumberText& number,
                                 CRefusal& refusal) noexcept;

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_NUMBERTEXT_H
