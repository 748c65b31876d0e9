#include "mensor_exact/Rounding.h"

namespace mensor::exact {

CNearest nearestQuotient(const CFormat& format, bool negative, const CWhole& numerator,
                         const CWhole& denominator, std::int64_t twos) {
    const std::uint64_t sign = std::uint64_t{negative}
                               << (format.MantissaBits - 1 + format.ExponentBits);
    if (numerator.isZero()) {
        return {sign, true};
    }
    const auto bits =
        static_cast<std::int64_t>(numerator.bits()) - static_cast<std::int64_t>(denominator.bits());
    // The quotient has 62 or 63 bits.
    const std::int64_t shift = 62 - bits;
    const CDivision division = shift >= 0 ? CDivision(numerator.shifted(shift), denominator)
                                          : CDivision(numerator, denominator.shifted(-shift));
    return nearest(format, negative, division.Quotient.low(), division.Rest.isZero(), twos - shift);
}

CRounded roundQuotient(bool negative, const CWhole& numerator, const CWhole& denominator,
                       std::int64_t twos) {
    const CNearest result =
        nearestQuotient(CFormat::ofDouble(), negative, numerator, denominator, twos);
    return {doubleOfBits(result.Bits), result.IsExact};
}

}  // namespace mensor::exact
