#include "mensor_exact/Characters.h"

#include <algorithm>
#include <iterator>

namespace mensor::exact {

namespace {

struct CRange {
    char32_t First;
    char32_t Last;
};

constexpr CRange Invisible[] = {
#define MENSOR_INVISIBLE(first, last) {first, last},
#include "mensor_exact/invisible.def"
#undef MENSOR_INVISIBLE
};

}  // namespace

bool isInvisible(char32_t c) {
    const CRange* const range =
        std::lower_bound(std::begin(Invisible), std::end(Invisible), c,
                         [](const CRange& r, char32_t point) { return r.Last < point; });
    return range != std::end(Invisible) && c >= range->First;
}

namespace {

// Returns the kind of a character that is not ASCII, or is NotUtf8. Sets `digit` to the value of a digit.
[[gnu::hot]] eKind kindBeyondAscii(char32_t c, int& digit) {
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
        case U'\u2028':
        case U'\u2029': return eKind::FOREIGN;
        default: break;
    }
    if (c < 0xA0 || isInvisible(c)) {  // control characters and invisible ones
        return eKind::FOREIGN;
    }
    if (c >= 0x2000 && c <= 0x200A) {  // typographic spaces
        return eKind::BLANK;
    }
    if (c >= 0x2010 && c <= 0x2013) {  // hyphens, figure dash and en dash
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

}  // namespace

[[gnu::hot]] void CCursor::readBeyondAscii() {
    m_Character = decode(m_Text.substr(m_At), m_Length);
    m_Kind = kindBeyondAscii(m_Character, m_Digit);
}

}  // namespace mensor::exact
