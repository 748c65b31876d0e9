// utf8.h: reads and writes single code points of UTF-8 text. Not installed; clients use string_t of
// mensor_global.h.
//
//     const char* at = text.data();
//     const char* const end = at + text.size();
//     while (at != end) use(detail::decodeUtf8(at, end));
//
// Every byte sequence, even a malformed one, reads as some code points. Nothing outside [position,
// end) is read. The lead byte alone decides how many bytes belong to a code point:
//
//     0xxxxxxx                    1 byte, itself (a NUL is an ordinary code point)
//     110xxxxx ... 1111110x       2 to 6 bytes: the x, then the low 6 bits of each further byte,
//                                 its two upper bits are ignored
//     a lead byte cut off by end  1 byte, its raw value
//     10xxxxxx, 0xFE, 0xFF        1 byte, its raw value
//
// Further bytes are not validated on purpose. Counting, indexing and hashing all use this rule, so
// they agree on every text.
#ifndef MENSOR_UTF8_H
#define MENSOR_UTF8_H

#include <cstddef>

namespace mensor::detail {

/// Returns how many bytes, 1 to 6, the code point at `position` takes; 0 at the end.
inline std::size_t sequenceLength(const char* position, const char* end) {
    if (position == end)
        return 0;
    const unsigned lead = static_cast<unsigned char>(*position);
    if (lead < 0xC0u)
        return 1;
    const std::size_t length = lead < 0xE0u   ? 2
                               : lead < 0xF0u ? 3
                               : lead < 0xF8u ? 4
                               : lead < 0xFCu ? 5
                               : lead < 0xFEu ? 6
                                              : 1;
    return length <= static_cast<std::size_t>(end - position) ? length : 1;
}

/// Returns the code point at `position` and moves `position` past it. At the end, returns 0 and
/// leaves `position`.
inline char32_t decodeUtf8(const char*& position, const char* end) {
    const std::size_t length = sequenceLength(position, end);
    if (length == 0)
        return 0;
    const char32_t lead = static_cast<unsigned char>(*position++);
    if (length == 1)
        return lead;
    char32_t codePoint = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i)
        codePoint = (codePoint << 6) | (static_cast<unsigned char>(*position++) & 0x3Fu);
    return codePoint;
}

/// Writes `codePoint` to `out` in its shortest form and returns the number of bytes, 1 to 6.
///
/// A number beyond the 31 bits that six bytes hold is written as U+FFFD, the replacement character.
inline std::size_t encodeUtf8(char32_t codePoint, char (&out)[6]) {
    if (codePoint < 0x80u) {
        out[0] = static_cast<char>(codePoint);
        return 1;
    }
    if (codePoint > 0x7FFFFFFFu)
        codePoint = 0xFFFDu;
    const std::size_t length = codePoint < 0x800u       ? 2
                               : codePoint < 0x10000u   ? 3
                               : codePoint < 0x200000u  ? 4
                               : codePoint < 0x4000000u ? 5
                                                        : 6;
    for (std::size_t i = length - 1; i > 0; --i) {
        out[i] = static_cast<char>(0x80u | (codePoint & 0x3Fu));
        codePoint >>= 6;
    }
    // The first byte has one leading 1 for each byte, then a 0 and the remaining bits.
    out[0] = static_cast<char>((0xFF00u >> length & 0xFFu) | codePoint);
    return length;
}

}  // namespace mensor::detail
#endif  // MENSOR_UTF8_H
