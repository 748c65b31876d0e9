// Rounding.h: how far the doubles of the registry may be from the exact numbers. For the companion's own
// use; not installed.
//
// The registry converts by chains of doubles. Each factor and each offset is rounded three times: when
// the number becomes a double, when the library inverts it, and when it is multiplied or added. Each
// rounding is at most 2^-53 of the result.
//
// A product of units has one factor, which is a product of powers. If a factor with k roundings is raised
// to the power p/r, they count as k·p/r. `std::pow` adds two more, since its error is up to one unit in
// the last place. The multiplication adds one. If p/r is not a double, rounding it adds as many roundings
// as the logarithm of the power.
#ifndef MENSOR_CHECKED_ROUNDING_H
#define MENSOR_CHECKED_ROUNDING_H

#include <vector>

#include "mensor/Converter.h"
#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor::checked {

/// Returns the steps of a chain in their order, without identity converters. A chain may have any length.
std::vector<CConverterPtr> stepsOf(const CConverterPtr& converter);

/// Returns whether all converters from the elements of `unit` to their system units are scalings and
/// shifts. A converter of a client's own class may be anything else.
bool isOfNumbers(const CUnitPtr& unit);

/// The conversion Slope·x + Zero of the library, with a bound of its error.
struct CRounded {
    double Slope;      ///< wrong by at most Roundings·2^-53 of itself
    double Zero;       ///< wrong by at most Roundings·2^-53·ZeroSize
    double Roundings;  ///< the number of roundings
    double ZeroSize;   ///< the sum of the absolute values of all offsets
};

/// Returns the conversion of `converter`.
CRounded roundedOf(const CConverterPtr& converter);

/// Returns the conversion from `unit` to its dimension.
CRounded roundedToDimension(const CUnitPtr& unit);

/// Returns whether `given` converts from `from` to `to`, within its error. Both must be compatible.
bool converts(const CRounded& given, const CMeaning& from, const CMeaning& to);

/// Returns whether the library converts the transformed unit `unit` to its system unit as `meaning` says.
bool convertsAs(CUnit& unit, const CMeaning& meaning);

/// Returns whether `a` and `b` are the same, within the error of the conversion of `unit`.
bool areSame(const CMeaning& a, const CMeaning& b, const CUnitPtr& unit);

/// Returns whether `unit` means `meaning`, within the error of its conversion.
bool means(const CUnitPtr& unit, const CMeaning& meaning);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_ROUNDING_H
