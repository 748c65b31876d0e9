// Parser.cpp: recursive descent, one function for each rule of the grammar in docs/reading.md:
//
//     unit       = [ blanks ] ( "1" | expression ) [ blanks ]
//     expression = ( "1" | product ) [ slash factor ]
//     product    = factor { times factor }
//     factor     = "√" factor | name [ power | digits ] | "(" ( "1" | expression ) ")" [ power ]
//
// The result is flat: each name with its exponent, which parentheses, roots and divisions around it
// multiply when they close. So the mathematics of the text is done when its last character is read.
#include "mensor_checked/Parser.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>

#include "mensor_checked/Checks.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Text.h"
#include "mensor_checked/Utf8.h"

namespace mensor {
namespace checked {

namespace {

struct Fraction {
    int Pow;
    int Root;
};

// The product in lowest terms; none of the four numbers exceeds 9999 in size, so nothing overflows.
Fraction multiplied(Fraction a, Fraction b) {
    const int pow = a.Pow * b.Pow;
    const int root = a.Root * b.Root;
    const int divisor = std::gcd(pow, root);
    return {pow / divisor, root / divisor};
}

bool isInRange(Fraction fraction) {
    return std::abs(fraction.Pow) <= LargestExponent && fraction.Root <= LargestExponent;
}

class CParser {
public:
    CParser(std::string_view text, const CReadOptions& options)
        : m_Text(text), m_Options(options), m_Cursor(text) {}

    std::vector<CFactor> parse() {
        if (m_Text.size() > LongestText && countCodePoints(m_Text) > LongestText) {
            refuse(eRefusal::TOO_LONG, {0, 0}, "a text of more than 4096 characters is no unit");
        }
        refuseMalformed();
        m_Factors.reserve(4);
        m_Cursor.skipBlanks();
        if (kind() == eKind::END) {
            if (m_Options.Dimensionless) {
                return {};
            }
            refuse(eRefusal::EMPTY, {at(), at()}, "no unit is written");
        }
        expression(0);
        if (kind() != eKind::END) {
            refuse(eRefusal::STRAY_BRACKET, here(), "no bracket is open here");
        }
        return std::move(m_Factors);
    }

private:
    // Rules.

    // Reads up to the end of the text or a ")", and leaves the cursor there.
    void expression(int depth) {
        const std::size_t begin = at();
        if (kind() != eKind::DIGIT || !one()) {
            product(depth);
        }
        CSpan left = trimmed(begin);
        m_Cursor.skipBlanks();
        if (kind() == eKind::SLASH) {
            m_Cursor.advance();
            m_Cursor.skipBlanks();
            if (kind() == eKind::DIGIT && m_CaretPower.End == left.End) {
                refuseBareFraction();
            }
            const std::size_t divisors = m_Factors.size();
            const std::size_t beginRight = at();
            factor(depth);
            raise(divisors, {-1, 1}, left);
            const CSpan right = trimmed(beginRight);
            m_Cursor.skipBlanks();
            if (kind() == eKind::SLASH || isOperator() || beginsFactor()) {
                refuseChain(depth, left, right);
            }
        }
        requireEnd();
    }

    // The "1" of "1/s", or the whole of a text or parentheses.
    bool one() {
        const CCursor before = m_Cursor;
        const CSpan span = number();
        const std::string_view digits = m_Text.substr(span.Begin, span.End - span.Begin);
        m_Cursor.skipBlanks();
        const bool standsAlone =
            kind() == eKind::END || kind() == eKind::SLASH || kind() == eKind::CLOSE;
        if (digits == "1" && standsAlone) {
            return true;
        }
        m_Cursor = before;
        return false;
    }

    void product(int depth) {
        factor(depth);
        for (;;) {
            const bool hadBlank = isAtBlank();
            m_Cursor.skipBlanks();
            if (isOperator()) {
                m_Cursor.advance();
                m_Cursor.skipBlanks();
                factor(depth);
            } else if (beginsFactor() && hadBlank) {
                factor(depth);
            } else {
                return;
            }
        }
    }

