#include "mensor_checked/Making.h"

#include <cmath>
#include <memory>
#include <stdexcept>

#include "mensor/AddConverter.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor/mensor_math.h"
#include "mensor_checked/Elements.h"
#include "mensor_checked/Lock.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/Words.h"

namespace mensor {
namespace checked {

namespace {

std::string requireName(const string_t& text, const char* function) {
    std::string name = mensor::toStdString(text);
    if (!isName(name)) {
        throw std::invalid_argument(std::string(function) + ": " + quoted(name) +
                                    " is no name that a unit can be read by");
    }
    return name;
}

void requireNumber(double x, bool isAllowed, const char* function) {
    if (!std::isfinite(x) || !isAllowed) {
        throw std::invalid_argument(std::string(function) + ": " + shortest(x) + " makes no unit");
    }
}

// Products do not carry offsets.
void requireSize(const CUnitPtr& unit, const char* function) {
    requireUnit(unit, function);
    if (hasOffset(unit)) {
        throw std::invalid_argument(std::string(function) + ": " + describe(unit) +
                                    " counts from a zero of its own and has no place in a product");
    }
}

// Refuses a name that reads as another unit than `unit`.
void requireFree(const std::string& name, const CUnitPtr& unit) {
    const CUnitPtr holder = unitNamed(name);
    if (holder && holder != unit) {
        throw CIdentityError("the name " + quoted(name) + " belongs to " + describe(holder) +
                                 ", which means " + quoted(meaningOf(holder).toString()),
                             holder);
    }
}

[[noreturn]] void throwInTheWay(const std::string& wanted, const CUnitPtr& inTheWay) {
    throw CIdentityError(wanted + " is the same object as " + describe(inTheWay) +
                             " here, which means " + quoted(meaningOf(inTheWay).toString()),
                         inTheWay);
}

// The unit of symbol `symbol`, if it is one.
CUnitPtr requireSymbol(const CUnitPtr& unit, const string_t& symbol) {
    if (unit->getSymbol() != symbol) {
        throwInTheWay("the unit of symbol " + quoted(mensor::toStdString(symbol)), unit);
    }
    return unit;
}

// A transformed unit, empty where its identity belongs to a unit of another kind.
CUnitPtr requireMeaning(const CUnitPtr& unit, const CUnitPtr& parent, double slope,
                        const CMeaning& meaning) {
    if (!unit) {
        const CUnitPtr system = parent->getSystemUnit();
        const double toSystem = parent->getConverterTo(system)->derivative(0.0) * slope;
        const unsigned hash = static_cast<unsigned>(system->hashCode()) +
                              static_cast<unsigned>(floatToIntBits(static_cast<float>(toSystem)));
        if (const CUnitPtr inTheWay = CUnit::searchHashCode(static_cast<int>(hash))) {
            throwInTheWay(quoted(meaning.toString()), inTheWay);
        }
        throw CIdentityError(
            quoted(meaning.toString()) + " is the same object as another unit here", nullptr);
    }
    verify(unit, meaning);
    return unit;
}

CUnitPtr requireElements(const CUnitPtr& unit, const std::vector<CElement>& elements,
                         const CMeaning& meaning) {
    std::vector<CElement> given;
    multiplyInto(given, unit, 1);
    if (!haveSameElements(systemElements(given), systemElements(elements))) {
        throwInTheWay(quoted(meaning.toString()), unit);
    }
    verify(unit, meaning);
    return unit;
}

CUnitPtr productOf(const CUnitPtr& left, const CUnitPtr& right, int sign, const char* function) {
    requireSize(left, function);
    requireSize(right, function);
    const Lock lock;
    std::vector<CElement> elements;
    multiplyInto(elements, left, 1);
    multiplyInto(elements, right, sign);
    return requireElements(sign > 0 ? left->multiply(right) : left->divide(right), elements,
                           meaningOf(left) * meaningOf(right).power(sign));
}

CUnitPtr powerOf(const CUnitPtr& unit, const CUnitPtr& raised, const CRational& exponent) {
    std::vector<CElement> elements;
    multiplyInto(elements, unit, exponent);
    return requireElements(raised, elements, meaningOf(unit).power(exponent));
}

}  // namespace

CUnitPtr baseUnit(const string_t& symbol) {
    const Lock lock;
    const std::string name = requireName(symbol, "baseUnit");
    const CUnitPtr known = CUnit::searchSymbol(symbol);
    requireFree(name, known);
    const CUnitPtr unit = requireSymbol(CBaseUnit::getInstance(symbol), symbol);
    if (dynamic_cast<CBaseUnit*>(unit.get()) == nullptr) {
        throwInTheWay("the base unit " + quoted(name), unit);
    }
    return unit;
}

CUnitPtr alternateUnit(const string_t& symbol, const CUnitPtr& parent) {
    requireUnit(parent, "alternateUnit");
    const Lock lock;
    const std::string name = requireName(symbol, "alternateUnit");
    requireFree(name, CUnit::searchSymbol(symbol));
    const CUnitPtr unit = requireSymbol(parent->alternate(symbol), symbol);
    verify(unit, meaningOf(parent));
    return unit;
}

CUnitPtr scaled(const CUnitPtr& unit, double factor) {
    requireUnit(unit, "scaled");
    requireNumber(factor, factor != 0.0, "scaled");
    if (factor == 1.0) {
        return unit;
    }
    const Lock lock;
    return requireMeaning(unit->multiply(factor), unit, factor, meaningOf(unit).scaled(factor));
}

CUnitPtr shifted(const CUnitPtr& unit, double offset) {
    requireUnit(unit, "shifted");
    requireNumber(offset, true, "shifted");
    if (offset == 0.0) {
        return unit;
    }
    const Lock lock;
    return requireMeaning(unit->add(offset), unit, 1.0, meaningOf(unit).shifted(offset));
}

CUnitPtr affine(const CUnitPtr& unit, double factor, double offset) {
    requireUnit(unit, "affine");
    requireNumber(factor, factor != 0.0, "affine");
    requireNumber(offset, true, "affine");
    if (factor == 1.0) {
        return shifted(unit, offset);
    }
    if (offset == 0.0) {
        return scaled(unit, factor);
    }
    const Lock lock;
    const auto converter = std::make_shared<CCompound>(std::make_shared<CMultiplyConverter>(factor),
                                                       std::make_shared<CAddConverter>(offset));
    return requireMeaning(CTransformedUnit::getInstance(unit, converter), unit, factor,
                          meaningOf(unit).shifted(offset).scaled(factor));
}

CUnitPtr product(const CUnitPtr& left, const CUnitPtr& right) {
    return productOf(left, right, 1, "product");
}

CUnitPtr quotient(const CUnitPtr& left, const CUnitPtr& right) {
    return productOf(left, right, -1, "quotient");
}

CUnitPtr power(const CUnitPtr& unit, int n) {
    requireSize(unit, "power");
    const Lock lock;
    return powerOf(unit, unit->pow(n), n);
}

CUnitPtr root(const CUnitPtr& unit, int n) {
    requireSize(unit, "root");
    const Lock lock;
    const CUnitPtr raised = unit->root(n);  // refuses an order of zero
    return powerOf(unit, raised, CRational(1, n));
}

CUnitPtr label(const CUnitPtr& unit, const string_t& text) {
    requireUnit(unit, "label");
    const Lock lock;
    const std::string name = requireName(text, "label");
    requireFree(name, unit);
    const string_t former = CUnitFormat::labelFor(unit);  // the symbol, if there is no label
    if (!former.empty() && former != unit->getSymbol() && former != text) {
        throw CIdentityError("the label " + quoted(name) + " would take the label " +
                                 describe(unit) + " from the unit; give it an alias",
                             unit);
    }
    if (const auto prefixed = prefixedOffset(name, unit)) {
        throw CIdentityError("the label " + quoted(name) + " promises the zero of " +
                                 quoted(prefixed->Name) + ", which the unit has not",
                             unitNamed(prefixed->Name));
    }
    return CUnitFormat::label(unit, text);
}

CUnitPtr alias(const CUnitPtr& unit, const string_t& text) {
    requireUnit(unit, "alias");
    const Lock lock;
    const std::string name = requireName(text, "alias");
    requireFree(name, unit);
    if (CUnitFormat::unitFor(text) != unit) {
        CUnitFormat::alias(unit, text);
    }
    return unit;
}

}  // namespace checked
}  // namespace mensor
