// Choosing.h: which units there are for a quantity, and which of them suits a value.
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

namespace mensor {
namespace checked {

/// One entry of a drop-down list.
struct CChoice {
    CUnitPtr Unit;
    std::string Text;  ///< reads back as the same object
    double Factor;     ///< its size in the unit that was asked about, the double nearest to it
};

/// All units with a label or symbol that are compatible with `unit`, by size, then by text. Units
/// without a text that reads back are left out.
/// @throws std::invalid_argument  `unit` is empty.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API std::vector<CChoice> choicesFor(const CUnitPtr& unit);

/// The unit in which `value`, given in `unit`, reads best: of the units that differ from it by a
/// prefix for a power of 1000, the largest in which the value is at least 1; the smallest if there is
/// none.
///
/// A value within a relative 1e-12 of 1 counts as 1, so that 0.001 m is 1 mm however it was computed,
/// and the unit chosen is chosen again for the converted value. Zero, NaN, infinity, units with an
/// offset and units that have no prefixed forms stay as they are.
/// @throws std::invalid_argument  `unit` is empty.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API CUnitPtr readableUnit(double value, const CUnitPtr& unit);

/// `value` converted to its readableUnit, rounded once (Converting.h). A finite value stays finite.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API CValueWithUnit readable(const CValueWithUnit& value);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_CHOOSING_H
