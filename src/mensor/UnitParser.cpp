#include "mensor/UnitParser.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <map>
#include <string>
#include <utility>

#include "mensor/Factors.h"
#include "mensor/ProductUnit.h"
#include "mensor/UnitAlgebra.h"
#include "mensor/utf8.h"

namespace mensor::detail {

namespace {

// Multiplies and raises units as the algebra does, but registers nothing. The hash code decides
// identity here as well: a product is the registered unit with its hash code, or else the first
// product of this text with that hash code, even if the factors differ.
class CTrialProduct {
public:
    // Multiplies the product so far by unit->pow(pow)->root(root).
    void multiply(const CUnitPtr& unit, int pow, int root) {
        Factors factors = factorsOf(unit, m_Given);
        factors = raised(raised(factors, pow, 1), 1, root);
        m_Product = canonical(multiplied(m_Product, factors));
    }

private:
    // One of `pow` and `root` is 1.
    Factors raised(const Factors& factors, int pow, int root) {
        if (pow == 1 && root == 1) {
            return factors;
        }
        if (pow == 0) {
            return Factors();
        }
        Factors result = factors;
        raise(result, std::abs(pow), std::abs(root));
        result = canonical(result);
        if (pow > 0 && root > 0) {
            return result;
        }
        raise(result, -1, 1);
        return canonical(result);
    }

    Factors canonical(const Factors& factors) {
        if (factors.size() == 0) {
            return factors;
        }
        const detail::Factor& first = *factors.begin();
        if (factors.size() == 1 && first.Pow == first.Root) {
            return factorsOf(*first.Unit, m_Given);
        }
        const int hash = hashOf(factors);
        const Lock lock(tables().Mutex);
        const auto found = tables().Instances.find(hash);
        return found != tables().Instances.end() ? factorsOf(found->second, m_Given)
                                                 : m_Products.emplace(hash, factors).first->second;
    }

