// utf8_string_test.cpp: counting, indexing and cutting texts by code point, and that all of these
// agree on malformed text.
#include "mensor/utf8_string.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iomanip>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "support/Utf8Texts.h"

namespace mensor {
namespace {
using ::testing::StrEq, ::testing::ThrowsMessage;

static_assert(std::is_same_v<utf8_string::value_type, char32_t>);
static_assert(std::is_nothrow_default_constructible_v<utf8_string>);
static_assert(std::is_copy_constructible_v<utf8_string> && std::is_copy_assignable_v<utf8_string>);
static_assert(std::is_nothrow_move_constructible_v<utf8_string>);
static_assert(std::is_nothrow_move_assignable_v<utf8_string>);
static_assert(std::is_convertible_v<const char*, utf8_string>);
static_assert(std::is_convertible_v<std::string, utf8_string>);
static_assert(std::is_constructible_v<utf8_string, char32_t>);
static_assert(!std::is_convertible_v<char32_t, utf8_string>);  // no implicit conversion of a number

std::u32string codePointsOf(const utf8_string& text) { return {text.begin(), text.end()}; }

/// Expects that all functions of `text` give the same code points.
void expectToAgree(const utf8_string& text) {
    const std::u32string codePoints = codePointsOf(text);
    ASSERT_EQ(text.length(), codePoints.size());
    utf8_string joined;
    for (std::size_t i = 0; i < codePoints.size(); ++i) {
        ASSERT_EQ(text[i], codePoints[i]) << "index " << i;
        ASSERT_EQ(text.at(i), codePoints[i]) << "index " << i;
        // A code point that is cut out of malformed text may read as several, so the bytes are
        // compared.
        joined.append(text.substr(i, 1));
        ASSERT_EQ(text.substr(0, i) + text.substr(i), text) << "index " << i;
    }
    ASSERT_EQ(joined, text);
    ASSERT_EQ(text[codePoints.size()], U'\0');
    ASSERT_EQ(text[utf8_string::npos], U'\0');
    ASSERT_THROW(text.at(codePoints.size()), std::out_of_range);
}

TEST(Utf8String, StartsEmpty) {
    const utf8_string text;
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.length(), 0u);
    EXPECT_EQ(text.size(), 0u);
    EXPECT_EQ(text.begin(), text.end());
    EXPECT_STREQ(text.c_str(), "");
    EXPECT_EQ(text[0], U'\0');
}

TEST(Utf8String, CountsCodePointsInLengthAndBytesInSize) {
    const utf8_string text("m/s²");
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.length(), 4u);
    EXPECT_EQ(text.size(), 5u);
    EXPECT_EQ(text[3], U'²');
    EXPECT_EQ(text.at(3), U'²');
}

TEST(Utf8String, KeepsTheBytesOfAString) {
    const std::string bytes("k\0m", 3);
    utf8_string text(bytes);
    EXPECT_EQ(text.length(), 3u);
    EXPECT_EQ(text.cpp_str(), bytes);
    EXPECT_EQ(std::string(text.data(), text.size()), bytes);
    EXPECT_EQ(text.c_str()[3], '\0');
    EXPECT_EQ(utf8_string(std::string(bytes)).cpp_str(), bytes);  // by value for a temporary
    text = std::string("Ω");
    EXPECT_EQ(text[0], U'\u2126');
    text = "°C";
    EXPECT_EQ(text[0], U'°');
}

TEST(Utf8String, FromAPointerEndsAtTheFirstNul) { EXPECT_EQ(utf8_string("k\0m").cpp_str(), "k"); }

TEST(Utf8String, IsBuiltFromOneCodePointOrSeveralEqualOnes) {
    EXPECT_EQ(utf8_string(U'm'), "m");
    EXPECT_EQ(utf8_string(U'µ'), "µ");
    EXPECT_EQ(utf8_string(char32_t{0x1F30D}).size(), 4u);
    EXPECT_EQ(utf8_string(U'\0').cpp_str(), std::string(1, '\0'));
    EXPECT_EQ(utf8_string(char32_t{0x80000000}), "\uFFFD");
    EXPECT_EQ(utf8_string(3, U'-'), "---");
    EXPECT_EQ(utf8_string(3, U'Ω'), "ΩΩΩ");
    EXPECT_EQ(utf8_string(0, U'Ω'), "");
}

TEST(Utf8String, CanBeCopiedAndMoved) {
    utf8_string text("a text too long for the object itself");
    utf8_string copy(text);
    EXPECT_EQ(copy, text);
    copy += U'!';
    EXPECT_NE(copy, text);
    const char* const bytes = copy.data();
    const utf8_string moved(std::move(copy));
    EXPECT_EQ(moved.data(), bytes);
    EXPECT_EQ(moved, "a text too long for the object itself!");
    text = moved;
    EXPECT_EQ(text, moved);
}