    void factor(int depth) {
        if (depth > DeepestNesting) {
            refuse(eRefusal::TOO_DEEP, here(),
                   "more than 64 brackets or roots stand inside each other");
        }
        const std::size_t begin = m_Factors.size();
        const std::size_t beginText = at();
        switch (kind()) {
            case eKind::ROOT:
                m_Cursor.advance();
                m_Cursor.skipBlanks();
                factor(depth + 1);
                raise(begin, {1, 2}, {beginText, at()});
                return;
            case eKind::NAME:
                name();
                if (kind() == eKind::DIGIT ||
                    (kind() == eKind::MINUS && m_Cursor.peek() == eKind::DIGIT)) {
                    const std::size_t beginPower = at();
                    const int sign = this->sign();
                    const int n = digits();
                    raise(begin, {sign * n, 1}, {beginPower, at()});
                    refuseSecondExponent(beginText);
                    return;
                }
                break;
            case eKind::OPEN_NAME: bracketedName(); break;
            case eKind::OPEN: parentheses(depth); break;
            default: refuseFactor();
        }
        exponent(begin, beginText);
    }

    void name() {
        const std::size_t begin = at();
        while (kind() == eKind::NAME) {
            m_Cursor.advance();
        }
        push({begin, at()});
    }

    void bracketedName() {
        const CSpan opening = here();
        const std::size_t begin = at();
        int depth = 0;
        do {
            depth += kind() == eKind::OPEN_NAME ? 1 : kind() == eKind::CLOSE_NAME ? -1 : 0;
            if (kind() == eKind::END) {
                refuse(eRefusal::OPEN_BRACKET, opening, "nothing closes this bracket");
            }
            refuseForeign();
            m_Cursor.advance();
        } while (depth > 0);
        push({begin, at()});
    }

    void parentheses(int depth) {
        const CSpan opening = here();
        m_Cursor.advance();
        m_Cursor.skipBlanks();
        if (kind() == eKind::CLOSE) {
            refuse(eRefusal::MISSING_UNIT, {opening.Begin, here().End},
                   "nothing stands between these brackets");
        }
        if (kind() == eKind::END) {
            refuse(eRefusal::OPEN_BRACKET, opening, "nothing closes this bracket");
        }
        expression(depth + 1);
        if (kind() == eKind::END) {
            refuse(eRefusal::OPEN_BRACKET, opening, "nothing closes this bracket");
        }
        m_Cursor.advance();
    }

    // A power behind a name or parentheses, if there is one; raises the factors from `begin` on.
    void exponent(std::size_t begin, std::size_t beginText) {
        const std::size_t beginPower = at();
        if (isRaised(kind())) {
            const Fraction power = raised();  // first, since it moves what at() gives
            raise(begin, power, {beginPower, at()});
        } else if (caret()) {
            const std::size_t beginNumber = at();
            const Fraction power = this->power(beginPower);
            raise(begin, power, {beginPower, at()});
            m_CaretPower = {beginNumber, at()};
        } else {
            return;
        }
        refuseSecondExponent(beginText);
    }

    Fraction raised() {
        const std::size_t begin = at();
        const bool isNegative = kind() == eKind::RAISED_MINUS;
        if (kind() != eKind::RAISED_DIGIT) {
            m_Cursor.advance();
        }
        if (kind() != eKind::RAISED_DIGIT) {
            refuse(eRefusal::MALFORMED_EXPONENT, {begin, at()}, "a raised sign without a digit");
        }
        const int n = digits(eKind::RAISED_DIGIT);
        return {isNegative ? -n : n, 1};
    }

