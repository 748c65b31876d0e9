// Decimal_fuzz.cpp: reads, converts and writes decimal numbers, and compares with a calculation by GMP and
// MPFR. The first byte of an input chooses the conversion, the second the number of digits, the third the
// notation. The rest is the number.
#include <gmpxx.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>

#include "Input.h"
#include "exact/Judge.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/Fraction.h"
#include "property.h"

using namespace mensor;
using mensor::exact::CCatalogue;
using mensor::exact::CConversion;
using mensor::exact::CDecimalStyle;
using mensor::exact::CError;
using mensor::exact::CFraction;
using mensor::exact::eError;
using mensor::exact::eNotation;
using mensor::exact::ePack;
using mensor::fuzz::fail;

namespace {

constexpr long LargestExponent = 300;

mpz_class powerOfTen(unsigned long exponent) {
    mpz_class result;
    mpz_ui_pow_ui(result.get_mpz_t(), 10, exponent);
    return result;
}

// Reads a decimal number without the library. Returns none if it is not a number or its exponent is
// large.
struct CRead {
    bool IsNumber = false;
    std::optional<mpq_class> Value;
};

CRead readNumber(const std::string& text) {
    std::size_t at = 0;
    const auto isDigit = [&] { return at < text.size() && text[at] >= '0' && text[at] <= '9'; };
    const bool isNegative = !text.empty() && text[0] == '-';
    if (isNegative || (!text.empty() && text[0] == '+')) {
        ++at;
    }
    std::string digits;
    long exponent = 0;
    while (isDigit()) {
        digits += text[at++];
    }
    if (at < text.size() && text[at] == '.') {
        ++at;
        while (isDigit()) {
            digits += text[at++];
            --exponent;
        }
    }
    if (digits.empty()) {
        return {};
    }
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        const bool isBelowOne = at < text.size() && text[at] == '-';
        if (isBelowOne || (at < text.size() && text[at] == '+')) {
            ++at;
        }
        if (!isDigit()) {
            return {};
        }
        long given = 0;
        while (isDigit()) {
            given = std::min(given * 10 + (text[at++] - '0'), 100000L);
        }
        exponent += isBelowOne ? -given : given;
    }
    if (at != text.size()) {
        return {};
    }
    if (std::labs(exponent) > LargestExponent) {
        return {true, std::nullopt};
    }
    mpq_class value(mpz_class(digits, 10));
    const mpq_class power(powerOfTen(static_cast<unsigned long>(std::labs(exponent))));
    value = exponent < 0 ? mpq_class(value / power) : mpq_class(value * power);
    return {true, isNegative ? mpq_class(-value) : value};
}

mpq_class scaledByTen(const mpq_class& value, long exponent) {
    const mpq_class power(powerOfTen(static_cast<unsigned long>(std::labs(exponent))));
    return exponent < 0 ? mpq_class(value / power) : mpq_class(value * power);
}

// Returns `value` rounded to `digits` significant digits, ties to even.
mpq_class rounded(const mpq_class& value, int digits) {
    if (value == 0) {
        return value;
    }
    const mpq_class size = abs(value);
    const mpq_class least(powerOfTen(static_cast<unsigned long>(digits - 1)));
    long exponent = 0;
    while (scaledByTen(size, -exponent) >= least * 10) {
        ++exponent;
    }
    while (scaledByTen(size, -exponent) < least) {
        --exponent;
    }
    const mpq_class scaled = scaledByTen(size, -exponent);
    mpz_class whole = scaled.get_num() / scaled.get_den();
    const mpq_class rest = 2 * (scaled - whole);
    if (rest > 1 || (rest == 1 && whole % 2 != 0)) {
        ++whole;
    }
    const mpq_class result = scaledByTen(mpq_class(whole), exponent);
    return value < 0 ? mpq_class(-result) : result;
}

struct CPair {
    const char* From;
    const char* To;
    mpq_class Factor;
    mpq_class Offset;
};

const CPair& pairOf(std::size_t number) {
    static const CPair Pairs[] = {
        {"m", "m", 1, 0},
        {"km", "m", 1000, 0},
        {"mm", "km", mpq_class(1, 1000000), 0},
        {"in", "cm", mpq_class(127, 50), 0},
        {"cm", "in", mpq_class(50, 127), 0},
        {"°F", "°C", mpq_class(5, 9), mpq_class(-160, 9)},
        {"°C", "°F", mpq_class(9, 5), 32},
        {"°C", "K", 1, mpq_class(5463, 20)},
        {"h", "year", mpq_class(3600, 31556952), 0},
        {"lb", "kg", mpq_class(45359237, 100000000), 0},
    };
    return Pairs[number % std::size(Pairs)];
}

const CConversion& conversionOf(const CPair& pair) {
    static const CCatalogue Catalogue =
        CCatalogue::builtIn().with(ePack::CUSTOMARY).with(ePack::OFFSETS);
    static std::optional<CConversion> conversion;
    conversion = CConversion::between(pair.From, pair.To, Catalogue);
    return *conversion;
}

double doubleOf(const mpq_class& value) { return nearest(value.get_num(), value.get_den(), 0); }

// Checks the text of the exact result.
void checkText(const std::string& number, const mpq_class& result, const std::string& written,
               int digits) {
    const CRead back = readNumber(written);
    if (!back.IsNumber) {
        fail(number, "is converted to a text that is not a number: " + written);
    }
    if (!back.Value) {
        return;
    }
    if (digits != 0) {
        if (*back.Value != rounded(result, digits)) {
            fail(number, "is rounded to other digits: " + written);
        }
        return;
    }
    const bool isExact = *back.Value == result;
    const bool isWhole = rounded(result, 17) == result;
    if (isWhole && !isExact) {
        fail(number, "is not written with all digits: " + written);
    }
    if (!isExact && doubleOf(*back.Value) != doubleOf(result)) {
        fail(number, "reads back as another double: " + written);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::CInput input(data, size);
    const CPair& pair = pairOf(input.byte());
    CDecimalStyle style;
    style.Digits = static_cast<int>(input.below(CDecimalStyle::MostDigits + 1));
    style.Notation = static_cast<eNotation>(input.below(4));
    std::string number;
    while (!input.empty() && number.size() < 60) {
        number += static_cast<char>(input.byte());
    }
    const CRead expected = readNumber(number);
    CFraction fraction;
    try {
        fraction = CFraction::ofText(number);
    } catch (const CError& error) {
        const bool isTooLarge = error.code() == eError::TOO_LARGE && !expected.Value;
        if (expected.IsNumber && !isTooLarge) {
            fail(number, "is refused");
        }
        return 0;
    }
    if (!expected.IsNumber) {
        fail(number, "is read, but is not a number");
    }
    if (!expected.Value) {
        return 0;
    }
    const double nearestDouble = doubleOf(*expected.Value);
    if (fraction.toDouble() != nearestDouble) {
        fail(number, "has another nearest double");
    }
    const mpq_class result = *expected.Value * pair.Factor + pair.Offset;
    try {
        checkText(number, result, conversionOf(pair).convertText(number, style), style.Digits);
    } catch (const CError& error) {
        const double inDoubles = doubleOf(result);
        const bool isBeyond = inDoubles == 0.0 || std::isinf(inDoubles);
        if (error.code() != eError::NUMBER_RANGE || style.Digits != 0 || !isBeyond) {
            fail(number, std::string("is not converted: ") + error.what());
        }
    }
    return 0;
}
