// Rounding.h: the double nearest to a quotient of whole numbers. For the library's own use; not
// installed.
#ifndef MENSOR_EXACT_ROUNDING_H
#define MENSOR_EXACT_ROUNDING_H

#include <cstdint>

#include "mensor_exact/Whole.h"

namespace mensor {
namespace exact {

/// A double, and whether it is exactly the number that was rounded.
struct CRounded {
    double Value;
    bool IsExact;
};

/// ±numerator/denominator·2^twos, rounded once to the nearest double, ties to even. Subnormal numbers
/// are rounded at their last place, too; beyond the largest double by half a place or more is infinity.
/// `numerator` is not negative, `denominator` is positive. Zero has the sign that is given.
///
/// Computed with whole numbers only: no state of the processor plays a part.
CRounded roundQuotient(bool negative, const Whole& numerator, const Whole& denominator,
                       std::int64_t twos);

/// The parts of a finite double: (-1)^Negative·Mantissa·2^Twos.
struct CDoubleParts {
    explicit CDoubleParts(double value);

    bool Negative;
    std::uint64_t Mantissa;
    int Twos;
};

std::uint64_t bitsOfDouble(double value);
double doubleOfBits(std::uint64_t bits);

}  // namespace exact
}  // namespace mensor

#endif  // MENSOR_EXACT_ROUNDING_H
