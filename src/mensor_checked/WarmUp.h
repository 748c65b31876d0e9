// WarmUp.h: start-up for programs that must not lose time later.
//
//     checked::warmUp({"km/h", "W/(m²·K)", "N·m"});            // before it matters
//
// What is read, made or converted for the first time takes longer than what is known, and holds
// CUnit::mutex() meanwhile. warmUp() does all of that beforehand.
#ifndef MENSOR_CHECKED_WARMUP_H
#define MENSOR_CHECKED_WARMUP_H

#include <string>
#include <vector>

#include "mensor_checked/Audit.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/checked_export.h"

namespace mensor {
namespace checked {

/// Does on this thread all lazy work for every unit with a label, an alias or a symbol, and for the
/// given texts, so that afterwards reading, converting and writing these never takes a first-time
/// path. Gives the texts that are refused, as audit does.
///
/// Idempotent. A client that registers units, or changes a base unit's dimension, calls it again.
/// @par Threads  Any thread, locks CUnit::mutex() for all its work.
MENSOR_CHECKED_API std::vector<CFinding> warmUp(const std::vector<std::string>& texts = {},
                                                const CReadOptions& options = {});

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_WARMUP_H