    // Steps over "^" or "**" and the blanks around, if they come next.
    bool caret() {
        CCursor ahead = m_Cursor;
        ahead.skipBlanks();
        if (ahead.kind() == eKind::STAR && ahead.peek() == eKind::STAR) {
            ahead.advance();
        } else if (ahead.kind() != eKind::CARET) {
            return false;
        }
        ahead.advance();
        ahead.skipBlanks();
        m_Cursor = ahead;
        return true;
    }

    // What stands behind the "^" at `begin`: an integer, a decimal or a fraction.
    Fraction power(std::size_t begin) {
        const bool isBracketed = kind() == eKind::OPEN;
        const CSpan opening = here();
        if (isBracketed) {
            m_Cursor.advance();
            m_Cursor.skipBlanks();
        }
        const int sign = this->sign();
        if (kind() != eKind::DIGIT) {
            refuse(eRefusal::MALFORMED_EXPONENT, {begin, at()}, "no number follows");
        }
        Fraction fraction{digits(), 1};
        if (kind() == eKind::POINT && m_Cursor.peek() == eKind::DIGIT) {
            fraction = decimal(begin, fraction.Pow);
        } else if (separatesFraction(isBracketed)) {
            fraction.Root = digits();
            if (fraction.Root == 0) {
                refuse(eRefusal::MALFORMED_EXPONENT, {begin, at()}, "a fraction of nothing");
            }
        }
        if (isBracketed) {
            m_Cursor.skipBlanks();
            if (kind() == eKind::END) {
                refuse(eRefusal::OPEN_BRACKET, opening, "nothing closes this bracket");
            }
            if (kind() != eKind::CLOSE) {
                refuse(eRefusal::MALFORMED_EXPONENT, {begin, at()},
                       "more than a number stands in the brackets of this exponent");
            }
            m_Cursor.advance();
        }
        return multiplied({sign, 1}, fraction);
    }

    // Steps over the sign of a fraction and to its denominator, if they come next.
    bool separatesFraction(bool isBracketed) {
        CCursor ahead = m_Cursor;
        if (isBracketed) {
            ahead.skipBlanks();
        }
        if (ahead.kind() != eKind::COLON && !(isBracketed && ahead.kind() == eKind::SLASH)) {
            return false;
        }
        ahead.advance();
        if (isBracketed) {
            ahead.skipBlanks();
        }
        if (ahead.kind() != eKind::DIGIT) {
            return false;
        }
        m_Cursor = ahead;
        return true;
    }

    // The fraction that a decimal is, from its point on.
    Fraction decimal(std::size_t begin, int whole) {
        constexpr int MostPlaces = 6;  // as 1/64 has; longer ones are no small fractions
        std::int64_t numerator = whole;
        std::int64_t denominator = 1;
        bool isLonger = false;
        int places = 0;
        for (m_Cursor.advance(); kind() == eKind::DIGIT; m_Cursor.advance()) {
            if (++places <= MostPlaces) {
                numerator = numerator * 10 + m_Cursor.digit();
                denominator *= 10;
            } else {
                isLonger = isLonger || m_Cursor.digit() != 0;
            }
        }
        const std::int64_t divisor = std::gcd(numerator, denominator);
        if (isLonger || denominator / divisor > LargestExponent) {
            refuse(eRefusal::INEXACT_EXPONENT, {begin, at()},
                   "this decimal is no exact small fraction; write a fraction as ^(1/3)");
        }
        if (numerator / divisor > LargestExponent) {
            refuse(eRefusal::EXPONENT_RANGE, {begin, at()}, "an exponent beyond 99");
        }
        return {static_cast<int>(numerator / divisor), static_cast<int>(denominator / divisor)};
    }

    // Tokens.

    int sign() {
        if (!isSign(kind())) {
            return 1;
        }
        const int sign = kind() == eKind::MINUS ? -1 : 1;
        m_Cursor.advance();
        return sign;
    }

