// Fraction.h: exact fractions of whole numbers of any size.
//
//     CFraction(5, 9) * CFraction(9);         // 5
//     CFraction::ofText("98.6").toString();   // "98.6"
//     CFraction::ofDouble(0.1) == CFraction(1, 10);  // false: the double is a little more
//     CFraction(1, 3).toDouble();             // 0.3333333333333333, the nearest double
//
// Fractions are values. Numbers of everyday units fit into the object; larger ones are kept in memory
// that copies share and nobody changes.
#ifndef MENSOR_EXACT_FRACTION_H
#define MENSOR_EXACT_FRACTION_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "mensor_exact/SmallFraction.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

struct CParts;     // inside the library
struct CQuotient;  // inside the library

/// An exact fraction.
///
/// Operations throw CError, TOO_LARGE, where a result needs more than 65,536 bits, numerator and
/// denominator together.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_EXACT_API CFraction {
public:
    CFraction() noexcept = default;  ///< zero

    /// A whole number. Not explicit: an integer may stand for it.
    CFraction(std::int64_t whole);

    /// @throws CError  DIVISION_BY_ZERO.
    CFraction(std::int64_t numerator, std::int64_t denominator);

    explicit CFraction(const CSmallFraction& small) noexcept : m_Small(small) {}

    /// This fraction in fixed room. Returns false, and changes nothing, where 64 bits are too few.
    bool toSmall(CSmallFraction& small) const noexcept {
        small = m_Big == nullptr ? m_Small : small;
        return m_Big == nullptr;
    }

    /// What the double is, exactly.
    /// @throws CError  BAD_NUMBER: infinity or NaN.
    static CFraction ofDouble(double value);

    /// A decimal number: an optional sign, ASCII digits with at most one point, an optional exponent
    /// after "e" or "E". Never depends on the locale.
    /// @throws CError  BAD_NUMBER, or TOO_LARGE.
    static CFraction ofText(std::string_view text);

    bool isOne() const noexcept { return m_Big == nullptr && m_Small == CSmallFraction(1); }
    bool isZero() const noexcept { return m_Small.isZero() && m_Big == nullptr; }
    bool isNegative() const noexcept { return m_Small.Negative; }

    /// The bits of the numerator and of the denominator in lowest terms, together.
    std::size_t bits() const;

    /// Whether bits() is above `most`. Costs next to nothing where it is far from it.
    bool needsMoreThan(std::size_t most) const;

    double toDouble() const;  ///< the nearest double, ties to even

    /// Digits if the number is whole or a decimal of at most 17 digits, else a quotient: "25.4",
    /// "1e-24", "5/9", "-160/9".
    std::string toString() const;

    CFraction operator-() const;
    CFraction power(int exponent) const;  ///< @throws CError  DIVISION_BY_ZERO: zero to below zero.
    friend MENSOR_EXACT_API CFraction operator+(const CFraction& a, const CFraction& b);
    friend MENSOR_EXACT_API CFraction operator-(const CFraction& a, const CFraction& b);
    friend MENSOR_EXACT_API CFraction operator*(const CFraction& a, const CFraction& b);
    /// @throws CError  DIVISION_BY_ZERO.
    friend MENSOR_EXACT_API CFraction operator/(const CFraction& a, const CFraction& b);
    friend MENSOR_EXACT_API bool operator==(const CFraction& a, const CFraction& b) noexcept;
    friend bool operator!=(const CFraction& a, const CFraction& b) noexcept { return !(a == b); }

private:
    friend struct CParts;

    CSmallFraction m_Small;  // with m_Big, sign and powers only; the numerator is then 0
    std::shared_ptr<const CQuotient> m_Big;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_FRACTION_H
