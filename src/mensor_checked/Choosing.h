// Choosing.h: lists the units of a quantity, and chooses the most readable unit for a value.
//
//     for (const auto& choice : checked::choicesFor(SI::Pascal())) list.add(choice.Text);
//     checked::readable(CValueWithUnit(1e-6, SI::Meter()));            // 1 µm
//     checked::readable(CValueWithUnit(0.00025, SI::Newton()));        // 250 µN
#ifndef MENSOR_CHECKED_CHOOSING_H
#define MENSOR_CHECKED_CHOOSING_H

#include <string>
#include <vector>

#include "mensor/Unit.h"
#include "mensor/ValueWithUnit.h"
#include "mensor_checked/checked_export.h"

namespace mensor::checked {

/// One entry of a drop-down list.
struct CChoice {
    CUnitPtr Unit;
    std::string Text;  ///< reads back as the same object
    double Factor;     ///< its size in the unit passed to choicesFor(); the nearest double
};

/// Returns all units with a label or symbol that are compatible with `unit`, sorted by size, then by text.
/// Units without a text that reads back are left out.
/// @throws std::invalid_argument  `unit` is empty.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API std::vector<CChoice> choicesFor(const CUnitPtr& unit);

/// Returns the unit in which `value`, given in `unit`, is easiest to read. The candidates are the units
/// that differ by a prefix for a power of 1000. The result is the largest one in which the value is at
/// least 1, or the smallest one if there is none.
///
/// A value within a relative 1e-12 of 1 counts as 1, so 0.001 m is 1 mm even after rounding. Calling this
/// again with the converted value gives the same unit. Returns `unit` for zero, NaN, infinity, offset
/// units and units without prefixed forms.
/// @throws std::invalid_argument  `unit` is empty.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API CUnitPtr readableUnit(double value, const CUnitPtr& unit);

/// Returns `value` converted to its readableUnit, rounded once (converting.h). A finite value stays finite.
/// @throws std::invalid_argument  the unit of `value` is empty.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API CValueWithUnit readable(const CValueWithUnit& value);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_CHOOSING_H