    // A number of an exponent, exactly: cut down to lowest terms it may yet be in range.
    int digits(eKind digitKind = eKind::DIGIT) {
        constexpr int Largest = 9999;
        const std::size_t begin = at();
        int n = 0;
        for (; kind() == digitKind; m_Cursor.advance()) {
            n = std::min(n * 10 + m_Cursor.digit(), Largest + 1);
        }
        if (n > Largest) {
            refuse(eRefusal::EXPONENT_RANGE, {begin, at()}, "an exponent beyond 99");
        }
        return n;
    }

    // A number where none belongs, with its decimals.
    CSpan number() {
        const std::size_t begin = at();
        while (kind() == eKind::DIGIT ||
               (kind() == eKind::POINT && m_Cursor.peek() == eKind::DIGIT)) {
            m_Cursor.advance();
        }
        return {begin, at()};
    }

    static bool isSign(eKind kind) { return kind == eKind::PLUS || kind == eKind::MINUS; }

    static bool isRaised(eKind kind) {
        return kind == eKind::RAISED_DIGIT || kind == eKind::RAISED_MINUS ||
               kind == eKind::RAISED_PLUS;
    }

    bool isOperator() const {
        return kind() == eKind::TIMES || kind() == eKind::STAR || kind() == eKind::POINT;
    }

    bool beginsFactor() const {
        return kind() == eKind::NAME || kind() == eKind::OPEN_NAME || kind() == eKind::OPEN ||
               kind() == eKind::ROOT;
    }

    bool isAtBlank() const { return kind() == eKind::BLANK; }
    eKind kind() const { return m_Cursor.kind(); }
    std::size_t at() const { return m_Cursor.position(); }

    CSpan here() const {
        CCursor next = m_Cursor;
        next.advance();
        return {at(), next.position()};
    }

    // From `begin` to here, without the blanks before the cursor.
    CSpan trimmed(std::size_t begin) const {
        CCursor walk(m_Text.substr(begin, at() - begin));
        std::size_t end = 0;
        while (walk.kind() != eKind::END) {
            const bool isBlank = walk.kind() == eKind::BLANK;
            walk.advance();
            end = isBlank ? end : walk.position();
        }
        return {begin, begin + end};
    }

    std::string slice(CSpan span) const {
        return std::string(m_Text.substr(span.Begin, span.End - span.Begin));
    }

    // Factors.

    void push(CSpan span) {
        const std::string_view name = m_Text.substr(span.Begin, span.End - span.Begin);
        const CName* const known = knownName(name);
        if (known == nullptr) {
            CDiagnosis diagnosis = diagnose(eRefusal::UNKNOWN_NAME, m_Text, span,
                                            "no unit has the name " + quoted(std::string(name)));
            diagnosis.Suggestions = nearestNames(name);
            throw Refused{std::move(diagnosis)};
        }
        m_Factors.push_back({known->Unit, known->Unit, span, known->IsExact, known->HasOffset,
                             known->Prefixed.has_value()});
    }

    void raise(std::size_t begin, Fraction exponent, CSpan span) {
        bool isAllInRange = isInRange(exponent);
        for (std::size_t i = begin; i < m_Factors.size() && isAllInRange; ++i) {
            CFactor& factor = m_Factors[i];
            const Fraction product = multiplied({factor.Pow, factor.Root}, exponent);
            factor.Pow = product.Pow;
            factor.Root = product.Root;
            isAllInRange = isInRange(product);
        }
        if (!isAllInRange) {
            refuse(eRefusal::EXPONENT_RANGE, span, "an exponent beyond 99");
        }
    }

    // Refusals.

    [[noreturn]] void refuse(eRefusal code, CSpan span, const std::string& sentence) const {
        throw Refused{diagnose(code, m_Text, span, sentence)};
    }

