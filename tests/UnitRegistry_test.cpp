// UnitRegistry_test.cpp: which units are registered and labelled at load, and which are not.
// behaviour/Loading_test.cpp tests failures at load.
#include "mensor/UnitRegistry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "support/Matchers.h"

namespace mensor {
namespace {
using ::testing::StrEq, ::testing::ThrowsMessage;

MATCHER(IsUnknown, "is a text that nothing is known by") {
    try {
        const CUnitPtr unit = CUnit::fromString(arg);
        *result_listener << "which denotes " << unit->toStdString();
        return false;
    } catch (const std::invalid_argument& error) {
        return error.what() == "Label: " + std::string(arg) + " not recognized";
    }
}

TEST(UnitRegistry, PrefixedUnitsAreKnownAfterLoad) {
    EXPECT_EQ(CUnit::fromString("km"), SI::Kilo(SI::Meter()));
    EXPECT_EQ(CUnit::fromString("ms"), SI::Milli(SI::Second()));
    EXPECT_EQ(CUnit::fromString("µA"), SI::Micro(SI::Ampere()));
    EXPECT_EQ(CUnit::fromString("daPa"), SI::Deka(SI::Pascal()));
    EXPECT_EQ(CUnit::fromString("MW"), SI::Mega(SI::Watt()));
    EXPECT_EQ(CUnit::fromString("ymol"), SI::Yocto(SI::Mole()));
}

// Every listed unit with every prefix, found by prefix and symbol unless another unit with the same
// factor replaced the label.
TEST(UnitRegistry, EveryListedUnitHasAllTwentyPrefixes) {
    for (const char* symbol :
         {"A", "cd", "m",      "mol", "s",  "rad", "sr", "Hz", "N",  "Pa", "J",  "W",  "C",
          "V", "F",  "\u2126", "S",   "Wb", "T",   "H",  "lx", "Bq", "Gy", "Sv", "kat"}) {
        for (const CPrefix& prefix : prefixes()) {
            const std::string label = text(prefix.Symbol) + symbol;
            const CUnitPtr unit = CUnitFormat::unitFor(symbol)->multiply(prefix.Factor);
            if (label == "hPa") {
                EXPECT_THAT(unit, PrintsAs("mbar"));
            } else if (label == "crad") {
                EXPECT_THAT(unit, PrintsAs("centiradian"));
            } else {
                EXPECT_THAT(unit, PrintsAs(label));
                EXPECT_EQ(CUnitFormat::unitFor(label), unit) << label;
            }
        }
    }
}

TEST(UnitRegistry, TheLumenTheBitAndTheKilogramHaveNoPrefixes) {
    for (const CPrefix& prefix : prefixes()) {
        EXPECT_THAT(text(prefix.Symbol) + "lm", IsUnknown());
        EXPECT_THAT(text(prefix.Symbol) + "bit", IsUnknown());
        EXPECT_THAT(text(prefix.Symbol) + "kg", IsUnknown());
    }
    EXPECT_EQ(CUnit::fromString("lm"), SI::Lumen());
    EXPECT_EQ(CUnit::fromString("bit"), SI::Bit());
}

TEST(UnitRegistry, UnitsOfMassAreMultiplesOfTheGram) {
    for (const CPrefix& prefix : prefixes()) {
        if (prefix.Factor == 1000) {
            continue;
        }
        const std::string label = text(prefix.Symbol) + "g";
        EXPECT_EQ(CUnit::fromString(label), SI::Gram()->multiply(prefix.Factor));
        EXPECT_THAT(CUnit::fromString(label), PrintsAs(label));
        EXPECT_THAT(CUnit::fromString(label), ConvertsTo(SI::Kilogram(), 1, prefix.Factor * 0.001));
    }
}

TEST(UnitRegistry, KgDenotesTheBaseUnitAndNoTransformedUnit) {
    EXPECT_EQ(CUnit::fromString("kg"), SI::Kilogram());
    EXPECT_EQ(CUnitFormat::labelUnitMap().count("kg"), 0U);
    EXPECT_EQ(CUnitFormat::unitLabelMap().count(SI::Kilogram()), 0U);
    const CUnitPtr thousandGrams = SI::Kilo(SI::Gram());
    EXPECT_NE(thousandGrams, SI::Kilogram());
    EXPECT_EQ(text(CUnitFormat::labelFor(thousandGrams)), "");
}

// A multiple of the kelvin and the same multiple of the degree Celsius are one unit. Its second
// label replaced the first.
TEST(UnitRegistry, PrefixedKelvinsAreLabelledAsDegreesCelsius) {
    for (const CPrefix& prefix : prefixes()) {
        const CUnitPtr unit = SI::Kelvin()->multiply(prefix.Factor);
        EXPECT_EQ(unit, SI::Celsius()->multiply(prefix.Factor));
        EXPECT_THAT(text(prefix.Symbol) + "K", IsUnknown());
        EXPECT_THAT(unit, PrintsAs(text(prefix.Symbol) + "°C"));
        EXPECT_EQ(CUnit::fromString(prefix.Symbol + "°C"), unit);
        EXPECT_THAT(unit, ConvertsTo(SI::Kelvin(), 1, prefix.Factor));  // no offset
        EXPECT_THAT(unit, ConvertsTo(SI::Kelvin(), 0, 0));
    }
    EXPECT_THAT(CUnit::fromString("m°C"), ConvertsTo(SI::Kelvin(), 1, 0.001));
}

TEST(UnitRegistry, TheLabelsCentiradianAndMillibarReplaceThePrefixedOnes) {
    EXPECT_THAT("crad", IsUnknown());
    EXPECT_THAT("hPa", IsUnknown());
    EXPECT_THAT(SI::Centi(SI::Radian()), PrintsAs("centiradian"));
    EXPECT_THAT(SI::Hecto(SI::Pascal()), PrintsAs("mbar"));
    EXPECT_EQ(CUnit::fromString("centiradian"), SI::Centi(SI::Radian()));
    EXPECT_EQ(CUnit::fromString("mbar"), SI::Hecto(SI::Pascal()));
}

TEST(UnitRegistry, TheLiterHasSixSubmultiplesAndNoMultiples) {
    const struct {
        const char* Label;
        double Factor;
    } rows[] = {{"pl", 1e-12}, {"nl", 1e-9}, {"µl", 1e-6},
                {"ml", 0.001}, {"cl", 0.01}, {"dl", 0.1}};
    for (const auto& row : rows) {
        EXPECT_EQ(CUnit::fromString(row.Label), NonSI::Liter()->multiply(row.Factor));
        EXPECT_THAT(CUnit::fromString(row.Label), PrintsAs(row.Label));
        EXPECT_THAT(CUnit::fromString(row.Label),
                    ConvertsTo(SI::Meter() ^ 3, 1, row.Factor * 0.001));
    }
    for (const char* prefix :
         {"Y", "Z", "E", "P", "T", "G", "M", "k", "h", "da", "f", "a", "z", "y"}) {
        EXPECT_THAT(prefix + std::string("l"), IsUnknown());
    }
}

TEST(UnitRegistry, OtherUnitsOutsideTheSIHaveNoPrefixes) {
    std::istringstream units(
        "% rev ° ′ ″ centiradian grade byte atm bar mm_Hg in_Hg grav min h d "
        "week year month year_calendar day_sidereal year_sidereal");
    for (std::string unit; units >> unit;) {
        EXPECT_NE(CUnitFormat::unitFor(unit), nullptr) << unit;
        for (const CPrefix& prefix : prefixes()) {
            const std::string label = text(prefix.Symbol) + unit;
            // These two are the millibar and the candela.
            if (label != "mbar" && label != "cd") {
                EXPECT_THAT(label, IsUnknown());
            }
        }
    }
}

TEST(UnitRegistry, PsiAndTheEmptyLabelAreUnknownAfterLoad) {
    EXPECT_THAT("psi", IsUnknown());
    EXPECT_EQ(CUnitFormat::labelUnitMap().count(""), 0U);
    NonSI::Psi();
    EXPECT_EQ(CUnit::fromString("psi"), NonSI::Psi());
}

TEST(UnitRegistry, TheParserReadsEveryLabelAsOneName) {
    for (const auto& entry : CUnitFormat::labelUnitMap()) {
        EXPECT_EQ(CUnit::fromString(entry.first), entry.second) << toStdString(entry.first);
    }
}

// All units exist already. The labels are attached again. If a unit gets two labels, the accessor
// of the second one does not attach it again.
TEST(UnitRegistry, ASecondRegistryRegistersNoUnitAndAttachesTheLabelsAgain) {
    const std::size_t units = CUnit::instances().size();
    const std::size_t labels = CUnitFormat::labelUnitMap().size();
    const CUnitRegistry another;
    static_cast<void>(another);
    EXPECT_EQ(CUnit::instances().size(), units);
    EXPECT_EQ(CUnitFormat::labelUnitMap().size(), labels);
    EXPECT_THAT(SI::Milli(SI::Kelvin()), PrintsAs("m°C"));
    EXPECT_THAT(SI::Hecto(SI::Pascal()), PrintsAs("hPa"));
    EXPECT_THAT(SI::Centi(SI::Radian()), PrintsAs("crad"));
}

}  // namespace
}  // namespace mensor
