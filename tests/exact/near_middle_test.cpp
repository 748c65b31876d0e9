// near_middle_test.cpp: if near_middle.h says that a factor needs no test, all its products are rounded
// correctly. It tries all factors of 20 bits with all numbers of 8 bits, and small fractions with all
// numbers of 12 bits.
// On a slow platform it tries one of 17 factors.
#include "mensor_exact/near_middle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "mensor_exact/FastForm.h"
#include "support/thorough.h"

namespace mensor::exact {
namespace {

int bitsOfWhole(std::uint64_t number) { return bitsOf(number); }

// The number of `bits` bits nearest to a whole number, ties to even.
std::uint64_t nearestOf(std::uint64_t number, int bits) {
    const int drop = bitsOfWhole(number) - bits;
    if (drop <= 0) {
        return number;
    }
    const std::uint64_t half = std::uint64_t{1} << (drop - 1);
    const std::uint64_t kept = number >> drop;
    const std::uint64_t dropped = number - (kept << drop);
    return (kept + (dropped > half || (dropped == half && kept % 2 != 0) ? 1 : 0)) << drop;
}

// The highest `bits` bits of a whole number.
std::uint64_t highest(std::uint64_t number, int bits) {
    const int drop = bitsOfWhole(number) - bits;
    return drop <= 0 ? number : number >> drop << drop;
}

// Head·x + tail·x with the roundings of the fast conversion.
std::uint64_t sumOfProducts(std::uint64_t head, std::uint64_t tail, std::uint64_t x, int bits) {
    return nearestOf(head * x + nearestOf(tail * x, bits), bits);
}

TEST(NearMiddle, ProvesAFactorOnlyIfAllItsProductsAreRight) {
    constexpr int Bits = 8;
    constexpr int Places = 19;  // of the factor, after the binary point
    int proved = 0, tested = 0, wrong = 0;
    for (std::uint64_t factor = std::uint64_t{1} << Places; factor < std::uint64_t{2} << Places;
         factor += test::casesOf(1U, 17U)) {
        const std::uint64_t head = highest(factor, Bits);
        const std::uint64_t tail = highest(factor - head, Bits);
        const auto compute = [&](std::uint64_t x) {
            return sumOfProducts(head, tail, x, Bits) >> Places;
        };
        bool isRight = true;
        for (std::uint64_t x = std::uint64_t{1} << (Bits - 1); x < std::uint64_t{1} << Bits; ++x) {
            isRight &= compute(x) << Places == nearestOf(factor * x, Bits);
        }
        const std::uint64_t words[3] = {factor << (63 - Places), 0, 0};
        const bool isProved = isNeverNearMiddle(
            Bits, words,
            [&](std::uint64_t n, std::uint64_t product) { return compute(n) == product; });
        ASSERT_TRUE(isRight || !isProved) << factor;
        proved += isProved ? 1 : 0;
        tested += !isProved && isRight ? 1 : 0;
        wrong += isRight ? 0 : 1;
    }
    // Some factors have a wrong product. Of the others, only the few with ties are not proved.
    EXPECT_GT(wrong, 0);
    EXPECT_GT(proved, 10 * tested);
}

// Here the sums have the largest error that is allowed.
TEST(NearMiddle, FindsEveryProductThatTheLargestErrorCouldChange) {
    constexpr int Bits = 8;
    constexpr int Places = 19;
    for (std::uint64_t factor = std::uint64_t{1} << Places; factor < std::uint64_t{2} << Places;
         factor += test::casesOf(3U, 51U)) {
        bool isRight = true;
        const auto compute = [&](std::uint64_t x) {
            const std::uint64_t product = factor * x;
            const std::uint64_t error = (std::uint64_t{1} << Places >> (Bits - 3)) - 1;
            const std::uint64_t moved = x % 2 == 0 ? product + error : product - error;
            return nearestOf(moved, Bits) >> Places;
        };
        for (std::uint64_t x = std::uint64_t{1} << (Bits - 1); x < std::uint64_t{1} << Bits; ++x) {
            isRight &= compute(x) << Places == nearestOf(factor * x, Bits);
        }
        const std::uint64_t words[3] = {factor << (63 - Places), 0, 0};
        const bool isProved = isNeverNearMiddle(
            Bits, words,
            [&](std::uint64_t n, std::uint64_t product) { return compute(n) == product; });
        ASSERT_TRUE(isRight || !isProved) << factor;
    }
}

TEST(NearMiddle, ProvesNoFactorWithAProductTooCloseToTheMiddle) {
    constexpr int Bits = 8;
    const auto isProved = [](const std::uint64_t(&twice)[3], std::uint64_t rounded) {
        return isNeverNearMiddle(Bits, twice, [&](std::uint64_t n, std::uint64_t product) {
            return n != 129 || product == rounded;
        });
    };
    // Twice the factor is (259 ± 2^-61)/129, and then (259 ± 2^-40)/129. The product with 129 is next
    // to 129.5. Only 2^-40 is far enough.
    EXPECT_FALSE(isProved({0x807F01FC07F01FC0, 0x82FA0BE82FA0BE82, 0xFA0BE82FA0BE82FA}, 130));
    EXPECT_FALSE(isProved({0x807F01FC07F01FC0, 0x7B09EC27B09EC27B, 0x09EC27B09EC27B09}, 129));
    EXPECT_TRUE(isProved({0x807F01FC07F09EC2, 0x7B09EC27B09EC27B, 0x09EC27B09EC27B09}, 130));
    EXPECT_TRUE(isProved({0x807F01FC07EFA0BE, 0x82FA0BE82FA0BE82, 0xFA0BE82FA0BE82FA}, 129));
}

TEST(NearMiddle, VisitsAllNumbersWithMultiplesNearIntegers) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 3000; ++i) {
        CTwoWords alpha = {random(), random()};
        if (i % 3 == 0) {
            // Alpha is a fraction, so its multiples repeat.
            std::uint64_t rest = 0;
            const std::uint64_t divisor = random() % 300 + 2;
            alpha = {quotient({random() % divisor, 0}, divisor, rest), 0};
        }
        const CTwoWords reach = {random() >> (random() % 20 + 4), random()};
        const std::uint64_t end = random() % 200 + 2;
        std::vector<std::uint64_t> wanted, found;
        CTwoWords place = reach;
        for (std::uint64_t n = 1; n < end; ++n) {
            place = place + alpha;
            if (place < reach + reach) {
                wanted.push_back(n);
            }
        }
        const bool isDone = visitNearWholes(alpha, reach, end, [&](std::uint64_t n) {
            found.push_back(n);
            return true;
        });
        ASSERT_TRUE(isDone);
        ASSERT_EQ(found, wanted) << alpha.High << " " << reach.High << " " << end;
    }
}

