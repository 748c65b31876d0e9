#include "mensor_exact/FastForm.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

#include "mensor_exact/TwoWords.h"
#include "mensor_exact/near_middle.h"

namespace mensor::exact {

namespace {

std::int64_t orderedBits(double x) { return static_cast<std::int64_t>(bitsOfDouble(x)); }

// 2^exponent, for a normal number.
double power(std::int64_t exponent) {
    return doubleOfBits(static_cast<std::uint64_t>(exponent + 1023) << 52);
}

/// The exponent of the highest bit.
std::int64_t exponentOf(const CLeading& number) { return number.Twos + 191; }

// The highest 53 bits, plus `more` last places.
double headOf(const CLeading& number, std::uint64_t more = 0) {
    const std::uint64_t mantissa = (number.Word[0] >> 11) + more;
    return std::ldexp(static_cast<double>(mantissa), static_cast<int>(exponentOf(number) - 52));
}

/// The rest of a number after its highest 53 bits are taken away.
struct CRemainder {
    std::uint64_t Word[3];
    std::int64_t Twos;
    bool IsWhole;

    explicit CRemainder(const CLeading& number)
        : Word{number.Word[0] & 0x7FF, number.Word[1], number.Word[2]},
          Twos(number.Twos),
          IsWhole(number.IsWhole) {}

    bool isZero() const { return Word[0] == 0 && Word[1] == 0 && Word[2] == 0 && IsWhole; }

    // 2^-100 times the highest bit of the number.
    static constexpr std::uint64_t Slack = std::uint64_t{1} << 27;

    CRemainder more() const {
        CRemainder result = *this;
        result.Word[1] += Slack;
        result.Word[0] += result.Word[1] < Slack ? 1 : 0;
        return result;
    }

    // Returns the remainder minus the slack, at least 0.
    CRemainder less() const {
        CRemainder result = *this;
        if (Word[0] == 0 && Word[1] < Slack) {
            result.Word[1] = result.Word[2] = 0;
        } else {
            result.Word[1] -= Slack;
            result.Word[0] -= Word[1] < Slack ? 1 : 0;
        }
        return result;
    }

    // The highest 53 bits of the remainder, rounded down or up.
    double roundedDown() const { return headOf(leading()); }
    double roundedUp() const {
        const CLeading bits = leading();
        return headOf(bits, CRemainder(bits).isZero() ? 0 : 1);
    }

    // The highest 53 bits, rounded to the nearest double. A middle is rounded up.
    double nearest() const {
        const CLeading bits = leading();
        return headOf(bits, bits.Word[0] >> 10 & 1);
    }

