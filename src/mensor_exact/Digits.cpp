#include "mensor_exact/Digits.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <limits>

#include "mensor_exact/Error.h"
#include "mensor_exact/concatenate.h"

namespace mensor::exact {

namespace {

// A number within the limit of bits (Fraction.h) has fewer digits.
constexpr std::size_t MostCharacters = 25000;
constexpr std::int64_t MostTens = 100000;

constexpr std::int64_t LeastPlainPoint = -5;  // 0.000001
constexpr std::int64_t MostPlainPoint = 21;   // 999999999999999999999

bool isDigit(char c) { return c >= '0' && c <= '9'; }

[[noreturn]] void throwBadNumber(std::string_view text) {
    throw CError(eError::BAD_NUMBER, quoted(text) + " is not a decimal number");
}

// Multiplies by base^times. Returns false if 64 bits are too few.
bool scale(std::uint64_t& number, std::uint64_t base, std::int64_t times) {
    for (; times > 0; --times) {
        if (__builtin_mul_overflow(number, base, &number)) {
            return false;
        }
    }
    return true;
}

void trim(std::string& digits) { digits.erase(digits.find_last_not_of('0') + 1); }

// Reads the exponent after "e". `at` is the position after the letter. A very large exponent is cut off.
std::int64_t readTens(std::string_view text, std::size_t at) {
    bool isNegative = false;
    std::string_view digits = text.substr(at);
    if (!digits.empty() && (digits[0] == '+' || digits[0] == '-')) {
        isNegative = digits[0] == '-';
        digits.remove_prefix(1);
    }
    if (digits.empty() || !std::all_of(digits.begin(), digits.end(), isDigit)) {
        throwBadNumber(text);
    }
    std::int64_t tens = 0;
    for (const char c : digits) {
        tens = std::min(10 * tens + (c - '0'), MostTens);
    }
    return isNegative ? -tens : tens;
}

// Returns the greatest exponent of a power of ten that is not above the number.
std::int64_t pointOf(const CWhole& numerator, const CWhole& denominator) {
    // The estimate from the number of bits is the exponent or one less: log10(2) = 0.30102999...
    const std::int64_t bits = static_cast<std::int64_t>(numerator.bits()) -
                              static_cast<std::int64_t>(denominator.bits()) - 1;
    const std::int64_t scaled = bits * 30103;
    std::int64_t tens = scaled / 100000 - (scaled % 100000 < 0 ? 1 : 0) - 1;
    while (tens + 1 >= 0 ? numerator >= denominator * CWhole(10).power(tens + 1)
                         : numerator * CWhole(10).power(-(tens + 1)) >= denominator) {
        ++tens;
    }
    return tens;
}

}  // namespace

std::optional<CDigits> wholeDigits(const CParts& parts, std::size_t most) {
    CDigits result;
    if (parts.Numerator.isZero()) {
        return result;
    }
    if (!parts.Denominator.isOne()) {
        return std::nullopt;
    }
    // n·2^a·5^b is n·2^(a-b)·10^b or n·5^(b-a)·10^a.
    const std::int64_t difference = parts.Twos - parts.Fives;
    const std::int64_t tens = std::min(parts.Twos, parts.Fives);
    const auto mostBits = static_cast<std::int64_t>(most * 3322 / 1000 + 1);
    if (difference > mostBits || -difference > mostBits) {
        return std::nullopt;
    }
    std::uint64_t small = parts.Numerator.low();
    if (parts.Numerator.bits() <= 64 &&
        scale(small, difference < 0 ? 5 : 2, difference < 0 ? -difference : difference)) {
        result.Digits = std::to_string(small);
    } else {
        const CWhole number = difference >= 0 ? parts.Numerator.shifted(difference)
                                              : parts.Numerator * CWhole(5).power(-difference);
        if (static_cast<std::int64_t>(number.bits()) > mostBits) {
            return std::nullopt;
        }
        result.Digits = number.toString();
    }
    result.Negative = parts.Negative;
    if (result.Digits.size() > most) {
        return std::nullopt;
    }
    result.Point = tens + static_cast<std::int64_t>(result.Digits.size());
    return result;
}

CDigits shortestDigits(double value) {
    CDigits result;
    std::array<char, 32> buffer;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                            std::chars_format::scientific);
    static_cast<void>(error);  // the text always fits
    const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    const std::size_t e = text.find('e');
    for (const char c : text.substr(0, e)) {
        if (c == '-') {
            result.Negative = true;
        } else if (c != '.') {
            result.Digits += c;
        }
    }
    trim(result.Digits);
    if (result.Digits.empty()) {
        return {};
    }
    result.Point = readTens(text, e + 1) + 1;
    return result;
}