TEST(NearMiddle, GivesUpIfThereAreTooManyNumbers) {
    int visited = 0;
    const auto visit = [&](std::uint64_t) {
        ++visited;
        return true;
    };
    const CTwoWords half = {std::uint64_t{1} << 63, 0};
    const CTwoWords small = {1, 0};
    EXPECT_FALSE(visitNearWholes(half, small, 602, visit));  // 300 even numbers
    EXPECT_EQ(visited, 300);
    EXPECT_TRUE(visitNearWholes(half, small, 600, visit));
    // Here the function gives up, because the sums of steps take too long.
    EXPECT_FALSE(visitNearWholes({1 << 20, 0}, {1, 0}, std::uint64_t{1} << 53, visit));
    visited = 0;
    EXPECT_FALSE(visitNearWholes(half, small, 100, [&](std::uint64_t) { return ++visited < 3; }));
    EXPECT_EQ(visited, 3);
}

std::uint64_t oddPartOf(std::uint64_t number) { return number >> __builtin_ctzll(number); }

// Tries all fractions with small odd parts. A product is a tie only if hasTies() is true. Without ties
// one sum is right. With ties the even one of two sums is right.
TEST(NearMiddle, SmallFractionsTimesNumbersOf12BitsAreRight) {
    constexpr int Bits = 12;
    ASSERT_EQ(mostOddPart(Bits), 16U);
    int withTies = 0, without = 0;
    for (std::uint64_t p = 1; p <= 15; p += 2) {
        for (std::uint64_t q = 1; q <= 15; q += 2) {
            if (std::gcd(p, q) != 1) {
                continue;
            }
            // The factor from 1 to 2 with these odd parts, and its leading bits.
            std::uint64_t numerator = p, denominator = q;
            while (numerator < denominator) {
                numerator *= 2;
            }
            while (numerator >= 2 * denominator) {
                denominator *= 2;
            }
            constexpr int Places = 40;
            const std::uint64_t factor = (numerator << Places) / denominator;
            const bool isWhole = factor * denominator == numerator << Places;
            const std::uint64_t head = highest(factor, Bits);
            const std::uint64_t rest = factor - head;
            const std::uint64_t slack = std::uint64_t{1} << (Places - (2 * Bits - 6));
            const std::uint64_t low = highest(rest > slack ? rest - slack : 0, Bits);
            const std::uint64_t high =
                highest(rest + slack, Bits) == rest + slack && isWhole
                    ? rest + slack
                    : highest(rest + slack, Bits) +
                          (std::uint64_t{1} << (bitsOfWhole(rest + slack) - Bits));
            bool ties = false;
            for (std::uint64_t x = std::uint64_t{1} << (Bits - 1); x < std::uint64_t{1} << Bits;
                 ++x) {
                // The number nearest to x·numerator/denominator, and whether that product is a tie.
                const std::uint64_t product = x * numerator;
                const int place = product >= denominator << Bits ? 1 : 0;
                const std::uint64_t unit = denominator << place;
                std::uint64_t right = product / unit;
                const std::uint64_t twice = product % unit * 2;
                ties = ties || twice == unit;
                right += twice > unit || (twice == unit && right % 2 != 0) ? 1U : 0U;
                right <<= place;

                const auto sum = [&](std::uint64_t tail) {
                    return sumOfProducts(head, tail, x, Bits) >> Places;
                };
                const std::uint64_t one = sum(low);
                const std::uint64_t two = sum(high);
                ASSERT_EQ((one >> place) % 2 == 0 ? one : two, right)
                    << p << "/" << q << " of " << x;
                if (!hasTies(Bits, p, q)) {
                    ASSERT_EQ(sum(highest(rest, Bits)), right) << p << "/" << q << " of " << x;
                }
            }
            ASSERT_EQ(ties, hasTies(Bits, p, q)) << p << "/" << q;
            ASSERT_EQ(oddPartOf(numerator), p);
            (ties ? withTies : without) += 1;
        }
    }
    EXPECT_GT(withTies, 10);
    EXPECT_GT(without, 10);
}

