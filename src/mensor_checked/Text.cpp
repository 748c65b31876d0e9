#include "mensor_checked/Text.h"

#include <array>

#include "mensor_checked/Utf8.h"

namespace mensor {
namespace checked {

namespace {

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

constexpr std::array<eKind, 128> AsciiKinds = asciiKinds();

}  // namespace

eKind kindOf(char32_t c, int& digit) {
    if (c < 0x80) {
        const eKind kind = AsciiKinds[c];
        if (kind == eKind::DIGIT) {
            digit = static_cast<int>(c - U'0');
        }
        return kind;
    }
    switch (c) {
        case U'\u00A0':  // no-break space
        case U'\u1680':
        case U'\u202F':  // narrow no-break space
        case U'\u205F':
        case U'\u3000':  // ideographic space
            return eKind::BLANK;
        case U'·':
        case U'×':
        case U'\u2022':  // bullet
        case U'\u2027':  // hyphenation point
        case U'\u2217':  // asterisk operator
        case U'\u2219':  // bullet operator
        case U'\u22C5':  // dot operator
        case U'\u30FB':  // katakana middle dot
        case U'\uFF65':  // halfwidth katakana middle dot
        case U'\uFF0A':  // fullwidth asterisk
            return eKind::TIMES;
        case U'\uFF0E':  // fullwidth full stop
            return eKind::POINT;
        case U'÷':
        case U'\u2044':  // fraction slash
        case U'\u2215':  // division slash
        case U'\uFF0F':  // fullwidth solidus
            return eKind::SLASH;
        case U'\u02C6':  // modifier letter circumflex accent
        case U'\uFF3E':  // fullwidth circumflex accent
            return eKind::CARET;
        case U'\u2236':  // ratio
        case U'\uFF1A':  // fullwidth colon
            return eKind::COLON;
        case U'\uFF0B':  // fullwidth plus sign
            return eKind::PLUS;
        case U'\u2212':  // minus sign
        case U'\uFE63':  // small hyphen-minus
        case U'\uFF0D':  // fullwidth hyphen-minus
            return eKind::MINUS;
        case U'\uFF08':  // fullwidth left parenthesis
            return eKind::OPEN;
        case U'\uFF09':  // fullwidth right parenthesis
            return eKind::CLOSE;
        case U'\u221A': return eKind::ROOT;
        case U'¹': digit = 1; return eKind::RAISED_DIGIT;
        case U'²': digit = 2; return eKind::RAISED_DIGIT;
        case U'³': digit = 3; return eKind::RAISED_DIGIT;
        case U'\u207A': return eKind::RAISED_PLUS;
        case U'\u207B': return eKind::RAISED_MINUS;
        case NotUtf8:
        case U'\u00AD':  // soft hyphen
        case U'\u2028':
        case U'\u2029':
        case U'\uFEFF':  // byte order mark
            return eKind::FOREIGN;
        default: break;
    }
    if (c < 0xA0 ||                      // controls
        (c >= 0x200B && c <= 0x200F) ||  // zero-width characters and marks of direction
        (c >= 0x202A && c <= 0x202E) ||  // more of these
        (c >= 0x2060 && c <= 0x206F)) {  // and of these
        return eKind::FOREIGN;
    }
    if (c >= 0x2000 && c <= 0x200A) {  // typographic spaces
        return eKind::BLANK;
    }
    if (c >= 0x2010 && c <= 0x2013) {  // hyphens and the dash of numbers
        return eKind::MINUS;
    }
    if (c == 0x2070 || (c >= 0x2074 && c <= 0x2079)) {
        digit = static_cast<int>(c - 0x2070);
        return eKind::RAISED_DIGIT;
    }
    if (c >= 0xFF10 && c <= 0xFF19) {  // fullwidth digits
        digit = static_cast<int>(c - 0xFF10);
        return eKind::DIGIT;
    }
    return eKind::NAME;
}

void CCursor::read() {
    if (m_At == m_Text.size()) {
        m_Kind = eKind::END;
        m_Length = 0;
        return;
    }
    m_Character = decode(m_Text.substr(m_At), m_Length);
    m_Kind = kindOf(m_Character, m_Digit);
}

std::size_t countCodePoints(std::string_view text) {
    std::size_t count = 0;
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size(); at += length) {
        decode(text.substr(at), length);
        ++count;
    }
    return count;
}

}  // namespace checked
}  // namespace mensor
