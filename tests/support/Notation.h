// Notation.h: an independent implementation of docs/notation.md: which unit a text denotes, how a
// unit is written, and which texts must read back as the same object. Needs no GoogleTest.
//
//     test::Asked asked = test::askedBy("m/s²");
//     asked.Refusal;                    // "", or the outcome of reading it
//     asked.unit();                     // m·s⁻², by the algebra
//     test::written(unit, test::Notation::ASCII);
//     test::readsBack(unit, test::Notation::ASCII);
#ifndef MENSOR_TESTS_NOTATION_H
#define MENSOR_TESTS_NOTATION_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "mensor/ProductUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/mensor_global.h"
#include "mensor/utf8.h"

namespace mensor::test {

/// The code points of any bytes, each with the position of the next byte. A string_t of tiny-utf8
/// cannot return those of malformed text.
struct CodePoints {
    explicit CodePoints(const std::string& text) {
        const char* const end = text.data() + text.size();
        for (const char* at = text.data(); at != end;) {
            Points += detail::decodeUtf8(at, end);
            Ends.push_back(static_cast<std::size_t>(at - text.data()));
        }
    }

    std::u32string Points;
    std::vector<std::size_t> Ends;
};

// ---- reading

/// The meaning of a text: its factors, or the refusal of a name or a number.
struct Asked {
    struct Factor {
        CUnitPtr Unit;
        int Pow;
        int Root;
    };
    std::vector<Factor> Factors;
    std::string Refusal;  ///< as outcomeOf() returns it; empty if there is none

    CUnitPtr unit() const {
        CUnitPtr product = CProductUnit::one();
        for (const Factor& factor : Factors) {
            product = product->multiply(factor.Unit->pow(factor.Pow)->root(factor.Root));
        }
        return product;
    }
};

// Reads whole tokens. The parser of the library is a state machine, so the same error in both is unlikely.
class CAsking {
public:
    explicit CAsking(const std::string& text)
        : m_Text(text), m_CodePoints(text), m_Points(m_CodePoints.Points) {}

    Asked asked() {
        std::size_t i = 0;
        while (i < m_Points.size()) {
            const std::size_t start = i;
            const char32_t c = m_Points[i++];
            if (c == U'[') {
                multiply();
                i = behindBrackets(start);
                if (i != 0) {
                    m_Name = cut(start, i);
                } else {
                    i = m_Points.size();
                }
            } else if (CUnitFormat::isUnitIdentifierPart(c)) {
                multiply();
                i = behindAll(&CUnitFormat::isUnitIdentifierPart, start);
                m_Name = cut(start, i);
            } else if (CUnitFormat::isExponent(c)) {
                i = behindAll(&CUnitFormat::isExponent, start);
                m_Numbers.push_back(cut(start, i));
                m_Slash = m_Slash && m_Numbers.size() == 1;
            } else if (c == U'<' || c == U'&') {
                i = std::min(m_Points.find(c == U'<' ? U'>' : U';', start), m_Points.size() - 1) +
                    1;
            } else {
                m_Slash = m_Slash || c == U'/';
            }
        }
        multiply();
        return m_Asked;
    }

private:
    // The code points [from, to), at least one.
    string_t cut(std::size_t from, std::size_t to) const {
        const std::size_t begin = from == 0 ? 0 : m_CodePoints.Ends[from - 1];
        return string_t(m_Text.substr(begin, m_CodePoints.Ends[to - 1] - begin));
    }

    std::size_t behindAll(bool (*isPart)(char_t), std::size_t i) const {
        while (i < m_Points.size() && isPart(m_Points[i])) {
            ++i;
        }
        return i;
    }

    // Returns 0 if the bracket is never closed.
    std::size_t behindBrackets(std::size_t i) const {
        for (int open = 0; i < m_Points.size(); ++i) {
            open += m_Points[i] == U'[' ? 1 : m_Points[i] == U']' ? -1 : 0;
            if (open == 0) {
                return i + 1;
            }
        }
        return 0;
    }

    void multiply() {
        if (!m_Name.empty() && m_Asked.Refusal.empty()) {
            multiplyBy(CUnitFormat::unitFor(m_Name));
        }
        m_Divide = m_Divide != m_Slash;
        m_Name = string_t();
        m_Numbers.clear();
        m_Slash = false;
    }

    void multiplyBy(const CUnitPtr& unit) {
        if (!unit) {
            m_Asked.Refusal =
                "std::invalid_argument: Label: " + mensor::toStdString(m_Name) + " not recognized";
            return;
        }
        const std::optional<int> pow = m_Numbers.empty() ? 1 : number(m_Numbers.front());
        const std::optional<int> root = m_Numbers.size() < 2 ? 1 : number(m_Numbers.back());
        if (!pow || !root) {
            m_Asked.Refusal = "std::out_of_range: Exponent " +
                              mensor::toStdString(pow ? m_Numbers.back() : m_Numbers.front()) +
                              " is out of range";
        } else if (*root == 0) {
            m_Asked.Refusal = "std::invalid_argument: Root's order of zero";
        } else {
            m_Asked.Factors.push_back({unit, m_Divide ? -*pow : *pow, *root});
        }
    }

    // Returns none if the number does not fit an int.
    static std::optional<int> number(const string_t& text) {
        bool isNegative = false;
        std::string digits = "0";
        for (const char32_t c : text) {
            isNegative = isNegative || c == U'-';
            digits += c == U'¹'   ? "1"
                      : c == U'²' ? "2"
                      : c == U'³' ? "3"
                      : c == U'-' ? ""
                                  : std::string(1, static_cast<char>(c));
        }
        try {
            return isNegative ? -std::stoi(digits) : std::stoi(digits);
        } catch (const std::out_of_range&) {
            return std::nullopt;
        }
    }

