// Slots.h: the dimensions and marks that have a place of their own in a meaning. For the library's own
// use; not installed.
#ifndef MENSOR_EXACT_SLOTS_H
#define MENSOR_EXACT_SLOTS_H

#include <cstddef>
#include <string_view>

#include "mensor_exact/ShortText.h"

namespace mensor::exact {

/// Sorted by name: the base units of the SI, then the marks.
inline constexpr CShortText<3> SlotNames[] = {"A",   "K", "cd",  "kg",  "m",
                                              "mol", "s", "bit", "rad", "sr"};
inline constexpr std::size_t SlotCount = sizeof SlotNames / sizeof SlotNames[0];

/// The place of `name`, SlotCount if it has none.
constexpr std::size_t slotOf(std::string_view name) {
    for (std::size_t slot = 0; slot < SlotCount; ++slot) {
        if (std::string_view(SlotNames[slot]) == name) {
            return slot;
        }
    }
    return SlotCount;
}

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_SLOTS_H
