// Characters.h: the characters of the grammar of units. For mensor's own libraries; not installed.
#ifndef MENSOR_EXACT_CHARACTERS_H
#define MENSOR_EXACT_CHARACTERS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mensor_exact/exact_export.h"
#include "mensor_exact/utf8.h"

namespace mensor::exact {

/// The role of a character in the grammar. Variants of a sign have the role of the sign.
enum class eKind : std::uint8_t {
    END,
    BLANK,
    TIMES,  ///< "·", "⋅", "×" and their like
    STAR,   ///< "*", also half of "**"
    POINT,  ///< ".", between names or in a decimal number
    SLASH,
    CARET,
    COLON,
    PLUS,
    MINUS,
    OPEN,
    CLOSE,
    OPEN_NAME,   ///< "[", which begins a name in brackets
    CLOSE_NAME,  ///< "]"
    ROOT,
    DIGIT,
    RAISED_DIGIT,
    RAISED_MINUS,
    RAISED_PLUS,
    NAME,    ///< part of a name
    FOREIGN  ///< no part of any unit
};

constexpr std::array<eKind, 128> asciiKinds() {
    std::array<eKind, 128> kinds{};
    for (auto& kind : kinds) {
        kind = eKind::NAME;
    }
    for (std::size_t c = 0; c < 0x20; ++c) {
        kinds[c] = eKind::FOREIGN;
    }
    for (const char c : {'!', '"', '&', '\'', ',', ';', '<', '=', '>', '?', '\x7F'}) {
        kinds[static_cast<unsigned char>(c)] = eKind::FOREIGN;
    }
    for (std::size_t c = '0'; c <= '9'; ++c) {
        kinds[c] = eKind::DIGIT;
    }
    kinds[' '] = kinds['\t'] = eKind::BLANK;
    kinds['*'] = eKind::STAR;
    kinds['.'] = eKind::POINT;
    kinds['/'] = eKind::SLASH;
    kinds['^'] = eKind::CARET;
    kinds[':'] = eKind::COLON;
    kinds['+'] = eKind::PLUS;
    kinds['-'] = eKind::MINUS;
    kinds['('] = eKind::OPEN;
    kinds[')'] = eKind::CLOSE;
    kinds['['] = eKind::OPEN_NAME;
    kinds[']'] = eKind::CLOSE_NAME;
    return kinds;
}

inline constexpr std::array<eKind, 128> AsciiKinds = asciiKinds();

/// Returns whether the character is invisible: a default-ignorable or format character of Unicode, or the
/// Braille pattern blank (invisible.def).
MENSOR_EXACT_API bool isInvisible(char32_t c);

/// Steps through a text, one character at a time.
class CCursor {
public:
    /// Starts at the byte `at` of the text.
    explicit CCursor(std::string_view text, std::size_t at = 0) : m_Text(text), m_At(at) { read(); }

    eKind kind() const { return m_Kind; }
    char32_t character() const { return m_Character; }
    int digit() const { return m_Digit; }          ///< of DIGIT and RAISED_DIGIT
    std::size_t position() const { return m_At; }  ///< in bytes

    void advance() {
        m_At += m_Length;
        read();
    }

    [[gnu::hot]] void skipBlanks() {
        while (m_Kind == eKind::BLANK) {
            advance();
        }
    }

    /// The kind of the next character.
    eKind peek() const {
        CCursor next = *this;
        next.advance();
        return next.m_Kind;
    }

private:
    [[gnu::hot]] void read() {
        if (m_At >= m_Text.size()) {
            m_Kind = eKind::END;
            m_Length = 0;
            return;
        }
        const auto lead = static_cast<unsigned char>(m_Text[m_At]);
        if (lead < 0x80) {
            m_Character = lead;
            m_Length = 1;
            m_Kind = AsciiKinds[lead];
            m_Digit = lead - '0';
            return;
        }
        readBeyondAscii();
    }

    MENSOR_EXACT_API void readBeyondAscii();

    std::string_view m_Text;
    std::size_t m_At;
    std::size_t m_Length = 0;  // of the character at m_At, in bytes
    eKind m_Kind = eKind::END;
    char32_t m_Character = 0;
    int m_Digit = 0;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_CHARACTERS_H
