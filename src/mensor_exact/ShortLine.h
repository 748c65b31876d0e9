// ShortLine.h: exact conversion with whole numbers of 128 bits, for lines of short numbers. For the
// library's own use; not installed.
#ifndef MENSOR_EXACT_SHORTLINE_H
#define MENSOR_EXACT_SHORTLINE_H

#include <cstdint>
#include <optional>

#include "mensor_exact/Nearest.h"

namespace mensor::exact {

/// y = (A·x ± B)·2^Twos/D with whole numbers that fit into one word each. A and D are not zero.
///
/// Nearly every conversion between units is of this kind. The others have longer numbers or a power of π.
struct CShortLine {
    std::uint64_t A = 1;
    std::uint64_t B = 0;
    std::uint64_t D = 1;
    int Twos = 0;
    bool IsMinusB = false;

    /// The result for `x`, rounded once, or nothing if 128 bits are too few for A·x ± B. That happens
    /// only if B is not 0. The sign of a zero is that of `x` if B is 0, else it is plus.
    std::optional<CNearest> convert(const CNumber& x, const CFormat& format) const;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_SHORTLINE_H
