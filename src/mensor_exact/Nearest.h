// Nearest.h: takes doubles apart, and rounds a number whose leading 64 bits are known to a double or
// float. Not installed.
#ifndef MENSOR_EXACT_NEAREST_H
#define MENSOR_EXACT_NEAREST_H

#include <cstdint>

namespace mensor::exact {

std::uint64_t bitsOfDouble(double value);
double doubleOfBits(std::uint64_t bits);
float floatOfBits(std::uint64_t bits);

/// The number ±Mantissa·2^Twos.
struct CNumber {
    bool IsNegative = false;
    std::uint64_t Mantissa = 0;
    int Twos = 0;

    /// Returns the exact value of a finite double.
    static CNumber ofDouble(double value);

    static CNumber ofWhole(std::int64_t value);
};

/// A binary format of IEEE 754.
struct CFormat {
    int MantissaBits;  ///< with the leading bit, which is not stored
    int LeastTwos;     ///< the exponent of the last place of subnormal numbers
    int ExponentBits;

    static constexpr CFormat ofDouble() { return {53, -1074, 11}; }
    static constexpr CFormat ofFloat() { return {24, -149, 8}; }
};

/// The bits of a double or float, and whether they are exactly the number.
struct CNearest {
    std::uint64_t Bits;
    bool IsExact;
};

/// Rounds `mantissa`·2^`twos` to the nearest number of the format, ties to even. If `isWhole` is false,
/// the number is greater than that by less than 2^`twos`. `mantissa` has at least two bits more than
/// the format.
///
/// Subnormal results are rounded once, at their own last place. A number beyond the largest one by half
/// a place or more becomes infinity.
CNearest nearest(const CFormat& format, bool isNegative, std::uint64_t mantissa, bool isWhole,
                 std::int64_t twos);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_NEAREST_H
