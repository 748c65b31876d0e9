#include "mensor_checked/Rounding.h"

#include <algorithm>
#include <cmath>
#include <typeinfo>

#include "mensor/AddConverter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor_checked/ExactConverter.h"
#include "mensor_exact/Error.h"

namespace mensor::checked {

namespace {

constexpr double RoundingsOfAStep = 3;
constexpr double RoundingsOfAPower = 3;  // including the multiplication by it
constexpr double OneRounding = 0x1p-53;

// The bound has two more roundings. One is for `exact`, which is itself a nearest double. The other is for
// the products of several relative errors: for n below 2^26 these sum to less than one rounding. Nothing is near
// if a step of the chain overflows.
bool isNear(double given, double exact, double roundings, double size) {
    const double bound = (roundings + 2) * OneRounding * size;
    return std::isfinite(bound) && std::fabs(given - exact) <= bound;
}

bool isPowerOfTwo(int n) { return (n & (n - 1)) == 0; }

double roundingsOfPower(const CUnitRationalPower& element) {
    const CRounded factor = roundedToDimension(element.getUnit());
    const double exponent =
        static_cast<double>(element.getPow()) / static_cast<double>(element.getRoot());
    const double ofExponent = isPowerOfTwo(element.getRoot())
                                  ? 0.0
                                  : std::fabs(std::log(std::fabs(factor.Slope)) * exponent);
    return factor.Roundings * std::fabs(exponent) + ofExponent + RoundingsOfAPower;
}

}  // namespace

std::vector<CConverterPtr> stepsOf(const CConverterPtr& converter) {
    std::vector<CConverterPtr> steps;
    std::vector<CConverterPtr> ahead{converter};
    while (!ahead.empty()) {
        const CConverterPtr next = ahead.back();
        ahead.pop_back();
        const CConverter& step = *next;
        if (typeid(step) == typeid(CCompound)) {
            const auto& compound = static_cast<const CCompound&>(step);
            ahead.push_back(compound.second());
            ahead.push_back(compound.first());
        } else if (next != CConverter::identity()) {
            steps.push_back(next);
        }
    }
    return steps;
}

bool isOfNumbers(const CUnitPtr& unit) {
    for (const CUnitRationalPower& element : unit->elements()) {
        const CUnitPtr part = element.getUnit();
        for (const CConverterPtr& next : stepsOf(part->getConverterTo(part->getSystemUnit()))) {
            const CConverter& step = *next;
            if (typeid(step) != typeid(CMultiplyConverter) &&
                typeid(step) != typeid(CAddConverter) && typeid(step) != typeid(CExactConverter)) {
                return false;
            }
        }
    }
    return true;
}

CRounded roundedOf(const CConverterPtr& converter) {
    CRounded rounded{converter->derivative(0.0), converter->convert(0.0), 0.0, 0.0};
    for (const CConverterPtr& step : stepsOf(converter)) {
        rounded.Roundings += RoundingsOfAStep;
        rounded.ZeroSize =
            std::fabs(step->derivative(0.0)) * rounded.ZeroSize + std::fabs(step->convert(0.0));
    }
    return rounded;
}

CRounded roundedToDimension(const CUnitPtr& unit) {
    CRounded rounded = roundedOf(unit->getCtxToDimension());
    if (dynamic_cast<CProductUnit*>(unit.get()) != nullptr) {
        rounded.Roundings = 0.0;
        for (const CUnitRationalPower& element : unit->elements()) {
            rounded.Roundings += roundingsOfPower(element);
        }
    }
    return rounded;
}

bool converts(const CRounded& given, const CMeaning& from, const CMeaning& to) {
    const exact::CConversion conversion(from, to);
    const double slope = conversion.exactFactor().toDouble();
    const exact::COffset offset = conversion.exactOffset();
    const double zero = offset.Sign * offset.Size.toDouble();
    return isNear(given.Slope, slope, given.Roundings, slope) &&
           isNear(given.Zero, zero, given.Roundings, std::max(given.ZeroSize, std::fabs(zero)));
}

bool convertsAs(CUnit& unit, const CMeaning& meaning) {
    const auto& transformed = dynamic_cast<CTransformedUnit&>(unit);
    const CMeaning system = meaningOf(unit.getSystemUnit());
    return system.isCompatibleWith(meaning) && system.hasMarksOf(meaning) &&
           converts(roundedOf(transformed.toSystem()), meaning, system);
}

bool areSame(const CMeaning& a, const CMeaning& b, const CUnitPtr& unit) {
    if (a == b) {
        return true;
    }
    if (!a.isCompatibleWith(b) || !a.hasMarksOf(b)) {
        return false;
    }
    const CRounded rounded = roundedToDimension(unit);
    const double factor = b.factor().toDouble();
    const double offset = b.offset().toDouble();
    const double otherOffset = a.offset().toDouble();
    return isNear(a.factor().toDouble(), factor, rounded.Roundings, factor) &&
           isNear(otherOffset, offset, rounded.Roundings,
                  std::max({rounded.ZeroSize, std::fabs(offset), std::fabs(otherOffset)}));
}

bool means(const CUnitPtr& unit, const CMeaning& meaning) {
    try {
        return areSame(meaningOf(unit), meaning, unit);
    } catch (const exact::CError&) {  // it has no exact meaning
        return false;
    }
}

}  // namespace mensor::checked
