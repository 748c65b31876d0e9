// ShortLine_test.cpp: conversions with whole numbers of 128 bits. GMP computes the expected results.
#include "mensor_exact/ShortLine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <utility>

#include "exact/WholeLine.h"

namespace mensor::exact {
namespace {

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
            // The result is a tie or close to one, if the numbers are not too long.
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

TEST(ShortLine, AcceptsTermsOfAtMost127Bits) {
    const CFormat format = CFormat::ofDouble();
    const CShortLine line = {1, 3, 1, 0, false};
    // Either x or the offset of 2 bits is shifted, by at most 125 places.
    EXPECT_TRUE(line.convert({false, 1, -125}, format).has_value());
    EXPECT_FALSE(line.convert({false, 1, -126}, format).has_value());
    EXPECT_TRUE(line.convert({false, 3, 125}, format).has_value());
    EXPECT_FALSE(line.convert({false, 3, 126}, format).has_value());
    // Without an offset there is no limit.
    EXPECT_TRUE((CShortLine{3, 0, 1, 0, false}.convert({false, 3, 900}, format).has_value()));
}

// A sum of 128 bits loses its last bit before the division. The values in the middle give ties. One of
// them is rounded down and the other up.
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

TEST(ShortLine, ZeroIsPositiveWithAnOffsetAndHasTheSignOfXWithout) {
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

}  // namespace
}  // namespace mensor::exact
