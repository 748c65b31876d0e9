#include "mensor_checked/making.h"

#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor/mensor_math.h"
#include "mensor_checked/Elements.h"
#include "mensor_checked/Lock.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/words.h"

namespace mensor::checked {

namespace {

using exact::CExponent;
using exact::CFactor;
using exact::CFraction;

std::string requireName(const string_t& text, const char* function) {
    std::string name = mensor::toStdString(text);
    if (!isName(name)) {
        throw std::invalid_argument(std::string(function) + ": " + quoted(name) +
                                    " cannot be the name of a unit");
    }
    return name;
}

CFraction requireOffset(double x, const char* function) {
    if (!std::isfinite(x)) {
        throw std::invalid_argument(std::string(function) + ": the offset " + shortest(x) +
                                    " is not finite");
    }
    return CFraction::ofDouble(x);
}

CFactor requireFactor(double x, const char* function) {
    if (!std::isfinite(x) || x <= 0.0) {
        throw std::invalid_argument(std::string(function) + ": the factor " + shortest(x) +
                                    " is not a finite number above 0");
    }
    return CFactor(CFraction::ofDouble(x));
}

// Checks the range before anything is built, because built units stay registered.
void requireRange(const CMeaning& meaning, const char* function) {
    if (!std::isnormal(meaning.factor().toDouble()) ||
        !std::isfinite(meaning.offset().toDouble())) {
        throw std::invalid_argument(std::string(function) +
                                    ": the size of this unit is beyond the range of double");
    }
}

// Refuses offset units: products do not have offsets.
void requireSize(const CUnitPtr& unit, const char* function) {
    requireUnit(unit, function);
    if (hasOffset(unit)) {
        throw std::invalid_argument(
            std::string(function) + ": " + describe(unit) +
            " is a scale with its own zero and cannot be part of a product");
    }
}

// Refuses a name that is read as another unit than `unit`.
void requireFree(const std::string& name, const CUnitPtr& unit) {
    const CUnitPtr holder = unitNamed(name);
    if (holder && holder != unit) {
        throw CIdentityError("the name " + quoted(name) + " belongs to " + describe(holder) +
                                 ", which means " + meaningInWords(holder),
                             holder);
    }
}

[[noreturn]] void throwInTheWay(const std::string& wanted, const CUnitPtr& inTheWay) {
    throw CIdentityError(wanted + " is the same object as " + describe(inTheWay) +
                             " here, which means " + meaningInWords(inTheWay),
                         inTheWay);
}

// Returns `unit`, or throws if its symbol is not `symbol`.
CUnitPtr requireSymbol(const CUnitPtr& unit, const string_t& symbol) {
    if (unit->getSymbol() != symbol) {
        throwInTheWay("the unit with the symbol " + quoted(mensor::toStdString(symbol)), unit);
    }
    return unit;
}

CUnitPtr requireElements(const CUnitPtr& unit, const std::vector<CElement>& elements,
                         const CMeaning& meaning) {
    std::vector<CElement> given;
    multiplyInto(given, unit, 1);
    if (!haveSameElements(systemElements(given), systemElements(elements))) {
        throwInTheWay(inWords(meaning), unit);
    }
    verify(unit, meaning);
    return unit;
}

// An alternate unit means a product of base units: radians, steradians and bits are lost.
CMeaning withoutMarks(CMeaning meaning) {
    for (const exact::CPower& mark : meaning.marks()) {
        meaning = meaning / CMeaning::base(mark.Name).power(mark.Exponent);
    }
    return meaning;
}

CUnitPtr productOf(const CUnitPtr& left, const CUnitPtr& right, int sign, const char* function) {
    requireSize(left, function);
    requireSize(right, function);
    const Lock lock;
    const CMeaning meaning = meaningOf(left) * meaningOf(right).power(sign);
    requireRange(meaning, function);
    std::vector<CElement> elements;
    multiplyInto(elements, left, 1);
    multiplyInto(elements, right, sign);
    return requireElements(sign > 0 ? left->multiply(right) : left->divide(right), elements,
                           meaning);
}

template <class Raise>
CUnitPtr powerOf(const CUnitPtr& unit, CExponent exponent, const char* function, Raise raise) {
    const CMeaning meaning = meaningOf(unit).power(exponent);
    requireRange(meaning, function);
    std::vector<CElement> elements;
    multiplyInto(elements, unit, exponent);
    return requireElements(raise(), elements, meaning);
}

// Returns the unit whose values `toParent` converts to values of `parent`. Throws if it does not mean
// `meaning`.
CUnitPtr transformed(const CUnitPtr& parent, const CConverterPtr& toParent, const CMeaning& meaning,
                     const char* function) {
    requireRange(meaning, function);
    const CUnitPtr unit = CTransformedUnit::getInstance(parent, toParent);
    if (!unit) {  // the identity belongs to a unit of another class
        const CUnitPtr system = parent->getSystemUnit();
        CTransformedUnit wanted(system, parent->getConverterTo(system)->concatenate(toParent));
        wanted.calculateHashCode();
        if (const CUnitPtr inTheWay = CUnit::searchHashCode(wanted.hashCode())) {
            throwInTheWay(inWords(meaning), inTheWay);
        }
        throw CIdentityError(inWords(meaning) + " is the same object as another unit here",
                             nullptr);
    }
    verify(unit, meaning);
    return unit;
}

template <CBaseUnitPtr (*Unit)()>
CUnitPtr base() {
    return Unit();
}

CUnitPtr baseUnitNamed(const std::string& name) {
    struct CNamed {
        const char* Name;
        CUnitPtr (*Unit)();
    };
    constexpr CNamed Known[] = {{"A", base<SI::Ampere>},   {"K", base<SI::Kelvin>},
                                {"cd", base<SI::Candela>}, {"kg", base<SI::Kilogram>},
                                {"m", base<SI::Meter>},    {"mol", base<SI::Mole>},
                                {"s", base<SI::Second>}};
    for (const CNamed& known : Known) {
        if (name == known.Name) {
            return known.Unit();
        }
    }
    if (name == "bit") {
        return SI::Bit();
    }
    if (name == "rad") {
        return SI::Radian();
    }
    if (name == "sr") {
        return SI::Steradian();
    }
    return baseUnit(string_t(name.c_str()));
}

void multiplyBy(CUnitPtr& unit, const exact::CPower& factor) {
    CUnitPtr base = baseUnitNamed(factor.Name);
    if (factor.Exponent.denominator() != 1) {
        base = root(base, factor.Exponent.denominator());
    }
    base = power(base, factor.Exponent.numerator());
    unit = unit ? product(unit, base) : base;
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
    verify(unit, withoutMarks(meaningOf(parent)));
    return unit;
}

CUnitPtr scaled(const CUnitPtr& unit, double factor) {
    requireUnit(unit, "scaled");
    const CFactor exactly = requireFactor(factor, "scaled");
    if (factor == 1.0) {
        return unit;
    }
    const Lock lock;
    return transformed(unit, std::make_shared<CMultiplyConverter>(factor),
                       meaningOf(unit).scaled(exactly), "scaled");
}

CUnitPtr shifted(const CUnitPtr& unit, double offset) {
    requireUnit(unit, "shifted");
    const CFraction exactly = requireOffset(offset, "shifted");
    if (offset == 0.0) {
        return unit;
    }
    const Lock lock;
    return transformed(unit, std::make_shared<CAddConverter>(offset),
                       meaningOf(unit).shifted(exactly), "shifted");
}

CUnitPtr affine(const CUnitPtr& unit, double factor, double offset) {
    requireUnit(unit, "affine");
    const CFactor exactFactor = requireFactor(factor, "affine");
    const CFraction exactOffset = requireOffset(offset, "affine");
    if (factor == 1.0) {
        return shifted(unit, offset);
    }
    if (offset == 0.0) {
        return scaled(unit, factor);
    }
    const Lock lock;
    return transformed(unit,
                       std::make_shared<CCompound>(std::make_shared<CMultiplyConverter>(factor),
                                                   std::make_shared<CAddConverter>(offset)),
                       meaningOf(unit).shifted(exactOffset).scaled(exactFactor), "affine");
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
    return powerOf(unit, n, "power", [&] { return unit->pow(n); });
}

CUnitPtr root(const CUnitPtr& unit, int n) {
    requireSize(unit, "root");
    const Lock lock;
    if (n == 0) {
        return unit->root(n);  // throws, because n is 0
    }
    return powerOf(unit, CExponent(1, n), "root", [&] { return unit->root(n); });
}

CUnitPtr unitOf(const exact::CMeaning& meaning) {
    const double factor = meaning.factor().toDouble();
    const double offset = meaning.offset().toDouble();
    if (!std::isnormal(factor) || !std::isfinite(offset)) {
        throw std::invalid_argument("the size of the unit is beyond the range of doubles");
    }
    CUnitPtr unit;
    for (const std::vector<exact::CPower>& powers : {meaning.dimensions(), meaning.marks()}) {
        for (const exact::CPower& power : powers) {
            multiplyBy(unit, power);
        }
    }
    if (!unit) {
        unit = CProductUnit::one();
    }
    return factor == 1.0 && offset == 0.0 ? unit : affine(unit, factor, offset);
}

CUnitPtr label(const CUnitPtr& unit, const string_t& text) {
    requireUnit(unit, "label");
    const Lock lock;
    const std::string name = requireName(text, "label");
    requireFree(name, unit);
    const string_t former = CUnitFormat::labelFor(unit);  // the symbol, if there is no label
    if (!former.empty() && former != unit->getSymbol() && former != text) {
        throw CIdentityError("the unit already has the label " + describe(unit) + ", which " +
                                 quoted(name) + " would replace; use an alias",
                             unit);
    }
    if (const auto prefixed = prefixedOffset(name, unit)) {
        throw CIdentityError("the unit cannot have the label " + quoted(name) +
                                 ", because it does not have the zero of " + quoted(prefixed->Name),
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

}  // namespace mensor::checked