// Tries all fractions with ties and all numbers of 11 to 13 bits.
TEST(NearMiddle, OneSumIsRightForTiesIfItsTailIsExactEnough) {
    int right = 0, others = 0;
    for (int bits = 11; bits <= 13; ++bits) {
        const std::uint64_t most = mostOddPart(bits);
        for (std::uint64_t p = 1; p <= most; p += 2) {
            for (std::uint64_t q = 1; q <= most; q += 2) {
                if (std::gcd(p, q) != 1 || !hasTies(bits, p, q) || q == 1) {
                    continue;
                }
                if (!isRightForTies(bits, p, q)) {
                    ++others;
                    continue;
                }
                ++right;
                // The factor from 1 to 2 with these odd parts.
                std::uint64_t denominator = q;
                while (p >= 2 * denominator) {
                    denominator *= 2;
                }
                constexpr int Places = 45;
                const std::uint64_t factor = (p << Places) / denominator;
                const std::uint64_t head = highest(factor, bits);
                const std::uint64_t tail = nearestOf(factor - head, bits);
                for (std::uint64_t x = std::uint64_t{1} << (bits - 1); x < std::uint64_t{1} << bits;
                     ++x) {
                    const std::uint64_t place = x * p >= denominator << bits ? 2 : 1;
                    const std::uint64_t unit = denominator * place;
                    std::uint64_t expected = x * p / unit;
                    const std::uint64_t twice = x * p % unit * 2;
                    expected += twice > unit || (twice == unit && expected % 2 != 0) ? 1U : 0U;
                    ASSERT_EQ(sumOfProducts(head, tail, x, bits) >> Places, expected * place)
                        << p << "/" << q << " of " << x;
                }
            }
        }
    }
    EXPECT_GT(right, others);
    EXPECT_GT(others, 10);
}

TEST(NearMiddle, FindsTheEverydayFactorsWhoseTiesAreRight) {
    EXPECT_TRUE(isRightForTies(53, 9, 5));           // °C to °F, m/s to km/h
    EXPECT_TRUE(isRightForTies(53, 625, 381));       // m to ft
    EXPECT_FALSE(isRightForTies(53, 625, 127));      // m to in
    EXPECT_FALSE(isRightForTies(53, 78125, 10467));  // kJ to cal
}

// Compares with a search for a tie. The odd parts are greater than mostOddPart() allows, since the search is exact for
// them, too, and more of these fractions have ties.
TEST(NearMiddle, FindsTheFractionsWithTies) {
    constexpr int Bits = 10;
    constexpr std::uint64_t End = 1 << Bits;
    int withTies = 0;
    for (std::uint64_t p = 1; p < End / 4; p += 2) {
        for (std::uint64_t q = 1; q < End / 4; q += 2) {
            // A tie is an odd p·k of 11 bits. The number is q·k, with at most 10 bits.
            bool hasTie = false;
            for (std::uint64_t k = 1; p * k < 2 * End && q * k < End; k += 2) {
                hasTie = hasTie || p * k >= End;
            }
            if (std::gcd(p, q) == 1) {
                ASSERT_EQ(hasTies(Bits, p, q), hasTie) << p << "/" << q;
                withTies += hasTie ? 1 : 0;
            }
        }
    }
    EXPECT_GT(withTies, 1000);
}

TEST(NearMiddle, FindsTheEverydayFactorsWithTies) {
    EXPECT_TRUE(hasTies(53, 9, 5));
    EXPECT_TRUE(hasTies(53, 3, 1));
    EXPECT_FALSE(hasTies(53, 5, 9));
    EXPECT_FALSE(hasTies(53, 1, 3));
    EXPECT_FALSE(hasTies(53, 1, 1));
    EXPECT_FALSE(hasTies(53, 127, 625));
    EXPECT_EQ(mostOddPart(53), std::uint64_t{1} << 45);
}

}  // namespace
}  // namespace mensor::exact
