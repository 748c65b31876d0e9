// Parts.h: the whole numbers of a fraction. For the library's own use; not installed.
#ifndef MENSOR_EXACT_PARTS_H
#define MENSOR_EXACT_PARTS_H

#include <cstddef>
#include <cstdint>

#include "mensor_exact/Fraction.h"
#include "mensor_exact/Whole.h"

namespace mensor::exact {

/// What CFraction keeps beside the object.
struct CQuotient {
    CWhole Numerator;    // coprime to 10 and to Denominator
    CWhole Denominator;  // coprime to 10
};

/// ±Numerator/Denominator·2^Twos·5^Fives, in lowest terms after normalize().
struct CParts {
    CParts() = default;
    explicit CParts(const CFraction& fraction);

    /// Lowest terms, powers of 2 and 5 apart.
    void normalize();

    /// Needs normalized parts.
    /// @throws CError  TOO_LARGE.
    CFraction fraction() const;

    /// The numerator and the denominator with their powers of five, without those of two.
    CWhole numeratorWithFives() const;
    CWhole denominatorWithFives() const;

    /// The same with all powers: the whole fraction.
    CQuotient wholes() const;

    std::size_t bits() const;  ///< as CFraction::bits

    CWhole Numerator = 0;
    CWhole Denominator = 1;
    std::int64_t Twos = 0;
    std::int64_t Fives = 0;
    bool Negative = false;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_PARTS_H
