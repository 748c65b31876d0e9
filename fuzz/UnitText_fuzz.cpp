// UnitText_fuzz.cpp: a text gives the unit that the notation makes of it, or exactly the exception
// that the notation names, class and message, and what is refused registers nothing. The same text
// gives the same object, remembered or not. The unit is written as the notation says, and what is
// written reads as the same object wherever the notation allows it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "Property.h"
#include "UnitTexts.h"
#include "mensor/Unit.h"

using namespace mensor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t LongestInput =
        64;  // units are kept for good, and long texts are only more
    if (size > LongestInput) {
        return 0;
    }
    const std::string text(data, data + size);
    const std::string outcome = fuzz::checkReading(text);
    if (outcome == "returned") {
        fuzz::checkWriting(CUnit::fromString(text));
    }
    fuzz::checkTables();
    return 0;
}
