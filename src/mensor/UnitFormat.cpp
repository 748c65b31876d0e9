// UnitFormat.cpp: the label tables, the parser and the two notations.
//
// The parser is a state machine that visits each code point once and holds slices of the text, no
// copies: a name is resolved, raised and multiplied into the result when the next name begins or the
// text ends (commit), because its power and root may stand anywhere between the two.
#include "mensor/UnitFormat.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "mensor/ProductUnit.h"
#include "mensor/require.h"
#include "mensor/utf8.h"

namespace mensor {

namespace {

using Lock = std::lock_guard<std::recursive_mutex>;

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
            case U'-':
                negative = true;
                continue;
            case U'+':
                continue;
            case U'¹':
                n = 10 * n + 1;
                break;
            case U'²':
                n = 10 * n + 2;
                break;
            case U'³':
                n = 10 * n + 3;
                break;
            default:
                n = 10 * n + (static_cast<std::int64_t>(c) - U'0');
                break;
        }
        if (n > Largest || n < -Largest) {
            throw std::out_of_range("Exponent " + std::string(text) + " is out of range");
        }
    }
    return static_cast<int>(negative ? -n : n);
}

class Parser {
public:
    explicit Parser(std::string_view text)
        : m_Text(text), m_Result(CProductUnit::one()) {}

    CUnitPtr parse() {
        const char* const end = m_Text.data() + m_Text.size();
        for (const char* position = m_Text.data(); position != end;) {
            const char* const at = position;
            const char_t c = detail::decodeUtf8(position, end);
            step(c, at, position);
        }
        step(U' ', end, end);  // flushes the last token
        commit();
        return m_Result;
    }

private:
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
            default:
                throw std::runtime_error("State " + std::to_string(m_State) + "unknown");
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

    void commit() {
        if (!m_Name.empty()) {
            multiplyName();
        }
        if (m_SlashPending) {
            m_Inverse = !m_Inverse;
        }
        m_Name = m_Power = m_Root = std::string_view();
        m_SlashPending = false;
    }

    void multiplyName() {
        const CUnitPtr unit = CUnitFormat::unitFor(string_t(std::string(m_Name)));
        if (!unit) {
            throw std::invalid_argument("Label: " + std::string(m_Name) + " not recognized");
        }
        // No number read is the smallest int, so its negation exists.
        const int pow = parseExponentBytes(m_Power);
        const int root = parseExponentBytes(m_Root);
        m_Result = m_Result->multiply(unit->pow(m_Inverse ? -pow : pow)->root(root));
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
    CUnitPtr m_Result;
};

const CProductUnit& requireProduct(const std::shared_ptr<CUnit>& unit) {
    const auto* product = dynamic_cast<const CProductUnit*>(unit.get());
    if (product == nullptr) {
        throw std::invalid_argument("Cannot format given Object as a Unit");
    }
    return *product;
}

}  // namespace

std::map<string_t, std::shared_ptr<CUnit>>& CUnitFormat::labelUnitMap() {
    static std::map<string_t, std::shared_ptr<CUnit>> LABEL_UNIT;
    return LABEL_UNIT;
}

std::map<std::shared_ptr<CUnit>, string_t>& CUnitFormat::unitLabelMap() {
    static std::map<std::shared_ptr<CUnit>, string_t> UNIT_LABEL;
    return UNIT_LABEL;
}

std::map<string_t, std::shared_ptr<CUnit>>& CUnitFormat::aliasUnitMap() {
    static std::map<string_t, std::shared_ptr<CUnit>> ALIAS_UNIT;
    return ALIAS_UNIT;
}

CUnitPtr CUnitFormat::label(CUnitPtr unit, const string_t& label) {
    requireUnit(unit, "CUnitFormat::label");
    const Lock lock(CUnit::mutex());
    auto& unitOf = labelUnitMap();
    auto& labelOf = unitLabelMap();
    if (!label.empty()) {
        if (CUnit::searchSymbol(label)) {
            throw std::invalid_argument("Label: " + mensor::toStdString(label) +
                                        " is a known symbol");
        }
        const auto holder = unitOf.find(label);
        if (holder != unitOf.end() && holder->second != unit) {
            throw std::invalid_argument("Label: " + mensor::toStdString(label) +
                                        " is attached to a different unit (must be detached first)");
        }
    }
    // Both new entries are made before the old ones go, so that a failing allocation changes nothing.
    std::map<string_t, std::shared_ptr<CUnit>> newUnitOf;
    newUnitOf.emplace(label, unit);
    std::map<std::shared_ptr<CUnit>, string_t> newLabelOf;
    newLabelOf.emplace(unit, label);

    const auto formerLabel = labelOf.find(unit);
    if (formerLabel != labelOf.end()) {
        unitOf.erase(formerLabel->second);
        labelOf.erase(formerLabel);
    }
    const auto formerUnit = unitOf.find(label);
    if (formerUnit != unitOf.end()) {
        labelOf.erase(formerUnit->second);
        unitOf.erase(formerUnit);
    }
    unitOf.merge(newUnitOf);
    labelOf.merge(newLabelOf);
    return unit;
}

