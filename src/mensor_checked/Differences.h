// Differences.h: differences of quantities, where only the size of a unit counts.
//
//     checked::convertDifference(10, SI::Celsius(), SI::Kelvin());     // 10, not 283.15
//     const CValueWithUnit inside(20, SI::Celsius()), outside(15, SI::Celsius());
//     checked::difference(inside, outside).valueAs(SI::Kelvin());      // 5, not 278.15
//     (outside + checked::difference(inside, outside)).value();        // 20
//
// Beside it, converting a temperature as such (CUnit::getConverterTo, CValueWithUnit) goes on to count
// from the zero of the scale.
#ifndef MENSOR_CHECKED_DIFFERENCES_H
#define MENSOR_CHECKED_DIFFERENCES_H

#include "mensor/Unit.h"
#include "mensor/ValueWithUnit.h"
#include "mensor_checked/checked_export.h"

namespace mensor {
namespace checked {

/// `x`, a difference in `from`, expressed in `to`. Where neither has an offset: the very double that
/// `from->convertValueToUnit(x, to)` gives.
///
/// @throws std::invalid_argument  a unit is empty; or the units are not compatible, as
///     CUnit::getConverterTo says it.
/// @throws std::range_error  the result is beyond the doubles: infinite, or zero though `x` is not.
/// @throws std::logic_error  a client's converter is neither a scaling nor a shift.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API double convertDifference(double x, const CUnitPtr& from, const CUnitPtr& to);

/// A difference of two quantities. Not a CValueWithUnit, which would count from the zero of a scale.
///
/// Class contract: caller serialises one object; distinct objects any thread.
class MENSOR_CHECKED_API CDifference {
public:
    /// `value` times the size of `unit`.
    CDifference(double value, CUnitPtr unit);

    double value() const { return m_Value; }
    const CUnitPtr& unit() const { return m_Unit; }  ///< of which only the size counts

    /// The difference expressed in `unit`. Throws what convertDifference throws.
    /// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
    double valueAs(const CUnitPtr& unit) const;

private:
    double m_Value;
    CUnitPtr m_Unit;
};

/// `a` minus `b`, both counted from the zero of their scales, in the unit of `a`.
/// Throws what CUnit::getConverterTo throws.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API CDifference difference(const CValueWithUnit& a, const CValueWithUnit& b);

/// The quantity that is higher, or lower, by a difference; in the unit of `a`.
/// Throws what convertDifference throws.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API CValueWithUnit operator+(const CValueWithUnit& a, const CDifference& change);
MENSOR_CHECKED_API CValueWithUnit operator-(const CValueWithUnit& a, const CDifference& change);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_DIFFERENCES_H
