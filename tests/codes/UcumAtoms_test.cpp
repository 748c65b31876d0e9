// UcumAtoms_test.cpp: the meanings of all atoms of UCUM, alone and with prefixes.
#include "codes/UcumAtoms.h"

#include <set>
#include <string>
#include <string_view>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "mensor_codes/Codes.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/Reading.h"

using namespace mensor;
using codes::eSystem;
using exact::CFraction;
using exact::CMeaning;
using exact::eRefusal;
using testing::HasSubstr;

namespace {

CMeaning read(std::string_view code) { return codes::read(eSystem::UCUM, code); }

std::string messageOn(std::string_view code) {
    return codes::diagnose(codes::tryRead(eSystem::UCUM, code).Refusal).message();
}

TEST(UcumAtoms, AllAreInTheTable) {
    std::set<std::string> expected;
    for (const UcumAtom& atom : ucumAtoms()) {
        expected.insert(atom.Code);
    }
    std::set<std::string> found;
    for (const codes::CCode& code : codes::all(eSystem::UCUM)) {
        EXPECT_TRUE(found.insert(code.Code).second) << code.Code << " occurs twice";
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(found.size(), 313U);
}

TEST(UcumAtoms, EachMeansWhatUcumSays) {
    for (const UcumAtom& atom : ucumAtoms()) {
        const codes::CReading reading = codes::tryRead(eSystem::UCUM, atom.Code);
        ASSERT_EQ(reading.Meaning.has_value(), atom.Meaning.has_value()) << atom.Code;
        if (reading) {
            EXPECT_EQ(*reading.Meaning, *atom.Meaning)
                << atom.Code << " is " << reading.Meaning->toString() << " instead of "
                << atom.Meaning->toString();
        } else {
            EXPECT_EQ(reading.Refusal.Code, eRefusal::NO_MEANING) << atom.Code;
        }
    }
}

TEST(UcumAtoms, TakePrefixesWhereUcumSaysSo) {
    std::set<std::string> codes;
    for (const UcumAtom& atom : ucumAtoms()) {
        codes.insert(atom.Code);
    }
    for (const UcumAtom& atom : ucumAtoms()) {
        for (const auto& [prefix, factor] : ucumPrefixes()) {
            const std::string code = prefix + atom.Code;
            if (codes.count(code) > 0) {
                continue;  // this is also an atom
            }
            const codes::CReading reading = codes::tryRead(eSystem::UCUM, code);
            if (!atom.TakesPrefixes) {
                // A prefix and "10*" would be read as the prefix, the exponent 10 and a star.
                EXPECT_FALSE(reading) << code;
                EXPECT_NE(reading.Refusal.Code, eRefusal::NO_MEANING) << code;
            } else if (!atom.Meaning) {
                EXPECT_EQ(reading.Refusal.Code, eRefusal::NO_MEANING) << code;
            } else {
                ASSERT_TRUE(reading) << code;
                EXPECT_EQ(*reading.Meaning, atom.Meaning->scaled(exact::CFactor(factor))) << code;
            }
        }
    }
}

// So the order in which the reader tries atoms and prefixes does not matter.
TEST(UcumAtoms, APrefixAndAnAtomAreNeverAmbiguous) {
    std::set<std::string> prefixed;
    for (const UcumAtom& atom : ucumAtoms()) {
        for (const auto& [prefix, factor] : ucumPrefixes()) {
            if (atom.TakesPrefixes) {
                EXPECT_TRUE(prefixed.insert(prefix + atom.Code).second) << prefix + atom.Code;
            }
        }
    }
    std::set<std::string> both;
    for (const UcumAtom& atom : ucumAtoms()) {
        if (prefixed.count(atom.Code) > 0) {
            both.insert(atom.Code);
        }
    }
    EXPECT_THAT(both, testing::IsEmpty());
}

TEST(UcumAtoms, HaveAtMostOnePrefix) {
    for (const char* code : {"mkg", "kkm", "mmm", "ukg", "kMBy", "dam2m"}) {
        EXPECT_FALSE(codes::tryRead(eSystem::UCUM, code)) << code;
    }
    EXPECT_EQ(codes::tryRead(eSystem::UCUM, "mkg").Refusal.Code, eRefusal::UNKNOWN_CODE);
}

TEST(UcumAtoms, AreCaseSensitive) {
    for (const char* code : {"KG", "M", "MOL", "PAL", "CEL", "KAT", "[IN_I]", "HZ", "SEC", "BAR"}) {
        EXPECT_EQ(codes::tryRead(eSystem::UCUM, code).Refusal.Code, eRefusal::UNKNOWN_CODE) << code;
    }
    EXPECT_EQ(read("RAD").toString(), "0.01 m²/s²");
    EXPECT_EQ(read("rad").toString(), "rad");
    EXPECT_EQ(read("mPa").toString(), "0.001 kg/(m·s²)");
    EXPECT_EQ(read("MPa").toString(), "1000000 kg/(m·s²)");
}

TEST(UcumAtoms, OffsetUnitsKeepTheirOffsetWithAPrefix) {
    EXPECT_EQ(read("Cel").toString(), "K + 273.15");
    EXPECT_EQ(read("mCel").toString(), "0.001 K + 273.15");
    EXPECT_EQ(read("Cel{skin}").toString(), "K + 273.15");
    EXPECT_EQ(read("(Cel)"), read("Cel"));
    EXPECT_EQ(exact::CConversion(read("[degRe]"), read("Cel")).convertText("80"), "100");
    EXPECT_EQ(exact::CConversion(read("[degF]"), read("Cel")).convertText("98.6"), "37");
    EXPECT_EQ(exact::CConversion(read("mCel"), read("K")).convertText("36500"), "309.65");
}

TEST(UcumAtoms, OffsetUnitsHaveNoMeaningInProducts) {
    for (const char* code : {"W/Cel", "/Cel", "Cel2", "Cel-1", "2.Cel", "Cel.m", "Cel/Cel", "Cel0",
                             "[degF]/h", "(Cel)/h", "1/(Cel)", "m.(Cel)", "kCel.m"}) {
        const codes::CReading reading = codes::tryRead(eSystem::UCUM, code);
        EXPECT_EQ(reading.Refusal.Code, eRefusal::NO_MEANING) << code;
        EXPECT_FALSE(reading) << code;
    }
    const codes::CReading reading = codes::tryRead(eSystem::UCUM, "W/(m2.Cel)");
    EXPECT_EQ(reading.Refusal.Token.Begin, 6U);
    EXPECT_EQ(reading.Refusal.Token.End, 9U);
    EXPECT_EQ(messageOn("W/(m2.Cel)"),
              "\"Cel\" is a scale with its own zero and cannot be part of a product");
    EXPECT_EQ(read("Cel1"), read("Cel"));
    EXPECT_EQ(read("Cel+1"), read("Cel"));
}

TEST(UcumAtoms, UnitsDefinedByFunctionsAreRefusedWithTheReason) {
    EXPECT_EQ(messageOn("[pH]"),
              "\"[pH]\" (pH) has no exact meaning: its values are logarithms; minus the decimal "
              "logarithm of a concentration in mol/L");
    EXPECT_EQ(messageOn("dB"),
              "\"B\" (bel) has no exact meaning: its values are logarithms; the decimal logarithm "
              "of a ratio");
    EXPECT_EQ(messageOn("%[slope]"),
              "\"%[slope]\" (per cent of slope) has no exact meaning: its values are tangents of "
              "angles; 100 times that of an angle");
    for (const char* code : {"Np",
                             "mNp",
                             "dB[SPL]",
                             "B[V]",
                             "dB[mV]",
                             "dB[uV]",
                             "dB[10.nV]",
                             "B[W]",
                             "dB[kW]",
                             "bit_s",
                             "[p'diop]",
                             "[m/s2/Hz^(1/2)]",
                             "[m/s2/Hz^0.5]",
                             "[hp'_X]",
                             "[hp'_C]",
                             "[hp'_M]",
                             "[hp'_Q]",
                             "dB/m",
                             "m.[pH]",
                             "[pH]2",
                             "/[pH]",
                             "(dB)",
                             "dB{A}"}) {
        const codes::CReading reading = codes::tryRead(eSystem::UCUM, code);
        EXPECT_FALSE(reading) << code;
        EXPECT_EQ(reading.Refusal.Code, eRefusal::NO_MEANING) << code;
    }
    const codes::CReading reading = codes::tryRead(eSystem::UCUM, "m.dB[SPL]");
    EXPECT_EQ(reading.Refusal.Token.Begin, 3U);
    EXPECT_EQ(reading.Refusal.Token.End, 9U);
}

TEST(UcumAtoms, ArbitraryUnitsAreDimensionsOfTheirOwn) {
    EXPECT_EQ(read("[iU]"), CMeaning::base("[iU]"));
    EXPECT_EQ(read("[IU]"), read("[iU]"));
    EXPECT_EQ(read("k[IU]/mL").toString(), "1000000000 [iU]/m³");
    EXPECT_EQ(read("m[IU]/L"), read("[iU]/m3"));
    EXPECT_FALSE(read("[iU]").isCompatibleWith(read("[arb'U]")));
    EXPECT_FALSE(read("[iU]").isCompatibleWith(read("1")));
    EXPECT_FALSE(read("[CFU]").isCompatibleWith(read("[PFU]")));
    EXPECT_EQ(read("[CFU]/[PFU]").unitsText(), "[CFU]/[PFU]");
    EXPECT_EQ(read("[CFU].m/[CFU]").toString(), "m");
    EXPECT_EQ(read("[hp_X]"), CMeaning::base("[hp_X]"));
}

TEST(UcumAtoms, RadianSteradianBitAndMoleAreNotNumbers) {
    EXPECT_EQ(read("mol"), exact::read("mol"));
    EXPECT_FALSE(read("mol").isCompatibleWith(read("1")));
    EXPECT_EQ(read("deg"), exact::read("°"));
    EXPECT_EQ(read("''"), exact::read("″"));
    EXPECT_EQ(read("sr"), exact::read("sr"));
    EXPECT_EQ(read("lm"), exact::read("lm"));
    EXPECT_EQ(read("By"), exact::read("byte"));
    EXPECT_EQ(read("KiBy").toString(), "8192 bit");
    EXPECT_EQ(read("bit").marks().size(), 1U);
}

// Units that the exact library also defines.
TEST(UcumAtoms, AgreeWithTheUnitsOfTheExactLibrary) {
    const exact::CCatalogue catalogue = exact::CCatalogue::builtIn()
                                            .with(exact::ePack::CUSTOMARY)
                                            .with(exact::ePack::SCIENCE)
                                            .with(exact::ePack::OFFSETS)
                                            .with(exact::ePack::COUNTING);
    const std::pair<const char*, const char*> same[] = {
        {"[in_i]", "in"},  {"[ft_i]", "ft"},    {"[yd_i]", "yd"},
        {"[mi_i]", "mi"},  {"[nmi_i]", "nmi"},  {"[lb_av]", "lb"},
        {"[oz_av]", "oz"}, {"[lbf_av]", "lbf"}, {"[psi]", "lbf/in²"},
        {"atm", "atm"},    {"bar", "bar"},      {"eV", "eV"},
        {"u", "Da"},       {"[degF]", "°F"},    {"Cel", "°C"},
        {"deg", "°"},      {"'", "′"},          {"gon", "grade"},
        {"h", "h"},        {"d", "d"},          {"wk", "week"},
        {"a_g", "year"},   {"mo_g", "month"},   {"L", "l"},
        {"t", "t"},        {"P", "P"},          {"St", "St"},
        {"G", "G"},        {"Ci", "Ci"},        {"REM", "rem"},
        {"RAD", "rd"},     {"Ao", "Å"},         {"[ly]", "ly"},
        {"[g]", "grav"},   {"%", "%"},          {"[ppm]", "ppm"},
        {"[ppb]", "ppb"},  {"[ppth]", "‰"},     {"By", "byte"},
        {"Hz", "Hz"},      {"Ohm", "Ω"},        {"[HP]", "550 ft·lbf/s"}};
    for (const auto& [code, text] : same) {
        EXPECT_EQ(read(code), catalogue.evaluate(text)) << code << " and " << text;
    }
}

TEST(UcumAtoms, EachHasANameAndASource) {
    const struct {
        const char* Code;
        const char* Name;
        const char* Symbol;
        const char* Definition;
        const char* Source;
        const char* SameAs;
        const char* Note;
    } rows[] = {
        {"[in_i]", "inch", "in", "0.0254 m", "international yard and pound agreement, 1959", "",
         ""},
        {"Bq", "becquerel", "Bq", "s^-1", "SI brochure, 9th ed.", "Hz", ""},
        {"Np", "neper", "Np", "", "its values are logarithms", "",
         "the natural logarithm of a ratio"},
    };
    for (const auto& row : rows) {
        const codes::CCode code = *codes::find(eSystem::UCUM, row.Code);
        EXPECT_EQ(code.Name, row.Name);
        EXPECT_EQ(code.Symbol, row.Symbol) << row.Name;
        EXPECT_EQ(code.Definition, row.Definition) << row.Name;
        EXPECT_EQ(code.Source, row.Source) << row.Name;
        EXPECT_EQ(code.SameAs, row.SameAs) << row.Name;
        EXPECT_EQ(code.Note, row.Note) << row.Name;
    }
    EXPECT_EQ(codes::find(eSystem::UCUM, "Cel")->Symbol, "°C");
    EXPECT_EQ(codes::find(eSystem::UCUM, "ph")->Note, "NIST SP 811 has 10^4 lx");
    EXPECT_EQ(codes::find(eSystem::UCUM, "[p'diop]")->Name, "prism dioptre");
    for (const codes::CCode& code : codes::all(eSystem::UCUM)) {
        EXPECT_FALSE(code.Name.empty()) << code.Code;
        EXPECT_FALSE(code.Source.empty()) << code.Code;
    }
    EXPECT_FALSE(codes::find(eSystem::UCUM, "km"));  // only atoms have rows
    EXPECT_FALSE(codes::find(eSystem::UCUM, ""));
}

}  // namespace