CUnitPtr CUnitFormat::alias(CUnitPtr unit, string_t alias) {
    requireUnit(unit, "CUnitFormat::alias");
    const Lock lock(CUnit::mutex());
    aliasUnitMap().emplace(std::move(alias), unit);
    return unit;
}

string_t CUnitFormat::labelFor(CUnitPtr unit) {
    const Lock lock(CUnit::mutex());
    const auto found = unitLabelMap().find(unit);
    return found != unitLabelMap().end() ? found->second : unit->getSymbol();
}

std::shared_ptr<CUnit> CUnitFormat::unitFor(const string_t& text) {
    const Lock lock(CUnit::mutex());
    const auto labelled = labelUnitMap().find(text);
    if (labelled != labelUnitMap().end()) {
        return labelled->second;
    }
    const auto aliased = aliasUnitMap().find(text);
    if (aliased != aliasUnitMap().end()) {
        return aliased->second;
    }
    return CUnit::searchSymbol(text);
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

CUnitPtr CUnitFormat::parseUnit(const string_t& text) {
    return Parser(std::string_view(text.data(), text.size())).parse();
}

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
    static const CUnitFormatPtr Instance = std::make_shared<CStandardUnitFormat>();
    return Instance;
}

void CStandardUnitFormat::append(string_t& buffer, const string_t& symbol, int pow, int root) {
    buffer += symbol;
    if (pow == 1 && root == 1) {
        return;
    }
    if (pow == 2 && root == 1) {
        buffer += "²";
    } else if (pow == 3 && root == 1) {
        buffer += "³";
    } else {
        buffer += string_t("^" + std::to_string(pow));
        if (root != 1) {
            buffer += string_t(":" + std::to_string(root));
        }
    }
}

string_t CStandardUnitFormat::format(std::shared_ptr<CUnit> unit, string_t buffer) {
    const string_t name = labelFor(unit);
    if (!name.empty()) {
        buffer += name;
        return buffer;
    }
    const CProductUnit& product = requireProduct(unit);
    const auto start = buffer.size();
    int negatives = 0;
    for (int i = 0; i < product.size(); ++i) {
        const CUnitRationalPower factor = product.get(i);
        if (factor.getPow() < 0) {
            ++negatives;
            continue;
        }
        if (buffer.size() != start) {
            buffer += "·";
        }
        append(buffer, labelFor(factor.getUnit()), factor.getPow(), factor.getRoot());
    }
    if (negatives == 0) {
        return buffer;
    }
    if (buffer.size() == start) {
        buffer += "1";
    }
    buffer += "/";
    if (negatives > 1) {
        buffer += "(";
    }
    const auto mark = buffer.size();
    for (int i = 0; i < product.size(); ++i) {
        const CUnitRationalPower factor = product.get(i);
        if (factor.getPow() >= 0) {
            continue;
        }
        if (buffer.size() != mark) {
            buffer += "·";
        }
        append(buffer, labelFor(factor.getUnit()), -factor.getPow(), factor.getRoot());
    }
    if (negatives > 1) {
        buffer += ")";
    }
    return buffer;
}

CUnitFormatPtr CASCIIUnitFormat::instance() {
    static const CUnitFormatPtr Instance = std::make_shared<CASCIIUnitFormat>();
    return Instance;
}

string_t CASCIIUnitFormat::format(std::shared_ptr<CUnit> unit, string_t buffer) {
    const string_t name = labelFor(unit);
    if (!name.empty()) {
        buffer += name;
        return buffer;
    }
    const CProductUnit& product = requireProduct(unit);
    const auto start = buffer.size();
    for (int i = 0; i < product.size(); ++i) {
        const CUnitRationalPower factor = product.get(i);
        if (buffer.size() != start) {
            buffer += " ";
        }
        buffer += labelFor(factor.getUnit());
        if (factor.getPow() != 1 || factor.getRoot() != 1) {
            buffer += string_t("^" + std::to_string(factor.getPow()));
            if (factor.getRoot() != 1) {
                buffer += string_t(":" + std::to_string(factor.getRoot()));
            }
        }
    }
    return buffer;
}

}  // namespace mensor
