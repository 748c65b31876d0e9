// Verify_test.cpp: accepts the meaning of a unit and refuses all others.
#include "mensor_checked/Verify.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "mensor/AddConverter.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Packs.h"
#include "mensor_checked/making.h"
#include "mensor_exact/Definitions.h"
#include "support/ClientConverters.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using checked::CIdentityError;
using checked::CMeaning;
using checked::verify;
using exact::CExponent;
using exact::CFactor;
using exact::CFraction;
using ::testing::ThrowsMessage;

CMeaning base(const char* symbol) { return CMeaning::base(symbol); }

CMeaning newton() { return base("kg") * base("m") / base("s").power(2); }

CFactor decimal(const char* digits) { return CFactor(CFraction::ofText(digits)); }

TEST(Verify, AcceptsTheMeaningOfAUnit) {
    verify(SI::Newton(), newton());
    verify(CUnit::fromString("m·kg/s²"), newton());
    verify(SI::Celsius(), base("K").shifted(CFraction::ofText("273.15")));
    verify(CUnit::fromString("mg/l"), base("kg").scaled(decimal("0.001")) / base("m").power(3));
    verify(NonSI::SecondAngle(), *exact::CCatalogue::builtIn().meaning("″"));
}

TEST(Verify, AcceptsADecimalFactorThatTheUnitHasAsADouble) {
    verify(SI::Meter()->multiply(0.3), base("m").scaled(decimal("0.3")));
    verify(SI::Meter()->multiply(0.3)->pow(5), base("m").scaled(decimal("0.3")).power(5));
    verify(checked::affine(SI::Kelvin(), 0.3, 0.7),
           base("K").shifted(CFraction::ofText("0.7")).scaled(decimal("0.3")));
}

// One step allows three roundings, and the comparison adds two: 5·2^-53 of the factor.
TEST(Verify, AllowsOnlyTheRoundingOfTheChain) {
    const CUnitPtr unit = SI::Meter()->multiply(1.5);
    const CFactor one(CFraction(3, 2));
    const auto parts = [&](int n) {  // greater by n·2^-53
        return base("m").scaled(one *
                                CFactor(CFraction(1) + CFraction(n) * CFraction(2).power(-53)));
    };
    verify(unit, parts(3));
    verify(unit, parts(-3));
    EXPECT_THROW(verify(unit, parts(8)), CIdentityError);
    EXPECT_THROW(verify(unit, parts(-8)), CIdentityError);
    EXPECT_THROW(verify(SI::Meter(), base("m").scaled(decimal("1.0000000000000011"))),
                 CIdentityError);
    verify(unit->pow(9), parts(3).power(9));  // a power multiplies the number of roundings
    EXPECT_THROW(verify(unit->pow(9), parts(8).power(9)), CIdentityError);
}

TEST(Verify, AllowsTheRoundingOfARoot) {
    const CUnitPtr unit = SI::Mole()->multiply(1e20)->pow(7)->root(3);
    verify(unit, base("mol").scaled(decimal("1e20")).power(CExponent(7, 3)));
    EXPECT_THROW(
        verify(unit, base("mol").scaled(decimal("1.0000000000001e20")).power(CExponent(7, 3))),
        CIdentityError);
}

TEST(Verify, AcceptsEachRowOfTheTable) {
    using checked::ePack;
    for (const ePack pack :
         {ePack::SI, ePack::US, ePack::SCIENCE, ePack::OFFSETS, ePack::COUNTING}) {
        checked::registerPack(pack);
    }
    const exact::CCatalogue catalogue = exact::CCatalogue::builtIn()
                                            .with(exact::ePack::CUSTOMARY)
                                            .with(exact::ePack::US)
                                            .with(exact::ePack::SCIENCE)
                                            .with(exact::ePack::OFFSETS)
                                            .with(exact::ePack::COUNTING);
    NonSI::Psi();
    int count = 0;
    for (const exact::CDefinition& definition : catalogue.definitions()) {
        const std::string name(definition.Name);
        EXPECT_NO_THROW(verify(CUnitFormat::unitFor(name), *catalogue.meaning(name))) << name;
        ++count;
    }
    EXPECT_GT(count, 750);
}

