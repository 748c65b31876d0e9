// SmallFraction.h: fractions with at most 64 bits above and below, for constant expressions. Clients use
// CFraction (Fraction.h), which contains one.
#ifndef MENSOR_EXACT_SMALLFRACTION_H
#define MENSOR_EXACT_SMALLFRACTION_H

#include <cstdint>
#include <numeric>

namespace mensor::exact {

/// The fraction ±Numerator/Denominator·2^Twos·5^Fives, in lowest terms. Powers of 2 and 5 are separate
/// members, so the many powers of ten in units need no bits of the numerator and the denominator.
///
/// Zero is 0/1, positive, and without powers of 2 and 5. Two fractions are equal exactly if all
/// members are.
struct CSmallFraction {
    std::uint64_t Numerator = 0;    ///< coprime to 10 and to Denominator
    std::uint64_t Denominator = 1;  ///< coprime to 10
    std::int32_t Twos = 0;
    std::int32_t Fives = 0;
    bool Negative = false;

    constexpr CSmallFraction() = default;

    /// The number `whole`·10^tens.
    [[gnu::hot]] constexpr explicit CSmallFraction(std::uint64_t whole, std::int32_t tens = 0) {
        if (whole == 0) {
            return;
        }
        Twos = Fives = tens;
        for (; whole % 2 == 0; whole /= 2) {
            ++Twos;
        }
        for (; whole % 5 == 0; whole /= 5) {
            ++Fives;
        }
        Numerator = whole;
    }

    constexpr bool isZero() const { return Numerator == 0; }

    [[gnu::hot]] friend constexpr bool operator==(const CSmallFraction& a,
                                                  const CSmallFraction& b) {
        return a.Numerator == b.Numerator && a.Denominator == b.Denominator && a.Twos == b.Twos &&
               a.Fives == b.Fives && a.Negative == b.Negative;
    }

    /// Returns one divided by this fraction, which is not zero.
    constexpr CSmallFraction inverse() const {
        CSmallFraction result = *this;
        result.Numerator = Denominator;
        result.Denominator = Numerator;
        result.Twos = -Twos;
        result.Fives = -Fives;
        return result;
    }

    /// Multiplies by `other`. Returns false and changes nothing if 64 bits are too few.
    constexpr bool multiply(const CSmallFraction& other) {
        if (isZero() || other.isZero()) {
            *this = CSmallFraction();
            return true;
        }
        const std::uint64_t g = commonDivisor(Numerator, other.Denominator);
        const std::uint64_t h = commonDivisor(other.Numerator, Denominator);
        std::uint64_t numerator = 0;
        std::uint64_t denominator = 0;
        std::int32_t twos = 0;
        std::int32_t fives = 0;
        if (__builtin_mul_overflow(Numerator / g, other.Numerator / h, &numerator) ||
            __builtin_mul_overflow(Denominator / h, other.Denominator / g, &denominator) ||
            __builtin_add_overflow(Twos, other.Twos, &twos) ||
            __builtin_add_overflow(Fives, other.Fives, &fives)) {
            return false;
        }
        Numerator = numerator;
        Denominator = denominator;
        Twos = twos;
        Fives = fives;
        Negative = Negative != other.Negative;
        return true;
    }

    /// Raises to the power `exponent`, 0 or more. Returns false and changes nothing if 64 bits are too
    /// few.
    constexpr bool raise(int exponent) {
        CSmallFraction result(1);
        CSmallFraction square = *this;
        while (true) {
            if (exponent % 2 != 0 && !result.multiply(square)) {
                return false;
            }
            exponent /= 2;
            if (exponent == 0) {
                *this = result;
                return true;
            }
            if (!square.multiply(square)) {
                return false;
            }
        }
    }

    /// Adds `other`. Returns false and changes nothing if 64 bits are too few.
    constexpr bool add(const CSmallFraction& other) {
        if (other.isZero()) {
            return true;
        }
        if (isZero()) {
            *this = other;
            return true;
        }
        const std::int32_t twos = Twos < other.Twos ? Twos : other.Twos;
        const std::int32_t fives = Fives < other.Fives ? Fives : other.Fives;
        std::uint64_t a = Numerator;
        std::uint64_t b = other.Numerator;
        std::uint64_t denominator = 0;
        if (!scale(a, 2, Twos - twos) || !scale(a, 5, Fives - fives) ||
            !scale(b, 2, other.Twos - twos) || !scale(b, 5, other.Fives - fives) ||
            __builtin_mul_overflow(a, other.Denominator, &a) ||
            __builtin_mul_overflow(b, Denominator, &b) ||
            __builtin_mul_overflow(Denominator, other.Denominator, &denominator)) {
            return false;
        }
        std::uint64_t sum = 0;
        bool negative = Negative;
        if (Negative == other.Negative) {
            if (__builtin_add_overflow(a, b, &sum)) {
                return false;
            }
        } else {
            negative = a > b ? Negative : other.Negative;
            sum = a > b ? a - b : b - a;
        }
        CSmallFraction result(sum);
        if (sum != 0) {
            const std::uint64_t divisor = std::gcd(result.Numerator, denominator);
            result.Numerator /= divisor;
            result.Denominator = denominator / divisor;
            result.Twos += twos;
            result.Fives += fives;
            result.Negative = negative;
        }
        *this = result;
        return true;
    }

private:
    // The greatest common divisor. One of the two is usually 1.
    static constexpr std::uint64_t commonDivisor(std::uint64_t a, std::uint64_t b) {
        return a == 1 || b == 1 ? 1 : std::gcd(a, b);
    }

    static constexpr bool scale(std::uint64_t& number, std::uint64_t base, std::int32_t times) {
        for (; times > 0; --times) {
            if (__builtin_mul_overflow(number, base, &number)) {
                return false;
            }
        }
        return true;
    }
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_SMALLFRACTION_H
