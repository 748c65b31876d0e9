// OwnUnits_test.cpp: reads tables of units; registers all units of a table or none.
#include "mensor_checked/OwnUnits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Packs.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/making.h"
#include "support/Matchers.h"
#include "support/thorough.h"

namespace mensor::checked {
namespace {

using ::testing::ElementsAre, ::testing::HasSubstr;

// Returns the refusal of a table of one line in short, or "defined".
std::string refusalOf(const std::string& line) {
    const CDefinitions result = tryDefineUnits(line);
    if (result) {
        return "defined";
    }
    const CDiagnosis& refusal = result.Findings.at(0).Refusal;
    EXPECT_EQ(refusal.Text, line);
    EXPECT_EQ(refusal.Text.substr(refusal.Byte, refusal.Token.size()), refusal.Token);
    return std::string(nameOf(refusal.Code)) + " " + std::to_string(refusal.Position) + " '" +
           refusal.Token + "'";
}

TEST(OwnUnits, HaveAFactorAUnitAndAnOffset) {
    const auto names = defineUnits(
        "# a table\n"
        "\n"
        "qft   = 0.3048 m          # a comment\r\n"
        "qyd = 3 qft\n"
        "  q% = 2/3 One\n"
        "qpsf=47.88 N/m²\n"
        "q°F = 5/9 K, zero at +45967/180 K\n"
        "qbar = 100000 N/m², zero at +1 atm # above 1 atm\n"
        "qlow = 1000 N/m², zero at -5 N/m²\n"
        "qneg = 10 N/m², zero at - 5 N/m²\n"
        "#qno = 1 m\n"
        "qm = 1 m");
    EXPECT_THAT(names,
                ElementsAre("qft", "qyd", "q%", "qpsf", "q°F", "qbar", "qlow", "qneg", "qm"));
    EXPECT_THAT(readUnit("qft"), ConvertsTo(SI::Meter(), 1, 0.3048));
    EXPECT_THAT(readUnit("qyd"), ConvertsTo(SI::Meter(), 1, 3 * 0.3048));
    EXPECT_THAT(readUnit("q%"), ConvertsTo(readUnit("One"), 1, 2.0 / 3.0));
    EXPECT_THAT(readUnit("q°F"), ConvertsTo(SI::Kelvin(), 0, 45967.0 / 180.0));
    EXPECT_THAT(readUnit("qbar"), ConvertsTo(SI::Pascal(), 1, 201325));
    EXPECT_THAT(readUnit("qlow"), ConvertsTo(SI::Pascal(), 1, 995));
    EXPECT_THAT(readUnit("qneg"), ConvertsTo(SI::Pascal(), 1, 5));
    EXPECT_EQ(readUnit("qm"), SI::Meter());
    EXPECT_EQ(SI::Meter()->toStdString(), "m");
    EXPECT_EQ(readUnit("qft")->toStdString(), "qft");
    EXPECT_EQ(CUnitFormat::unitFor("#qno"), nullptr);
}

TEST(OwnUnits, AKnownUnitGetsOneMoreName) {
    EXPECT_EQ(defineUnits("qhPa = 100 Pa").size(), 1U);
    EXPECT_EQ(readUnit("qhPa"), NonSI::MilliBar());
    EXPECT_EQ(NonSI::MilliBar()->toStdString(), "mbar");
}

TEST(OwnUnits, CanBeDefinedTwice) {
    const char* const table = "qft = 0.3048 m\nqyd = 3 qft\n";
    defineUnits(table);
    const Tables before;
    defineUnits(table);
    EXPECT_EQ(Tables(), before);
}

TEST(OwnUnits, MayBeBaseUnits) {
    EXPECT_EQ(defineUnits("qEUR = base unit\nqct = 1/100 qEUR\n").size(), 2U);
    EXPECT_THAT(readUnit("qct"), ConvertsTo(readUnit("qEUR"), 5, 0.05));
    EXPECT_TRUE(tryDefineUnits("qEUR = base unit")) << "again";
    EXPECT_FALSE(readUnit("qEUR")->isCompatible(SI::Meter()));
}

TEST(OwnUnits, AUnitOfANewBaseUnitMayHaveAZero) {
    defineUnits("qEUR = base unit\nqfee = 2 qEUR, zero at +5 qEUR\n");
    EXPECT_THAT(readUnit("qfee"), ConvertsTo(readUnit("qEUR"), 3, 11));
}

TEST(OwnUnits, AZeroAtZeroIsNoOffset) {
    defineUnits("qa = 1.7 m, zero at +0 m\n");
    EXPECT_EQ(readUnit("qa"), SI::Meter()->multiply(1.7));
}

TEST(OwnUnits, ATableMayRepeatALineOfANewBaseUnit) {
    EXPECT_THAT(defineUnits("qEUR = base unit\nqct = 1/100 qEUR\nqct = 0.01 qEUR\n"),
                ElementsAre("qEUR", "qct", "qct"));
    EXPECT_THAT(readUnit("qct"), ConvertsTo(readUnit("qEUR"), 5, 0.05));
}

TEST(OwnUnits, RefusesABaseUnitWithTheHashCodeOfARegisteredUnit) {
    const CUnitPtr first = baseUnit("qdollar_US");
    const CDefinitions result = tryDefineUnits("qdollar_CA = base unit");
    ASSERT_EQ(result.Findings.size(), 1U);
    EXPECT_EQ(result.Findings[0].Refusal.Sentence,
              "the unit with the symbol \"qdollar_CA\" is the same object as \"qdollar_US\" here, "
              "which means \"qdollar_US\"");
    EXPECT_EQ(result.Findings[0].InTheWay, first);
    EXPECT_EQ(CUnit::searchSymbol("qdollar_CA"), nullptr);
}

// Only symbols make an identity.
TEST(OwnUnits, ABaseUnitMayHaveANameWithTheHashCodeOfALabel) {
    EXPECT_THAT(defineUnits("qEUR = base unit\nqdollar_US = 2 qEUR\nqdollar_CA = base unit\n"),
                ElementsAre("qEUR", "qdollar_US", "qdollar_CA"));
    EXPECT_FALSE(readUnit("qdollar_CA")->isCompatible(readUnit("qdollar_US")));
}

TEST(OwnUnits, ASuggestedLineCanBeRead) {
    const auto readings = [](const char* line) {
        return tryDefineUnits(line).Findings.at(0).Refusal.Readings;
    };
    EXPECT_THAT(readings("qa = 2 m, zero at 5 cm"), ElementsAre("qa = 2 m, zero at +5 cm"));
    EXPECT_THAT(readings("qa = 2 m, zero at 5 xyzzy"), ElementsAre());
    EXPECT_THAT(readings("qa = 2 xyzzy, zero at 5 cm"), ElementsAre());
}

// The registry cannot remove the symbol of a base unit.
TEST(OwnUnits, NoSymbolOfABaseUnitStaysWhenATableIsRefused) {
    const Tables before;
    const struct {
        const char* Table;
        const char* Refusal;
    } rows[] = {
        {"qGBP = base unit\nqpence = 1/100 qGBP\nqx = 3 xyzzy\n", "3 UNKNOWN_NAME 'xyzzy'"},
        {"qGBP = base unit\nqx = 3 qGBPP\n", "2 UNKNOWN_NAME 'qGBPP'"},
        {"qGBP = base unit\nqpence = 1/100 qGBP\nqx = 1 qpence/m/s\n", "3 SECOND_DIVISION '/'"},
        {"qGBP = base unit\nkm = 3 qGBP\n", "2 COLLISION 'km'"},
        {"qGBP = base unit\nqGBP = 3 m\n", "2 COLLISION 'qGBP'"},
        {"qGBP = base unit\nqx = 3 qGBP\nqx = 4 qGBP\n", "3 COLLISION 'qx'"},
        {"qGBP = base unit\nqx = 3 qGBP, zero at +1 m\n", "2 DIFFERENT_DIMENSIONS 'm'"},
        {"qGBP = base unit\nqx = 3 m, zero at +1 qGBP\n", "2 DIFFERENT_DIMENSIONS 'qGBP'"},
        {"qGBP = base unit\nqx = 3 qGBP·°C\n", "2 OFFSET_IN_PRODUCT '°C'"},
        {"qGBP = base unit\nqx = 1e999 qGBP\n", "2 FACTOR_RANGE '1e999'"},
        {"qGBP = base unit\nqx = 1e200 qGBP\nqy = 1e200 qx\n", "3 REFUSED_BY_LIBRARY 'qy'"},
        {"qGBP = base unit\nqx = 3 qGBP^99\nqy = 3 qx·qGBP\n", "3 EXPONENT_RANGE 'qGBP'"},
        {"qGBP = base unit\nqx 3\n", "2 MISSING_OPERATOR 'qx 3'"},
        {"qdollar_US = base unit\nqdollar_CA = base unit\n", "2 COLLISION 'qdollar_CA'"},
    };
    for (const auto& row : rows) {
        const CDefinitions result = tryDefineUnits(row.Table);
        ASSERT_EQ(result.Findings.size(), 1U) << row.Table;
        const CLineFinding& finding = result.Findings[0];
        EXPECT_EQ(std::to_string(finding.Line) + " " + nameOf(finding.Refusal.Code) + " '" +
                      finding.Refusal.Token + "'",
                  row.Refusal)
            << row.Table;
        EXPECT_TRUE(result.Names.empty()) << row.Table;
        EXPECT_EQ(CUnit::searchSymbol("qGBP"), nullptr) << row.Table;
        EXPECT_EQ(CUnit::searchSymbol("qdollar_US"), nullptr) << row.Table;
    }
    EXPECT_EQ(Tables(), before);
    EXPECT_THAT(defineUnits("qGBP = base unit\nqpence = 1/100 qGBP\n"),
                ElementsAre("qGBP", "qpence"));
}

TEST(OwnUnits, RefusalsKnowTheNamesOfLinesAbove) {
    const CDefinitions result = tryDefineUnits(
        "qmoney = base unit\nqx = 3 qmonye\nqy = 3 m/qmoney/s\nkm = 1 qmoney\nqz = 2 qmoney\n"
        "qz = 3 qmoney\n");
    ASSERT_EQ(result.Findings.size(), 4U);
    EXPECT_THAT(result.Findings[0].Refusal.Suggestions, ElementsAre("qmoney"));
    EXPECT_THAT(result.Findings[1].Refusal.Readings,
                ElementsAre("qy = 3 m/(qmoney·s)", "qy = 3 m·s/qmoney"));
    EXPECT_EQ(result.Findings[2].Refusal.Sentence,
              "the name \"km\" belongs to \"km\", which means \"1000 m\"");
    EXPECT_EQ(result.Findings[2].InTheWay, CUnit::fromString("km"));
    EXPECT_EQ(result.Findings[3].Refusal.Sentence,
              "the name \"qz\" belongs to line 5, where it means \"2 qmoney\"");
    EXPECT_EQ(CUnit::searchSymbol("qmoney"), nullptr);
}

TEST(OwnUnits, TheirNamesAreInTheOrderOfTheLines) {
    EXPECT_THAT(defineUnits("qdime = base unit\nqrod = 5 m\nqten = 10 qdime\nqpole = 1 qrod\n"
                            "qrent = 1 qten/qrod\n"),
                ElementsAre("qdime", "qrod", "qten", "qpole", "qrent"));
    EXPECT_THAT(readUnit("qrent"), ConvertsTo(readUnit("qdime/m"), 1, 2));
}

TEST(OwnUnits, RefusesANumberAfterTheUnitAndSuggestsLines) {
    const CDefinitions result = tryDefineUnits("qa = 1 kg m -1\nqa = 10 N/m² - 5\nqa = 5 xyz 2\n");
    ASSERT_EQ(result.Findings.size(), 3U);
    EXPECT_EQ(result.Findings[0].Refusal.Code, eRefusal::STRAY_NUMBER);
    EXPECT_THAT(result.Findings[0].Refusal.Readings,
                ElementsAre("qa = 1 kg m, zero at -1 kg m", "qa = 1 kg m^-1"));
    EXPECT_THAT(result.Findings[1].Refusal.Readings, ElementsAre("qa = 10 N/m², zero at -5 N/m²"));
    EXPECT_THAT(result.Findings[2].Refusal.Readings, ElementsAre());
}

TEST(OwnUnits, SuggestsWholeLines) {
    const CDefinitions result = tryDefineUnits("qa = 3 W/m²/K # heat");
    ASSERT_EQ(result.Findings.size(), 1U);
    EXPECT_THAT(result.Findings[0].Refusal.Readings,
                ElementsAre("qa = 3 W/(m²·K)", "qa = 3 W·K/m²"));
}

TEST(OwnUnits, RefusesToReplaceAName) {
    const CDefinitions result = tryDefineUnits("replace km = 3 m");
    ASSERT_EQ(result.Findings.size(), 1U);
    EXPECT_THAT(result.Findings[0].Refusal.Sentence,
                HasSubstr("\"replace\" cannot change a name of the registry"));
}

TEST(OwnUnits, ReportsTheErrorInALine) {
    const struct {
        const char* Line;
        const char* Refusal;
    } rows[] = {
        {"qa", "MISSING_OPERATOR 0 'qa'"},
        {"qa 3 m", "MISSING_OPERATOR 0 'qa 3 m'"},
        {"qa # = 3 m", "MISSING_OPERATOR 0 'qa'"},
        {" = 3 m", "EMPTY 1 ''"},
        {"q2 = 3 m", "UNEXPECTED_CHARACTER 0 'q2'"},
        {"q a = 3 m", "UNEXPECTED_CHARACTER 0 'q a'"},
        {"qa =", "NO_NUMBER 4 ''"},
        {"qa = m", "NO_NUMBER 5 'm'"},
        {"qa = +3 m", "NO_NUMBER 5 '+'"},
        {"qa = nan m", "NO_NUMBER 5 'n'"},
        {"qa = 0 m", "FACTOR_RANGE 5 '0'"},
        {"qa = 1e999 m", "FACTOR_RANGE 5 '1e999'"},
        {"qa = 1e-320 m", "FACTOR_RANGE 5 '1e-320'"},
        {"qa = 1/0 m", "NUMBER_RANGE 5 '1/0'"},
        {"qa = 2,5 m", "DECIMAL_COMMA 6 ','"},
        {"qa = 3", "EMPTY 6 ''"},
        {"qa = 3 parsec", "UNKNOWN_NAME 7 'parsec'"},
        {"qµ = 3 W/m²/K", "SECOND_DIVISION 11 '/'"},
        {"qa = 3 m x 5", "STRAY_NUMBER 11 '5'"},
        {"qa = 3 m, zero at +1e999 m", "FACTOR_RANGE 18 '+1e999'"},
        {"qa = 3 m, zero at +1e-999 m", "FACTOR_RANGE 18 '+1e-999'"},
        {"qa = 3 m, zero at +1 s", "DIFFERENT_DIMENSIONS 21 's'"},
        {"qa = 3 m, zero at +1 xyz", "UNKNOWN_NAME 21 'xyz'"},
        {"replace km = 3 m", "COLLISION 8 'km'"},
        {"km = base unit", "COLLISION 0 'km'"},
        {"km = 3 m", "COLLISION 0 'km'"},
        {"qa = 1e5 Pa, zero at +101325 Pa", "COLLISION 0 'qa'"},
        {"qa = 5 °C/s", "OFFSET_IN_PRODUCT 7 '°C'"},
        {"qa = 3 m\xFF", "MALFORMED_TEXT 8 '\xFF'"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(refusalOf(row.Line), row.Refusal) << row.Line;
    }
}

TEST(OwnUnits, RefusesALineThatIsTooLong) {
    EXPECT_EQ(refusalOf("qa = 3 m" + std::string(4096, ' ') + "s"), "TOO_LONG 0 ''");
}

TEST(OwnUnits, AreAllDefinedOrNone) {
    const auto labels = CUnitFormat::labelUnitMap();
    const auto units = CUnitFormat::unitLabelMap();
    const auto aliases = CUnitFormat::aliasUnitMap();
    const CDefinitions result = tryDefineUnits(
        "qft = 0.3048 m\n"
        "qyd = 3 qft\n"
        "qhPa = 100 Pa\n"
        "qbad = 3 furlongs\n"
        "qin = 1/12 qft\n"
        "km = 3 m\n");
    EXPECT_FALSE(result);
    EXPECT_TRUE(result.Names.empty());
    ASSERT_EQ(result.Findings.size(), 2U);
    EXPECT_EQ(result.Findings[0].Line, 4U);
    EXPECT_EQ(result.Findings[0].Refusal.Code, eRefusal::UNKNOWN_NAME);
    EXPECT_EQ(result.Findings[0].InTheWay, nullptr);
    EXPECT_EQ(result.Findings[1].Line, 6U);
    EXPECT_EQ(result.Findings[1].InTheWay, CUnit::fromString("km"));
    EXPECT_EQ(CUnitFormat::labelUnitMap(), labels);
    EXPECT_EQ(CUnitFormat::unitLabelMap(), units);
    EXPECT_EQ(CUnitFormat::aliasUnitMap(), aliases);

    // The corrected table is accepted afterwards.
    defineUnits("qft = 0.3048 m\nqyd = 3 qft\nqhPa = 100 Pa\nqin = 1/12 qft\n");
    EXPECT_THAT(readUnit("qin"), ConvertsTo(SI::Meter(), 12, 12 * (1.0 / 12.0) * 0.3048));
}

TEST(OwnUnits, RefusesTwoUnitsWithOneName) {
    const CDefinitions result = tryDefineUnits("qa = 3 m\nqa = 4 m\n");
    ASSERT_EQ(result.Findings.size(), 1U);
    EXPECT_EQ(result.Findings[0].Line, 2U);
    EXPECT_EQ(result.Findings[0].Refusal.Sentence,
              "the name \"qa\" belongs to \"qa\", which means \"3 m\"");
    EXPECT_EQ(CUnitFormat::unitFor("qa"), nullptr);
}

TEST(OwnUnits, RefusesTheRankineAfterTheDegreeFahrenheit) {
    registerPack(ePack::OFFSETS);
    const CDefinitions result = tryDefineUnits("°R = 5/9 K");
    ASSERT_EQ(result.Findings.size(), 1U);
    EXPECT_EQ(result.Findings[0].InTheWay, readUnit("°F"));
    EXPECT_THAT(result.Findings[0].Refusal.Sentence, HasSubstr("\"°F\""));
}

TEST(OwnUnits, ThrowsWithAllLinesThatAreRefused) {
    try {
        defineUnits("qa = 3 m\nqb = 3 xyzzy\nqc\n");
        FAIL();
    } catch (const CDefinitionError& e) {
        EXPECT_STREQ(e.what(),
                     "line 2: no unit has the name \"xyzzy\" (mensor list shows all names; a "
                     "definition adds one) (and 1 more)");
        ASSERT_EQ(e.findings().size(), 2U);
        EXPECT_EQ(e.findings()[1].Line, 3U);
    }
}

// Reads tables of random bytes and words. A table that is refused adds no name.
TEST(OwnUnits, DefinesOrRefusesAnyBytes) {
    const std::string pieces[] = {"q",   "a", "=",  " = ",  "3",           "0.5",       "/",
                                  " ",   "m", "K",  "+",    "-",           "\t",        "#",
                                  "1e9", ",", "°C", "(",    "·",           "N/m²",      "\n",
                                  "\r",  ".", "^",  "\xFF", "qb",          "km",        "273",
                                  "=",   "²", "[",  "]",    ", zero at +", "base unit", "replace "};
    constexpr std::size_t Count = sizeof pieces / sizeof pieces[0];
    const int count = test::casesOf(3000, 1000);
    std::uint32_t state = 1;
    std::size_t defined = 0;
    std::size_t refused = 0;
    for (int i = 0; i < count; ++i) {
        std::string table = i % 3 == 0 ? "q = 3 m" : "";
        for (int j = 0; j < i % 9; ++j) {
            state = state * 1664525U + 1013904223U;
            table += pieces[(state >> 16) % Count];
        }
        const auto labels = CUnitFormat::labelUnitMap();
        const auto aliases = CUnitFormat::aliasUnitMap();
        const CDefinitions result = tryDefineUnits(table);
        if (result) {
            defined += result.Names.size();
            continue;
        }
        refused += result.Findings.size();
        EXPECT_EQ(CUnitFormat::labelUnitMap(), labels) << table;
        EXPECT_EQ(CUnitFormat::aliasUnitMap(), aliases) << table;
        for (const CLineFinding& finding : result.Findings) {
            EXPECT_NE(finding.Refusal.message(), "") << table;
            EXPECT_LE(finding.Refusal.Byte + finding.Refusal.Token.size(),
                      finding.Refusal.Text.size())
                << table;
        }
    }
    EXPECT_GT(defined, test::casesOf(100U, 30U));
    EXPECT_GT(refused, test::casesOf(1000U, 300U));
}

TEST(OwnUnits, RefusesAUnitBeyondTheRangeOfDouble) {
    const CDefinitions result = tryDefineUnits("qa = 1e308 km");
    ASSERT_EQ(result.Findings.size(), 1U);
    EXPECT_EQ(result.Findings[0].Refusal.Code, eRefusal::REFUSED_BY_LIBRARY);
    EXPECT_EQ(result.Findings[0].Refusal.Token, "qa");
    EXPECT_THAT(result.Findings[0].Refusal.Sentence, HasSubstr("beyond the range of double"));
    EXPECT_EQ(CUnitFormat::unitFor("qa"), nullptr);
}

// The digits of the numbers add up from line to line, until the exact size has too many.
TEST(OwnUnits, RefusesASizeThatCannotBeComputed) {
    const std::string number = "1." + std::string(900, '3');
    const CDefinitions result =
        tryDefineUnits("qEUR = base unit\nqa = " + number + " qEUR\nqb = " + number +
                       " qa\nqc = " + number + " qb\nqd = 1 qb\n");
    ASSERT_EQ(result.Findings.size(), 1U);
    EXPECT_EQ(result.Findings[0].Line, 4U);
    EXPECT_EQ(result.Findings[0].Refusal.Code, eRefusal::FACTOR_RANGE);
    EXPECT_THAT(result.Findings[0].Refusal.Sentence,
                HasSubstr("the size of this unit cannot be computed: "));
    EXPECT_EQ(CUnit::searchSymbol("qEUR"), nullptr);
}

// "k°F" reads as the prefixed °F, which has no zero of its own. No such name may be given to a unit.
TEST(OwnUnits, RefusesANameThatReadsAsAPrefixedOffsetUnit) {
    registerPack(ePack::OFFSETS);
    EXPECT_EQ(refusalOf("k°F = 7 K"), "COLLISION 0 'k°F'");
    EXPECT_EQ(refusalOf("k°F = 60 K"), "COLLISION 0 'k°F'");
    defineUnits("qk = 60 K");
    EXPECT_EQ(refusalOf("k°F = 60 K"), "PREFIXED_OFFSET 0 'k°F'") << "as a second name";
    EXPECT_EQ(CUnitFormat::unitFor("k°F"), nullptr);
}

// "qc·m" is the same object as "qa·s", which cannot be written once its factor has no name.
TEST(OwnUnits, RefusesASecondNameForAUnitWithoutAText) {
    defineUnits("qa = 1.7 m\nqc = 1.7 s\n");
    const CUnitPtr product = readUnit("qa·s");
    EXPECT_EQ(readUnit("qc·m"), product);
    CUnitFormat::detach(readUnit("qa"), "qa");
    const CDefinitions result = tryDefineUnits("qd = 1 qc·m");
    ASSERT_EQ(result.Findings.size(), 1U);
    EXPECT_EQ(result.Findings[0].Refusal.Code, eRefusal::COLLISION);
    EXPECT_EQ(result.Findings[0].InTheWay, product);
    EXPECT_THAT(result.Findings[0].Refusal.Sentence,
                HasSubstr("has no text that reads back as the same"));
    EXPECT_EQ(CUnitFormat::unitFor("qd"), nullptr);
}

TEST(OwnUnits, AnEmptyTableDefinesNone) {
    EXPECT_TRUE(tryDefineUnits(""));
    EXPECT_TRUE(tryDefineUnits("\xEF\xBB\xBF# nothing\n\n   \n"));
}

}  // namespace
}  // namespace mensor::checked
