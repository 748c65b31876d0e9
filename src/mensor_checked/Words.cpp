#include "mensor_checked/Words.h"

#include <array>
#include <charconv>
#include <new>
#include <stdexcept>

#include "mensor_checked/Meaning.h"

namespace mensor {
namespace checked {

void requireUnit(const CUnitPtr& unit, const char* function) {
    if (!unit) {
        throw std::invalid_argument(std::string(function) + ": the unit is an empty pointer");
    }
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

std::string shortest(double x) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), x).ptr;
    return {digits.data(), end};
}

std::string describe(const CUnitPtr& unit) {
    std::string text;
    try {
        text = unit->toStdString();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {  // a transformed unit without a label
    }
    return quoted(text.empty() ? meaningOf(unit).toString() : text);
}

}  // namespace checked
}  // namespace mensor
