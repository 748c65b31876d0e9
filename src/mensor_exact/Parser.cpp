// Parser.cpp: recursive descent, one function for each rule of the grammar in docs/reading.md:
//
//     unit       = [ blanks ] ( "1" | expression ) [ blanks ]
//     expression = ( "1" | product ) [ slash factor ]
//     product    = factor { times factor }
//     factor     = "√" factor | name [ power | digits ] | "(" ( "1" | expression ) ")" [ power ]
//
// The result is a flat list of names with exponents. When parentheses, a root or a division end, the parser
// multiplies the exponents of all names inside.
//
// The function of a rule returns false if the text is refused. m_Refusal then has the reason.
#include "mensor_exact/Parser.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>

#include "mensor_exact/Characters.h"
#include "mensor_exact/NearestNames.h"
#include "mensor_exact/Reading.h"
#include "mensor_exact/Traps.h"
#include "mensor_exact/sentences.h"
#include "mensor_exact/utf8.h"

namespace mensor::exact {

namespace {

struct Fraction {
    int Pow;
    int Root;
};

// Returns the product in lowest terms. All four numbers are within ±9999, so no product overflows.
[[gnu::hot]] Fraction multiplied(Fraction a, Fraction b) {
    const int pow = a.Pow * b.Pow;
    const int root = a.Root * b.Root;
    if (root == 1) {
        return {pow, 1};
    }
    const int divisor = std::gcd(pow, root);
    return {pow / divisor, root / divisor};
}

bool isInRange(Fraction fraction) {
    return std::abs(fraction.Pow) <= LargestExponent && fraction.Root <= LargestExponent;
}

bool isSign(eKind kind) { return kind == eKind::PLUS || kind == eKind::MINUS; }

bool isRaised(eKind kind) {
    return kind == eKind::RAISED_DIGIT || kind == eKind::RAISED_MINUS || kind == eKind::RAISED_PLUS;
}

// For refusals with a trap. CRefusal::diagnosis() then takes the sentence of the trap.
constexpr const char* SentenceOfTrap = "";

const char* sentenceOnForeign(char32_t c) {
    switch (c) {
        case U'\'': return sentences::APOSTROPHE;
        case U'"': return sentences::QUOTATION_MARK;
        case U',': return sentences::COMMA;
        case U'<':
        case U'>':
        case U'&':
        case U';': return sentences::MARKUP;
        case U'\n':
        case U'\r': return sentences::LINE_BREAK;
        default: return c < 0x80 && c > 0x20 ? sentences::FOREIGN_CHARACTER : sentences::INVISIBLE;
    }
}

class CParser {
public:
    CParser(std::string_view text, std::size_t begin, CResolver& resolver, CNamedFactors& factors,
            CRefusal& refusal)
        : m_Text(text),
          m_Begin(begin),
          m_Resolver(resolver),
          m_Factors(factors),
          m_Refusal(refusal),
          m_Cursor(text, begin) {}

    [[gnu::hot]] bool parse(bool mayBeEmpty) {
        const std::string_view unit = m_Text.substr(m_Begin);
        if (unit.size() > LongestText && countCodePoints(unit) > LongestText) {
            return refuse(eRefusal::TOO_LONG, {m_Begin, m_Begin}, sentences::LONG_UNIT);
        }
        if (!requireWellFormed()) {
            return false;
        }
        m_Cursor.skipBlanks();
        if (kind() == eKind::END) {
            return mayBeEmpty || refuse(eRefusal::EMPTY, {at(), at()}, sentences::EMPTY_UNIT);
        }
        if (!expression(0)) {
            return false;
        }
        if (kind() != eKind::END) {
            return refuse(eRefusal::STRAY_BRACKET, here(), sentences::UNMATCHED_BRACKET,
                          eReadings::REMOVE);
        }
        return requireNoLetterOfTemperature();
    }

private:
    // Rules.

    // Reads up to the end of the text or up to a ")". The cursor is then at the ")".
    [[gnu::hot]] bool expression(int depth) {
        const std::size_t begin = at();
        if ((kind() != eKind::DIGIT || !one()) && !product(depth)) {
            return false;
        }
        if (kind() == eKind::END) {
            return true;
        }
        const CSpan left{begin, m_FactorEnd};
        m_Cursor.skipBlanks();
        return (kind() != eKind::SLASH || divisor(depth, left)) && requireEnd();
    }

    // Reads the rest of an expression. The cursor is at the slash.
    bool divisor(int depth, CSpan left) {
        m_Cursor.advance();
        m_Cursor.skipBlanks();
        if (kind() == eKind::DIGIT && m_CaretPower.End == left.End) {
            return refuseBareFraction();
        }
        const std::size_t divisors = m_Factors.size();
        const std::size_t begin = at();
        if (!factor(depth) || !raise(divisors, {-1, 1}, left)) {
            return false;
        }
        const CSpan right{begin, at()};
        const bool hadBlank = kind() == eKind::BLANK;
        m_Cursor.skipBlanks();
        const bool goesOn = kind() == eKind::SLASH || isOperator() || beginsFactor();
        if (!goesOn) {
            return requireNoQuotientTrap(left, right);
        }
        return requireNoNoteBehind({left.Begin, right.End}) && requireNoPair(right, right) &&
               (!hadBlank || (requireNoNote() && requireNoPair(lastWord(right), right) &&
                              requireNoPairOfQuotient(left, right))) &&
               refuseChain(left);
    }

    // Reads a "1" before a slash, as in "1/s", or a "1" that is the whole text or all that parentheses contain.
    bool one() {
        const CCursor before = m_Cursor;
        const std::string_view digits = number().of(m_Text);
        m_FactorEnd = at();
        m_Cursor.skipBlanks();
        const bool standsAlone =
            kind() == eKind::END || kind() == eKind::SLASH || kind() == eKind::CLOSE;
        if (digits == "1" && standsAlone) {
            return true;
        }
        m_Cursor = before;
        return false;
    }

