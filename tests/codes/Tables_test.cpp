// The tables of UN/CEFACT, OPC UA and SenML: each row against what was computed elsewhere.
#include <map>
#include <set>

#include "ExpectedMeaning.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "mensor_codes/Codes.h"
#include "mensor_codes/OpcUa.h"

using namespace mensor;
using codes::eSystem;
using exact::eRefusal;

namespace {

// What is expected of each code; nothing of a refused one.
std::map<std::string, std::optional<exact::CMeaning>> expected(const std::string& table,
                                                               std::size_t kind) {
    std::map<std::string, std::optional<exact::CMeaning>> result;
    for (const std::vector<std::string>& row : rowsOf(table)) {
        std::optional<exact::CMeaning>& meaning = result[row.at(0)];
        if (row.at(kind) == "unit") {
            meaning = meaningOf(row.at(kind + 1), row.at(kind + 2), row.at(kind + 3),
                                row.size() > kind + 4 ? row[kind + 4] : std::string());
        }
    }
    return result;
}

void expectMeanings(eSystem system,
                    const std::map<std::string, std::optional<exact::CMeaning>>& table) {
    for (const auto& [code, meaning] : table) {
        const codes::CReading reading = codes::tryRead(system, code);
        if (meaning) {
            ASSERT_TRUE(reading) << code << ": " << codes::diagnose(reading.Refusal).message();
            EXPECT_EQ(*reading.Meaning, *meaning) << code << " is " << reading.Meaning->toString()
                                                  << " and not " << meaning->toString();
        } else {
            ASSERT_FALSE(reading) << code;
            EXPECT_EQ(reading.Refusal.Code, eRefusal::NO_MEANING) << code;
        }
    }
}

void expectTheSameCodes(eSystem system,
                        const std::map<std::string, std::optional<exact::CMeaning>>& table) {
    std::set<std::string> codes;
    for (const codes::CCode& code : codes::all(system)) {
        EXPECT_TRUE(codes.insert(code.Code).second) << code.Code << " is there twice";
        EXPECT_EQ(table.count(code.Code), 1U) << code.Code;
    }
    EXPECT_EQ(codes.size(), table.size());
}

TEST(CodesOfUnece, MeanWhatTheirNamesSay) {
    expectMeanings(eSystem::UNECE, expected("unece_expected.tsv", 2));
}

TEST(CodesOfUnece, AreAllThere) {
    expectTheSameCodes(eSystem::UNECE, expected("unece_expected.tsv", 2));
}

TEST(CodesOfSenml, MeanWhatTheirRegistrySays) {
    expectMeanings(eSystem::SENML, expected("senml_expected.tsv", 1));
}

TEST(CodesOfSenml, AreAllThere) {
    expectTheSameCodes(eSystem::SENML, expected("senml_expected.tsv", 1));
}

TEST(CodesOfSenml, ThatNewProducersMustNotUseAreMarked) {
    std::set<std::string> deprecated;
    for (const codes::CCode& code : codes::all(eSystem::SENML)) {
        if (code.IsDeprecated) {
            deprecated.insert(code.Code);
        }
    }
    EXPECT_THAT(deprecated, testing::UnorderedElementsAre("g", "l", "l/s", "Bspl", "%", "1/min",
                                                          "beat/min", "beats", "deg"));
}

class Tables : public testing::TestWithParam<eSystem> {};

TEST_P(Tables, GiveForEachMeaningTheCodeOrTheOneThatItNames) {
    for (const codes::CCode& code : codes::all(GetParam())) {
        const codes::CReading reading = codes::tryRead(GetParam(), code.Code);
        EXPECT_EQ(bool(reading), !code.Definition.empty()) << code.Code;
        if (!reading) {
            continue;
        }
        const codes::CMatch match = codes::codeFor(GetParam(), *reading.Meaning);
        const std::string& wanted = code.SameAs.empty() ? code.Code : code.SameAs;
        EXPECT_EQ(match.Code, wanted) << "for the meaning of " << code.Code;
        EXPECT_EQ(match.Nearest, "") << code.Code;
        if (!code.SameAs.empty()) {
            EXPECT_THAT(match.Synonyms, testing::Contains(code.Code));
            EXPECT_EQ(*codes::tryRead(GetParam(), code.SameAs).Meaning, *reading.Meaning)
                << code.Code;
        }
    }
}

TEST_P(Tables, HaveTextsOfUtf8InEachRow) {
    for (const codes::CCode& code : codes::all(GetParam())) {
        EXPECT_NE(code.Name, "") << code.Code;
        EXPECT_NE(code.Source, "") << code.Code;
        const std::optional<codes::CCode> found = codes::find(GetParam(), code.Code);
        ASSERT_TRUE(found) << code.Code;
        EXPECT_EQ(found->Name, code.Name);
        EXPECT_EQ(found->Symbol, code.Symbol);
        EXPECT_EQ(found->Definition, code.Definition);
        EXPECT_EQ(found->SameAs, code.SameAs);
    }
}

TEST_P(Tables, RefuseWithTheNameAndTheReason) {
    for (const codes::CCode& code : codes::all(GetParam())) {
        if (!code.Definition.empty()) {
            continue;
        }
        const codes::CReading reading = codes::tryRead(GetParam(), code.Code);
        ASSERT_FALSE(reading) << code.Code;
        const exact::CDiagnosis diagnosis = codes::diagnose(reading.Refusal);
        EXPECT_EQ(diagnosis.Code, eRefusal::NO_MEANING);
        EXPECT_EQ(diagnosis.Token, code.Code);
        EXPECT_THAT(diagnosis.Sentence, testing::HasSubstr(std::string(code.Name)));
        EXPECT_THAT(diagnosis.Sentence, testing::HasSubstr(std::string(code.Source)));
        EXPECT_THAT(diagnosis.Sentence, testing::HasSubstr(std::string(code.Note)));
    }
}

INSTANTIATE_TEST_SUITE_P(All, Tables,
                         testing::Values(eSystem::UNECE, eSystem::OPCUA, eSystem::SENML));

TEST(OpcUa, GivesEachCodeItsUnitIdAndBack) {
    for (const std::vector<std::string>& row : rowsOf("unece_expected.tsv")) {
        const std::string& code = row.at(0);
        const std::int32_t id = std::stoi(row.at(1));
        EXPECT_EQ(codes::unitIdOf(code), id) << code;
        EXPECT_EQ(codes::codeOfUnitId(id), code);
        EXPECT_EQ(codes::opcUaUnit(code).UnitId, id) << code;
        EXPECT_EQ(codes::tryRead(eSystem::OPCUA, row[1]).Meaning,
                  codes::tryRead(eSystem::UNECE, code).Meaning)
            << code;
    }
}

TEST(OpcUa, FillsTheStructureOfAUnit) {
    const codes::CEUInformation unit = codes::opcUaUnit("KMH");
    EXPECT_EQ(unit.NamespaceUri, "http://www.opcfoundation.org/UA/units/un/cefact");
    EXPECT_EQ(unit.UnitId, 4934984);
    EXPECT_EQ(unit.DisplayName, "km/h");
    EXPECT_EQ(unit.Description, "kilometre per hour");
}

TEST(OpcUa, ShowsTheNameWhereAUnitHasNoSymbol) {
    EXPECT_EQ(codes::opcUaUnit("DZP").DisplayName, "dozen pack");
}

TEST(OpcUa, ReadsAUnitByItsIdWhateverItsNamesAre) {
    codes::CEUInformation unit = codes::opcUaUnit("CEL");
    unit.DisplayName = "K";
    unit.Description.clear();
    EXPECT_EQ(codes::readOpcUa(unit).toString(), "K + 273.15");
}

TEST(OpcUa, RefusesIdsOfOtherNamespaces) {
    codes::CEUInformation unit = codes::opcUaUnit("CEL");
    unit.NamespaceUri = "http://example.org/units";
    try {
        codes::readOpcUa(unit);
        FAIL() << "no exception";
    } catch (const exact::CReadError& error) {
        EXPECT_EQ(error.diagnosis().Code, eRefusal::UNKNOWN_CODE);
        EXPECT_STREQ(error.what(),
                     "unit ids of the namespace \"http://example.org/units\" are no codes of "
                     "UN/CEFACT");
    }
}

TEST(OpcUa, HasNoCodeForIdsThatAreNone) {
    for (const std::int32_t id : {-1, 0, 1, 47, 58, 64, 91, 0x41424361, 0x414243 + 0x1000000,
                                  0x410042, 0x610000, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        EXPECT_EQ(codes::codeOfUnitId(id), "") << id;
    }
    EXPECT_EQ(codes::codeOfUnitId('0'), "0");
    EXPECT_EQ(codes::codeOfUnitId('9'), "9");
    EXPECT_EQ(codes::codeOfUnitId('A'), "A");
    EXPECT_EQ(codes::codeOfUnitId(0x5A5A5A), "ZZZ");
}

TEST(OpcUa, HasNoIdForTextsThatAreNoCode) {
    for (const char* code : {"", "mtr", "ABCD", "A B", "É", "A/B", "[", "@", ":"}) {
        EXPECT_EQ(codes::unitIdOf(code), std::nullopt) << code;
    }
}

TEST(OpcUa, RefusesTextsThatAreNoId) {
    for (const char* text : {"-1", "0", "05067858", " 5067858", "5067858 ", "+5067858", "MTR",
                             "50678580000", "5067858.0", "0x4D5452", "6579300", "16777216"}) {
        const codes::CReading reading = codes::tryRead(eSystem::OPCUA, text);
        ASSERT_FALSE(reading) << text;
        EXPECT_EQ(reading.Refusal.Code, eRefusal::UNKNOWN_CODE) << text;
        EXPECT_FALSE(codes::find(eSystem::OPCUA, text)) << text;
    }
    EXPECT_EQ(codes::tryRead(eSystem::OPCUA, "").Refusal.Code, eRefusal::EMPTY);
}

TEST(OpcUa, ThrowsForCodesThatTheTableDoesNotHave) {
    EXPECT_THROW(codes::opcUaUnit("XXX"), exact::CReadError);
}

}  // namespace
