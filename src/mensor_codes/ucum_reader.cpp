// ucum_reader.cpp: one loop over the components of an expression. Brackets need no recursion, because an
// expression has only products and quotients. It is enough to know for each open bracket whether its
// contents multiply or divide.
#include "mensor_codes/ucum_reader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "mensor_codes/UcumAtoms.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/Parser.h"
#include "mensor_exact/utf8.h"

namespace mensor::codes {

namespace {

using exact::CSpan;
using exact::eRefusal;

constexpr char End = '\0';  // a NUL in the text is also refused

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isForeign(char c) { return static_cast<unsigned char>(c) >= 0x80; }
bool isPrintable(char c) { return c > ' ' && c < '\x7F'; }

// Returns whether an atom can have this character outside of square brackets.
bool isLetter(char c) {
    switch (c) {
        case '"':
        case '(':
        case ')':
        case '*':
        case '+':
        case '-':
        case '.':
        case '/':
        case '=':
        case '[':
        case ']':
        case '^':
        case '{':
        case '}': return false;
        default: return isPrintable(c) && !isDigit(c);
    }
}

std::string_view sentenceOnForeign(char32_t c) {
    switch (c) {
        case U' ': return "a code of UCUM has no blanks";
        case U'"': return "a code of UCUM has no quotation marks";
        case U'=': return "a code of UCUM has no equals signs";
        case U'µ':
        case U'μ': return "codes of UCUM are written in ASCII; the prefix micro is \"u\"";
        case U'°':
            return "codes of UCUM are written in ASCII; the degree Celsius is \"Cel\", the degree "
                   "of "
                   "arc \"deg\"";
        case U'Ω':
        case U'\u2126': return "codes of UCUM are written in ASCII; the ohm is \"Ohm\"";
        case U'·':
        case U'×': return "codes of UCUM are written in ASCII; a product is written \"a.b\"";
        case U'²':
        case U'³':
        case U'¹':
        case U'⁻': return "codes of UCUM are written in ASCII; exponents are plain digits: \"m2\"";
        default:
            return c < 0x80 ? "this is an invisible character"
                            : "codes of UCUM are written in ASCII";
    }
}

// The product that an expression means.
class CProduct {
public:
    /// Multiplies by a whole number above zero. Divides by it if `sign` is below 0.
    virtual void number(std::string_view digits, int sign) = 0;
    /// Multiplies by a unit raised to `exponent`. The unit has a meaning.
    virtual void unit(const CUcumUnit& unit, int exponent) = 0;

protected:
    CProduct() = default;
    ~CProduct() = default;
    CProduct(const CProduct&) = default;
    CProduct& operator=(const CProduct&) = default;
};

exact::CSmallMeaning meaningOf(const CUcumUnit& unit) {
    exact::CSmallMeaning meaning = CUcumAtoms::meaning(unit.Atom);
    if (unit.Prefix != nullptr) {
        meaning.Factor.multiply(unit.Prefix->Factor);  // fits into 64 bits for all atoms
    }
    return meaning;
}

// A product in 64-bit numbers. It allocates no memory.
class CSmallProduct final : public CProduct {
public:
    void number(std::string_view digits, int sign) override {
        constexpr std::size_t Longest = 19;  // 19 digits fit into 64 bits
        const std::size_t begin = digits.find_first_not_of('0');
        digits.remove_prefix(begin);
        std::uint64_t value = 0;
        for (const char c : digits.substr(0, Longest)) {
            value = 10 * value + static_cast<std::uint64_t>(c - '0');
        }
        const exact::CSmallFraction factor(value);
        m_Fits = m_Fits && digits.size() <= Longest &&
                 m_Meaning.Factor.multiply(sign < 0 ? factor.inverse() : factor);
        m_IsOne = false;
    }

    void unit(const CUcumUnit& unit, int exponent) override {
        const exact::CSmallMeaning meaning = meaningOf(unit);
        if (m_IsOne && exponent == 1) {  // a single unit keeps its offset
            m_Meaning = meaning;
        } else {
            m_Fits = m_Fits && m_Meaning.multiply(meaning, 2 * exponent);
        }
        m_IsOne = false;
    }

    bool fits() const {
        return m_Fits &&
               !exact::CFraction(m_Meaning.Factor).needsMoreThan(exact::CFactor::MostBits);
    }
    const exact::CSmallMeaning& meaning() const { return m_Meaning; }

private:
    exact::CSmallMeaning m_Meaning;  // unspecified if it does not fit
    bool m_Fits = true;
    bool m_IsOne = true;
};

// A product of any size.
class CLargeProduct final : public CProduct {
public:
    void number(std::string_view digits, int sign) override {
        multiply([&] {
            const exact::CFactor factor(exact::CFraction::ofText(digits));
            return exact::CMeaning().scaled(factor.power(sign));
        });
    }

