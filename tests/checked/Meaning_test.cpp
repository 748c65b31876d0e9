// Meaning_test.cpp: exact exponents, factors and offsets, and the check of a unit against them.
#include "mensor_checked/Meaning.h"
#include "mensor_checked/Verify.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "mensor/AddConverter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using checked::CMeaning;
using checked::CRational;
using checked::meaningOf;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

constexpr std::int64_t Largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t Least = std::numeric_limits<std::int64_t>::min();

CMeaning base(const char* symbol) { return CMeaning::base(symbol); }

CMeaning newton() { return base("kg") * base("m") / base("s").power(2); }

TEST(Rational, IsInLowestTermsWithAPositiveDenominator) {
    EXPECT_EQ(CRational(2, 4), CRational(1, 2));
    EXPECT_EQ(CRational(2, -4), CRational(-1, 2));
    EXPECT_EQ(CRational(-2, -4), CRational(1, 2));
    EXPECT_EQ(CRational(0, -7), CRational(0));
    EXPECT_EQ(CRational(1, 2) + CRational(1, 3), CRational(5, 6));
    EXPECT_EQ(CRational(1, 2) + CRational(-1, 2), CRational(0));
    EXPECT_EQ(CRational(2, 3) * CRational(3, 4), CRational(1, 2));
    EXPECT_EQ(-CRational(1, 2), CRational(-1, 2));
    EXPECT_EQ(CRational(3, 2).toString(), "3:2");
    EXPECT_EQ(CRational(-3).toString(), "-3");
    EXPECT_EQ(CRational(3, 2).toDouble(), 1.5);
}

TEST(Rational, RefusesWhatLeaves64Bits) {
    EXPECT_THROW(CRational(1, 0), std::invalid_argument);
    EXPECT_THROW(CRational(Least, 2), std::overflow_error);
    EXPECT_THROW(CRational(2, Least), std::overflow_error);
    EXPECT_THROW(CRational(Largest) + CRational(1), std::overflow_error);
    EXPECT_THROW(CRational(Largest) * CRational(2), std::overflow_error);
    EXPECT_THROW(CRational(1, Largest) + CRational(1, 2), std::overflow_error);
    EXPECT_EQ(CRational(Largest) + CRational(-1), CRational(Largest - 1));
}

TEST(Meaning, OfTheCatalogueIsItsDefinition) {
    EXPECT_EQ(meaningOf(SI::Meter()), base("m"));
    EXPECT_EQ(meaningOf(SI::Newton()), newton());
    EXPECT_EQ(meaningOf(SI::Kilo(SI::Newton())), newton().scaled(1000));
    EXPECT_EQ(meaningOf(NonSI::Liter()), base("m").power(3).scaled(0.001));
    EXPECT_EQ(meaningOf(NonSI::Day()), base("s").scaled(86400));
    EXPECT_EQ(meaningOf(SI::Celsius()), base("K").shifted(273.15));
    EXPECT_EQ(meaningOf(CProductUnit::one()), CMeaning());
    EXPECT_EQ(meaningOf(SI::Radian()), CMeaning()) << "a name for the number one";
    EXPECT_EQ(meaningOf(SI::Lumen()), base("cd"));
    EXPECT_EQ(meaningOf(SI::Volt() / (SI::Hertz()->root(2))),
              newton() * base("m") / base("A") * base("s").power(CRational(-1, 2)));
}

TEST(Meaning, HasExponentsFactorAndOffset) {
    const CMeaning meaning = meaningOf(SI::Milli(SI::Newton()));
    ASSERT_EQ(meaning.exponents().size(), 3U);
    EXPECT_EQ(meaning.exponents()[0].Base, "kg");
    EXPECT_EQ(meaning.exponentOf("s"), CRational(-2));
    EXPECT_EQ(meaning.exponentOf("A"), CRational(0));
    EXPECT_EQ(meaning.factor(), 0.001);
    EXPECT_EQ(meaningOf(SI::Celsius()).offset(), 273.15);
}

TEST(Meaning, FollowsTheAlgebra) {
    const CMeaning celsius = base("K").shifted(273.15);
    EXPECT_EQ((celsius * base("m")).offset(), 0.0) << "a factor is a difference";
    EXPECT_EQ(celsius.power(1).offset(), 0.0);
    EXPECT_EQ(celsius.scaled(2).offset(), 273.15) << "the zero stays where it is";
    EXPECT_EQ(base("K").scaled(2).shifted(10).offset(), 20.0) << "in this unit";
    EXPECT_EQ(newton().power(0), CMeaning());
    EXPECT_EQ(newton() / newton(), CMeaning());
    EXPECT_EQ(base("m").scaled(100).power(CRational(1, 2)).factor(), 10.0);
    EXPECT_TRUE(newton().hasDimensionOf(newton().scaled(5)));
    EXPECT_FALSE(newton().hasDimensionOf(base("m")));
}

