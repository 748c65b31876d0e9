#include "mensor_exact/ShortLine.h"

#include "mensor_exact/TwoWords.h"

namespace mensor::exact {

namespace {

/// The number ±Magnitude·2^Twos.
struct CScaled {
    bool IsNegative;
    CTwoWords Magnitude;
    int Twos;
};

// Changes the exponent to `twos`, which is not greater than the present one. Returns false if the
// magnitude would have more than 127 bits.
bool lower(CScaled& number, int twos) {
    const int count = number.Twos - twos;
    if (count > 127 - bitsOf(number.Magnitude)) {
        return false;
    }
    number.Magnitude = shiftedLeft(number.Magnitude, count);
    number.Twos = twos;
    return true;
}

CScaled sumOf(const CScaled& a, const CScaled& b) {
    if (a.IsNegative == b.IsNegative) {
        return {a.IsNegative, a.Magnitude + b.Magnitude, a.Twos};
    }
    return a.Magnitude < b.Magnitude ? CScaled{b.IsNegative, b.Magnitude - a.Magnitude, a.Twos}
                                     : CScaled{a.IsNegative, a.Magnitude - b.Magnitude, a.Twos};
}

}  // namespace

std::optional<CNearest> CShortLine::convert(const CNumber& x, const CFormat& format) const {
    CScaled sum = {x.IsNegative, product(A, x.Mantissa), x.Twos};
    if (B != 0) {
        CScaled offset = {IsMinusB, {0, B}, 0};
        if (isZero(sum.Magnitude)) {
            sum = offset;
        } else {
            if (!(sum.Twos < 0 ? lower(offset, sum.Twos) : lower(sum, 0))) {
                return std::nullopt;
            }
            sum = sumOf(sum, offset);
            if (isZero(sum.Magnitude)) {
                sum.IsNegative = false;
            }
        }
    }
    if (isZero(sum.Magnitude)) {
        return CNearest{
            std::uint64_t{sum.IsNegative} << (format.MantissaBits - 1 + format.ExponentBits), true};
    }

    // The highest bit of the divisor is set, and that of the dividend is not. So the quotient has 63 or
    // 64 bits. A dividend of 128 bits loses its last bit before.
    const int up = __builtin_clzll(D);
    const int left = 127 - bitsOf(sum.Magnitude);
    bool isWhole = true;
    CTwoWords dividend;
    if (left >= 0) {
        dividend = shiftedLeft(sum.Magnitude, left);
    } else {
        isWhole = sum.Magnitude.Low % 2 == 0;
        dividend = {sum.Magnitude.High >> 1, sum.Magnitude.High << 63 | sum.Magnitude.Low >> 1};
    }
    std::uint64_t rest = 0;
    const std::uint64_t mantissa = quotient(dividend, D << up, rest);
    return nearest(format, sum.IsNegative, mantissa, isWhole && rest == 0,
                   std::int64_t{sum.Twos} - left + up + Twos);
}

}  // namespace mensor::exact