TEST(Verify, RefusesAnotherUnitAndNamesBoth) {
    const CUnitPtr weberPerAmpere = CUnit::fromString("Wb/A");
    const CUnitPtr asked = CUnit::fromString("kg/(s·K)");
    try {
        verify(asked, base("kg") / (base("s") * base("K")));
        FAIL() << "no exception";
    } catch (const CIdentityError& e) {
        EXPECT_STREQ(e.what(),
                     "\"kg/(K·s)\" was asked for, but the object is \"Wb/A\", which means "
                     "\"kg·m²/(A²·s²)\"");
        EXPECT_EQ(e.inTheWay(), weberPerAmpere);
        EXPECT_EQ(CIdentityError(e).inTheWay(), weberPerAmpere);
    }
}

TEST(Verify, RefusesAUnitWhoseDimensionCollides) {
    const CUnitPtr perVolt = CUnit::fromString("1/V");
    const CUnitPtr pace = CUnit::fromString("min/km");
    EXPECT_THAT([&] { verify(pace, base("s").scaled(decimal("0.06")) / base("m")); },
                ThrowsMessage<CIdentityError>(
                    "\"min/km\" would count as \"0.06 A·s³/(kg·m²)\", since its dimension "
                    "is the same object as \"1/V\" here"));
}

// The library replaces a product by its dimension if its factor differs from 1 by less than 1e-9.
TEST(Verify, RefusesAUnitThatTheLibraryRoundsToOne) {
    const CUnitPtr nearly = SI::Meter()->multiply(1.0 + 5e-10) * SI::Second();
    EXPECT_THAT([&] { verify(nearly, checked::meaningOf(nearly)); },
                ThrowsMessage<CIdentityError>(
                    ::testing::HasSubstr("as \"m·s\" in place of \"1.0000000005 m·s\"")));
}

CConverterPtr times(double factor) { return std::make_shared<CMultiplyConverter>(factor); }
CConverterPtr plus(double offset) { return std::make_shared<CAddConverter>(offset); }

// Returns the unit of metres whose converter has the steps in this order, the step on the metre last.
CUnitPtr ofSteps(CConverterPtr first, const std::vector<CConverterPtr>& others) {
    for (const CConverterPtr& step : others) {
        first = std::make_shared<CCompound>(first, step);
    }
    return std::make_shared<CTransformedUnit>(SI::Meter(), first);
}

std::string faultOf(const CUnitPtr& unit) {
    try {
        verify(unit, checked::meaningOf(unit));
    } catch (const CIdentityError& error) {
        EXPECT_EQ(error.inTheWay(), unit);
        return error.what();
    }
    return "no fault";
}

TEST(Verify, RefusesAUnitWhoseDoublesOverflowOnTheWay) {
    EXPECT_THAT(faultOf(ofSteps(times(1e300), {times(1e300), times(1e-300)})),
                ::testing::HasSubstr("as \"inf m\" in place of "));
    EXPECT_THAT(faultOf(ofSteps(times(1e-300), {times(1e-300), times(1e300)})),
                ::testing::HasSubstr("as \"0 m\" in place of "));
    EXPECT_THAT(faultOf(ofSteps(plus(1e308), {plus(1e308), plus(-1e308)})),
                ::testing::HasSubstr("as \"m + inf\" in place of \"m + 1e+308\""));
    EXPECT_EQ(faultOf(ofSteps(times(1e300), {times(1e-300), times(1e300)})), "no fault");
}

// x·(1 − x), whose slope is 1 at 0 and −3 at 2.
class CParabola : public CConverter {
public:
    CConverterPtr inverse() override { return CConverter::identity(); }
    double convert(double x) const override { return x * (1.0 - x); }
    double derivative(double x) const override { return 1.0 - 2.0 * x; }
    bool isLinear() const override { return false; }
};

