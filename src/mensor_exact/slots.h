// slots.h: the order of the SI's dimensions and the marks in arrays of exponents. Not installed.
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

/// Returns the index of `name` in SlotNames, or SlotCount if it is not there.
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
