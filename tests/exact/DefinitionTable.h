// DefinitionTable.h: the rows of definitions.def and their meanings, read and computed with GMP,
// independently of the library.
//
//     const DefinitionTable table;
//     const Reference inch = table.meaningOf(*table.find("in"));
//     inch.Factor;      // 127/5000
//     inch.Dimensions;  // {{"m", 1}}
#ifndef MENSOR_TESTS_DEFINITIONTABLE_H
#define MENSOR_TESTS_DEFINITIONTABLE_H

#include <gmpxx.h>

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace mensor {

enum class eRow { BASE, MARK, UNIT };

/// One row as it is written.
struct DefinitionRow {
    eRow Kind;
    std::string Set;
    std::string Name;
    std::string Definition;
    std::string English;
    std::string Source;
};

inline std::vector<DefinitionRow> definitionRows() {
    // The rows are constant data: the compiler needs half a minute for a vector of as many strings.
    struct Texts {
        eRow Kind;
        const char *Set, *Name, *Definition, *English, *Source;
    };
    static constexpr Texts rows[] = {
#define MENSOR_BASE(set, name, english, source) {eRow::BASE, #set, name, "", english, source},
#define MENSOR_MARK(set, name, english, source) {eRow::MARK, #set, name, "", english, source},
#define MENSOR_UNIT(set, name, definition, english, source) \
    {eRow::UNIT, #set, name, definition, english, source},
#include "mensor_exact/definitions.def"
    };
    std::vector<DefinitionRow> result;
    for (const Texts& row : rows) {
        result.push_back({row.Kind, row.Set, row.Name, row.Definition, row.English, row.Source});
    }
    return result;
}

/// A meaning: the value x in the unit is (x + Offset)·Factor·π^Pi in base units.
struct Reference {
    std::map<std::string, int> Dimensions;  ///< none zero
    std::map<std::string, int> Marks;       ///< none zero
    mpq_class Factor = 1;
    int Pi = 0;
    mpq_class Offset = 0;

    /// The factor times its power of π, with a relative error of less than 2^-150.
    mpq_class factorWithPi() const {
        static const mpq_class pi(
            mpz_class("314159265358979323846264338327950288419716939937510582097494459"),
            mpz_class("1" + std::string(62, '0')));
        mpq_class result = Factor;
        for (int i = 0; i < Pi; ++i) {
            result *= pi;
        }
        for (int i = 0; i > Pi; --i) {
            result /= pi;
        }
        return result;
    }

    /// The value 0 of the unit in base units.
    mpq_class zero() const { return mpq_class(Offset * factorWithPi()); }
};

/// "0.45359237", "3.7e10", "1013.25".
inline mpq_class decimal(const std::string& text) {
    std::string digits;
    long tens = 0;
    bool isBehindPoint = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == 'e') {
            tens += std::stol(text.substr(i + 1));
            break;
        }
        if (text[i] == '.') {
            isBehindPoint = true;
            continue;
        }
        digits += text[i];
        tens -= isBehindPoint ? 1 : 0;
    }
    const mpz_class power("1" + std::string(static_cast<std::size_t>(std::labs(tens)), '0'));
    mpq_class result{mpz_class(digits, 10)};
    return tens < 0 ? mpq_class(result / power) : mpq_class(result * power);
}

/// The pieces of `text` between the separators, which may be of more than one byte.
inline std::vector<std::string> split(const std::string& text, const std::string& separator) {
    std::vector<std::string> pieces;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(separator, from)) != std::string::npos;
         from = at + separator.size()) {
        pieces.push_back(text.substr(from, at - from));
    }
    pieces.push_back(text.substr(from));
    return pieces;
}

class DefinitionTable {
public:
    DefinitionTable() : m_Rows(definitionRows()) {}

    const std::vector<DefinitionRow>& rows() const { return m_Rows; }

    /// The first row of that name; null if there is none.
    const DefinitionRow* find(const std::string& name) const {
        for (const DefinitionRow& row : m_Rows) {
            if (row.Name == name) {
                return &row;
            }
        }
        return nullptr;
    }

    /// @throws std::runtime_error  a definition that this reader cannot read, or a cycle.
    Reference meaningOf(const DefinitionRow& row) const { return meaningOf(row, 0); }

    /// The names in the definition.
    static std::set<std::string> namesIn(const std::string& definition) {
        std::set<std::string> names;
        for (const auto& [name, exponent] : elementsOf(cut(definition).Unit)) {
            names.insert(name);
        }
        return names;
    }

private:
    struct Cut {
        std::string Number, Unit, Offset;
    };

