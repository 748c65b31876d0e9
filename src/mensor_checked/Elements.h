// Elements.h: products of units to powers, element by element. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_ELEMENTS_H
#define MENSOR_CHECKED_ELEMENTS_H

#include <vector>

#include "mensor/Unit.h"
#include "mensor_exact/Exponent.h"

namespace mensor {
namespace checked {

/// A unit to a power, as products of units are made of.
struct CElement {
    CUnitPtr Unit;
    exact::CExponent Exponent;
};

/// Multiplies `unit` to the power `exponent` into a product, element by element.
/// @throws exact::CError  EXPONENT_RANGE.
void multiplyInto(std::vector<CElement>& product, const CUnitPtr& unit, exact::CExponent exponent);

/// Whether both are the same product, whatever the order. Products of the same elements mean the same,
/// without any computing, and are written alike.
bool haveSameElements(const std::vector<CElement>& a, const std::vector<CElement>& b);

/// The product with each scaled unit replaced by its system unit: of N·mm and of mN·m it is N·m.
std::vector<CElement> systemElements(const std::vector<CElement>& elements);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_ELEMENTS_H
