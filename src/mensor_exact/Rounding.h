// Rounding.h: the double nearest to a quotient of whole numbers. For the library's own use; not
// installed.
#ifndef MENSOR_EXACT_ROUNDING_H
#define MENSOR_EXACT_ROUNDING_H

#include <cstdint>

#include "mensor_exact/Nearest.h"
#include "mensor_exact/Whole.h"

namespace mensor::exact {

/// ±numerator/denominator·2^twos, rounded once to the nearest number of a format, ties to even. Subnormal
/// numbers are rounded at their last place, too; beyond the largest number by half a place or more is
/// infinity. `numerator` is not negative, `denominator` is positive. Zero has the sign that is given.
///
/// Computed with whole numbers only: no state of the processor plays a part.
CNearest nearestQuotient(const CFormat& format, bool negative, const CWhole& numerator,
                         const CWhole& denominator, std::int64_t twos);

/// A double, and whether it is exactly the number that was rounded.
struct CRounded {
    double Value;
    bool IsExact;
};

/// The same for doubles.
CRounded roundQuotient(bool negative, const CWhole& numerator, const CWhole& denominator,
                       std::int64_t twos);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_ROUNDING_H
