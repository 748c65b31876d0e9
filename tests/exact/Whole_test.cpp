// Whole_test.cpp: whole numbers of any size give the results of GMP. If the test is to be thorough, it
// tries many more numbers (support/thorough.h).
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gmpxx.h>
#include <gtest/gtest.h>

#include "mensor_exact/Whole.h"
#include "support/thorough.h"

namespace {

using mensor::exact::CDivision;
using mensor::exact::CWhole;

mpz_class judged(const CWhole& number) { return mpz_class(number.toString()); }

// A number, and the same number of GMP.
struct CPair {
    CWhole Ours;
    mpz_class Theirs;
};

CPair pairOf(const mpz_class& number) {
    const CWhole size = CWhole::ofDigits(mpz_class(abs(number)).get_str());
    return {number < 0 ? -size : size, number};
}

// Makes numbers of up to 45 words, and the numbers next to them. A word is random, all zeros, all ones
// or a single bit. More than 36 words need allocated memory.
class CNumbers {
public:
    mpz_class next() {
        const std::size_t words = m_Random() % 4 == 0 ? 30 + m_Random() % 16 : m_Random() % 6;
        mpz_class result;
        for (std::size_t i = 0; i < words; ++i) {
            const unsigned kind = m_Random() % 4;
            for (int half = 0; half < 2; ++half) {
                result <<= 32;
                result += kind == 0   ? 0U
                          : kind == 1 ? 0xFFFFFFFFU
                          : kind == 2 ? (half == 0 ? 0x80000000U : 0U)
                                      : static_cast<unsigned>(m_Random());
            }
        }
        result += static_cast<int>(m_Random() % 3) - 1;
        return m_Random() % 2 == 0 ? result : mpz_class(-result);
    }

    mpz_class nextPositive() {
        mpz_class result = abs(next());
        return result == 0 ? mpz_class(1) : result;
    }

