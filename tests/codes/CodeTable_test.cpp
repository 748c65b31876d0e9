// CodeTable_test.cpp: compares each row of the tables of UN/CEFACT and SenML with an expected meaning that was
// computed without the library.
#include <map>
#include <set>

#include "expected_meaning.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "mensor_codes/Codes.h"

using namespace mensor;
using codes::eSystem;
using exact::eRefusal;

namespace {

// Returns the expected meaning of each code; none for a refused code.
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
        EXPECT_TRUE(codes.insert(code.Code).second) << code.Code << " occurs twice";
        EXPECT_EQ(table.count(code.Code), 1U) << code.Code;
    }
    EXPECT_EQ(codes.size(), table.size());
}

TEST(Unece, EachCodeMeansWhatItsNameSays) {
    expectMeanings(eSystem::UNECE, expected("unece_expected.tsv", 2));
}

TEST(Unece, HasAllCodes) { expectTheSameCodes(eSystem::UNECE, expected("unece_expected.tsv", 2)); }

TEST(Senml, EachCodeMeansWhatTheRegistrySays) {
    expectMeanings(eSystem::SENML, expected("senml_expected.tsv", 1));
}

TEST(Senml, HasAllCodes) { expectTheSameCodes(eSystem::SENML, expected("senml_expected.tsv", 1)); }

TEST(Senml, DeprecatedCodesAreMarked) {
    std::set<std::string> deprecated;
    for (const codes::CCode& code : codes::all(eSystem::SENML)) {
        if (code.IsDeprecated) {
            deprecated.insert(code.Code);
        }
    }
    EXPECT_THAT(deprecated, testing::UnorderedElementsAre("g", "l", "l/s", "Bspl", "%", "1/min",
                                                          "beat/min", "beats", "deg"));
}

class CodeTables : public testing::TestWithParam<eSystem> {};

TEST_P(CodeTables, WriteEachMeaningAsItsCodeOrAsItsSynonym) {
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

TEST_P(CodeTables, HaveANameAndASourceInEachRow) {
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

TEST_P(CodeTables, RefuseACodeWithItsNameAndTheReason) {
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

INSTANTIATE_TEST_SUITE_P(All, CodeTables,
                         testing::Values(eSystem::UNECE, eSystem::OPCUA, eSystem::SENML));

}  // namespace
