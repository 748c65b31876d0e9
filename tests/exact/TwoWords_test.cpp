// TwoWords_test.cpp: whole numbers of 128 bits. GMP computes the expected results.
#include "mensor_exact/TwoWords.h"

#include <gtest/gtest.h>

#include <random>

#include "exact/WholeLine.h"

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

TEST(TwoWords, MultipliesWithAndWithout128BitIntegers) {
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

}  // namespace
}  // namespace mensor::exact
