#include "mensor_checked/Reading.h"

#include <utility>

#include "mensor_checked/Lock.h"
#include "mensor_checked/unit_reader.h"

namespace mensor::checked {

CReading tryReadUnit(std::string_view text, const CReadOptions& options) {
    const Lock lock;
    return read(text, options, false);
}

CUnitPtr readUnit(std::string_view text, const CReadOptions& options) {
    CReading reading = tryReadUnit(text, options);
    if (reading.Refusal) {
        throw CReadError(std::move(*reading.Refusal));
    }
    return reading.Unit;
}

CMeaningReading tryReadMeaning(std::string_view text, const CReadOptions& options) {
    const Lock lock;
    return readForMeaning(text, options);
}

CMeaning readMeaning(std::string_view text, const CReadOptions& options) {
    CMeaningReading reading = tryReadMeaning(text, options);
    if (reading.Refusal) {
        throw CReadError(std::move(*reading.Refusal));
    }
    return *std::move(reading.Meaning);
}

}  // namespace mensor::checked