    void unit(const CUcumUnit& unit, int exponent) override {
        multiply([&] { return exact::CMeaning(meaningOf(unit)).power(exponent); });
    }

    bool fits() const { return m_Fits; }
    bool isExponentBeyond() const { return m_IsExponentBeyond; }
    exact::CMeaning& meaning() { return m_Meaning; }

private:
    template <class Factor>
    void multiply(const Factor& factor) {
        if (!m_Fits) {
            return;
        }
        try {
            m_Meaning = m_Meaning * factor();
        } catch (const exact::CError& error) {
            m_Fits = false;
            m_IsExponentBeyond = error.code() == exact::eError::EXPONENT_RANGE;
        }
    }

    exact::CMeaning m_Meaning;
    bool m_Fits = true;
    bool m_IsExponentBeyond = false;
};

class CExpression {
public:
    CExpression(eSystem system, std::string_view text, CProduct& product, CRefusal& refusal)
        : m_Text(text), m_Product(product), m_Refusal(refusal) {
        m_Refusal.System = system;
        m_Refusal.Text = text;
    }

    // Returns false if the text is refused. The product is then unspecified.
    bool read() {
        if (m_Text.size() > exact::LongestText) {
            return refuse(eRefusal::TOO_LONG, {0, 0}, "a code of UCUM has at most 4096 bytes");
        }
        if (m_Text.empty()) {
            return refuse(eRefusal::EMPTY, {0, 0}, "the text is empty; the unit one is \"1\"");
        }
        return expression() && requireMeaning();
    }

private:
    struct COpenBracket {
        std::size_t Position;
        int SignOutside;
    };

    char peek() const { return m_At < m_Text.size() ? m_Text[m_At] : End; }
    bool isAtEnd() const { return m_At == m_Text.size(); }
    bool isBehind(char c) const { return m_At > 0 && m_Text[m_At - 1] == c; }
    CSpan here() const { return {m_At, m_At + 1}; }

    // Rules.

    bool expression() {
        int sign = 1;
        if (peek() == '/') {
            sign = -1;
            ++m_At;
        }
        while (true) {
            while (peek() == '(') {
                if (!open(sign)) {
                    return false;
                }
                sign = 1;
            }
            if (!component(m_Sign * sign) || !closeAll()) {
                return false;
            }
            if (isAtEnd()) {
                return m_Depth == 0 || refuseOpen(m_Brackets[m_Depth - 1].Position);
            }
            if (peek() != '.' && peek() != '/') {
                return refuseAfterComponent();
            }
            sign = peek() == '/' ? -1 : 1;
            ++m_At;
        }
    }

    bool open(int sign) {
        if (m_Depth == m_Brackets.size()) {
            return refuse(eRefusal::TOO_DEEP, here(), "brackets are nested more than 64 deep");
        }
        m_Brackets[m_Depth++] = {m_At, m_Sign};
        m_Sign *= sign;
        ++m_At;
        return true;
    }

    bool closeAll() {
        while (peek() == ')') {
            if (m_Depth == 0) {
                return refuse(eRefusal::STRAY_BRACKET, here(), "unmatched closing bracket");
            }
            m_Sign = m_Brackets[--m_Depth].SignOutside;
            ++m_At;
            if (!annotation()) {
                return false;
            }
        }
        return true;
    }

    bool component(int sign) {
        ++m_Components;
        const char c = peek();
        if (isDigit(c)) {
            return number(sign) && annotation();
        }
        if (isLetter(c) || c == '[') {
            const std::size_t begin = m_At;
            return symbol() && unit({begin, m_At}, sign) && annotation();
        }
        return c == '{' ? annotation() : refuseComponent();
    }

    // Reads a factor, or the atom "10*" or "10^".
    bool number(int sign) {
        const std::size_t begin = m_At;
        skipDigits();
        const std::string_view digits = CSpan{begin, m_At}.of(m_Text);
        if (digits == "10" && (peek() == '*' || peek() == '^')) {
            ++m_At;
            return unit({begin, m_At}, sign);
        }
        if (digits.find_first_not_of('0') == std::string_view::npos) {
            addMeaningless({begin, m_At}, "the factor of a unit cannot be zero");
        } else {
            m_Product.number(digits, sign);
        }
        return true;
    }

