// utf8.h: strict reading of UTF-8. For mensor's own libraries and the tool; not installed.
#ifndef MENSOR_EXACT_UTF8_H
#define MENSOR_EXACT_UTF8_H

#include <cstddef>
#include <string_view>

namespace mensor::exact {

constexpr char32_t NotUtf8 = 0xFFFFFFFF;

/// The code point at the beginning of `text`, which is not empty, and its length in bytes. NotUtf8
/// and 1 for bytes that are not the shortest form of a Unicode scalar value.
[[gnu::hot]] constexpr char32_t decode(std::string_view text, std::size_t& length) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const char32_t lead = byte(0);
    length = 1;
    if (lead < 0x80) {
        return lead;
    }
    const std::size_t need = lead >= 0xC2 && lead < 0xE0   ? 2
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xF0 && lead < 0xF5 ? 4
                                                           : 0;
    if (need == 0 || text.size() < need) {
        return NotUtf8;
    }
    char32_t c = lead & (0x7FU >> need);
    for (std::size_t i = 1; i < need; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return NotUtf8;
        }
        c = c << 6 | (byte(i) & 0x3FU);
    }
    if ((need == 3 && c < 0x800) || (need == 4 && c < 0x10000) || (c >= 0xD800 && c < 0xE000) ||
        c > 0x10FFFF) {
        return NotUtf8;
    }
    length = need;
    return c;
}

/// Returns the number of code points in `text`. A byte that is not UTF-8 counts as one.
inline std::size_t countCodePoints(std::string_view text) {
    std::size_t count = 0;
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size(); at += length) {
        decode(text.substr(at), length);
        ++count;
    }
    return count;
}

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_UTF8_H
