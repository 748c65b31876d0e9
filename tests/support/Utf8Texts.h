// Utf8Texts.h: texts in good and bad UTF-8, each with the code points it reads as.
#ifndef MENSOR_TESTS_UTF8TEXTS_H
#define MENSOR_TESTS_UTF8TEXTS_H

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

namespace mensor::test {

struct Utf8Text {
    const char* What;
    std::string Bytes;
    std::u32string CodePoints;
};

inline std::string bytes(std::initializer_list<int> values) {
    std::string result;
    for (const int value : values)
        result += static_cast<char>(static_cast<unsigned char>(value));
    return result;
}

/// All texts of at most three bytes of `alphabet`, the empty one first.
inline std::vector<std::string> shortTexts(const std::string& alphabet) {
    std::vector<std::string> texts = {""};
    for (std::size_t from = 0, size = 1; size <= 3; ++size) {
        const std::size_t to = texts.size();
        for (; from < to; ++from)
            for (const char byte : alphabet)
                texts.push_back(texts[from] + byte);
    }
    return texts;
}

inline std::u32string codePoints(std::initializer_list<char32_t> values) { return {values}; }

inline const std::vector<Utf8Text>& utf8Texts() {
    static const std::vector<Utf8Text> texts = {
        // well-formed
        {"nothing", "", {}},
        {"ASCII", "kg", U"kg"},
        {"two bytes", "µ°²", codePoints({0xB5, 0xB0, 0xB2})},
        {"three bytes", "Ω€", codePoints({0x2126, 0x20AC})},
        {"four bytes", bytes({0xF0, 0x9F, 0x8C, 0x8D}), codePoints({0x1F30D})},
        {"all lengths", "a·⁄" + bytes({0xF4, 0x8F, 0xBF, 0xBF}) + "b",
         codePoints({'a', 0xB7, 0x2044, 0x10FFFF, 'b'})},
        {"a NUL first", bytes({0, 'm'}), codePoints({0, 'm'})},
        {"a NUL inside", bytes({'k', 0, 0xC2, 0xB5}), codePoints({'k', 0, 0xB5})},
        {"a NUL last", bytes({'m', 0}), codePoints({'m', 0})},
        {"least and greatest of two bytes", bytes({0xC2, 0x80, 0xDF, 0xBF}),
         codePoints({0x80, 0x7FF})},
        {"least and greatest of three bytes", bytes({0xE0, 0xA0, 0x80, 0xEF, 0xBF, 0xBF}),
         codePoints({0x800, 0xFFFF})},
        {"least of four bytes", bytes({0xF0, 0x90, 0x80, 0x80}), codePoints({0x10000})},

        // beyond Unicode, read by the same pattern
        {"surrogates", bytes({0xED, 0xA0, 0x80, 0xED, 0xBF, 0xBF}), codePoints({0xD800, 0xDFFF})},
        {"first after U+10FFFF", bytes({0xF4, 0x90, 0x80, 0x80}), codePoints({0x110000})},
        {"greatest of four bytes", bytes({0xF7, 0xBF, 0xBF, 0xBF}), codePoints({0x1FFFFF})},
        {"five bytes", bytes({0xF8, 0x88, 0x80, 0x80, 0x80, 0xFB, 0xBF, 0xBF, 0xBF, 0xBF}),
         codePoints({0x200000, 0x3FFFFFF})},
        {"six bytes",
         bytes({0xFC, 0x84, 0x80, 0x80, 0x80, 0x80, 0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF}),
         codePoints({0x4000000, 0x7FFFFFFF})},

        // overlong
        {"overlong NUL", bytes({0xC0, 0x80}), codePoints({0})},
        {"overlong slash in 2 to 6 bytes",
         bytes({0xC0, 0xAF, 0xE0, 0x80, 0xAF, 0xF0, 0x80, 0x80, 0xAF, 0xF8,
                0x80, 0x80, 0x80, 0xAF, 0xFC, 0x80, 0x80, 0x80, 0x80, 0xAF}),
         U"/////"},

        // bytes that begin no code point
        {"stray continuation bytes", bytes({0x80, 'm', 0xBF, 0xBF}),
         codePoints({0x80, 'm', 0xBF, 0xBF})},
        {"one continuation byte too many", bytes({0xC2, 0xB5, 0xB5}), codePoints({0xB5, 0xB5})},
        {"FE and FF", bytes({0xFE, 'm', 0xFF, 0xFE}), codePoints({0xFE, 'm', 0xFF, 0xFE})},
        {"FE and FF before continuation bytes",
         bytes({0xFE, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0xFF, 0x80}),
         codePoints({0xFE, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0xFF, 0x80})},

        // the lead byte takes any bytes that follow
        {"ASCII for a continuation byte", bytes({0xC2, 'm', 's'}), codePoints({0xAD, 's'})},
        {"NUL for a continuation byte", bytes({0xC2, 0, 's'}), codePoints({0x80, 's'})},
        {"a lead byte for a continuation byte", bytes({0xE2, 0xC2, 0xB5, 's'}),
         codePoints({0x20B5, 's'})},

        // cut off by the end
        {"first 1 of 2", bytes({'m', 0xC2}), codePoints({'m', 0xC2})},
        {"first 1 of 3", bytes({'m', 0xE2}), codePoints({'m', 0xE2})},
        {"first 2 of 3", bytes({'m', 0xE2, 0x84}), codePoints({'m', 0xE2, 0x84})},
        {"first 1 of 4", bytes({0xF0}), codePoints({0xF0})},
        {"first 2 of 4", bytes({0xF0, 0x9F}), codePoints({0xF0, 0x9F})},
        {"first 3 of 4", bytes({0xF0, 0x9F, 0x8C}), codePoints({0xF0, 0x9F, 0x8C})},
        {"first 1 of 5", bytes({0xF8}), codePoints({0xF8})},
        {"first 4 of 5", bytes({0xFB, 0xBF, 0xBF, 0xBF}), codePoints({0xFB, 0xBF, 0xBF, 0xBF})},
        {"first 1 of 6", bytes({0xFC}), codePoints({0xFC})},
        {"first 5 of 6", bytes({0xFD, 0xBF, 0xBF, 0xBF, 0xBF}),
         codePoints({0xFD, 0xBF, 0xBF, 0xBF, 0xBF})},
        {"cut off before a whole one", bytes({0xF0, 0xC2, 0xB5}), codePoints({0xF0, 0xB5})},
        {"cut off before ASCII", bytes({0xE2, 'm'}), codePoints({0xE2, 'm'})},
    };
    return texts;
}

}  // namespace mensor::test
#endif  // MENSOR_TESTS_UTF8TEXTS_H