    bool product(int depth) {
        if (!factor(depth)) {
            return false;
        }
        for (;;) {
            m_FactorEnd = at();
            const bool hadBlank = kind() == eKind::BLANK;
            const bool isPlain = m_PlainName.End == at();  // a name without an exponent
            m_Cursor.skipBlanks();
            if (isOperator()) {
                const bool isPoint = kind() == eKind::POINT;
                m_Cursor.advance();
                m_Cursor.skipBlanks();
                if (isPoint && isPlain && !requireOneName(m_PlainName)) {
                    return false;
                }
            } else if (!beginsFactor() || !hadBlank) {
                return true;
            } else if ((isPlain && !requireNoPair(m_PlainName, m_PlainName)) || !requireNoNote()) {
                return false;
            }
            if (!factor(depth)) {
                return false;
            }
        }
    }

    [[gnu::hot]] bool factor(int depth) {
        if (depth > DeepestNesting) {
            return refuse(eRefusal::TOO_DEEP, here(), sentences::NESTED_TOO_DEEP);
        }
        const std::size_t begin = m_Factors.size();
        const std::size_t beginText = at();
        switch (kind()) {
            case eKind::ROOT:
                m_Cursor.advance();
                m_Cursor.skipBlanks();
                return factor(depth + 1) && raise(begin, {1, 2}, {beginText, at()});
            case eKind::NAME:
                if (!name() || !requireNoPowerTrap()) {
                    return false;
                }
                if (kind() == eKind::DIGIT ||
                    (kind() == eKind::MINUS && m_Cursor.peek() == eKind::DIGIT)) {
                    return bareExponent(begin) && requireOneExponent(beginText);
                }
                break;
            case eKind::OPEN_NAME:
                if (!bracketedName()) {
                    return false;
                }
                break;
            case eKind::OPEN:
                if (!parentheses(depth)) {
                    return false;
                }
                break;
            default: return refuseFactor();
        }
        return exponent(begin, beginText);
    }

    bool name() {
        const std::size_t begin = at();
        while (kind() == eKind::NAME) {
            m_Cursor.advance();
        }
        if (kind() == eKind::DIGIT || kind() == eKind::OPEN || kind() == eKind::POINT) {
            extendName(begin);
        }
        m_PlainName = {begin, at()};
        return push(m_PlainName);
    }

    // Extends the name that begins at `begin` by digits, brackets or a point if the resolver knows the
    // longer name: "mmH2O", "bar(g)", "in.". The grammar alone would refuse these texts.
    [[gnu::noinline]] void extendName(std::size_t begin) {
        CCursor ahead = m_Cursor;
        switch (kind()) {
            case eKind::DIGIT:
                while (ahead.kind() == eKind::DIGIT) {
                    ahead.advance();
                }
                if (ahead.kind() != eKind::NAME) {
                    return;  // the digits are an exponent
                }
                while (ahead.kind() == eKind::NAME || ahead.kind() == eKind::DIGIT) {
                    ahead.advance();
                }
                break;
            case eKind::OPEN:
                ahead.advance();
                while (ahead.kind() == eKind::NAME) {
                    ahead.advance();
                }
                if (ahead.kind() != eKind::CLOSE) {
                    return;
                }
                ahead.advance();
                break;
            default: {
                ahead.advance();
                CCursor next = ahead;
                next.skipBlanks();
                if (next.kind() == eKind::NAME || next.kind() == eKind::OPEN_NAME ||
                    next.kind() == eKind::OPEN || next.kind() == eKind::ROOT) {
                    return;  // the point is an operator
                }
            }
        }
        if (m_Resolver.knows(m_Text.substr(begin, ahead.position() - begin))) {
            m_Cursor = ahead;
        }
    }

    [[gnu::cold]] bool bracketedName() {
        const CSpan opening = here();
        const std::size_t begin = at();
        int depth = 0;
        do {
            depth += kind() == eKind::OPEN_NAME ? 1 : kind() == eKind::CLOSE_NAME ? -1 : 0;
            if (kind() == eKind::END) {
                return refuseOpen(opening);
            }
            if (kind() == eKind::FOREIGN) {
                return refuseForeign();
            }
            m_Cursor.advance();
        } while (depth > 0);
        return push({begin, at()});
    }

    [[gnu::noinline]] bool parentheses(int depth) {
        const CSpan opening = here();
        m_Cursor.advance();
        m_Cursor.skipBlanks();
        if (kind() == eKind::CLOSE) {
            return refuse(eRefusal::MISSING_UNIT, {opening.Begin, here().End},
                          sentences::EMPTY_BRACKETS);
        }
        if (kind() == eKind::END) {
            return refuseOpen(opening);
        }
        if (!expression(depth + 1)) {
            return false;
        }
        if (kind() == eKind::END) {
            return refuseOpen(opening);
        }
        m_Cursor.advance();
        return true;
    }

    // Reads an exponent without a "^", as in "m2" and "s-1".
    bool bareExponent(std::size_t begin) {
        const std::size_t beginPower = at();
        const int sign = this->sign();
        int n = 0;
        return digits(eKind::DIGIT, n) && raise(begin, {sign * n, 1}, {beginPower, at()});
    }

    // Reads a power after a name or parentheses, if there is one. Raises the factors from `begin` on.
    bool exponent(std::size_t begin, std::size_t beginText) {
        const std::size_t beginPower = at();
        Fraction power{};
        if (isRaised(kind())) {
            if (!raised(power) || !raise(begin, power, {beginPower, at()})) {
                return false;
            }
        } else if (caret()) {
            const std::size_t beginNumber = at();
            if (!this->power(beginPower, power) || !raise(begin, power, {beginPower, at()})) {
                return false;
            }
            m_CaretPower = {beginNumber, at()};
        } else {
            return true;
        }
        return requireOneExponent(beginText);
    }

