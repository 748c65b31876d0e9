// Differences.h: differences of quantities. They convert by the size of a unit, without its offset.
//
//     checked::convertDifference(10, SI::Celsius(), SI::Kelvin());     // 10, not 283.15
//     const CValueWithUnit inside(20, SI::Celsius()), outside(15, SI::Celsius());
//     checked::difference(inside, outside).valueAs(SI::Kelvin());      // 5, not 278.15
//     (outside + checked::difference(inside, outside)).value();        // 20
//
// CUnit::getConverterTo and CValueWithUnit convert values of a scale, with the offset.
#ifndef MENSOR_CHECKED_DIFFERENCES_H
#define MENSOR_CHECKED_DIFFERENCES_H

#include "mensor/Unit.h"
#include "mensor/ValueWithUnit.h"
#include "mensor_checked/checked_export.h"

namespace mensor::checked {

/// Returns the difference `x`, given in `from`, in `to`. If neither unit has an offset, this is the same
/// double as `from->convertValueToUnit(x, to)`.
///
/// @throws std::invalid_argument  a unit is empty, or the units are not compatible. The message is that of
///     CUnit::getConverterTo.
/// @throws std::range_error  the result is infinite, or it is zero and `x` is not.
/// @throws std::logic_error  a client's converter is neither a scaling nor a shift.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API double convertDifference(double x, const CUnitPtr& from, const CUnitPtr& to);

/// A difference of two quantities. A CValueWithUnit would count from the zero of its scale.
///
/// Class contract: caller serialises one object; distinct objects any thread.
class MENSOR_CHECKED_API CDifference {
public:
    /// The difference is `value` times the size of `unit`.
    CDifference(double value, CUnitPtr unit);

    double value() const { return m_Value; }
    const CUnitPtr& unit() const { return m_Unit; }  ///< its offset does not count

    /// Returns the difference in `unit`. Throws what convertDifference throws.
    /// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
    double valueAs(const CUnitPtr& unit) const;

private:
    double m_Value;
    CUnitPtr m_Unit;
};

/// Returns `a` minus `b` in the unit of `a`. Both are values of their scales.
/// @throws std::invalid_argument  a unit is empty, or the units are not compatible.
/// @throws std::range_error  the result is infinite, and the values are not.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API CDifference difference(const CValueWithUnit& a, const CValueWithUnit& b);

/// Returns `a`, higher or lower by a difference, in the unit of `a`. Throws what convertDifference throws.
/// @throws std::range_error  also if the result is infinite, and the values are not.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API CValueWithUnit operator+(const CValueWithUnit& a, const CDifference& change);
MENSOR_CHECKED_API CValueWithUnit operator-(const CValueWithUnit& a, const CDifference& change);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_DIFFERENCES_H