CDigits roundedDigits(const CParts& parts, int count) {
    CDigits result;
    if (parts.Numerator.isZero()) {
        return result;
    }
    auto [numerator, denominator] = parts.wholes();
    const std::int64_t point = pointOf(numerator, denominator) + 1;
    const std::int64_t tens = count - point;
    (tens < 0 ? denominator : numerator) *= CWhole(10).power(tens < 0 ? -tens : tens);
    CDivision division(numerator, denominator);
    CWhole& quotient = division.Quotient;
    const CWhole twice = division.Rest * 2;
    if (twice > denominator || (twice == denominator && quotient.isOdd())) {
        quotient += 1;
    }
    result.Negative = parts.Negative;
    result.Digits = quotient.toString();
    result.Point = point + (static_cast<std::int64_t>(result.Digits.size()) - count);
    trim(result.Digits);
    return result;
}

void requireStyle(const CDecimalStyle& style) {
    if (style.Digits < 0 || style.Digits > CDecimalStyle::MostDigits) {
        throw CError(eError::OPTIONS,
                     "the number of digits is " + std::to_string(style.Digits) + ", not 0 to 50");
    }
}

std::string write(const CDigits& digits, const CDecimalStyle& style) {
    requireStyle(style);
    if (digits.Digits.empty()) {
        return "0";
    }
    const std::int64_t point = digits.Point;
    const auto size = static_cast<std::int64_t>(digits.Digits.size());
    // The number of digits before the point.
    std::int64_t before = point;
    switch (style.Notation) {
        case eNotation::PLAIN: break;
        case eNotation::AUTOMATIC:
            before = point >= LeastPlainPoint && point <= MostPlainPoint ? point : 1;
            break;
        case eNotation::SCIENTIFIC: before = 1; break;
        case eNotation::ENGINEERING: before = ((point - 1) % 3 + 3) % 3 + 1; break;
    }
    std::string text = digits.Negative ? "-" : "";
    const char sign = style.DecimalComma ? ',' : '.';
    if (before <= 0) {
        text += '0';
        text += sign;
        text.append(static_cast<std::size_t>(-before), '0');
        text += digits.Digits;
    } else if (before >= size) {
        text += digits.Digits;
        text.append(static_cast<std::size_t>(before - size), '0');
    } else {
        text.append(digits.Digits, 0, static_cast<std::size_t>(before));
        text += sign;
        text.append(digits.Digits, static_cast<std::size_t>(before));
    }
    if (before != point) {
        text += "e" + std::to_string(point - before);
    }
    return text;
}

CParts readDecimal(std::string_view text) {
    if (text.size() > MostCharacters) {
        throw CError(eError::TOO_LARGE, "a number of more than 25000 characters");
    }
    CParts parts;
    std::size_t at = 0;
    if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
        parts.Negative = text[0] == '-';
        at = 1;
    }
    std::string digits;
    std::int64_t tens = 0;
    bool hasDigit = false;
    bool hasPoint = false;
    for (; at < text.size() && text[at] != 'e' && text[at] != 'E'; ++at) {
        if (text[at] == '.' && !hasPoint) {
            hasPoint = true;
        } else if (isDigit(text[at])) {
            hasDigit = true;
            if (text[at] != '0' || !digits.empty()) {
                digits += text[at];
            }
            tens -= hasPoint ? 1 : 0;
        } else {
            throwBadNumber(text);
        }
    }
    if (!hasDigit) {
        throwBadNumber(text);
    }
    if (at < text.size()) {
        tens += readTens(text, at + 1);
    }
    const std::size_t size = digits.size();
    trim(digits);
    if (digits.empty()) {
        return {};
    }
    tens += static_cast<std::int64_t>(size - digits.size());
    constexpr std::size_t SmallDigits = 19;
    if (digits.size() <= SmallDigits) {
        std::uint64_t number = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
        const CSmallFraction small(number);
        parts.Numerator = small.Numerator;
        parts.Twos = small.Twos + tens;
        parts.Fives = small.Fives + tens;
        return parts;
    }
    parts.Numerator = CWhole::ofDigits(digits);
    parts.Twos = parts.Fives = tens;
    parts.normalize();
    return parts;
}

}  // namespace mensor::exact
