#include "mensor_exact/FastForm.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

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

[[gnu::cold]] CFastForm::CFastForm(const CLeading& factor, const CLeading& center, bool isNegative,
                                   const CShortLine* line, const CSlowWay* slowWay,
                                   const CLoops& loops)
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

// Returns how many numbers of `size` bytes there are up to the next cache line. A vector across two lines would
// take two stores.
std::size_t countToNextLine(const void* numbers, std::size_t size) {
    constexpr std::size_t Line = 64;
    return (Line - reinterpret_cast<std::uintptr_t>(numbers) % Line) % Line / size;
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

// The arrays of a conversion. One of Doubles and Floats is null.
struct CArrays {
    const void* Values;
    double* Doubles;
    float* Floats;
    std::size_t Count;
    eNumbers Kind;  // of the values
};

void oneByOne(const CFastForm& form, const double* values, double* results, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = form.One(form, values[i]);
    }
}

// Converts a block again in small pieces, and value by value where a piece has a wrong result.
[[gnu::cold]] void toDoublesInPieces(const CFastForm& form, const double* values, double* results,
                                     std::size_t count) {
    constexpr std::size_t Piece = 32;
    for (std::size_t i = 0; i < count; i += Piece) {
        const std::size_t n = std::min(Piece, count - i);
        if (count <= Piece || !form.Many(form, values + i, results + i, n)) {
            oneByOne(form, values + i, results + i, n);
        }
    }
}

// Converts a block.
void toDoubles(const CFastForm& form, const double* values, double* results, std::size_t count) {
    if (!form.Many(form, values, results, count)) {
        toDoublesInPieces(form, values, results, count);
    }
}

// Converts a block and writes its results past the caches. `results` begins at a cache line, or the block ends
// at the first one.
void toDoublesPastCaches(const CFastForm& form, const double* values, double* results,
                         std::size_t count) {
    if (count % CLoops::Line != 0) {
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

// Converts arrays in blocks.
class CBlocks {
public:
    CBlocks(const CFastForm& form, const CArrays& arrays)
        : m_Form(form),
          m_Arrays(arrays),
          m_Width(Widths[arrays.Kind]),
          m_IsInPlace(arrays.Values == results()),
          m_IsStreamed(CanStream && arrays.Doubles != nullptr && !m_IsInPlace &&
                       arrays.Count >= StreamedBytes / sizeof(double)),
          m_Divides(form.MostWhole >= Largest[arrays.Kind]) {}

    void convert() {
        const std::size_t size = blockSize();
        std::size_t n = 0;
        for (std::size_t begin = 0; begin < m_Arrays.Count; begin += n) {
            n = begin == 0 ? countToAlignment() : 0;
            n = std::min(n != 0 ? n : size, m_Arrays.Count - begin);
            convertBlock(begin, n);
        }
        if (m_IsStreamed) {
            finishStoring();
        }
    }

private:
    static constexpr std::size_t Widths[] = {2, 4, 8, 4, 8};
    static constexpr double Largest[] = {0x1p15, 0x1p31, HUGE_VAL, HUGE_VAL, HUGE_VAL};

    const void* results() const {
        return m_Arrays.Floats != nullptr ? static_cast<const void*>(m_Arrays.Floats)
                                          : m_Arrays.Doubles;
    }

    std::size_t blockSize() const {
        return m_Arrays.Kind == DOUBLES && m_Arrays.Doubles != nullptr ? LongBlockSize : BlockSize;
    }

    // With an offset, a short block before the first cache line takes longer than the second stores.
    std::size_t countToAlignment() const {
        const std::size_t size = m_Arrays.Floats != nullptr ? sizeof(float) : sizeof(double);
        return m_IsStreamed || m_Form.Way != OFFSET ? countToNextLine(results(), size) : 0;
    }

    void convertBlock(std::size_t begin, std::size_t n) {
        const void* const from =
            static_cast<const unsigned char*>(m_Arrays.Values) + begin * m_Width;
        double* const doubles = m_Arrays.Doubles != nullptr ? m_Arrays.Doubles + begin : nullptr;
        double* const to = doubles == nullptr ? m_Results : doubles;
        const double* x = nullptr;
        if (m_Divides) {
            m_Form.Loops->Divide[m_Arrays.Kind](m_Form, from, to, n);
        }
        if (!m_Divides || doubles == nullptr) {
            x = widened(from, n);
        }
        if (!m_Divides) {
            const auto convert = m_IsStreamed ? toDoublesPastCaches : toDoubles;
            convert(m_Form, x, to, n);
        }
        if (doubles == nullptr) {
            narrow(x, m_Arrays.Floats + begin, n);
        }
        if (m_Arrays.Kind == WHOLE64) {
            convertLarge(static_cast<const std::int64_t*>(from), begin, n);
        }
    }

    // Returns the values as doubles. If they are converted in place, returns a copy, because the results overwrite
    // them.
    const double* widened(const void* from, std::size_t n) {
        if (m_Arrays.Kind != DOUBLES) {
            m_Form.Loops->Widen[m_Arrays.Kind](from, m_Values, n);
            return m_Values;
        }
        if (m_IsInPlace) {  // they are copied before they are overwritten
            std::memcpy(m_Values, from, n * sizeof *m_Values);
            return m_Values;
        }
        return static_cast<const double*>(from);
    }

    // Rounds the results to floats. `x` are the values.
    void narrow(const double* x, float* floats, std::size_t n) {
        if (!m_Form.Loops->Narrow(m_Results, floats, n)) {
            roundOnce(x, floats, n);
        }
    }

    // Converts again, with one rounding, the values whose float may be rounded twice.
    [[gnu::cold]] void roundOnce(const double* x, float* floats, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            if (mayRoundTwice(m_Form, m_Results[i])) {
                floats[i] = m_Form.convertSlowlyToFloat(x[i]);
            }
        }
    }

    // Converts again the whole numbers that no double can hold.
    void convertLarge(const std::int64_t* values, std::size_t begin, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            if (isDouble(values[i])) {
                continue;
            }
            const CNumber number = CNumber::ofWhole(values[i]);
            if (m_Arrays.Doubles != nullptr) {
                m_Arrays.Doubles[begin + i] =
                    doubleOfBits(m_Form.exactly(number, CFormat::ofDouble()).Bits);
            } else {
                m_Arrays.Floats[begin + i] =
                    floatOfBits(m_Form.exactly(number, CFormat::ofFloat()).Bits);
            }
        }
    }

    const CFastForm& m_Form;
    const CArrays& m_Arrays;
    const std::size_t m_Width;
    const bool m_IsInPlace;
    const bool m_IsStreamed;
    const bool m_Divides;
    alignas(64) double m_Values[LongBlockSize];
    alignas(64) double m_Results[BlockSize];
};

