// WholeLine.h: the conversion (A·x ± B)·2^twos/D, computed with GMP and rounded once. Tests of the fast
// conversions compare results with it, and use it as the slow way.
#ifndef MENSOR_TESTS_WHOLELINE_H
#define MENSOR_TESTS_WHOLELINE_H

#include <gmpxx.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "mensor_exact/FastForm.h"

namespace mensor::exact {

inline mpz_class wholeOf(std::uint64_t number) {
    return (mpz_class(static_cast<unsigned long>(number >> 32)) << 32) +
           static_cast<unsigned long>(number & 0xFFFFFFFF);
}

class WholeLine : public CSlowWay {
public:
    explicit WholeLine(const CShortLine& line) : m_Line(line) {}

    CNearest convert(const CNumber& x, const CFormat& format) const override {
        ++Calls;
        mpz_class sum = wholeOf(m_Line.A) * wholeOf(x.Mantissa) * (x.IsNegative ? -1 : 1);
        mpz_class offset = wholeOf(m_Line.B) * (m_Line.IsMinusB ? -1 : 1);
        mpz_class divisor = wholeOf(m_Line.D);
        const int place = offset == 0 ? x.Twos : std::min(x.Twos, 0);
        sum = (sum << static_cast<unsigned>(x.Twos - place)) +
              (offset << static_cast<unsigned>(-std::min(place, 0)));
        const std::uint64_t signBit = std::uint64_t{1}
                                      << (format.MantissaBits - 1 + format.ExponentBits);
        if (sum == 0) {
            return {m_Line.B == 0 && x.IsNegative ? signBit : 0, true};
        }
        const bool isNegative = sum < 0;
        sum = abs(sum);

        // The smallest exponent of the last place for which the quotient fits into the format.
        const long twos = place + m_Line.Twos;
        long least = static_cast<long>(mpz_sizeinbase(sum.get_mpz_t(), 2)) -
                     static_cast<long>(mpz_sizeinbase(divisor.get_mpz_t(), 2)) + twos -
                     format.MantissaBits - 1;
        least = std::max(least, static_cast<long>(format.LeastTwos));
        mpz_class quotient, rest, over, under;
        for (;; ++least) {
            over = sum << static_cast<unsigned>(std::max(twos - least, 0L));
            under = divisor << static_cast<unsigned>(std::max(least - twos, 0L));
            mpz_fdiv_qr(quotient.get_mpz_t(), rest.get_mpz_t(), over.get_mpz_t(),
                        under.get_mpz_t());
            if (mpz_sizeinbase(quotient.get_mpz_t(), 2) <=
                static_cast<std::size_t>(format.MantissaBits)) {
                break;
            }
        }
        const mpz_class twice = rest * 2;
        if (twice > under || (twice == under && mpz_odd_p(quotient.get_mpz_t()) != 0)) {
            ++quotient;
        }
        const double value = std::ldexp(quotient.get_d(), static_cast<int>(std::min(least, 5000L)));
        std::uint64_t bits = bitsOfDouble(value);
        if (format.MantissaBits == 24) {
            bits = bitsOfFloat(static_cast<float>(value));  // exact or infinite
        }
        return {isNegative ? bits | signBit : bits, rest == 0};
    }

    static std::uint64_t bitsOfFloat(float value) {
        std::uint32_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    }

    static inline long Calls = 0;

private:
    CShortLine m_Line;
};

}  // namespace mensor::exact

#endif  // MENSOR_TESTS_WHOLELINE_H
