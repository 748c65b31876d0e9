// Mathematics.h: computes the meaning of a text by mathematics, and measures the meaning of a unit
// with the library, each without the other and without the code of the companion.
//
//     EXPECT_THAT(calculated("km/h"), Means(measured(CUnit::fromString("km/h"))));
//
// calculated() has a table of its own and uses an operator stack, while the companion uses
// recursive descent for its grammar. The text must be one that the companion reads.
#ifndef MENSOR_TESTS_MATHEMATICS_H
#define MENSOR_TESTS_MATHEMATICS_H

#include <cmath>
#include <cstdint>
#include <map>
#include <numeric>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "mensor/ProductUnit.h"
#include "mensor/Unit.h"
#include "mensor/mensor_global.h"

namespace mensor::test {

using Fraction = std::pair<std::int64_t, std::int64_t>;

inline Fraction lowest(std::int64_t numerator, std::int64_t denominator) {
    const std::int64_t divisor = std::gcd(numerator, denominator);
    return {numerator / divisor, denominator / divisor};
}

struct Quantity {
    std::map<std::string, Fraction> Exponents;  // not zero, in lowest terms
    double Factor = 1.0;
    double Offset = 0.0;

    Quantity() = default;
    explicit Quantity(const char* base) { Exponents[base] = {1, 1}; }

    Quantity to(Fraction power) const {
        Quantity result;
        if (power == Fraction{1, 1}) {
            return *this;
        }
        for (const auto& [base, exponent] : Exponents) {
            if (power.first != 0) {
                result.Exponents[base] =
                    lowest(exponent.first * power.first, exponent.second * power.second);
            }
        }
        result.Factor =
            std::pow(Factor, static_cast<double>(power.first) / static_cast<double>(power.second));
        return result;
    }

    Quantity times(const Quantity& other) const {
        Quantity result = *this;
        for (const auto& [base, exponent] : other.Exponents) {
            Fraction& mine = result.Exponents.emplace(base, Fraction{0, 1}).first->second;
            mine = lowest(mine.first * exponent.second + exponent.first * mine.second,
                          mine.second * exponent.second);
            if (mine.first == 0) {
                result.Exponents.erase(base);
            }
        }
        result.Factor *= other.Factor;
        result.Offset = 0.0;
        return result;
    }

    Quantity times(double factor) const {
        Quantity result = *this;
        result.Factor *= factor;
        return result;
    }