    const std::string m_Text;
    const CodePoints m_CodePoints;
    const std::u32string& m_Points;
    string_t m_Name;
    std::vector<string_t> m_Numbers;  // power, root, and further numbers, which replace the root
    bool m_Slash = false;
    bool m_Divide = false;
    Asked m_Asked;
};

inline Asked askedBy(const std::string& text) { return CAsking(text).asked(); }

// ---- writing

enum class Notation { STANDARD, ASCII };

using Factors = std::vector<CUnitRationalPower>;

/// Returns the factors in the order in which a notation writes them. The standard notation writes
/// divisors last.
inline Factors inOrderOf(Notation notation, Factors factors) {
    if (notation == Notation::STANDARD) {
        std::stable_partition(factors.begin(), factors.end(),
                              [](const CUnitRationalPower& factor) { return factor.getPow() > 0; });
    }
    return factors;
}

inline std::string exponentAsWritten(Notation notation, std::int64_t pow, int root) {
    if (pow == 1 && root == 1) {
        return "";
    }
    if (notation == Notation::STANDARD && root == 1 && (pow == 2 || pow == 3)) {
        return pow == 2 ? "²" : "³";
    }
    return "^" + std::to_string(pow) + (root == 1 ? "" : ":" + std::to_string(root));
}

/// The text of `unit`, or none if the notation has none.
inline std::optional<std::string> written(const CUnitPtr& unit, Notation notation) {
    const std::string name = mensor::toStdString(CUnitFormat::labelFor(unit));
    if (!name.empty()) {
        return name;
    }
    if (dynamic_cast<CProductUnit*>(unit.get()) == nullptr) {
        return std::nullopt;
    }
    std::string dividends, divisors;
    int divisorCount = 0;
    for (const CUnitRationalPower& factor : unit->elements()) {
        const bool isDivisor = notation == Notation::STANDARD && factor.getPow() < 0;
        divisorCount += isDivisor ? 1 : 0;
        std::string& part = isDivisor ? divisors : dividends;
        if (!part.empty()) {
            part += notation == Notation::STANDARD ? "·" : " ";
        }
        const std::int64_t pow = factor.getPow();
        part += mensor::toStdString(CUnitFormat::labelFor(factor.getUnit())) +
                exponentAsWritten(notation, isDivisor ? -pow : pow, factor.getRoot());
    }
    if (divisorCount == 0) {
        return dividends;
    }
    return (dividends.empty() ? "1" : dividends) + "/" +
           (divisorCount > 1 ? "(" + divisors + ")" : divisors);
}

// ---- writing and reading back

/// Returns whether the factors, multiplied one after the other, give a product of exactly these
/// factors at each step. That may fail, because the hash code alone decides identity: the first
/// factors may give a unit that exists already with other factors, and these are merged with the
/// following ones.
inline bool isBuiltFactorByFactor(const Factors& factors) try {
    CUnitPtr product = CProductUnit::one();
    for (std::size_t count = 1; count <= factors.size(); ++count) {
        const CUnitRationalPower& next = factors[count - 1];
        product = product->multiply(next.getUnit()->pow(next.getPow())->root(next.getRoot()));
        const Factors built = product->elements();
        if (!std::is_permutation(built.begin(), built.end(), factors.begin(),
                                 factors.begin() + static_cast<std::ptrdiff_t>(count))) {
            return false;
        }
    }
    return true;
} catch (const std::overflow_error&) {
    return false;  // the exponents of another unit with the same hash code
}

/// Returns whether the parser reads `name` as one name in any text, and the name denotes `unit`.
inline bool isReadName(const string_t& name, const CUnitPtr& unit) {
    const std::string bytes = toStdString(name);
    const std::u32string points = CodePoints(bytes).Points;
    std::string shortest;
    bool isOfName = !bytes.empty();
    std::size_t depth = 0;
    for (const char32_t c : points) {
        if (points[0] == U'[') {
            isOfName = isOfName && (shortest.empty() || depth > 0);
            depth += c == U'[' ? 1 : 0;
            depth -= c == U']' && depth > 0 ? 1 : 0;
        } else {
            isOfName = isOfName && CUnitFormat::isUnitIdentifierPart(c);
        }
        char encoded[6];
        shortest.append(encoded, detail::encodeUtf8(c, encoded));
    }
    return isOfName && depth == 0 && shortest == bytes && CUnitFormat::unitFor(name) == unit;
}

/// Returns whether the text of `unit` in a notation must read back as the same object.
inline bool readsBack(const CUnitPtr& unit, Notation notation) {
    if (unit == CProductUnit::one()) {
        return false;  // its symbol "One" does not read as it
    }
    const string_t name = CUnitFormat::labelFor(unit);
    if (!name.empty()) {
        return isReadName(name, unit);
    }
    const Factors factors = unit->elements();
    for (const CUnitRationalPower& factor : factors) {
        if (!isReadName(CUnitFormat::labelFor(factor.getUnit()), factor.getUnit()) ||
            factor.getPow() == std::numeric_limits<int>::min()) {
            return false;
        }
    }
    return isBuiltFactorByFactor(inOrderOf(notation, factors));
}

}  // namespace mensor::test

#endif  // MENSOR_TESTS_NOTATION_H
