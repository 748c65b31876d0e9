// mensor_math_test.cpp: the bits of a float, and Euclid's algorithm with its signs.
#include "mensor/mensor_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace mensor {
namespace {

constexpr int Smallest = std::numeric_limits<int>::min();
constexpr int Largest = std::numeric_limits<int>::max();

float floatOf(std::uint32_t bits) {
    float f = 0;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

int intOf(std::uint32_t bits) {
    std::int32_t i = 0;
    std::memcpy(&i, &bits, sizeof i);
    return i;
}

TEST(FloatToIntBits, AreTheIeee754BitsAsASignedInteger) {
    EXPECT_EQ(floatToIntBits(1.0f), 0x3F800000);
    EXPECT_EQ(floatToIntBits(1.0f), 1065353216);
    EXPECT_EQ(floatToIntBits(-2.0f), intOf(0xC0000000));
    EXPECT_EQ(floatToIntBits(1000.0f), 0x447A0000);
    EXPECT_EQ(floatToIntBits(273.15f), 0x43889333);
    EXPECT_EQ(floatToIntBits(std::numeric_limits<float>::infinity()), 0x7F800000);
    EXPECT_EQ(floatToIntBits(-std::numeric_limits<float>::infinity()), intOf(0xFF800000));
    EXPECT_EQ(floatToIntBits(std::numeric_limits<float>::max()), 0x7F7FFFFF);
    EXPECT_EQ(floatToIntBits(std::numeric_limits<float>::denorm_min()), 1);
}

TEST(FloatToIntBits, DifferForTheTwoZeros) {
    EXPECT_EQ(floatToIntBits(0.0f), 0);
    EXPECT_EQ(floatToIntBits(-0.0f), Smallest);
}

TEST(FloatToIntBits, AreTheSameForAllNans) {
    for (const std::uint32_t bits : {0x7FC00000U, 0xFFC00000U, 0x7FC00001U, 0x7FFFFFFFU,
                                     0xFFFFFFFFU, 0x7F800001U, 0xFF800001U, 0x7FA00000U}) {
        ASSERT_TRUE(std::isnan(floatOf(bits)));
        EXPECT_EQ(floatToIntBits(floatOf(bits)), 0x7FC00000) << std::hex << bits;
    }
    EXPECT_EQ(floatToIntBits(std::nanf("")), 2143289344);
}

TEST(FloatToIntBits, AreThePatternOfEveryNumber) {
    constexpr std::uint32_t Step =
        65521;  // a prime, so that all exponents and many mantissas occur
    for (std::uint64_t bits = 0; bits <= 0xFFFFFFFFU; bits += Step) {
        const float f = floatOf(static_cast<std::uint32_t>(bits));
        if (!std::isnan(f)) {
            ASSERT_EQ(floatToIntBits(f), intOf(static_cast<std::uint32_t>(bits)))
                << std::hex << bits;
        }
    }
}

TEST(GreatestCommonDivisor, HasTheSignOfTheLastDivisorThatIsNotZero) {
    const struct {
        int A, B, Expected;
    } table[] = {
        {12, 18, 6}, {18, 12, 6}, {-4, 6, 2},  {4, -6, -2},  {-4, -6, -2},    {6, -4, 2},
        {-6, 4, -2}, {7, 3, 1},   {-7, 3, -1}, {7, -3, 1},   {0, 5, 5},       {5, 0, 5},
        {0, -5, -5}, {-6, 0, -6}, {0, 0, 0},   {6, 6, 6},    {6, -6, -6},     {-6, 6, 6},
        {1, 1, 1},   {1, 12, 1},  {12, 1, 1},  {12, -1, -1}, {1071, 462, 21},
    };
    for (const auto& row : table) {
        EXPECT_EQ(greatestCommonDivisor(row.A, row.B), row.Expected) << row.A << ", " << row.B;
    }
}

TEST(GreatestCommonDivisor, IsTheLargestNumberThatDividesBoth) {
    for (int a = -40; a <= 40; ++a) {
        for (int b = -40; b <= 40; ++b) {
            const int divisor = std::abs(greatestCommonDivisor(a, b));
            if (a == 0 && b == 0) {
                continue;  // every number divides both
            }
            int largest = 1;
            for (int candidate = 2; candidate <= 40; ++candidate) {
                if (a % candidate == 0 && b % candidate == 0) {
                    largest = candidate;
                }
            }
            ASSERT_EQ(divisor, largest) << a << ", " << b;
        }
    }
}

TEST(GreatestCommonDivisor, WorksAtTheLimitsOfInt) {
    EXPECT_EQ(greatestCommonDivisor(Largest, Largest), Largest);
    EXPECT_EQ(greatestCommonDivisor(Largest, Smallest), -1);
    EXPECT_EQ(greatestCommonDivisor(Smallest, 6), -2);
    EXPECT_EQ(greatestCommonDivisor(6, Smallest), -2);
    EXPECT_EQ(greatestCommonDivisor(Smallest, 0), Smallest);
    EXPECT_EQ(greatestCommonDivisor(0, Smallest), Smallest);
    EXPECT_EQ(greatestCommonDivisor(Smallest, Smallest), Smallest);
    EXPECT_EQ(greatestCommonDivisor(Smallest, 1), 1);
}

// The quotient does not fit an int, but the remainder is 0.
TEST(GreatestCommonDivisor, TheSmallestIntAndMinusOneGiveMinusOne) {
    EXPECT_EQ(greatestCommonDivisor(Smallest, -1), -1);
    EXPECT_EQ(greatestCommonDivisor(-1, Smallest), -1);
}

}  // namespace
}  // namespace mensor
