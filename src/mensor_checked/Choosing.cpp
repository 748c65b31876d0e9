#include "mensor_checked/Choosing.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>

#include "mensor/UnitFormat.h"
#include "mensor_checked/Differences.h"
#include "mensor_checked/Lock.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/Words.h"

namespace mensor {
namespace checked {

namespace {

bool isClose(double a, double b) { return std::fabs(a - b) <= 1e-12 * std::fabs(b); }

bool isPowerOf1000(const CPrefix& prefix) {
    return prefix.Factor >= 1000.0 || prefix.Factor <= 0.001;
}

std::set<CUnitPtr> namedUnits() {
    std::set<CUnitPtr> units;
    for (const auto& [name, unit] : CUnitFormat::names()) {
        units.insert(unit);
    }
    return units;
}

// The unit named `prefix` and `name`, if it is `prefix` times the unit `root` of that name.
CUnitPtr prefixedForm(const CPrefix& prefix, const std::string& name, const CUnitPtr& root) {
    const CUnitPtr unit = unitNamed(mensor::toStdString(prefix.Symbol) + name);
    const bool isForm = unit && !hasOffset(unit) &&
                        meaningOf(unit) == meaningOf(root).scaled(prefix.Factor) && textOf(unit);
    return isForm ? unit : nullptr;
}

// The unit without prefix of which `unit` is a prefixed form, and its name; `unit` itself if none.
std::pair<CUnitPtr, std::string> rootOf(const CUnitPtr& unit, const std::string& text) {
    for (const CPrefix& prefix : prefixes()) {
        const std::string symbol = mensor::toStdString(prefix.Symbol);
        if (text.size() <= symbol.size() || text.compare(0, symbol.size(), symbol) != 0) {
            continue;
        }
        const std::string name = text.substr(symbol.size());
        const CUnitPtr root = unitNamed(name);
        if (root && !hasOffset(root) && meaningOf(unit) == meaningOf(root).scaled(prefix.Factor)) {
            return {root, name};
        }
    }
    return {unit, text};
}

}  // namespace

std::vector<CChoice> choicesFor(const CUnitPtr& unit) {
    requireUnit(unit, "choicesFor");
    const Lock lock;
    const CMeaning meaning = meaningOf(unit);
    std::vector<CChoice> choices;
    for (const CUnitPtr& candidate : namedUnits()) {
        // The meaning is asked, too: the library tells dimensions apart by their hash codes alone.
        if (!meaningOf(candidate).hasDimensionOf(meaning) || !unit->isCompatible(candidate)) {
            continue;
        }
        if (auto text = textOf(candidate)) {
            choices.push_back({candidate, std::move(*text), convertDifference(1, candidate, unit)});
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
    for (const CPrefix& prefix : prefixes()) {
        if (!isRootIn && prefix.Factor < 1.0) {
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
        const double converted = std::fabs(convertDifference(value, unit, member));
        if (converted >= 1.0 || isClose(converted, 1.0)) {
            return member;
        }
    }
    return family.back();
}

CValueWithUnit readable(const CValueWithUnit& value) {
    const Lock lock;
    return value.convertTo(readableUnit(value.value(), value.unit()));
}

}  // namespace checked
}  // namespace mensor
