// utf8_string.h: a text in UTF-8 that is counted, indexed and cut by code point.
//
//     utf8_string speed("m/s²");
//     speed.length();                      // 4 code points
//     speed.size();                        // 5 bytes
//     speed[3];                            // U'²'
//     speed[4];                            // 0: past the end
//     speed.substr(2, 2);                  // "s²"
//     speed += U'·';                       // "m/s²·"
//     std::cout << speed + "kg";           // prints m/s²·kg
//     for (char32_t c : speed) use(c);
//     utf8_string(std::string("k\0m", 3))  // 3 code points: a NUL is kept
//
// This is mensor's string_t, unless mensor is built with tiny-utf8 (MENSOR_STRING). The class of
// tiny-utf8 has the same interface as far as mensor and its clients use it. Write string_t, which
// mensor/mensor_global.h declares, instead of this name.
//
// Any bytes are accepted and stored unchanged. In malformed text a lead byte takes as many bytes as
// it announces, even if they are no continuation bytes. A lead byte whose sequence runs past the
// end of the text, a continuation byte without a lead byte, 0xFE and 0xFF each are one code point
// with their own value. Counting, indexing, cutting and iterating agree on this, and none reads
// outside the text.
//
// Threads: caller serialises changes of one text, as of a std::string; distinct texts any thread.
// Cost: the bytes are one std::string, so short texts need no heap memory. A function that takes an
// index or returns a number of code points walks the text up to that point. To visit every code
// point, iterate.
#ifndef MENSOR_UTF8_STRING_H
#define MENSOR_UTF8_STRING_H

#include <cstddef>
#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <utility>

#include "mensor/mensor_export.h"

namespace mensor {

/// A UTF-8 text indexed by code point.
class MENSOR_API utf8_string {
public:
    using value_type = char32_t;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    class const_iterator;
    using iterator = const_iterator;  // a code point cannot be changed in place

    /// A count that means "up to the end".
    static constexpr size_type npos = static_cast<size_type>(-1);

    utf8_string() noexcept = default;

    /// The bytes up to the first NUL; `bytes` must not be null.
    utf8_string(const char* bytes) : m_Bytes(bytes) {}

    /// All of `bytes`, NULs included.
    utf8_string(std::string bytes) noexcept : m_Bytes(std::move(bytes)) {}

    /// One code point. U+FFFD for a number beyond 0x7FFFFFFF, which does not fit six bytes of
    /// UTF-8.
    explicit utf8_string(char32_t codePoint) { push_back(codePoint); }

    /// `count` times the same code point.
    utf8_string(size_type count, char32_t codePoint);

    /// The number of code points. Walks the text.
    size_type length() const noexcept;

    /// The number of bytes.
    size_type size() const noexcept { return m_Bytes.size(); }

    bool empty() const noexcept { return m_Bytes.empty(); }

    /// The code point at `index`, counted in code points from 0; 0 past the end.
    char32_t operator[](size_type index) const noexcept;

    /// The code point at `index`, counted in code points from 0.
    ///
    /// @throws std::out_of_range  "utf8_string::at: index 4 in a text of 3 code points"
    char32_t at(size_type index) const;

    /// The `count` code points from `position` on, both counted in code points.
    ///
    /// Fewer if the text ends earlier. Empty if `position` is at the end or past it.
    utf8_string substr(size_type position, size_type count = npos) const;

    utf8_string& append(const utf8_string& text) {
        m_Bytes.append(text.m_Bytes);
        return *this;
    }
    utf8_string& append(const char* bytes) {
        m_Bytes.append(bytes);
        return *this;
    }

    /// Appends one code point. U+FFFD for a number beyond 0x7FFFFFFF.
    void push_back(char32_t codePoint);

    utf8_string& operator+=(const utf8_string& text) { return append(text); }
    utf8_string& operator+=(const char* bytes) { return append(bytes); }
    utf8_string& operator+=(char32_t codePoint) {
        push_back(codePoint);
        return *this;
    }

