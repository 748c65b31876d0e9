#include "mensor_checked/PlannedUnits.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "mensor/ProductUnit.h"
#include "mensor/mensor_global.h"
#include "mensor/mensor_math.h"
#include "mensor_checked/Elements.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Parsing.h"
#include "mensor_checked/Rounding.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/everyday_names.h"
#include "mensor_checked/making.h"
#include "mensor_checked/words.h"
#include "mensor_exact/Spelling.h"

namespace mensor::checked {

namespace {

using exact::CExponent;

CMeaning meaningOf(const CPlannedUnit& unit) {
    return unit.Unit ? checked::meaningOf(unit.Unit) : unit.Meaning;
}

// Calculated as CProductUnit::getCtxToDimension() does.
double slopeToDimension(const CPlannedUnit& unit) {
    if (unit.Unit) {
        return unit.Unit->getCtxToDimension()->derivative(0.0);
    }
    if (unit.System != nullptr) {
        return slopeToDimension(*unit.System) * unit.Slope;
    }
    double slope = 1.0;
    for (const CPlannedFactor& factor : unit.Factors) {
        slope *= std::pow(slopeToDimension(*factor.Unit),
                          static_cast<double>(factor.Exponent.numerator()) /
                              static_cast<double>(factor.Exponent.denominator()));
    }
    return std::fabs(slope - 1.0) < 1e-9 ? 1.0 : slope;
}

unsigned weightedHash(const CPlannedFactor& factor) {
    return static_cast<unsigned>(factor.Unit->Hash) *
           static_cast<unsigned>(3 * factor.Exponent.numerator() -
                                 2 * factor.Exponent.denominator());
}

bool haveSameFactors(const std::vector<CPlannedFactor>& a, const std::vector<CPlannedFactor>& b) {
    return std::is_permutation(a.begin(), a.end(), b.begin(), b.end(),
                               [](const CPlannedFactor& one, const CPlannedFactor& other) {
                                   return one.Unit == other.Unit && one.Exponent == other.Exponent;
                               });
}

[[noreturn]] void throwInTheWay(const CMeaning& wanted, const CUnitPtr& unit) {
    throw CIdentityError(inWords(wanted) + " would be the same object as " + describe(unit) +
                             " here, which means " + meaningInWords(unit),
                         unit);
}

}  // namespace

const CPlannedUnit& CPlannedUnits::registered(const CUnitPtr& unit) {
    const auto known = m_Registered.find(unit.get());
    if (known != m_Registered.end()) {
        return *known->second;
    }
    m_Units.push_back({unit, unit->hashCode(), {}, {}, nullptr, 1.0});
    m_Registered.emplace(unit.get(), &m_Units.back());
    return m_Units.back();
}

// Returns the planned unit with the hash code of `unit`. Throws if that is another unit.
const CPlannedUnit& CPlannedUnits::planned(CPlannedUnit unit) {
    if (const CUnitPtr inTheWay = CUnit::searchHashCode(unit.Hash)) {
        throwInTheWay(unit.Meaning, inTheWay);
    }
    const auto known = m_New.find(unit.Hash);
    if (known == m_New.end()) {
        m_Units.push_back(std::move(unit));
        m_New.emplace(m_Units.back().Hash, &m_Units.back());
        return m_Units.back();
    }
    // Products that differ only in where the prefixes are have the same identity, and the same meaning.
    const CPlannedUnit& other = *known->second;
    const bool isSame =
        unit.System == other.System && unit.Factors.empty() == other.Factors.empty() &&
        (haveSameFactors(unit.Factors, other.Factors) || &systemOf(unit) == &systemOf(other));
    if (!isSame || !areSame(unit.Meaning, other.Meaning)) {
        throw CIdentityError(inWords(unit.Meaning) + " would be the same object as " +
                                 inWords(other.Meaning) + " of this table",
                             nullptr);
    }
    return other;
}

CPlannedUnits::CFactors CPlannedUnits::factorsOf(const CPlannedUnit& unit) {
    if (!unit.Unit) {
        return unit.Factors.empty() ? CFactors{{&unit, 1}} : unit.Factors;
    }
    CFactors factors;
    for (const CUnitRationalPower& element : unit.Unit->elements()) {
        factors.push_back({&registered(element.getUnit()), {element.getPow(), element.getRoot()}});
    }
    return factors;
}

void CPlannedUnits::multiplyInto(CFactors& product, const CPlannedUnit& unit, CExponent exponent) {
    for (const CPlannedFactor& factor : factorsOf(unit)) {
        const auto known =
            std::find_if(product.begin(), product.end(),
                         [&](const CPlannedFactor& other) { return other.Unit == factor.Unit; });
        if (known == product.end()) {
            product.push_back({factor.Unit, factor.Exponent * exponent});
        } else {
            known->Exponent = known->Exponent + factor.Exponent * exponent;
        }
    }
}

const CPlannedUnit& CPlannedUnits::product(const CFactors& all) {
    CPlannedUnit unit;
    unsigned hash = 0;
    bool isNew = false;
    for (const CPlannedFactor& factor : all) {
        if (!factor.Exponent.isZero()) {
            unit.Factors.push_back(factor);
            unit.Meaning.multiplyBy(meaningOf(*factor.Unit).difference(), factor.Exponent);
            hash += weightedHash(factor);
            isNew = isNew || !factor.Unit->Unit;
        }
    }
    if (unit.Factors.size() == 1 && unit.Factors[0].Exponent == 1) {
        return *unit.Factors[0].Unit;
    }
    if (!isNew) {
        return registeredProduct(unit);
    }
    unit.Hash = static_cast<int>(hash);
    return planned(std::move(unit));
}

// Makes a product of registered units.
const CPlannedUnit& CPlannedUnits::registeredProduct(const CPlannedUnit& wanted) {
    std::vector<CUnitRationalPower> powers;
    std::vector<CElement> elements;
    for (const CPlannedFactor& factor : wanted.Factors) {
        powers.emplace_back(factor.Unit->Unit, factor.Exponent.numerator(),
                            factor.Exponent.denominator());
        elements.push_back({factor.Unit->Unit, factor.Exponent});
    }
    const CUnitPtr unit = CProductUnit::getInstance(powers, {});
    std::vector<CElement> given;
    checked::multiplyInto(given, unit, 1);
    if (!haveSameElements(systemElements(given), systemElements(elements)) ||
        !means(unit, wanted.Meaning)) {
        throwInTheWay(wanted.Meaning, unit);
    }
    return registered(unit);
}

// Raises the unit as the library does: first to the power, then to the root.
const CPlannedUnit& CPlannedUnits::raised(const CPlannedUnit& unit, CExponent exponent) {
    const CPlannedUnit* result = &unit;
    for (const CExponent step :
         {CExponent(std::abs(exponent.numerator())), CExponent(exponent.numerator() < 0 ? -1 : 1),
          CExponent(1, exponent.denominator())}) {
        if (step != 1) {
            CFactors factors;
            multiplyInto(factors, *result, step);
            result = &product(factors);
        }
    }
    return *result;
}

// Multiplies in the order of the library.
template <class OfFactor>
const CPlannedUnit& CPlannedUnits::fold(const CPlannedUnit& unit, OfFactor ofFactor) {
    const CPlannedUnit* result = &registered(CProductUnit::one());
    for (const CPlannedFactor& factor : unit.Factors) {
        CFactors factors = factorsOf(*result);
        multiplyInto(factors, raised(ofFactor(*factor.Unit), factor.Exponent), 1);
        result = &product(factors);
    }
    return *result;
}

const CPlannedUnit& CPlannedUnits::systemOf(const CPlannedUnit& unit) {
    if (unit.Unit) {
        return registered(unit.Unit->getSystemUnit());
    }
    if (unit.System != nullptr) {
        return *unit.System;
    }
    return unit.Factors.empty() ? unit
                                : fold(
                                      unit, [this](const CPlannedUnit& factor) -> auto& {
                                          return systemOf(factor);
                                      });
}

const CPlannedUnit& CPlannedUnits::dimensionOf(const CPlannedUnit& unit) {
    if (unit.Unit) {
        return registered(unit.Unit->getDimension());
    }
    if (unit.System != nullptr) {
        return dimensionOf(*unit.System);
    }
    return unit.Factors.empty() ? unit
                                : fold(
                                      unit, [this](const CPlannedUnit& factor) -> auto& {
                                          return dimensionOf(factor);
                                      });
}

const CPlannedUnit& CPlannedUnits::transformed(const CPlannedUnit& unit, double factor,
                                               double offset, const CMeaning& meaning) {
    if (unit.Unit) {
        return registered(affine(unit.Unit, factor, offset));
    }
    if (factor == 1.0 && offset == 0.0) {
        return unit;
    }
    const CPlannedUnit& system = systemOf(unit);
    const double slope =
        (unit.System != nullptr ? unit.Slope : slopeToDimension(unit) / slopeToDimension(system)) *
        factor;
    const auto bits = static_cast<unsigned>(floatToIntBits(static_cast<float>(slope)));
    return planned({nullptr,
                    static_cast<int>(static_cast<unsigned>(system.Hash) + bits),
                    meaning,
                    {},
                    &system,
                    slope});
}

const CPlannedUnit& CPlannedUnits::read(std::string_view text) {
    const CParsed parsed = checked::parsed(text, {}, false);
    CFactors factors;
    for (const CNamedUnit& factor : parsed.Factors) {
        const std::string_view name = factor.Name.of(text);
        const auto known = m_Named.find(name);
        const CPlannedUnit* unit = known != m_Named.end() ? known->second : nullptr;
        if (unit == nullptr) {
            std::string fault;
            const CUnitPtr found = factor.Unit ? factor.Unit : everydayUnit(name, fault);
            if (!found) {
                throw CIdentityError(quoted(std::string(name)) + " cannot be made: " + fault,
                                     nullptr);
            }
            unit = &registered(found);
        }
        if (parsed.Factors.size() == 1 && factor.Pow == 1 && factor.Root == 1) {
            return *unit;
        }
        multiplyInto(factors, *unit, CExponent(factor.Pow, factor.Root));
    }
    const CPlannedUnit& unit = product(factors);
    dimensionOf(unit);
    return unit;
}

void CPlannedUnits::addBase(const std::string& symbol) {
    CPlannedUnit unit;
    unit.Hash = hashFromString(string_t(symbol.c_str()));
    unit.Meaning = CMeaning::base(symbol);
    const CPlannedUnit& added = planned(std::move(unit));
    requireName(symbol, added);
    m_Named.emplace(symbol, &added);
}

void CPlannedUnits::add(const std::string& name, const CPlannedUnit& unit, double factor,
                        double offset, const CMeaning& meaning) {
    const CPlannedUnit& added = transformed(unit, factor, offset, meaning);
    dimensionOf(added);
    requireName(name, added);
    m_Named.emplace(name, &added);
}

// Refuses a name that would not be read as the unit.
void CPlannedUnits::requireName(const std::string& name, const CPlannedUnit& unit) const {
    const auto throwHeld = [&name](const std::string& holder, const CUnitPtr& inTheWay) {
        throw CIdentityError("the name " + quoted(name) + " belongs to " + holder, inTheWay);
    };
    if (const CUnitPtr holder = unitNamed(name); holder && holder != unit.Unit) {
        throwHeld(describe(holder) + ", which means " + meaningInWords(holder), holder);
    }
    const auto other = m_Named.find(exact::respelled(name));
    if (other != m_Named.end() && other->second != &unit) {
        throwHeld(quoted(other->first) + " of this table", nullptr);
    }
    const auto isScale = [&](const std::string& rest) {
        const auto scale = m_Named.find(rest);
        return scale != m_Named.end() && !scale->second->Meaning.offset().isZero() &&
               scale->second->System == unit.System;
    };
    if (unit.System == nullptr || !unit.Meaning.offset().isZero()) {
        return;
    }
    if (const auto prefixed = splitPrefixed(name, isScale)) {
        throw CIdentityError("the unit cannot have the label " + quoted(name) +
                                 ", because it does not have the zero of " + quoted(prefixed->Name),
                             nullptr);
    }
}

}  // namespace mensor::checked
