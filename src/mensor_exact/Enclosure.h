// Enclosure.h: lower and upper bounds of irrational numbers. Not installed.
#ifndef MENSOR_EXACT_ENCLOSURE_H
#define MENSOR_EXACT_ENCLOSURE_H

#include <cstdint>

#include "mensor_exact/Factor.h"
#include "mensor_exact/Whole.h"

namespace mensor::exact {

/// Returns the root of `number` of this order, rounded down. Both are positive.
CWhole rootOf(const CWhole& number, int order);

/// A positive number between Low·2^Twos and High·2^Twos, both included.
struct CEnclosure {
    CWhole Low;
    CWhole High;
    std::int64_t Twos = 0;
};

/// Returns bounds of `factor` whose relative difference is less than 2^-bits.
CEnclosure enclose(const CFactor& factor, int bits);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_ENCLOSURE_H