    /// The bytes, followed by a NUL. Valid until the text is changed or destroyed.
    const char* c_str() const noexcept { return m_Bytes.c_str(); }
    const char* data() const noexcept { return m_Bytes.data(); }

    /// The bytes as a string. For a temporary text the string is moved out, so that it does not
    /// dangle.
    const std::string& cpp_str() const& noexcept { return m_Bytes; }
    std::string cpp_str() && noexcept { return std::move(m_Bytes); }

    /// Forward iterators over the code points, by value; valid until the text is changed.
    const_iterator begin() const noexcept;
    const_iterator end() const noexcept;

    friend utf8_string operator+(utf8_string left, const utf8_string& right) {
        left += right;
        return left;
    }
    friend utf8_string operator+(utf8_string left, char32_t right) {
        left += right;
        return left;
    }

    // Comparison is by unsigned bytes, which for valid UTF-8 is the order of the code points.
    friend bool operator==(const utf8_string& left, const utf8_string& right) noexcept {
        return left.m_Bytes == right.m_Bytes;
    }
    friend bool operator!=(const utf8_string& left, const utf8_string& right) noexcept {
        return left.m_Bytes != right.m_Bytes;
    }
    friend bool operator<(const utf8_string& left, const utf8_string& right) noexcept {
        return left.m_Bytes < right.m_Bytes;
    }
    friend bool operator>(const utf8_string& left, const utf8_string& right) noexcept {
        return left.m_Bytes > right.m_Bytes;
    }
    friend bool operator<=(const utf8_string& left, const utf8_string& right) noexcept {
        return left.m_Bytes <= right.m_Bytes;
    }
    friend bool operator>=(const utf8_string& left, const utf8_string& right) noexcept {
        return left.m_Bytes >= right.m_Bytes;
    }

    /// Writes the bytes as a std::string is written: NULs included, padded to the stream's width.
    friend std::ostream& operator<<(std::ostream& stream, const utf8_string& text) {
        return stream << text.m_Bytes;
    }

private:
    std::string m_Bytes;  // as given, even if malformed
};

/// Walks the code points of a text; comparable with iterators of the same text only.
class MENSOR_API utf8_string::const_iterator {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = char32_t;
    using difference_type = std::ptrdiff_t;
    using pointer = const char32_t*;
    using reference = char32_t;  // decoded when read: there is no object to refer to

    const_iterator() noexcept = default;

    /// The code point here; 0 at the end.
    char32_t operator*() const noexcept;

    /// Steps to the next code point; stays at the end.
    const_iterator& operator++() noexcept;
    const_iterator operator++(int) noexcept {
        const const_iterator before = *this;
        ++*this;
        return before;
    }

    friend bool operator==(const_iterator left, const_iterator right) noexcept {
        return left.m_Position == right.m_Position;
    }
    friend bool operator!=(const_iterator left, const_iterator right) noexcept {
        return left.m_Position != right.m_Position;
    }

private:
    friend class utf8_string;
    const_iterator(const char* position, const char* end) noexcept
        : m_Position(position), m_End(end) {}

    const char* m_Position = nullptr;  // first byte of the code point
    const char* m_End = nullptr;       // end of the text's bytes
};

inline utf8_string::const_iterator utf8_string::begin() const noexcept {
    return {data(), data() + size()};
}

inline utf8_string::const_iterator utf8_string::end() const noexcept {
    return {data() + size(), data() + size()};
}

}  // namespace mensor

/// Equal texts hash alike, so a text may be the key of an unordered map.
template <>
struct std::hash<mensor::utf8_string> {
    std::size_t operator()(const mensor::utf8_string& text) const noexcept {
        return std::hash<std::string>()(text.cpp_str());
    }
};

#endif  // MENSOR_UTF8_STRING_H
