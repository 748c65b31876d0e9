// Meaning_test.cpp: meanings are exact. Units have different meanings even if the registry takes them
// for one.
#include "mensor_exact/Meaning.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "exact/expect_error.h"
#include "mensor_exact/Definitions.h"

namespace mensor::exact {
namespace {

using ::testing::ElementsAre, ::testing::IsEmpty;

CMeaning base(const char* name) { return CMeaning::base(name); }
CFactor number(const char* text) { return CFactor(CFraction::ofText(text)); }
CMeaning unit(const char* text) { return CCatalogue::builtIn().evaluate(text); }

TEST(Meaning, IsAProductOfPowers) {
    const CMeaning newton = base("kg") * base("m") / base("s").power(2);
    EXPECT_EQ(newton.toString(), "kg·m/s²");
    EXPECT_EQ(newton.exponentOf("s"), CExponent(-2));
    EXPECT_EQ(newton.exponentOf("K"), CExponent());
    EXPECT_EQ(newton.exponentOf("EUR"), CExponent());
    EXPECT_THAT(newton.dimensions(), ElementsAre(CPower{"kg", 1}, CPower{"m", 1}, CPower{"s", -2}));
    EXPECT_EQ(newton / newton, CMeaning());
    EXPECT_EQ(newton.power(0), CMeaning());
    EXPECT_EQ(newton.power(CExponent(1, 2)).power(2), newton);
    EXPECT_EQ(newton.power(CExponent(-1, 3)).unitsText(), "s^(2/3)/(kg^(1/3)·m^(1/3))");
}

TEST(Meaning, HasDimensionsOfAnyName) {
    const CMeaning price = base("EUR") / base("kg");
    EXPECT_EQ(price.toString(), "EUR/kg");
    EXPECT_EQ(price.kind(), "EUR/kg");
    EXPECT_EQ(price.exponentOf("EUR"), CExponent(1));
    EXPECT_THAT(price.dimensions(), ElementsAre(CPower{"kg", -1}, CPower{"EUR", 1}));
    EXPECT_TRUE(price.isCompatibleWith(base("EUR") / base("kg").scaled(number("0.001"))));
    EXPECT_FALSE(price.isCompatibleWith(base("USD") / base("kg")));
    EXPECT_FALSE(price.isCompatibleWith(CMeaning() / base("kg")));
    EXPECT_EQ(price * base("USD") / base("EUR") * base("kg"), base("USD"));
    EXPECT_EQ((base("b") * base("a")).toString(), "a·b");
    expectError(
        eError::SYNTAX, [] { base(""); }, "a dimension without a name");
}

TEST(Meaning, KeepsMarksThatCountAsOne) {
    const CMeaning speed = base("rad") / base("s");
    EXPECT_THAT(speed.marks(), ElementsAre(CPower{"rad", 1}));
    EXPECT_THAT(speed.dimensions(), ElementsAre(CPower{"s", -1}));
    EXPECT_TRUE(speed.isCompatibleWith(CMeaning() / base("s")));
    EXPECT_FALSE(speed.hasMarksOf(CMeaning() / base("s")));
    EXPECT_TRUE(speed.hasMarksOf(base("rad")));
    EXPECT_NE(speed, CMeaning() / base("s"));
    EXPECT_EQ(speed.toString(), "rad/s");
    EXPECT_THAT(unit("Hz").marks(), IsEmpty());
    EXPECT_THAT(unit("lm").marks(), ElementsAre(CPower{"sr", 1}));
}

TEST(Meaning, DistinguishesDimensionsWhoseHashCodesCollideInTheRegistry) {
    EXPECT_FALSE(unit("Wb/A").isCompatibleWith(unit("kg/(s·K)")));
    EXPECT_FALSE(unit("C/m").isCompatibleWith(unit("A/V")));
    EXPECT_FALSE(unit("1/(m·K)").isCompatibleWith(unit("1/s²")));
    EXPECT_FALSE(unit("N/V").isCompatibleWith(unit("K/W")));
    EXPECT_TRUE(unit("N/V").isCompatibleWith(unit("C/m")));
}

TEST(Meaning, NamesTheQuantity) {
    EXPECT_EQ(unit("bar").kind(), "pressure");
    EXPECT_EQ(unit("km").kind(), "length");
    EXPECT_EQ(unit("kW·h").kind(), "energy");
    EXPECT_EQ(unit("A·s").kind(), "electric charge");
    EXPECT_EQ(unit("mol/s").kind(), "catalytic activity");
    EXPECT_EQ(unit("rev").kind(), "angle");
    EXPECT_EQ(unit("sr").kind(), "solid angle");
    EXPECT_EQ(unit("byte").kind(), "information");
    EXPECT_EQ(unit("%").kind(), "number");
    EXPECT_EQ(unit("rad²").kind(), "number");
    EXPECT_EQ(unit("kg·m").kind(), "kg·m");
    EXPECT_EQ(unit("rad·kg·m").kind(), "kg·m");
}

TEST(Meaning, HasAnExactOffset) {
    const CMeaning celsius = base("K").shifted(CFraction::ofText("273.15"));
    const CMeaning fahrenheit =
        base("K").scaled(CFactor(CFraction(5, 9))).shifted(CFraction::ofText("459.67"));
    EXPECT_EQ(celsius.toString(), "K + 273.15");
    EXPECT_EQ(fahrenheit.toString(), "5/9 K + 45967/180");
    EXPECT_EQ(celsius.shifted(CFraction::ofText("-273.15")), base("K"));
    EXPECT_EQ(celsius.shifted(CFraction(-300)).toString(), "K - 26.85");
    EXPECT_EQ(celsius.difference(), base("K"));
    EXPECT_EQ(fahrenheit.scaled(CFactor(CFraction(9, 5))).toString(), "K + 45967/180");
    EXPECT_EQ(celsius.power(1), celsius);
    EXPECT_TRUE(celsius.isCompatibleWith(base("K")));
    EXPECT_NE(celsius, base("K"));
}

TEST(Meaning, RefusesAnOffsetInAProduct) {
    const CMeaning celsius = unit("°C");
    const std::string sentence = "a unit with an offset, K + 273.15, in a product";
    expectError(
        eError::OFFSET_IN_PRODUCT, [&] { (void)(celsius * base("m")); }, sentence);
    expectError(
        eError::OFFSET_IN_PRODUCT, [&] { (void)(base("m") * celsius); }, sentence);
    expectError(
        eError::OFFSET_IN_PRODUCT, [&] { (void)(celsius / base("m")); }, sentence);
    expectError(
        eError::OFFSET_IN_PRODUCT, [&] { (void)(base("m") / celsius); }, sentence);
    expectError(
        eError::OFFSET_IN_PRODUCT, [&] { celsius.power(2); }, sentence);
    expectError(
        eError::OFFSET_IN_PRODUCT, [&] { celsius.power(0); }, sentence);
}

TEST(Meaning, RefusesAnOffsetWithPiOrARoot) {
    expectError(
        eError::OFFSET_NOT_RATIONAL, [] { unit("°").shifted(1); },
        "a unit whose factor has π or a root cannot have an offset");
    expectError(eError::OFFSET_NOT_RATIONAL, [] { unit("°C").scaled(CFactor::pi()); });
    EXPECT_EQ(unit("°").shifted(0), unit("°"));
}

TEST(Meaning, IsSmallOnlyIfAllItsNumbersAreSmall) {
    const auto isSmall = [](const CMeaning& meaning) {
        CSmallMeaning small;
        return meaning.toSmall(small) && CMeaning(small) == meaning;
    };
    const CMeaning metre = CMeaning::base("m");
    for (const CExponent exponent :
         {CExponent(49), CExponent(-49), CExponent(99, 2), CExponent(-1, 2)}) {
        EXPECT_TRUE(isSmall(metre.power(exponent))) << exponent.toString();
        EXPECT_TRUE(isSmall(CMeaning::base("qx").power(exponent))) << exponent.toString();
    }
    for (const CExponent exponent :
         {CExponent(50), CExponent(-50), CExponent(1, 3), CExponent(99)}) {
        EXPECT_FALSE(isSmall(metre.power(exponent))) << exponent.toString();
        EXPECT_FALSE(isSmall(CMeaning::base("qx").power(exponent))) << exponent.toString();
        EXPECT_FALSE(isSmall(metre.scaled(CFactor::pi().power(exponent)))) << exponent.toString();
    }
    EXPECT_TRUE(isSmall(metre.scaled(CFactor::pi().power(2))));
    EXPECT_FALSE(isSmall(metre.scaled(CFactor::pi().power({1, 2}))));
    EXPECT_FALSE(isSmall(metre.scaled(CFactor(CFraction(2)).power({1, 2}))));
    const CFraction large = CFraction(7).power(40);
    EXPECT_FALSE(isSmall(metre.scaled(CFactor(large))));
    EXPECT_FALSE(isSmall(metre.shifted(large)));
    EXPECT_TRUE(isSmall(metre.shifted(CFraction(7))));
}

TEST(Meaning, KeepsIntermediateFactorsBeyondTheDoubles) {
    // With doubles, these products would become infinite, zero or subnormal.
    EXPECT_EQ(unit("Ym^90/Ym^89"), unit("Ym"));
    EXPECT_EQ(unit("ym^45·Ym^45").factor(), CFactor());
    EXPECT_EQ(unit("pm^30·Tm^30").toString(), "m^60");
    EXPECT_NE(unit("Ym^40"), unit("Ym^39·Zm"));
}

TEST(Meaning, RefusesAnOffsetWithTooManyBits) {
    expectError(
        eError::TOO_LARGE, [] { base("K").shifted(CFraction::ofText("1e5000")); },
        "an offset of more than 16384 bits");
}

TEST(Meaning, RefusesExponentsBeyondNinetyNine) {
    EXPECT_EQ(unit("m^99").exponentOf("m"), CExponent(99));
    expectError(eError::EXPONENT_RANGE, [] { unit("m^60·m^40"); });
    expectError(eError::EXPONENT_RANGE, [] { base("EUR").power(60).power(2); });
}

}  // namespace
}  // namespace mensor::exact
