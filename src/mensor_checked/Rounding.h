// Rounding.h: how far the doubles of the registry may be from the numbers meant. For the companion's
// own use; not installed.
//
// The registry converts by chains of doubles. Each double of a chain is rounded when it is made from
// the number meant, once more where the library inverts it, and the product or sum with it is rounded:
// three roundings for each factor and each offset, each by at most 2^-53 of the result.
//
// A product of units has one factor, the product of powers. The k roundings of a factor to the power
// p/r become k·p/r. `std::pow` adds two, as it is right to one unit in the last place, and the product
// one. Where p/r is no double, its rounding moves the power by the logarithm of the power, in the same
// measure.
#ifndef MENSOR_CHECKED_ROUNDING_H
#define MENSOR_CHECKED_ROUNDING_H

#include <vector>

#include "mensor/Converter.h"
#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor {
namespace checked {

/// The converters that a chain applies one after the other, without identities. A chain may be of any
/// length.
std::vector<CConverterPtr> stepsOf(const CConverterPtr& converter);

/// Whether the way from `unit` to its system unit consists of numbers alone, and of no converter of a
/// client's own class, which need not be a straight line.
bool isOfNumbers(const CUnitPtr& unit);

/// What the library converts by, slope·x + zero, and how exactly.
struct CRounded {
    double Slope;
    double Zero;
    double Roundings;  ///< of each, of 2^-53: the slope's relative to it, the zero's to `ZeroSize`
    double ZeroSize;   ///< the sizes of all offsets together
};

CRounded roundedOf(const CConverterPtr& converter);

/// Of the way from `unit` to its dimension.
CRounded roundedToDimension(const CUnitPtr& unit);

/// Whether `given` is the conversion of `from` to `to`, which are compatible, but for its roundings.
bool converts(const CRounded& given, const CMeaning& from, const CMeaning& to);

/// Whether `unit`, a scaled or shifted one, is converted to its system unit as `meaning` says.
bool convertsAs(CUnit& unit, const CMeaning& meaning);

/// Whether the two are the same meaning but for the roundings of `unit`.
bool areSame(const CMeaning& a, const CMeaning& b, const CUnitPtr& unit);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_ROUNDING_H
