// factors.h: the arithmetic of factors, which registers nothing. For the library's own use; not
// installed.
#ifndef MENSOR_FACTORS_H
#define MENSOR_FACTORS_H

#include <atomic>
#include <vector>

#include "mensor/UnitRationalPower.h"

namespace mensor {
namespace detail {

using Factors = std::vector<CUnitRationalPower>;

// Both lists merged: factors of the same unit object become one in lowest terms, vanished ones go.
// Throws std::overflow_error where an exponent leaves the range of int.
Factors multiplied(const Factors& left, const Factors& right);

// Each factor to the power pow/root, in lowest terms. Throws as above.
Factors raised(Factors factors, int pow, int root);

// Whether any product was built with an exponent that is neither small nor a simple fraction. Before, a
// few more factors lead nowhere near the ends of the range of int, whatever units the hash leads to.
extern std::atomic<bool> largeExponentsExist;

// The hash code of a product of these factors, from those of their units.
int hashOf(const Factors& factors);

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_FACTORS_H
