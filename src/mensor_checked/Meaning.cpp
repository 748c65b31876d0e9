#include "mensor_checked/Meaning.h"

#include <stdexcept>
#include <typeinfo>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor_checked/ExactConverter.h"
#include "mensor_checked/Lock.h"
#include "mensor_checked/Rounding.h"
#include "mensor_checked/rows.h"
#include "mensor_checked/words.h"
#include "mensor_exact/Error.h"

namespace mensor::checked {

namespace {

using exact::CExponent;
using exact::CFactor;
using exact::CFraction;

// The elements of a client's own class of unit might contain that unit itself, so the expansion
// would not end.
constexpr int DeepestExpansion = 100;

CMeaning meaning(CUnit& unit, int depth);

CMeaning meaningOfElements(const std::vector<CUnitRationalPower>& elements, int depth) {
    CMeaning product;
    for (const CUnitRationalPower& element : elements) {
        // The library converts factors of a product as differences.
        product = product * meaning(*element.getUnit(), depth + 1)
                                .difference()
                                .power(CExponent(element.getPow(), element.getRoot()));
    }
    return product;
}

// Returns the meaning of the unit whose value x is factor·x + offset in `target`.
CMeaning before(const CMeaning& target, const CFraction& offset, const CFactor& factor) {
    return target.shifted(offset).scaled(factor);
}

// Returns the meaning of the unit whose values are converted by `step` to values of `target`.
CMeaning before(const CMeaning& target, const CConverter& step) {
    if (const auto* own = dynamic_cast<const CExactConverter*>(&step)) {
        const exact::COffset offset = own->conversion().exactOffset();
        const CFraction size = offset.Sign == 0 ? CFraction() : offset.Size.radicand();
        return before(target, offset.Sign < 0 ? -size : size, own->conversion().exactFactor());
    }
    double factor = 1.0;
    double offset = 0.0;
    if (typeid(step) == typeid(CMultiplyConverter)) {
        factor = static_cast<const CMultiplyConverter&>(step).factor();
    } else if (typeid(step) == typeid(CAddConverter)) {
        offset = static_cast<const CAddConverter&>(step).getOffset();
    } else {  // a client's own class of converter
        factor = step.derivative(0.0);
        offset = step.convert(0.0);
    }
    return before(target, CFraction::ofDouble(offset), CFactor(CFraction::ofDouble(factor)));
}

CMeaning transformed(CMeaning system, const CConverterPtr& toSystem) {
    const std::vector<CConverterPtr> steps = stepsOf(toSystem);
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        system = before(system, **step);
    }
    return system;
}

CMeaning meaning(CUnit& unit, int depth) {
    if (depth > DeepestExpansion) {
        throw std::logic_error("the expansion of a unit does not end");
    }
    if (dynamic_cast<CProductUnit*>(&unit) != nullptr) {
        return meaningOfElements(unit.elements(), depth);
    }
    if (const auto row = rowOf(unit)) {
        return *row;
    }
    if (const auto* scaled = dynamic_cast<CTransformedUnit*>(&unit)) {
        return transformed(meaning(*unit.getSystemUnit(), depth + 1), scaled->toSystem());
    }
    // A base unit, an alternate unit, or a unit of a client's own class.
    const std::vector<CUnitRationalPower> elements = unit.elements();
    const bool isItsOwn = elements.size() == 1 && elements[0].getUnit().get() == &unit;
    if (!isItsOwn) {
        return meaningOfElements(elements, depth);
    }
    const CUnitPtr system = unit.getSystemUnit();
    if (system.get() != &unit) {
        return transformed(meaning(*system, depth + 1), unit.getConverterTo(system));
    }
    const CUnitPtr base = unit.baseUnits();
    if (base.get() != &unit) {
        return meaning(*base, depth + 1);
    }
    return CMeaning::base(mensor::toStdString(unit.getSymbol()));
}

}  // namespace

CMeaning meaningOf(const CUnitPtr& unit) {
    requireUnit(unit, "meaningOf");
    const Lock lock;
    return meaning(*unit, 0);
}

std::optional<CMeaning> tryMeaningOf(const CUnitPtr& unit) {
    try {
        return meaningOf(unit);
    } catch (const exact::CError&) {
        return std::nullopt;
    }
}

}  // namespace mensor::checked
