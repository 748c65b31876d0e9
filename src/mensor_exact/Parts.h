// Parts.h: the numerator and denominator of a fraction, as numbers of any size. Not installed.
#ifndef MENSOR_EXACT_PARTS_H
#define MENSOR_EXACT_PARTS_H

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "mensor_exact/Fraction.h"
#include "mensor_exact/Whole.h"

namespace mensor::exact {

/// A numerator and a denominator.
struct CQuotient {
    CWhole Numerator;
    CWhole Denominator;
};

/// The allocated part of a CFraction. The numbers are coprime to each other and to 10.
struct CSharedQuotient : CQuotient {
    explicit CSharedQuotient(const CQuotient& quotient) : CQuotient(quotient) {}

    mutable std::atomic<std::uint32_t> Owners{1};
};

/// ±Numerator/Denominator·2^Twos·5^Fives, in lowest terms after normalize().
struct CParts {
    CParts() = default;
    explicit CParts(const CFraction& fraction);

    /// Reduces to lowest terms and moves all powers of 2 and 5 to Twos and Fives.
    void normalize();

    /// Returns the fraction. normalize() must have been called.
    /// @throws CError  TOO_LARGE.
    CFraction fraction() const;

    /// The numerator and the denominator with their powers of 5, without those of 2.
    CWhole numeratorWithFives() const;
    CWhole denominatorWithFives() const;

    /// The numerator and the denominator with all powers of 2 and 5.
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
