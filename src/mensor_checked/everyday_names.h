// everyday_names.h: names of the pack EVERYDAY, which the registry does not have. For the companion's own
// use; not installed.
//
// The caller of every function holds the lock.
#ifndef MENSOR_CHECKED_EVERYDAY_NAMES_H
#define MENSOR_CHECKED_EVERYDAY_NAMES_H

#include <optional>
#include <string>
#include <string_view>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"
#include "mensor_exact/NearestNames.h"

namespace mensor::checked {

/// Makes a unit with this meaning. If another unit has its hash code, returns nothing and names that unit in
/// `fault`.
using MakeUnit = CUnitPtr (*)(const CMeaning& meaning, std::string& fault);

/// Lets the names be read from now on. `make` makes their units.
void readEverydayNames(MakeUnit make);

/// What a name of the pack means. None if the names are not read, or the pack has no such name.
std::optional<CMeaning> everydayMeaning(std::string_view name);

/// Returns the unit of a name of the pack. The first call makes the unit; it has no label. If another unit
/// prevents this, returns nothing and names that unit in `fault`.
CUnitPtr everydayUnit(std::string_view name, std::string& fault);

/// The first name by which everydayUnit() gave this unit, empty if it did not.
std::string everydayNameOf(const CUnitPtr& unit);

/// Adds all names of the pack, if they are read.
void addEverydayNamesTo(exact::CNearestNames& nearest);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_EVERYDAY_NAMES_H
