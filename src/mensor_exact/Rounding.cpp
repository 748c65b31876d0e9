#include "mensor_exact/Rounding.h"

#include <cstring>

namespace mensor {
namespace exact {

namespace {

constexpr int MantissaBits = 53;
constexpr int LeastTwos = -1074;  // of the last place of a subnormal number
constexpr std::uint64_t SignBit = std::uint64_t{1} << 63;
constexpr std::uint64_t InfinityBits = std::uint64_t{0x7FF} << 52;

int bitsOf(std::uint64_t number) { return 64 - __builtin_clzll(number); }

// `quotient`·2^twos, which is below the true number by less than 2^twos, and is it if `isWhole`.
// The quotient has at least 55 bits, so that its last bit is never kept.
CRounded assemble(bool negative, std::uint64_t quotient, bool isWhole, std::int64_t twos) {
    const int bits = bitsOf(quotient);
    std::int64_t drop = bits - MantissaBits;
    if (twos + drop < LeastTwos) {
        drop = LeastTwos - twos;
    }
    std::uint64_t kept = 0;
    bool isExact = false;
    if (drop < 64) {
        const std::uint64_t half = std::uint64_t{1} << (drop - 1);
        const std::uint64_t dropped = quotient & (2 * half - 1);
        kept = quotient >> drop;
        isExact = dropped == 0 && isWhole;
        const bool isAbove = dropped > half || (dropped == half && !isWhole);
        const bool isTie = dropped == half && isWhole;
        if (isAbove || (isTie && kept % 2 != 0)) {
            ++kept;
        }
    }
    // A mantissa that has become 2^53 carries into the exponent, and the largest one into infinity.
    std::uint64_t result = kept;
    if (kept >> (MantissaBits - 1) != 0) {
        const std::int64_t exponent = twos + drop - LeastTwos;
        if (exponent > 0x7FE) {
            result = InfinityBits;
            isExact = false;
        } else {
            result += static_cast<std::uint64_t>(exponent) << 52;
            if (result >= InfinityBits) {
                result = InfinityBits;
                isExact = false;
            }
        }
    }
    return {doubleOfBits(result | (negative ? SignBit : 0)), isExact};
}

}  // namespace

std::uint64_t bitsOfDouble(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

double doubleOfBits(std::uint64_t bits) {
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

CDoubleParts::CDoubleParts(double value) {
    const std::uint64_t bits = bitsOfDouble(value);
    const auto exponent = static_cast<int>(bits >> 52 & 0x7FF);
    Negative = (bits & SignBit) != 0;
    Mantissa = bits & ((std::uint64_t{1} << 52) - 1);
    Twos = LeastTwos;
    if (exponent != 0) {
        Mantissa |= std::uint64_t{1} << 52;
        Twos += exponent - 1;
    }
}

CRounded roundQuotient(bool negative, const Whole& numerator, const Whole& denominator,
                       std::int64_t twos) {
    if (numerator.is_zero()) {
        return {negative ? -0.0 : 0.0, true};
    }
    const auto bits = static_cast<std::int64_t>(exact::bitsOf(numerator)) -
                      static_cast<std::int64_t>(exact::bitsOf(denominator));
    // The number is below 2^(bits + 1) and above 2^(bits - 1), times 2^twos.
    if (bits - 1 + twos >= 1024) {
        return {doubleOfBits(InfinityBits | (negative ? SignBit : 0)), false};
    }
    if (bits + 1 + twos <= LeastTwos - 1) {
        return {negative ? -0.0 : 0.0, false};
    }
    // A quotient of 62 or 63 bits.
    const std::int64_t shift = 62 - bits;
    Whole quotient;
    Whole rest;
    if (shift >= 0) {
        const Whole shifted = numerator << static_cast<unsigned>(shift);
        boost::multiprecision::divide_qr(shifted, denominator, quotient, rest);
    } else {
        const Whole shifted = denominator << static_cast<unsigned>(-shift);
        boost::multiprecision::divide_qr(numerator, shifted, quotient, rest);
    }
    return assemble(negative, static_cast<std::uint64_t>(quotient), rest.is_zero(), twos - shift);
}

}  // namespace exact
}  // namespace mensor