void convertBlocks(const CFastForm& form, const CArrays& arrays) {
    CBlocks(form, arrays).convert();
}

}  // namespace

void CFastForm::convertAll(const double* values, double* results, std::size_t count) const {
    convertBlocks(*this, {values, results, nullptr, count, DOUBLES});
}
void CFastForm::convertAll(const double* values, float* results, std::size_t count) const {
    convertBlocks(*this, {values, nullptr, results, count, DOUBLES});
}
void CFastForm::convertAll(const float* values, double* results, std::size_t count) const {
    convertBlocks(*this, {values, results, nullptr, count, FLOATS});
}
void CFastForm::convertAll(const float* values, float* results, std::size_t count) const {
    convertBlocks(*this, {values, nullptr, results, count, FLOATS});
}
void CFastForm::convertAll(const std::int16_t* values, double* results, std::size_t count) const {
    convertBlocks(*this, {values, results, nullptr, count, WHOLE16});
}
void CFastForm::convertAll(const std::int16_t* values, float* results, std::size_t count) const {
    convertBlocks(*this, {values, nullptr, results, count, WHOLE16});
}
void CFastForm::convertAll(const std::int32_t* values, double* results, std::size_t count) const {
    convertBlocks(*this, {values, results, nullptr, count, WHOLE32});
}
void CFastForm::convertAll(const std::int32_t* values, float* results, std::size_t count) const {
    convertBlocks(*this, {values, nullptr, results, count, WHOLE32});
}
void CFastForm::convertAll(const std::int64_t* values, double* results, std::size_t count) const {
    convertBlocks(*this, {values, results, nullptr, count, WHOLE64});
}
void CFastForm::convertAll(const std::int64_t* values, float* results, std::size_t count) const {
    convertBlocks(*this, {values, nullptr, results, count, WHOLE64});
}

}  // namespace mensor::exact
