// DefinitionReader.h: reads the text of a definition, also at compile time. Not installed.
//
//     CDefinitionReader reader("π/180 rad");
//     reader.next();  // PI, exponent 1
//     reader.next();  // NUMBER "180", exponent -1
//     reader.next();  // NAME "rad", exponent 1
//     reader.next();  // END
//
// The grammar is in Definitions.h.
#ifndef MENSOR_EXACT_DEFINITIONREADER_H
#define MENSOR_EXACT_DEFINITIONREADER_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mensor_exact/Exponent.h"
#include "mensor_exact/SmallFraction.h"

namespace mensor::exact {

enum class eTerm {
    NUMBER,     ///< a decimal number
    PI,         ///< π
    NAME,       ///< the name of a unit
    OFFSET,     ///< the number after "offset", always the last term
    END,        ///< the end of the text
    SYNTAX,     ///< the text is not a definition
    RANGE,      ///< an exponent out of range
    ZERO_ROOT,  ///< an exponent with the denominator zero
};

/// One term of a definition: a factor, an offset, the end or an error.
struct CTerm {
    eTerm Kind = eTerm::SYNTAX;
    std::string_view Text;
    int Numerator = 1;    ///< of the exponent; negative for a divisor
    int Denominator = 1;  ///< of the exponent

    constexpr bool isFactor() const {
        return Kind == eTerm::NUMBER || Kind == eTerm::PI || Kind == eTerm::NAME;
    }
};

/// Reads the terms of a definition, one at a time.
class CDefinitionReader {
public:
    explicit constexpr CDefinitionReader(std::string_view text) : m_Text(text) {}

    /// Returns the next term. After END, OFFSET or an error, the caller must not call it again.
    constexpr CTerm next() {
        bool isApart = skipBlanks();
        if (m_IsInGroup && !m_IsFirst && skip(")")) {
            m_IsInGroup = false;
            m_GroupSign = 1;
            isApart = skipBlanks();
        }
        if (m_At == m_Text.size()) {
            return {m_IsFirst || m_IsInGroup ? eTerm::SYNTAX : eTerm::END, {}};
        }
        if (!m_IsFirst && !m_IsInGroup && skip(",")) {
            return offset();
        }
        int sign = m_GroupSign;
        if (!m_IsFirst) {
            if (skip("/")) {
                sign = -sign;
                skipBlanks();
                if (!m_IsInGroup && skip("(")) {
                    m_IsInGroup = true;
                    m_GroupSign = sign;
                    skipBlanks();
                }
            } else if (skip("·")) {
                skipBlanks();
            } else if (!isApart && !(m_IsBehindNumber && startsWith("π"))) {
                return {};
            }
        }
        m_IsFirst = false;
        return factor(sign);
    }

private:
    constexpr bool startsWith(std::string_view sign) const {
        return m_Text.substr(m_At, sign.size()) == sign;
    }
    constexpr bool skip(std::string_view sign) {
        if (!startsWith(sign)) {
            return false;
        }
        m_At += sign.size();
        return true;
    }
    constexpr bool skipBlanks() {
        const std::size_t begin = m_At;
        while (m_At < m_Text.size() && m_Text[m_At] == ' ') {
            ++m_At;
        }
        return m_At > begin;
    }
    constexpr char at(std::size_t position) const {
        return position < m_Text.size() ? m_Text[position] : '\0';
    }
    static constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

    constexpr CTerm offset() {
        skipBlanks();
        if (!skip("offset") || !skipBlanks() || m_At == m_Text.size()) {
            return {};
        }
        return {eTerm::OFFSET, m_Text.substr(m_At)};
    }

    constexpr CTerm factor(int sign) {
        CTerm term;
        const std::size_t begin = m_At;
        m_IsBehindNumber = false;
        if (isDigit(at(m_At)) || (at(m_At) == '-' && isDigit(at(m_At + 1)))) {
            term.Kind = eTerm::NUMBER;
            m_IsBehindNumber = true;
            skipNumber();
        } else if (skip("π")) {
            term.Kind = eTerm::PI;
        } else {
            term.Kind = eTerm::NAME;
            skipName();
        }
        term.Text = m_Text.substr(begin, m_At - begin);
        if (term.Text.empty()) {
            return {};
        }
        const eTerm fault = exponent(term);
        if (fault != eTerm::END) {
            return {fault, term.Text};
        }
        term.Numerator *= sign;
        return term;
    }

    constexpr void skipNumber() {
        ++m_At;  // a digit or a sign
        while (isDigit(at(m_At)) || (at(m_At) == '.' && isDigit(at(m_At + 1)))) {
            ++m_At;
        }
        if (at(m_At) == 'e' || at(m_At) == 'E') {
            const std::size_t digits = m_At + (at(m_At + 1) == '-' || at(m_At + 1) == '+' ? 2 : 1);
            if (isDigit(at(digits))) {
                for (m_At = digits; isDigit(at(m_At));) {
                    ++m_At;
                }
            }
        }
    }

    constexpr void skipName() {
        int digit = 0;
        bool isMinus = false;
        if (at(m_At) == '[') {  // a name in brackets, which may contain any character
            int depth = 0;
            do {
                depth += at(m_At) == '[' ? 1 : at(m_At) == ']' ? -1 : 0;
                ++m_At;
            } while (depth > 0 && m_At < m_Text.size());
            return;
        }
        while (m_At < m_Text.size()) {
            const char c = m_Text[m_At];
            const bool isSign =
                c == ' ' || c == '/' || c == '(' || c == ')' || c == ',' || c == '^' || c == '"';
            if (isSign || static_cast<unsigned char>(c) < 0x20 || startsWith("·") ||
                raised(m_At, digit, isMinus) > 0) {
                return;
            }
            ++m_At;
        }
    }

