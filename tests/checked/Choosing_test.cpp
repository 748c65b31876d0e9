// Choosing_test.cpp: lists the units of a quantity, and picks the unit that suits a value.
#include "mensor_checked/Choosing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Packs.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/making.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using checked::CChoice;
using checked::choicesFor;
using checked::readable;
using checked::readableUnit;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

std::vector<std::string> texts(const std::vector<CChoice>& choices) {
    std::vector<std::string> result;
    for (const CChoice& choice : choices) {
        result.push_back(choice.Text);
    }
    return result;
}

std::string readableText(const char* value) {
    return checked::writeValue(readable(checked::readValue(value)));
}

TEST(Choosing, ListsCompatibleUnitsBySize) {
    const CUnitPtr euro = checked::baseUnit("EUR");
    checked::label(checked::scaled(euro, 1000), "TEUR");
    checked::label(checked::scaled(euro, 0.01), "ct");
    checked::alias(checked::scaled(euro, 0.1), "dime");
    const std::vector<CChoice> choices = choicesFor(euro);
    EXPECT_THAT(texts(choices), ElementsAre("ct", "dime", "EUR", "TEUR"));
    EXPECT_EQ(choices[0].Factor, 0.01);
    EXPECT_EQ(choices[3].Factor, 1000);
    EXPECT_EQ(choices[2].Unit, euro);
}

TEST(Choosing, ListsEveryUnitThatCanBeRead) {
    for (const CUnitPtr& unit :
         {CUnitPtr(SI::Meter()), SI::Pascal(), CUnitPtr(SI::Kelvin()), SI::Hertz()}) {
        const std::vector<CChoice> choices = choicesFor(unit);
        std::size_t compatible = 0;
        for (const auto& [label, candidate] : CUnitFormat::labelUnitMap()) {
            compatible += checked::textOf(candidate) && unit->isCompatible(candidate) ? 1U : 0U;
        }
        for (const auto& [symbol, candidate] : CUnit::symbols()) {
            compatible += unit->isCompatible(candidate) ? 1U : 0U;
        }
        EXPECT_EQ(choices.size(), compatible);
        double former = 0.0;
        for (const CChoice& choice : choices) {
            EXPECT_EQ(checked::readUnit(choice.Text), choice.Unit);
            EXPECT_GE(choice.Factor, former) << choice.Text;
            former = choice.Factor;
        }
    }
}

TEST(Choosing, ListsAllUnitsOfPressure) {
    const std::vector<CChoice> choices = choicesFor(NonSI::Bar());
    EXPECT_THAT(texts(choices), Contains("atm"));
    EXPECT_THAT(texts(choices), Contains("mm_Hg"));
    EXPECT_THAT(texts(choices), Contains("psi"))
        << "although the program has not called NonSI::Psi()";
    for (const CChoice& choice : choicesFor(NonSI::Bar())) {
        if (choice.Text == "psi") {
            EXPECT_DOUBLE_EQ(choice.Factor, 0.0689476);
            return;
        }
    }
    FAIL() << "psi is not listed";
}

TEST(Choosing, LeavesOutUnitsThatDoNotReadBack) {
    EXPECT_THAT(texts(choicesFor(SI::Kelvin())), ElementsAre("K", "°C"));
    checked::alias(CUnit::fromString("m°C"), "mK");
    EXPECT_THAT(texts(choicesFor(SI::Kelvin())), ElementsAre("mK", "K", "°C"));
}

TEST(Choosing, DoesNotListUnitsWhoseDimensionCollides) {
    // 1/s² and 1/(m·K) have the same hash code, so for the library their multiples are compatible.
    const CUnitPtr wrong = CUnit::fromString("1/(cm·K)");
    CUnitFormat::label(wrong, "qq");
    const CUnitPtr right = checked::label(checked::scaled(checked::readUnit("1/s²"), 4), "rr");
    ASSERT_TRUE(right->isCompatible(wrong));
    EXPECT_THAT(texts(choicesFor(right)), ElementsAre("rr"));
}

TEST(Choosing, ListsNoUnitThatTheLibraryTakesForIncompatible) {
    const auto own = freshClientUnit();  // has the meaning of the metre, but a dimension of its own
    own->Elements = [] { return std::vector<CUnitRationalPower>{{SI::Meter(), 1, 1}}; };
    ASSERT_FALSE(own->isCompatible(SI::Meter()));
    EXPECT_THAT(choicesFor(own), ElementsAre(::testing::Field(&CChoice::Unit, own)));
}

TEST(Choosing, ListsNothingIfNoNamedUnitIsCompatible) {
    EXPECT_THAT(choicesFor(CUnit::fromString("kg^7")), ElementsAre());
}

