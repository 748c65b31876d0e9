// UnitFormat.cpp: the label tables, the parser and the two notations.
//
// The parser is a state machine that visits each code point once and holds slices of the text, no
// copies: a name is resolved when the next name begins or the text ends (commit), because its power
// and root may stand anywhere between the two. The factors are multiplied only when all are known,
// since units are kept for good: a text that is refused must not leave the half of it behind.
#include "mensor/UnitFormat.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory_resource>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "mensor/ProductUnit.h"
#include "mensor/RememberedTexts.h"
#include "mensor/factors.h"
#include "mensor/kept.h"
#include "mensor/parsing.h"
#include "mensor/require.h"
#include "mensor/tables.h"
#include "mensor/uncached.h"
#include "mensor/utf8.h"

namespace mensor {

using detail::Lock;
using detail::tables;
using detail::Uncached;

namespace {

int parseExponentBytes(std::string_view text) {
    if (text.empty()) {
        return 1;
    }
    constexpr std::int64_t Largest = std::numeric_limits<int>::max();
    std::int64_t n = 0;
    bool negative = false;
    const char* position = text.data();
    const char* const end = position + text.size();
    while (position != end) {
        const char_t c = detail::decodeUtf8(position, end);
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

// The algebra on factors alone, which registers nothing. The hash decides here as there: a product is
// the one that is registered under its hash, or would be by then, though its factors be others.
class CTrial {
public:
    // Multiplies what was multiplied before by unit->pow(pow)->root(root).
    void multiply(const CUnitPtr& unit, int pow, int root) {
        Factors factors = detail::factorsOf(unit, m_Given);
        factors = raised(raised(factors, pow, 1), 1, root);
        m_Product = canonical(detail::multiplied(m_Product, factors));
    }

private:
    using Factors = detail::Factors;

    // One of `pow` and `root` is 1.
    Factors raised(const Factors& factors, int pow, int root) {
        if (pow == 1 && root == 1) {
            return factors;
        }
        if (pow == 0) {
            return Factors();
        }
        Factors result = factors;
        detail::raise(result, std::abs(pow), std::abs(root));
        result = canonical(result);
        if (pow > 0 && root > 0) {
            return result;
        }
        detail::raise(result, -1, 1);
        return canonical(result);
    }

    Factors canonical(const Factors& factors) {
        if (factors.size() == 0) {
            return factors;
        }
        const detail::Factor& first = *factors.begin();
        if (factors.size() == 1 && first.Pow == first.Root) {
            return detail::factorsOf(*first.Unit, m_Given);
        }
        const int hash = detail::hashOf(factors);
        const Lock lock(tables().Mutex);
        const auto found = tables().Instances.find(hash);
        return found != tables().Instances.end() ? detail::factorsOf(found->second, m_Given)
                                                 : m_Products.emplace(hash, factors).first->second;
    }

    Factors m_Product;
    std::map<int, Factors> m_Products;  // that the algebra would have registered
    detail::GivenFactors m_Given;       // which both point into
};

bool isRegistered(const CUnitPtr& unit) {
    const Lock lock(tables().Mutex);
    const auto found = tables().Instances.find(unit->hashCode());
    return found != tables().Instances.end() && found->second == unit;
}

class CParser {
public:
    explicit CParser(std::string_view text) : m_Text(text) { m_Factors.reserve(UsualFactors); }

    // The unit of the text; none if a name in it is unknown.
    CUnitPtr parse() {
        const char* const end = m_Text.data() + m_Text.size();
        for (const char* position = m_Text.data(); position != end && !m_IsRefused;) {
            const char* const at = position;
            const char_t c = detail::decodeUtf8(position, end);
            step(c, at, position);
        }
        if (!m_IsRefused) {
            step(U' ', end, end);  // flushes the last token
            commit();
        }
        if (m_IsRefused) {
            return nullptr;
        }
        requireSmallExponents();
        return product();
    }

    // The first unknown name, a slice of the text.
    std::string_view unknownName() const { return m_Name; }

private:
    struct Factor {
        CUnitPtr Unit;
        int Pow;
        int Root;
    };

    CUnitPtr product() const {
        CUnitPtr result = CProductUnit::one();
        for (const Factor& factor : m_Factors) {
            const Lock lock(tables().Mutex);
            result =
                Uncached::multiply(result, Uncached::raise(factor.Unit, factor.Pow, factor.Root));
        }
        return result;
    }

    // Where exponents may leave the range of int, the algebra is tried without building units.
    void requireSmallExponents() const {
        constexpr std::int64_t Harmless = 4096;
        std::int64_t sum = 0;
        bool isHarmless = !detail::largeExponentsExist.load(std::memory_order_relaxed);
        for (const Factor& factor : m_Factors) {
            sum += factor.Pow < 0 ? -std::int64_t{factor.Pow} : factor.Pow;
            isHarmless = isHarmless && factor.Root == 1 && sum <= Harmless;
        }
        if (isHarmless) {
            return;
        }
        CTrial trial;
        for (const Factor& factor : m_Factors) {
            trial.multiply(factor.Unit, factor.Pow, factor.Root);
        }
    }

    // Applies the transition for `c`, which begins at `at` and ends before `next`.
    void step(char_t c, const char* at, const char* next) {
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

    std::string_view slice(const char* end) const {
        return std::string_view(m_Start, static_cast<std::size_t>(end - m_Start));
    }

    void beginName(char_t c, const char* at) {
        commit();
        m_Start = at;
        m_State = c == U'[' ? CUnitFormat::SYSTEM_NAME : CUnitFormat::NAME;
    }

    void separate(char_t c) {
        m_State = CUnitFormat::DEFAULT;
        if (c == U'<') {
            m_State = CUnitFormat::MARKUP;
        } else if (c == U'&') {
            m_State = CUnitFormat::ESCAPE;
        } else if (c == U'/') {
            m_SlashPending = true;
        }
    }

    // Leaves an unknown name where it is.
    void commit() {
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

    // Whether the name is known.
    bool addFactor() {
        CUnitPtr unit = CUnitFormat::unitFor(string_t(std::string(m_Name)));
        if (!unit) {
            return false;
        }
        // No number read is the smallest int, so its negation exists.
        const int pow = parseExponentBytes(m_Power);
        const int root = parseExponentBytes(m_Root);
        if (root == 0) {
            unit->root(root);  // throws
        }
        m_Factors.push_back({std::move(unit), m_Inverse ? -pow : pow, root});
        return true;
    }

    const std::string_view m_Text;
    CUnitFormat::eState m_State = CUnitFormat::DEFAULT;
    const char* m_Start = nullptr;  // where the current token began
    std::size_t m_Depth = 0;        // of "[" inside a bracketed name
    std::string_view m_Name;
    std::string_view m_Power;
    std::string_view m_Root;
    bool m_SlashPending = false;  // a "/" was seen, the next commit consumes it
    bool m_Inverse = false;       // factors are divisors now; each consumed slash toggles it
    bool m_IsRefused = false;     // m_Name is unknown

    // Most texts are read without fetching memory for their factors.
    static constexpr std::size_t UsualFactors = 4;
    alignas(Factor) std::byte m_Room[UsualFactors * sizeof(Factor)];
    std::pmr::monotonic_buffer_resource m_Memory{m_Room, sizeof m_Room};
    std::pmr::vector<Factor> m_Factors{&m_Memory};
};

const CUnitPtr* find(const std::map<string_t, CUnitPtr>& units, const string_t& name) {
    const auto found = units.find(name);
    return found == units.end() ? nullptr : &found->second;
}

// Appends the label of `unit`, else its symbol. The caller holds the mutex.
void appendNameLocked(string_t& buffer, const CUnitPtr& unit) {
    const auto found = tables().UnitLabel.find(unit);
    if (found != tables().UnitLabel.end()) {
        buffer += found->second;
    } else {
        buffer += unit->getSymbol();
    }
}

// The factors of `unit`, which has neither label nor symbol.
const std::vector<CUnitRationalPower>& requireFactors(const CUnitPtr& unit) {
    const auto* product = dynamic_cast<const CProductUnit*>(unit.get());
    if (product == nullptr) {
        throw std::invalid_argument("Cannot format given Object as a Unit");
    }
    return product->factors();
}

void appendNumber(string_t& buffer, char mark, std::int64_t n) {
    char digits[24] = {mark};
    const auto end = std::to_chars(digits + 1, digits + sizeof digits, n).ptr;
    *end = 0;
    // As a pointer: tiny-utf8 takes an array for a literal and would append all its characters.
    const char* const text = digits;
    buffer += text;
}

void appendExponent(string_t& buffer, std::int64_t pow, int root) {
    appendNumber(buffer, '^', pow);
    if (root != 1) {
        appendNumber(buffer, ':', root);
    }
}

void appendTypographicExponent(string_t& buffer, std::int64_t pow, int root) {
    if (pow == 1 && root == 1) {
        return;
    }
    if (pow == 2 && root == 1) {
        buffer += "²";
    } else if (pow == 3 && root == 1) {
        buffer += "³";
    } else {
        appendExponent(buffer, pow, root);
    }
}

}  // namespace

std::map<string_t, std::shared_ptr<CUnit>> CUnitFormat::names() {
    const Lock lock(tables().Mutex);
    std::map<string_t, std::shared_ptr<CUnit>> names = tables().LabelUnit;
    names.insert(tables().AliasUnit.begin(), tables().AliasUnit.end());
    names.insert(tables().Symbols.begin(), tables().Symbols.end());
    return names;
}

unsigned CUnitFormat::namesVersion() {
    const unsigned epoch = detail::namesEpoch.load(std::memory_order_acquire);
    return detail::handedOut.load(std::memory_order_acquire) ? 0 : epoch;
}

// From here on the client can change the table unseen.
std::map<string_t, std::shared_ptr<CUnit>>& CUnitFormat::labelUnitMap() {
    detail::handedOut.store(true);
    return tables().LabelUnit;
}

std::map<std::shared_ptr<CUnit>, string_t>& CUnitFormat::unitLabelMap() {
    detail::handedOut.store(true);
    return tables().UnitLabel;
}

std::map<string_t, std::shared_ptr<CUnit>>& CUnitFormat::aliasUnitMap() {
    detail::handedOut.store(true);
    return tables().AliasUnit;
}

CUnitPtr CUnitFormat::label(CUnitPtr unit, const string_t& label) {
    requireUnit(unit, "CUnitFormat::label");
    const Lock lock(tables().Mutex);
    auto& unitOf = tables().LabelUnit;
    auto& labelOf = tables().UnitLabel;
    const auto place = unitOf.lower_bound(label);
    const bool isHeld = place != unitOf.end() && place->first == label;
    if (!label.empty()) {
        if (find(tables().Symbols, label) != nullptr) {
            throw std::invalid_argument("Label: " + mensor::toStdString(label) +
                                        " is a known symbol");
        }
        if (isHeld && place->second != unit) {
            throw std::invalid_argument(
                "Label: " + mensor::toStdString(label) +
                " is attached to a different unit (must be detached first)");
        }
    }
    if (isHeld && place->second == unit) {
        return unit;
    }
    // All that may fail comes first, so that a failing allocation changes nothing: a spare label, and
    // the places for the new entries.
    string_t spare = label;
    const auto holder = isHeld ? place : unitOf.emplace_hint(place, label, nullptr);
    const auto former = labelOf.find(unit);
    if (former == labelOf.end()) {
        try {
            labelOf.emplace(unit, std::move(spare));
        } catch (...) {
            if (!isHeld) {
                unitOf.erase(holder);
            }
            throw;
        }
    } else {
        unitOf.erase(former->second);
        std::swap(former->second, spare);
    }
    if (isHeld) {
        labelOf.erase(holder->second);  // of two units with the empty label the last one keeps it
    }
    holder->second = unit;
    detail::advance(detail::namesEpoch);
    return unit;
}

CUnitPtr CUnitFormat::alias(CUnitPtr unit, string_t alias) {
    requireUnit(unit, "CUnitFormat::alias");
    const Lock lock(tables().Mutex);
    tables().AliasUnit.emplace(std::move(alias), unit);
    detail::advance(detail::namesEpoch);
    return unit;
}

void CUnitFormat::detach(const CUnitPtr& unit, const string_t& name) {
    const Lock lock(tables().Mutex);
    const auto labelled = tables().LabelUnit.find(name);
    const auto aliased = tables().AliasUnit.find(name);
    if (labelled != tables().LabelUnit.end() && labelled->second == unit) {
        tables().UnitLabel.erase(unit);
        tables().LabelUnit.erase(labelled);
    }
    if (aliased != tables().AliasUnit.end() && aliased->second == unit) {
        tables().AliasUnit.erase(aliased);
    }
    detail::advance(detail::namesEpoch);
}

string_t CUnitFormat::labelFor(CUnitPtr unit) {
    const Lock lock(tables().Mutex);
    const auto found = tables().UnitLabel.find(unit);
    return found != tables().UnitLabel.end() ? found->second : unit->getSymbol();
}

std::shared_ptr<CUnit> CUnitFormat::unitFor(const string_t& text) {
    const Lock lock(tables().Mutex);
    const CUnitPtr* unit = find(tables().LabelUnit, text);
    if (unit == nullptr) {
        unit = find(tables().AliasUnit, text);
    }
    if (unit == nullptr) {
        unit = find(tables().Symbols, text);
    }
    return unit == nullptr ? nullptr : *unit;
}

void CUnitFormat::labelPrefixedUnit(const std::vector<ePrefix>& prefixes,
                                    std::shared_ptr<CUnit> unit) {
    requireUnit(unit, "CUnitFormat::labelPrefixedUnit");
    const string_t base = unit->toString();
    for (const ePrefix p : prefixes) {
        const CPrefix& row = prefix(p);
        label(unit->multiply(row.Factor), row.Symbol + base);
    }
}

CUnitPtr detail::tryParse(const string_t& text, std::string_view& unknownName) {
    const std::string_view bytes(text.data(), text.size());
    const bool remembers = !handedOut.load(std::memory_order_acquire);
    const unsigned epoch = namesEpoch.load(std::memory_order_acquire);
    CParser parser(bytes);
    CUnitPtr unit = parser.parse();
    if (!unit) {
        unknownName = parser.unknownName();
    } else if (remembers && isRegistered(unit)) {
        rememberedTexts.keep(bytes, epoch, unit.get());
    }
    return unit;
}

std::invalid_argument detail::unknownLabel(std::string_view name) {
    std::string message = "Label: ";
    message += name;
    message += " not recognized";
    return std::invalid_argument(message);
}

CUnitPtr CUnitFormat::parseUnit(const string_t& text) { return detail::parse(text); }

bool CUnitFormat::isUnitIdentifierPart(char_t c) {
    return c > 0x22 && !(c >= 0x26 && c <= 0x3F) && c != U'^' && c != U'²' && c != U'³' &&
           c != U'·' && c != U'¹';
}

bool CUnitFormat::isExponent(char_t c) {
    return (c >= U'0' && c <= U'9') || c == U'-' || c == U'¹' || c == U'²' || c == U'³';
}

int CUnitFormat::parseExponent(const string_t& text) {
    return parseExponentBytes(std::string_view(text.data(), text.size()));
}

CUnitFormatPtr CStandardUnitFormat::instance() {
    static const detail::CKept<CUnitFormatPtr> Instance(std::make_shared<CStandardUnitFormat>());
    return *Instance;
}

void CStandardUnitFormat::append(string_t& buffer, const string_t& symbol, int pow, int root) {
    buffer += symbol;
    appendTypographicExponent(buffer, pow, root);
}

string_t CStandardUnitFormat::format(std::shared_ptr<CUnit> unit, string_t buffer) {
    return write(unit, std::move(buffer));
}

// The mutex is held over all names, so that they are those of one moment.
string_t CStandardUnitFormat::write(const CUnitPtr& unit, string_t buffer) {
    const Lock lock(tables().Mutex);
    const auto start = buffer.size();
    appendNameLocked(buffer, unit);
    if (buffer.size() != start) {
        return buffer;
    }
    const auto& factors = requireFactors(unit);
    int negatives = 0;
    for (const CUnitRationalPower& factor : factors) {
        if (factor.getPow() < 0) {
            ++negatives;
            continue;
        }
        if (buffer.size() != start) {
            buffer += "·";
        }
        appendNameLocked(buffer, factor.unit());
        appendTypographicExponent(buffer, factor.getPow(), factor.getRoot());
    }
    if (negatives == 0) {
        return buffer;
    }
    if (buffer.size() == start) {
        buffer += "1";
    }
    buffer += negatives > 1 ? "/(" : "/";
    const auto mark = buffer.size();
    for (const CUnitRationalPower& factor : factors) {
        if (factor.getPow() >= 0) {
            continue;
        }
        if (buffer.size() != mark) {
            buffer += "·";
        }
        appendNameLocked(buffer, factor.unit());
        appendTypographicExponent(buffer, -std::int64_t{factor.getPow()}, factor.getRoot());
    }
    if (negatives > 1) {
        buffer += ")";
    }
    return buffer;
}

CUnitFormatPtr CASCIIUnitFormat::instance() {
    static const detail::CKept<CUnitFormatPtr> Instance(std::make_shared<CASCIIUnitFormat>());
    return *Instance;
}

string_t CASCIIUnitFormat::format(std::shared_ptr<CUnit> unit, string_t buffer) {
    const Lock lock(tables().Mutex);
    const auto start = buffer.size();
    appendNameLocked(buffer, unit);
    if (buffer.size() != start) {
        return buffer;
    }
    for (const CUnitRationalPower& factor : requireFactors(unit)) {
        if (buffer.size() != start) {
            buffer += " ";
        }
        appendNameLocked(buffer, factor.unit());
        if (factor.getPow() != 1 || factor.getRoot() != 1) {
            appendExponent(buffer, factor.getPow(), factor.getRoot());
        }
    }
    return buffer;
}

}  // namespace mensor