    // What roundedDown() leaves of the remainder, rounded down.
    double belowRoundedDown() const { return CRemainder(leading()).roundedDown(); }

private:
    // The remainder with its highest bit in the first word. All words are zero if the remainder has no
    // known bits.
    CLeading leading() const {
        CLeading result = {{Word[0], Word[1], Word[2]}, Twos, IsWhole};
        for (int i = 0; i < 2 && result.Word[0] == 0; ++i) {
            result.Word[0] = result.Word[1];
            result.Word[1] = result.Word[2];
            result.Word[2] = 0;
            result.Twos -= 64;
        }
        if (result.Word[0] != 0) {
            const int up = __builtin_clzll(result.Word[0]);
            result.Word[0] = shiftedLeft({result.Word[0], result.Word[1]}, up).High;
            result.Word[1] = shiftedLeft({result.Word[1], result.Word[2]}, up).High;
            result.Word[2] <<= up;
            result.Twos -= up;
        }
        return result;
    }
};

std::uint64_t oddPartOf(std::uint64_t number) { return number >> __builtin_ctzll(number); }

// Looks for a tail with which one sum is correct for every number: the tail rounded down or up. A sum is
// correct for every number if it is so for the numbers whose products are nearest to ties. Leaves the
// tail in the form.
bool findProvedTail(const CLeading& factor, const CRemainder& remainder, CFastForm& form) {
    const double scale = power(exponentOf(factor));
    const double tails[] = {remainder.roundedDown(), remainder.roundedUp()};
    bool isProved[] = {tails[0] > 0, tails[1] > 0};
    const bool isDone =
        isNeverNearMiddle(53, factor.Word, [&](std::uint64_t n, std::uint64_t product) {
            const auto x = static_cast<double>(n);
            const double y = static_cast<double>(product) * scale;
            for (int i = 0; i < 2; ++i) {
                form.Tail = tails[i];
                isProved[i] = isProved[i] && form.Loops->One[PROVED](form, x) == y;
            }
            return isProved[0] || isProved[1];
        });
    form.Tail = tails[isProved[0] ? 0 : 1];
    return isDone && (isProved[0] || isProved[1]);
}

}  // namespace

CLeading CLeading::ofQuotient(std::uint64_t numerator, std::uint64_t denominator,
                              std::int64_t twos) {
    const int upN = __builtin_clzll(numerator);
    const int upD = __builtin_clzll(denominator);
    const std::uint64_t n = numerator << upN;
    const std::uint64_t d = denominator << upD;
    const bool isHalved = n >= d;
    CTwoWords dividend = isHalved ? CTwoWords{n >> 1, n << 63} : CTwoWords{n, 0};
    CLeading result = {};
    for (std::uint64_t& word : result.Word) {
        std::uint64_t rest = 0;
        word = quotient(dividend, d, rest);
        dividend = {rest, 0};
    }
    result.Twos = twos - upN + upD - 192 + (isHalved ? 1 : 0);
    result.IsWhole = isZero(dividend);
    return result;
}

CFastForm::CFastForm(bool hasOffset, const CSlowWay* slowWay, const CLoops& loops)
    : One(loops.One[SLOWLY]),
      Many(loops.Many[SLOWLY]),
      HasOffset(hasOffset),
      SlowWay(slowWay),
      Loops(&loops) {}

CFastForm::CFastForm(const CLeading& factor, const CShortLine* line, const CSlowWay* slowWay,
                     const CLoops& loops)
    : HasLine(line != nullptr), SlowWay(slowWay), Loops(&loops) {
    if (line != nullptr) {
        Line = *line;
    }
    const std::int64_t exponent = exponentOf(factor);
    const CRemainder remainder(factor);
    if (remainder.isZero() && exponent >= -1022 + 52 && exponent <= 1023) {
        Way = MULTIPLY;
        Head = headOf(factor);
    } else if (exponent >= -900 && exponent <= 900) {
        Way = TESTED;
        Head = headOf(factor);
        Tail = remainder.nearest();
        TailLow = remainder.less().roundedDown();
        TailHigh = remainder.more().roundedUp();
        // From here on the result is at least 2^-900, and x can be split.
        Least = orderedBits(power(std::max<std::int64_t>(-900 - exponent, -1000))) - 1;
        // Up to here neither splitting x nor the product overflows.
        Most = orderedBits(power(std::min<std::int64_t>(1000 - exponent, 990)));
        const std::uint64_t a = HasLine ? oddPartOf(Line.A) : 0;
        const std::uint64_t d = HasLine ? oddPartOf(Line.D) : 0;
        if (HasLine && a <= mostOddPart(53) && d <= mostOddPart(53)) {
            Way = hasTies(53, a, d) && !isRightForTies(53, a, d) ? TIES : PROVED;
        }
        if (Way == TIES) {
            Tail = remainder.roundedDown();
            TailRest = remainder.belowRoundedDown();
        }
    }
    const double c = Head * 134217729.0;
    HeadHigh = std::fabs(Head) < 0x1p990 ? c - (c - Head) : 0;
    HeadLow = Head - HeadHigh;
    if (Way == TESTED && findProvedTail(factor, remainder, *this)) {
        Way = PROVED;
    }
    One = loops.One[Way];
    Many = loops.Many[Way];
}

CFastForm::CFastForm(const CLeading& factor, const CLeading& center, bool isNegative,
                     const CShortLine* line, const CSlowWay* slowWay, const CLoops& loops)
    : HasOffset(true), HasLine(line != nullptr), SlowWay(slowWay), Loops(&loops) {
    if (line != nullptr) {
        Line = *line;
    }
    if (std::abs(exponentOf(factor)) <= 200 && std::abs(exponentOf(center)) <= 200) {
        Way = OFFSET;
        const double sign = isNegative ? -1 : 1;
        const CRemainder remainder(center);
        Head = headOf(factor);
        Tail = CRemainder(factor).roundedDown();
        Center = sign * headOf(center);
        CenterTail = Head * (sign * remainder.roundedDown());
        ExactCenter = remainder.isZero() ? 1 : 0;
        const double c = Head * 134217729.0;
        HeadHigh = c - (c - Head);
        HeadLow = Head - HeadHigh;
        // No number is between these limits. If there is no short line, they are not changed.
        Least = std::numeric_limits<std::int64_t>::min();
        Most = -1;
        // The distance of the two tails from the exact one, relative to the highest bit of the factor. It
        // must be small if the line has large numbers, so that two different sums always mean a tie.
        double slack = 0x1p-88;
        const std::uint64_t mostShort = std::uint64_t{1} << 40;
        if (HasLine && Line.A <= mostShort && Line.B <= mostShort && Line.D <= mostShort) {
            const auto a = static_cast<double>(Line.A);
            const auto b = static_cast<double>(Line.B);
            const auto d = static_cast<double>(Line.D);
            slack = std::max(power(-72 - bitsOf(std::max(Line.A, Line.D) - 1)), 0x1p-97);
            Least = orderedBits(b * slack * 0x1p57);
            Most = orderedBits(0x1p-4 / (a * slack));
            if (std::abs(Line.Twos) <= 900) {
                Scale = a * power(Line.Twos);
                Offset = (Line.IsMinusB ? -b : b) * power(Line.Twos);
                Divisor = d;
                const CLeading inverse = CLeading::ofQuotient(1, Line.D, 0);
                Inverse = headOf(inverse);
                InverseTail = CRemainder(inverse).roundedDown();
                MostWhole = (0x1p53 - 1 - b) / a;
            }
        }
        LeastDistance = orderedBits(std::fabs(Center) * (0x1p-100 / slack));
        slack *= power(exponentOf(factor));
        TailLow = Tail - slack;
        TailHigh = Tail + slack;
    }
    One = loops.One[Way];
    Many = loops.Many[Way];
}

CNearest CFastForm::exactly(const CNumber& x, const CFormat& format) const {
    if (HasLine) {
        if (const auto result = Line.convert(x, format)) {
            return *result;
        }
    }
    return SlowWay->convert(x, format);
}

double CFastForm::convertSlowly(double x) const {
    if (std::isnan(x)) {
        return doubleOfBits(bitsOfDouble(x) | std::uint64_t{1} << 51);
    }
    if (std::isinf(x) || (x == 0 && !HasOffset)) {
        return x;
    }
    return doubleOfBits(exactly(CNumber::ofDouble(x), CFormat::ofDouble()).Bits);
}

float CFastForm::convertSlowlyToFloat(double x) const {
    if (!std::isfinite(x) || (x == 0 && !HasOffset)) {
        return static_cast<float>(x);
    }
    return floatOfBits(exactly(CNumber::ofDouble(x), CFormat::ofFloat()).Bits);
}

namespace {

// The number of values that are computed before their correctness is tested. A block of them fits into
// the fastest cache and on the stack.
constexpr std::size_t BlockSize = 256;

// Doubles need no intermediate arrays, so their blocks are longer.
constexpr std::size_t LongBlockSize = 1024;

// Results that no processor cache could hold are written past the caches. An ordinary store first reads
// the cache line that it fills, which is a third of all memory traffic.
constexpr std::size_t StreamedBytes = 32'000'000;

// Returns how many numbers there are up to the next cache line. A vector across two lines would take two
// stores.
template <class Number>
std::size_t countToNextLine(const Number* numbers) {
    constexpr std::size_t Line = 64;
    return (Line - reinterpret_cast<std::uintptr_t>(numbers) % Line) % Line / sizeof(Number);
}

#if defined(__x86_64__)

constexpr bool CanStream = true;

// Makes the stores past the caches visible to other threads before any later store.
void finishStoring() { _mm_sfence(); }

#else

constexpr bool CanStream = false;
void finishStoring() {}

#endif

// Every whole number up to here is exact as a double.
constexpr std::int64_t MostWholeDouble = std::int64_t{1} << 53;

bool isDouble(std::int64_t value) { return value >= -MostWholeDouble && value <= MostWholeDouble; }

template <class Number>
constexpr double largestOf() {
    return std::is_same_v<Number, std::int16_t>   ? 0x1p15
           : std::is_same_v<Number, std::int32_t> ? 0x1p31
                                                  : HUGE_VAL;
}

void widen(const CLoops& loops, const float* values, double* results, std::size_t count) {
    loops.WidenFloat(values, results, count);
}
void widen(const CLoops& loops, const std::int16_t* values, double* results, std::size_t count) {
    loops.Widen16(values, results, count);
}
void widen(const CLoops& loops, const std::int32_t* values, double* results, std::size_t count) {
    loops.Widen32(values, results, count);
}
void widen(const CLoops& loops, const std::int64_t* values, double* results, std::size_t count) {
    loops.Widen64(values, results, count);
}
void widen(const CLoops&, const double* values, double* results, std::size_t count) {
    std::memcpy(results, values, count * sizeof *values);
}

void divide(const CFastForm& form, const std::int16_t* values, double* results, std::size_t count) {
    form.Loops->Divide16(form, values, results, count);
}
void divide(const CFastForm& form, const std::int32_t* values, double* results, std::size_t count) {
    form.Loops->Divide32(form, values, results, count);
}

void oneByOne(const CFastForm& form, const double* values, double* results, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = form.One(form, values[i]);
    }
}

// If some results of a block may be wrong, looks for them in small pieces.
void toDoubles(const CFastForm& form, const double* values, double* results, std::size_t count) {
    if (form.Many(form, values, results, count)) {
        return;
    }
    constexpr std::size_t Piece = 32;
    for (std::size_t i = 0; i < count; i += Piece) {
        const std::size_t n = std::min(Piece, count - i);
        if (count <= Piece || !form.Many(form, values + i, results + i, n)) {
            oneByOne(form, values + i, results + i, n);
        }
    }
}

// The same, but writes the results past the caches if they begin at a cache line and end there.
void toDoublesPastCaches(const CFastForm& form, const double* values, double* results,
                         std::size_t count) {
    if (count % CLoops::Line != 0 || countToNextLine(results) != 0) {
        toDoubles(form, values, results, count);
        return;
    }
    if (form.Way == OFFSET && count % CLoops::OffsetPiece == 0) {
        if (!form.Loops->OffsetPastCaches(form, values, results, count)) {
            toDoubles(form, values, results, count);
        }
        return;
    }
    constexpr std::size_t Piece = 256;
    alignas(64) double piece[Piece];
    for (std::size_t i = 0; i < count; i += Piece) {
        const std::size_t n = std::min(Piece, count - i);
        toDoubles(form, values + i, piece, n);
        form.Loops->CopyPastCaches(piece, results + i, n);
    }
}

// Returns whether rounding the double to a float may round the result twice (CLoops::Narrow).
bool mayRoundTwice(const CFastForm& form, double x) {
    float rounded = 0;
    return !form.Loops->Narrow(&x, &rounded, 1);
}

template <class In, class Out>
void convertBlocks(const CFastForm& form, const In* values, Out* results, std::size_t count) {
    constexpr bool AreDoubles = std::is_same_v<In, double> && std::is_same_v<Out, double>;
    constexpr std::size_t Size = AreDoubles ? LongBlockSize : BlockSize;
    const bool isInPlace = static_cast<const void*>(values) == results;
    const bool isStreamed = CanStream && std::is_same_v<Out, double> && !isInPlace &&
                            count >= StreamedBytes / sizeof(Out);
    // With an offset, a short piece before the first cache line takes longer than the second stores.
    const bool isAligned = isStreamed || form.Way != OFFSET;
    double wide[Size];
    [[maybe_unused]] double narrow[AreDoubles ? 1 : Size];
    [[maybe_unused]] In kept[std::is_same_v<In, std::int64_t> ? Size : 1];
    std::size_t n = 0;
    for (std::size_t begin = 0; begin < count; begin += n) {
        n = begin == 0 && isAligned ? countToNextLine(results) : 0;
        n = std::min(n != 0 ? n : Size, count - begin);
        const In* const from = values + begin;
        Out* const to = results + begin;
        [[maybe_unused]] double* doubles = narrow;
        if constexpr (std::is_same_v<Out, double>) {
            doubles = to;
        }

        const double* x = wide;
        bool isDone = false;
        if constexpr (std::is_same_v<In, std::int16_t> || std::is_same_v<In, std::int32_t>) {
            isDone = form.MostWhole >= largestOf<In>();
            if (isDone) {
                divide(form, from, doubles, n);
            }
        }
        // Values that are converted in place are copied before they are overwritten.
        if constexpr (std::is_same_v<In, double>) {
            x = isInPlace ? wide : from;
        }
        if (x == wide && !(isDone && std::is_same_v<Out, double>)) {
            widen(*form.Loops, from, wide, n);
        }
        if constexpr (std::is_same_v<In, std::int64_t>) {
            std::memcpy(kept, from, sizeof kept[0] * n);
        }

        if (!isDone) {
            const auto convert = isStreamed ? toDoublesPastCaches : toDoubles;
            convert(form, x, doubles, n);
        }
        if constexpr (std::is_same_v<Out, float>) {
            if (!form.Loops->Narrow(narrow, to, n)) {
                for (std::size_t i = 0; i < n; ++i) {
                    if (mayRoundTwice(form, narrow[i])) {
                        to[i] = form.convertSlowlyToFloat(x[i]);
                    }
                }
            }
        }
        if constexpr (std::is_same_v<In, std::int64_t>) {
            for (std::size_t i = 0; i < n; ++i) {
                if (isDouble(kept[i])) {
                    continue;
                }
                const CNumber number = CNumber::ofWhole(kept[i]);
                if constexpr (std::is_same_v<Out, double>) {
                    to[i] = doubleOfBits(form.exactly(number, CFormat::ofDouble()).Bits);
                } else {
                    to[i] = floatOfBits(form.exactly(number, CFormat::ofFloat()).Bits);
                }
            }
        }
    }
    if (isStreamed) {
        finishStoring();
    }
}

}  // namespace

