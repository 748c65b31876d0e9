// Meaning.h: what a unit means, computed beside the library's registry.
//
//     const auto newton = checked::CMeaning::base("kg") * checked::CMeaning::base("m") /
//                         checked::CMeaning::base("s").power(2);
//     checked::meaningOf(SI::Newton()) == newton;              // true
//     checked::meaningOf(SI::Newton()).toString();             // "kg·m/s²"
//     checked::meaningOf(NonSI::Hour()).toString();            // "3600 s"
//
// A meaning is the exact exponents of the base units and the affine map to them: a value x of the
// unit is factor·x + offset in base units. The radian, the steradian and the bit are alternates of
// the number one and so add nothing to a meaning: rad/s, Hz, Bq and 1/s mean the same. They are
// different units all the same, and readUnit (Reading.h) does not take one for another.
//
// Meanings are values.
#ifndef MENSOR_CHECKED_MEANING_H
#define MENSOR_CHECKED_MEANING_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/checked_export.h"

namespace mensor {
namespace checked {

/// An exact fraction in lowest terms, the denominator positive.
///
/// Every operation throws std::overflow_error where a result leaves 64 bits.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_CHECKED_API CRational {
public:
    CRational(std::int64_t numerator = 0) : m_Numerator(numerator) {}
    /// @throws std::invalid_argument  the denominator is zero.
    CRational(std::int64_t numerator, std::int64_t denominator);

    std::int64_t numerator() const { return m_Numerator; }
    std::int64_t denominator() const { return m_Denominator; }
    double toDouble() const;
    std::string toString() const;  ///< "2", "-1", "1:2" as the notation of units writes it

    CRational operator-() const;
    friend MENSOR_CHECKED_API CRational operator+(const CRational& a, const CRational& b);
    friend MENSOR_CHECKED_API CRational operator*(const CRational& a, const CRational& b);
    friend bool operator==(const CRational& a, const CRational& b) {
        return a.m_Numerator == b.m_Numerator && a.m_Denominator == b.m_Denominator;
    }
    friend bool operator!=(const CRational& a, const CRational& b) { return !(a == b); }

private:
    std::int64_t m_Numerator;
    std::int64_t m_Denominator = 1;
};

/// One base unit of a meaning.
struct CExponent {
    std::string Base;    ///< the symbol of the base unit, UTF-8
    CRational Exponent;  ///< never zero

    friend bool operator==(const CExponent& a, const CExponent& b) {
        return a.Base == b.Base && a.Exponent == b.Exponent;
    }
};

/// What a unit means.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_CHECKED_API CMeaning {
public:
    CMeaning() = default;  ///< the number one

    static CMeaning base(std::string_view symbol);  ///< the base unit with this symbol

    const std::vector<CExponent>& exponents() const { return m_Exponents; }  ///< sorted by symbol
    CRational exponentOf(std::string_view symbol) const;                     ///< 0 if absent
    double factor() const { return m_Factor; }  ///< base units per unit
    double offset() const { return m_Offset; }  ///< in base units: 273.15 for the degree Celsius

    /// The algebra of units. In products, quotients and powers an offset does not count, as the
    /// library has it: a factor is a difference.
    /// @throws std::overflow_error  an exponent leaves 64 bits.
    CMeaning power(const CRational& exponent) const;
    CMeaning scaled(double factor) const;   ///< as CUnit::multiply(double)
    CMeaning shifted(double offset) const;  ///< as CUnit::add(double): offset in this unit
    friend MENSOR_CHECKED_API CMeaning operator*(const CMeaning& a, const CMeaning& b);
    friend MENSOR_CHECKED_API CMeaning operator/(const CMeaning& a, const CMeaning& b);

    bool hasDimensionOf(const CMeaning& other) const { return m_Exponents == other.m_Exponents; }

    /// Exponents exactly, factor and offset within a relative 1e-12: units are chains of rounded
    /// factors, and powers come from the math library's `pow`.
    friend MENSOR_CHECKED_API bool operator==(const CMeaning& a, const CMeaning& b);
    friend bool operator!=(const CMeaning& a, const CMeaning& b) { return !(a == b); }

    /// "0.001 m³", "K + 273.15", "kg·m/s²", "1": shortest digits, base units in the order of their
    /// symbols.
    std::string toString() const;

private:
    std::vector<CExponent> m_Exponents;  // sorted by symbol, none zero
    double m_Factor = 1.0;
    double m_Offset = 0.0;
};

/// What `unit` means: its elements, its system unit and the converter to it, its expansion into base
/// units, followed down to the base units. Registers nothing and asks no cache.
///
/// The dimensions that CBaseUnit::setDimension sets are not looked at: a meaning is the same in every
/// context.
/// @throws std::invalid_argument  `unit` is empty.
/// @throws std::overflow_error  an exponent leaves 64 bits.
/// @par Threads  Any thread; takes no lock, but a client's kind of unit is asked for its converter.
MENSOR_CHECKED_API CMeaning meaningOf(const CUnitPtr& unit);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_MEANING_H
