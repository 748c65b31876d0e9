// UnitText_fuzz.cpp: a text gives the unit that it denotes in the notation, or exactly the
// exception of the notation, with its class and message. A refused text registers nothing. The same
// text gives the same object, cached or not. The unit is written as the notation says, and its text
// reads as the same object if the notation allows it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "Input.h"
#include "mensor/Unit.h"
#include "property.h"
#include "unit_texts.h"

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
