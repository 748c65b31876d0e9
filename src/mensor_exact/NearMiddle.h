// NearMiddle.h: for which factors no test is needed, since no product comes too close to the middle between
// two doubles. For the library's own use; not installed.
//
// The argument is in docs/exact-fast.md. It holds for every precision, so the functions here take the number
// of bits, and a test tries all products of a small one.
#ifndef MENSOR_EXACT_NEARMIDDLE_H
#define MENSOR_EXACT_NEARMIDDLE_H

#include <cstdint>

#include "mensor_exact/TwoWords.h"

namespace mensor::exact {

/// Odd parts of numerator and denominator up to this keep every product that is no tie far enough from the
/// middle.
constexpr std::uint64_t mostOddPart(int bits) { return std::uint64_t{1} << (bits - 8); }

/// Whether a number of `bits` bits times numerator/denominator can be a tie; both are odd, coprime and at
/// most `mostOddPart(bits)`.
constexpr bool hasTies(int bits, std::uint64_t numerator, std::uint64_t denominator) {
    // A tie is an odd number of bits + 1 bits. It is an odd multiple of the numerator, and the same multiple
    // of the denominator is the number that it comes from, but for a power of two. The numerator is so small
    // that its first odd multiple from 2^bits on has no more bits.
    const std::uint64_t end = std::uint64_t{1} << bits;
    const std::uint64_t multiple = ((end + numerator - 1) / numerator) | 1;
    return multiple * denominator < end;
}

/// Calls `visit(n)` for each n from 1 to `end` − 1, in their order, for which n·alpha is nearer than `reach`
/// to a whole number. `alpha` and `reach` are fractions of 2^128. Gives false as soon as `visit` does, and
/// if that would take too long.
template <class Visit>
bool visitNearWholes(const CTwoWords& alpha, const CTwoWords& reach, std::uint64_t end,
                     Visit visit) {
    const CTwoWords width = reach + reach;
    // The first numbers whose multiples of alpha are above and below a whole number by less than the width.
    // On the way each sum of two such numbers is the next that comes nearer than all before.
    CTwoWords above = alpha;
    CTwoWords below = CTwoWords() - alpha;
    std::uint64_t stepAbove = 1;
    std::uint64_t stepBelow = 1;
    for (int left = 500; !(above < width) || !(below < width); --left) {
        if (left == 0) {
            return false;
        }
        if (stepAbove + stepBelow >= end) {
            break;
        }
        if (below < above) {
            above = above - below;
            stepAbove += stepBelow;
        } else {
            below = below - above;
            stepBelow += stepAbove;
        }
    }
    // Zero is in the middle of the interval. From each hit the next one is one of these steps away, or their
    // sum.
    CTwoWords place = reach;
    std::uint64_t n = 0;
    for (int left = 300; left > 0; --left) {
        const CTwoWords up = place + above;
        if (above < width && up < width) {
            place = up;
            n += stepAbove;
        } else if (below < width && !(place < below)) {
            place = place - below;
            n += stepBelow;
        } else {
            place = up - below;
            n += stepAbove + stepBelow;
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

/// Whether `compute` rounds every product right, though it only comes within 2^(3 − bits) of a place of it.
///
/// The factor is `twice`/2^190 or more than that by less than 2^-190, from 1 to below 2 after halving, with
/// `twice` of three words. `compute(n)` gives the factor times n, rounded to `bits` bits, for n of that many
/// bits. Gives false where that is not so, where a product may be a tie, and where finding out would take
/// too long.
template <class Compute>
bool isNeverNearMiddle(int bits, const std::uint64_t (&twice)[3], Compute compute) {
    const std::uint64_t whole = twice[0] >> 62;
    const CTwoWords fraction = {twice[0] << 2 | twice[1] >> 62, twice[1] << 2 | twice[2] >> 62};
    const std::uint64_t first = std::uint64_t{1} << (bits - 1);
    // Two places of the larger products, twice, and a little for the bits that are not in `fraction`.
    const CTwoWords reach =
        shiftedLeft({0, 1}, 128 - (bits - 5)) + CTwoWords{std::uint64_t{1} << 4, 0};
    return visitNearWholes(fraction, reach, 2 * first, [&](std::uint64_t n) {
        if (n < first) {
            return true;
        }
        // 2·factor·n = middle + away/2^128, where away is not in the first half if it is below zero.
        const CTwoWords high = product(n, fraction.High);
        const CTwoWords sum = CTwoWords{0, product(n, fraction.Low).High} + high;
        const CTwoWords away = {sum.Low, n * fraction.Low};
        const bool isBelow = away.High >> 63 != 0;
        const std::uint64_t middle = n * whole + sum.High + (isBelow ? 1 : 0);
        const bool isLarge = middle >= 4 * first;  // a place of the product is 2, and 4 here
        const std::uint64_t half = isLarge ? 2 : 1;
        if (middle % (2 * half) != half) {
            return true;
        }
        // Nearer than this the missing bits could decide, or nothing could: a tie.
        const std::uint64_t distance = isBelow ? 0 - away.High : away.High;
        if (distance <= std::uint64_t{1} << 4) {
            return false;
        }
        return compute(n) == (isBelow ? middle - half : middle + half) / 2;
    });
}

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_NEARMIDDLE_H
