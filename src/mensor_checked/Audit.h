// Audit.h: checks all units of a project for collisions.
//
//     for (const auto& finding : checked::audit({"m·K", "1/(m·K)", "1/s²"}))
//         std::cerr << finding.Refusal.message() << '\n';
//
// Run it in a fresh process, after the project has registered its units and packs. If it finds nothing, no
// order of reading these texts leads to a collision: all these units, their parts and their dimensions
// are then registered, and each has its own hash code. The hash codes do not depend on the order.
// Otherwise each finding names a text and the unit that it collides with. The text that comes later in
// the list is the one reported.
#ifndef MENSOR_CHECKED_AUDIT_H
#define MENSOR_CHECKED_AUDIT_H

#include <cstddef>
#include <string>
#include <vector>

#include "mensor_checked/Reading.h"
#include "mensor_checked/checked_export.h"

namespace mensor::checked {

/// One text of a list that cannot be used.
struct CFinding {
    std::size_t Index;   ///< the index of the text in the list, from 0
    CDiagnosis Refusal;  ///< COLLISION, DIMENSION_COLLISION or any other refusal
};

/// Reads all `texts` in order and returns those that are refused.
/// @par Threads  Any thread, locks CUnit::mutex() for each text (see warm_up.h).
MENSOR_CHECKED_API std::vector<CFinding> audit(const std::vector<std::string>& texts,
                                               const CReadOptions& options = {});

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_AUDIT_H
