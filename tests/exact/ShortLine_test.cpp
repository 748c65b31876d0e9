// ShortLine_test.cpp: whole numbers of 128 bits, and conversions with them. The judge is GMP.
#include "mensor_exact/ShortLine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <utility>

#include "exact/WholeLine.h"
#include "mensor_exact/TwoWords.h"

namespace mensor::exact {
namespace {

mpz_class wholeOf(const CTwoWords& number) {
    return (exact::wholeOf(number.High) << 64) + exact::wholeOf(number.Low);
}

std::uint64_t anyWord(std::mt19937_64& random) {
    switch (random() % 4) {
        case 0: return ~std::uint64_t{0} << (random() % 64);
        case 1: return ~std::uint64_t{0} >> (random() % 64);
        default: return random() >> (random() % 64);
    }
}

TEST(TwoWords, MultipliesWithAndWithoutTheCompilersNumbers) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t a = anyWord(random);
        const std::uint64_t b = anyWord(random);
        const mpz_class right = exact::wholeOf(a) * exact::wholeOf(b);
        ASSERT_EQ(wholeOf(product(a, b)), right) << a << " " << b;
        ASSERT_EQ(wholeOf(portable::product(a, b)), right) << a << " " << b;
    }
}

TEST(TwoWords, DividesWithAndWithoutTheProcessorsDivision) {
    std::mt19937_64 random(2);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t divisor = anyWord(random) | 1;
        CTwoWords a = {random() % 3 == 0 ? divisor - 1 : anyWord(random) % divisor,
                       anyWord(random)};
        const mpz_class right = wholeOf(a) / exact::wholeOf(divisor);
        const mpz_class rightRest = wholeOf(a) % exact::wholeOf(divisor);
        std::uint64_t rest = 0;
        ASSERT_EQ(exact::wholeOf(quotient(a, divisor, rest)), right) << right << " " << divisor;
        ASSERT_EQ(exact::wholeOf(rest), rightRest);
        rest = ~rest;
        ASSERT_EQ(exact::wholeOf(portable::quotient(a, divisor, rest)), right)
            << right << " " << divisor;
        ASSERT_EQ(exact::wholeOf(rest), rightRest);
    }
}

TEST(TwoWords, AddsSubtractsComparesAndShifts) {
    std::mt19937_64 random(3);
    const mpz_class end = mpz_class(1) << 128;
    for (int i = 0; i < 20000; ++i) {
        const CTwoWords a = {anyWord(random), anyWord(random)};
        const CTwoWords b = random() % 4 == 0 ? CTwoWords{a.High, anyWord(random)}
                                              : CTwoWords{anyWord(random), anyWord(random)};
        ASSERT_EQ(wholeOf(a + b), (wholeOf(a) + wholeOf(b)) % end);
        ASSERT_EQ(wholeOf(a - b), (end + wholeOf(a) - wholeOf(b)) % end);
        ASSERT_EQ(a < b, wholeOf(a) < wholeOf(b));
        const int count = static_cast<int>(random() % 128);
        ASSERT_EQ(wholeOf(shiftedLeft(a, count)),
                  (wholeOf(a) << static_cast<unsigned>(count)) % end);
        ASSERT_EQ(bitsOf(a),
                  isZero(a) ? 0 : static_cast<int>(mpz_sizeinbase(wholeOf(a).get_mpz_t(), 2)));
    }
    EXPECT_FALSE(CTwoWords() < CTwoWords());
    EXPECT_TRUE(isZero({0, 0}));
    EXPECT_FALSE(isZero({1, 0}));
    EXPECT_FALSE(isZero({0, 1}));
    EXPECT_EQ(bitsOf(CTwoWords()), 0);
}

TEST(ShortLine, RoundsOnceToDoublesAndFloats) {
    std::mt19937_64 random(4);
    int known = 0;
    for (int i = 0; i < 60000; ++i) {
        CShortLine line;
        line.A = random() >> (random() % 63) | 1;
        line.D = random() >> (random() % 63) | 1;
        line.B = random() % 2 == 0 ? 0 : random() >> (random() % 63);
        line.Twos = static_cast<int>(random() % 200) - 100;
        line.IsMinusB = random() % 2 == 0;
        CNumber x = {random() % 2 == 0, random() >> (random() % 64),
                     static_cast<int>(random() % 80) - 60};
        if (random() % 2 == 0) {
            // A result that is a tie or near one, where the numbers are not too long.
            x.Mantissa = line.D >> (random() % 2);
            x.Mantissa *= (random() >> (random() % 64)) % (~std::uint64_t{0} / line.D / 2 + 1);
        }
        if (random() % 4 == 0) {
            x.Twos = static_cast<int>(random() % 2100) - 1074;  // subnormal and infinite results
            line.B = random() % 8 == 0 ? line.B : 0;
        }
        const WholeLine judge(line);
        for (const CFormat& format : {CFormat::ofDouble(), CFormat::ofFloat()}) {
            if (const auto result = line.convert(x, format)) {
                const CNearest right = judge.convert(x, format);
                ASSERT_EQ(result->Bits, right.Bits)
                    << line.A << " " << line.B << " " << line.D << " 2^" << line.Twos << " of "
                    << x.Mantissa << " 2^" << x.Twos << ", " << format.MantissaBits;
                const std::uint64_t infinity = ((std::uint64_t{1} << format.ExponentBits) - 1)
                                               << (format.MantissaBits - 1);
                ASSERT_EQ(result->IsExact, right.IsExact && (result->Bits & infinity) != infinity);
                ++known;
            } else {
                ASSERT_NE(line.B, 0U);
            }
        }
    }
    EXPECT_GT(known, 90000);
}

