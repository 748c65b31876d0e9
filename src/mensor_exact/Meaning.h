// Meaning.h: what a unit means, exactly.
//
//     const auto newton = CMeaning::base("kg") * CMeaning::base("m") / CMeaning::base("s").power(2);
//     newton.toString();                                     // "kg·m/s²"
//     newton.kind();                                         // "force"
//     CMeaning::base("K").shifted(CFraction::ofText("273.15")).toString();  // "K + 273.15"
//     CMeaning::base("rad").isCompatibleWith(CMeaning());     // true: a mark counts as one
//
// A meaning is the exact exponents of dimensions and marks, and the exact map to the base units: a
// value x of the unit is factor·x + offset of them.
//
// Dimensions are the seven base units of the SI, and any number of others by their names: a program's
// own base unit, a currency, pieces. Marks are the radian, the steradian and the bit. They count as
// one where units are compared, but are kept with their exponents and can be asked for.
//
// Meanings are values, and need no memory beside the object unless numbers are large or a dimension
// has a name of its own.
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

/// What a unit means.
///
/// Operations throw CError: EXPONENT_RANGE and TOO_LARGE as CExponent and CFactor do, and what is
/// named beside them.
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

    /// What a table of constants holds. Needs memory only for a dimension with a name of its own.
    explicit CMeaning(const CSmallMeaning& small);

    /// This meaning in fixed room. Returns false where it does not fit: it has roots, large numbers or
    /// several dimensions with names of their own. The result then refers to nothing; else its `Own`
    /// refers to this object.
    bool toSmall(CSmallMeaning& small) const noexcept;

    /// A base unit of the SI ("A", "K", "cd", "kg", "m", "mol", "s"), a mark ("rad", "sr", "bit"), or
    /// with any other name a dimension of its own.
    /// @throws CError  SYNTAX: an empty name.
    static CMeaning base(std::string_view name);

    const CFactor& factor() const noexcept { return m_Factor; }    ///< base units per unit
    const CFraction& offset() const noexcept { return m_Offset; }  ///< in base units

    std::vector<CPower> dimensions() const;  ///< sorted by name, the SI's before others
    std::vector<CPower> marks() const;       ///< sorted: bit, rad, sr
    CExponent exponentOf(std::string_view name) const noexcept;  ///< 0 if absent

    /// Whether values of one can be converted to the other: the dimensions are the same.
    bool isCompatibleWith(const CMeaning& other) const noexcept;
    bool hasMarksOf(const CMeaning& other) const noexcept;

    /// The unit of which a value x is `factor`·x of this one. A zero of its own stays where it is.
    /// @throws CError  OFFSET_NOT_RATIONAL.
    CMeaning scaled(const CFactor& factor) const;

    /// The unit of which a value x is x + `offset` of this one.
    /// @throws CError  OFFSET_NOT_RATIONAL: the factor of this unit has π or a root.
    CMeaning shifted(const CFraction& offset) const;

    /// The same without offset: the unit of differences.
    CMeaning difference() const;

    /// @throws CError  OFFSET_IN_PRODUCT, unless the exponent is 1.
    CMeaning power(CExponent exponent) const;
    /// @throws CError  OFFSET_IN_PRODUCT, with this unchanged, as with all errors.
    void multiplyBy(const CMeaning& other, CExponent exponent = 1);

    /// @throws CError  OFFSET_IN_PRODUCT.
    friend MENSOR_EXACT_API CMeaning operator*(const CMeaning& a, const CMeaning& b);
    friend MENSOR_EXACT_API CMeaning operator/(const CMeaning& a, const CMeaning& b);

    /// Exactly equal: dimensions, marks, factor and offset.
    friend MENSOR_EXACT_API bool operator==(const CMeaning& a, const CMeaning& b) noexcept;
    friend bool operator!=(const CMeaning& a, const CMeaning& b) noexcept { return !(a == b); }

    /// "kg·m/s²", "0.001 m³", "K + 273.15", "π/180 rad", "1".
    std::string toString() const;

    /// The base units alone: "kg·m/s²", "1".
    std::string unitsText() const;

    /// What is measured: "length", "pressure", "angle", "number"; where the library has no name for
    /// it, the base units.
    std::string kind() const;

    /// Whether the library has a name for what is measured.
    bool hasNamedKind() const noexcept;

private:
    friend class CTable;

    static constexpr std::size_t Dimensions = 7;
    static constexpr std::size_t Slots = 10;  // and the marks

    using CExponents = std::array<CExponent, Slots>;

    CMeaning(const CSmallFraction& factor, CExponent pi, const CSmallFraction& offset) noexcept
        : m_Factor(factor, pi), m_Offset(offset) {}

    const char* nameOfKind() const noexcept;

    void multiplyRest(const CMeaning& other, CExponent exponent);

    CExponents m_Exponents;        // sorted by name: the SI's, then marks
    std::vector<CPower> m_Others;  // sorted by name
    CFactor m_Factor;
    CFraction m_Offset;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_MEANING_H
