// Exponent_test.cpp: exponents are fractions in lowest terms, of numbers up to 99.
#include "mensor_exact/Exponent.h"

#include <gtest/gtest.h>

#include "exact/expect_error.h"

namespace mensor::exact {
namespace {

TEST(Exponent, IsInLowestTermsAndAtMostNinetyNine) {
    EXPECT_EQ(CExponent(2, 4).toString(), "1/2");
    EXPECT_EQ(CExponent(3, -6).toString(), "-1/2");
    EXPECT_EQ(CExponent(1, 2) + CExponent(3, 2), CExponent(2));
    EXPECT_EQ(CExponent(1, 2) * CExponent(4), CExponent(2));
    EXPECT_EQ(CExponent(198, 2), CExponent(99));
    EXPECT_EQ(CExponent(0, 5), CExponent());
    expectError(
        eError::EXPONENT_RANGE, [] { CExponent(100); }, "an exponent beyond 99");
    expectError(eError::EXPONENT_RANGE, [] { CExponent(-100); });
    expectError(eError::EXPONENT_RANGE, [] { CExponent(1, 100); });
    expectError(eError::EXPONENT_RANGE, [] { (void)(CExponent(99) + CExponent(1)); });
    expectError(eError::EXPONENT_RANGE, [] { (void)(CExponent(1, 97) + CExponent(1, 89)); });
    expectError(eError::DIVISION_BY_ZERO, [] { CExponent(1, 0); });
}

}  // namespace
}  // namespace mensor::exact
