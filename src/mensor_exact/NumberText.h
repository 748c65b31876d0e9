// NumberText.h: the number at the beginning of a value. For mensor's own libraries; not installed.
#ifndef MENSOR_EXACT_NUMBERTEXT_H
#define MENSOR_EXACT_NUMBERTEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mensor_exact/Refusal.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

enum class eNumber : std::uint8_t { DECIMAL, NAN_WORD, INFINITY_WORD };

/// Where the parts of a value stand in its text.
struct CNumberText {
    eNumber Kind = eNumber::DECIMAL;
    bool IsNegative = false;
    CSpan Size;                 ///< the number without its sign, as std::from_chars reads it
    CSpan Whole;                ///< the number with its sign
    std::size_t UnitBegin = 0;  ///< behind the number and blanks
};

/// Finds the number at the beginning of a value. Words such as "inf" are refused unless
/// `mayBeNotFinite`. Refuses, too, what stands for a second number in place of the unit.
///
/// Returns false where the text is refused. Needs no memory.
MENSOR_EXACT_API bool findNumber(std::string_view text, bool mayBeNotFinite, CNumberText& number,
                                 CRefusal& refusal) noexcept;

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_NUMBERTEXT_H
