// Factor_test.cpp: factors with π and roots are exact and have one form for each number.
#include "mensor_exact/Factor.h"

#include <gtest/gtest.h>

#include "exact/expect_error.h"
#include "mensor_exact/Definitions.h"

namespace mensor::exact {
namespace {

CFactor number(const char* text) { return CFactor(CFraction::ofText(text)); }
CMeaning unit(const char* text) { return CCatalogue::builtIn().evaluate(text); }

TEST(Factor, HasOneFormForEachNumber) {
    EXPECT_EQ(number("4").power(CExponent(1, 2)), number("2"));
    EXPECT_EQ(number("4").power(CExponent(1, 4)), number("2").power(CExponent(1, 2)));
    EXPECT_EQ(number("0.008").power(CExponent(1, 3)), number("0.2"));
    EXPECT_EQ(number("1000").power(CExponent(1, 2)).power(2), number("1000"));
    EXPECT_EQ(number("8").power(CExponent(1, 2)) * number("2").power(CExponent(1, 2)), number("4"));
    EXPECT_EQ(number("64").power(CExponent(5, 6)), number("32"));
    EXPECT_EQ(number("64").power(CExponent(1, 12)), number("2").power(CExponent(1, 2)));
    EXPECT_EQ(number("10").power(CExponent(1, 2)) / number("10").power(CExponent(1, 2)), CFactor());
    EXPECT_EQ(CFactor::pi() / CFactor::pi(), CFactor());
    EXPECT_NE(number("10").power(CExponent(1, 2)), number("10").power(CExponent(1, 3)));
    EXPECT_NE(number("2"), number("2") * CFactor::pi());
    const CFactor large = number("123456789012345678901234567890");
    EXPECT_EQ(large.power(6).power(CExponent(1, 6)), large);
    EXPECT_EQ(large.power(6).power(CExponent(1, 4)), large.power(CExponent(3, 2)));
}

TEST(Factor, IsWrittenExactly) {
    EXPECT_EQ((CFactor::pi() / number("180")).toString(), "π/180");
    EXPECT_EQ((number("180") / CFactor::pi()).toString(), "180/π");
    EXPECT_EQ((number("2") * CFactor::pi()).toString(), "2π");
    EXPECT_EQ((number("0.5") * CFactor::pi()).toString(), "0.5·π");
    EXPECT_EQ((CFactor(CFraction(2, 3)) * CFactor::pi()).toString(), "2π/3");
    EXPECT_EQ((CFactor(CFraction(2, 3)) / CFactor::pi()).toString(), "2/(3·π)");
    EXPECT_EQ(CFactor::pi().power(2).toString(), "π^2");
    EXPECT_EQ(CFactor::pi().power(CExponent(-1, 2)).toString(), "1/π^(1/2)");
    EXPECT_EQ(number("10").power(CExponent(1, 2)).toString(), "10^(1/2)");
    EXPECT_EQ(CFactor(CFraction(5, 9)).power(CExponent(1, 2)).toString(), "(5/9)^(1/2)");
    EXPECT_EQ((number("10").power(CExponent(1, 2)) * CFactor::pi().power(-2)).toString(),
              "10^(1/2)·π^-2");
}

TEST(Factor, GivesTheNearestDouble) {
    EXPECT_EQ(CFactor::pi().toDouble(), 3.141592653589793);
    EXPECT_EQ((CFactor::pi() / number("180")).toDouble(), 0.017453292519943295);
    EXPECT_EQ(number("2").power(CExponent(1, 2)).toDouble(), 1.4142135623730951);
    EXPECT_EQ(number("2").power(CExponent(-1, 2)).toDouble(), 0.7071067811865476);
    EXPECT_EQ(number("0.1").toDouble(), 0.1);
}

TEST(Factor, RefusesZeroAndNegativeNumbers) {
    expectError(
        eError::NOT_POSITIVE, [] { number("0"); }, "a factor must be positive, not 0");
    expectError(
        eError::NOT_POSITIVE, [] { number("-2.5"); }, "a factor must be positive, not -2.5");
}

TEST(Factor, RefusesTooManyBits) {
    EXPECT_EQ(number("1e24").power(99).radicand().bits(), 7894U);
    EXPECT_EQ(unit("Ym^50/ym^50").factor().power(2).radicand().bits(), 15947U);
    expectError(
        eError::TOO_LARGE, [] { unit("Ym^99/ym^99").factor().power(2); },
        "a factor of more than 16384 bits");
    expectError(eError::TOO_LARGE, [] {
        const CFactor large = number("1e4900");
        (void)(large * large);
    });
    expectError(eError::TOO_LARGE, [] { number("1e5000"); });
}

TEST(Factor, RefusesRootsBeyondNinetyNine) {
    expectError(
        eError::EXPONENT_RANGE,
        [] {
            const CFactor seventh = number("3").power(CExponent(1, 97));
            (void)(seventh * number("3").power(CExponent(1, 89)));
        },
        "a factor with a root beyond 99");
    expectError(eError::EXPONENT_RANGE, [] {
        number("3").power(CExponent(1, 50)).power(CExponent(1, 2)).power(CExponent(1, 3));
    });
}

}  // namespace
}  // namespace mensor::exact
