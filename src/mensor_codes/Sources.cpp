#include "mensor_codes/Sources.h"

namespace mensor::codes {

#define MENSOR_SOURCE(id, text) \
    case eSource::id:           \
        return text;
#define MENSOR_REASON(id, text) MENSOR_SOURCE(id, text)
std::string_view textOf(eSource source) {
    switch (source) {
#include "mensor_codes/sources.def"
    }
    return {};
}
#undef MENSOR_SOURCE
#undef MENSOR_REASON

}  // namespace mensor::codes
