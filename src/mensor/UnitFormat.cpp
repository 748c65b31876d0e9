// UnitFormat.cpp: labels, aliases and the two notations. The parser is in UnitParser.cpp.
#include "mensor/UnitFormat.h"

#include <charconv>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "mensor/Kept.h"
#include "mensor/ProductUnit.h"
#include "mensor/Tables.h"
#include "mensor/UnitParser.h"
#include "mensor/require.h"

namespace mensor {

using detail::CUnitParser;
using detail::Lock;
using detail::tables;

namespace {

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
    // A pointer, because tiny-utf8 treats an array as a literal and appends all its characters.
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
    return detail::tablesHandedOut.load(std::memory_order_acquire) ? 0 : epoch;
}

// From here on the client may change the table without the library noticing.
std::map<string_t, std::shared_ptr<CUnit>>& CUnitFormat::labelUnitMap() {
    detail::tablesHandedOut.store(true);
    return tables().LabelUnit;
}

std::map<std::shared_ptr<CUnit>, string_t>& CUnitFormat::unitLabelMap() {
    detail::tablesHandedOut.store(true);
    return tables().UnitLabel;
}

std::map<string_t, std::shared_ptr<CUnit>>& CUnitFormat::aliasUnitMap() {
    detail::tablesHandedOut.store(true);
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
    // A failing allocation must change nothing. So all allocations come first: a copy of the label,
    // and the nodes for the new entries.
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
        labelOf.erase(holder->second);  // the unit that had the empty label loses it
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

CUnitPtr CUnitFormat::parseUnit(const string_t& text) { return CUnitParser::parse(text); }

bool CUnitFormat::isUnitIdentifierPart(char_t c) {
    return c > 0x22 && !(c >= 0x26 && c <= 0x3F) && c != U'^' && c != U'²' && c != U'³' &&
           c != U'·' && c != U'¹';
}

bool CUnitFormat::isExponent(char_t c) {
    return (c >= U'0' && c <= U'9') || c == U'-' || c == U'¹' || c == U'²' || c == U'³';
}

int CUnitFormat::parseExponent(const string_t& text) {
    return CUnitParser::parseExponent(std::string_view(text.data(), text.size()));
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

// Holds the mutex while it reads all names, so that no label changes in between.
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
