// Rows.h: which unit of the registry is which row of the table of definitions. For the companion's own
// use; not installed.
//
// The caller of every function holds the lock.
#ifndef MENSOR_CHECKED_ROWS_H
#define MENSOR_CHECKED_ROWS_H

#include <optional>
#include <string_view>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor {
namespace checked {

/// What `unit` means by its row, if the library's catalogue or a pack has made it.
std::optional<CMeaning> rowOf(CUnit& unit);

/// From now on `unit` means `row`: a pack has made it.
void setRow(const CUnitPtr& unit, const CMeaning& row);

/// What stands behind the number of a definition: "K" of "5/9 K, offset 459.67", nothing of a number
/// alone.
std::string_view unitUnder(std::string_view definition);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_ROWS_H
