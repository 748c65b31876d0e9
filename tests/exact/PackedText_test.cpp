// PackedText_test.cpp: a packed text is unpacked as it was.
#include "mensor_exact/PackedText.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace mensor::exact {
namespace {

constexpr std::string_view Text = "the kilometre per hour, \"{}\" is 10^3 m in µm²";

std::string packed(std::string_view text) {
    std::string result;
    packText(text, [&result](unsigned char byte) { result += static_cast<char>(byte); });
    EXPECT_EQ(result.find('\0'), result.size() - 1) << "only the end is zero";
    return result;
}

TEST(PackedText, EachFragmentIsOneByte) {
    for (const std::string_view fragment : packing::Fragments) {
        const std::string text = packed(fragment);
        EXPECT_EQ(text.size(), 2U) << fragment;
        EXPECT_EQ(unpacked(text.c_str()), fragment);
    }
}

TEST(PackedText, BytesOutsideOfFragmentsAreKept) {
    EXPECT_EQ(unpacked(packed("").c_str()), "");
    for (int byte = 1; byte < 256; ++byte) {
        for (const std::string& text : {std::string(1, static_cast<char>(byte)),
                                        "m" + std::string(2, static_cast<char>(byte)),
                                        std::string(1, static_cast<char>(byte)) + "~"}) {
            EXPECT_EQ(unpacked(packed(text).c_str()), text) << byte;
        }
    }
}

TEST(PackedText, TakesTheFewestBytes) {
    // Two fragments need at most one byte each, and the zero. Taking the longest fragment first would need more
    // for some pairs.
    for (const std::string_view first : packing::Fragments) {
        for (const std::string_view second : packing::Fragments) {
            const std::string text = std::string(first).append(second);
            const std::string result = packed(text);
            ASSERT_LE(result.size(), 3U) << text;
            ASSERT_EQ(unpacked(result.c_str()), text);
        }
    }
}

TEST(PackedText, TheCompilerPacksAsAProgramDoes) {
    constexpr auto Written = writeTexts<2>([](std::size_t i, const auto& write) {
        packText(i == 0 ? std::string_view("metre") : Text, write);
    });
    constexpr auto Texts = shrunk<Written.Size>(Written);
    static_assert(sizeof Texts.Bytes < Text.size());
    EXPECT_STREQ(Texts.Bytes, packed("metre").c_str());
    EXPECT_STREQ(Texts.Bytes + Texts.Starts[1], packed(Text).c_str());
    EXPECT_EQ(unpacked(Texts.Bytes + Texts.Starts[1]), Text);
}

}  // namespace
}  // namespace mensor::exact
