// Enclosure.h: bounds of numbers that are no fractions. For the library's own use; not installed.
#ifndef MENSOR_EXACT_ENCLOSURE_H
#define MENSOR_EXACT_ENCLOSURE_H

#include <cstdint>

#include "mensor_exact/Factor.h"
#include "mensor_exact/Whole.h"

namespace mensor::exact {

/// The greatest whole number whose power `order` is not above `number`. Both are positive.
CWhole rootOf(const CWhole& number, int order);

/// A positive number between Low·2^Twos and High·2^Twos, both included.
struct CEnclosure {
    CWhole Low;
    CWhole High;
    std::int64_t Twos = 0;
};

/// Bounds of `factor` that differ by less than 2^-bits of it, and the nearer the more bits are asked
/// for.
CEnclosure enclose(const CFactor& factor, int bits);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_ENCLOSURE_H