TEST(Readable, PrefersPowersOfAThousand) {
    struct Pair {
        const char* From;
        const char* To;
    };
    for (const Pair& pair :
         {Pair{"1e-6 m", "1 µm"},    {"0.001 m", "1 mm"},       {"0.05 m", "50 mm"},
          {"12345 m", "12.345 km"},  {"999.9 m", "999.9 m"},    {"1000 m", "1 km"},
          {"-0.00025 N", "-250 µN"}, {"50000 cm", "500 m"},     {"1500 kg", "1.5 Mg"},
          {"0.5 kg", "500 g"},       {"0.25 l", "250 ml"},      {"3600 s", "3.6 ks"},
          {"2500 Hz", "2.5 kHz"},    {"2500 Bq", "2.5 kBq"},    {"101325 Pa", "101.325 kPa"},
          {"0.25 ym", "0.25 ym"},    {"2500 Ym", "2500 Ym"},    {"5 min", "5 min"},
          {"5000 lm", "5000 lm"},    {"1e-5 m/s", "1e-05 m/s"}, {"25 °C", "25 °C"},
          {"0.001 K", "0.001 K"}}) {
        EXPECT_EQ(readableText(pair.From), pair.To) << pair.From;
    }
}

TEST(Readable, DoesNotChangeZeroNanInfinityAndOffsetUnits) {
    for (const double x : {0.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(readableUnit(x, SI::Meter()), SI::Meter());
    }
    const CUnitPtr nameless = SI::Meter()->multiply(42);
    EXPECT_EQ(readableUnit(1e9, nameless), nameless);
    EXPECT_EQ(readableUnit(1e9, CProductUnit::one()), CProductUnit::one());
}

TEST(Readable, ANameIsPrefixedOnlyIfItsUnitHasThatSize) {
    const CUnitPtr own = checked::label(checked::scaled(SI::Meter(), 7), "qq");
    const CUnitPtr fake = checked::label(checked::scaled(SI::Meter(), 7007), "kqq");
    EXPECT_EQ(readableUnit(7007, own), own) << "1 kqq is not 1000 qq";
    EXPECT_EQ(readableUnit(7007, fake), fake);
    CUnitFormat::label(SI::Meter()->multiply(-7e6), "Mqq");
    EXPECT_EQ(readableUnit(1e6, own), own) << "the Mqq has no exact size";
    const CUnitPtr mega = checked::label(checked::scaled(SI::Meter(), 9e6), "Mrr");
    CUnitFormat::label(SI::Meter()->multiply(-9.0), "rr");
    EXPECT_EQ(readableUnit(1e-6, mega), mega) << "the rr has no exact size";
}

TEST(Readable, AScaleWithItsOwnZeroIsNoPrefixedForm) {
    const CUnitPtr own = checked::label(checked::scaled(SI::Kelvin(), 7), "qq");
    checked::label(checked::affine(SI::Kelvin(), 7000, 3), "kqq");
    EXPECT_EQ(readableUnit(5000, own), own);
    checked::label(checked::affine(SI::Kelvin(), 9, 3), "rr");
    const CUnitPtr kilo = checked::label(checked::scaled(SI::Meter(), 9000), "krr");
    EXPECT_EQ(readableUnit(0.005, kilo), kilo);
}

TEST(Readable, RoundingDoesNotChangeTheUnitAtPowersOfAThousand) {
    for (const double x : {1000.0, std::nextafter(1000.0, 0.0), std::nextafter(1000.0, 2000.0),
                           0.1 * 10000.0, 1000.0 * (1 - 1e-13)}) {
        EXPECT_EQ(readableUnit(x, SI::Meter()), SI::Kilo(SI::Meter())) << exactly(x);
        EXPECT_EQ(readableUnit(x * 1e-6, SI::Meter()), SI::Milli(SI::Meter())) << exactly(x);
    }
    EXPECT_EQ(readableUnit(1000.0 * (1 - 1e-11), SI::Meter()), SI::Meter());
}

TEST(Readable, ChoosesTheSameUnitForItsOwnResult) {
    std::mt19937 random(1);
    for (const char* name : {"m", "g", "l", "Pa", "s"}) {
        const CUnitPtr unit = CUnit::fromString(name);
        for (int i = 0; i < 50; ++i) {
            const double x = std::pow(10.0, static_cast<int>(random() % 48) - 24) *
                             (1.0 + static_cast<double>(random() % 9000) / 1000.0);
            const CValueWithUnit once = readable({x, unit});
            EXPECT_EQ(readable(once).unit(), once.unit()) << exactly(x) << " " << name;
        }
    }
}

TEST(Choosing, RefusesAnEmptyPointer) {
    EXPECT_THROW(choicesFor(nullptr), std::invalid_argument);
    EXPECT_THROW(readableUnit(1, nullptr), std::invalid_argument);
    EXPECT_THROW(readable({1, nullptr}), std::invalid_argument);
}

// The converter of the registry multiplies by a thousand before it divides by 1e27.
TEST(Choosing, KeepsLargeValuesFinite) {
    const CValueWithUnit large = readable(CValueWithUnit(1e308, SI::Kilogram()));
    EXPECT_EQ(large.unit(), checked::readUnit("Yg"));
    EXPECT_EQ(large.value(), 1e287);
    for (const char* text : {"kg", "cl", "hPa", "das", "m", "pl"}) {
        checked::registerPack(checked::ePack::SI);
        for (const double value : {1.7e308, 4e-324}) {
            const CValueWithUnit chosen = readable(CValueWithUnit(value, checked::readUnit(text)));
            EXPECT_TRUE(std::isfinite(chosen.value())) << value << " " << text;
            EXPECT_NE(chosen.value(), 0) << value << " " << text;
        }
    }
}

}  // namespace
}  // namespace mensor