    static Cut cut(const std::string& definition) {
        Cut result;
        const std::vector<std::string> halves = split(definition, ", offset ");
        result.Offset = halves.size() > 1 ? halves[1] : "";
        const std::size_t space = halves[0].find(' ');
        const std::string first = halves[0].substr(0, space);
        const bool isNumber = (first[0] >= '0' && first[0] <= '9') || first.rfind("π", 0) == 0;
        result.Number = isNumber ? first : "";
        result.Unit = !isNumber                    ? halves[0]
                      : space == std::string::npos ? ""
                                                   : halves[0].substr(space + 1);
        return result;
    }

    // Multiplies or divides by a part of a number between slashes: "2π", "10^-3", "5".
    static void multiplyNumber(Reference& meaning, std::string piece, bool isDivisor) {
        const std::string pi = "π";
        if (piece.size() >= pi.size() && piece.substr(piece.size() - pi.size()) == pi) {
            meaning.Pi += isDivisor ? -1 : 1;
            piece.resize(piece.size() - pi.size());
            if (piece.empty()) {
                return;
            }
        }
        const std::vector<std::string> power = split(piece, "^");
        const int exponent = power.size() > 1 ? std::stoi(power[1]) : 1;
        for (int i = 0; i < std::abs(exponent); ++i) {
            if ((exponent < 0) != isDivisor) {
                meaning.Factor /= decimal(power[0]);
            } else {
                meaning.Factor *= decimal(power[0]);
            }
        }
    }

    static mpq_class quotient(const std::string& text) {
        const std::vector<std::string> pieces = split(text, "/");
        mpq_class result = decimal(pieces[0]);
        for (std::size_t i = 1; i < pieces.size(); ++i) {
            result /= decimal(pieces[i]);
        }
        return result;
    }

    // Each name of "ft·lbf/s" with its exponent.
    static std::vector<std::pair<std::string, int>> elementsOf(const std::string& unit) {
        std::vector<std::pair<std::string, int>> elements;
        if (unit.empty()) {
            return elements;
        }
        const std::vector<std::string> parts = split(unit, "/");
        for (std::size_t i = 0; i < parts.size(); ++i) {
            for (std::string name : split(parts[i], "·")) {
                int exponent = 1;
                for (const auto& [sign, value] : {std::pair("⁻¹", -1), {"²", 2}, {"³", 3}}) {
                    const std::string suffix = sign;
                    if (name.size() > suffix.size() &&
                        name.substr(name.size() - suffix.size()) == suffix) {
                        exponent = value;
                        name.resize(name.size() - suffix.size());
                    }
                }
                elements.emplace_back(name, i == 0 ? exponent : -exponent);
            }
        }
        return elements;
    }

    static void add(std::map<std::string, int>& sums, const std::map<std::string, int>& more,
                    int times) {
        for (const auto& [name, exponent] : more) {
            sums[name] += exponent * times;
            if (sums[name] == 0) {
                sums.erase(name);
            }
        }
    }

    Reference meaningOf(const DefinitionRow& row, int depth) const {
        if (depth > 20) {
            throw std::runtime_error("a cycle of definitions at " + row.Name);
        }
        Reference meaning;
        if (row.Kind != eRow::UNIT) {
            (row.Kind == eRow::BASE ? meaning.Dimensions : meaning.Marks)[row.Name] = 1;
            return meaning;
        }
        const Cut text = cut(row.Definition);
        if (!text.Number.empty()) {
            const std::vector<std::string> pieces = split(text.Number, "/");
            for (std::size_t i = 0; i < pieces.size(); ++i) {
                multiplyNumber(meaning, pieces[i], i > 0);
            }
        }
        for (const auto& [name, exponent] : elementsOf(text.Unit)) {
            const DefinitionRow* const element = find(name);
            if (element == nullptr) {
                throw std::runtime_error(row.Name + " is defined by an unknown unit: " + name);
            }
            const Reference factor = meaningOf(*element, depth + 1);
            if (factor.Offset != 0) {
                throw std::runtime_error(row.Name +
                                         " is defined by a unit with an offset: " + name);
            }
            add(meaning.Dimensions, factor.Dimensions, exponent);
            add(meaning.Marks, factor.Marks, exponent);
            meaning.Pi += factor.Pi * exponent;
            for (int i = 0; i < std::abs(exponent); ++i) {
                if (exponent < 0) {
                    meaning.Factor /= factor.Factor;
                } else {
                    meaning.Factor *= factor.Factor;
                }
            }
        }
        if (!text.Offset.empty()) {
            meaning.Offset = quotient(text.Offset);
        }
        return meaning;
    }

    std::vector<DefinitionRow> m_Rows;
};

}  // namespace mensor

#endif  // MENSOR_TESTS_DEFINITIONTABLE_H