TEST(Utf8String, StoresAShortTextInsideTheObject) {
    const utf8_string text("kg·m²/s²");
    const auto inside = [&](const void* p) {
        const std::less<const void*> before;
        return !before(p, &text) && before(p, &text + 1);
    };
    EXPECT_TRUE(inside(text.data()));
}

TEST(Utf8String, ReadsMalformedTextAsTheDecoderDoes) {
    for (const test::Utf8Text& row : test::utf8Texts()) {
        SCOPED_TRACE(row.What);
        const utf8_string text(row.Bytes);
        EXPECT_EQ(codePointsOf(text), row.CodePoints);
        EXPECT_EQ(text.cpp_str(), row.Bytes);
        expectToAgree(text);
    }
}

TEST(Utf8String, ItsFunctionsAgreeOnEveryShortMixtureOfBytes) {
    const std::vector<std::string> texts = test::shortTexts(
        test::bytes({0x00, 'm', 0x7F, 0x80, 0xBF, 0xC2, 0xDF, 0xE2, 0xF0, 0xF8, 0xFC, 0xFE, 0xFF}));
    ASSERT_EQ(texts.size(), 1u + 13 + 13 * 13 + 13 * 13 * 13);
    for (const std::string& bytes : texts) {
        SCOPED_TRACE(::testing::PrintToString(bytes));
        expectToAgree(utf8_string(bytes));
        if (HasFatalFailure())
            return;
    }
}

TEST(Utf8String, AtPastTheEndThrowsAMessageWithTheIndex) {
    const utf8_string text("m/s²");
    EXPECT_THAT([&] { text.at(4); }, ThrowsMessage<std::out_of_range>(StrEq(
                                         "utf8_string::at: index 4 in a text of 4 code points")));
    EXPECT_THAT([] { utf8_string().at(0); },
                ThrowsMessage<std::out_of_range>(
                    StrEq("utf8_string::at: index 0 in a text of 0 code points")));
}

TEST(Utf8String, IndexingPastTheEndReturnsNul) {
    const utf8_string text("s²");
    EXPECT_EQ(text[2], U'\0');
    EXPECT_EQ(text[1000000], U'\0');
}

TEST(Utf8String, SubstrCountsCodePoints) {
    const utf8_string text("µm²·Ω");
    EXPECT_EQ(text.substr(0), text);
    EXPECT_EQ(text.substr(0, 0), "");
    EXPECT_EQ(text.substr(0, 1), "µ");
    EXPECT_EQ(text.substr(1, 2), "m²");
    EXPECT_EQ(text.substr(3), "·Ω");
    EXPECT_EQ(text.substr(4, 100), "Ω");
    EXPECT_EQ(text.substr(5), "");
    EXPECT_EQ(text.substr(6, 1), "");
    EXPECT_EQ(text.substr(utf8_string::npos), "");
    EXPECT_EQ(utf8_string::npos, std::string::npos);
    EXPECT_EQ(utf8_string(std::string("a\0b", 3)).substr(1), utf8_string(std::string("\0b", 2)));
}

TEST(Utf8String, CanBeAppendedTo) {
    utf8_string text("m");
    text.push_back(U'²');
    EXPECT_EQ(text, "m²");
    EXPECT_EQ(&text.append("·"), &text);
    EXPECT_EQ(&text.append(utf8_string("kg")), &text);
    EXPECT_EQ(text, "m²·kg");
    EXPECT_EQ(&(text += "/"), &text);
    EXPECT_EQ(&(text += utf8_string("s")), &text);
    EXPECT_EQ(&(text += U'³'), &text);
    EXPECT_EQ(text, "m²·kg/s³");
    text += utf8_string(std::string("\0x", 2));
    EXPECT_EQ(text.length(), 10u);
    EXPECT_EQ(text[9], U'x');
    text.push_back(0x80000000);
    EXPECT_EQ(text[10], U'\uFFFD');
}

TEST(Utf8String, CanBeAppendedToItself) {
    utf8_string text("µ");
    for (int i = 0; i < 5; ++i)
        text.append(text);
    EXPECT_EQ(text, utf8_string(32, U'µ'));
    text += text.c_str();
    EXPECT_EQ(text, utf8_string(64, U'µ'));
}

TEST(Utf8String, CanBeConcatenatedWithTextsBytesAndCodePoints) {
    const utf8_string metre("m");
    EXPECT_EQ(metre + metre, "mm");
    EXPECT_EQ(metre + "²", "m²");
    EXPECT_EQ("µ" + metre, "µm");
    EXPECT_EQ(metre + U'²', "m²");
    EXPECT_EQ(metre + std::string("/s"), "m/s");
    EXPECT_EQ(std::string("k") + metre, "km");
    EXPECT_EQ(metre, "m");
}

