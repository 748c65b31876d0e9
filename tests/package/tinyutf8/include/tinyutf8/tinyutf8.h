// tinyutf8.h: replaces the header of tiny-utf8 4.4 in the tests of mensor.
//
// It has the part of the interface that mensor uses. It behaves as tiny-utf8 does where that differs from
// mensor's own class:
//
// - A character array of N characters is a literal: N - 1 characters are stored if the last is zero, else all
//   of them. Zeros before the last are stored, too. Only a pointer is read up to its first zero.
// - operator<< to a narrow stream is a template in the global namespace. Code in a namespace that has an
//   operator<< of its own does not find it.
// - An iterator, and an index into a text that is not const, return a proxy that converts to char32_t.
// - There are no comparisons and sums with bytes on the left, no += with a code point, and no >, <= and >=.
//   cpp_str() returns a copy.
//
// In some cases the real class may read outside its bytes. Then this class ends the program: for an
// index or position past the end, and for counting, indexing, cutting or iterating a text whose last
// sequence is incomplete or that has 0xFE or 0xFF. mensor must treat such text as bytes.
#ifndef TINYUTF8_TINYUTF8_H
#define TINYUTF8_TINYUTF8_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace tiny_utf8 {

template <typename ValueType, typename DataType>
class basic_string {
public:
    using value_type = ValueType;
    using data_type = DataType;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    static constexpr size_type npos = static_cast<size_type>(-1);

    // A reference to a code point of a text. It is valid as long as the text.
    class codepoint_reference {
    public:
        codepoint_reference(const basic_string* text, size_type byte)
            : m_Text(text), m_Byte(byte) {}
        operator value_type() const { return m_Text->decode(m_Byte); }

    private:
        const basic_string* m_Text;
        size_type m_Byte;
    };

    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = ValueType;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = codepoint_reference;

        const_iterator(const basic_string* text, size_type byte) : m_Text(text), m_Byte(byte) {}
        reference operator*() const { return codepoint_reference(m_Text, m_Byte); }
        const_iterator& operator++() {
            m_Byte += m_Text->bytesOfCodePoint(m_Byte);
            return *this;
        }
        const_iterator operator++(int) {
            const const_iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const const_iterator& other) const { return m_Byte == other.m_Byte; }
        bool operator!=(const const_iterator& other) const { return m_Byte != other.m_Byte; }

