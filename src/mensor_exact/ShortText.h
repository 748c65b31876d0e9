// ShortText.h: a short text for tables of constants. Not installed.
#ifndef MENSOR_EXACT_SHORTTEXT_H
#define MENSOR_EXACT_SHORTTEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mensor::exact {

/// A text of at most `Longest` bytes inside the object. A pointer to a text would need 24 more bytes in
/// the file, since the loader relocates it.
template <std::size_t Longest>
class CShortText {
public:
    template <std::size_t Size>
    constexpr CShortText(const char (&text)[Size]) : m_Size(Size - 1) {
        static_assert(Size - 1 <= Longest);
        for (std::size_t i = 0; i < Size - 1; ++i) {
            m_Bytes[i] = text[i];
        }
    }

    constexpr operator std::string_view() const { return {m_Bytes, m_Size}; }
    constexpr std::size_t size() const { return m_Size; }

private:
    std::uint8_t m_Size;
    char m_Bytes[Longest] = {};
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_SHORTTEXT_H