    // First of all: who reads a part of such a text may read another text than was written.
    void refuseMalformed() const {
        std::size_t length = 0;
        for (std::size_t at = 0; at < m_Text.size(); at += length) {
            const char32_t c = decode(m_Text.substr(at), length);
            if (c == NotUtf8 || c == 0) {
                refuse(eRefusal::MALFORMED_TEXT, {at, at + length},
                       c == 0 ? "a NUL stands in the text" : "the text is not UTF-8 here");
            }
        }
    }

    void refuseForeign() const {
        if (kind() == eKind::FOREIGN) {
            refuse(eRefusal::UNEXPECTED_CHARACTER, here(), foreignSentence());
        }
    }

    std::string foreignSentence() const {
        switch (m_Cursor.character()) {
            case U'\'': return "no apostrophe stands in a unit; the minute of arc is \"′\"";
            case U'"': return "no quotation mark stands in a unit; the second of arc is \"″\"";
            case U',': return "no comma stands in a unit";
            case U'<':
            case U'>':
            case U'&':
            case U';': return "no markup stands in a unit";
            case U'\n':
            case U'\r': return "a unit stands on one line";
            default:
                return m_Cursor.character() < 0x80 && m_Cursor.character() > 0x20
                           ? "no unit is written with this character"
                           : "an invisible character stands here";
        }
    }

    [[noreturn]] void refuseNumber() {
        const CSpan span = number();
        refuse(eRefusal::STRAY_NUMBER, span,
               "the number " + slice(span) + " stands for nothing in a unit");
    }

    // "m^1/2", which mathematics reads as m/2.
    [[noreturn]] void refuseBareFraction() {
        const CSpan span = number();
        CDiagnosis diagnosis = diagnose(eRefusal::STRAY_NUMBER, m_Text, span,
                                        "an exponent that is a fraction needs brackets");
        diagnosis.Readings = {slice({0, m_CaretPower.Begin}) + "(" + slice(m_CaretPower) + "/" +
                              slice(span) + ")" + slice({at(), m_Text.size()})};
        throw Refused{std::move(diagnosis)};
    }

    // What stands where a factor should begin.
    [[noreturn]] void refuseFactor() {
        refuseForeign();
        switch (kind()) {
            case eKind::DIGIT: refuseNumber();
            case eKind::CLOSE_NAME:
                refuse(eRefusal::STRAY_BRACKET, here(), "no bracket is open here");
            case eKind::CLOSE:
                refuse(m_Factors.empty() ? eRefusal::STRAY_BRACKET : eRefusal::MISSING_UNIT, here(),
                       m_Factors.empty() ? "no bracket is open here" : "a unit is missing here");
            case eKind::PLUS:
            case eKind::MINUS:
            case eKind::COLON:
                refuse(eRefusal::UNEXPECTED_CHARACTER, here(),
                       "this sign belongs behind a unit, in an exponent");
            default: break;
        }
        CDiagnosis diagnosis =
            diagnose(eRefusal::MISSING_UNIT, m_Text,
                     kind() == eKind::END ? CSpan{at(), at()} : here(), "a unit is missing here");
        if (kind() == eKind::SLASH && m_Factors.empty() && at() == 0) {
            diagnosis.Readings = {"1" + std::string(m_Text)};
        }
        throw Refused{std::move(diagnosis)};
    }

    // What stands where an expression should end.
    void requireEnd() {
        switch (kind()) {
            case eKind::END:
            case eKind::CLOSE: return;
            case eKind::NAME:
            case eKind::OPEN_NAME:
            case eKind::OPEN:
            case eKind::ROOT: {
                CDiagnosis diagnosis = diagnose(eRefusal::MISSING_OPERATOR, m_Text, here(),
                                                "no operator stands between these units");
                diagnosis.Readings = {slice({0, at()}) + "·" + slice({at(), m_Text.size()})};
                throw Refused{std::move(diagnosis)};
            }
            case eKind::RAISED_DIGIT:
            case eKind::RAISED_MINUS:
            case eKind::RAISED_PLUS:
            case eKind::CARET:
                refuse(eRefusal::MALFORMED_EXPONENT, here(),
                       "an exponent stands directly behind its unit");
            default: refuseFactor();
        }
    }

