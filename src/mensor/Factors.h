// Factors.h: arithmetic with the factors of products. It registers nothing. Not installed.
//
// A factor points at the CUnitPtr of its unit, since counting owners would take longer than the
// arithmetic. The caller keeps these CUnitPtr alive and in place.
#ifndef MENSOR_FACTORS_H
#define MENSOR_FACTORS_H

#include <atomic>
#include <forward_list>
#include <vector>

#include "mensor/ShortVector.h"
#include "mensor/Unit.h"
#include "mensor/UnitRationalPower.h"

namespace mensor::detail {

struct Factor {
    const CUnitPtr* Unit;
    int Pow;
    int Root;
};

using Factors = CShortVector<Factor, 8>;

// The elements() of clients' units. Lists of factors point into them.
using GivenFactors = std::forward_list<std::vector<CUnitRationalPower>>;

// Returns whether the unit is of one of the library's own kinds, whose factors are known without
// calling elements().
bool isOwnKind(const CUnit& unit);

// The factors of `unit`. For a client's kind, calls elements() and adds the result to `given`.
// Throws std::invalid_argument if an element has no unit.
Factors factorsOf(const CUnitPtr& unit, GivenFactors& given);

// Returns `factors` as a list of Factor. Throws as above.
Factors factorsOf(const std::vector<CUnitRationalPower>& factors);

// The product of both lists. Factors of the same unit object become one factor in lowest terms.
// Factors with the exponent 0 are dropped. Throws std::overflow_error if an exponent leaves the
// range of int.
Factors multiplied(const Factors& left, const Factors& right);

// Raises each factor to the power pow/root, in lowest terms. Throws as above.
void raise(Factors& factors, int pow, int root);

// Negates each exponent, without reducing it. Throws as above.
void invert(Factors& factors);

// True once a product has had an exponent beyond ±64 or a root beyond 8. Until then a short text
// cannot overflow an int.
extern std::atomic<bool> largeExponentsExist;

// The hash code of a product of these factors, from those of their units.
int hashOf(const Factors& factors);
int hashOf(const std::vector<CUnitRationalPower>& factors);

}  // namespace mensor::detail

#endif  // MENSOR_FACTORS_H