void CFastForm::convertAll(const double* values, double* results, std::size_t count) const {
    convertBlocks(*this, values, results, count);
}
void CFastForm::convertAll(const double* values, float* results, std::size_t count) const {
    convertBlocks(*this, values, results, count);
}
void CFastForm::convertAll(const float* values, double* results, std::size_t count) const {
    convertBlocks(*this, values, results, count);
}
void CFastForm::convertAll(const float* values, float* results, std::size_t count) const {
    convertBlocks(*this, values, results, count);
}
void CFastForm::convertAll(const std::int16_t* values, double* results, std::size_t count) const {
    convertBlocks(*this, values, results, count);
}
void CFastForm::convertAll(const std::int16_t* values, float* results, std::size_t count) const {
    convertBlocks(*this, values, results, count);
}
void CFastForm::convertAll(const std::int32_t* values, double* results, std::size_t count) const {
    convertBlocks(*this, values, results, count);
}
void CFastForm::convertAll(const std::int32_t* values, float* results, std::size_t count) const {
    convertBlocks(*this, values, results, count);
}
void CFastForm::convertAll(const std::int64_t* values, double* results, std::size_t count) const {
    convertBlocks(*this, values, results, count);
}
void CFastForm::convertAll(const std::int64_t* values, float* results, std::size_t count) const {
    convertBlocks(*this, values, results, count);
}

}  // namespace mensor::exact
