// SmallMeaning.h: meanings without allocated memory, for constant expressions. Clients use CMeaning
// (Meaning.h), which can be made from one.
//
//     constexpr CSmallMeaning kmPerHour = [] {
//         CSmallMeaning result = CSmallMeaning::base(4);     // m, by its index in SlotNames
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

/// The exponents of the SI's dimensions and the marks, at most one other dimension, the factor
/// Factor·π^Pi, and an offset in base units.
///
/// An operation returns false if the result does not fit. Then the object is in an unspecified state.
struct CSmallMeaning {
    static constexpr std::size_t Slots = 10;  ///< A K cd kg m mol s bit rad sr
    static constexpr int LargestHalf = 99;    ///< of exponents, in halves

    CSmallFraction Factor{1};
    CSmallFraction Offset;
    std::string_view Own;            ///< the name of the other dimension; empty if there is none
    std::int8_t Halves[Slots] = {};  ///< twice the exponents
    std::int8_t OwnHalves = 0;       ///< twice the exponent of Own
    std::int8_t Pi = 0;              ///< the exponent of π

    /// Returns the base unit or mark with this index.
    static constexpr CSmallMeaning base(std::size_t slot) {
        CSmallMeaning result;
        result.Halves[slot] = 2;
        return result;
    }

    /// Returns the base unit of another dimension.
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

    /// Returns whether the dimensions and the marks are the same.
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
