// MalformedText_test.cpp: hash codes, tables, parser and notations read text that is not UTF-8 by
// the rule of the decoder and keep its bytes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "mensor/BaseUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "mensor/mensor_global.h"
#include "mensor/utf8.h"
#include "support/Matchers.h"
#include "support/Utf8Texts.h"

namespace mensor {
namespace {
using ::testing::StrEq, ::testing::ThrowsMessage;

TEST(MalformedText, HasTheHashCodeOfItsDecodedCodePoints) {
    for (const test::Utf8Text& row : test::utf8Texts()) {
        SCOPED_TRACE(row.What);
        std::string wellFormed;
        for (const char32_t codePoint : row.CodePoints) {
            char out[6];
            wellFormed.append(out, detail::encodeUtf8(codePoint, out));
        }
        EXPECT_EQ(hashFromString(row.Bytes), hashFromString(wellFormed));
        if (row.CodePoints.size() == 1) {
            EXPECT_EQ(hashFromString(row.Bytes), static_cast<int>(row.CodePoints[0]));
        }
    }
}

TEST(MalformedText, IsQuotedByteForByteIfItIsNoUnit) {
    const struct {
        std::string Text, Name;
    } rows[] = {
        {"\xE2\x84", "\xE2\x84"},            // the ohm sign, cut off
        {"kg/\xC2", "\xC2"},                 // the micro sign, cut off
        {"m\xF0\x9F\x8C", "m\xF0\x9F\x8C"},  // cut off after a known name
        {"\x80\xBF", "\x80\xBF"},            // continuation bytes alone
        {"m·\xFE\xFF·s", "\xFE\xFF"},        // bytes that never occur in UTF-8
        {"\xED\xA0\x80", "\xED\xA0\x80"},    // a surrogate
        {"\xE2\x20\x20m", "\xE2\x20\x20m"},  // a lead byte takes two blanks: U+2820
        {"m\xC1\x8D", "m\xC1\x8D"},          // an overlong "M" is read as one, and kept
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.Text));
        const Tables before;
        EXPECT_THAT(
            [&] { CUnit::fromString(row.Text); },
            ThrowsMessage<std::invalid_argument>(StrEq("Label: " + row.Name + " not recognized")));
        EXPECT_EQ(Tables(), before);
    }
}

TEST(MalformedText, IsQuotedByteForByteIfItIsNoUnitOfAValue) {
    EXPECT_THAT([] { CValueWithUnit::fromString("2.5 m\xE2\x84"); },
                ThrowsMessage<std::invalid_argument>(StrEq("Label: m\xE2\x84 not recognized")));
}

TEST(MalformedText, MayContainTheBracketThatWouldCloseAName) {
    // A closed name is refused as unknown. A name that is not closed is ignored.
    EXPECT_THROW(CUnit::fromString("[\xC2\xB5]"), std::invalid_argument);
    EXPECT_EQ(CUnit::fromString("[\xC2]"), CUnit::fromString(""));
}

TEST(MalformedText, IsFoundAndPrintedByteForByteAsASymbolOrLabel) {
    for (const std::string name : {"q\xE2\x84", "\xFFq", "q\x80", "\xF8\xC2q", "q\xFD"}) {
        SCOPED_TRACE(::testing::PrintToString(name));
        const CUnitPtr unit = CBaseUnit::getInstance(name);
        EXPECT_EQ(text(unit->getSymbol()), name);
        EXPECT_EQ(CUnit::searchSymbol(name), unit);
        EXPECT_EQ(CUnit::fromString(name), unit);
        EXPECT_THAT(unit, PrintsAs(name));
        EXPECT_THAT(SI::Kilogram()->divide(unit->pow(2)), PrintsAs("kg/" + name + "²"));

        const std::string label = "k" + name;
        CUnitFormat::labelPrefixedUnit({KILO}, unit);
        EXPECT_EQ(CUnit::fromString(label), unit->multiply(1000));
        EXPECT_EQ(CUnit::fromString(label)->toStdString(), label);
    }
}

TEST(MalformedText, GivesAUnitThatReadsBackOrIsRefused) {
    const std::vector<std::string> texts = test::shortTexts(
        test::bytes({0, 'm', '2', '/', '[', '<', 0x80, 0xB2, 0xC2, 0xE2, 0xF0, 0xFC, 0xFE}));
    int units = 0, refused = 0;
    for (const std::string& bytes : texts) {
        SCOPED_TRACE(::testing::PrintToString(bytes));
        try {
            const CUnitPtr unit = CUnit::fromString(bytes);
            ++units;
            if (unit != CUnit::fromString("")) {
                ASSERT_EQ(CUnit::fromString(unit->toString()), unit);
            }
        } catch (const std::invalid_argument& e) {
            ++refused;
            const std::string message = e.what();
            if (message != "Root's order of zero") {
                ASSERT_EQ(message.rfind("Label: ", 0), 0u) << message;
            }
        }
    }
    EXPECT_GT(units, 100);
    EXPECT_GT(refused, 100);
}

}  // namespace
}  // namespace mensor
