#include "mensor/utf8_string.h"

#include <stdexcept>

#include "mensor/utf8.h"

namespace mensor {
namespace {

// Returns the position `count` code points after `position`, at most `end`.
const char* skip(const char* position, const char* end, std::size_t count) {
    for (; count > 0 && position != end; --count)
        position += detail::sequenceLength(position, end);
    return position;
}

}  // namespace

utf8_string::utf8_string(size_type count, char32_t codePoint) {
    char bytes[6];
    const std::size_t length = detail::encodeUtf8(codePoint, bytes);
    if (length == 1)
        m_Bytes.assign(count, bytes[0]);
    else
        for (; count > 0; --count)
            m_Bytes.append(bytes, length);
}

utf8_string::size_type utf8_string::length() const noexcept {
    const char* const end = data() + size();
    size_type count = 0;
    for (const char* position = data(); position != end; ++count)
        position += detail::sequenceLength(position, end);
    return count;
}

char32_t utf8_string::operator[](size_type index) const noexcept {
    const char* const end = data() + size();
    const char* position = skip(data(), end, index);
    return detail::decodeUtf8(position, end);
}

char32_t utf8_string::at(size_type index) const {
    const char* const end = data() + size();
    const char* position = skip(data(), end, index);
    if (position == end)
        throw std::out_of_range("utf8_string::at: index " + std::to_string(index) +
                                " in a text of " + std::to_string(length()) + " code points");
    return detail::decodeUtf8(position, end);
}

utf8_string utf8_string::substr(size_type position, size_type count) const {
    const char* const end = data() + size();
    const char* const from = skip(data(), end, position);
    return std::string(from, skip(from, end, count));
}

void utf8_string::push_back(char32_t codePoint) {
    char bytes[6];
    m_Bytes.append(bytes, detail::encodeUtf8(codePoint, bytes));
}

char32_t utf8_string::const_iterator::operator*() const noexcept {
    const char* position = m_Position;
    return detail::decodeUtf8(position, m_End);
}

utf8_string::const_iterator& utf8_string::const_iterator::operator++() noexcept {
    m_Position += detail::sequenceLength(m_Position, m_End);
    return *this;
}

}  // namespace mensor
