// Exponent.h: the exponent of a unit, an exact fraction of small numbers.
//
//     CExponent(1, 2) + CExponent(3, 2);  // 2
//     CExponent(2, 4).toString();         // "1/2"
//     CExponent(100);                     // throws CError, EXPONENT_RANGE
#ifndef MENSOR_EXACT_EXPONENT_H
#define MENSOR_EXACT_EXPONENT_H

#include <cstdint>
#include <numeric>
#include <string>

#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// An exact fraction in lowest terms. The numerator is from -99 to 99, the denominator from 1 to 99.
///
/// An operation whose result is out of this range throws CError, EXPONENT_RANGE.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class CExponent {
public:
    static constexpr int Largest = 99;  ///< the largest numerator and denominator

    constexpr CExponent() = default;  ///< zero

    /// A whole exponent. Implicit, so that an int can be passed as an exponent.
    constexpr CExponent(int whole) : m_Numerator(static_cast<std::int8_t>(whole)) {
        if (whole < -Largest || whole > Largest) {
            throwRange();
        }
    }

    /// @throws CError  DIVISION_BY_ZERO, EXPONENT_RANGE.
    constexpr CExponent(std::int64_t numerator, std::int64_t denominator) {
        if (denominator == 0) {
            throwDivisionByZero();
        }
        if (denominator != 1) {
            const std::int64_t sign = denominator < 0 ? -1 : 1;
            const std::int64_t divisor = std::gcd(numerator, denominator) * sign;
            numerator /= divisor;
            denominator /= divisor;
        }
        if (numerator < -Largest || numerator > Largest || denominator > Largest) {
            throwRange();
        }
        m_Numerator = static_cast<std::int8_t>(numerator);
        m_Denominator = static_cast<std::int8_t>(denominator);
    }

    constexpr int numerator() const { return m_Numerator; }
    constexpr int denominator() const { return m_Denominator; }
    constexpr bool isZero() const { return m_Numerator == 0; }

    MENSOR_EXACT_API std::string toString() const;  ///< "2", "-1", "1/2"

    constexpr CExponent operator-() const { return {-m_Numerator, m_Denominator}; }
    friend constexpr CExponent operator+(CExponent a, CExponent b) {
        if (a.m_Denominator == 1 && b.m_Denominator == 1) {  // the usual case, fast
            return {a.m_Numerator + b.m_Numerator};
        }
        return {std::int64_t{a.m_Numerator} * b.m_Denominator +
                    std::int64_t{b.m_Numerator} * a.m_Denominator,
                std::int64_t{a.m_Denominator} * b.m_Denominator};
    }
    friend constexpr CExponent operator-(CExponent a, CExponent b) { return a + -b; }
    friend constexpr CExponent operator*(CExponent a, CExponent b) {
        if (a.m_Denominator == 1 && b.m_Denominator == 1) {
            return {a.m_Numerator * b.m_Numerator};
        }
        return {std::int64_t{a.m_Numerator} * b.m_Numerator,
                std::int64_t{a.m_Denominator} * b.m_Denominator};
    }
    friend constexpr bool operator==(CExponent a, CExponent b) {
        return a.m_Numerator == b.m_Numerator && a.m_Denominator == b.m_Denominator;
    }
    friend constexpr bool operator!=(CExponent a, CExponent b) { return !(a == b); }

private:
    [[noreturn]] MENSOR_EXACT_API static void throwDivisionByZero();
    [[noreturn]] MENSOR_EXACT_API static void throwRange();

    std::int8_t m_Numerator = 0;
    std::int8_t m_Denominator = 1;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_EXPONENT_H
