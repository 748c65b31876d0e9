// OpcUa_test.cpp: unit ids, and the structure of a unit.
#include "mensor_codes/OpcUa.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "expected_meaning.h"
#include "mensor_codes/Codes.h"

using namespace mensor;
using codes::eSystem;
using exact::eRefusal;

namespace {

TEST(OpcUa, EachCodeHasItsUnitId) {
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

TEST(OpcUa, ShowsTheNameOfAUnitWithoutSymbol) {
    EXPECT_EQ(codes::opcUaUnit("DZP").DisplayName, "dozen pack");
}

TEST(OpcUa, ReadsAUnitByItsIdAndIgnoresItsNames) {
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

TEST(OpcUa, HasNoCodeForInvalidUnitIds) {
    for (const std::int32_t id : {-1, 0, 1, 47, 58, 64, 91, 0x41424361, 0x414243 + 0x1000000,
                                  0x410042, 0x610000, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        EXPECT_EQ(codes::codeOfUnitId(id), "") << id;
    }
    EXPECT_EQ(codes::codeOfUnitId('0'), "0");
    EXPECT_EQ(codes::codeOfUnitId('9'), "9");
    EXPECT_EQ(codes::codeOfUnitId('A'), "A");
    EXPECT_EQ(codes::codeOfUnitId(0x5A5A5A), "ZZZ");
}

TEST(OpcUa, HasNoUnitIdForInvalidCodes) {
    for (const char* code : {"", "mtr", "ABCD", "A B", "É", "A/B", "[", "@", ":"}) {
        EXPECT_EQ(codes::unitIdOf(code), std::nullopt) << code;
    }
}

TEST(OpcUa, RefusesTextsThatAreNotUnitIds) {
    for (const char* text : {"-1", "0", "05067858", " 5067858", "5067858 ", "+5067858", "MTR",
                             "50678580000", "5067858.0", "0x4D5452", "6579300", "16777216"}) {
        const codes::CReading reading = codes::tryRead(eSystem::OPCUA, text);
        ASSERT_FALSE(reading) << text;
        EXPECT_EQ(reading.Refusal.Code, eRefusal::UNKNOWN_CODE) << text;
        EXPECT_FALSE(codes::find(eSystem::OPCUA, text)) << text;
    }
    EXPECT_EQ(codes::tryRead(eSystem::OPCUA, "").Refusal.Code, eRefusal::EMPTY);
}

TEST(OpcUa, ThrowsForAnUnknownCode) { EXPECT_THROW(codes::opcUaUnit("XXX"), exact::CReadError); }

}  // namespace
