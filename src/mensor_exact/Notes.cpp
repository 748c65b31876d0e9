#include "mensor_exact/Notes.h"

#include "mensor_exact/Traps.h"
#include "mensor_exact/concatenate.h"

namespace mensor::exact {

std::string CNote::words(std::string_view text) const {
    return Trap == nullptr ? std::string() : withText(Trap->sentence(), Token.of(text));
}

}  // namespace mensor::exact