    bool raised(Fraction& power) {
        const std::size_t begin = at();
        const bool isNegative = kind() == eKind::RAISED_MINUS;
        if (kind() != eKind::RAISED_DIGIT) {
            m_Cursor.advance();
        }
        if (kind() != eKind::RAISED_DIGIT) {
            return refuse(eRefusal::MALFORMED_EXPONENT, {begin, at()},
                          sentences::SIGN_WITHOUT_DIGIT);
        }
        int n = 0;
        if (!digits(eKind::RAISED_DIGIT, n)) {
            return false;
        }
        power = {isNegative ? -n : n, 1};
        return true;
    }

    // If "^" or "**" comes next, skips it and the blanks around it and returns true.
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

    // Reads the number after the "^" at `begin`: an integer, a decimal or a fraction.
    [[gnu::noinline]] bool power(std::size_t begin, Fraction& power) {
        const bool isBracketed = kind() == eKind::OPEN;
        const CSpan opening = here();
        if (isBracketed) {
            m_Cursor.advance();
            m_Cursor.skipBlanks();
        }
        const int sign = this->sign();
        if (kind() != eKind::DIGIT) {
            return refuse(eRefusal::MALFORMED_EXPONENT, {begin, at()},
                          sentences::EXPONENT_NO_NUMBER);
        }
        Fraction fraction{0, 1};
        if (!digits(eKind::DIGIT, fraction.Pow)) {
            return false;
        }
        if (kind() == eKind::POINT && m_Cursor.peek() == eKind::DIGIT) {
            if (!decimal(begin, fraction)) {
                return false;
            }
        } else if (separatesFraction(isBracketed)) {
            if (!digits(eKind::DIGIT, fraction.Root)) {
                return false;
            }
            if (fraction.Root == 0) {
                return refuse(eRefusal::MALFORMED_EXPONENT, {begin, at()},
                              sentences::ZERO_DENOMINATOR);
            }
        }
        power = multiplied({sign, 1}, fraction);
        return !isBracketed || closeExponent(begin, opening);
    }

    [[gnu::cold]] bool closeExponent(std::size_t begin, CSpan opening) {
        m_Cursor.skipBlanks();
        if (kind() == eKind::END) {
            return refuseOpen(opening);
        }
        if (kind() != eKind::CLOSE) {
            return refuse(eRefusal::MALFORMED_EXPONENT, {begin, at()}, sentences::MORE_IN_EXPONENT);
        }
        m_Cursor.advance();
        return true;
    }