TEST(ShortLine, TakesSumsOf127BitsAndNoLongerOnes) {
    const CFormat format = CFormat::ofDouble();
    const CShortLine line = {1, 3, 1, 0, false};
    // The offset of 2 bits is moved by up to 125 places, and so is x.
    EXPECT_TRUE(line.convert({false, 1, -125}, format).has_value());
    EXPECT_FALSE(line.convert({false, 1, -126}, format).has_value());
    EXPECT_TRUE(line.convert({false, 3, 125}, format).has_value());
    EXPECT_FALSE(line.convert({false, 3, 126}, format).has_value());
    // Without an offset there is no limit.
    EXPECT_TRUE((CShortLine{3, 0, 1, 0, false}.convert({false, 3, 900}, format).has_value()));
}

// Sums of 128 bits, whose last bit is dropped. The results in the middle are ties, of which one is rounded down
// and the other up.
TEST(ShortLine, RoundsSumsOf128Bits) {
    const CFormat format = CFormat::ofDouble();
    const std::pair<std::uint64_t, std::uint64_t> ties[] = {{2051, 2048}, {2049, 6144}};
    for (const auto& [high, middle] : ties) {
        const CShortLine line = {(high << 52) + 1, ~std::uint64_t{0}, (std::uint64_t{1} << 63) + 1,
                                 0, false};
        for (const std::uint64_t x : {middle - 1, middle, middle + 1}) {
            const CNumber number = {false, x, -63};
            const auto result = line.convert(number, format);
            ASSERT_TRUE(result.has_value());
            EXPECT_EQ(result->Bits, WholeLine(line).convert(number, format).Bits) << x;
        }
    }
}

TEST(ShortLine, HasAPositiveZeroWithAnOffsetAndTheSignOfXWithout) {
    const CFormat format = CFormat::ofDouble();
    EXPECT_EQ((CShortLine{1, 32, 1, 0, true}.convert({false, 32, 0}, format)->Bits),
              bitsOfDouble(0.0));
    EXPECT_EQ((CShortLine{1, 32, 1, 0, false}.convert({true, 32, 0}, format)->Bits),
              bitsOfDouble(0.0));
    EXPECT_EQ((CShortLine{1, 0, 1, 0, false}.convert({true, 0, 0}, format)->Bits),
              bitsOfDouble(-0.0));
    EXPECT_EQ((CShortLine{1, 0, 1, 0, false}.convert({false, 0, 0}, format)->Bits),
              bitsOfDouble(0.0));
    EXPECT_EQ((CShortLine{9, 160, 5, 0, false}.convert({true, 0, -1074}, format)->Bits),
              bitsOfDouble(32.0));
    EXPECT_EQ((CShortLine{9, 160, 5, 0, false}.convert({true, 0, 900}, format)->Bits),
              bitsOfDouble(32.0));
}

TEST(Nearest, TakesDoublesAndWholeNumbersApart) {
    const CNumber one = CNumber::ofDouble(-1.0);
    EXPECT_TRUE(one.IsNegative);
    EXPECT_EQ(std::ldexp(static_cast<double>(one.Mantissa), one.Twos), 1.0);
    const CNumber least = CNumber::ofDouble(std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(least.Mantissa, 1U);
    EXPECT_EQ(least.Twos, -1074);
    const CNumber lowest = CNumber::ofWhole(std::numeric_limits<std::int64_t>::min());
    EXPECT_TRUE(lowest.IsNegative);
    EXPECT_EQ(lowest.Mantissa, std::uint64_t{1} << 63);
    EXPECT_EQ(CNumber::ofWhole(7).Mantissa, 7U);
    EXPECT_FALSE(CNumber::ofWhole(7).IsNegative);
}

TEST(Nearest, LooksAtEveryBitThatIsDropped) {
    const CFormat format = CFormat::ofDouble();
    const std::uint64_t one = std::uint64_t{1} << 63;
    const std::uint64_t half = 0x400;
    const auto bitsOf = [&](std::uint64_t mantissa, bool isWhole) {
        return nearest(format, false, mantissa, isWhole, -63).Bits;
    };
    EXPECT_EQ(bitsOf(one | half, true), bitsOfDouble(1));
    EXPECT_EQ(bitsOf(one | half, false), bitsOfDouble(1 + 0x1p-52));
    for (std::uint64_t bit = 1; bit < half; bit *= 2) {
        EXPECT_EQ(bitsOf(one | half | bit, true), bitsOfDouble(1 + 0x1p-52)) << bit;
        EXPECT_EQ(bitsOf(one | (half - bit), true), bitsOfDouble(1)) << bit;
        EXPECT_FALSE(nearest(format, false, one | bit, true, -63).IsExact) << bit;
    }
}

TEST(Nearest, GivesInfinityForAnyLargeNumber) {
    const CFormat format = CFormat::ofDouble();
    const std::uint64_t mantissa = std::uint64_t{1} << 63;
    const std::uint64_t infinity = bitsOfDouble(std::numeric_limits<double>::infinity());
    EXPECT_EQ(nearest(format, false, mantissa, true, 960).Bits, bitsOfDouble(0x1p1023));
    for (const std::int64_t twos : {961, 3010, 3011, 3012, 100000}) {
        EXPECT_EQ(nearest(format, false, mantissa, true, twos).Bits, infinity) << twos;
    }
}

}  // namespace
}  // namespace mensor::exact