    Factors m_Product;
    std::map<int, Factors> m_Products;  // those that the algebra would register
    GivenFactors m_Given;               // both members above point into it
};

}  // namespace

int CUnitParser::parseExponent(std::string_view text) {
    if (text.empty()) {
        return 1;
    }
    constexpr std::int64_t Largest = std::numeric_limits<int>::max();
    std::int64_t n = 0;
    bool negative = false;
    const char* position = text.data();
    const char* const end = position + text.size();
    while (position != end) {
        const char_t c = decodeUtf8(position, end);
        switch (c) {
            case U'-': negative = true; continue;
            case U'+': continue;
            case U'¹': n = 10 * n + 1; break;
            case U'²': n = 10 * n + 2; break;
            case U'³': n = 10 * n + 3; break;
            default: n = 10 * n + (static_cast<std::int64_t>(c) - U'0'); break;
        }
        if (n > Largest || n < -Largest) {
            throw std::out_of_range("Exponent " + std::string(text) + " is out of range");
        }
    }
    return static_cast<int>(negative ? -n : n);
}

std::invalid_argument CUnitParser::unknownLabel(std::string_view name) {
    std::string message = "Label: ";
    message += name;
    message += " not recognized";
    return std::invalid_argument(message);
}

// Returns false if the name is unknown.
inline bool CUnitParser::addFactor() {
    CUnitPtr unit = CUnitFormat::unitFor(string_t(std::string(m_Name)));
    if (!unit) {
        return false;
    }
    // parseExponent never returns the smallest int, so the power can be negated.
    const int pow = parseExponent(m_Power);
    const int root = parseExponent(m_Root);
    if (root == 0) {
        unit->root(root);  // throws
    }
    m_Factors.push_back({std::move(unit), m_Inverse ? -pow : pow, root});
    return true;
}

// Adds the factor that was read. If its name is unknown, m_Name stays as it is.
inline void CUnitParser::commit() {
    if (!m_Name.empty() && !addFactor()) {
        m_IsRefused = true;
        return;
    }
    if (m_SlashPending) {
        m_Inverse = !m_Inverse;
    }
    m_Name = m_Power = m_Root = std::string_view();
    m_SlashPending = false;
}

// Returns the text from the beginning of the token to `end`.
inline std::string_view CUnitParser::slice(const char* end) const {
    return std::string_view(m_Start, static_cast<std::size_t>(end - m_Start));
}

inline void CUnitParser::beginName(char_t c, const char* at) {
    commit();
    m_Start = at;
    m_State = c == U'[' ? CUnitFormat::SYSTEM_NAME : CUnitFormat::NAME;
}

inline void CUnitParser::separate(char_t c) {
    m_State = CUnitFormat::DEFAULT;
    if (c == U'<') {
        m_State = CUnitFormat::MARKUP;
    } else if (c == U'&') {
        m_State = CUnitFormat::ESCAPE;
    } else if (c == U'/') {
        m_SlashPending = true;
    }
}

// Applies the transition for `c`, which begins at `at` and ends before `next`.
inline void CUnitParser::step(char_t c, const char* at, const char* next) {
    switch (m_State) {
        case CUnitFormat::DEFAULT:
            if (c == U'[' || CUnitFormat::isUnitIdentifierPart(c)) {
                beginName(c, at);
            } else if (CUnitFormat::isExponent(c)) {
                m_Start = at;
                m_State = CUnitFormat::EXPONENT;
            } else {
                separate(c);
            }
            break;
        case CUnitFormat::SYSTEM_NAME:
            if (c == U'[') {
                ++m_Depth;
            } else if (c == U']' && m_Depth > 0) {
                --m_Depth;
            } else if (c == U']') {
                m_Name = slice(next);
                m_State = CUnitFormat::DEFAULT;
            }
            break;
        case CUnitFormat::NAME:
            if (CUnitFormat::isUnitIdentifierPart(c)) {
                break;
            }
            m_Name = slice(at);
            if (CUnitFormat::isExponent(c)) {
                m_Start = at;
                m_State = CUnitFormat::EXPONENT;
            } else {
                separate(c);
            }
            break;
        case CUnitFormat::EXPONENT:
            if (CUnitFormat::isExponent(c)) {
                break;
            }
            if (m_Power.empty()) {
                m_Power = slice(at);
            } else {
                m_Root = slice(at);
                m_SlashPending = false;  // the slash stood between power and root
            }
            if (c == U'[' || CUnitFormat::isUnitIdentifierPart(c)) {
                beginName(c, at);
            } else {
                separate(c);
            }
            break;
        case CUnitFormat::MARKUP:
            if (c == U'>') {
                m_State = CUnitFormat::DEFAULT;
            }
            break;
        case CUnitFormat::ESCAPE:
            if (c == U';') {
                m_State = CUnitFormat::DEFAULT;
            }
            break;
        default: throw std::runtime_error("State " + std::to_string(m_State) + "unknown");
    }
}

inline CUnitPtr CUnitParser::product() const {
    CUnitPtr result = CProductUnit::one();
    for (const Factor& factor : m_Factors) {
        const Lock lock(tables().Mutex);
        result = UnitAlgebra::multiplyUncached(
            result, UnitAlgebra::raiseUncached(factor.Unit, factor.Pow, factor.Root));
    }
    return result;
}

// Throws std::overflow_error if the product has an exponent beyond the range of int. No
// product of small exponents leaves that range, so only larger ones are tried.
inline void CUnitParser::requireSmallExponents() const {
    constexpr std::int64_t Harmless = 4096;
    std::int64_t sum = 0;
    bool isHarmless = !largeExponentsExist.load(std::memory_order_relaxed);
    for (const Factor& factor : m_Factors) {
        sum += factor.Pow < 0 ? -std::int64_t{factor.Pow} : factor.Pow;
        isHarmless = isHarmless && factor.Root == 1 && sum <= Harmless;
    }
    if (isHarmless) {
        return;
    }
    CTrialProduct trial;
    for (const Factor& factor : m_Factors) {
        trial.multiply(factor.Unit, factor.Pow, factor.Root);
    }
}

// The unit of the text, or none if m_Name is unknown.
inline CUnitPtr CUnitParser::parse() {
    const char* const end = m_Text.data() + m_Text.size();
    for (const char* position = m_Text.data(); position != end && !m_IsRefused;) {
        const char* const at = position;
        const char_t c = decodeUtf8(position, end);
        step(c, at, position);
    }
    if (!m_IsRefused) {
        step(U' ', end, end);  // ends the last token
        commit();
    }
    if (m_IsRefused) {
        return nullptr;
    }
    requireSmallExponents();
    return product();
}

CUnitPtr CUnitParser::tryParse(const string_t& text, std::string_view& unknownName) {
    const std::string_view bytes(text.data(), text.size());
    const bool usesCache = !tablesHandedOut.load(std::memory_order_acquire);
    const unsigned epoch = namesEpoch.load(std::memory_order_acquire);
    CUnitParser parser(bytes);
    CUnitPtr unit = parser.parse();
    if (!unit) {
        unknownName = parser.m_Name;
    } else if (usesCache && isRegistered(unit)) {
        textCache.insert(bytes, epoch, unit.get());
    }
    return unit;
}

}  // namespace mensor::detail
