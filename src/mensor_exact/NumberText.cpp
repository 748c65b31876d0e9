#include "mensor_exact/NumberText.h"

#include <algorithm>

#include "mensor_exact/Characters.h"
#include "mensor_exact/Parser.h"
#include "mensor_exact/sentences.h"

namespace mensor::exact {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Returns whether the first word of `text` is `word`, in small or capital letters.
bool beginsWithWord(std::string_view text, std::string_view word) {
    if (text.size() < word.size() || !std::equal(word.begin(), word.end(), text.begin(),
                                                 [](char w, char t) { return (t | 0x20) == w; })) {
        return false;
    }
    const eKind next = CCursor(text, word.size()).kind();
    return next == eKind::END || next == eKind::BLANK;
}

class CNumberFinder {
public:
    CNumberFinder(std::string_view text, CNumberText& number, CRefusal& refusal)
        : m_Text(text), m_Number(number), m_Refusal(refusal) {}

    bool find(bool mayBeNotFinite) {
        if (m_Text.size() > LongestText && countCodePoints(m_Text) > LongestText) {
            return refuse(eRefusal::TOO_LONG, {0, 0}, sentences::LONG_VALUE);
        }
        CCursor cursor(m_Text);
        cursor.skipBlanks();
        m_Number.Whole.Begin = cursor.position();
        m_Number.IsNegative = cursor.kind() == eKind::MINUS;
        if (m_Number.IsNegative || cursor.kind() == eKind::PLUS) {
            cursor.advance();
        }
        const std::size_t begin = cursor.position();
        if (at(begin) == '0' && (at(begin + 1) | 0x20) == 'x') {
            return refuse(eRefusal::HEXADECIMAL, {m_Number.Whole.Begin, begin + 2},
                          sentences::NOT_DECIMAL);
        }
        const bool isDecimal = isDigit(at(begin)) || (at(begin) == '.' && isDigit(at(begin + 1)));
        if (!(isDecimal ? decimal(begin) : word(begin, mayBeNotFinite))) {
            return false;
        }
        m_Number.Whole.End = m_Number.Size.End;
        return unit();
    }

private:
    bool decimal(std::size_t begin) {
        std::size_t end = begin;
        skipDigits(end);
        if (at(end) == '.') {
            ++end;
            skipDigits(end);
        }
        if ((at(end) | 0x20) == 'e') {
            std::size_t exponent = end + (at(end + 1) == '-' || at(end + 1) == '+' ? 2 : 1);
            if (isDigit(at(exponent))) {
                skipDigits(exponent);
                end = exponent;
            }
        }
        m_Number.Size = {begin, end};
        return at(end) != ',' || refuse(eRefusal::DECIMAL_COMMA, {end, end + 1},
                                        sentences::DECIMAL_COMMA, eReadings::VALUE);
    }

    bool word(std::size_t begin, bool mayBeNotFinite) {
        for (const std::string_view name : {"nan", "infinity", "inf"}) {
            if (!beginsWithWord(m_Text.substr(begin), name)) {
                continue;
            }
            m_Number.Kind = name == "nan" ? eNumber::NAN_WORD : eNumber::INFINITY_WORD;
            m_Number.Size = {begin, begin + name.size()};
            return mayBeNotFinite ||
                   refuse(eRefusal::NOT_FINITE, {m_Number.Whole.Begin, m_Number.Size.End},
                          sentences::NOT_FINITE);
        }
        CCursor cursor(m_Text, begin);
        if (cursor.kind() != eKind::END) {
            cursor.advance();
        }
        return refuse(eRefusal::NO_NUMBER, {m_Number.Whole.Begin, cursor.position()},
                      sentences::NUMBER_FIRST);
    }

    // The unit "1" is accepted alone. After a number it is probably a mistake.
    bool unit() {
        CCursor cursor(m_Text, m_Number.Whole.End);
        cursor.skipBlanks();
        const std::size_t begin = m_Number.UnitBegin = cursor.position();
        if (cursor.kind() != eKind::DIGIT) {
            return true;
        }
        cursor.advance();
        const std::size_t end = cursor.position();
        cursor.skipBlanks();
        return cursor.kind() != eKind::END ||
               refuse(eRefusal::STRAY_NUMBER, {begin, end}, sentences::TWO_NUMBERS);
    }

    bool refuse(eRefusal code, CSpan span, const char* sentence,
                eReadings readings = eReadings::NONE) {
        m_Refusal = {code, m_Text, span, sentence, readings, {}, 0, nullptr};
        return false;
    }

    char at(std::size_t position) const {
        return position < m_Text.size() ? m_Text[position] : '\0';
    }

    void skipDigits(std::size_t& position) const {
        while (isDigit(at(position))) {
            ++position;
        }
    }

    const std::string_view m_Text;
    CNumberText& m_Number;
    CRefusal& m_Refusal;
};

}  // namespace

bool findNumber(std::string_view text, bool mayBeNotFinite, CNumberText& number,
                CRefusal& refusal) noexcept {
    return CNumberFinder(text, number, refusal).find(mayBeNotFinite);
}

}  // namespace mensor::exact
