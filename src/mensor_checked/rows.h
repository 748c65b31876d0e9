// rows.h: finds the row of a unit in the table of definitions. For the companion's own use; not installed.
//
// The caller of every function holds the lock.
#ifndef MENSOR_CHECKED_ROWS_H
#define MENSOR_CHECKED_ROWS_H

#include <optional>
#include <string_view>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor::checked {

/// Returns the meaning of `unit` by its row, or none if neither the catalogue nor a pack has made it.
std::optional<CMeaning> rowOf(CUnit& unit);

/// Sets the row of `unit`, which a pack has made.
void setRow(const CUnitPtr& unit, const CMeaning& row);

/// Returns the unit in a definition: "K" for "5/9 K, offset 459.67", "" for a number alone.
std::string_view unitUnder(std::string_view definition);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_ROWS_H
