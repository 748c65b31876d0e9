// invariants.h: checks the invariants of the tables of the process, which hold after any call that
// returned, was refused or threw. Needs no GoogleTest.
//
//     EXPECT_EQ(test::brokenInvariant(), "");
#ifndef MENSOR_TESTS_INVARIANTS_H
#define MENSOR_TESTS_INVARIANTS_H

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

#include "mensor/ProductUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/mensor_global.h"
#include "support/Inside.h"

namespace mensor::test {

/// Describes the first invariant that is broken. Empty if none is. Changes no table.
///
/// Looking at the tables switches the caches of the library off. A test that needs the caches calls
/// `brokenName` instead. The function expects that units with a label or an alias of a client are
/// registered.
inline std::string brokenInvariant() {
    const std::lock_guard<std::recursive_mutex> lock(CUnit::mutex());
    const CUnitPtr one = CProductUnit::one();
    const auto& instances = CUnit::instances();
    const auto isCanonical = [&](const CUnitPtr& unit) {
        const auto found = unit ? instances.find(unit->hashCode()) : instances.end();
        return found != instances.end() && found->second == unit;
    };
    const auto named = [](const string_t& name) {
        return " \"" + mensor::toStdString(name) + "\"";
    };

    // The instances: each under its hash code, with ids from 2 in the order of registration. The
    // dimensionless unit is counted as the first, but has no id.
    std::vector<bool> isTaken(instances.size() + 1);
    for (const auto& [hash, unit] : instances) {
        const std::string which = " of the unit under the hash " + std::to_string(hash);
        if (!unit) {
            return "no unit under the hash " + std::to_string(hash);
        }
        if (unit->hashCode() != hash) {
            return "a different hash code" + which;
        }
        unit->calculateHashCode();
        if (unit->hashCode() != hash) {
            return "a different computed hash code" + which;
        }
        const int id = Inside::id(unit);
        if (unit == one ? id != 0 : id < 2 || static_cast<std::size_t>(id) > instances.size()) {
            return "the wrong id " + std::to_string(id) + which;
        }
        if (isTaken[static_cast<std::size_t>(id)]) {
            return "the id " + std::to_string(id) + " for the second time" + which;
        }
        isTaken[static_cast<std::size_t>(id)] = true;
        for (const auto* cache : {&Inside::multiplyLookUp(unit), &Inside::divideLookUp(unit),
                                  &Inside::rootLookUp(unit), &Inside::powLookUp(unit)}) {
            for (const CUnitPtr& result : *cache) {
                if (result && !isCanonical(result)) {
                    return "an unregistered result in a cache" + which;
                }
            }
        }
        const string_t& symbol = Inside::symbol(unit);
        if (unit != one && !symbol.empty() && CUnit::symbols().count(symbol) == 0) {
            return "the table of symbols lacks" + named(symbol);
        }
    }
    if (!isCanonical(one)) {
        return "the dimensionless unit is not registered";
    }

    for (const auto& [symbol, unit] : CUnit::symbols()) {
        if (symbol.empty() || !isCanonical(unit) || Inside::symbol(unit) != symbol) {
            return "no registered unit has the symbol" + named(symbol);
        }
    }

    // The two tables of labels are inverse.
    const auto& unitLabels = CUnitFormat::unitLabelMap();
    for (const auto& [label, unit] : CUnitFormat::labelUnitMap()) {
        if (!isCanonical(unit)) {
            return "an unregistered unit has the label" + named(label);
        }
        const auto back = unitLabels.find(unit);
        if (back == unitLabels.end() || back->second != label) {
            return "the unit does not have the label" + named(label);
        }
    }
    if (unitLabels.size() != CUnitFormat::labelUnitMap().size()) {
        return "a unit has a label that belongs to another unit or to none";
    }
    for (const auto& [alias, unit] : CUnitFormat::aliasUnitMap()) {
        if (!isCanonical(unit)) {
            return "an unregistered unit has the alias" + named(alias);
        }
    }

    // The tables of dimensions. A converter may be missing, because its unit threw.
    for (const auto& [unit, dimension] : CUnit::dimensions()) {
        if (!isCanonical(unit) || !isCanonical(dimension)) {
            return "an unregistered unit or dimension in the table of dimensions";
        }
    }
    for (const auto& [unit, converter] : CUnit::toDimensions()) {
        if (!isCanonical(unit)) {
            return "an unregistered unit in the table of converters to dimensions";
        }
    }
    return "";
}

/// The same for the names, without looking at the tables: each name denotes a registered unit,
/// which is found by its hash code.
inline std::string brokenName() {
    const CUnitPtr one = CProductUnit::one();
    for (const auto& [name, unit] : CUnitFormat::names()) {
        const bool isRegistered = unit && (unit == one || Inside::id(unit) >= 2);
        if (!isRegistered || (unit != one && Inside::canonical(unit) != unit)) {
            return "no registered unit has the name \"" + mensor::toStdString(name) + "\"";
        }
        if (CUnitFormat::unitFor(name) != unit) {
            return "another unit has the name \"" + mensor::toStdString(name) + "\"";
        }
    }
    return "";
}

}  // namespace mensor::test

#endif  // MENSOR_TESTS_INVARIANTS_H
