// utf8_test.cpp: the code points of good and malformed bytes, and how code points are written.
#include "mensor/utf8.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Utf8Texts.h"

namespace mensor {
namespace {

std::u32string decodeAll(const char* position, const char* end) {
    std::u32string result;
    while (position != end) {
        const char* const before = position;
        const std::size_t length = detail::sequenceLength(position, end);
        result += detail::decodeUtf8(position, end);
        if (position <= before || position > end || position != before + length) {
            ADD_FAILURE() << "a step of " << position - before << " bytes where "
                          << "sequenceLength() says " << length;
            break;
        }
    }
    return result;
}

TEST(Utf8, ReadsTheCodePointsOfEveryText) {
    for (const test::Utf8Text& text : test::utf8Texts()) {
        SCOPED_TRACE(text.What);
        EXPECT_EQ(decodeAll(text.Bytes.data(), text.Bytes.data() + text.Bytes.size()),
                  text.CodePoints);
    }
}

TEST(Utf8, ReadsNothingPastTheEnd) {
    for (const test::Utf8Text& text : test::utf8Texts()) {
        SCOPED_TRACE(text.What);
        // Continuation bytes after the end would complete the sequence.
        const std::string longer = text.Bytes + std::string(6, '\xBF');
        EXPECT_EQ(decodeAll(longer.data(), longer.data() + text.Bytes.size()), text.CodePoints);
        // No NUL follows the last byte, so AddressSanitizer reports any read past the end.
        const std::vector<char> exact(text.Bytes.begin(), text.Bytes.end());
        EXPECT_EQ(decodeAll(exact.data(), exact.data() + exact.size()), text.CodePoints);
    }
}

TEST(Utf8, AtTheEndReturnsNulAndStays) {
    const std::string text = "m";
    const char* const end = text.data() + text.size();
    const char* position = end;
    EXPECT_EQ(detail::sequenceLength(position, end), 0u);
    EXPECT_EQ(detail::decodeUtf8(position, end), U'\0');
    EXPECT_EQ(position, end);
}

TEST(Utf8, WritesTheShortestForm) {
    const struct {
        char32_t CodePoint;
        std::string Bytes;
    } rows[] = {
        {0, test::bytes({0})},
        {0x7F, test::bytes({0x7F})},
        {0x80, test::bytes({0xC2, 0x80})},
        {0xB5, "µ"},
        {0x7FF, test::bytes({0xDF, 0xBF})},
        {0x800, test::bytes({0xE0, 0xA0, 0x80})},
        {0x2126, "Ω"},
        {0xD800, test::bytes({0xED, 0xA0, 0x80})},
        {0xFFFF, test::bytes({0xEF, 0xBF, 0xBF})},
        {0x10000, test::bytes({0xF0, 0x90, 0x80, 0x80})},
        {0x10FFFF, test::bytes({0xF4, 0x8F, 0xBF, 0xBF})},
        {0x1FFFFF, test::bytes({0xF7, 0xBF, 0xBF, 0xBF})},
        {0x200000, test::bytes({0xF8, 0x88, 0x80, 0x80, 0x80})},
        {0x3FFFFFF, test::bytes({0xFB, 0xBF, 0xBF, 0xBF, 0xBF})},
        {0x4000000, test::bytes({0xFC, 0x84, 0x80, 0x80, 0x80, 0x80})},
        {0x7FFFFFFF, test::bytes({0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF})},
        // does not fit six bytes: the replacement character
        {0x80000000, test::bytes({0xEF, 0xBF, 0xBD})},
        {0xFFFFFFFF, test::bytes({0xEF, 0xBF, 0xBD})},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(static_cast<unsigned long>(row.CodePoint));
        char out[6];
        EXPECT_EQ(std::string(out, detail::encodeUtf8(row.CodePoint, out)), row.Bytes);
    }
}

TEST(Utf8, ReadsBackWhatItWrote) {
    // All of Unicode, then samples of all five and six byte forms.
    for (char32_t codePoint = 0; codePoint <= 0x7FFFFFFF;
         codePoint += codePoint <= 0x110000 ? 1 : 0x100FF) {
        char out[6];
        const char* position = out;
        const char* const end = out + detail::encodeUtf8(codePoint, out);
        ASSERT_EQ(detail::decodeUtf8(position, end), codePoint);
        ASSERT_EQ(position, end);
    }
}

}  // namespace
}  // namespace mensor
