// Fraction.h: exact fractions with numerators and denominators of any size.
//
//     CFraction(5, 9) * CFraction(9);         // 5
//     CFraction::ofText("98.6").toString();   // "98.6"
//     CFraction::ofDouble(0.1) == CFraction(1, 10);  // false: the double is a little more
//     CFraction(1, 3).toDouble();             // 0.3333333333333333, the nearest double
//
// Numbers of everyday units need no memory besides the object. Larger ones are allocated, and copies
// share them.
#ifndef MENSOR_EXACT_FRACTION_H
#define MENSOR_EXACT_FRACTION_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "mensor_exact/SmallFraction.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

struct CParts;           // Parts.h, not installed
struct CSharedQuotient;  // Parts.h, not installed

/// A pointer to the allocated part of a fraction, which its copies share. It is null for most fractions, so
/// the code for other pointers is kept out of line. Only CFraction uses it.
///
/// Class contract: as CFraction.
class CBigPart {
public:
    CBigPart() noexcept = default;
    explicit CBigPart(const CSharedQuotient* owned) noexcept : m_Quotient(owned) {}
    CBigPart(const CBigPart& other) noexcept : m_Quotient(other.m_Quotient) {
        if (m_Quotient != nullptr) {
            share(m_Quotient);
        }
    }
    CBigPart(CBigPart&& other) noexcept : m_Quotient(std::exchange(other.m_Quotient, nullptr)) {}
    CBigPart& operator=(CBigPart other) noexcept {
        std::swap(m_Quotient, other.m_Quotient);
        return *this;
    }
    ~CBigPart() {
        if (m_Quotient != nullptr) {
            release(m_Quotient);
        }
    }

    const CSharedQuotient* get() const noexcept { return m_Quotient; }

private:
    MENSOR_EXACT_API static void share(const CSharedQuotient* quotient) noexcept;
    MENSOR_EXACT_API static void release(const CSharedQuotient* quotient) noexcept;

    const CSharedQuotient* m_Quotient = nullptr;
};

/// An exact fraction.
///
/// Operations throw CError, TOO_LARGE, if numerator and denominator of a result together need more than
/// 65,536 bits.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_EXACT_API CFraction {
public:
    CFraction() noexcept = default;  ///< zero

    /// A whole number. Implicit, so that an integer can be passed as a fraction.
    CFraction(std::int64_t whole);

    /// @throws CError  DIVISION_BY_ZERO.
    CFraction(std::int64_t numerator, std::int64_t denominator);

    explicit CFraction(const CSmallFraction& small) noexcept : m_Small(small) {}

    /// Converts to a CSmallFraction. Returns false and changes nothing if 64 bits are too few.
    bool toSmall(CSmallFraction& small) const noexcept {
        small = isSmall() ? m_Small : small;
        return isSmall();
    }

    /// Returns the exact value of a double.
    /// @throws CError  BAD_NUMBER: infinity or NaN.
    static CFraction ofDouble(double value);

    /// Reads a decimal number: an optional sign, ASCII digits with at most one point, an optional
    /// exponent after "e" or "E". The locale plays no part.
    /// @throws CError  BAD_NUMBER, TOO_LARGE.
    static CFraction ofText(std::string_view text);

    bool isOne() const noexcept { return isSmall() && m_Small == CSmallFraction(1); }
    bool isZero() const noexcept { return m_Small.isZero() && isSmall(); }
    bool isNegative() const noexcept { return m_Small.Negative; }

    /// Returns the number of bits of the numerator and the denominator together, in lowest terms.
    std::size_t bits() const;

    /// Returns whether bits() is greater than `most`. Faster than bits(), unless both are nearly
    /// equal.
    bool needsMoreThan(std::size_t most) const;

    double toDouble() const;  ///< the nearest double, ties to even

    /// Returns digits if the number is whole or a decimal of at most 17 digits, else a quotient: "25.4",
    /// "1e-24", "5/9", "-160/9".
    std::string toString() const;

    CFraction operator-() const;
    /// @throws CError  DIVISION_BY_ZERO: zero to a negative power.
    CFraction power(int exponent) const;
    friend MENSOR_EXACT_API CFraction operator+(const CFraction& a, const CFraction& b);
    friend MENSOR_EXACT_API CFraction operator-(const CFraction& a, const CFraction& b);
    friend MENSOR_EXACT_API CFraction operator*(const CFraction& a, const CFraction& b);
    /// @throws CError  DIVISION_BY_ZERO.
    friend MENSOR_EXACT_API CFraction operator/(const CFraction& a, const CFraction& b);
    friend MENSOR_EXACT_API bool operator==(const CFraction& a, const CFraction& b) noexcept;
    friend bool operator!=(const CFraction& a, const CFraction& b) noexcept { return !(a == b); }

private:
    friend struct CParts;

    bool isSmall() const noexcept { return m_Big.get() == nullptr; }

    CSmallFraction m_Small;  // if m_Big is set, has only the sign and the powers of 2 and 5
    CBigPart m_Big;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_FRACTION_H
