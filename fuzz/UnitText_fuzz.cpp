// UnitText_fuzz.cpp: a text gives the unit that the notation makes of it, or exactly the exception
// that the notation names, class and message, and what is refused registers nothing. The same text
// gives the same object, remembered or not. The unit is written as the notation says, and what is
// written reads as the same object wherever the notation allows it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "Input.h"
#include "Property.h"
#include "UnitTexts.h"
#include "mensor/Unit.h"

using namespace mensor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = fuzz::shortText(data, size, 64);
    if (!input) {
        return 0;
    }
    const std::string& text = *input;
    const std::string outcome = fuzz::checkReading(text);
    if (outcome == "returned") {
        fuzz::checkWriting(CUnit::fromString(text));
    }
    fuzz::checkTables();
    return 0;
}
