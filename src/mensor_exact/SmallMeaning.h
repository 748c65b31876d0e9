// SmallMeaning.h: a meaning in fixed room, which the compiler can compute with. CMeaning (Meaning.h) is
// made from it; that is what clients use.
//
//     constexpr CSmallMeaning kmPerHour = [] {
//         CSmallMeaning result = CSmallMeaning::base(4);     // m, by its place in SlotNames
//         result.multiply(CSmallMeaning::base(6), -1);       // divided by s
//         result.Factor = CSmallFraction(1000);
//         ...
#ifndef MENSOR_EXACT_SMALLMEANING_H
#define MENSOR_EXACT_SMALLMEANING_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mensor_exact/SmallFraction.h"

namespace mensor::exact {

/// Exponents of the dimensions and marks that have a place of their own, at most one dimension with
/// another name, a factor Factor·π^Pi of 64 bits above and below, and an offset in base units.
///
/// Operations return false, and leave the object in no particular state, where the result does not fit.
struct CSmallMeaning {
    static constexpr std::size_t Slots = 10;  ///< A K cd kg m mol s bit rad sr
    static constexpr int LargestHalf = 99;    ///< of exponents, in halves

    CSmallFraction Factor{1};
    CSmallFraction Offset;
    std::string_view Own;            ///< the dimension with a name of its own; empty: none
    std::int8_t Halves[Slots] = {};  ///< twice the exponents
    std::int8_t OwnHalves = 0;       ///< twice the exponent of Own
    std::int8_t Pi = 0;              ///< the exponent of π

    /// The base unit or mark with this place.
    static constexpr CSmallMeaning base(std::size_t slot) {
        CSmallMeaning result;
        result.Halves[slot] = 2;
        return result;
    }

    /// A dimension of its own.
    static constexpr CSmallMeaning own(std::string_view name) {
        CSmallMeaning result;
        result.Own = name;
        result.OwnHalves = 2;
        return result;
    }

    /// Multiplies by other^(halves/2). Neither may have an offset.
    constexpr bool multiply(const CSmallMeaning& other, int halves = 2) {
        if (!Offset.isZero() || !other.Offset.isZero()) {
            return false;
        }
        if (halves % 2 != 0 && !(other.Factor == CSmallFraction(1) && other.Pi == 0)) {
            return false;  // a root of the factor
        }
        CSmallFraction factor = halves < 0 ? other.Factor.inverse() : other.Factor;
        if (!factor.raise((halves < 0 ? -halves : halves) / 2) || !Factor.multiply(factor) ||
            !add(Pi, other.Pi * halves / 2)) {
            return false;
        }
        for (std::size_t slot = 0; slot < Slots; ++slot) {
            if (other.Halves[slot] * halves % 2 != 0 ||
                !add(Halves[slot], other.Halves[slot] * halves / 2)) {
                return false;
            }
        }
        if (other.OwnHalves == 0) {
            return true;
        }
        if ((OwnHalves != 0 && Own != other.Own) || other.OwnHalves * halves % 2 != 0 ||
            !add(OwnHalves, other.OwnHalves * halves / 2)) {
            return false;
        }
        Own = OwnHalves == 0 ? std::string_view() : other.Own;
        return true;
    }

    /// Whether values of one can be converted to the other, and the marks are the same, too.
    constexpr bool hasUnitsOf(const CSmallMeaning& other) const {
        for (std::size_t slot = 0; slot < Slots; ++slot) {
            if (Halves[slot] != other.Halves[slot]) {
                return false;
            }
        }
        return OwnHalves == other.OwnHalves && Own == other.Own;
    }

    friend constexpr bool operator==(const CSmallMeaning& a, const CSmallMeaning& b) {
        return a.hasUnitsOf(b) && a.Pi == b.Pi && a.Factor == b.Factor && a.Offset == b.Offset;
    }

private:
    static constexpr bool add(std::int8_t& number, int more) {
        const int sum = number + more;
        number = static_cast<std::int8_t>(sum);
        return sum >= -LargestHalf && sum <= LargestHalf;
    }
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_SMALLMEANING_H