    private:
        const basic_string* m_Text;
        size_type m_Byte;
    };
    using iterator = const_iterator;

    basic_string() = default;

    // The bytes up to the first zero. Only for pointers: an array goes to the next constructor.
    template <typename Pointer,
              std::enable_if_t<std::is_pointer_v<std::remove_reference_t<Pointer>> &&
                                   std::is_convertible_v<Pointer, const data_type*>,
                               int> = 0>
    basic_string(Pointer&& bytes) : m_Bytes(static_cast<const data_type*>(bytes)) {}

    // All characters of the array, without the last if that is zero.
    template <size_type N>
    basic_string(const data_type (&literal)[N])
        : m_Bytes(literal, literal[N - 1] != 0 ? N : N - 1) {}

    basic_string(std::basic_string<data_type> bytes) : m_Bytes(std::move(bytes)) {}
    basic_string(std::basic_string_view<data_type> bytes) : m_Bytes(bytes) {}
    explicit basic_string(data_type byte) : m_Bytes(1, byte) {}
    explicit basic_string(value_type codePoint) { push_back(codePoint); }
    basic_string(size_type count, value_type codePoint) {
        while (count-- > 0)
            push_back(codePoint);
    }

    size_type length() const {
        size_type count = 0;
        for (size_type byte = 0; byte < m_Bytes.size(); byte += bytesOfCodePoint(byte))
            ++count;
        return count;
    }
    size_type size() const { return m_Bytes.size(); }
    bool empty() const { return m_Bytes.empty(); }

    value_type operator[](size_type index) const {
        const size_type byte = byteOf(index);
        require(byte < m_Bytes.size(), "operator[] past the end");
        return decode(byte);
    }
    codepoint_reference operator[](size_type index) {
        const size_type byte = byteOf(index);
        require(byte < m_Bytes.size(), "operator[] past the end");
        return codepoint_reference(this, byte);
    }
    value_type at(size_type index) const {
        const size_type byte = byteOf(index);
        if (byte >= m_Bytes.size())
            throw std::out_of_range("tiny_utf8::basic_string::at");
        return decode(byte);
    }

    basic_string substr(size_type position, size_type count = npos) const {
        require(position <= length(), "substr() past the end");
        const size_type from = byteOf(position);
        size_type to = from;
        while (count-- > 0 && to < m_Bytes.size())
            to += bytesOfCodePoint(to);
        return m_Bytes.substr(from, to - from);
    }

    basic_string& append(const basic_string& text) {
        m_Bytes += text.m_Bytes;
        return *this;
    }
    void push_back(value_type codePoint) {
        require(codePoint < 0x110000, "push_back() beyond Unicode");
        if (codePoint < 0x80) {
            put(codePoint);
            return;
        }
        if (codePoint < 0x800) {
            put(0xC0 | codePoint >> 6);
        } else {
            if (codePoint < 0x10000) {
                put(0xE0 | codePoint >> 12);
            } else {
                put(0xF0 | codePoint >> 18);
                put(0x80 | (codePoint >> 12 & 0x3F));
            }
            put(0x80 | (codePoint >> 6 & 0x3F));
        }
        put(0x80 | (codePoint & 0x3F));
    }
    basic_string& operator+=(const basic_string& text) { return append(text); }
    basic_string operator+(const basic_string& text) const {
        basic_string sum = *this;
        sum.append(text);
        return sum;
    }

    bool operator==(const basic_string& other) const { return m_Bytes == other.m_Bytes; }
    bool operator!=(const basic_string& other) const { return m_Bytes != other.m_Bytes; }
    bool operator<(const basic_string& other) const { return m_Bytes < other.m_Bytes; }

    bool operator==(const std::basic_string<data_type>& other) const { return m_Bytes == other; }
    bool operator!=(const std::basic_string<data_type>& other) const { return m_Bytes != other; }
    bool operator<(const std::basic_string<data_type>& other) const { return m_Bytes < other; }

    const data_type* c_str() const { return m_Bytes.c_str(); }
    const data_type* data() const { return m_Bytes.data(); }
    std::basic_string<data_type> cpp_str() const { return m_Bytes; }

    const_iterator begin() const { return const_iterator(this, 0); }
    const_iterator end() const { return const_iterator(this, m_Bytes.size()); }

private:
    static void require(bool condition, const char* what) {
        if (condition)
            return;
        std::fprintf(stderr, "tiny_utf8 (stand-in): %s\n", what);
        std::abort();
    }

    unsigned byteAt(size_type byte) const { return static_cast<unsigned char>(m_Bytes[byte]); }
    void put(value_type byte) { m_Bytes += static_cast<data_type>(byte); }

    size_type bytesOfCodePoint(size_type byte) const {
        require(byte < m_Bytes.size(), "past the end");
        size_type leadingOnes = 0;
        while (leadingOnes < 8 && (byteAt(byte) << leadingOnes & 0x80) != 0)
            ++leadingOnes;
        require(leadingOnes < 7, "0xFE or 0xFF");
        const size_type bytes = leadingOnes < 2 ? 1 : leadingOnes;
        require(bytes <= m_Bytes.size() - byte, "a sequence that is cut off");
        return bytes;
    }

    value_type decode(size_type byte) const {
        const size_type bytes = bytesOfCodePoint(byte);
        if (bytes == 1)
            return byteAt(byte);
        value_type codePoint = byteAt(byte) & (0x7Fu >> bytes);
        for (size_type i = 1; i < bytes; ++i)
            codePoint = codePoint << 6 | (byteAt(byte + i) & 0x3F);
        return codePoint;
    }

    // The byte where the code point `index` begins; the number of bytes if there is none.
    size_type byteOf(size_type index) const {
        size_type byte = 0;
        while (index-- > 0 && byte < m_Bytes.size())
            byte += bytesOfCodePoint(byte);
        return byte;
    }

    std::basic_string<data_type> m_Bytes;
};

using utf8_string = basic_string<char32_t, char>;

}  // namespace tiny_utf8

template <typename ValueType, typename DataType>
std::basic_ostream<DataType>& operator<<(std::basic_ostream<DataType>& stream,
                                         const tiny_utf8::basic_string<ValueType, DataType>& text) {
    return stream << text.cpp_str();
}

template <>
struct std::hash<tiny_utf8::utf8_string> {
    std::size_t operator()(const tiny_utf8::utf8_string& text) const {
        return std::hash<std::string>()(text.cpp_str());
    }
};

#endif  // TINYUTF8_TINYUTF8_H