    void refuseSecondExponent(std::size_t begin) const {
        CCursor ahead = m_Cursor;
        ahead.skipBlanks();
        const bool isStarred = ahead.kind() == eKind::STAR && ahead.peek() == eKind::STAR;
        CCursor afterwards = ahead;
        afterwards.advance();
        if (isRaised(kind()) || kind() == eKind::DIGIT || ahead.kind() == eKind::CARET ||
            isStarred) {
            CDiagnosis diagnosis = diagnose(eRefusal::SECOND_EXPONENT, m_Text,
                                            {ahead.position(), afterwards.position()},
                                            "a second exponent follows the first");
            diagnosis.Readings = {"(" + slice({begin, at()}) + ")" +
                                  slice({ahead.position(), m_Text.size()})};
            throw Refused{std::move(diagnosis)};
        }
    }

    // Behind left/right the cursor is at another operator: mathematics and habit read on differently.
    [[noreturn]] void refuseChain(int depth, CSpan left, CSpan right) {
        const bool isDivision = kind() == eKind::SLASH;
        CDiagnosis diagnosis = isDivision
                                   ? diagnose(eRefusal::SECOND_DIVISION, m_Text, here(),
                                              "a second division needs brackets")
                                   : diagnose(eRefusal::PRODUCT_AFTER_DIVISION, m_Text, here(),
                                              "a product behind a division needs brackets");
        try {
            if (!beginsFactor()) {
                m_Cursor.advance();
                m_Cursor.skipBlanks();
            }
            const std::size_t beginThird = at();
            factor(depth);
            const std::string third = slice(trimmed(beginThird));
            const std::string before = slice({0, left.Begin});
            const std::string after = slice({at(), m_Text.size()});
            const std::string first = slice(left);
            const std::string times = first == "1" ? third : first + "·" + third;
            diagnosis.Readings = {before + first + "/(" + slice(right) + "·" + third + ")" + after,
                                  before + times + "/" + slice(right) + after};
        } catch (const Refused&) {
            // The rest is no unit either; then there are no readings.
        }
        throw Refused{std::move(diagnosis)};
    }

    const std::string_view m_Text;
    const CReadOptions& m_Options;
    CCursor m_Cursor;
    std::vector<CFactor> m_Factors;
    CSpan m_CaretPower = {0, 0};  // what stands behind the latest "^"
};

}  // namespace

CDiagnosis diagnose(eRefusal code, std::string_view text, CSpan span, std::string sentence) {
    CDiagnosis diagnosis;
    diagnosis.Code = code;
    diagnosis.Text = text;
    diagnosis.Position = countCodePoints(text.substr(0, span.Begin));
    diagnosis.Byte = span.Begin;
    diagnosis.Token = text.substr(span.Begin, span.End - span.Begin);
    diagnosis.Sentence = std::move(sentence);
    return diagnosis;
}

std::vector<CFactor> parse(std::string_view text, const CReadOptions& options) {
    return CParser(text, options).parse();
}

bool isName(std::string_view text) {
    CCursor cursor(text);
    int depth = 0;
    if (cursor.kind() == eKind::OPEN_NAME) {
        do {
            depth += cursor.kind() == eKind::OPEN_NAME    ? 1
                     : cursor.kind() == eKind::CLOSE_NAME ? -1
                                                          : 0;
            if (cursor.kind() == eKind::END || cursor.kind() == eKind::FOREIGN) {
                return false;
            }
            cursor.advance();
        } while (depth > 0);
    } else if (cursor.kind() != eKind::NAME) {
        return false;
    }
    while (depth == 0 && text[0] != '[' && cursor.kind() == eKind::NAME) {
        cursor.advance();
    }
    return cursor.kind() == eKind::END;
}

}  // namespace checked
}  // namespace mensor
