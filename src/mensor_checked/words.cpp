#include "mensor_checked/words.h"

#include <array>
#include <charconv>
#include <cmath>
#include <new>
#include <stdexcept>

#include "mensor_exact/Error.h"

namespace mensor::checked {

namespace {

using exact::CFactor;
using exact::CFraction;

bool isLong(const std::string& number) { return number.size() > 24; }

}  // namespace

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
    return text.empty() ? meaningInWords(unit) : quoted(text);
}

std::string inWords(const CMeaning& meaning) {
    CMeaning size = meaning.difference();
    const double factor = meaning.factor().toDouble();
    if (isLong(meaning.factor().toString()) && std::isnormal(factor)) {
        const CFactor few(CFraction::ofText(shortest(factor)));
        size = size.scaled(few / meaning.factor());
    }
    std::string text = size.toString();
    if (!meaning.offset().isZero()) {
        const CFraction& offset = meaning.offset();
        const std::string digits = (offset.isNegative() ? -offset : offset).toString();
        text += offset.isNegative() ? " - " : " + ";
        text += isLong(digits) ? shortest(std::fabs(offset.toDouble())) : digits;
    }
    return quoted(text);
}

std::string meaningInWords(const CUnitPtr& unit) {
    try {
        return inWords(meaningOf(unit));
    } catch (const exact::CError& error) {
        return quoted(error.what());
    }
}

}  // namespace mensor::checked