    // If a fraction sign and a denominator come next, moves to the denominator and returns true.
    [[gnu::cold]] bool separatesFraction(bool isBracketed) {
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

    // Reads the decimals of an exponent. `fraction` has the integer part and becomes the exact value.
    [[gnu::cold]] bool decimal(std::size_t begin, Fraction& fraction) {
        constexpr int MostPlaces = 6;  // 1/64 has six; a longer decimal has a larger denominator
        std::int64_t numerator = fraction.Pow;
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
            return refuse(eRefusal::INEXACT_EXPONENT, {begin, at()}, sentences::NO_SMALL_FRACTION);
        }
        if (numerator / divisor > LargestExponent) {
            return refuseRange({begin, at()});
        }
        fraction = {static_cast<int>(numerator / divisor), static_cast<int>(denominator / divisor)};
        return true;
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

    // Reads up to four digits. "4/200" is accepted: it is in range in lowest terms.
    [[gnu::hot, gnu::noinline]] bool digits(eKind digitKind, int& n) {
        constexpr int Largest = 9999;
        const std::size_t begin = at();
        n = 0;
        for (; kind() == digitKind; m_Cursor.advance()) {
            n = std::min(n * 10 + m_Cursor.digit(), Largest + 1);
        }
        return n <= Largest || refuseRange({begin, at()});
    }

    // Reads a misplaced number with its decimals.
    CSpan number() {
        const std::size_t begin = at();
        while (kind() == eKind::DIGIT ||
               (kind() == eKind::POINT && m_Cursor.peek() == eKind::DIGIT)) {
            m_Cursor.advance();
        }
        return {begin, at()};
    }

    bool isOperator() const {
        return kind() == eKind::TIMES || kind() == eKind::STAR || kind() == eKind::POINT;
    }

    bool beginsFactor() const {
        return kind() == eKind::NAME || kind() == eKind::OPEN_NAME || kind() == eKind::OPEN ||
               kind() == eKind::ROOT;
    }

    eKind kind() const { return m_Cursor.kind(); }
    std::size_t at() const { return m_Cursor.position(); }

    [[gnu::cold]] CSpan here() const {
        CCursor next = m_Cursor;
        next.advance();
        return {at(), next.position()};
    }

    // Factors.

    [[gnu::hot]] bool push(CSpan span) {
        const std::uint32_t unit = m_Resolver.find(span.of(m_Text));
        if (unit == CResolver::None) {
            return refuseUnknown(span);
        }
        m_Factors.push_back({span, unit, 1, 1});
        return true;
    }

    [[gnu::hot, gnu::noinline]] bool raise(std::size_t begin, Fraction exponent, CSpan span) {
        bool isAllInRange = isInRange(exponent);
        for (std::size_t i = begin; i < m_Factors.size() && isAllInRange; ++i) {
            CNamedFactor& factor = m_Factors[i];
            const Fraction product = multiplied({factor.Pow, factor.Root}, exponent);
            factor.Pow = product.Pow;
            factor.Root = product.Root;
            isAllInRange = isInRange(product);
        }
        return isAllInRange || refuseRange(span);
    }

    // Refusals. All return false. They are marked as cold, so the compiler moves them out of the fast path.

    [[gnu::cold, gnu::noinline]] bool refuse(eRefusal code, CSpan span, const char* sentence,
                                             eReadings readings = eReadings::NONE, CSpan a = {},
                                             const CTrap* trap = nullptr) {
        m_Refusal = {code, m_Text, span, sentence, readings, {a}, m_Begin, trap};
        return false;
    }

    // Refuses text that is not UTF-8, a NUL and invisible characters. This check comes first: a piece of such
    // a text may look like another text than the whole.
    bool requireWellFormed() {
        std::size_t length = 1;
        CSpan invisible;
        for (std::size_t at = m_Begin; at < m_Text.size(); at += length) {
            const auto byte = static_cast<unsigned char>(m_Text[at]);
            length = 1;
            if (byte != 0 && byte < 0x80) {
                continue;
            }
            if (byte == 0) {
                return refuse(eRefusal::MALFORMED_TEXT, {at, at + 1}, sentences::NUL_IN_TEXT);
            }
            const char32_t c = decode(m_Text.substr(at), length);
            if (c == NotUtf8) {
                return refuse(eRefusal::MALFORMED_TEXT, {at, at + length}, sentences::NOT_UTF8);
            }
            constexpr char32_t SoftHyphen = 0xAD;
            constexpr char32_t NextInvisible = 0x34F;
            if ((c == SoftHyphen || c >= NextInvisible) && isInvisible(c) && invisible.End == 0) {
                invisible = {at, at + length};
            }
        }
        return invisible.End == 0 || refuse(eRefusal::UNEXPECTED_CHARACTER, invisible,
                                            sentences::INVISIBLE, eReadings::REMOVE);
    }

    [[gnu::cold]] bool refuseForeign() {
        return refuse(eRefusal::UNEXPECTED_CHARACTER, here(),
                      sentenceOnForeign(m_Cursor.character()));
    }

    [[gnu::cold]] bool refuseOpen(CSpan opening) {
        return refuse(eRefusal::OPEN_BRACKET, opening, sentences::NEVER_CLOSED, eReadings::CLOSE);
    }

    [[gnu::cold]] bool refuseRange(CSpan span) {
        return refuse(eRefusal::EXPONENT_RANGE, span, sentences::EXPONENT_TOO_LARGE);
    }

    // Refuses "m^1/2". The rules of mathematics make it m/2; people often mean m^(1/2).
    [[gnu::cold]] bool refuseBareFraction() {
        return refuse(eRefusal::STRAY_NUMBER, number(), sentences::BARE_FRACTION,
                      eReadings::FRACTION, m_CaretPower);
    }

    // Refuses the character at the cursor, where a factor must begin.
    [[gnu::cold]] bool refuseFactor() {
        switch (kind()) {
            case eKind::FOREIGN: return refuseForeign();
            case eKind::DIGIT: return refuseNumber();
            case eKind::CLOSE_NAME:
                return refuse(eRefusal::STRAY_BRACKET, here(), sentences::UNMATCHED_BRACKET,
                              eReadings::REMOVE);
            case eKind::CLOSE:
                return m_Factors.empty()
                           ? refuse(eRefusal::STRAY_BRACKET, here(), sentences::UNMATCHED_BRACKET,
                                    eReadings::REMOVE)
                           : refuse(eRefusal::MISSING_UNIT, here(), sentences::NO_UNIT_HERE);
            case eKind::MINUS:
                if (m_Factors.empty() && !requireNoLoneSign()) {
                    return false;
                }
                if (isHyphen()) {
                    if (m_PlainName.End == at() && !requireNoNameBehind(m_PlainName)) {
                        return false;
                    }
                    return refuse(eRefusal::UNEXPECTED_CHARACTER, here(), sentences::HYPHEN,
                                  eReadings::DOT);
                }
                [[fallthrough]];
            case eKind::PLUS:
            case eKind::COLON:
                return refuse(eRefusal::UNEXPECTED_CHARACTER, here(), sentences::STRAY_SIGN,
                              eReadings::JOIN);
            default: break;
        }
        const bool isFirstSlash = kind() == eKind::SLASH && m_Factors.empty() && at() == m_Begin;
        return refuse(eRefusal::MISSING_UNIT, kind() == eKind::END ? CSpan{at(), at()} : here(),
                      sentences::NO_UNIT_HERE, isFirstSlash ? eReadings::ONE : eReadings::NONE);
    }

    [[gnu::cold]] bool refuseNumber() {
        if (!m_Factors.empty() && !requireNoNote()) {
            return false;  // "mm 0-pk"
        }
        const std::size_t before =
            m_Text.find_last_not_of(" \t", at() - std::min<std::size_t>(at(), 1));
        const bool isBelow =
            at() > m_Begin && before != std::string_view::npos && m_Text[before] == '/';
        return isBelow ? refuse(eRefusal::STRAY_NUMBER, number(), sentences::NUMBER_BELOW,
                                eReadings::DIVISOR)
                       : refuse(eRefusal::STRAY_NUMBER, number(), sentences::NUMBER_IN_UNIT,
                                eReadings::JOIN);
    }

    // Refuses a "-" that means "no unit".
    [[gnu::cold]] bool requireNoLoneSign() {
        const std::size_t end = m_Text.find_last_not_of(" \t") + 1;
        const CSpan rest{at(), std::max(at(), end)};
        const CTrap* const trap = findTrap(ePlace::UNKNOWN, rest.of(m_Text));
        return trap == nullptr || refuseTrap(rest, *trap);
    }

    // Returns true if the minus sign at the cursor is a hyphen, as in "kW-h".
    bool isHyphen() const {
        CCursor ahead = m_Cursor;
        ahead.advance();
        ahead.skipBlanks();
        return !m_Factors.empty() &&
               (ahead.kind() == eKind::NAME || ahead.kind() == eKind::OPEN_NAME ||
                ahead.kind() == eKind::OPEN || ahead.kind() == eKind::ROOT);
    }

    // Refuses text after the end of an expression.
    bool requireEnd() {
        switch (kind()) {
            case eKind::END:
            case eKind::CLOSE: return true;
            case eKind::NAME:
            case eKind::OPEN_NAME:
            case eKind::OPEN:
            case eKind::ROOT:
                if (!requireNoPairWithPower() || !requireNoNote()) {
                    return false;  // "kPa(g)", "m³N", "µm(p-p)"
                }
                return refuse(eRefusal::MISSING_OPERATOR, here(), sentences::NO_OPERATOR,
                              eReadings::TIMES);
            case eKind::RAISED_DIGIT:
            case eKind::RAISED_MINUS:
            case eKind::RAISED_PLUS:
            case eKind::CARET:
                return refuse(eRefusal::MALFORMED_EXPONENT, here(),
                              sentences::BLANK_BEFORE_EXPONENT, eReadings::JOIN);
            default: return refuseFactor();
        }
    }

    // Refuses a second exponent. The power before the cursor begins at `begin`.
    [[gnu::hot]] bool requireOneExponent(std::size_t begin) {
        CCursor ahead = m_Cursor;
        ahead.skipBlanks();
        const bool isStarred = ahead.kind() == eKind::STAR && ahead.peek() == eKind::STAR;
        if (!isRaised(kind()) && kind() != eKind::DIGIT && ahead.kind() != eKind::CARET &&
            !isStarred) {
            return true;
        }
        CCursor afterwards = ahead;
        afterwards.advance();
        return refuse(eRefusal::SECOND_EXPONENT, {ahead.position(), afterwards.position()},
                      sentences::TWO_EXPONENTS, eReadings::POWER, {begin, at()});
    }

    // Refuses "a/b/c" and "a/b·c", which people read in two ways. The cursor is after a/b.
    [[gnu::cold]] bool refuseChain(CSpan left) {
        CCursor ahead = m_Cursor;
        ahead.advance();
        ahead.skipBlanks();
        if (kind() == eKind::SLASH && ahead.kind() == eKind::END) {
            return refuse(eRefusal::MISSING_UNIT, here(), sentences::NO_UNIT_BEHIND,
                          eReadings::REMOVE);
        }
        return kind() == eKind::SLASH ? refuse(eRefusal::SECOND_DIVISION, here(),
                                               sentences::DIVISION_CHAIN, eReadings::CHAIN, left)
                                      : refuse(eRefusal::PRODUCT_AFTER_DIVISION, here(),
                                               sentences::PRODUCT_CHAIN, eReadings::CHAIN, left);
    }

    // Refuses a name that no unit has. The cursor is after the name.
    [[gnu::cold]] bool refuseUnknown(CSpan span) {
        const std::string_view name = span.of(m_Text);
        const CTrap* const cubed = isCubed() ? findTrap(ePlace::CUBED, name) : nullptr;
        if (cubed != nullptr) {
            return refuseCubed(span, *cubed);
        }
        const CTrap* trap = nullptr;
        const CSpan whole = longestText(span.Begin, [&](std::string_view text) {  // "kgCO2", "w/w"
            trap = findTrap(ePlace::UNKNOWN, text);
            return trap != nullptr;
        });
        if (trap != nullptr && whole.End > span.End) {
            return refuseTrap(whole, *trap);
        }
        if (!requireNoNameBehind(span)) {
            return false;
        }
        trap = findTrap(ePlace::UNKNOWN, name);
        if (trap != nullptr) {
            return refuseTrap(span, *trap);
        }
        return (m_Factors.empty() || requireNoNote(span.Begin)) &&
               refuse(eRefusal::UNKNOWN_NAME, span, sentences::UNKNOWN);
    }

    [[gnu::cold]] bool refuseTrap(CSpan span, const CTrap& trap) {
        return refuse(eRefusal::UNKNOWN_NAME, span, SentenceOfTrap, eReadings::TRAP, span, &trap);
    }

    // Traps. All return false if the text is refused.

    // Refuses a misleading name with an exponent: "Nm³", "Nm²". The cursor is after the name.
    bool requireNoPowerTrap() {
        const std::string_view name = m_PlainName.of(m_Text);
        CCursor ahead = m_Cursor;
        ahead.skipBlanks();
        const bool hasExponent = isRaised(kind()) || kind() == eKind::DIGIT ||
                                 (kind() == eKind::MINUS && m_Cursor.peek() == eKind::DIGIT) ||
                                 ahead.kind() == eKind::CARET ||
                                 (ahead.kind() == eKind::STAR && ahead.peek() == eKind::STAR);
        if (!hasExponent || name.size() < 2) {
            return true;
        }
        const CTrap* trap = findTrap(ePlace::POWER, name);
        if (m_Resolver.isOwn(name)) {
            return true;
        }
        if (trap == nullptr) {
            return requireNoNameOfDigits();
        }
        const CTrap* const cubed = isCubed() ? findTrap(ePlace::CUBED, name) : nullptr;
        if (cubed != nullptr) {
            return refuseCubed(m_PlainName, *cubed);
        }
        return refuse(eRefusal::MISLEADING, m_PlainName, SentenceOfTrap, eReadings::TRAP,
                      m_PlainName, trap);
    }

    // Refuses a name whose digits are no exponent: "mH20" is a column of water, not mH to the power of 20.
    bool requireNoNameOfDigits() {
        if (kind() != eKind::DIGIT || m_Cursor.peek() != eKind::DIGIT) {
            return true;
        }
        CCursor ahead = m_Cursor;
        while (ahead.kind() == eKind::DIGIT) {
            ahead.advance();
        }
        const CSpan whole{m_PlainName.Begin, ahead.position()};
        const CTrap* const trap = findTrap(ePlace::UNKNOWN, whole.of(m_Text));
        return trap == nullptr ||
               refuse(eRefusal::MISLEADING, whole, SentenceOfTrap, eReadings::TRAP, whole, trap);
    }

    // Returns true if the exponent 3 is next.
    bool isCubed() const { return !cube().of(m_Text).empty(); }

    // Returns the place of the exponent 3 if it is next. Returns an empty span otherwise.
    [[gnu::cold]] CSpan cube() const {
        CCursor ahead = m_Cursor;
        if (!isRaised(ahead.kind()) && ahead.kind() != eKind::DIGIT) {
            ahead.skipBlanks();
            if (ahead.kind() == eKind::STAR && ahead.peek() == eKind::STAR) {
                ahead.advance();
            } else if (ahead.kind() != eKind::CARET) {
                return {};
            }
            ahead.advance();
            ahead.skipBlanks();
        }
        const eKind digit = ahead.kind();
        const bool isThree =
            (digit == eKind::DIGIT || digit == eKind::RAISED_DIGIT) && ahead.digit() == 3;
        ahead.advance();
        return isThree && ahead.kind() != digit ? CSpan{at(), ahead.position()} : CSpan{};
    }

    [[gnu::cold]] bool refuseCubed(CSpan name, const CTrap& trap) {
        const CSpan token{name.Begin, cube().End};
        return refuse(eRefusal::MISLEADING, token, SentenceOfTrap, eReadings::TRAP, token, &trap);
    }

    // The ends of the texts that may be one name, the shortest first.
    struct CEnds {
        static constexpr std::size_t Most = 6;
        std::array<std::size_t, Most> Ends{};
        std::size_t Count = 0;

        void add(std::size_t end) { Ends[Count++] = end; }
        bool isFull() const { return Count == Most; }
    };

    // Returns the longest text from `begin` on for which `isKnown` returns true. The text has names, digits
    // and signs between them, or is in brackets. Returns an empty span if there is no such text.
    template <class IsKnown>
    [[gnu::cold]] CSpan longestText(std::size_t begin, const IsKnown& isKnown) const {
        const CEnds ends = endsOfTexts(begin);
        for (std::size_t i = ends.Count; i > 0; --i) {
            const CSpan text{begin, ends.Ends[i - 1]};
            if (isKnown(text.of(m_Text))) {
                return text;
            }
        }
        return {};
    }

    [[gnu::cold, gnu::noinline]] CEnds endsOfTexts(std::size_t begin) const {
        CEnds ends;
        CCursor ahead(m_Text, begin);
        const bool isBracketed = ahead.kind() == eKind::OPEN;
        if (isBracketed) {
            ahead.advance();
        }
        constexpr std::size_t Longest = 32;  // bytes
        while (!ends.isFull() && ahead.position() - begin <= Longest) {
            const std::size_t start = ahead.position();
            while (ahead.position() - begin <= Longest &&
                   (ahead.kind() == eKind::NAME || ahead.kind() == eKind::DIGIT ||
                    ahead.kind() == eKind::RAISED_DIGIT)) {
                ahead.advance();
            }
            if (ahead.position() > start && !isBracketed) {
                ends.add(ahead.position());
            }
            if (ahead.position() > start && !isBracketed && !ends.isFull()) {
                const std::size_t end = endOfBrackets(ahead);  // "ppm(w)"
                if (end > ahead.position()) {
                    ends.add(end);
                    break;
                }
            }
            if (isBracketed && ahead.kind() == eKind::CLOSE) {
                ahead.advance();
                ends.add(ahead.position());
                break;
            }
            if (ahead.kind() != eKind::POINT && ahead.kind() != eKind::SLASH &&
                ahead.kind() != eKind::MINUS) {
                break;
            }
            const bool isPoint = ahead.kind() == eKind::POINT;
            ahead.advance();
            if (isPoint && !isBracketed && ends.Count > 0 && !ends.isFull()) {
                ends.add(ahead.position());  // "abs."
            }
        }
        return ends;
    }

    // Returns the end of the brackets at the cursor. Returns the position of the cursor if there are none.
    static std::size_t endOfBrackets(CCursor cursor) {
        const std::size_t begin = cursor.position();
        if (cursor.kind() != eKind::OPEN) {
            return begin;
        }
        do {
            cursor.advance();
        } while (cursor.kind() == eKind::NAME || cursor.kind() == eKind::DIGIT);
        const bool isClosed = cursor.kind() == eKind::CLOSE;
        cursor.advance();
        return isClosed ? cursor.position() : begin;
    }

    // Refuses a pair of names such as "psi g". The cursor is at the second name or at a bracket. `before` is
    // the first name. The corrections keep the text `kept`.
    [[gnu::cold]] bool requireNoPair(CSpan before, CSpan kept) {
        if (kind() != eKind::NAME && kind() != eKind::OPEN) {
            return true;
        }
        const bool isBelow =
            m_Text.substr(m_Begin, before.Begin - m_Begin).find('/') != std::string_view::npos;
        const CTrap* trap = nullptr;
        const CSpan next = longestText(at(), [&](std::string_view text) {
            trap = findPair(before.of(m_Text), text, isBelow);
            return trap != nullptr;
        });
        if (trap == nullptr || m_Resolver.isOwn(next.of(m_Text)) ||
            (trap->Place == ePlace::MASS_PER && !isPerMember(next.End))) {
            return true;
        }
        return refusePair(kept, next, *trap);
    }

    // Refuses a pair of a name with or without an exponent and what follows it without a blank, such as "m³N".
    [[gnu::cold]] bool requireNoPairWithPower() {
        const CSpan power{m_PlainName.Begin, at()};
        return m_PlainName.End <= m_PlainName.Begin || requireNoPair(power, power);
    }

    // Refuses a name after the quotient of a mass, such as "mg/l N".
    [[gnu::cold]] bool requireNoPairOfQuotient(CSpan left, CSpan right) {
        const std::string_view mass = lastWord(left).of(m_Text);
        const CTrap* trap = nullptr;
        const CSpan next = longestText(at(), [&](std::string_view text) {
            trap = findPair(mass, text, false);
            return trap != nullptr;
        });
        if (trap == nullptr || m_Resolver.isOwn(next.of(m_Text)) ||
            (trap->Place == ePlace::MASS_PER && !isMember(firstWord(right), ePlace::MASS_PER))) {
            return true;
        }
        return refusePair(right, next, *trap);
    }

    [[gnu::cold]] bool refusePair(CSpan kept, CSpan next, const CTrap& trap) {
        return refuse(eRefusal::MISLEADING, {kept.Begin, next.End}, SentenceOfTrap, eReadings::TRAP,
                      kept, &trap);
    }

    // Returns true if a slash and a name of the class MASS_PER are at `position`: "/l".
    [[gnu::cold]] bool isPerMember(std::size_t position) const {
        CCursor ahead(m_Text, position);
        ahead.skipBlanks();
        if (ahead.kind() != eKind::SLASH) {
            return false;
        }
        ahead.advance();
        ahead.skipBlanks();
        return isMember(firstWord({ahead.position(), m_Text.size()}), ePlace::MASS_PER);
    }

    // Refuses one name that has a point in it: "deg.C", "sq.m". The cursor is after the point.
    [[gnu::cold]] bool requireOneName(CSpan before) {
        const CTrap* trap = nullptr;
        const CSpan next = longestText(at(), [&](std::string_view text) {
            trap = findApart(before.of(m_Text), text);
            return trap != nullptr;
        });
        // "g/(bar.g)" is a product.
        const bool isProduct =
            trap != nullptr && trap->Place == ePlace::PRESSURE &&
            m_Text.substr(m_Begin, at() - m_Begin).find('/') != std::string_view::npos;
        return trap == nullptr || isProduct || m_Resolver.isOwn(next.of(m_Text)) ||
               refusePair(before, next, *trap);
    }

    // Refuses an unknown name and the next name if both are one unit: "sq m", "cu.ft", "Deg C".
    [[gnu::cold]] bool requireNoNameBehind(CSpan name) {
        CCursor ahead(m_Text, name.End);
        if (ahead.kind() == eKind::POINT || ahead.kind() == eKind::MINUS) {
            ahead.advance();
        }
        ahead.skipBlanks();
        if (ahead.position() == name.End) {
            return true;
        }
        const CTrap* trap = nullptr;
        const CSpan next = longestText(ahead.position(), [&](std::string_view text) {
            trap = findApart(name.of(m_Text), text);
            return trap != nullptr;
        });
        return trap == nullptr || refusePair(name, next, *trap);
    }

    // Refuses a word that is a remark and no unit after any unit: "mm/s rms".
    [[gnu::cold]] bool requireNoNote() { return requireNoNote(at()); }

    [[gnu::cold]] bool requireNoNote(std::size_t begin) {
        const CTrap* trap = nullptr;
        const CSpan word = longestText(begin, [&](std::string_view text) {
            trap = findTrap(ePlace::NOTE, text);
            return trap != nullptr;
        });
        const std::string_view text = word.of(m_Text);
        return trap == nullptr || m_Resolver.isOwn(text) || hasExponent(word) ||
               (m_Resolver.knows(text) && !hasRarePrefix(text)) ||  // "PK" is no petakelvin
               refuse(eRefusal::MISLEADING, word, SentenceOfTrap,
                      trap->first().empty() ? eReadings::REMOVE : eReadings::TRAP, word, trap);
    }

    // Returns whether an exponent follows, so that "(min)²" is no remark.
    bool hasExponent(CSpan word) const {
        const std::string_view rest = m_Text.substr(word.End);
        return isRaised(CCursor(m_Text, word.End).kind()) || rest.substr(0, 1) == "^" ||
               rest.substr(0, 2) == "**";
    }

    // Refuses a remark without a blank before it, as in "kg/cm2g". The cursor is after the quotient.
    [[gnu::cold]] bool requireNoNoteBehind(CSpan quotient) {
        constexpr std::size_t Longest = 16;
        const std::string_view text = quotient.of(m_Text);
        if (text.size() > Longest || !isMember(text, ePlace::TECHNICAL)) {
            return true;
        }
        const CTrap* trap = nullptr;
        const CSpan note = longestText(at(), [&](std::string_view word) {
            trap = findTrap(ePlace::TECHNICAL, word);
            return trap != nullptr;
        });
        return trap == nullptr || refusePair(quotient, note, *trap);
    }

    // Refuses "kJ/(kg·C)", "kJ·C/kg" and "h·ft²·F/BTU". With a heat or a power as first or last of three units,
    // C means a temperature.
    bool requireNoLetterOfTemperature() {
        if (m_Factors.size() < 3) {
            return true;
        }
        for (const CNamedFactor& factor : m_Factors) {
            const std::string_view name = factor.Name.of(m_Text);
            if (name.size() != 1 || std::abs(factor.Pow) != 1 || factor.Root != 1) {
                continue;
            }
            const CTrap* const trap = findTrap(ePlace::HEAT, name);
            const auto isHeat = [&](const CNamedFactor& other) {
                return isMember(other.Name.of(m_Text), ePlace::HEAT);
            };
            const bool hasHeat = trap != nullptr &&
                                 (isHeat(m_Factors[0]) || isHeat(m_Factors[m_Factors.size() - 1]));
            if (hasHeat && !m_Resolver.isOwn(name)) {
                return refuse(eRefusal::MISLEADING, factor.Name, SentenceOfTrap, eReadings::TRAP,
                              factor.Name, trap);
            }
        }
        return true;
    }

    // Refuses a quotient that has two meanings: "W/mK".
    bool requireNoQuotientTrap(CSpan left, CSpan right) {
        CSpan name = right;
        const std::string_view text = right.of(m_Text);
        if (text.size() > 2 && text.front() == '(' && text.back() == ')') {
            name = {right.Begin + 1, right.End - 1};
        }
        constexpr std::size_t Longest = 4;
        if (name.End - name.Begin > Longest || !hasTrap(ePlace::QUOTIENT, name.of(m_Text))) {
            return true;
        }
        CSpan above = lastWord(left);
        const CTrap* trap = findTrap(ePlace::QUOTIENT, name.of(m_Text), above.of(m_Text));
        if (trap == nullptr && above.Begin == above.End) {  // "m3/H"
            above = lastWordWithPower(left);
            trap = findTrap(ePlace::QUOTIENT, name.of(m_Text), above.of(m_Text));
        }
        if (trap == nullptr || m_Resolver.isOwn(name.of(m_Text))) {
            return true;
        }
        return refuse(eRefusal::MISLEADING, {above.Begin, right.End}, SentenceOfTrap,
                      eReadings::TRAP, above, trap);
    }

    // Returns the name at the end of `span`.
    [[gnu::hot, gnu::noinline]] CSpan lastWord(CSpan span) const {
        CSpan word{span.Begin, span.End};
        for (CCursor walk(m_Text.substr(0, span.End), span.Begin); walk.kind() != eKind::END;) {
            const bool isName = walk.kind() == eKind::NAME;
            walk.advance();
            if (!isName) {
                word.Begin = walk.position();
            }
        }
        return word;
    }

    // Returns the name at the end of `span` with its exponent: "m3".
    [[gnu::cold]] CSpan lastWordWithPower(CSpan span) const {
        CSpan word{span.Begin, span.End};
        bool wasPower = false;
        for (CCursor walk(m_Text.substr(0, span.End), span.Begin); walk.kind() != eKind::END;) {
            const bool isName = walk.kind() == eKind::NAME;
            const bool isPower = walk.kind() == eKind::DIGIT || walk.kind() == eKind::CARET ||
                                 walk.kind() == eKind::RAISED_DIGIT;
            if (isName && wasPower) {
                word.Begin = walk.position();
            }
            wasPower = isPower;
            walk.advance();
            if (!isName && !isPower) {
                word.Begin = walk.position();
            }
        }
        return word;
    }

    // Returns the name at the beginning of `span`.
    [[gnu::cold]] std::string_view firstWord(CSpan span) const {
        CCursor walk(m_Text, span.Begin);
        while (walk.kind() == eKind::NAME) {
            walk.advance();
        }
        return m_Text.substr(span.Begin, walk.position() - span.Begin);
    }

    const std::string_view m_Text;
    const std::size_t m_Begin;  // where the unit begins
    CResolver& m_Resolver;
    CNamedFactors& m_Factors;
    CRefusal& m_Refusal;
    CCursor m_Cursor;
    CSpan m_CaretPower;           // the number after the latest "^"
    CSpan m_PlainName;            // the latest name without brackets
    std::size_t m_FactorEnd = 0;  // where the latest factor of a product or the latest "1" ends
};

}  // namespace

[[gnu::hot]] bool parse(std::string_view text, std::size_t begin, bool mayBeEmpty,
                        CResolver& resolver, CNamedFactors& factors, CRefusal& refusal) {
    return CParser(text, begin, resolver, factors, refusal).parse(mayBeEmpty);
}

[[gnu::hot]] bool takeNotes(std::string_view text, std::size_t begin, const CNamedFactors& factors,
                            CResolver& resolver, bool isStrict, CNotes& notes, CRefusal& refusal) {
    const auto take = [&](const CTrap* trap, CSpan span) {
        if (isStrict && trap->Place != ePlace::TOLD) {
            refusal = {eRefusal::MISLEADING, text,   span,  SentenceOfTrap,
                       eReadings::TRAP,      {span}, begin, trap};
            return false;
        }
        notes.add({trap, span, trap->Place != ePlace::TOLD});
        return true;
    };
    for (const CNamedFactor& factor : factors) {
        const std::string_view name = factor.Name.of(text);
        const CTrap* const trap = findNote(name);
        if (trap != nullptr && !resolver.isOwn(name) && !take(trap, factor.Name)) {
            return false;
        }
        constexpr std::size_t LongestCubed = 2;
        if (factor.Pow == 3 && factor.Root == 1 && name.size() == LongestCubed) {  // "Mm³"
            const CTrap* const cubed = findNote(std::string(name) + "³");
            if (cubed != nullptr && !resolver.isOwn(name) && !take(cubed, factor.Name)) {
                return false;
            }
        }
    }
    constexpr std::size_t Longest = 3;
    if (factors.size() != 2 || factors[0].Pow != 1 || factors[0].Root != 1 || factors[1].Pow < -2 ||
        factors[1].Pow > -1 || factors[1].Root != 1 || factors[1].Name.of(text).size() > Longest) {
        return true;
    }
    const std::string_view left = factors[0].Name.of(text);
    const std::string_view right = factors[1].Name.of(text);
    const CTrap* const shape = findTrap(
        ePlace::SHAPE, factors[1].Pow == -2 ? std::string(right) + "²" : std::string(right), left);
    return shape == nullptr || resolver.isOwn(left) || resolver.isOwn(right) ||
           take(shape, {factors[0].Name.Begin, text.find_last_not_of(" \t") + 1});
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

}  // namespace mensor::exact
