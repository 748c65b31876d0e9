// Elements.h: products of units as lists of their factors. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_ELEMENTS_H
#define MENSOR_CHECKED_ELEMENTS_H

#include <vector>

#include "mensor/Unit.h"
#include "mensor_exact/Exponent.h"

namespace mensor::checked {

/// One factor of a product of units: a unit to a power.
struct CElement {
    CUnitPtr Unit;
    exact::CExponent Exponent;
};

/// Multiplies `product` by `unit` to the power `exponent`.
/// @throws exact::CError  EXPONENT_RANGE.
void multiplyInto(std::vector<CElement>& product, const CUnitPtr& unit, exact::CExponent exponent);

/// Returns whether both have the same elements, in any order. Then both mean the same, and no factor has to
/// be computed.
bool haveSameElements(const std::vector<CElement>& a, const std::vector<CElement>& b);

/// Returns the product with each transformed unit replaced by its system unit. For N·mm and for mN·m it is
/// N·m.
std::vector<CElement> systemElements(const std::vector<CElement>& elements);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_ELEMENTS_H