    bool symbol() {
        while (isLetter(peek()) || peek() == '[') {
            const std::size_t begin = m_At;
            ++m_At;
            if (m_Text[begin] == '[' && !skipInside(begin, ']')) {
                return false;
            }
        }
        return true;
    }

    bool annotation() {
        if (peek() != '{') {
            return true;
        }
        const std::size_t begin = m_At;
        ++m_At;
        return skipInside(begin, '}');
    }

    // Skips everything up to and including the bracket that closes the one at `begin`.
    bool skipInside(std::size_t begin, char closing) {
        while (peek() != closing) {
            if (isAtEnd()) {
                return refuseOpen(begin);
            }
            const char c = peek();
            if (c == '[' && closing == ']') {
                return refuse(eRefusal::UNEXPECTED_CHARACTER, here(),
                              "square brackets cannot be nested");
            }
            if (c == '{') {
                return refuse(eRefusal::UNEXPECTED_CHARACTER, here(),
                              "an annotation cannot be inside square brackets or braces");
            }
            if (c == '}') {
                return refuse(eRefusal::STRAY_BRACKET, here(), "unmatched closing bracket");
            }
            if (!isPrintable(c)) {
                return refuseForeign();
            }
            ++m_At;
        }
        ++m_At;
        return true;
    }

    // Reads the unit at `symbol`, and the exponent that follows it.
    bool unit(CSpan symbol, int sign) {
        CUcumUnit unit;
        switch (findUcumUnit(symbol.of(m_Text), unit)) {
            case eUcumUnit::FOUND: break;
            case eUcumUnit::UNKNOWN:
                return isForeign(peek())  // the character may belong to the name, as in "kΩ"
                           ? refuseForeign()
                           : refuse(eRefusal::UNKNOWN_CODE, symbol, "UCUM has no unit {}");
            case eUcumUnit::TAKES_NO_PREFIX:
                return refuse(eRefusal::UNKNOWN_CODE, symbol,
                              "UCUM has no unit {}: the unit at its end cannot have a prefix");
        }
        int exponent = 1;
        if (!this->exponent(exponent)) {
            return false;
        }
        const std::size_t prefix = unit.Prefix != nullptr ? unit.Prefix->Symbol.size() : 0;
        if (CUcumAtoms::isRefused(unit.Atom)) {
            addMeaningless({symbol.Begin + prefix, symbol.End}, CUcumAtoms::reason(unit.Atom));
        } else if (exponent > exact::LargestExponent || exponent < -exact::LargestExponent) {
            addMeaningless({symbol.Begin, m_At}, "the exponent of {} is beyond 99");
        } else {
            if (!CUcumAtoms::meaning(unit.Atom).Offset.isZero()) {
                m_Scale = symbol;
                m_IsScaleRaised = exponent * sign != 1;
            }
            m_Product.unit(unit, exponent * sign);
        }
        return true;
    }

    bool exponent(int& exponent) {
        constexpr int Enough = 1000;  // out of range; 10 times this value does not overflow
        const std::size_t begin = m_At;
        const bool isSigned = peek() == '+' || peek() == '-';
        const bool isNegative = peek() == '-';
        m_At += isSigned ? std::size_t{1} : 0;
        if (!isDigit(peek())) {
            return !isSigned || (isForeign(peek())  // the character may be a digit, as in "m-²"
                                     ? refuseForeign()
                                     : refuse(eRefusal::MALFORMED_EXPONENT, {begin, m_At},
                                              "no digits of an exponent follow this sign"));
        }
        exponent = 0;
        for (; isDigit(peek()); ++m_At) {
            exponent = exponent < Enough ? 10 * exponent + (peek() - '0') : Enough;
        }
        exponent = isNegative ? -exponent : exponent;
        return true;
    }

    void skipDigits() {
        while (isDigit(peek())) {
            ++m_At;
        }
    }

    // Refusals.

