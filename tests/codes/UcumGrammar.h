// UcumGrammar.h: a second implementation of the grammar of UCUM, rule by rule, to compare the library with.
#ifndef MENSOR_TESTS_UCUMGRAMMAR_H
#define MENSOR_TESTS_UCUMGRAMMAR_H

#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>

#include "codes/UcumAtoms.h"

namespace mensor {

/// Decides whether a text is a code of UCUM. It follows all ways through the grammar at once, so it does not
/// have to know where an atom ends.
class UcumGrammar {
public:
    static bool accepts(const std::string& text) {
        UcumGrammar grammar(text);
        std::set<std::size_t> ends = grammar.term(0);
        if (!text.empty() && text[0] == '/') {
            ends.merge(grammar.term(1));
        }
        return ends.count(text.size()) > 0;
    }

private:
    using Ends = std::set<std::size_t>;

    explicit UcumGrammar(const std::string& text) : m_Text(text) {}

    bool isAt(std::size_t at, const std::string& characters) const {
        return at < m_Text.size() && characters.find(m_Text[at]) != std::string::npos;
    }
    bool isDigit(std::size_t at) const { return isAt(at, "0123456789"); }

    // term = component | term "." component | term "/" component
    Ends term(std::size_t at) {
        const auto known = m_Terms.find(at);
        if (known != m_Terms.end()) {
            return known->second;
        }
        Ends ends = component(at);
        Ends fresh = ends;
        while (!fresh.empty()) {
            Ends next;
            for (const std::size_t end : fresh) {
                if (isAt(end, "./")) {
                    next.merge(component(end + 1));
                }
            }
            fresh.clear();
            for (const std::size_t end : next) {
                if (ends.insert(end).second) {
                    fresh.insert(end);
                }
            }
        }
        return m_Terms[at] = ends;
    }

    Ends component(std::size_t at) {
        Ends ends = digits(at);
        for (const std::size_t unit : simpleUnit(at)) {
            ends.insert(unit);
            ends.merge(digits(unit));
            if (isAt(unit, "+-")) {
                ends.merge(digits(unit + 1));
            }
        }
        if (isAt(at, "(")) {
            for (const std::size_t end : term(at + 1)) {
                if (isAt(end, ")")) {
                    ends.insert(end + 1);
                }
            }
        }
        Ends annotated = annotation(at);
        for (const std::size_t end : ends) {
            annotated.merge(annotation(end));
        }
        ends.merge(annotated);
        return ends;
    }

    Ends digits(std::size_t at) const {
        Ends ends;
        while (isDigit(at)) {
            ends.insert(++at);
        }
        return ends;
    }

    Ends annotation(std::size_t at) const {
        if (!isAt(at, "{")) {
            return {};
        }
        const std::size_t end = m_Text.find_first_of("{}", at + 1);
        if (end == std::string::npos || m_Text[end] == '{') {
            return {};
        }
        for (std::size_t i = at; i < end; ++i) {
            if (m_Text[i] < '!' || m_Text[i] > '~') {
                return {};
            }
        }
        return {end + 1};
    }

    Ends simpleUnit(std::size_t at) const {
        Ends ends = atoms(at, false);
        for (const auto& [prefix, factor] : ucumPrefixes()) {
            if (m_Text.compare(at, prefix.size(), prefix) == 0) {
                ends.merge(atoms(at + prefix.size(), true));
            }
        }
        return ends;
    }

    Ends atoms(std::size_t at, bool areMetric) const {
        Ends ends;
        for (const UcumAtom& atom : ucumAtoms()) {
            if ((!areMetric || atom.TakesPrefixes) &&
                m_Text.compare(at, atom.Code.size(), atom.Code) == 0) {
                ends.insert(at + atom.Code.size());
            }
        }
        return ends;
    }

    const std::string& m_Text;
    std::map<std::size_t, Ends> m_Terms;
};

/// Makes valid codes with their meanings, by the rules of the grammar.
class UcumGenerator {
public:
    explicit UcumGenerator(std::uint64_t seed) : m_Random(seed) {}

    struct Expression {
        std::string Text;
        exact::CMeaning Meaning;
    };

    /// Returns a code without offset units and without refused atoms.
    Expression expression() {
        const bool divides = below(5) == 0;
        Expression result = term(3);
        if (divides) {  // "/" divides by the first component only, so there must be no other
            result = component(3);
            result.Text = "/" + result.Text;
            result.Meaning = exact::CMeaning() / result.Meaning;
        }
        return result;
    }

    std::size_t below(std::size_t count) { return static_cast<std::size_t>(m_Random() % count); }

private:
    Expression term(int depth) {
        Expression result = component(depth);
        for (std::size_t more = below(4); more > 0; --more) {
            const Expression next = component(depth);
            if (below(2) == 0) {
                result.Text += "." + next.Text;
                result.Meaning = result.Meaning * next.Meaning;
            } else {
                result.Text += "/" + next.Text;
                result.Meaning = result.Meaning / next.Meaning;
            }
        }
        return result;
    }

    Expression component(int depth) {
        Expression result;
        const std::size_t kind = below(10);
        if (kind == 0 && depth > 0) {
            result = term(depth - 1);
            result.Text = "(" + result.Text + ")";
        } else if (kind == 1) {
            const std::size_t number = 1 + below(below(3) == 0 ? 1000000 : 20);
            result.Text = (below(5) == 0 ? "0" : "") + std::to_string(number);
            result.Meaning = exact::CMeaning().scaled(
                exact::CFactor(exact::CFraction(static_cast<std::int64_t>(number))));
        } else if (kind == 2) {
            result.Text = annotation();
            return result;
        } else {
            result = unit();
        }
        if (below(6) == 0) {
            result.Text += annotation();
        }
        return result;
    }

    Expression unit() {
        const UcumAtom* atom = nullptr;
        do {
            atom = &ucumAtoms()[below(ucumAtoms().size())];
        } while (!atom->Meaning || !atom->Meaning->offset().isZero());
        Expression result{atom->Code, *atom->Meaning};
        if (atom->TakesPrefixes && below(2) == 0) {
            const auto& [prefix, factor] = ucumPrefixes()[below(ucumPrefixes().size())];
            result.Text = prefix + result.Text;
            result.Meaning = result.Meaning.scaled(exact::CFactor(factor));
        }
        if (below(3) == 0) {
            const int exponent = static_cast<int>(below(9)) - 4;
            result.Text += exponent < 0 ? "" : below(3) == 0 ? "+" : "";
            result.Text += std::to_string(exponent);
            result.Meaning = result.Meaning.power(exponent);
        }
        return result;
    }

    std::string annotation() {
        std::string text;
        for (std::size_t more = below(6); more > 0; --more) {
            const char c = static_cast<char>('!' + below('~' - '!' + 1));
            text += c == '{' || c == '}' ? '/' : c;
        }
        return "{" + text + "}";
    }

    std::mt19937_64 m_Random;
};

}  // namespace mensor

#endif  // MENSOR_TESTS_UCUMGRAMMAR_H
