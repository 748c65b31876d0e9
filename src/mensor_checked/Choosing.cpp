#include "mensor_checked/Choosing.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>

#include "mensor/UnitFormat.h"
#include "mensor_checked/Lock.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Rounding.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/converting.h"
#include "mensor_checked/words.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/Spelling.h"

namespace mensor::checked {

namespace {

bool isClose(double a, double b) { return std::fabs(a - b) <= 1e-12 * std::fabs(b); }

bool isPowerOf1000(const exact::CPrefix& prefix) { return prefix.Power % 3 == 0; }

// Returns the conversion of differences from one unit to the other.
exact::CConversion ratio(const CUnitPtr& from, const CUnitPtr& to) {
    return {meaningOf(from).difference(), meaningOf(to).difference()};
}

std::set<CUnitPtr> namedUnits() {
    std::set<CUnitPtr> units;
    for (const auto& [name, unit] : CUnitFormat::names()) {
        units.insert(unit);
    }
    return units;
}

// Returns true if `unit` is `prefix` times `root`. Allows rounding errors in the factors of a client.
bool isPrefixed(const CUnitPtr& unit, const exact::CPrefix& prefix, const CUnitPtr& root) {
    const exact::CFactor ten(exact::CFraction(10));
    const std::optional<CMeaning> meaning = tryMeaningOf(unit);
    const std::optional<CMeaning> ofRoot = tryMeaningOf(root);
    return meaning && ofRoot && areSame(*meaning, ofRoot->scaled(ten.power(prefix.Power)), unit);
}

// Returns the unit whose name is `prefix` followed by `name`, if it is `prefix` times `root`; else none.
CUnitPtr prefixedForm(const exact::CPrefix& prefix, const std::string& name, const CUnitPtr& root) {
    const CUnitPtr unit = unitNamed(std::string(prefix.Symbol) + name);
    const bool isForm = unit && isPrefixed(unit, prefix, root) && textOf(unit);
    return isForm ? unit : nullptr;
}

// Returns the unit that `unit` is a prefixed form of, and its name. Returns `unit` itself if there is none.
std::pair<CUnitPtr, std::string> rootOf(const CUnitPtr& unit, const std::string& text) {
    for (const exact::CPrefix& prefix : exact::Prefixes) {
        const std::string symbol = std::string(prefix.Symbol);
        if (text.size() <= symbol.size() || text.compare(0, symbol.size(), symbol) != 0) {
            continue;
        }
        const std::string name = text.substr(symbol.size());
        const CUnitPtr root = unitNamed(name);
        if (root && isPrefixed(unit, prefix, root)) {
            return {root, name};
        }
    }
    return {unit, text};
}

}  // namespace

std::vector<CChoice> choicesFor(const CUnitPtr& unit) {
    requireUnit(unit, "choicesFor");
    const Lock lock;
    unitNamed("psi");  // registers it: the library names the psi only on demand
    const CMeaning meaning = meaningOf(unit);
    std::vector<CChoice> choices;
    for (const CUnitPtr& candidate : namedUnits()) {
        // The library compares dimensions by hash codes alone, so this compares the meanings, too.
        const std::optional<CMeaning> own = tryMeaningOf(candidate);
        if (!own || !own->isCompatibleWith(meaning) || !unit->isCompatible(candidate)) {
            continue;
        }
        if (auto text = textOf(candidate)) {
            choices.push_back({candidate, std::move(*text), ratio(candidate, unit).convert(1.0)});
        }
    }
    std::sort(choices.begin(), choices.end(), [](const CChoice& a, const CChoice& b) {
        return std::tie(a.Factor, a.Text) < std::tie(b.Factor, b.Text);
    });
    return choices;
}

CUnitPtr readableUnit(double value, const CUnitPtr& unit) {
    requireUnit(unit, "readableUnit");
    const Lock lock;
    if (!std::isfinite(value) || value == 0.0 || hasOffset(unit)) {
        return unit;
    }
    const std::optional<std::string> text = textOf(unit);
    if (!text) {
        return unit;
    }
    const auto [root, name] = rootOf(unit, *text);
    std::vector<CUnitPtr> family;  // largest first
    bool isRootIn = false;
    for (const exact::CPrefix& prefix : exact::Prefixes) {
        if (!isRootIn && prefix.Power < 0) {
            family.push_back(root);
            isRootIn = true;
        }
        if (!isPowerOf1000(prefix)) {
            continue;
        }
        if (const CUnitPtr form = prefixedForm(prefix, name, root)) {
            family.push_back(form);
        }
    }
    if (family.size() == 1) {
        return unit;
    }
    for (const CUnitPtr& member : family) {
        const double converted = std::fabs(ratio(unit, member).convert(value));
        if (std::isfinite(converted) && (converted >= 1.0 || isClose(converted, 1.0))) {
            return member;
        }
    }
    return std::isfinite(ratio(unit, family.back()).convert(value)) ? family.back() : unit;
}

CValueWithUnit readable(const CValueWithUnit& value) {
    const Lock lock;
    const CUnitPtr unit = readableUnit(value.value(), value.unit());
    return {converter(value.unit(), unit)->convert(value.value()), unit};
}

}  // namespace mensor::checked
