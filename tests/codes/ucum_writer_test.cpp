// ucum_writer_test.cpp: writes meanings as codes of UCUM.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "codes/UcumGrammar.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "mensor_codes/Codes.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/Reading.h"

using namespace mensor;
using codes::CMatch;
using codes::eSystem;
using exact::CFactor;
using exact::CFraction;
using exact::CMeaning;
using testing::Contains;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

CMeaning read(std::string_view code) { return codes::read(eSystem::UCUM, code); }

CMatch codeFor(const CMeaning& meaning) { return codes::codeFor(eSystem::UCUM, meaning); }

TEST(UcumWriter, WritesEachAtomAsItsCodeOrAsItsSynonym) {
    for (const codes::CCode& atom : codes::all(eSystem::UCUM)) {
        if (atom.Definition.empty()) {
            continue;
        }
        const CMeaning meaning = read(atom.Code);
        const CMatch match = codeFor(meaning);
        EXPECT_EQ(match.Code, atom.SameAs.empty() ? atom.Code : std::string(atom.SameAs))
            << atom.Code;
        EXPECT_EQ(read(match.Code), meaning) << atom.Code;
        if (!atom.SameAs.empty()) {
            EXPECT_THAT(match.Synonyms, Contains(atom.Code));
        }
        EXPECT_THAT(match.Nearest, IsEmpty()) << atom.Code;
    }
}

TEST(UcumWriter, WritesUsualCodesAsTheyAre) {
    for (const char* code : {
#define MENSOR_USUAL(code) code,
#include "mensor_codes/ucum_usual.def"
#undef MENSOR_USUAL
         }) {
        EXPECT_EQ(codeFor(read(code)).Code, code);
    }
}

TEST(UcumWriter, WritesPrefixedAtomsWithTheSameMeaning) {
    for (const UcumAtom& atom : ucumAtoms()) {
        for (const auto& [prefix, factor] : ucumPrefixes()) {
            const bool isTried = prefix == "k" || prefix == "u" || prefix == "da" || prefix == "Ki";
            if (atom.TakesPrefixes && atom.Meaning && isTried) {
                const CMeaning meaning = atom.Meaning->scaled(CFactor(factor));
                const CMatch match = codeFor(meaning);
                ASSERT_TRUE(match) << prefix + atom.Code;
                EXPECT_EQ(read(match.Code), meaning) << prefix + atom.Code << " " << match.Code;
            }
        }
    }
}

TEST(UcumWriter, WritesCodesAsPeopleDo) {
    const std::pair<const char*, const char*> codes[] = {
        {"m³/h", "m3/h"},
        {"km/h", "km/h"},
        {"m/s", "m/s"},
        {"kg", "kg"},
        {"mg", "mg"},
        {"µg", "ug"},
        {"°C", "Cel"},
        {"kPa", "kPa"},
        {"hPa", "hPa"},
        {"kWh", "kW.h"},
        {"W/(m²·K)", "W/(m2.K)"},
        {"kJ/(kg·K)", "kJ/(kg.K)"},
        {"N·m", "J"},
        {"N/m", "N/m"},
        {"kN/m", "kN/m"},
        {"kg·m²", "kg.m2"},
        {"m⁴", "m4"},
        {"mm⁴", "mm4"},
        {"s²", "s2"},
        {"rad/s", "rad/s"},
        {"l/min", "L/min"},
        {"ml", "mL"},
        {"µl/h", "uL/h"},
        {"m²/s²", "Gy"},
        {"V/m", "V/m"},
        {"kV/m", "kV/m"},
        {"mol/(m³·s)", "mol/(m3.s)"},
        {"K/km", "mK/m"},
        {"1", "1"},
        {"Hz", "Hz"},
        {"byte/s", "By/s"},
        {"kbit/s", "kbit/s"},
        {"KiB", "KiBy"},
        {"rev/min", "circ/min"},
        {"1/min", "/min"},
        {"g/h", "g/h"},
    };
    const exact::CCatalogue catalogue =
        exact::CCatalogue::builtIn().with(exact::ePack::SCIENCE).with(exact::ePack::COUNTING);
    for (const auto& [text, code] : codes) {
        const CMeaning meaning = exact::read(text, catalogue);
        EXPECT_EQ(codeFor(meaning).Code, code) << text;
        EXPECT_EQ(read(code), meaning) << text;
    }
}

TEST(UcumWriter, WritesNumbersOnlyAsPowersOfTen) {
    const auto number = [](const char* text) {
        return CMeaning().scaled(CFactor(CFraction::ofText(text)));
    };
    EXPECT_EQ(codeFor(number("10")).Code, "10*");
    EXPECT_EQ(codeFor(number("100")).Code, "10*2");
    EXPECT_EQ(codeFor(number("1e-15")).Code, "10*-15");
    EXPECT_EQ(codeFor(number("1000000")).Code, "10*6");
    EXPECT_EQ(codeFor(number("0.01")).Code, "%");
    EXPECT_EQ(codeFor(CMeaning().scaled(CFactor::pi())).Code, "[pi]");
    EXPECT_EQ(codeFor(number("7")).Code, "");
    EXPECT_EQ(codeFor(number("7")).Nearest, "10*");
    EXPECT_EQ(codeFor(read("10*5.K/m")).Code, "10*5.K/m");
    EXPECT_EQ(codeFor(read("10*5.m")).Code, "10*5.m");
    EXPECT_EQ(codeFor(read("10*5/m")).Code, "10*5/m");
    EXPECT_EQ(codeFor(read("7.m")).Code, "");
    EXPECT_EQ(codeFor(number("1e99")).Code, "10*99");
    EXPECT_EQ(codeFor(number("1e-99")).Code, "10*-99");
    EXPECT_EQ(codeFor(number("1e100")).Code, "");
    EXPECT_EQ(codeFor(number("1e-100")).Code, "");
}

