// Whole.h: whole numbers of any size. Not installed.
//
// Whole.cpp wraps the numbers of Boost.Multiprecision. If every source used its templates directly, the
// library would be several times as large.
#ifndef MENSOR_EXACT_WHOLE_H
#define MENSOR_EXACT_WHOLE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mensor::exact {

/// A whole number. The numbers of everyday conversions, also of the smallest doubles, need no allocated
/// memory.
class CWhole {
public:
    CWhole() : CWhole(0) {}
    CWhole(int value);
    CWhole(std::int64_t value);
    CWhole(std::uint64_t value);
    CWhole(const CWhole& other);
    CWhole(CWhole&& other) noexcept;
    CWhole& operator=(const CWhole& other);
    CWhole& operator=(CWhole&& other) noexcept;
    ~CWhole();

    static CWhole ofDigits(std::string_view digits);  ///< from decimal digits without a sign

    bool isZero() const;
    bool isNegative() const;
    bool isOdd() const;
    bool isOne() const;
    std::size_t bits() const;   ///< the bits of the absolute value; 0 for zero
    std::size_t twos() const;   ///< the exponent of 2 in the number, which is not zero
    std::uint64_t low() const;  ///< the lowest 64 bits of a number that is not negative
    std::string toString() const;

    CWhole operator-() const;
    CWhole size() const;  ///< the absolute value
    friend CWhole operator+(const CWhole& a, const CWhole& b);
    friend CWhole operator-(const CWhole& a, const CWhole& b);
    friend CWhole operator*(const CWhole& a, const CWhole& b);
    friend CWhole operator/(const CWhole& a, const CWhole& b);  ///< rounded towards zero
    CWhole& operator+=(const CWhole& other);
    CWhole& operator-=(const CWhole& other);
    CWhole& operator*=(const CWhole& other);
    CWhole& operator/=(const CWhole& other);

    /// Returns the number times 2^twos, rounded down. If `twos` is negative, the number must not be.
    CWhole shifted(std::int64_t twos) const;
    CWhole power(std::int64_t exponent) const;  ///< `exponent` is 0 or more

    friend bool operator==(const CWhole& a, const CWhole& b) { return a.compare(b) == 0; }
    friend bool operator!=(const CWhole& a, const CWhole& b) { return a.compare(b) != 0; }
    friend bool operator<(const CWhole& a, const CWhole& b) { return a.compare(b) < 0; }
    friend bool operator>(const CWhole& a, const CWhole& b) { return a.compare(b) > 0; }
    friend bool operator<=(const CWhole& a, const CWhole& b) { return a.compare(b) <= 0; }
    friend bool operator>=(const CWhole& a, const CWhole& b) { return a.compare(b) >= 0; }

private:
    friend struct CNumberOf;

    int compare(const CWhole& other) const;

    static constexpr std::size_t Bytes = 320;
    alignas(std::max_align_t) unsigned char m_Storage[Bytes];
};

/// The greatest common divisor of two positive numbers.
CWhole gcd(const CWhole& a, const CWhole& b);

/// A quotient, rounded towards zero, and the remainder.
struct CDivision {
    CDivision(const CWhole& dividend, const CWhole& divisor);

    CWhole Quotient;
    CWhole Rest;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_WHOLE_H