    std::uint64_t below(std::uint64_t bound) { return m_Random() % bound; }

private:
    std::mt19937 m_Random{20};
};

const int Cases = mensor::test::isThorough() ? 20000 : mensor::test::casesOf(500, 100);

TEST(Whole, SumsDifferencesAndProductsAreThoseOfGmp) {
    CNumbers numbers;
    for (int i = 0; i < Cases; ++i) {
        const CPair a = pairOf(numbers.next());
        const CPair b = pairOf(numbers.next());
        ASSERT_EQ(judged(a.Ours), a.Theirs);
        ASSERT_EQ(judged(a.Ours + b.Ours), a.Theirs + b.Theirs) << a.Theirs << " " << b.Theirs;
        ASSERT_EQ(judged(a.Ours - b.Ours), a.Theirs - b.Theirs) << a.Theirs << " " << b.Theirs;
        ASSERT_EQ(judged(a.Ours * b.Ours), a.Theirs * b.Theirs) << a.Theirs << " " << b.Theirs;
        ASSERT_EQ(judged(-a.Ours), -a.Theirs);
        ASSERT_EQ(judged(a.Ours.size()), abs(a.Theirs));
    }
}

TEST(Whole, QuotientsAndRemaindersAreThoseOfGmp) {
    CNumbers numbers;
    for (int i = 0; i < Cases; ++i) {
        const CPair b = pairOf(numbers.nextPositive() * (i % 2 == 0 ? 1 : -1));
        // Every second dividend is next to a multiple of the divisor.
        const CPair a =
            pairOf(i % 4 < 2 ? numbers.next() : mpz_class(b.Theirs * numbers.next() + i % 3 - 1));
        const CDivision division(a.Ours, b.Ours);
        ASSERT_EQ(judged(division.Quotient), a.Theirs / b.Theirs) << a.Theirs << " " << b.Theirs;
        ASSERT_EQ(judged(division.Rest), a.Theirs % b.Theirs) << a.Theirs << " " << b.Theirs;
        ASSERT_EQ(judged(a.Ours / b.Ours), a.Theirs / b.Theirs);
    }
}

// Dividends and divisors next to powers of 2^64. A division that guesses each word often guesses too
// much for them.
TEST(Whole, QuotientsAreRightIfTheFirstGuessIsTooLarge) {
    const mpz_class word = mpz_class(1) << 64;
    const mpz_class half = mpz_class(1) << 63;
    const std::pair<mpz_class, mpz_class> cases[] = {
        {half * word * word - 1, half * word + word - 1},
        {(half * word + half) * word, half * word + (word - 1)},
        {half * word * word * word + 3, half * word * word + 1},
        {(word * word - 1) * half, half * word},
        {(half * word + word - 2) * word * word, (half * word + word - 1) * word + word - 1},
        {half * word * word * word, (half * word + 0) * word + 1},
        {half * word * word * word - word, half * word * word + word - 1},
    };
    for (const auto& [dividend, divisor] : cases) {
        const CDivision division(pairOf(dividend).Ours, pairOf(divisor).Ours);
        EXPECT_EQ(judged(division.Quotient), dividend / divisor);
        EXPECT_EQ(judged(division.Rest), dividend % divisor);
    }
}

TEST(Whole, GreatestCommonDivisorsAreThoseOfGmp) {
    CNumbers numbers;
    for (int i = 0; i < Cases / 4; ++i) {
        const mpz_class common = i % 2 == 0 ? mpz_class(1) : numbers.nextPositive();
        const CPair a = pairOf(numbers.nextPositive() * common);
        const CPair b = pairOf(numbers.nextPositive() * common);
        ASSERT_EQ(judged(gcd(a.Ours, b.Ours)), gcd(a.Theirs, b.Theirs))
            << a.Theirs << " " << b.Theirs;
    }
    // Neighbouring Fibonacci numbers give the most quotients.
    for (unsigned i = 2; i < 2000; i += 97) {
        mpz_class last;
        mpz_class next;
        mpz_fib2_ui(next.get_mpz_t(), last.get_mpz_t(), i);
        EXPECT_EQ(judged(gcd(pairOf(last * 12).Ours, pairOf(next * 12).Ours)), 12);
    }
}

TEST(Whole, ShiftsAndBitsAreThoseOfGmp) {
    CNumbers numbers;
    for (int i = 0; i < Cases; ++i) {
        const CPair a = pairOf(numbers.nextPositive());
        const auto distance = static_cast<std::int64_t>(numbers.below(200) * (i % 5 == 0 ? 20 : 1));
        const auto places = static_cast<mp_bitcnt_t>(distance);
        ASSERT_EQ(judged(a.Ours.shifted(distance)), a.Theirs << places);
        ASSERT_EQ(judged((-a.Ours).shifted(distance)), -(a.Theirs << places));
        ASSERT_EQ(judged(a.Ours.shifted(-distance)), a.Theirs >> places);
        ASSERT_EQ(a.Ours.bits(), mpz_sizeinbase(a.Theirs.get_mpz_t(), 2));
        ASSERT_EQ(a.Ours.twos(), mpz_scan1(a.Theirs.get_mpz_t(), 0));
        ASSERT_EQ(std::to_string(a.Ours.low()),
                  mpz_class(a.Theirs & mpz_class("18446744073709551615")).get_str());
        ASSERT_EQ(a.Ours.isOdd(), mpz_odd_p(a.Theirs.get_mpz_t()) != 0);
        ASSERT_EQ(a.Ours.isOne(), a.Theirs == 1);
    }
    EXPECT_EQ(CWhole(0).bits(), 0U);
    EXPECT_EQ(CWhole(0).low(), 0U);
    EXPECT_TRUE(CWhole(0).shifted(100).isZero());
    EXPECT_FALSE(CWhole(-1).isOne());
}

TEST(Whole, CompareAsTheirValues) {
    CNumbers numbers;
    for (int i = 0; i < Cases; ++i) {
        const CPair a = pairOf(numbers.next());
        const CPair b = pairOf(i % 3 == 0 ? mpz_class(a.Theirs + i % 2) : numbers.next());
        ASSERT_EQ(a.Ours < b.Ours, a.Theirs < b.Theirs) << a.Theirs << " " << b.Theirs;
        ASSERT_EQ(a.Ours > b.Ours, a.Theirs > b.Theirs);
        ASSERT_EQ(a.Ours <= b.Ours, a.Theirs <= b.Theirs);
        ASSERT_EQ(a.Ours >= b.Ours, a.Theirs >= b.Theirs);
        ASSERT_EQ(a.Ours == b.Ours, a.Theirs == b.Theirs);
        ASSERT_EQ(a.Ours != b.Ours, a.Theirs != b.Theirs);
        ASSERT_EQ(a.Ours.isNegative(), a.Theirs < 0);
        ASSERT_EQ(a.Ours.isZero(), a.Theirs == 0);
    }
}

TEST(Whole, PowersAreThoseOfGmp) {
    for (const int base : {0, 1, -3, 10, 123456789}) {
        for (const unsigned exponent : {0U, 1U, 2U, 7U, 64U, 301U}) {
            mpz_class power;
            mpz_pow_ui(power.get_mpz_t(), mpz_class(base).get_mpz_t(), exponent);
            EXPECT_EQ(judged(CWhole(base).power(exponent)), power) << base << " " << exponent;
        }
    }
}

TEST(Whole, AcceptsEveryMachineInteger) {
    EXPECT_EQ(CWhole(INT64_MIN).toString(), "-9223372036854775808");
    EXPECT_EQ(CWhole(INT64_MAX).toString(), "9223372036854775807");
    EXPECT_EQ(CWhole(UINT64_MAX).toString(), "18446744073709551615");
    EXPECT_EQ(CWhole(-7).toString(), "-7");
    EXPECT_EQ(CWhole().toString(), "0");
    EXPECT_EQ(CWhole::ofDigits("000000000000000000000000000000").toString(), "0");
    EXPECT_EQ(CWhole::ofDigits("0001000000000000000000").toString(), "1000000000000000000");
    EXPECT_FALSE((-CWhole(0)).isNegative());
}

TEST(Whole, OperandsMayBeTheSameObject) {
    CNumbers numbers;
    for (int i = 0; i < 100; ++i) {
        const CPair a = pairOf(numbers.nextPositive());
        CWhole sum = a.Ours;
        const CWhole& sameSum = sum;
        sum += sameSum;
        EXPECT_EQ(judged(sum), 2 * a.Theirs);
        sum -= sameSum;
        EXPECT_TRUE(sum.isZero());
        CWhole square = a.Ours;
        const CWhole& sameSquare = square;
        square *= sameSquare;
        EXPECT_EQ(judged(square), a.Theirs * a.Theirs);
        square /= sameSquare;
        EXPECT_TRUE(square.isOne());
    }
}

TEST(Whole, CopiesAndMovesKeepSmallAndLargeNumbers) {
    const std::vector<std::string> texts = {"0", "-12", std::string(600, '7'),
                                            std::string(800, '8')};
    for (const std::string& text : texts) {
        for (const std::string& other : texts) {
            const CWhole from = pairOf(mpz_class(text)).Ours;
            CWhole copy = pairOf(mpz_class(other)).Ours;
            copy = from;
            EXPECT_EQ(copy.toString(), text);
            CWhole moved = pairOf(mpz_class(other)).Ours;
            moved = std::move(copy);
            EXPECT_EQ(moved.toString(), text);
            CWhole made(std::move(moved));
            EXPECT_EQ(made.toString(), text);
            made += CWhole(1);
            EXPECT_EQ(judged(made), mpz_class(text) + 1);
            EXPECT_EQ(from.toString(), text);
        }
    }
}

}  // namespace
