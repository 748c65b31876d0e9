// parsing.h: reading the text of a unit. For the library's own use; not installed.
#ifndef MENSOR_PARSING_H
#define MENSOR_PARSING_H

#include <stdexcept>
#include <string_view>

#include "mensor/RememberedTexts.h"
#include "mensor/Unit.h"
#include "mensor/mensor_global.h"
#include "mensor/tables.h"

namespace mensor {
namespace detail {

// The unit that `text` was read as before, if that is remembered.
inline CUnit* findRemembered(const string_t& text) {
    return handedOut.load(std::memory_order_acquire)
               ? nullptr
               : rememberedTexts.find(std::string_view(text.data(), text.size()),
                                      namesEpoch.load(std::memory_order_acquire));
}

// The unit written in `text`, or none and the first name in it that is unknown.
CUnitPtr tryParse(const string_t& text, std::string_view& unknownName);

// What to throw for an unknown name.
std::invalid_argument unknownLabel(std::string_view name);

// The unit written in `text`. An unknown name is what people get wrong most often, and each function that
// an exception leaves takes nearly as long as throwing and catching it, more if it must clean up. So the
// exception is thrown only when nothing is left to clean up, and by the function that the client called.
[[gnu::always_inline]] inline CUnitPtr parse(const string_t& text) {
    if (CUnit* const remembered = findRemembered(text)) {
        return remembered->shared_from_this();
    }
    std::string_view unknownName;
    {
        CUnitPtr unit = tryParse(text, unknownName);
        if (unit) {
            return unit;
        }
    }
    throw unknownLabel(unknownName);
}

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_PARSING_H
