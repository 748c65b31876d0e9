#include "mensor_exact/Nearest.h"

#include <cstring>

#include "mensor_exact/TwoWords.h"

namespace mensor::exact {

std::uint64_t bitsOfDouble(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

double doubleOfBits(std::uint64_t bits) {
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

float floatOfBits(std::uint64_t bits) {
    const auto word = static_cast<std::uint32_t>(bits);
    float value = 0;
    std::memcpy(&value, &word, sizeof value);
    return value;
}

CNumber CNumber::ofDouble(double value) {
    const std::uint64_t bits = bitsOfDouble(value);
    const std::uint64_t stored = bits & ((std::uint64_t{1} << 52) - 1);
    const auto exponent = static_cast<int>(bits >> 52 & 0x7FF);
    if (exponent == 0) {
        return {bits >> 63 != 0, stored, -1074};
    }
    return {bits >> 63 != 0, stored | std::uint64_t{1} << 52, exponent - 1075};
}

CNumber CNumber::ofWhole(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    return {value < 0, value < 0 ? 0 - bits : bits, 0};
}

CNearest nearest(const CFormat& format, bool isNegative, std::uint64_t mantissa, bool isWhole,
                 std::int64_t twos) {
    const int stored = format.MantissaBits - 1;
    const std::uint64_t infinity = ((std::uint64_t{1} << format.ExponentBits) - 1) << stored;
    const std::uint64_t sign = std::uint64_t{isNegative} << (stored + format.ExponentBits);

    std::int64_t drop = bitsOf(mantissa) - format.MantissaBits;
    if (twos + drop < format.LeastTwos) {
        drop = format.LeastTwos - twos;
    }
    // If more than 64 bits are dropped, the number is less than half of the smallest positive
    // number of the format.
    if (drop > 64) {
        return {sign, false};
    }
    const std::uint64_t half = std::uint64_t{1} << (drop - 1);
    const std::uint64_t dropped = mantissa & (half | (half - 1));
    std::uint64_t kept = drop == 64 ? 0 : mantissa >> drop;
    if (dropped > half || (dropped == half && (!isWhole || kept % 2 != 0))) {
        ++kept;
    }

    // If rounding up gives a power of two, the addition increments the exponent. The largest number
    // becomes infinity.
    std::uint64_t bits = kept;
    if (kept >> stored != 0) {
        const std::int64_t exponent = twos + drop - format.LeastTwos;
        bits = exponent > std::int64_t{1} << format.ExponentBits
                   ? infinity
                   : kept + (static_cast<std::uint64_t>(exponent) << stored);
    }
    if (bits >= infinity) {
        return {sign | infinity, false};
    }
    return {sign | bits, dropped == 0 && isWhole};
}

}  // namespace mensor::exact