// The meaning takes the slope of each step at 0, and the library that at the value which reaches it.
TEST(Verify, TellsTheSlopeAndTheZeroThatTheLibraryWouldUse) {
    const auto bent = std::make_shared<CBent>(0.5);
    EXPECT_THAT(faultOf(ofSteps(plus(2), {bent})),
                ::testing::HasSubstr("as \"0.25 m + 1\" in place of \"m + 2\""));
    EXPECT_THAT(faultOf(ofSteps(plus(-1), {bent})),
                ::testing::HasSubstr("as \"4 m - 2\" in place of \"m - 1\""));
    EXPECT_THAT(faultOf(ofSteps(plus(2), {std::make_shared<CParabola>()})),
                ::testing::HasSubstr("as \"-3 m - 2\" in place of \"m + 2\""));
}

TEST(Verify, RefusesAUnitWhoseDimensionHasNoMeaning) {
    const auto own = std::dynamic_pointer_cast<CBaseUnit>(CBaseUnit::getInstance("qxy"));
    own->setDimension(SI::Second()->multiply(-3.0), CConverter::identity());
    EXPECT_THAT([&] { verify(own, base("qxy")); },
                ThrowsMessage<CIdentityError>(::testing::StartsWith(
                    "\"qxy\" would count as \"no unit\", since its dimension is the same "
                    "object as \"")));
}

TEST(Verify, WritesASizeBeyondTheRangeOfDoubleInFull) {
    const CFactor tiny(CFraction(7).power(-400));
    EXPECT_THAT([&] { verify(SI::Meter(), base("m").scaled(tiny)); },
                ThrowsMessage<CIdentityError>(::testing::HasSubstr(tiny.toString())));
}

TEST(Verify, DistinguishesRadiansSteradiansAndBitsFromNumbers) {
    verify(SI::Radian() / SI::Second(), base("rad") / base("s"));
    EXPECT_THROW(verify(SI::Radian() / SI::Second(), base("s").power(-1)), CIdentityError);
    EXPECT_THROW(verify(SI::Hertz(), base("rad") / base("s")), CIdentityError);
    EXPECT_THROW(verify(SI::Bit(), CMeaning()), CIdentityError);
}

TEST(Verify, RefusesAnOffsetThatTheUnitDoesNotHave) {
    const CMeaning celsius = base("K").shifted(CFraction::ofText("273.15"));
    EXPECT_THROW(verify(SI::Kelvin(), celsius), CIdentityError);
    EXPECT_THROW(verify(SI::Celsius(), base("K")), CIdentityError);
    EXPECT_THROW(verify(SI::Celsius(), base("K").shifted(CFraction::ofText("273.15000000001"))),
                 CIdentityError);
}

TEST(Verify, UsesTheDimensionsOfMappedBaseUnits) {
    const auto own = std::dynamic_pointer_cast<CBaseUnit>(CBaseUnit::getInstance("qxy"));
    own->setDimension(SI::Second(), SI::Second()->multiply(0.1)->getConverterTo(SI::Second()));
    verify(own, base("qxy"));
    verify(own * SI::Meter()->multiply(0.3),
           base("qxy") * base("m").scaled(CFactor(CFraction::ofDouble(0.3))));
}

TEST(Verify, TheErrorCanBeAssigned) {
    CIdentityError error("none", nullptr);
    error = CIdentityError("the metre", SI::Meter());
    EXPECT_STREQ(error.what(), "the metre");
    EXPECT_EQ(error.inTheWay(), SI::Meter());
}

TEST(Verify, RefusesAnEmptyPointer) {
    EXPECT_THAT([] { verify(nullptr, CMeaning()); },
                ThrowsMessage<std::invalid_argument>("verify: the unit is an empty pointer"));
}

}  // namespace
}  // namespace mensor
