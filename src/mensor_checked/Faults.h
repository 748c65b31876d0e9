// Faults.h: units that the library would convert wrongly. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_FAULTS_H
#define MENSOR_CHECKED_FAULTS_H

#include <optional>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor {
namespace checked {

/// A unit that the library would convert wrongly.
struct CDimensionFault {
    CUnitPtr Dimension;  ///< what the library takes for its dimension
    CMeaning Known;      ///< what the unit means by that dimension and the converter to it
};

/// Compares the dimension of `unit` and the converter to it with `meaning`, its meaning, in the
/// current context. Passes on what the library throws. The caller holds the lock.
std::optional<CDimensionFault> dimensionFault(const CUnitPtr& unit, const CMeaning& meaning);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_FAULTS_H
