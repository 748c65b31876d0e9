// ShortLine.h: exact conversion in arithmetic of 128 bits, for conversions whose numbers have at most
// 64 bits. Not installed.
#ifndef MENSOR_EXACT_SHORTLINE_H
#define MENSOR_EXACT_SHORTLINE_H

#include <cstdint>
#include <optional>

#include "mensor_exact/Nearest.h"

namespace mensor::exact {

/// The conversion y = (A·x ± B)·2^Twos/D with whole numbers of at most 64 bits. A and D are not zero.
///
/// Nearly all conversions between units are of this kind. The others have longer numbers, roots or a
/// power of π.
struct CShortLine {
    std::uint64_t A = 1;
    std::uint64_t B = 0;
    std::uint64_t D = 1;
    int Twos = 0;
    bool IsMinusB = false;

    /// Returns the result for `x`, rounded once, or nothing if A·x ± B needs more than 128 bits. If B
    /// is 0, it never needs more. A zero has the sign of `x` if B is 0. Else it is positive.
    std::optional<CNearest> convert(const CNumber& x, const CFormat& format) const;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_SHORTLINE_H
