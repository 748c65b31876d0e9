// warm_up.h: does slow work at start-up, for programs that must be fast later.
//
//     checked::warmUp({"km/h", "W/(m²·K)", "N·m"});
//
// The first reading, making or converting of a unit takes longer than later ones, and holds CUnit::mutex()
// all the time. warmUp() does this first work in advance.
#ifndef MENSOR_CHECKED_WARM_UP_H
#define MENSOR_CHECKED_WARM_UP_H

#include <string>
#include <vector>

#include "mensor_checked/Audit.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/checked_export.h"

namespace mensor::checked {

/// Reads each unit with a label, an alias or a symbol, and each of `texts`, and fills all caches for them.
/// After that, reading, converting and writing these units is fast from the start. Returns the texts that
/// are refused, as audit does.
///
/// Calling it twice does no harm. Call it again after registering units or changing the dimension of a base
/// unit.
/// @par Threads  Any thread, locks CUnit::mutex() for all its work.
MENSOR_CHECKED_API std::vector<CFinding> warmUp(const std::vector<std::string>& texts = {},
                                                const CReadOptions& options = {});

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_WARM_UP_H