    // Returns the length in bytes of the raised digit or minus sign at `position`, or 0 if there is none.
    constexpr std::size_t raised(std::size_t position, int& digit, bool& isMinus) const {
        const std::string_view rest =
            m_Text.substr(position < m_Text.size() ? position : m_Text.size());
        isMinus = false;
        if (rest.size() >= 2 && rest[0] == '\xC2') {
            digit = rest[1] == '\xB9' ? 1 : rest[1] == '\xB2' ? 2 : rest[1] == '\xB3' ? 3 : -1;
            return digit > 0 ? std::size_t{2} : 0;
        }
        if (rest.size() >= 3 && rest[0] == '\xE2' && rest[1] == '\x81') {
            const int last = static_cast<unsigned char>(rest[2]);
            isMinus = last == 0xBB;
            digit = last - 0xB0;
            const bool isDigit = digit == 0 || (digit >= 4 && digit <= 9);
            return isMinus || isDigit ? std::size_t{3} : 0;
        }
        return 0;
    }

    // Reads an exponent if there is one. Returns END, or the error.
    constexpr eTerm exponent(CTerm& term) {
        if (skip("^")) {
            const bool isInParentheses = skip("(");
            if (!whole(term.Numerator)) {
                return eTerm::SYNTAX;
            }
            if (isInParentheses && skip("/") && (at(m_At) == '-' || !whole(term.Denominator))) {
                return eTerm::SYNTAX;
            }
            if (isInParentheses && !skip(")")) {
                return eTerm::SYNTAX;
            }
        } else {
            int digit = 0;
            bool isMinus = false;
            std::size_t length = raised(m_At, digit, isMinus);
            if (length == 0) {
                return eTerm::END;
            }
            const bool isNegative = isMinus;
            int value = 0;
            bool hasDigit = false;
            if (isNegative) {
                m_At += length;
            }
            for (length = raised(m_At, digit, isMinus); length > 0 && !isMinus;
                 length = raised(m_At, digit, isMinus)) {
                value = append(value, digit);
                hasDigit = true;
                m_At += length;
            }
            if (!hasDigit) {
                return eTerm::SYNTAX;
            }
            term.Numerator = isNegative ? -value : value;
        }
        if (term.Denominator == 0) {
            return eTerm::ZERO_ROOT;
        }
        constexpr int Largest = CExponent::Largest;
        return term.Numerator > Largest || term.Numerator < -Largest || term.Denominator > Largest
                   ? eTerm::RANGE
                   : eTerm::END;
    }

    static constexpr int append(int value, int digit) {
        constexpr int Enough = 1000;  // out of range, with any further digits
        return value >= Enough ? Enough : 10 * value + digit;
    }

    constexpr bool whole(int& value) {
        const bool isNegative = skip("-");
        if (!isDigit(at(m_At))) {
            return false;
        }
        value = 0;
        for (; isDigit(at(m_At)); ++m_At) {
            value = append(value, at(m_At) - '0');
        }
        value = isNegative ? -value : value;
        return true;
    }

    std::string_view m_Text;
    std::size_t m_At = 0;
    int m_GroupSign = 1;
    bool m_IsInGroup = false;
    bool m_IsFirst = true;
    bool m_IsBehindNumber = false;
};

/// Reads a decimal number as CFraction::ofText does. Returns false if 64 bits are too few or the text
/// is not a number.
constexpr bool readSmall(std::string_view text, CSmallFraction& result) {
    std::size_t at = 0;
    const bool isNegative = !text.empty() && text[0] == '-';
    at += isNegative ? std::size_t{1} : 0;
    std::uint64_t number = 0;
    std::int32_t tens = 0;
    bool hasPoint = false;
    bool hasDigit = false;
    for (; at < text.size() && text[at] != 'e' && text[at] != 'E'; ++at) {
        if (text[at] == '.' && !hasPoint) {
            hasPoint = true;
            continue;
        }
        if (text[at] < '0' || text[at] > '9') {
            return false;
        }
        hasDigit = true;
        tens -= hasPoint ? 1 : 0;
        if (__builtin_mul_overflow(number, std::uint64_t{10}, &number) ||
            __builtin_add_overflow(number, static_cast<std::uint64_t>(text[at] - '0'), &number)) {
            return false;
        }
    }
    if (!hasDigit) {
        return false;
    }
    if (at < text.size()) {
        ++at;
        const bool isBelow = at < text.size() && text[at] == '-';
        const bool isSigned = isBelow || (at < text.size() && text[at] == '+');
        at += isSigned ? std::size_t{1} : 0;
        std::int32_t power = 0;
        constexpr std::int32_t Largest = 10000;
        if (at == text.size()) {
            return false;
        }
        for (; at < text.size(); ++at) {
            if (text[at] < '0' || text[at] > '9' || power > Largest) {
                return false;
            }
            power = 10 * power + (text[at] - '0');
        }
        tens += isBelow ? -power : power;
    }
    result = CSmallFraction(number, tens);
    result.Negative = isNegative && number != 0;
    return true;
}

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DEFINITIONREADER_H
