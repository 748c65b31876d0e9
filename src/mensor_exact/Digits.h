// Digits.h: numbers as decimal digits. For the library's own use; not installed.
#ifndef MENSOR_EXACT_DIGITS_H
#define MENSOR_EXACT_DIGITS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mensor_exact/Decimal.h"
#include "mensor_exact/Parts.h"

namespace mensor::exact {

/// ±0.d1d2d3...·10^Point, where Digits is "d1d2d3...", begins and ends with no zero, and is empty for
/// zero.
struct CDigits {
    bool Negative = false;
    std::string Digits;
    std::int64_t Point = 0;

    friend bool operator==(const CDigits& a, const CDigits& b) {
        return a.Negative == b.Negative && a.Digits == b.Digits && a.Point == b.Point;
    }
};

/// All digits of a number, if it ends after at most `most` significant ones.
std::optional<CDigits> wholeDigits(const CParts& parts, std::size_t most);

/// The shortest digits that read back as `value`, which is finite.
CDigits shortestDigits(double value);

/// The number rounded to `count` significant digits, ties to even.
CDigits roundedDigits(const CParts& parts, int count);

/// @throws CError  OPTIONS.
std::string write(const CDigits& digits, const CDecimalStyle& style);

/// @throws CError  OPTIONS: digits out of range.
void requireStyle(const CDecimalStyle& style);

/// A decimal number as its parts, as CFraction::ofText.
CParts readDecimal(std::string_view text);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DIGITS_H
