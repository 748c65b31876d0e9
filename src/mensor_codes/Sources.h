// Sources.h: the sources and reasons in the tables of codes. For the library's own use; not installed.
#ifndef MENSOR_CODES_SOURCES_H
#define MENSOR_CODES_SOURCES_H

#include <cstdint>
#include <string_view>

namespace mensor::codes {

enum class eSource : std::uint8_t {
#define MENSOR_SOURCE(id, text) id,
#define MENSOR_REASON(id, text) id,
#include "mensor_codes/sources.def"
#undef MENSOR_SOURCE
#undef MENSOR_REASON
};

/// Returns the text in sources.def.
std::string_view textOf(eSource source);

}  // namespace mensor::codes

#endif  // MENSOR_CODES_SOURCES_H
