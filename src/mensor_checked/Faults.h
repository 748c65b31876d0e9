// Faults.h: finds units that the library would convert wrongly. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_FAULTS_H
#define MENSOR_CHECKED_FAULTS_H

#include <optional>
#include <string>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor::checked {

/// How the library would convert a unit wrongly.
struct CFault {
    CUnitPtr
        Dimension;  ///< the wrong dimension that the library gives the unit; none if the dimension is right
    std::string Known;  ///< the meaning that follows from that dimension and the converter to it
};

/// Compares the dimension of `unit` and the converter to it with its meaning, `meaning`, within rounding
/// (Rounding.h). Dimensions set by CBaseUnit::setDimension count. Returns none if the library converts the
/// unit correctly. Passes on what the library throws. The caller holds the lock.
std::optional<CFault> faultOf(const CUnitPtr& unit, const CMeaning& meaning);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_FAULTS_H
