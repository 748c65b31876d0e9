// Meaning.h: the exact meaning of a unit: its dimension, factor and offset.
//
//     const auto newton = CMeaning::base("kg") * CMeaning::base("m") / CMeaning::base("s").power(2);
//     newton.toString();                                     // "kg·m/s²"
//     newton.kind();                                         // "force"
//     CMeaning::base("K").shifted(CFraction::ofText("273.15")).toString();  // "K + 273.15"
//     CMeaning::base("rad").isCompatibleWith(CMeaning());     // true: a mark counts as one
//
// A meaning has the exponents of dimensions and marks, and the conversion to base units: the value x in
// the unit is factor·x + offset in base units. All of them are exact.
//
// Each of the seven base units of the SI is a dimension. A program can add others by name: a currency, a
// piece. The radian, the steradian and the bit are marks: they count as one when units are compared, but
// their exponents are kept.
//
// A meaning needs no memory besides the object, unless its numbers are large or it has dimensions that
// are not of the SI.
#ifndef MENSOR_EXACT_MEANING_H
#define MENSOR_EXACT_MEANING_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mensor_exact/Exponent.h"
#include "mensor_exact/Factor.h"
#include "mensor_exact/Fraction.h"
#include "mensor_exact/SmallMeaning.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// One dimension or mark of a meaning.
struct CPower {
    std::string Name;    ///< UTF-8
    CExponent Exponent;  ///< not zero

    friend bool operator==(const CPower& a, const CPower& b) {
        return a.Name == b.Name && a.Exponent == b.Exponent;
    }
};

/// The meaning of a unit.
///
/// Operations throw CError: EXPONENT_RANGE and TOO_LARGE as CExponent and CFactor do, and the errors that
/// their comments name.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_EXACT_API CMeaning {
public:
    CMeaning() noexcept;  ///< the number one
    CMeaning(const CMeaning& other);
    CMeaning(CMeaning&& other) noexcept;
    CMeaning& operator=(const CMeaning& other);
    CMeaning& operator=(CMeaning&& other) noexcept;
    ~CMeaning();

    /// The meaning of an entry of a table of constants. Allocates only for a dimension that is not of
    /// the SI.
    explicit CMeaning(const CSmallMeaning& small);

    /// Converts to a CSmallMeaning, whose `Own` then refers to this object. Returns false if this meaning
    /// has roots, large numbers or several dimensions that are not of the SI. Then `Own` is empty.
    bool toSmall(CSmallMeaning& small) const noexcept;

    /// Returns a base unit of the SI ("A", "K", "cd", "kg", "m", "mol", "s"), a mark ("rad", "sr",
    /// "bit"), or, for any other name, the base unit of a dimension with that name.
    /// @throws CError  SYNTAX: an empty name.
    static CMeaning base(std::string_view name);

    const CFactor& factor() const noexcept { return m_Factor; }    ///< base units per unit
    const CFraction& offset() const noexcept { return m_Offset; }  ///< in base units

    std::vector<CPower> dimensions() const;  ///< sorted by name, those of the SI first
    std::vector<CPower> marks() const;       ///< sorted: bit, rad, sr
    CExponent exponentOf(std::string_view name) const noexcept;  ///< 0 if absent

    /// Returns whether the dimensions are the same, so that values can be converted.
    bool isCompatibleWith(const CMeaning& other) const noexcept;
    bool hasMarksOf(const CMeaning& other) const noexcept;

    /// Returns the unit in which the value x is `factor`·x in this unit. An offset is kept.
    /// @throws CError  OFFSET_NOT_RATIONAL.
    CMeaning scaled(const CFactor& factor) const;

    /// Returns the unit in which the value x is x + `offset` in this unit.
    /// @throws CError  OFFSET_NOT_RATIONAL: the factor of this unit has π or a root.
    CMeaning shifted(const CFraction& offset) const;

    /// Returns the unit of differences: this unit without its offset.
    CMeaning difference() const;

    /// @throws CError  OFFSET_IN_PRODUCT, unless the exponent is 1.
    CMeaning power(CExponent exponent) const;
    /// Multiplies this by other^exponent.
    /// @throws CError  OFFSET_IN_PRODUCT. This meaning is then unchanged.
    void multiplyBy(const CMeaning& other, CExponent exponent = 1);

    /// @throws CError  OFFSET_IN_PRODUCT.
    friend MENSOR_EXACT_API CMeaning operator*(const CMeaning& a, const CMeaning& b);
    friend MENSOR_EXACT_API CMeaning operator/(const CMeaning& a, const CMeaning& b);

    /// Returns whether dimensions, marks, factor and offset are equal.
    friend MENSOR_EXACT_API bool operator==(const CMeaning& a, const CMeaning& b) noexcept;
    friend bool operator!=(const CMeaning& a, const CMeaning& b) noexcept { return !(a == b); }

    /// "kg·m/s²", "0.001 m³", "K + 273.15", "π/180 rad", "1".
    std::string toString() const;

    /// Returns the base units without factor and offset: "kg·m/s²", "1".
    std::string unitsText() const;

    /// Returns the name of the quantity: "length", "pressure", "angle", "number". If the library has no
    /// name for it, returns the base units.
    std::string kind() const;

    /// Returns whether the library has a name for the quantity.
    bool hasNamedKind() const noexcept;

private:
    friend class CTable;

    static constexpr std::size_t Dimensions = 7;
    static constexpr std::size_t Slots = 10;  // dimensions of the SI and marks

    using CExponents = std::array<CExponent, Slots>;

    CMeaning(const CSmallFraction& factor, CExponent pi, const CSmallFraction& offset) noexcept
        : m_Factor(factor, pi), m_Offset(offset) {}

    std::string_view nameOfKind() const noexcept;

    void multiplyRest(const CMeaning& other, CExponent exponent);

    CExponents m_Exponents;        // in the order of SlotNames (slots.h)
    std::vector<CPower> m_Others;  // sorted by name
    CFactor m_Factor;
    CFraction m_Offset;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_MEANING_H
