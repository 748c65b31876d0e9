// Judge.h: computes the double nearest to an exact result with GMP and MPFR, independently of the
// library.
#ifndef MENSOR_TESTS_JUDGE_H
#define MENSOR_TESTS_JUDGE_H

#include <gmpxx.h>
#include <mpfr.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "support/Matchers.h"

namespace mensor {

inline double doubleOf(std::uint64_t bits) {
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// A number of MPFR.
class Number {
public:
    explicit Number(mpfr_prec_t precision) { mpfr_init2(m_Value, precision); }
    ~Number() { mpfr_clear(m_Value); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    operator mpfr_ptr() { return m_Value; }

private:
    mpfr_t m_Value;
};

/// Rounds numerator/denominator·2^twos once to the nearest double, ties to even. Zero is +0.
inline double nearest(const mpz_class& numerator, const mpz_class& denominator, long twos) {
    Number exact(static_cast<mpfr_prec_t>(mpz_sizeinbase(numerator.get_mpz_t(), 2)) + 2);
    mpfr_set_z_2exp(exact, numerator.get_mpz_t(), twos, MPFR_RNDN);
    if (numerator == 0) {
        return 0.0;
    }
    // The number of bits of a double of this size: 53, or fewer below 2^-1022.
    Number truncated(60);
    const bool isTruncated = mpfr_div_z(truncated, exact, denominator.get_mpz_t(), MPFR_RNDZ) != 0;
    const long bits = std::min(53L, static_cast<long>(mpfr_get_exp(truncated)) + 1074);
    if (bits < 1) {
        // A number of more than half of the smallest double is rounded up to it. Exactly half is
        // rounded to zero.
        const bool isAboveHalf = bits == 0 && (isTruncated || mpfr_min_prec(truncated) > 1);
        return std::copysign(isAboveHalf ? std::numeric_limits<double>::denorm_min() : 0.0,
                             mpfr_sgn(static_cast<mpfr_ptr>(truncated)));
    }
    Number result(static_cast<mpfr_prec_t>(bits));
    mpfr_div_z(result, exact, denominator.get_mpz_t(), MPFR_RNDN);
    return mpfr_get_d(result, MPFR_RNDN);
}

/// A finite double as a whole number and a power of two.
struct Parts {
    explicit Parts(double x) {
        int exponent = 0;
        const double fraction = std::frexp(x, &exponent);
        Mantissa = mpz_class(std::ldexp(fraction, 53));
        Twos = exponent - 53;
    }

    mpz_class Mantissa;
    long Twos;
};

/// The conversion factor·x + offset with fractions, as (A·x + B)/D.
class LinearJudge {
public:
    LinearJudge(const mpq_class& factor, const mpq_class& offset)
        : m_A(factor.get_num() * offset.get_den()),
          m_B(offset.get_num() * factor.get_den()),
          m_D(factor.get_den() * offset.get_den()) {}

    const mpz_class& a() const { return m_A; }
    const mpz_class& b() const { return m_B; }
    const mpz_class& d() const { return m_D; }

    double convert(double x) const {
        if (!std::isfinite(x)) {
            return x;
        }
        if (x == 0.0 && m_B == 0) {
            return x;
        }
        const Parts parts(x);
        mpz_class numerator = m_A * parts.Mantissa;
        long twos = parts.Twos;
        if (m_B != 0) {
            mpz_class offset = m_B;
            if (twos >= 0) {
                numerator <<= static_cast<unsigned long>(twos);
                twos = 0;
            } else {
                offset <<= static_cast<unsigned long>(-twos);
            }
            numerator += offset;
        }
        return nearest(numerator, m_D, twos);
    }

private:
    mpz_class m_A, m_B, m_D;
};

/// The conversion factor·x, where the factor is radicand^(1/root)·π^(pi/piRoot). It uses bounds of the
/// factor with 400 bits, so close that both give the same double.
class IrrationalJudge {
public:
    IrrationalJudge(const mpq_class& radicand, unsigned long root, long pi,
                    unsigned long piRoot = 1)
        : m_Low(Bits), m_High(Bits) {
        bound(m_Low, radicand, root, pi, piRoot, MPFR_RNDD, MPFR_RNDU);
        bound(m_High, radicand, root, pi, piRoot, MPFR_RNDU, MPFR_RNDD);
    }

    /// Returns NaN if the bits do not suffice. The tests would then fail.
    double convert(double x) {
        if (!std::isfinite(x) || x == 0.0) {
            return x;
        }
        const double low = at(x, m_Low);
        return low == at(x, m_High) ? low : std::numeric_limits<double>::quiet_NaN();
    }

private:
    static constexpr mpfr_prec_t Bits = 400;

    static void bound(mpfr_ptr result, const mpq_class& radicand, unsigned long root, long pi,
                      unsigned long piRoot, mpfr_rnd_t towards, mpfr_rnd_t away) {
        Number power(Bits);
        mpfr_set_q(result, radicand.get_mpq_t(), towards);
        mpfr_rootn_ui(result, result, root, towards);
        mpfr_const_pi(power, pi < 0 ? away : towards);
        mpfr_rootn_ui(power, power, piRoot, pi < 0 ? away : towards);
        mpfr_pow_ui(power, power, static_cast<unsigned long>(pi < 0 ? -pi : pi),
                    pi < 0 ? away : towards);
        if (pi < 0) {
            mpfr_div(result, result, power, towards);
        } else {
            mpfr_mul(result, result, power, towards);
        }
    }

    static double at(double x, mpfr_ptr factor) {
        mpz_class mantissa;
        const long twos = mpfr_get_z_2exp(mantissa.get_mpz_t(), factor);
        const Parts parts(x);
        return nearest(mantissa * parts.Mantissa, 1, twos + parts.Twos);
    }

    Number m_Low, m_High;
};

/// Returns doubles of about 2^exponent that are hard to convert: the result is the middle between two
/// neighbouring doubles, or as close to it as possible.
inline std::vector<double> hardCases(const LinearJudge& judge, int exponent) {
    std::vector<double> cases;
    // x = m·2^twos, where m has at most 53 bits. The result y = (A·x + B)/D is about n·2^place.
    const long twos = exponent - 52;
    const auto take = [&](const mpz_class& m) {
        if (m != 0 && mpz_sizeinbase(m.get_mpz_t(), 2) <= 53) {
            const double x = std::ldexp(m.get_d(), static_cast<int>(twos));
            if (std::isfinite(x) && x != 0.0) {
                cases.insert(cases.end(), {x, -x, std::nextafter(x, 0.0)});
            }
        }
    };
    // The number of bits of the result is that of the larger term, or one more.
    const auto bits = [](const mpz_class& number) {
        return number == 0 ? -5000L : static_cast<long>(mpz_sizeinbase(number.get_mpz_t(), 2));
    };
    const long size = std::max(bits(judge.a()) + exponent, bits(judge.b())) - bits(judge.d()) - 52;
    for (long about = size - 1; about <= size + 1; ++about) {
        const long place = std::max(about, -1074L);
        // 2n = (P·m + R)/Q. An m is hard if this is an odd number or very close to one.
        const long shift = std::max({0L, place - 1 - twos, place - 1});
        mpz_class p = judge.a() << static_cast<unsigned long>(twos + 1 - place + shift);
        const mpz_class r = judge.b() << static_cast<unsigned long>(1 - place + shift);
        mpz_class q = judge.d() << static_cast<unsigned long>(shift);
        if (r == 0) {
            const mpz_class common = gcd(p, q);
            p /= common;
            q /= common;
            // Ties: odd multiples of Q, if P is odd.
            const mpz_class most = mpz_class(1) << 53;
            for (unsigned long i = 1; p % 2 != 0 && i < 4; ++i) {
                const mpz_class times = (most / q - 1) / i;
                take(q * (times % 2 == 0 ? times - 1 : times));
            }
            // Close to ties: the convergents n/m of P/Q, and their odd multiples.
            mpz_class m0 = 1, m1 = 0, n0 = 0, n1 = 1;
            for (mpz_class a = p, b = q; b != 0;) {
                const mpz_class step = a / b;
                const mpz_class rest = a % b;
                const mpz_class m2 = step * m1 + m0;
                const mpz_class n2 = step * n1 + n0;
                m0 = m1, m1 = m2, n0 = n1, n1 = n2, a = b, b = rest;
                if (m1 == 0 || m1 >= most) {
                    break;
                }
                if (n1 % 2 != 0 && mpz_sizeinbase(m1.get_mpz_t(), 2) > 20) {
                    const mpz_class times = (most - 1) / m1;
                    take(m1);
                    take(m1 * (times % 2 == 0 ? times - 1 : times));
                }
            }
            continue;
        }
        // Solves P·m + R = Q + d modulo 2Q for small d.
        const mpz_class modulus = 2 * q;
        const mpz_class common = gcd(p, modulus);
        const mpz_class reduced = p / common;
        const mpz_class field = modulus / common;
        mpz_class inverse;
        if (field == 1 || mpz_sizeinbase(field.get_mpz_t(), 2) > 53 ||
            mpz_invert(inverse.get_mpz_t(), reduced.get_mpz_t(), field.get_mpz_t()) == 0) {
            continue;
        }
        for (long d = -2; d <= 2; ++d) {
            const mpz_class wanted = (q - r) / common + d;
            mpz_class m = wanted * inverse % field;
            const mpz_class least = mpz_class(1) << 52;
            if (m < least) {
                m += (least - m + field - 1) / field * field;
            }
            take(m);
        }
    }
    return cases;
}

}  // namespace mensor

#endif  // MENSOR_TESTS_JUDGE_H
