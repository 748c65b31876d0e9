// ExactMeaning_test.cpp: meanings and factors are exact, and tell apart what the registry takes for one.
#include "mensor_exact/Meaning.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "exact/Refusal.h"
#include "mensor_exact/Definitions.h"

namespace mensor::exact {
namespace {

using ::testing::ElementsAre, ::testing::IsEmpty;

CMeaning base(const char* name) { return CMeaning::base(name); }
CFactor number(const char* text) { return CFactor(CFraction::ofText(text)); }
CMeaning unit(const char* text) { return CCatalogue::builtIn().evaluate(text); }

TEST(ExactMeaning, IsAProductOfPowers) {
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

TEST(ExactMeaning, HasDimensionsOfAnyName) {
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
    expectRefusal(
        eError::SYNTAX, [] { base(""); }, "a dimension without a name");
}

TEST(ExactMeaning, KeepsMarksThatCountAsOne) {
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

TEST(ExactMeaning, TellsApartWhatTheRegistryTakesForOne) {
    EXPECT_FALSE(unit("Wb/A").isCompatibleWith(unit("kg/(s·K)")));
    EXPECT_FALSE(unit("C/m").isCompatibleWith(unit("A/V")));
    EXPECT_FALSE(unit("1/(m·K)").isCompatibleWith(unit("1/s²")));
    EXPECT_FALSE(unit("N/V").isCompatibleWith(unit("K/W")));
    EXPECT_TRUE(unit("N/V").isCompatibleWith(unit("C/m")));
}

TEST(ExactMeaning, NamesWhatIsMeasured) {
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

TEST(ExactMeaning, HasAnExactOffset) {
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

TEST(ExactMeaning, RefusesAnOffsetInAProduct) {
    const CMeaning celsius = unit("°C");
    const std::string sentence = "a unit with an offset, K + 273.15, in a product";
    expectRefusal(
        eError::OFFSET_IN_PRODUCT, [&] { (void)(celsius * base("m")); }, sentence);
    expectRefusal(
        eError::OFFSET_IN_PRODUCT, [&] { (void)(base("m") * celsius); }, sentence);
    expectRefusal(
        eError::OFFSET_IN_PRODUCT, [&] { (void)(celsius / base("m")); }, sentence);
    expectRefusal(
        eError::OFFSET_IN_PRODUCT, [&] { (void)(base("m") / celsius); }, sentence);
    expectRefusal(
        eError::OFFSET_IN_PRODUCT, [&] { celsius.power(2); }, sentence);
    expectRefusal(
        eError::OFFSET_IN_PRODUCT, [&] { celsius.power(0); }, sentence);
}

TEST(ExactMeaning, RefusesAnOffsetBesidePiOrARoot) {
    expectRefusal(
        eError::OFFSET_NOT_RATIONAL, [] { unit("°").shifted(1); },
        "an offset beside a factor with π or a root");
    expectRefusal(eError::OFFSET_NOT_RATIONAL, [] { unit("°C").scaled(CFactor::pi()); });
    EXPECT_EQ(unit("°").shifted(0), unit("°"));
}

TEST(ExactFactor, IsTheSameForTheSameNumber) {
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

TEST(ExactFactor, IsWrittenExactly) {
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

TEST(ExactFactor, GivesTheNearestDouble) {
    EXPECT_EQ(CFactor::pi().toDouble(), 3.141592653589793);
    EXPECT_EQ((CFactor::pi() / number("180")).toDouble(), 0.017453292519943295);
    EXPECT_EQ(number("2").power(CExponent(1, 2)).toDouble(), 1.4142135623730951);
    EXPECT_EQ(number("2").power(CExponent(-1, 2)).toDouble(), 0.7071067811865476);
    EXPECT_EQ(number("0.1").toDouble(), 0.1);
}

TEST(ExactFactor, RefusesZeroAndBelow) {
    expectRefusal(
        eError::NOT_POSITIVE, [] { number("0"); }, "a factor is above zero, and 0 is not");
    expectRefusal(
        eError::NOT_POSITIVE, [] { number("-2.5"); }, "a factor is above zero, and -2.5 is not");
}

TEST(ExactFactor, RefusesMoreBitsThanAllowed) {
    EXPECT_EQ(number("1e24").power(99).radicand().bits(), 7894U);
    EXPECT_EQ(unit("Ym^50/ym^50").factor().power(2).radicand().bits(), 15947U);
    expectRefusal(
        eError::TOO_LARGE, [] { unit("Ym^99/ym^99").factor().power(2); },
        "a factor of more than 16384 bits");
    expectRefusal(eError::TOO_LARGE, [] {
        const CFactor large = number("1e4900");
        (void)(large * large);
    });
    expectRefusal(eError::TOO_LARGE, [] { number("1e5000"); });
    expectRefusal(
        eError::TOO_LARGE, [] { base("K").shifted(CFraction::ofText("1e5000")); },
        "an offset of more than 16384 bits");
}

TEST(ExactFactor, RefusesRootsBeyondNinetyNine) {
    expectRefusal(
        eError::EXPONENT_RANGE,
        [] {
            const CFactor seventh = number("3").power(CExponent(1, 97));
            (void)(seventh * number("3").power(CExponent(1, 89)));
        },
        "a factor with a root beyond 99");
    expectRefusal(eError::EXPONENT_RANGE, [] {
        number("3").power(CExponent(1, 50)).power(CExponent(1, 2)).power(CExponent(1, 3));
    });
}

TEST(ExactMeaning, DoesNotLoseAnythingOnTheWay) {
    // A double would pass through infinity, zero and subnormal numbers.
    EXPECT_EQ(unit("Ym^90/Ym^89"), unit("Ym"));
    EXPECT_EQ(unit("ym^45·Ym^45").factor(), CFactor());
    EXPECT_EQ(unit("pm^30·Tm^30").toString(), "m^60");
    EXPECT_NE(unit("Ym^40"), unit("Ym^39·Zm"));
}

TEST(ExactMeaning, RefusesExponentsBeyondNinetyNine) {
    EXPECT_EQ(unit("m^99").exponentOf("m"), CExponent(99));
    expectRefusal(eError::EXPONENT_RANGE, [] { unit("m^60·m^40"); });
    expectRefusal(eError::EXPONENT_RANGE, [] { base("EUR").power(60).power(2); });
}

}  // namespace
}  // namespace mensor::exact
