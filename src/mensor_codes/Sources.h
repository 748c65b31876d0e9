// Sources.h: the sources and reasons that tables of codes give. For the library's own use; not installed.
#ifndef MENSOR_CODES_SOURCES_H
#define MENSOR_CODES_SOURCES_H

#include <cstdint>
#include <string_view>

namespace mensor {
namespace codes {

enum class eSource : std::uint8_t {
#define MENSOR_SOURCE(id, text) id,
#define MENSOR_REASON(id, text) id,
#include "mensor_codes/sources.def"
#undef MENSOR_SOURCE
#undef MENSOR_REASON
};

/// The text of sources.def.
std::string_view textOf(eSource source);

}  // namespace codes
}  // namespace mensor

#endif  // MENSOR_CODES_SOURCES_H
