// Text.h: the characters of the grammar. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_TEXT_H
#define MENSOR_CHECKED_TEXT_H

#include <cstddef>
#include <string_view>

namespace mensor {
namespace checked {

/// What a character is to the grammar. Variants of a sign are the sign.
enum class eKind {
    END,
    BLANK,
    TIMES,  ///< "·", "⋅", "×" and their like
    STAR,   ///< "*", which may be half of "**"
    POINT,  ///< ".", between names or in a decimal
    SLASH,
    CARET,
    COLON,
    PLUS,
    MINUS,
    OPEN,
    CLOSE,
    OPEN_NAME,   ///< "[", which opens a name in brackets
    CLOSE_NAME,  ///< "]"
    ROOT,
    DIGIT,
    RAISED_DIGIT,
    RAISED_MINUS,
    RAISED_PLUS,
    NAME,    ///< part of a name
    FOREIGN  ///< no part of any unit
};

/// The kind of `c`, and for digits the value in `digit`.
eKind kindOf(char32_t c, int& digit);

/// Walks over a text, one character at a time.
class CCursor {
public:
    explicit CCursor(std::string_view text) : m_Text(text) { read(); }

    eKind kind() const { return m_Kind; }
    char32_t character() const { return m_Character; }
    int digit() const { return m_Digit; }          ///< of DIGIT and RAISED_DIGIT
    std::size_t position() const { return m_At; }  ///< in bytes

    void advance() {
        m_At += m_Length;
        read();
    }

    void skipBlanks() {
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
    void read();

    std::string_view m_Text;
    std::size_t m_At = 0;
    std::size_t m_Length = 0;  // of the character at m_At, in bytes
    eKind m_Kind = eKind::END;
    char32_t m_Character = 0;
    int m_Digit = 0;
};

/// The number of code points in `text`; a byte that is not UTF-8 counts as one.
std::size_t countCodePoints(std::string_view text);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_TEXT_H