TEST(Meaning, AllowsForRoundingAndNoMore) {
    EXPECT_EQ(base("m").scaled(1 + 1e-13), base("m"));
    EXPECT_NE(base("m").scaled(1 + 1e-11), base("m"));
    EXPECT_NE(base("K").shifted(1e-13), base("K"));
    EXPECT_NE(base("m").scaled(-1), base("m"));
    EXPECT_NE(base("m").scaled(std::numeric_limits<double>::quiet_NaN()), base("m"));
}

TEST(Meaning, IsWrittenPlainly) {
    EXPECT_EQ(CMeaning().toString(), "1");
    EXPECT_EQ(CMeaning().scaled(0.01).toString(), "0.01");
    EXPECT_EQ(newton().toString(), "kg·m/s²");
    EXPECT_EQ(newton().power(-1).toString(), "s²/(kg·m)");
    EXPECT_EQ(base("s").power(-3).scaled(100).toString(), "100/s³");
    EXPECT_EQ(base("m").power(CRational(1, 2)).scaled(0.1).toString(), "0.1 m^1:2");
    EXPECT_EQ(base("K").shifted(273.15).toString(), "K + 273.15");
    EXPECT_EQ(base("K").shifted(-1).scaled(2).toString(), "2 K - 1");
}

TEST(Meaning, RegistersNothing) {
    const CUnitPtr unit = CUnit::fromString("kg·cm^3·A^-2/h^4");
    const Tables before;
    meaningOf(unit);
    EXPECT_EQ(Tables(), before);
}

TEST(Meaning, FollowsAClientsKindOfUnit) {
    const auto own = CClientUnit::make("qx", 4711);
    EXPECT_EQ(meaningOf(own), base("qx"));
    own->BaseUnits = [] { return CUnitPtr(SI::Meter()); };
    EXPECT_EQ(meaningOf(own), base("m"));
    own->Elements = [] {
        return std::vector<CUnitRationalPower>{{SI::Meter(), 1, 2}, {SI::Second(), -1, 1}};
    };
    EXPECT_EQ(meaningOf(own), base("m").power(CRational(1, 2)) / base("s"));
}

TEST(Meaning, EndsEvenWhereAnExpansionDoesNot) {
    const auto own = CClientUnit::make("qx", 4711);
    const auto other = CClientUnit::make("qy", 4712);
    CClientUnit* const first = own.get();
    own->BaseUnits = [other] { return other; };
    other->BaseUnits = [first] { return first->shared_from_this(); };
    EXPECT_THROW(meaningOf(own), std::logic_error);
}

TEST(Meaning, RefusesAnEmptyPointer) {
    EXPECT_THAT([] { meaningOf(nullptr); },
                ThrowsMessage<std::invalid_argument>("meaningOf: the unit is an empty pointer"));
    EXPECT_THAT([] { checked::verify(nullptr, CMeaning()); },
                ThrowsMessage<std::invalid_argument>("verify: the unit is an empty pointer"));
}

TEST(Verify, PassesTheUnitAskedFor) {
    checked::verify(SI::Newton(), newton());
    checked::verify(CUnit::fromString("m·kg/s²"), newton());
    checked::verify(SI::Celsius(), base("K").shifted(273.15));
}

TEST(Verify, RefusesAnotherUnitAndNamesBoth) {
    const CUnitPtr weberPerAmpere = CUnit::fromString("Wb/A");
    const CUnitPtr asked = CUnit::fromString("kg/(s·K)");
    try {
        checked::verify(asked, base("kg") / (base("s") * base("K")));
        FAIL() << "passed";
    } catch (const checked::CIdentityError& e) {
        EXPECT_STREQ(e.what(),
                     "\"kg/(K·s)\" was asked for, but the object is \"Wb/A\", which means "
                     "\"kg·m²/(A²·s²)\"");
        EXPECT_EQ(e.inTheWay(), weberPerAmpere);
        EXPECT_EQ(checked::CIdentityError(e).inTheWay(), weberPerAmpere);
    }
}

TEST(Verify, RefusesAUnitThatWouldConvertAsAnother) {
    const CUnitPtr perVolt = CUnit::fromString("1/V");
    const CUnitPtr pace = CUnit::fromString("min/km");
    EXPECT_THAT([&] { checked::verify(pace, base("s").scaled(0.06) / base("m")); },
                ThrowsMessage<checked::CIdentityError>(
                    "\"min/km\" would count as \"0.06 A·s³/(kg·m²)\", since its dimension "
                    "is the same object as \"1/V\" here"));
}

TEST(Verify, RefusesAnOffsetThatIsNotThere) {
    EXPECT_THROW(checked::verify(SI::Kelvin(), base("K").shifted(273.15)), checked::CIdentityError);
    EXPECT_THROW(checked::verify(SI::Celsius(), base("K")), checked::CIdentityError);
}

}  // namespace
}  // namespace mensor
