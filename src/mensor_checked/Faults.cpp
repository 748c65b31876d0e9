#include "mensor_checked/Faults.h"

#include <cmath>

#include "mensor_checked/Rounding.h"
#include "mensor_checked/words.h"

namespace mensor::checked {

namespace {

using exact::CFactor;
using exact::CFraction;

// Replaces each base unit of `meaning` that CBaseUnit::setDimension has mapped, and drops the offset.
// Returns none if no base unit of it is mapped.
std::optional<CMeaning> mapped(const CMeaning& meaning) {
    CMeaning product;
    bool isMapped = false;
    for (const exact::CPower& power : meaning.dimensions()) {
        CMeaning factor = CMeaning::base(power.Name);
        const CUnitPtr base = CUnit::searchSymbol(power.Name);
        const CUnitPtr dimension = base ? base->getCtxDimension() : nullptr;
        if (dimension && dimension != base) {
            isMapped = true;
            const double slope = base->getCtxToDimension()->derivative(0.0);
            factor = meaningOf(dimension).difference().scaled(CFactor(CFraction::ofDouble(slope)));
        }
        product = product * factor.power(power.Exponent);
    }
    return isMapped ? std::optional<CMeaning>(product.scaled(meaning.factor())) : std::nullopt;
}

// Returns in words the size of a unit that the library converts to `dimension` by `given`.
std::string knownSize(const CRounded& given, const CMeaning& meaning, const CMeaning& dimension) {
    if (!std::isnormal(given.Slope) || given.Slope < 0) {  // no meaning has such a factor
        return shortest(given.Slope) + " " + dimension.unitsText();
    }
    const double factor = meaning.factor().toDouble();
    const bool isFactorRight =
        std::fabs(given.Slope - factor) <= given.Roundings * 0x1p-53 * factor;
    const CFactor slope =
        isFactorRight ? meaning.factor() : CFactor(CFraction::ofText(shortest(given.Slope)));
    return dimension.difference().scaled(slope).toString();
}

// The same, with the zero of the unit.
std::string known(const CRounded& given, const CMeaning& meaning, const CMeaning& dimension) {
    const std::string size = knownSize(given, meaning, dimension);
    return given.Zero == 0.0
               ? size
               : size + (given.Zero < 0 ? " - " : " + ") + shortest(std::fabs(given.Zero));
}

}  // namespace

std::optional<CFault> faultOf(const CUnitPtr& unit, const CMeaning& meaning) {
    const CUnitPtr dimension = unit->getDimension();
    const std::optional<CMeaning> target = tryMeaningOf(dimension);
    if (!target) {
        return CFault{dimension, "no unit"};
    }
    CRounded given = roundedToDimension(unit);
    CMeaning expected = meaning;
    if (const auto other = mapped(meaning)) {
        expected = *other;
        // The client decides what a mapping does to an offset, so offsets are not compared.
        given.Zero = given.ZeroSize = 0.0;
    }
    const bool isDimensionRight = expected.isCompatibleWith(*target);
    if (isDimensionRight && converts(given, expected, *target)) {
        return std::nullopt;
    }
    return CFault{isDimensionRight ? nullptr : dimension, known(given, meaning, *target)};
}

}  // namespace mensor::checked
