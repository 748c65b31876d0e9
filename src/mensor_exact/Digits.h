// Digits.h: decimal digits of exact numbers. Not installed.
#ifndef MENSOR_EXACT_DIGITS_H
#define MENSOR_EXACT_DIGITS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mensor_exact/Decimal.h"
#include "mensor_exact/Parts.h"

namespace mensor::exact {

/// The number ±0.d1d2d3...·10^Point. Digits is "d1d2d3...", without zeros at both ends. It is empty for
/// zero.
struct CDigits {
    bool Negative = false;
    std::string Digits;
    std::int64_t Point = 0;

    friend bool operator==(const CDigits& a, const CDigits& b) {
        return a.Negative == b.Negative && a.Digits == b.Digits && a.Point == b.Point;
    }
};

/// Returns all digits of a number if it has at most `most` significant ones, else nothing.
std::optional<CDigits> wholeDigits(const CParts& parts, std::size_t most);

/// Returns the shortest digits that read back as `value`. `value` is finite.
CDigits shortestDigits(double value);

/// Returns the number rounded to `count` significant digits, ties to even.
CDigits roundedDigits(const CParts& parts, int count);

/// Writes the number in a style.
/// @throws CError  OPTIONS.
std::string write(const CDigits& digits, const CDecimalStyle& style);

/// Checks a style.
/// @throws CError  OPTIONS: the number of digits is out of range.
void requireStyle(const CDecimalStyle& style);

/// Reads a decimal number as CFraction::ofText does.
CParts readDecimal(std::string_view text);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DIGITS_H
