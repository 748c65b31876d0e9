// Whole.h: whole numbers of any size. Not installed.
#ifndef MENSOR_EXACT_WHOLE_H
#define MENSOR_EXACT_WHOLE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace mensor::exact {

/// A whole number. The numbers of everyday conversions, also of the smallest doubles, need no allocated
/// memory.
class CWhole {
public:
    CWhole() noexcept;
    CWhole(int value) : CWhole(static_cast<std::int64_t>(value)) {}
    CWhole(std::int64_t value);
    CWhole(std::uint64_t value);
    CWhole(const CWhole& other);
    CWhole(CWhole&& other) noexcept;
    CWhole& operator=(const CWhole& other);
    CWhole& operator=(CWhole&& other) noexcept;
    ~CWhole() = default;

    static CWhole ofDigits(std::string_view digits);  ///< from decimal digits without a sign

    bool isZero() const { return m_Size == 0; }
    bool isNegative() const { return m_Negative; }
    bool isOdd() const { return (low() & 1) != 0; }
    bool isOne() const { return m_Size == 1 && low() == 1 && !m_Negative; }
    std::size_t bits() const;   ///< the bits of the absolute value; 0 for zero
    std::size_t twos() const;   ///< the exponent of 2 in the number, which is not zero
    std::uint64_t low() const;  ///< the lowest 64 bits of the absolute value
    std::string toString() const;

    CWhole operator-() const;
    CWhole size() const;  ///< the absolute value
    friend CWhole operator+(const CWhole& a, const CWhole& b);
    friend CWhole operator-(const CWhole& a, const CWhole& b);
    friend CWhole operator*(const CWhole& a, const CWhole& b);
    /// Rounded towards zero. The divisor is not zero.
    friend CWhole operator/(const CWhole& a, const CWhole& b);
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

    /// The greatest common divisor of two positive numbers.
    friend CWhole gcd(const CWhole& a, const CWhole& b);

private:
    friend struct CDivision;

    // The words that need no allocated memory: enough for the sum of 2^-1074 and an offset, times a factor.
    static constexpr std::size_t WordsInside = 36;

    std::uint64_t* words() { return m_Outside ? m_Outside.get() : m_Inside; }
    const std::uint64_t* words() const { return m_Outside ? m_Outside.get() : m_Inside; }
    void reserve(std::size_t room);
    void trim();
    void add(const CWhole& other, bool isNegative);
    void multiplyAdd(std::uint64_t factor, std::uint64_t more);
    std::uint64_t divide(std::uint64_t divisor);
    int compare(const CWhole& other) const;
    int compareSize(const CWhole& other) const;

    std::size_t m_Size =
        0;  // the number of words in use; the lowest is the first, the last is not zero
    std::size_t m_Room = WordsInside;
    bool m_Negative = false;
    std::unique_ptr<std::uint64_t[]> m_Outside;  // replaces m_Inside when that is too small
    std::uint64_t m_Inside[WordsInside];
};

CWhole gcd(const CWhole& a, const CWhole& b);

/// A quotient, rounded towards zero, and the rest, which has the sign of the dividend. The divisor is not
/// zero.
struct CDivision {
    CDivision(const CWhole& dividend, const CWhole& divisor);

    CWhole Quotient;
    CWhole Rest;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_WHOLE_H
