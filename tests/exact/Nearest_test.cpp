// Nearest_test.cpp: doubles are taken apart, and numbers are rounded to the nearest double.
#include "mensor_exact/Nearest.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace mensor::exact {
namespace {

TEST(Nearest, SplitsDoublesAndWholeNumbersExactly) {
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

TEST(Nearest, RoundsByEveryDroppedBit) {
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
