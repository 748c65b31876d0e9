// DefinitionFile_test.cpp: a definition file defines all its units, or none if a line is refused.
#include "mensor_exact/DefinitionFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "mensor_exact/Certificate.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/Reading.h"

namespace mensor::exact {
namespace {

using ::testing::ElementsAre, ::testing::IsEmpty, ::testing::StrEq, ::testing::ThrowsMessage;

const CCatalogue& builtIn() {
    static const CCatalogue Catalogue = CCatalogue::builtIn();
    return Catalogue;
}

// The meaning of `unit` after these lines.
std::string meaningIn(const std::string& text, const std::string& unit) {
    const CDefinitionFile file = tryReadDefinitions(text);
    EXPECT_TRUE(file) << text << ": " << file.Findings.at(0).Refusal.message();
    return read(unit, file.Catalogue).toString();
}

// The diagnosis of a refused line. Each reading that it offers must be accepted.
CDiagnosis diagnosisOf(const std::string& line, const CCatalogue& catalogue = builtIn()) {
    const CDefinitionFile file = tryReadDefinitions(line, catalogue);
    EXPECT_EQ(file.Findings.size(), 1U) << line;
    if (file.Findings.size() != 1) {
        return {};
    }
    const CDiagnosis& refusal = file.Findings[0].Refusal;
    EXPECT_EQ(refusal.Text, line);
    EXPECT_EQ(refusal.Text.substr(refusal.Byte, refusal.Token.size()), refusal.Token);
    for (const std::string& reading : refusal.Readings) {
        EXPECT_TRUE(tryReadDefinitions(reading, catalogue))
            << "is offered, but refused: " << reading;
    }
    return refusal;
}

std::string refusalOf(const std::string& line) {
    const CDiagnosis refusal = diagnosisOf(line);
    return std::string(nameOf(refusal.Code)) + " " + std::to_string(refusal.Position) + " '" +
           refusal.Token + "'";
}

TEST(DefinitionFile, DefinesUnitsByNumberAndUnit) {
    const CDefinitionFile file = tryReadDefinitions(
        "# a file\n"
        "\n"
        "qft   = 0.3048 m          # a comment\r\n"
        "qyd = 3 qft\n"
        "  q% = 2/3 One\n"
        "qpsf=47.88 N/m²\n"
        "#qno = 1 m\n"
        "[q ft/s] = 1e-3 √(m/s²)\n"
        "qm = 1 m");
    ASSERT_TRUE(file);
    EXPECT_THAT(file.Names, ElementsAre("qft", "qyd", "q%", "qpsf", "[q ft/s]", "qm"));
    EXPECT_THAT(file.Taken, IsEmpty());
    EXPECT_EQ(read("qft", file.Catalogue).toString(), "0.3048 m");
    EXPECT_EQ(read("1/qyd", file.Catalogue).toString(), "1250/1143 1/m");
    EXPECT_EQ(read("q%", file.Catalogue).toString(), "2/3");
    EXPECT_EQ(read("qpsf", file.Catalogue).toString(), "47.88 kg/(m·s²)");
    EXPECT_EQ(read("[q ft/s]²", file.Catalogue).toString(), "0.000001 m/s²");
    EXPECT_EQ(read("qm", file.Catalogue), read("m"));
    EXPECT_FALSE(tryRead("qno", file.Catalogue));
    EXPECT_FALSE(tryRead("qft")) << "other catalogues are unchanged";
}

TEST(DefinitionFile, DefinesAZeroAfterTheKeyword) {
    EXPECT_EQ(meaningIn("°X = 5/4 K, zero at +273.15 K", "°X"), "1.25 K + 273.15");
    EXPECT_EQ(meaningIn("°G = 5/9 K, zero at +45967/180 K", "°G"),
              read("°F", builtIn().with(ePack::OFFSETS)).toString());
    EXPECT_EQ(meaningIn("qbar = 1 bar ,zero at + 1 atm # above one atmosphere", "qbar"),
              "100000 kg/(m·s²) + 101325");
    EXPECT_EQ(meaningIn("qlow = 10 Pa, zero at -1/2 kPa", "qlow"), "10 kg/(m·s²) - 500");
    EXPECT_EQ(meaningIn("qlow = 10 Pa, zero at \u2212.5 kPa", "qlow"), "10 kg/(m·s²) - 500");
    EXPECT_EQ(meaningIn("qm = 2 m, zero  at -0 m", "qm"), "2 m");
}

TEST(DefinitionFile, AddsAZeroToTheOffsetOfItsUnit) {
    EXPECT_EQ(meaningIn("°Q = 2 °C", "°Q"), "2 K + 273.15");
    EXPECT_EQ(meaningIn("°Q = 2 °C, zero at +10 °C", "°Q"), "2 K + 283.15");
    EXPECT_EQ(meaningIn("°Q = 2 K, zero at +0 °C", "°Q"), "2 K + 273.15");
}

TEST(DefinitionFile, DefinesBaseUnits) {
    const std::string text = "EUR = base unit\nct = 1/100 EUR\nBaseUnit =   base   unit # too\n";
    const CDefinitionFile file = tryReadDefinitions(text);
    ASSERT_TRUE(file);
    EXPECT_EQ(CConversion::between("EUR/kg", "ct/g", file.Catalogue).factor(), "0.1");
    EXPECT_FALSE(read("EUR", file.Catalogue).isCompatibleWith(read("BaseUnit", file.Catalogue)));
    EXPECT_EQ(read("EUR", file.Catalogue), read("EUR", tryReadDefinitions(text).Catalogue))
        << "the same dimension in every catalogue";
    EXPECT_EQ(refusalOf("EUR = base units"), "NO_NUMBER 6 'b'");
    EXPECT_EQ(refusalOf("EUR = base"), "NO_NUMBER 6 'b'");
}

TEST(DefinitionFile, RefusesANumberAfterTheUnitAndOffersLines) {
    const CDiagnosis square = diagnosisOf("a = 5 m 2");
    EXPECT_EQ(square.Code, eRefusal::STRAY_NUMBER);
    EXPECT_EQ(square.Token, "2");
    EXPECT_THAT(square.Readings, ElementsAre("a = 5 m, zero at +2 m", "a = 5 m^2"));
    EXPECT_THAT(diagnosisOf("a = 1 kg m -1 # flow").Readings,
                ElementsAre("a = 1 kg m, zero at -1 kg m", "a = 1 kg m^-1"));
    EXPECT_THAT(diagnosisOf("a = 10 N/m² -5").Readings,
                ElementsAre("a = 10 N/m², zero at -5 N/m²"));
    EXPECT_THAT(diagnosisOf("a = 10 N/m² + 101325").Readings,
                ElementsAre("a = 10 N/m², zero at +101325 N/m²"));
    EXPECT_THAT(diagnosisOf("a = 10 Pa - 1.5").Readings, ElementsAre("a = 10 Pa, zero at -1.5 Pa"));
    EXPECT_THAT(diagnosisOf("°X = 5/4 K 273.15").Readings,
                ElementsAre("°X = 5/4 K, zero at +273.15 K"));
    EXPECT_THAT(diagnosisOf("°X = 5/9 K 45967/180").Readings,
                ElementsAre("°X = 5/9 K, zero at +45967/180 K"));
    EXPECT_THAT(diagnosisOf("°X = 5 °C 2").Readings, ElementsAre("°X = 5 °C, zero at +2 °C"));
    EXPECT_THAT(diagnosisOf("a = 5 xyz 2").Readings, IsEmpty()) << "neither can be read";
}

TEST(DefinitionFile, ReportsTheErrorInALine) {
    const struct {
        const char* Line;
        const char* Refusal;
    } rows[] = {
        {"qa", "MISSING_OPERATOR 0 'qa'"},
        {"qa 3 m", "MISSING_OPERATOR 0 'qa 3 m'"},
        {"qa # = 3 m", "MISSING_OPERATOR 0 'qa'"},
        {" = 3 m", "EMPTY 1 ''"},
        {"replace = 3 xyz", "EMPTY 7 ''"},
        {"replacement = 3 xyz", "UNKNOWN_NAME 16 'xyz'"},
        {"qa = 2 K, zero on +5 K", "UNEXPECTED_CHARACTER 8 ','"},
        {"qa = 2 K, zero at x5 K", "NO_NUMBER 18 ''"},
        {"qa = 1e m", "UNKNOWN_NAME 6 'e'"},
        {"q2 = 3 m", "UNEXPECTED_CHARACTER 0 'q2'"},
        {"q a = 3 m", "UNEXPECTED_CHARACTER 0 'q a'"},
        {"πq = 3 m", "UNEXPECTED_CHARACTER 0 'πq'"},
        {"qa =", "NO_NUMBER 4 ''"},
        {"qa = m", "NO_NUMBER 5 'm'"},
        {"qa = +3 m", "NO_NUMBER 5 '+'"},
        {"qa = nan m", "NO_NUMBER 5 'n'"},
        {"qa = - m", "NO_NUMBER 5 '-'"},
        {"qa = 0 m", "FACTOR_RANGE 5 '0'"},
        {"qa = -2 m", "FACTOR_RANGE 5 '-2'"},
        {"qa = 1e99999999 m", "NUMBER_RANGE 5 '1e99999999'"},
        {"qa = 1/0 m", "NUMBER_RANGE 5 '1/0'"},
        {"qa = 2,5 m", "DECIMAL_COMMA 6 ','"},
        {"qa = 3", "EMPTY 6 ''"},
        {"qa = 3 parsec", "UNKNOWN_NAME 7 'parsec'"},
        {"qµ = 3 W/m²/K", "SECOND_DIVISION 11 '/'"},
        {"qa = 3 m x 5", "STRAY_NUMBER 11 '5'"},
        {"qa = 3 m 2 s", "STRAY_NUMBER 9 '2'"},
        {"qa = 3 m \u22125", "UNEXPECTED_CHARACTER 9 '\u2212'"},
        {"km = 3 m", "NAME_TAKEN 0 'km'"},
        {"K = 3 m", "NAME_TAKEN 0 'K'"},
        {"replace K = 3 m", "NAME_TAKEN 8 'K'"},
        {"replace rad = 3 m", "NAME_TAKEN 8 'rad'"},
        {"replace One = 3 m", "NAME_TAKEN 8 'One'"},
        {"qa = 5 °C/s", "OFFSET_IN_PRODUCT 7 '°C'"},
        {"qa = 3 m\xFF", "MALFORMED_TEXT 8 '\xFF'"},
        {"qa = 3 m, offset 5", "UNEXPECTED_CHARACTER 8 ','"},
        {"qa = 3 m, zero at", "NO_NUMBER 17 ''"},
        {"qa = 3 m, zero at 5 m", "NO_NUMBER 18 '5'"},
        {"qa = 3 m, zero at +x m", "NO_NUMBER 19 ''"},
        {"qa = 3 m, zero at +5", "EMPTY 20 ''"},
        {"qa = 3 m, zero at +5 s", "DIFFERENT_DIMENSIONS 21 's'"},
        {"qa = 3 m, zero at +5 xyz", "UNKNOWN_NAME 21 'xyz'"},
        {"qa = 3 rad/m, zero at +5 °/m", "FACTOR_RANGE 22 '+5 °/m'"},
        {"qa = 3 °, zero at +5 rad", "FACTOR_RANGE 18 '+5 rad'"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(refusalOf(row.Line), row.Refusal) << row.Line;
    }
    EXPECT_EQ(refusalOf("qa = 3 m" + std::string(4096, ' ') + "s"), "TOO_LONG 0 ''");
    const std::string large = std::string(4000, '3') + " Ym^99";
    EXPECT_EQ(refusalOf("qa = " + large), "FACTOR_RANGE 5 '" + large + "'")
        << "needs more than 20000 bits";
}

TEST(DefinitionFile, OffersWholeLinesThatAreAccepted) {
    EXPECT_THAT(diagnosisOf("qµ = 3 W/m²/K # heat").Readings,
                ElementsAre("qµ = 3 W/(m²·K)", "qµ = 3 W·K/m²"));
    EXPECT_THAT(diagnosisOf("qa = m").Readings, ElementsAre("qa = 1 m"));
    EXPECT_THAT(diagnosisOf("qa = xyz").Readings, IsEmpty());
    EXPECT_THAT(diagnosisOf("qa = 2,5 m").Readings, ElementsAre("qa = 2.5 m"));
    EXPECT_THAT(diagnosisOf("qa = 3 # dozen").Readings, ElementsAre("qa = 3 One"));
    EXPECT_THAT(diagnosisOf("qa = 3 m, zero at 5 m").Readings,
                ElementsAre("qa = 3 m, zero at +5 m"));
    EXPECT_THAT(diagnosisOf("  km = 3 m").Readings, ElementsAre("replace km = 3 m"));
    EXPECT_EQ(diagnosisOf("km = 3 m").message(),
              "the name \"km\" is taken: it means \"1000 m\" (write \"replace km = 3 m\")");
    EXPECT_EQ(diagnosisOf("replace kg = 3 m").message(), "the name \"kg\" is taken by a base unit");
    EXPECT_EQ(diagnosisOf("qa = 3 m, zero at +5 s").message(),
              "\"s\" is time, and the unit is length");
}

TEST(DefinitionFile, DefinesNothingIfALineIsRefused) {
    const CDefinitionFile file = tryReadDefinitions(
        "qft = 0.3048 m\n"
        "qyd = 3 qft\n"
        "qbad = 3 furlongs\n"
        "\n"
        "qin = 1/12 qft\n"
        "km = 3 m\n");
    EXPECT_FALSE(file);
    EXPECT_THAT(file.Names, IsEmpty());
    ASSERT_EQ(file.Findings.size(), 2U);
    EXPECT_EQ(file.Findings[0].Line, 3U);
    EXPECT_EQ(file.Findings[1].Line, 6U);
    EXPECT_FALSE(tryRead("qft", file.Catalogue));
    EXPECT_TRUE(tryRead("km", file.Catalogue));
}

TEST(DefinitionFile, NamesTheOtherLineThatDefinesAName) {
    const CDefinitionFile file = tryReadDefinitions(
        "qa = 3 qb\n"
        "qc = 2 xyzzy\n"
        "qb = 5 m\n"
        "qd = 3 qc\n"
        "qe = 3 qe\n"
        "qf = 3,5 m\n"
        "qg = 3 qf\n");
    ASSERT_EQ(file.Findings.size(), 6U);
    EXPECT_EQ(file.Findings[0].Refusal.message(),
              "no unit has the name \"qb\"; line 3 defines it and must come first");
    EXPECT_EQ(file.Findings[2].Refusal.message(),
              "no unit has the name \"qc\"; line 2, which defines it, is refused");
    EXPECT_EQ(file.Findings[3].Refusal.Sentence, "no unit has the name \"qe\"") << "itself";
    EXPECT_EQ(file.Findings[5].Refusal.message(),
              "no unit has the name \"qf\"; line 6, which defines it, is refused");
}

TEST(DefinitionFile, AcceptsASecondDefinitionWithTheSameMeaning) {
    const CDefinitionFile file =
        tryReadDefinitions("km = 1000 m\nqa = 3 m\nqa = 3000 mm\nkg = base unit\nOne = 100 %\n");
    EXPECT_TRUE(file);
    EXPECT_THAT(file.Names, ElementsAre("km", "qa", "qa", "kg", "One"));
    EXPECT_TRUE(tryReadDefinitions("qa = 3 m", file.Catalogue));
    EXPECT_EQ(diagnosisOf("qa = 4 m", file.Catalogue).message(),
              "the name \"qa\" is defined already: it means \"3 m\"");
    EXPECT_EQ(diagnosisOf("replace qa = 4 m", file.Catalogue).Code, eRefusal::NAME_TAKEN)
        << "a file that contradicts itself";
}

TEST(DefinitionFile, RedefinesANameOnlyWithReplace) {
    const CCatalogue catalogue = builtIn().with(ePack::CUSTOMARY);
    const CDefinitionFile file = tryReadDefinitions("replace lb = 0.5 kg\n", catalogue);
    ASSERT_TRUE(file);
    ASSERT_EQ(file.Taken.size(), 1U);
    EXPECT_EQ(file.Taken[0].Line, 1U);
    EXPECT_EQ(file.Taken[0].Name, "lb");
    EXPECT_EQ(file.Taken[0].Before, "0.45359237 kg");
    EXPECT_EQ(read("lb", file.Catalogue).toString(), "0.5 kg");
    EXPECT_EQ(file.Catalogue.find("lb")->Pack, ePack::OWN);
    EXPECT_EQ(read("lbf", file.Catalogue), read("lbf", catalogue)) << "keeps its meaning";
    EXPECT_EQ(read("lb", catalogue).toString(), "0.45359237 kg");

    std::size_t pounds = 0;
    file.Catalogue.forEachName([&](std::string_view name, ePack) {
        pounds += name == "lb" ? 1U : 0U;
        return true;
    });
    EXPECT_EQ(pounds, 1U);
    EXPECT_THAT(tryReadDefinitions("replace qlb = 1 kg").Taken, IsEmpty()) << "a new name";
}

TEST(DefinitionFile, ReplacingANameKeepsTheMeaningsOfOtherUnits) {
    const CDefinitionFile file = tryReadDefinitions(
        "qway = 3 km/h\n"
        "replace km = 2 km\n"
        "qlong = 5 km\n");
    ASSERT_TRUE(file);
    EXPECT_EQ(read("qway", file.Catalogue).toString(), "5/6 m/s");
    EXPECT_EQ(read("km", file.Catalogue).toString(), "2000 m");
    EXPECT_EQ(read("qlong", file.Catalogue).toString(), "10000 m");
    EXPECT_EQ(file.Catalogue.find("km")->Text, "2000 m") << "not defined by itself";
    EXPECT_EQ(file.Catalogue.find("qway")->Text, "5/6 m/s") << "not defined by the new km";
    EXPECT_EQ(certify("qway", "m/s", file.Catalogue).Factor.Text, "5/6");
    EXPECT_EQ(certify("qlong", "m", file.Catalogue).Factor.Text, "10000");
}

TEST(DefinitionFile, ReportsOtherSpellingsThatALineTakes) {
    const CDefinitionFile file = tryReadDefinitions("yl = 5 m\n\n\u212A = 7 m\n");
    ASSERT_TRUE(file);
    ASSERT_EQ(file.Taken.size(), 1U);
    EXPECT_EQ(file.Taken[0].Name, "\u212A") << "the kelvin sign";
    EXPECT_EQ(file.Taken[0].Before, "K");
    EXPECT_EQ(file.Taken[0].Line, 3U);
    EXPECT_EQ(read("\u212A", file.Catalogue).toString(), "7 m");
    EXPECT_EQ(read("K", file.Catalogue).toString(), "K");
    EXPECT_FALSE(tryRead("yL", file.Catalogue)) << "the new \"yl\" is no yoctolitre";
}

TEST(DefinitionFile, ReplacingMlLeavesMegalitreInCapitalsAsItIs) {
    EXPECT_EQ(meaningIn("replace Ml = 2 m", "ML"), "1000 m³");
    EXPECT_EQ(meaningIn("replace ML = 2 m", "Ml"), "1000 m³");
    EXPECT_EQ(refusalOf("ML = 2 m"), "NAME_TAKEN 0 'ML'");
}

TEST(DefinitionFile, CertifiesItsUnits) {
    const CCatalogue catalogue = readDefinitions(
        "smoot = 1.7018 m\n"
        "qs = 2/3 1/(smoot·√s)\n"
        "°X = 5/4 K, zero at +273.15 K\n"
        "°Y = 2 °X, zero at +1 °X\n"
        "EUR = base unit\n",
        builtIn(), "units.txt");
    const CCertificate certificate = certify("smoot", "m", catalogue);
    ASSERT_EQ(certificate.Definitions.size(), 2U);
    EXPECT_EQ(certificate.Definitions[0].Text, "1.7018 m");
    EXPECT_EQ(certificate.Definitions[0].Source, "units.txt:1");
    EXPECT_EQ(catalogue.find("qs")->Text, "2/3 1/(smoot·s^(1/2))");
    EXPECT_EQ(catalogue.find("°X")->Text, "1.25 K, offset 218.52");
    EXPECT_EQ(catalogue.find("°Y")->Text, "2.5 K, offset 109.76");
    EXPECT_EQ(catalogue.find("EUR")->Text, "");
    for (const CDefinition& definition : catalogue.definitions()) {
        if (definition.Pack == ePack::OWN && !definition.Text.empty()) {
            EXPECT_EQ(catalogue.evaluate(definition.Text), *catalogue.meaning(definition.Name))
                << definition.Name;
        }
    }
}

TEST(DefinitionFile, ThrowsTheFirstFindingAndTheNumberOfOthers) {
    EXPECT_THAT([] { readDefinitions("qa = 3 m\nqb = 3 xyzzy\nqc\n"); },
                ThrowsMessage<CDefinitionError>(
                    StrEq("line 2: no unit has the name \"xyzzy\" (mensor list shows all names; a "
                          "definition adds one) (and 1 more)")));
    try {
        readDefinitions("qb\n");
        FAIL();
    } catch (const CDefinitionError& error) {
        EXPECT_EQ(error.findings().size(), 1U);
        EXPECT_STREQ(error.what(), "line 1: a definition is \"name = number unit\"");
    }
}

TEST(DefinitionFile, OffersABlankBetweenANumberAndItsUnit) {
    EXPECT_THAT(diagnosisOf("qa = 3/s").Readings, ElementsAre("qa = 3 1/s"));
    EXPECT_THAT(diagnosisOf("qa = 3 /s").Readings, ElementsAre("qa = 3 1/s"));
    EXPECT_THAT(diagnosisOf("qa = 3W/m²/K").Readings,
                ElementsAre("qa = 3 W/(m²·K)", "qa = 3 W·K/m²"));
    EXPECT_THAT(diagnosisOf("qa = 3/ s").Readings, ElementsAre("qa = 3 1/ s"));
}

TEST(DefinitionFile, OffersBothMeaningsOfAComma) {
    EXPECT_THAT(diagnosisOf("qa = 1,500 m").Readings, ElementsAre("qa = 1.500 m", "qa = 1500 m"));
    EXPECT_THAT(diagnosisOf("qa = 1,5 m").Readings, ElementsAre("qa = 1.5 m"));
}

TEST(DefinitionFile, ReadsEachFormOfAnExponent) {
    EXPECT_EQ(meaningIn("qa = 1e+3 m", "qa"), "1000 m");
    EXPECT_EQ(meaningIn("qa = 1E-3 m", "qa"), "0.001 m");
    EXPECT_EQ(meaningIn("qa = 1e3 m", "qa"), "1000 m");
}

TEST(DefinitionFile, CountsTheCharactersOfALine) {
    std::string comment = "qa = 3 m # ";
    while (comment.size() < 5000) {
        comment += "\u00B5";  // two bytes
    }
    EXPECT_EQ(meaningIn(comment, "qa"), "3 m");
}

TEST(DefinitionFile, AcceptsAnEmptyFile) {
    EXPECT_TRUE(tryReadDefinitions(""));
    EXPECT_TRUE(tryReadDefinitions("\xEF\xBB\xBF# nothing\n\n   \n"));
    EXPECT_THAT(readDefinitions("\xEF\xBB\xBFqa = 3 m").find("qa")->Text, "3 m");
}

TEST(DefinitionFile, ReadsManyLines) {
    std::string text = "qa = 3 m\n";
    for (char first = 'a'; first <= 'z'; ++first) {
        for (char second = 'a'; second <= 'z'; ++second) {
            text += std::string("q") + first + second + " = 2 qa\n";
        }
    }
    EXPECT_EQ(tryReadDefinitions(text).Names.size(), 677U);
}

}  // namespace
}  // namespace mensor::exact