    // Refuses the text at the cursor, because it begins no component.
    bool refuseComponent() {
        const CSpan before{m_At - 1, m_At};  // not used at the start of the text
        switch (peek()) {
            case '.':
            case '/':
                return refuse(eRefusal::MISSING_UNIT, here(), "there is no unit before this sign");
            case ')':
                if (isBehind('(')) {
                    return refuse(eRefusal::MISSING_UNIT, {before.Begin, m_At + 1},
                                  "there is nothing between these brackets");
                }
                return m_Depth == 0
                           ? refuse(eRefusal::STRAY_BRACKET, here(), "unmatched closing bracket")
                           : refuse(eRefusal::MISSING_UNIT, before,
                                    "there is no unit after this sign");
            case ']':
            case '}': return refuse(eRefusal::STRAY_BRACKET, here(), "unmatched closing bracket");
            case '*':
            case '^':
                return refuse(eRefusal::UNEXPECTED_CHARACTER, here(),
                              "this sign can only follow \"10\"");
            case '+':
            case '-':
                return refuse(eRefusal::UNEXPECTED_CHARACTER, here(),
                              "a sign can only precede the digits of an exponent");
            default: break;
        }
        if (!isAtEnd()) {
            return refuseForeign();
        }
        return isBehind('(')
                   ? refuseOpen(before.Begin)
                   : refuse(eRefusal::MISSING_UNIT, before, "there is no unit after this sign");
    }

    // Refuses the text at the cursor, because it cannot follow a component.
    bool refuseAfterComponent() {
        const char c = peek();
        if (isDigit(c)) {
            return refuse(eRefusal::MALFORMED_EXPONENT, here(),
                          "an exponent must follow its unit directly");
        }
        if (isLetter(c) || c == '(' || c == '[') {
            return refuse(eRefusal::MISSING_OPERATOR, here(),
                          "an operator is missing here; a product is written \"a.b\"");
        }
        switch (c) {
            case '{':
                return refuse(eRefusal::MISSING_OPERATOR, here(),
                              "a unit has at most one annotation");
            case '*':
            case '^':
                return refuse(
                    eRefusal::UNEXPECTED_CHARACTER, here(),
                    "this sign can only follow \"10\"; an exponent needs no sign: \"m2\"");
            default: return refuseComponent();
        }
    }

    bool refuseOpen(std::size_t bracket) {
        return refuse(eRefusal::OPEN_BRACKET, {bracket, bracket + 1},
                      "this bracket is never closed");
    }

    bool refuseForeign() {
        std::size_t length = 0;
        const char32_t c = exact::decode(m_Text.substr(m_At), length);
        const CSpan token{m_At, m_At + length};
        if (c == exact::NotUtf8 || c == U'\0') {
            return refuse(eRefusal::MALFORMED_TEXT, token, "this byte cannot be part of a text");
        }
        return refuse(eRefusal::UNEXPECTED_CHARACTER, token, sentenceOnForeign(c));
    }

    bool refuse(eRefusal code, CSpan token, std::string_view sentence) {
        m_Refusal.Code = code;
        m_Refusal.Token = token;
        m_Refusal.Sentence = sentence;
        return false;
    }

    // Stores why the text has no meaning. The reason is used if the whole text turns out to be a
    // valid code. The first reason wins.
    void addMeaningless(CSpan token, std::string_view sentence) {
        if (!m_IsMeaningless) {
            m_IsMeaningless = true;
            refuse(eRefusal::NO_MEANING, token, sentence);
        }
    }

    bool requireMeaning() {
        if (m_Scale.End > 0 && (m_Components > 1 || m_IsScaleRaised)) {
            addMeaningless(m_Scale,
                           "{} is a scale with its own zero and cannot be part of a product");
        }
        return !m_IsMeaningless;
    }

    const std::string_view m_Text;
    CProduct& m_Product;
    CRefusal& m_Refusal;
    std::size_t m_At = 0;
    std::size_t m_Depth = 0;
    std::size_t m_Components = 0;
    int m_Sign = 1;  // -1 if the contents of the open brackets divide
    CSpan m_Scale;   // an offset unit; empty if there is none
    bool m_IsScaleRaised = false;
    bool m_IsMeaningless = false;
    std::array<COpenBracket, exact::DeepestNesting> m_Brackets;  // valid up to m_Depth
};

}  // namespace

CReading readUcum(eSystem system, std::string_view text) {
    CReading result;
    CSmallProduct product;
    if (!CExpression(system, text, product, result.Refusal).read()) {
        return result;
    }
    if (product.fits()) {
        result.Meaning.emplace(product.meaning());
        return result;
    }
    CLargeProduct large;
    CExpression(system, text, large, result.Refusal).read();
    if (large.fits()) {
        result.Meaning = std::move(large.meaning());
    } else {
        result.Refusal = {eRefusal::NO_MEANING,
                          system,
                          text,
                          {0, text.size()},
                          large.isExponentBeyond()
                              ? "the exponents of a base unit add up to more than 99"
                              : "the exact factor needs more than 16384 bits"};
    }
    return result;
}

}  // namespace mensor::codes
