// Factor.h: the exact factor of a unit, with π and roots.
//
//     CFactor(CFraction(1, 180)) * CFactor::pi();            // π/180
//     CFactor(CFraction(1000)).power(CExponent(1, 2));       // 1000^(1/2)
//     CFactor(CFraction(4)).power(CExponent(1, 2)) == CFactor(CFraction(2));  // true
#ifndef MENSOR_EXACT_FACTOR_H
#define MENSOR_EXACT_FACTOR_H

#include <cstddef>
#include <string>

#include "mensor_exact/Exponent.h"
#include "mensor_exact/Fraction.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// The positive number radicand^(1/root)·π^pi. The radicand is a fraction, and the root is as small as
/// possible. So two factors are equal exactly if their numbers are.
///
/// Operations throw CError: TOO_LARGE if the radicand of the result needs more than 16,384 bits,
/// EXPONENT_RANGE if its root or its exponent of π is beyond 99.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_EXACT_API CFactor {
public:
    static constexpr std::size_t MostBits = 16384;

    CFactor() : m_Radicand(CSmallFraction(1)) {}  ///< one

    /// @throws CError  NOT_POSITIVE.
    explicit CFactor(CFraction fraction);

    static CFactor pi();

    const CFraction& radicand() const noexcept { return m_Radicand; }
    int root() const noexcept { return m_Root; }
    CExponent piExponent() const noexcept { return m_Pi; }

    /// Returns whether the factor is a fraction. That fraction is then radicand().
    bool isRational() const noexcept { return m_Root == 1 && m_Pi.isZero(); }
    bool isOne() const noexcept { return isRational() && m_Radicand.isOne(); }

    double toDouble() const;  ///< the nearest double, ties to even

    /// "5/9", "25.4", "π/180", "180/π", "2π", "(5/9)^(1/2)", "10^(1/2)·π^2".
    std::string toString() const;

    CFactor power(CExponent exponent) const;
    friend MENSOR_EXACT_API CFactor operator*(const CFactor& a, const CFactor& b);
    friend MENSOR_EXACT_API CFactor operator/(const CFactor& a, const CFactor& b);
    friend bool operator==(const CFactor& a, const CFactor& b) noexcept {
        return a.m_Root == b.m_Root && a.m_Pi == b.m_Pi && a.m_Radicand == b.m_Radicand;
    }
    friend bool operator!=(const CFactor& a, const CFactor& b) noexcept { return !(a == b); }

private:
    friend class CConversion;
    friend class CMeaning;
    friend class CTable;

    // These do not limit the number of bits.
    CFactor(const CSmallFraction& fraction, CExponent pi) noexcept
        : m_Radicand(fraction), m_Pi(pi) {}
    static CFactor ofPositive(CFraction fraction, CExponent pi = 0) noexcept;
    static CFactor product(const CFactor& a, const CFactor& b);
    static CFactor ratio(const CFactor& a, const CFactor& b);
    void reduceRoot();
    void requireSize() const;

    CFraction m_Radicand;
    int m_Root = 1;
    CExponent m_Pi;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_FACTOR_H
