// Faults.h: units that the library would convert wrongly. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_FAULTS_H
#define MENSOR_CHECKED_FAULTS_H

#include <optional>
#include <string>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor {
namespace checked {

/// How the library would convert a unit wrongly.
struct CFault {
    CUnitPtr Dimension;  ///< what the library takes for its dimension, if that is another one's
    std::string Known;   ///< what the unit means by its dimension and the converter to it
};

/// Compares the dimension of `unit` and the converter to it with `meaning`, its meaning, in the
/// current context, within the stated rounding (Rounding.h). Passes on what the library throws. The
/// caller holds the lock.
std::optional<CFault> faultOf(const CUnitPtr& unit, const CMeaning& meaning);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_FAULTS_H
