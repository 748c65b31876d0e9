// factors.h: the arithmetic of factors, which registers nothing. For the library's own use; not
// installed.
//
// Nothing here counts the owners of a unit, which would take longer than the arithmetic: whoever asks keeps
// the units alive, and the pointers to them where they are.
#ifndef MENSOR_FACTORS_H
#define MENSOR_FACTORS_H

#include <atomic>
#include <forward_list>
#include <vector>

#include "mensor/Unit.h"
#include "mensor/UnitRationalPower.h"
#include "mensor/short_vector.h"

namespace mensor {
namespace detail {

struct Factor {
    const CUnitPtr* Unit;
    int Pow;
    int Root;
};

using Factors = CShortVector<Factor, 8>;

// What clients' kinds of units said of their factors, which lists of factors point into.
using GivenFactors = std::forward_list<std::vector<CUnitRationalPower>>;

// Whether the unit is of one of the library's own kinds, which need not be asked for their factors.
bool isOwnKind(const CUnit& unit);

// The factors of `unit`. A client's kind is asked; what it says is added to `given`.
// Throws std::invalid_argument where that names an empty pointer.
Factors factorsOf(const CUnitPtr& unit, GivenFactors& given);

// The same factors. Throws as above.
Factors factorsOf(const std::vector<CUnitRationalPower>& factors);

// Both lists merged: factors of the same unit object become one in lowest terms, vanished ones go.
// Throws std::overflow_error where an exponent leaves the range of int.
Factors multiplied(const Factors& left, const Factors& right);

// Raises each factor to the power pow/root, in lowest terms. Throws as above.
void raise(Factors& factors, int pow, int root);

// Turns each factor over, without reducing it. Throws as above.
void invert(Factors& factors);

// Whether any product was registered with an exponent that is neither small nor a simple fraction.
// Before, a few more factors lead nowhere near the ends of the range of int, whatever units the hash
// leads to.
extern std::atomic<bool> largeExponentsExist;

// The hash code of a product of these factors, from those of their units.
int hashOf(const Factors& factors);
int hashOf(const std::vector<CUnitRationalPower>& factors);

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_FACTORS_H
