// near_middle.h: finds the factors whose products never come too close to the middle between two
// doubles. For these factors a fast conversion needs no test. Not installed.
//
// docs/exact-fast.md has the proof. It holds for every precision. So the functions take the number of
// bits, and a test tries all products with few bits.
#ifndef MENSOR_EXACT_NEAR_MIDDLE_H
#define MENSOR_EXACT_NEAR_MIDDLE_H

#include <algorithm>
#include <cstdint>

#include "mensor_exact/TwoWords.h"

namespace mensor::exact {

/// If the odd parts of numerator and denominator are at most this, every product is a tie or far enough
/// from the middle.
constexpr std::uint64_t mostOddPart(int bits) { return std::uint64_t{1} << (bits - 8); }

/// Returns whether a number of `bits` bits times numerator/denominator can be a tie. Both are odd,
/// coprime and at most `mostOddPart(bits)`.
constexpr bool hasTies(int bits, std::uint64_t numerator, std::uint64_t denominator) {
    // A tie is an odd number of bits + 1 bits and an odd multiple of the numerator. The number that
    // gives it is the same multiple of the denominator, times a power of two. The numerator is so small
    // that its first odd multiple above 2^bits has bits + 1 bits.
    const std::uint64_t end = std::uint64_t{1} << bits;
    const std::uint64_t multiple = ((end + numerator - 1) / numerator) | 1;
    return multiple * denominator < end;
}

/// Returns whether one sum of products, Head·x + Tail·x, is right for every x whose product with
/// numerator/denominator is a tie. Head is the highest `bits` bits of the factor, and Tail the number of
/// `bits` bits nearest to the rest of it. Arguments as for `hasTies`. The factor has more than `bits` bits.
inline bool isRightForTies(int bits, std::uint64_t numerator, std::uint64_t denominator) {
    // What is left of n/d, from 1 to 2, below its highest `bits` bits, times 2^(bits - 1)·d.
    const auto restOf = [bits](std::uint64_t n, std::uint64_t d) {
        std::uint64_t rest = 0;
        quotient(shiftedLeft({0, n - d}, bits - 1), d, rest);
        return rest;
    };
    // Scales n/d to a number from 1 to 2.
    const auto scale = [](std::uint64_t& n, std::uint64_t& d) {
        const int up = bitsOf(n) - bitsOf(d);
        (up < 0 ? n : d) <<= up < 0 ? -up : up;
        n <<= n < d ? 1 : 0;
    };
    std::uint64_t n = numerator;
    std::uint64_t d = denominator;
    scale(n, d);
    std::uint64_t tail = restOf(n, d);
    scale(tail, d);
    // The error of rounding the tail, in units of its last place, is `error`/d.
    const std::uint64_t rest = restOf(tail, d);
    const std::uint64_t error = rest < d - rest ? rest : d - rest;
    // For a tie the exact product of x and the tail is a number of `bits` bits. Tail·x is rounded to it if
    // this holds.
    return 4 * error <= tail;
}

/// Calls `visit(n)` for each n from 1 to `end` − 1, in ascending order, for which the distance of
/// n·alpha from a whole number is less than `reach`. `alpha` and `reach` are in units of 2^-128.
/// Returns false if `visit` returns false or this would take too long.
template <class Visit>
bool visitNearWholes(const CTwoWords& alpha, const CTwoWords& reach, std::uint64_t end,
                     Visit visit) {
    const CTwoWords width = reach + reach;
    // Finds the smallest numbers whose multiples of alpha are above and below a whole number by less
    // than the width. In each step, the sum of both numbers is the next one whose multiple is closer
    // than all before.
    struct CStep {
        CTwoWords Distance;
        std::uint64_t Number;
    };
    CStep above = {alpha, 1};
    CStep below = {CTwoWords() - alpha, 1};
    const auto add = [&](CStep& far, const CStep& close) {
        // Does many equal steps at once, unless the search may end among them. The closer distance is at
        // most 1/2, so the divisor is not 0.
        const std::uint64_t divisor = close.Distance.High + 1;
        // NOLINTNEXTLINE(clang-analyzer-core.DivideZero)
        std::uint64_t times = std::min<std::uint64_t>(far.Distance.High / divisor, 1000);
        if (times == 0 || close.Distance < width ||
            far.Number + (times + 1) * close.Number >= end) {
            times = 1;
        }
        far.Distance = far.Distance - CTwoWords{close.Distance.High * times, 0} -
                       product(close.Distance.Low, times);
        far.Number += times * close.Number;
    };
    for (int left = 500; !(above.Distance < width) || !(below.Distance < width); --left) {
        if (left == 0) {
            return false;
        }
        if (above.Number + below.Number >= end) {
            break;
        }
        if (below.Distance < above.Distance) {
            add(above, below);
        } else {
            add(below, above);
        }
    }
    // Zero is in the middle of the interval. The next number whose multiple is in the interval is one
    // of the two steps further, or their sum.
    CTwoWords place = reach;
    std::uint64_t n = 0;
    for (int left = 300; left > 0; --left) {
        const CTwoWords up = place + above.Distance;
        if (above.Distance < width && up < width) {
            place = up;
            n += above.Number;
        } else if (below.Distance < width && !(place < below.Distance)) {
            place = place - below.Distance;
            n += below.Number;
        } else {
            place = up - below.Distance;
            n += above.Number + below.Number;
        }
        if (n >= end) {
            return true;
        }
        if (!visit(n)) {
            return false;
        }
    }
    return false;
}

/// Returns whether a fast way rounds every product correctly, if its error before rounding is at most
/// 2^(3 − bits) of the last place.
///
/// `isRight(n, product)` returns whether the fast way gives `product`, the correct one, for n. The numbers
/// n have `bits` bits. The factor is from 1 to 2. `twice`, of three words, is twice the factor in units of
/// 2^-190, rounded down.
///
/// Returns false also if a product may be a tie, or finding out would take too long.
template <class IsRight>
bool isNeverNearMiddle(int bits, const std::uint64_t (&twice)[3], IsRight isRight) {
    const std::uint64_t whole = twice[0] >> 62;
    const CTwoWords fraction = {twice[0] << 2 | twice[1] >> 62, twice[1] << 2 | twice[2] >> 62};
    const std::uint64_t first = std::uint64_t{1} << (bits - 1);
    // Twice the error, and a little more for the bits that `fraction` lacks.
    const CTwoWords reach =
        shiftedLeft({0, 1}, 128 - (bits - 4)) + CTwoWords{std::uint64_t{1} << 4, 0};
    return visitNearWholes(fraction, reach, 2 * first, [&](std::uint64_t n) {
        if (n < first) {
            return true;
        }
        // 2·factor·n = middle + away/2^128. A negative `away` is stored modulo 2^128.
        const CTwoWords high = product(n, fraction.High);
        const CTwoWords sum = CTwoWords{0, product(n, fraction.Low).High} + high;
        const CTwoWords away = {sum.Low, n * fraction.Low};
        const bool isBelow = away.High >> 63 != 0;
        const std::uint64_t middle = n * whole + sum.High + (isBelow ? 1 : 0);
        const bool isLarge =
            middle >= 4 * first;  // the last place is 2 in the product, and 4 in `middle`
        const std::uint64_t half = isLarge ? 2 : 1;
        if (middle % (2 * half) != half) {
            return true;
        }
        // The product is very close to the middle: the missing bits could decide, or it is a tie.
        const std::uint64_t distance = isBelow ? 0 - away.High : away.High;
        if (distance <= std::uint64_t{1} << 4) {
            return false;
        }
        return isRight(n, (isBelow ? middle - half : middle + half) / 2);
    });
}

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_NEAR_MIDDLE_H
