#include "mensor_checked/Names.h"

#include <unordered_map>
#include <utility>

#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/everyday_names.h"
#include "mensor_exact/Definitions.h"
#include "mensor_exact/Spelling.h"

namespace mensor::checked {

namespace {

CUnitPtr lookUp(std::string_view name) { return CUnitFormat::unitFor(std::string(name)); }

std::string_view bytes(const string_t& text) { return {text.data(), text.size()}; }

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// Returns whether `name` is the litre, with or without a prefix, and `unit` has the meaning that
// the table of definitions gives it.
bool isLitre(const CUnitPtr& unit, std::string_view name) {
    const auto row = exact::CCatalogue::builtIn().meaning(name);
    return row && tryMeaningOf(unit) == row;
}

CUnitPtr registeredUnit(std::string_view name) {
    CUnitPtr unit = exact::lookUpSpellings(name, [name](std::string_view spelling) {
        const CUnitPtr found = lookUp(spelling);
        const bool isFolded = name.back() == 'L' && spelling.back() == 'l';
        return found && isFolded && !isLitre(found, spelling) ? nullptr : found;
    });
    return unit == nullptr && name == "One" ? CProductUnit::one() : unit;
}

CName makeName(std::string_view name) {
    CName known{registeredUnit(name), lookUp(name) != nullptr, false, std::nullopt};
    if (known.Unit) {
        known.HasOffset = hasOffset(known.Unit);
        known.Prefixed = prefixedOffset(name, known.Unit);
    }
    return known;
}

// The cache of knownName(). It holds only names that the library knows exactly as spelled. Other
// names are not stored, because a new symbol may make them known without a change of the version.
//
// Never destroyed, because threads and statics of clients may still read units while the process ends.
std::unordered_map<std::string, CName>& cachedNames = *new std::unordered_map<std::string, CName>;
unsigned versionOfNames = 0;
CName& uncachedName = *new CName;

}  // namespace

CUnitPtr unitNamed(std::string_view name) {
    return isLateName(name) ? NonSI::Psi() : registeredUnit(name);
}

CUnitPtr unitRead(std::string_view name) {
    CUnitPtr unit = unitNamed(name);
    std::string fault;
    return unit == nullptr && everydayMeaning(name) ? everydayUnit(name, fault) : unit;
}

bool isLateName(std::string_view name) { return name == "psi" && lookUp(name) == nullptr; }

bool hasOffset(const CUnitPtr& unit) {
    const auto* transformed = dynamic_cast<CTransformedUnit*>(unit.get());
    return transformed != nullptr && transformed->toSystem()->convert(0.0) != 0.0;
}

CUnitPtr differenceOf(const CUnitPtr& unit) {
    const auto& scale = dynamic_cast<CTransformedUnit&>(*unit);
    if (scale.toSystem()->derivative(0.0) == 1.0) {
        return unit->getSystemUnit();
    }
    return unit->getCtxToDimension()->isLinear() ? unit : nullptr;
}

std::optional<CPrefixedOffset> prefixedOffset(std::string_view name, const CUnitPtr& unit) {
    if (dynamic_cast<CTransformedUnit*>(unit.get()) == nullptr) {
        return std::nullopt;
    }
    const std::string ours = exact::respelled(name);
    for (const CPrefix& prefix : prefixes()) {
        const std::string_view symbol = bytes(prefix.Symbol);
        if (!startsWith(ours, symbol) || ours.size() == symbol.size()) {
            continue;
        }
        const std::string rest = ours.substr(symbol.size());
        const CUnitPtr scale = lookUp(rest);
        if (scale && hasOffset(scale) && !hasOffset(unit) &&
            scale->getSystemUnit() == unit->getSystemUnit()) {
            return CPrefixedOffset{std::string(symbol), rest};
        }
    }
    return std::nullopt;
}

const CName* knownName(std::string_view name) {
    const unsigned version = CUnitFormat::namesVersion();
    if (version == 0 || version != versionOfNames) {
        cachedNames.clear();
        versionOfNames = version;
    }
    std::string key(name);
    const auto found = cachedNames.find(key);
    if (found != cachedNames.end()) {
        return &found->second;
    }
    uncachedName = makeName(name);
    if (!uncachedName.Unit) {
        return nullptr;
    }
    return uncachedName.IsExact ? &cachedNames.emplace(std::move(key), uncachedName).first->second
                                : &uncachedName;
}

void addNamesTo(exact::CNearestNames& nearest) {
    for (const auto& [label, unit] : CUnitFormat::names()) {
        const std::string_view name = bytes(label);
        if (nearest.isNear(name) && !prefixedOffset(name, unit)) {
            nearest.add(name);
        }
    }
    addEverydayNamesTo(nearest);
}

std::vector<std::string> namesOf(const CUnitPtr& unit) {
    std::vector<std::string> names;
    for (const auto& [name, named] : CUnitFormat::names()) {
        if (named == unit && !name.empty()) {
            names.push_back(mensor::toStdString(name));
        }
    }
    std::string everyday = everydayNameOf(unit);
    if (!everyday.empty()) {
        names.push_back(std::move(everyday));
    }
    return names;
}

}  // namespace mensor::checked
