// Nearest.h: doubles as whole numbers, and the double or float nearest to a number of which 64 bits are
// known. For the library's own use; not installed.
#ifndef MENSOR_EXACT_NEAREST_H
#define MENSOR_EXACT_NEAREST_H

#include <cstdint>

namespace mensor::exact {

std::uint64_t bitsOfDouble(double value);
double doubleOfBits(std::uint64_t bits);
float floatOfBits(std::uint64_t bits);

/// ±Mantissa·2^Twos
struct CNumber {
    bool IsNegative = false;
    std::uint64_t Mantissa = 0;
    int Twos = 0;

    /// A finite double, exactly.
    static CNumber ofDouble(double value);

    static CNumber ofWhole(std::int64_t value);
};

/// A binary format of IEEE 754.
struct CFormat {
    int MantissaBits;  ///< with the one that is not stored
    int LeastTwos;     ///< exponent of the last place of subnormal numbers
    int ExponentBits;

    static constexpr CFormat ofDouble() { return {53, -1074, 11}; }
    static constexpr CFormat ofFloat() { return {24, -149, 8}; }
};

/// The bits of a double or float, and whether it is exactly the number that was rounded.
struct CNearest {
    std::uint64_t Bits;
    bool IsExact;
};

/// The number nearest to `mantissa`·2^`twos`, ties to even; or, if not `isWhole`, to a number above that by
/// less than 2^`twos`. `mantissa` has at least two bits more than the format keeps.
///
/// Subnormal results are rounded once, at their own last place. Beyond the largest number by half a place
/// or more is infinity.
CNearest nearest(const CFormat& format, bool isNegative, std::uint64_t mantissa, bool isWhole,
                 std::int64_t twos);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_NEAREST_H