TEST(UcumWriter, WritesLargeExponents) {
    EXPECT_EQ(codeFor(read("m49")).Code, "m49");
    EXPECT_EQ(codeFor(read("1/m49")).Code, "/m49");
    EXPECT_EQ(codeFor(read("m99")).Code, "");
}

TEST(UcumWriter, WritesNoRootOfAnArbitraryUnit) {
    const CMeaning unit = read("[IU]");
    EXPECT_EQ(codeFor(unit.power(2)).Code, "[iU]2");
    EXPECT_EQ(codeFor(unit.power({1, 2})).Code, "");
    EXPECT_EQ(codeFor(unit.power({3, 2})).Code, "");
}

TEST(UcumWriter, ListsSynonyms) {
    EXPECT_THAT(codeFor(read("Hz")).Synonyms, UnorderedElementsAre("Bq", "Bd"));
    EXPECT_THAT(codeFor(read("L")).Synonyms, UnorderedElementsAre("l"));
    EXPECT_THAT(codeFor(read("mol")).Synonyms, UnorderedElementsAre("eq", "osm"));
    EXPECT_THAT(codeFor(read("m3")).Synonyms, UnorderedElementsAre("st"));
    EXPECT_THAT(codeFor(read("m")).Synonyms, IsEmpty());
}

TEST(UcumWriter, FindsTheNearestCodeIfThereIsNone) {
    const CMatch psi = codeFor(exact::read("psi"));  // 6894.76 Pa, a rounded value
    EXPECT_FALSE(psi);
    EXPECT_EQ(psi.Nearest, "[psi]");
    EXPECT_NEAR(psi.Deviation, 6894.757293168 / 6894.76 - 1, 1e-12);
    EXPECT_EQ(
        psi.toString(eSystem::UCUM),
        "no code of UCUM means exactly this; the nearest is [psi], which is 3.9e-05 % smaller");
    EXPECT_EQ(codeFor(read("7.m3/h")).Nearest, "L/s");
    EXPECT_EQ(codeFor(CMeaning::base("piece")).Nearest, "");
    EXPECT_FALSE(codeFor(CMeaning::base("piece")));
    EXPECT_FALSE(codeFor(read("K").shifted(CFraction(1))));
    EXPECT_EQ(codeFor(read("K").shifted(CFraction(1))).Nearest, "");
    EXPECT_FALSE(codeFor(CMeaning::base("m").power(exact::CExponent(1, 2))));
    EXPECT_FALSE(codeFor(CMeaning::base("m").scaled(CFactor(CFraction(2)).power({1, 2}))));
}

TEST(UcumWriter, DistinguishesRadiansAndArbitraryUnitsFromNumbers) {
    EXPECT_EQ(codeFor(CMeaning::base("rad")).Code, "rad");
    EXPECT_EQ(codeFor(CMeaning::base("rad") / CMeaning::base("s")).Code, "rad/s");
    EXPECT_EQ(codeFor(CMeaning::base("bit") / CMeaning::base("s")).Code, "bit/s");
    EXPECT_EQ(codeFor(read("[iU]/mg")).Code, "M[iU]/kg");
    EXPECT_EQ(codeFor(read("[CFU]/m3")).Code, "[CFU]/m3");
    EXPECT_EQ(codeFor(read("[CFU]/[PFU]")).Code, "");
}

// Each code that is written has the meaning that was asked for.
TEST(UcumWriter, WritesRandomMeaningsCorrectly) {
    UcumGenerator generator(3);
    int found = 0;
    for (int i = 0; i < 400; ++i) {
        CMeaning meaning;
        try {
            meaning = generator.expression().Meaning;
        } catch (const exact::CError&) {
            continue;
        }
        const CMatch match = codeFor(meaning);
        if (match) {
            ++found;
            ASSERT_EQ(read(match.Code), meaning) << match.Code;
        }
        for (const std::string& synonym : match.Synonyms) {
            ASSERT_EQ(read(synonym), meaning) << synonym;
        }
        if (!match.Nearest.empty()) {
            ASSERT_TRUE(read(match.Nearest).isCompatibleWith(meaning)) << match.Nearest;
        }
    }
    EXPECT_GT(found, 80);
}

TEST(UcumWriter, OpenTelemetryHasTheSameCodes) {
    EXPECT_EQ(codes::codeFor(eSystem::OPENTELEMETRY, exact::read("byte")).Code, "By");
    EXPECT_EQ(codes::codeFor(eSystem::OPENTELEMETRY, exact::read("ms")).Code, "ms");
}

}  // namespace
