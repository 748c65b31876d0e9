// Audit.h: a project's list of units, checked as a whole.
//
//     for (const auto& finding : checked::audit({"m·K", "1/(m·K)", "1/s²"}))
//         std::cerr << finding.Refusal.message() << '\n';
//
// Run it in a fresh process, after registering what the project registers. If it finds nothing, no
// order of reading these texts meets a collision: the units, their parts and their dimensions are all
// registered by then, each under a hash code of its own, and which ones they are does not depend on
// the order. If it finds something, each finding names a text and the unit in its way; the order of
// the list decides which of the two is the finding.
#ifndef MENSOR_CHECKED_AUDIT_H
#define MENSOR_CHECKED_AUDIT_H

#include <cstddef>
#include <string>
#include <vector>

#include "mensor_checked/Reading.h"
#include "mensor_checked/checked_export.h"

namespace mensor {
namespace checked {

/// One text of a list that cannot be used.
struct CFinding {
    std::size_t Index;   ///< of the text in the list, from 0
    CDiagnosis Refusal;  ///< COLLISION and DIMENSION_COLLISION, or any other reason
};

/// Reads all of `texts` in their order, and gives those that are refused.
/// @par Threads  Any thread, locks CUnit::mutex() for each text (see WarmUp.h).
MENSOR_CHECKED_API std::vector<CFinding> audit(const std::vector<std::string>& texts,
                                               const CReadOptions& options = {});

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_AUDIT_H
