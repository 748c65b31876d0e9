// Definitions_test.cpp: catalogues find and evaluate definitions, and refuse malformed ones.
#include "mensor_exact/Definitions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "exact/DefinitionTable.h"
#include "exact/expect_error.h"

namespace mensor::exact {
namespace {

using ::testing::HasSubstr;

const CCatalogue BuiltIn = CCatalogue::builtIn();

std::string meaning(const char* definition) { return BuiltIn.evaluate(definition).toString(); }

void expectRefused(eError code, const std::string& definition, const std::string& sentence = "") {
    SCOPED_TRACE(definition);
    expectError(
        code, [&] { BuiltIn.evaluate(definition); }, sentence);
}

TEST(Definitions, FindOnlyTheExactSpellingOfAName) {
    const auto found = BuiltIn.find("km");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->Name, "km");
    EXPECT_EQ(found->Text, "10^3 m");
    EXPECT_EQ(found->English, "kilometre");
    EXPECT_THAT(std::string(found->Source), HasSubstr("SI brochure"));
    EXPECT_EQ(found->Pack, ePack::CATALOGUE);
    EXPECT_EQ(BuiltIn.find("hPa")->Pack, ePack::SI);
    EXPECT_EQ(BuiltIn.find("m")->Text, "");
    for (const char* const unknown : {"KM", "k m", "", "kmm", "in", "ton", "m\xC2\xB2", "\xFF"}) {
        EXPECT_FALSE(BuiltIn.find(unknown)) << unknown;
        EXPECT_FALSE(BuiltIn.meaning(unknown)) << unknown;
    }
}

TEST(Definitions, HaveEveryRowOfTheTable) {
    CCatalogue all = BuiltIn;
    for (const ePack pack :
         {ePack::CUSTOMARY, ePack::US, ePack::SCIENCE, ePack::OFFSETS, ePack::COUNTING}) {
        all = all.with(pack);
    }
    const std::vector<CDefinition> found = all.definitions();
    std::size_t next = 0;
    for (const DefinitionRow& row : definitionRows()) {
        if (row.Set == "IMPERIAL") {
            continue;
        }
        ASSERT_LT(next, found.size());
        const CDefinition& definition = found[next++];
        EXPECT_EQ(definition.Name, row.Name);
        EXPECT_EQ(definition.Text, row.Definition);
        EXPECT_EQ(definition.English, row.English);
        EXPECT_EQ(definition.Source, row.Source);
        EXPECT_EQ(all.find(row.Name)->Text, row.Definition) << row.Name;
        // Compares the meaning that the compiler has computed with one that is computed now.
        if (!row.Definition.empty()) {
            EXPECT_EQ(all.meaning(row.Name), all.evaluate(row.Definition)) << row.Name;
        } else {
            EXPECT_EQ(all.meaning(row.Name), CMeaning::base(row.Name)) << row.Name;
        }
    }
    EXPECT_EQ(next, found.size());
}

TEST(Definitions, DefinitionsOfAPackNeedThePack) {
    EXPECT_FALSE(BuiltIn.find("in"));
    const CCatalogue more = BuiltIn.with(ePack::CUSTOMARY);
    EXPECT_EQ(more.find("in")->Text, "25.4 mm");
    EXPECT_EQ(more.find("in")->Pack, ePack::CUSTOMARY);
    EXPECT_FALSE(BuiltIn.find("in"));
    EXPECT_EQ(more.with(ePack::CUSTOMARY).definitions().size(), more.definitions().size());
    EXPECT_EQ(BuiltIn.with(ePack::SI).definitions().size(), BuiltIn.definitions().size());
}

TEST(Definitions, NamesWithoutACountryDependOnThePack) {
    const CCatalogue american = BuiltIn.with(ePack::US);
    const CCatalogue british = BuiltIn.with(ePack::IMPERIAL);
    EXPECT_EQ(american.meaning("gal")->toString(), "0.003785411784 m³");
    EXPECT_EQ(british.meaning("gal")->toString(), "0.00454609 m³");
    expectError(
        eError::NAME_TAKEN, [&] { american.with(ePack::IMPERIAL); },
        "the catalogue has \"ton\" already");
    expectError(eError::NAME_TAKEN, [&] { british.with(ePack::US); });
    expectError(
        eError::OPTIONS, [&] { british.with(ePack::OWN); },
        "the definitions of a program are not a pack");
}

TEST(Definitions, AreProductsOfNumbersAndUnits) {
    EXPECT_EQ(meaning("25.4 mm"), "0.0254 m");
    EXPECT_EQ(meaning("5/9 K"), "5/9 K");
    EXPECT_EQ(meaning("π/180 rad"), "π/180 rad");
    EXPECT_EQ(meaning("180/π rad"), "180/π rad");
    EXPECT_EQ(meaning("2π rad"), "2π rad");
    EXPECT_EQ(meaning("2·π rad"), "2π rad");
    EXPECT_EQ(meaning("π^2·m"), "π^2 m");
    EXPECT_EQ(meaning("10^3 m"), "1000 m");
    EXPECT_EQ(meaning("10^-3 m"), "0.001 m");
    EXPECT_EQ(meaning("10⁻³ m"), "0.001 m");
    EXPECT_EQ(meaning("1e-3 m"), "0.001 m");
    EXPECT_EQ(meaning("1E+3 m"), "1000 m");
    EXPECT_EQ(meaning("kg·m/s²"), "kg·m/s²");
    EXPECT_EQ(meaning("kg m/s^2"), "kg·m/s²");
    EXPECT_EQ(meaning("  kg  ·  m  /  s² "), "kg·m/s²");
    EXPECT_EQ(meaning("J/kg/K"), "m²/(K·s²)");
    EXPECT_EQ(meaning("J/(kg·K)"), "m²/(K·s²)");
    EXPECT_EQ(meaning("J/(kg/K)"), "K·m²/s²");
    EXPECT_EQ(meaning("J/( kg K )"), "m²/(K·s²)");
    EXPECT_EQ(meaning("1/(s·A)·m"), "m/(A·s)");
    EXPECT_EQ(meaning("1/s"), "1/s");
    EXPECT_EQ(meaning("m^(1/2)"), "m^(1/2)");
    EXPECT_EQ(meaning("km^(-1/2)"), "(0.001)^(1/2) 1/m^(1/2)");
    EXPECT_EQ(meaning("s⁻²"), "1/s²");
    EXPECT_EQ(meaning("m¹⁰"), "m^10");
    EXPECT_EQ(meaning("1"), "1");
    EXPECT_EQ(meaning("V/kHz^(1/2)"), meaning("V·kHz^(-1/2)"));
    EXPECT_EQ(meaning("4^(1/2) m"), "2 m");
    EXPECT_EQ(meaning("123456789012345678901234567890 m"), "123456789012345678901234567890 m");
}

TEST(Definitions, MayHaveAnOffset) {
    EXPECT_EQ(meaning("5/9 K, offset 459.67"), "5/9 K + 45967/180");
    EXPECT_EQ(meaning("K, offset -273.15"), "K - 273.15");
    EXPECT_EQ(meaning("K,offset 1/3"), "K + 1/3");
    EXPECT_EQ(meaning("°C, offset 10"), "K + 283.15");
    EXPECT_EQ(meaning("°C"), "K + 273.15");
    EXPECT_EQ(meaning("1 °C"), "K + 273.15");
    EXPECT_EQ(meaning("°C^1"), "K + 273.15");
}

TEST(Definitions, MalformedTextsAreRefused) {
    for (const char* const text :
         {"",         " ",      "m//s",  "m/",        "/m",         "·m",        "m·",
          "m··s",     "m^",     "m^x",   "m^-",       "m^(1/2",     "m^(1/)",    "m^(1/-2)",
          "m⁻",       "m)",     "(m)",   "m·(s)",     "1/(m",       "1/()",      "1/(m/(s))",
          "1/(m)/(s", "5m",     "2ππ(",  "m, offset", "m, offset ", "m,offset5", "m, shift 5",
          "m,",       "1..2 m", "- 5 m", "m\ts",      "m\"s"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(BuiltIn.evaluate(text), CError);
    }
    expectRefused(eError::SYNTAX, "m//s", "\"m//s\" is not a definition");
    expectRefused(eError::SYNTAX, "5m", "\"5m\" is not a definition");
    expectRefused(eError::SYNTAX, "1/(m/(s))");
    expectRefused(eError::SYNTAX, "");
    expectRefused(eError::BAD_NUMBER, "m, offset 1..2", "\"1..2\" is not a decimal number");
    expectRefused(eError::BAD_NUMBER, "m, offset x");
    expectRefused(eError::BAD_NUMBER, "m, offset 1/2/3");
}

TEST(Definitions, UnknownNamesAreRefused) {
    expectRefused(eError::UNKNOWN_NAME, "furlong", "no unit has the name \"furlong\"");
    expectRefused(eError::UNKNOWN_NAME, "m/furlong");
    const std::string large(100, 'x');
    expectRefused(eError::UNKNOWN_NAME, large,
                  "no unit has the name \"" + std::string(60, 'x') + "...\"");
    expectRefused(eError::UNKNOWN_NAME, std::string(59, 'x') + "€€",
                  "no unit has the name \"" + std::string(59, 'x') + "...\"");
}

TEST(Definitions, ZeroAndNegativeFactorsAreRefused) {
    expectRefused(eError::NOT_POSITIVE, "0 m", "a factor must be positive, not 0");
    expectRefused(eError::NOT_POSITIVE, "-5 m", "a factor must be positive, not -5");
    expectRefused(eError::NOT_POSITIVE, "m·-5");
    expectRefused(eError::DIVISION_BY_ZERO, "1/0 m", "a division by zero in \"1/0 m\"");
    expectRefused(eError::DIVISION_BY_ZERO, "0^-1 m");
    expectRefused(eError::DIVISION_BY_ZERO, "K, offset 1/0", "a division by zero");
    expectRefused(eError::DIVISION_BY_ZERO, "m^(1/0)",
                  "an exponent with the denominator zero in \"m^(1/0)\"");
}

TEST(Definitions, ExponentsAndNumbersOutOfRangeAreRefused) {
    EXPECT_EQ(meaning("m^99"), "m^99");
    EXPECT_EQ(meaning("m⁹⁹/m⁹⁸"), "m");
    expectRefused(eError::EXPONENT_RANGE, "m^100", "an exponent beyond 99 in \"m^100\"");
    expectRefused(eError::EXPONENT_RANGE, "m^-100");
    expectRefused(eError::EXPONENT_RANGE, "m¹⁰⁰");
    expectRefused(eError::EXPONENT_RANGE, "m^(1/100)");
    expectRefused(eError::EXPONENT_RANGE, "m^99999999999999999999");
    expectRefused(eError::EXPONENT_RANGE, "m^99·m");
    expectRefused(eError::EXPONENT_RANGE, "π^99·π");
    expectRefused(eError::TOO_LARGE, "1e5000 m", "a factor of more than 16384 bits");
    expectRefused(eError::TOO_LARGE, "1e100000000000 m");
    expectRefused(eError::TOO_LARGE, "Ym^99/ym^99·Ym^99/ym^99");
    expectRefused(eError::TOO_LARGE, "K, offset 1e5000");
}

TEST(Definitions, OffsetUnitsInProductsAreRefused) {
    const std::string sentence = "a unit with an offset, K + 273.15, in a product";
    expectRefused(eError::OFFSET_IN_PRODUCT, "m·°C", sentence);
    expectRefused(eError::OFFSET_IN_PRODUCT, "°C·m", sentence);
    expectRefused(eError::OFFSET_IN_PRODUCT, "W/°C", sentence);
    expectRefused(eError::OFFSET_IN_PRODUCT, "°C²", sentence);
    expectRefused(eError::OFFSET_IN_PRODUCT, "10^3 °C");
    expectRefused(eError::OFFSET_IN_PRODUCT, "°C·10^3");
    expectRefused(eError::OFFSET_IN_PRODUCT, "°C/°C");
    expectRefused(eError::OFFSET_NOT_RATIONAL, "π/180 rad, offset 1");
}

TEST(Definitions, DefinitionsOfAProgramMayUseEachOtherInAnyOrder) {
    const CCatalogue own = BuiltIn.with({{"smoot", "1.7018 m", "smoot", "MIT, 1958"},
                                         {"bridge", "364.4 smoot"},
                                         {"ab", "2 cd_x"},
                                         {"cd_x", "3 ef"},
                                         {"ef", "5 s"},
                                         {"piece", ""},
                                         {"dozen", "12 piece"}});
    EXPECT_EQ(own.meaning("bridge")->toString(), "620.13592 m");
    EXPECT_EQ(own.meaning("ab")->toString(), "30 s");
    EXPECT_EQ(own.meaning("dozen")->toString(), "12 piece");
    EXPECT_EQ(own.evaluate("dozen/km").toString(), "0.012 piece/m");
    EXPECT_EQ(own.find("smoot")->English, "smoot");
    EXPECT_EQ(own.find("smoot")->Source, "MIT, 1958");
    EXPECT_EQ(own.find("smoot")->Pack, ePack::OWN);
    EXPECT_FALSE(BuiltIn.find("smoot"));
    // A catalogue that has definitions of a program can get more of them.
    const CCatalogue more = own.with({{"gross", "12 dozen"}}).with(ePack::CUSTOMARY);
    EXPECT_EQ(more.meaning("gross")->toString(), "144 piece");
    EXPECT_EQ(more.definitions().size(), BuiltIn.with(ePack::CUSTOMARY).definitions().size() + 8);
    EXPECT_FALSE(own.find("gross"));
}

TEST(Definitions, DefinitionsOfAProgramAreCopied) {
    CCatalogue own = BuiltIn;
    {
        const std::string name = std::string("smoot") + "_long_enough_for_the_heap";
        const std::string text = "1.7018 m";
        own = own.with({{name, text, "", ""}});
    }
    EXPECT_EQ(own.find("smoot_long_enough_for_the_heap")->Text, "1.7018 m");
}

TEST(Definitions, CyclesAreRefused) {
    const auto refused = [](const std::vector<CDefinition>& definitions,
                            const std::string& sentence) {
        expectError(
            eError::CYCLE, [&] { BuiltIn.with(definitions); }, sentence);
    };
    refused({{"a1", "2 a1"}}, "the definition of \"a1\" leads back to itself");
    refused({{"ab", "2 bc"}, {"bc", "cde"}, {"cde", "3 ab·m"}},
            "the definition of \"ab\" leads back to itself");
    refused({{"xx", "m"}, {"yy", "xx·zz"}, {"zz", "yy"}},
            "the definition of \"yy\" leads back to itself");
    // Not a cycle: one unit used twice.
    EXPECT_EQ(
        BuiltIn.with({{"aa", "bb·cc·bb"}, {"bb", "2 cc"}, {"cc", "3 m"}}).meaning("aa")->toString(),
        "108 m³");
}

TEST(Definitions, DefinitionsOfAProgramMayBeALongChain) {
    constexpr int Length = 20000;
    std::vector<std::string> names;
    std::vector<std::string> texts;
    for (int i = 0; i <= Length; ++i) {
        names.push_back("u_" + std::to_string(i) + "_");
        texts.push_back(i == Length ? "m" : "u_" + std::to_string(i + 1) + "_");
    }
    std::vector<CDefinition> definitions;
    for (int i = 0; i <= Length; ++i) {
        definitions.push_back(
            {names[static_cast<std::size_t>(i)], texts[static_cast<std::size_t>(i)]});
    }
    EXPECT_EQ(BuiltIn.with(definitions).meaning("u_0_")->toString(), "m");
    definitions.back().Text = names.front();
    expectError(eError::CYCLE, [&] { BuiltIn.with(definitions); });
}

TEST(Definitions, ADefinitionOfAProgramNeedsAnUnusedName) {
    expectError(
        eError::NAME_TAKEN,
        [] {
            BuiltIn.with({{"km", "5 m"}});
        },
        "the catalogue has \"km\" already");
    expectError(eError::NAME_TAKEN, [] { BuiltIn.with({{"ab", "5 m"}, {"ab", "6 m"}}); });
    const CCatalogue own = BuiltIn.with({{"in", "5 m"}});
    expectError(eError::NAME_TAKEN, [&] { own.with({{"in", "5 m"}}); });
    expectError(
        eError::NAME_TAKEN, [&] { own.with(ePack::CUSTOMARY); },
        "the catalogue has \"in\" already");
    for (const char* const name :
         {"", " ", "a b", "a/b", "5a", "π", "a^2", "a²", "a·b", "a,b", "a(b", "-5"}) {
        SCOPED_TRACE(name);
        expectError(eError::SYNTAX, [=] { BuiltIn.with({{name, "5 m"}}); });
    }
    expectError(
        eError::SYNTAX,
        [] {
            BuiltIn.with({{"a b", "5 m"}});
        },
        "\"a b\" cannot be a name");
    expectError(eError::UNKNOWN_NAME, [] { BuiltIn.with({{"ab", "5 furlong"}}); });
    expectError(eError::SYNTAX, [] { BuiltIn.with({{"ab", "5 //"}}); });
}

TEST(Definitions, ADefinitionOfAProgramMayReplaceABuiltInUnit) {
    const auto taking = [](const char* name, const char* text) {
        return CDefinition{name, text, "", "", ePack::OWN, true};
    };
    const CCatalogue before = BuiltIn.with({{"way", "3 km"}});
    const CCatalogue own = before.with({taking("km", "2 m"), {"long_way", "5 km"}});
    EXPECT_EQ(own.meaning("km")->toString(), "2 m");
    EXPECT_EQ(own.find("km")->Text, "2 m");
    EXPECT_EQ(own.meaning("long_way")->toString(), "10 m");
    EXPECT_EQ(own.meaning("way")->toString(), "3000 m") << "keeps its meaning";
    EXPECT_EQ(own.find("way")->Text, "3000 m") << "the text no longer uses km";
    EXPECT_EQ(own.definitions().size(), before.definitions().size() + 1);
    EXPECT_EQ(before.meaning("km")->toString(), "1000 m");
    EXPECT_EQ(BuiltIn.with({taking("nothing_has_it", "2 m")}).find("nothing_has_it")->Text, "2 m");

    expectError(eError::NAME_TAKEN, [&] { own.with({taking("km", "3 m")}); });
    expectError(eError::NAME_TAKEN, [&] { BuiltIn.with({taking("kg", "3 m")}); });
    expectError(eError::NAME_TAKEN, [&] { BuiltIn.with({taking("rad", "3 m")}); });
    expectError(eError::CYCLE, [&] { BuiltIn.with({taking("km", "2 km")}); });
}

TEST(Definitions, DefinitionsOfAProgramMayHaveNamesInBrackets) {
    const CCatalogue own = BuiltIn.with({{"[a/b c²]", "3 m"}, {"de", "2/[a/b c²]²"}});
    EXPECT_EQ(own.meaning("de")->toString(), "2/9 1/m²");
    expectError(eError::SYNTAX, [] { BuiltIn.with({{"[ab]c", "3 m"}}); });
}

TEST(Definitions, ThePackOfANameIsThatOfItsDefinition) {
    const CCatalogue own = BuiltIn.with(ePack::US).with(ePack::EVERYDAY).with({{"qa", "3 m"}});
    for (const CDefinition& definition : own.definitions()) {
        EXPECT_EQ(own.packOf(definition.Name), definition.Pack) << definition.Name;
    }
    EXPECT_EQ(own.packOf("qa"), ePack::OWN);
    EXPECT_EQ(own.packOf("gal"), ePack::US);
    EXPECT_EQ(BuiltIn.packOf("gal"), std::nullopt);
    EXPECT_EQ(BuiltIn.packOf("Km"), std::nullopt);
    EXPECT_EQ(BuiltIn.with({CDefinition{"km", "2 m", "", "", ePack::OWN, true}}).packOf("km"),
              ePack::OWN);
}

TEST(Definitions, AVisitEndsWhereTheVisitorSaysSo) {
    const CCatalogue own = BuiltIn.with({{"qa", "3 m"}, {"qb", "4 m"}});
    for (const std::string last : {"km", "qa", "qb"}) {
        std::string visited;
        own.forEachName([&](std::string_view name, ePack) {
            visited = name;
            return visited != last;
        });
        EXPECT_EQ(visited, last);
    }
}

TEST(Definitions, PacksHaveNames) {
    EXPECT_STREQ(nameOf(ePack::CUSTOMARY), "customary");
    EXPECT_STREQ(nameOf(ePack::CATALOGUE), "catalogue");
    EXPECT_STREQ(nameOf(ePack::OWN), "own");
    EXPECT_GE(allPacks().size(), 7U);
    for (const ePack pack : allPacks()) {
        EXPECT_EQ(packNamed(nameOf(pack)), pack);
        EXPECT_STRNE(descriptionOf(pack), "");
        EXPECT_NO_THROW(BuiltIn.with(pack));
    }
    EXPECT_STREQ(descriptionOf(ePack::CATALOGUE),
                 "what the library knows after it is loaded, and psi");
    EXPECT_STREQ(descriptionOf(ePack::OWN), "definitions of the program");
    EXPECT_FALSE(packNamed("metric"));
    EXPECT_FALSE(packNamed("own"));
}

}  // namespace
}  // namespace mensor::exact
