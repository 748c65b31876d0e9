#include "mensor_exact/Rounding.h"

namespace mensor {
namespace exact {

CNearest nearestQuotient(const CFormat& format, bool negative, const Whole& numerator,
                         const Whole& denominator, std::int64_t twos) {
    const std::uint64_t sign = std::uint64_t{negative}
                               << (format.MantissaBits - 1 + format.ExponentBits);
    if (numerator.is_zero()) {
        return {sign, true};
    }
    const auto bits = static_cast<std::int64_t>(exact::bitsOf(numerator)) -
                      static_cast<std::int64_t>(exact::bitsOf(denominator));
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
    return nearest(format, negative, static_cast<std::uint64_t>(quotient), rest.is_zero(),
                   twos - shift);
}

CRounded roundQuotient(bool negative, const Whole& numerator, const Whole& denominator,
                       std::int64_t twos) {
    const CNearest result =
        nearestQuotient(CFormat::ofDouble(), negative, numerator, denominator, twos);
    return {doubleOfBits(result.Bits), result.IsExact};
}

}  // namespace exact
}  // namespace mensor