    Quantity over(const Quantity& other) const { return times(other.to({-1, 1})); }
};

inline std::ostream& operator<<(std::ostream& out, const Quantity& quantity) {
    out << quantity.Factor;
    for (const auto& [base, exponent] : quantity.Exponents) {
        out << " " << base << ":" << exponent.first << "/" << exponent.second;
    }
    return out << " + " << quantity.Offset;
}

/// Exponents must be equal; factor and offset within a relative 1e-11, since both sides are chains
/// of rounded factors and powers of them.
inline bool areSame(const Quantity& a, const Quantity& b) {
    const auto areClose = [](double x, double y) {
        return x == y || std::fabs(x - y) <= 1e-11 * std::fmax(std::fabs(x), std::fabs(y));
    };
    return a.Exponents == b.Exponents && areClose(a.Factor, b.Factor) &&
           areClose(a.Offset, b.Offset);
}

/// Every name after load, with its meaning from the SI brochure or NonSI.h.
inline const std::map<std::string, Quantity>& everyName() {
    static const std::map<std::string, Quantity> Names = [] {
        std::map<std::string, Quantity> u;
        const auto alternate = [&](const char* name, const Quantity& is) { u[name] = is; };
        for (const char* base : {"A", "K", "cd", "kg", "m", "mol", "s"}) {
            u[base] = Quantity(base);
        }
        const Quantity one;
        const auto pow = [&](const char* name, int n) { return u.at(name).to({n, 1}); };
        alternate("rad", one);
        alternate("sr", one);
        alternate("bit", one);
        alternate("Hz", pow("s", -1));
        alternate("Bq", pow("s", -1));
        alternate("N", u["kg"].times(u["m"]).times(pow("s", -2)));
        alternate("Pa", u["N"].times(pow("m", -2)));
        alternate("J", u["N"].times(u["m"]));
        alternate("W", u["J"].over(u["s"]));
        alternate("C", u["A"].times(u["s"]));
        alternate("V", u["W"].over(u["A"]));
        alternate("F", u["C"].over(u["V"]));
        alternate("\u2126", u["V"].over(u["A"]));
        alternate("S", u["A"].over(u["V"]));
        alternate("Wb", u["V"].times(u["s"]));
        alternate("T", u["Wb"].times(pow("m", -2)));
        alternate("H", u["Wb"].over(u["A"]));
        alternate("lm", u["cd"]);
        alternate("lx", u["cd"].times(pow("m", -2)));
        alternate("Gy", u["J"].over(u["kg"]));
        alternate("Sv", u["J"].over(u["kg"]));
        alternate("kat", u["mol"].over(u["s"]));
        u["g"] = u["kg"].times(0.001);
        const std::vector<std::pair<const char*, double>> prefixes = {
            {"Y", 1e24},  {"Z", 1e21},  {"E", 1e18},  {"P", 1e15},      {"T", 1e12},
            {"G", 1e9},   {"M", 1e6},   {"k", 1e3},   {"h", 1e2},       {"da", 1e1},
            {"d", 1e-1},  {"c", 1e-2},  {"m", 1e-3},  {"\u00B5", 1e-6}, {"n", 1e-9},
            {"p", 1e-12}, {"f", 1e-15}, {"a", 1e-18}, {"z", 1e-21},     {"y", 1e-24}};
        for (const char* name :
             {"A", "cd", "m",      "mol", "s",  "rad", "sr", "Hz", "N",  "Pa", "J",  "W",   "C",
              "V", "F",  "\u2126", "S",   "Wb", "T",   "H",  "lx", "Bq", "Gy", "Sv", "kat", "g"}) {
            for (const auto& [symbol, factor] : prefixes) {
                const std::string prefixed = std::string(symbol) + name;
                if (prefixed != "kg" && prefixed != "crad" && prefixed != "hPa") {
                    u[prefixed] = u[name].times(factor);
                }
            }
        }
        u["l"] = u["m"].to({3, 1}).times(0.001);
        for (const char* prefix : {"d", "c", "m", "\u00B5", "n", "p"}) {
            for (const auto& [symbol, factor] : prefixes) {
                if (std::string(symbol) == prefix) {
                    u[std::string(prefix) + "l"] = u["l"].times(factor);
                }
            }
        }
        const double pi = std::acos(-1.0);
        u["%"] = one.times(0.01);
        u["rev"] = one.times(2 * pi);
        u["°"] = one.times(pi / 180);
        u["′"] = one.times(pi / 180 / 60);
        u["″"] = one.times(pi / 180 / 3600);
        u["grade"] = one.times(pi / 200);
        u["centiradian"] = one.times(0.01);
        u["byte"] = one.times(8);
        u["atm"] = u["Pa"].times(101325);
        u["bar"] = u["Pa"].times(1e5);
        u["mbar"] = u["Pa"].times(100);
        u["mm_Hg"] = u["Pa"].times(133.322);
        u["in_Hg"] = u["Pa"].times(3386.388);
        u["grav"] = u["m"].times(pow("s", -2)).times(9.80665);
        for (const auto& [name, seconds] :
             std::vector<std::pair<const char*, double>>{{"min", 60},
                                                         {"h", 3600},
                                                         {"d", 86400},
                                                         {"week", 604800},
                                                         {"year", 31556952},
                                                         {"month", 2629746},
                                                         {"year_calendar", 31536000},
                                                         {"day_sidereal", 86164.09},
                                                         {"year_sidereal", 31558149.54}}) {
            u[name] = u["s"].times(seconds);
        }
        u["°C"] = u["K"];
        u["°C"].Offset = 273.15;
        return u;
    }();
    return Names;
}

/// Computes a text with quantities of any kind. `Named(name)` returns the quantity of a name, or null.
template <class Quantity, class Named>
class Calculation {
public:
    Calculation(const std::string& text, Named named) : m_Text(plain(text)), m_Named(named) {}

    Quantity result() {
        bool isOperand = false;  // whether the last token ends an operand
        for (std::size_t i = 0; i < m_Text.size();) {
            const char c = m_Text[i];
            if (c == ' ') {
                ++i;
            } else if (c == '*' || c == '/') {
                push(c);
                isOperand = false;
                ++i;
            } else if (c == ')') {
                while (m_Operators.back() != '(') {
                    apply();
                }
                m_Operators.pop_back();
                isOperand = true;
                multiplyAtPoint(++i);
            } else if (c == '^') {
                m_Operands.back() = m_Operands.back().to(exponent(++i));
                isOperand = true;
            } else {
                if (isOperand) {  // only blanks between two operands
                    push('*');
                }
                isOperand = c != '(' && c != '@';
                if (!isOperand) {
                    m_Operators.push_back(c);
                    ++i;
                } else {
                    m_Operands.push_back(name(i));
                    bindExponent(i);
                }
            }
        }
        while (!m_Operators.empty()) {
            apply();
        }
        return m_Operands.empty() ? Quantity() : m_Operands.back();
    }

