// Rounding.h: rounds a quotient of whole numbers to the nearest double or float. Not installed.
#ifndef MENSOR_EXACT_ROUNDING_H
#define MENSOR_EXACT_ROUNDING_H

#include <cstdint>

#include "mensor_exact/Nearest.h"
#include "mensor_exact/Whole.h"

namespace mensor::exact {

/// Rounds ±numerator/denominator·2^twos once to the nearest number of a format, ties to even. Subnormal
/// results are rounded at their own last place. A number beyond the largest one by half a last place or more
/// becomes infinity. `numerator` is not negative, `denominator` is positive. Zero gets the sign of
/// `negative`.
///
/// Computes with whole numbers only, so the rounding mode of the processor has no influence.
CNearest nearestQuotient(const CFormat& format, bool negative, const CWhole& numerator,
                         const CWhole& denominator, std::int64_t twos);

/// A double, and whether it is exactly the number.
struct CRounded {
    double Value;
    bool IsExact;
};

/// The same for doubles.
CRounded roundQuotient(bool negative, const CWhole& numerator, const CWhole& denominator,
                       std::int64_t twos);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_ROUNDING_H
