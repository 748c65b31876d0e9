// unit_reader.h: reads one unit or one meaning. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_UNIT_READER_H
#define MENSOR_CHECKED_UNIT_READER_H

#include <string_view>

#include "mensor_checked/Reading.h"

namespace mensor::checked {

/// Does the work of tryReadUnit. With `isKept`, the result stays in the cache (ReadingCache.h) for good.
/// The caller holds the lock.
CReading read(std::string_view text, const CReadOptions& options, bool isKept);

/// Does the work of tryReadMeaning. The caller holds the lock.
CMeaningReading readForMeaning(std::string_view text, const CReadOptions& options);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_UNIT_READER_H