    // All variants of a sign as one ASCII character: "@" is the root, and "^" comes before exponents.
    static std::string plain(const std::string& text) {
        static const std::vector<std::pair<std::string, std::string>> Signs = [] {
            std::vector<std::pair<std::string, std::string>> signs = {
                {"**", "^"},     {"·", "*"},           {"×", "*"},           {"\u2022", "*"},
                {"\u2027", "*"}, {"\u2217", "*"},      {"\u2219", "*"},      {"\u22C5", "*"},
                {"\u30FB", "*"}, {"\uFF65", "*"},      {"\uFF0A", "*"},      {"\uFF0E", "."},
                {"÷", "/"},      {"\u2044", "/"},      {"\u2215", "/"},      {"\uFF0F", "/"},
                {"\u02C6", "^"}, {"\uFF3E", "^"},      {"\u2236", ":"},      {"\uFF1A", ":"},
                {"\uFF0B", "+"}, {"\u2212", "-"},      {"\uFE63", "-"},      {"\uFF0D", "-"},
                {"\u2010", "-"}, {"\u2011", "-"},      {"\u2012", "-"},      {"\u2013", "-"},
                {"\uFF08", "("}, {"\uFF09", ")"},      {"\u221A", "@"},      {"\t", " "},
                {"\u00A0", " "}, {"\u1680", " "},      {"\u202F", " "},      {"\u205F", " "},
                {"\u3000", " "}, {"\u03BC", "\u00B5"}, {"\u03A9", "\u2126"}, {"\u2103", "°C"},
                {"\u212A", "K"}};
            const char* raised[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
            const char* wide[] = {"\uFF10", "\uFF11", "\uFF12", "\uFF13", "\uFF14",
                                  "\uFF15", "\uFF16", "\uFF17", "\uFF18", "\uFF19"};
            const char* blank[] = {"\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005",
                                   "\u2006", "\u2007", "\u2008", "\u2009", "\u200A"};
            for (int i = 0; i < 10; ++i) {
                signs.emplace_back(raised[i], "\x01" + std::to_string(i));
                signs.emplace_back(wide[i], std::to_string(i));
            }
            signs.emplace_back("⁻", "\x01-");
            signs.emplace_back("⁺", "\x01+");
            for (const char* space : blank) {
                signs.emplace_back(space, " ");
            }
            return signs;
        }();
        std::string out;
        for (std::size_t i = 0; i < text.size();) {
            const std::size_t before = i;
            for (const auto& [from, to] : Signs) {
                if (text.compare(i, from.size(), from) == 0) {
                    out += to;
                    i += from.size();
                    break;
                }
            }
            if (i == before) {
                out += text[i++];
            }
        }
        // Adjacent superscripts are one exponent.
        std::string result;
        bool isRaised = false;
        for (std::size_t i = 0; i < out.size(); ++i) {
            const bool nowRaised = out[i] == '\x01';
            if (nowRaised && !isRaised) {
                result += '^';
            }
            isRaised = nowRaised;
            result += out[nowRaised ? ++i : i];
        }
        return result;
    }

private:
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    // A full stop between names multiplies. Between digits it is a decimal point of an exponent,
    // which is read as a whole.
    Quantity name(std::size_t& i) {
        if (isDigit(m_Text[i])) {  // the 1 of "1/s"
            ++i;
            return Quantity();
        }
        const std::size_t begin = i;
        while (i < m_Text.size() && std::string(" */()^@.").find(m_Text[i]) == std::string::npos &&
               !isDigit(m_Text[i]) &&
               !(m_Text[i] == '-' && i + 1 < m_Text.size() && isDigit(m_Text[i + 1]))) {
            ++i;
        }
        std::string name = m_Text.substr(begin, i - begin);
        if (name == "One") {
            return Quantity();
        }
        const Quantity* found = m_Named(name);
        if (found == nullptr && name.back() == 'L') {
            name.back() = 'l';
            found = m_Named(name);
        }
        if (found == nullptr) {
            throw std::invalid_argument("no meaning for \"" + name + "\"");
        }
        return *found;
    }

    // Digits directly after a name, and the full stop that multiplies.
    void bindExponent(std::size_t& i) {
        if (i < m_Text.size() && (isDigit(m_Text[i]) || m_Text[i] == '-') &&
            !isDigit(m_Text[i - 1])) {
            m_Operands.back() = m_Operands.back().to({integer(i), 1});
        }
        multiplyAtPoint(i);
    }

    void multiplyAtPoint(std::size_t& i) {
        std::size_t next = i;
        while (next < m_Text.size() && m_Text[next] == ' ') {
            ++next;
        }
        if (next < m_Text.size() && m_Text[next] == '.') {
            m_Text[next] = '*';
        }
    }

    std::int64_t integer(std::size_t& i) {
        const bool isNegative = m_Text[i] == '-';
        i += m_Text[i] == '-' || m_Text[i] == '+' ? 1U : 0U;
        std::int64_t n = 0;
        while (i < m_Text.size() && isDigit(m_Text[i])) {
            n = n * 10 + (m_Text[i++] - '0');
        }
        return isNegative ? -n : n;
    }

    void skip(std::size_t& i) const {
        while (i < m_Text.size() && m_Text[i] == ' ') {
            ++i;
        }
    }

    Fraction exponent(std::size_t& i) {
        skip(i);
        const bool isBracketed = m_Text[i] == '(';
        i += isBracketed ? 1U : 0U;
        skip(i);
        const bool isNegative = m_Text[i] == '-';
        std::int64_t numerator = integer(i);
        std::int64_t denominator = 1;
        if (isBracketed) {
            skip(i);
        }
        const auto isDigitAt = [&](std::size_t at) {
            return at < m_Text.size() && isDigit(m_Text[at]);
        };
        if (i < m_Text.size() && m_Text[i] == '.' && isDigitAt(i + 1)) {
            std::size_t places = 0;  // zeros at the end are dropped, since they would only overflow
            for (++i; isDigitAt(i); ++i) {
                ++places;
                if (m_Text[i] == '0') {
                    continue;
                }
                for (; places > 0; --places) {
                    numerator *= 10;
                    denominator *= 10;
                }
                numerator += (isNegative ? -1 : 1) * (m_Text[i] - '0');
            }
        } else if (i < m_Text.size() && (m_Text[i] == ':' || (isBracketed && m_Text[i] == '/'))) {
            ++i;
            skip(i);
            denominator = integer(i);
        }
        if (isBracketed) {
            skip(i);
            ++i;
        }
        multiplyAtPoint(i);
        return lowest(numerator, denominator);
    }

    // Applies all operators from left to right. A root applies to the operand after it. The
    // exponents of that operand have been applied already; the order of the two makes no
    // difference.
    void push(char op) {
        while (!m_Operators.empty() && m_Operators.back() != '(') {
            apply();
        }
        m_Operators.push_back(op);
    }

    void apply() {
        const char op = m_Operators.back();
        m_Operators.pop_back();
        const Quantity right = m_Operands.back();
        if (op == '@') {
            m_Operands.back() = right.to({1, 2});
            return;
        }
        m_Operands.pop_back();
        m_Operands.back() =
            op == '*' ? m_Operands.back().times(right) : m_Operands.back().over(right);
    }

    std::string m_Text;
    Named m_Named;
    std::vector<Quantity> m_Operands;
    std::vector<char> m_Operators;
};

/// The meaning of `text`. @throws std::invalid_argument  a name is not in everyName().
inline Quantity calculated(const std::string& text) {
    const auto named = [](const std::string& name) {
        const auto found = everyName().find(name);
        return found == everyName().end() ? nullptr : &found->second;
    };
    return Calculation<Quantity, decltype(named)>(text, named).result();
}

/// The meaning of `unit` in the library: the base units of its dimension and the converter to it.
/// @throws std::runtime_error  the dimension does not consist of base units.
inline Quantity measured(const CUnitPtr& unit) {
    const CUnitPtr dimension = unit->getDimension();
    Quantity quantity;
    for (const CUnitRationalPower& element : dimension->elements()) {
        if (element.getUnit()->baseUnits() != element.getUnit()) {
            throw std::runtime_error("a dimension that is not made of base units");
        }
        quantity.Exponents[mensor::toStdString(element.getUnit()->getSymbol())] =
            lowest(element.getPow(), element.getRoot());
    }
    const CConverterPtr converter = unit->getCtxToDimension();
    quantity.Factor = converter->derivative(0.0);
    quantity.Offset = converter->convert(0.0);
    return quantity;
}

}  // namespace mensor::test

#endif  // MENSOR_TESTS_MATHEMATICS_H