TEST(Utf8String, ComparesWithBytesOnBothSides) {
    const utf8_string text("m");
    EXPECT_TRUE(text == "m" && "m" == text && text == utf8_string("m"));
    EXPECT_FALSE(text == "s" || "s" == text || text == utf8_string("s"));
    EXPECT_TRUE(text != "s" && "s" != text && text != utf8_string("s"));
    EXPECT_FALSE(text != "m" || "m" != text || text != utf8_string("m"));
    EXPECT_TRUE(text < "s" && "kg" < text && text <= "m" && "m" <= text);
    EXPECT_FALSE(text < "m" || "m" < text || text <= "kg" || "s" <= text);
    EXPECT_TRUE(text > "kg" && "s" > text && text >= "m" && "m" >= text);
    EXPECT_FALSE(text > "m" || "m" > text || text >= "s" || "kg" >= text);
    EXPECT_TRUE(text == std::string("m") && std::string("m") == text);
    EXPECT_NE(utf8_string(std::string("m\0", 2)), "m");
}

TEST(Utf8String, IsOrderedByCodePoints) {
    const std::u32string boundaries = {0,      1,      'A',    0x7F,   0x80,    0x7FF,   0x800,
                                       0xD7FF, 0xE000, 0xFFFD, 0xFFFF, 0x10000, 0x10FFFF};
    std::vector<std::u32string> texts = {U""};
    for (const char32_t first : boundaries) {
        texts.push_back({first});
        for (const char32_t second : boundaries)
            texts.push_back({first, second});
    }
    std::vector<utf8_string> encoded;
    for (const std::u32string& text : texts) {
        encoded.emplace_back();
        for (const char32_t codePoint : text)
            encoded.back().push_back(codePoint);
    }
    for (std::size_t i = 0; i < texts.size(); ++i)
        for (std::size_t j = 0; j < texts.size(); ++j) {
            const utf8_string &a = encoded[i], &b = encoded[j];
            ASSERT_TRUE((a < b) == (texts[i] < texts[j]) && (a > b) == (texts[i] > texts[j]) &&
                        (a <= b) == (texts[i] <= texts[j]) && (a >= b) == (texts[i] >= texts[j]) &&
                        (a == b) == (texts[i] == texts[j]) && (a != b) == (texts[i] != texts[j]))
                << ::testing::PrintToString(a.cpp_str()) << " against "
                << ::testing::PrintToString(b.cpp_str());
        }
}

TEST(Utf8String, CanBeAKeyOfMaps) {
    std::unordered_map<utf8_string, int> hashed;
    std::map<utf8_string, int> ordered;
    int n = 0;
    for (const test::Utf8Text& row : test::utf8Texts()) {
        ++n;
        EXPECT_TRUE(hashed.emplace(row.Bytes, n).second) << row.What;
        EXPECT_TRUE(ordered.emplace(row.Bytes, n).second) << row.What;
    }
    n = 0;
    for (const test::Utf8Text& row : test::utf8Texts()) {
        ++n;
        EXPECT_EQ(hashed.at(row.Bytes), n) << row.What;
        EXPECT_EQ(ordered.at(row.Bytes), n) << row.What;
    }
    EXPECT_EQ(hashed.count("no such text"), 0u);
    EXPECT_EQ(std::hash<utf8_string>()("Ω"), std::hash<utf8_string>()(utf8_string(U'\u2126')));
}

TEST(Utf8String, IteratesOverCodePoints) {
    using Iterator = utf8_string::const_iterator;
    static_assert(std::is_same_v<std::iterator_traits<Iterator>::value_type, char32_t>);
    const utf8_string text("m·µ");
    Iterator it = text.begin();
    EXPECT_EQ(*it, U'm');
    EXPECT_EQ(*it++, U'm');
    EXPECT_EQ(*it, U'·');
    EXPECT_EQ(*++it, U'µ');
    EXPECT_NE(it, text.end());
    EXPECT_EQ(++it, text.end());
    EXPECT_EQ(*it, U'\0');        // 0 at the end
    EXPECT_EQ(++it, text.end());  // stays at the end
    EXPECT_EQ(Iterator(), Iterator());
    it = text.end();
    EXPECT_EQ(*it, U'\0');
    EXPECT_EQ(++it, text.end());
    EXPECT_EQ(std::distance(text.begin(), text.end()), 3);
    EXPECT_EQ(std::count(text.begin(), text.end(), U'µ'), 1);
    std::u32string seen;
    for (const char32_t codePoint : text)
        seen += codePoint;
    EXPECT_EQ(seen, U"m·µ");
}

TEST(Utf8String, IsWrittenLikeAStdString) {
    const std::string bytes = "µ" + std::string("\0m", 2);
    std::ostringstream plain, padded, expected;
    plain << utf8_string(bytes) << '|';
    EXPECT_EQ(plain.str(), bytes + '|');
    padded << std::left << std::setfill('.') << std::setw(6) << utf8_string(bytes) << '|';
    expected << std::left << std::setfill('.') << std::setw(6) << bytes << '|';
    EXPECT_EQ(padded.str(), expected.str());
}

}  // namespace
}  // namespace mensor
