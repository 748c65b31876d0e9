// ValueWithUnit.h: a number and its unit.
//
//     auto way = CValueWithUnit::fromString("2.5 km");
//     way.valueAs(SI::Meter());                                   // 2500
//     way += CValueWithUnit(500, SI::Meter());                    // 3 km
//     way == CValueWithUnit(3000, SI::Meter());                   // true
#ifndef MENSOR_VALUEWITHUNIT_H
#define MENSOR_VALUEWITHUNIT_H

#include <string>

#include "mensor/Unit.h"
#include "mensor/mensor_export.h"
#include "mensor/mensor_global.h"

namespace mensor {

/// A number with a unit. All operations apply offsets: a value in °C is always a temperature, never
/// a difference of temperatures.
///
/// Every operation that converts throws what CUnit::getConverterTo throws.
///
/// Class contract: caller serialises one object; distinct objects any thread. Converting, reading
/// and writing lock what the functions of CUnit lock.
class MENSOR_API CValueWithUnit {
public:
    /// `value` in `unit`.
    CValueWithUnit(double value, CUnitPtr unit);

    double value() const;   ///< the number, in `unit()`
    CUnitPtr unit() const;  ///< the unit

    void setValue(double value);            ///< replaces the number only
    void setUnit(const CUnitPtr& unit);     ///< replaces the unit only, which changes the quantity
    void changeUnit(const CUnitPtr& unit);  ///< the same quantity in `unit`; unchanged if it throws
    double valueAs(const CUnitPtr& unit) const;            ///< the number in `unit`
    CValueWithUnit convertTo(const CUnitPtr& unit) const;  ///< the same quantity in `unit`

    CValueWithUnit& operator+=(const CValueWithUnit& other);      ///< in this value's unit
    CValueWithUnit& operator-=(const CValueWithUnit& other);      ///< in this value's unit
    CValueWithUnit operator+(const CValueWithUnit& other) const;  ///< in the left value's unit
    CValueWithUnit operator-(const CValueWithUnit& other) const;  ///< in the left value's unit

    /// Returns a field of 63 bytes, a blank and the unit in the standard notation. The field holds
    /// the number as "%f" writes it, cut off at 63 characters and padded with zero bytes. A reader
    /// that stops at the first zero byte sees only the number. The decimal point is that of the C
    /// locale.
    /// @throws std::invalid_argument  the unit has no text (see CUnitFormat::format) or is empty.
    string_t toString() const;

    /// Reads "number unit", with one blank between them. Text after a second blank is ignored.
    ///
    ///     CValueWithUnit::fromString("26.5 °C");
    /// @throws std::invalid_argument  "Label: xyz not recognized" for the unit, which is read first; "stod" for a
    ///     number without digits; a message that quotes the text if it has no blank.
    /// @throws std::out_of_range  "stod": the number is not a normal double.
    static CValueWithUnit fromString(const std::string& text);

private:
    friend struct detail::DebugLayout;

    double m_Value;   // expressed in m_Unit
    CUnitPtr m_Unit;  // shared with the registry
};

/// Returns whether both are equal in the unit of `a`, within 1e-12 of the smaller magnitude. Zero
/// equals only zero, and NaN equals nothing.
/// @par Threads  Any thread, locks what CUnit::getConverterTo locks. This holds for all comparisons.
MENSOR_API bool operator==(const CValueWithUnit& a, const CValueWithUnit& b);
/// The negation of `a == b`.
MENSOR_API bool operator!=(const CValueWithUnit& a, const CValueWithUnit& b);
/// Strictly less, without tolerance, in the unit of `a`.
MENSOR_API bool operator<(const CValueWithUnit& a, const CValueWithUnit& b);
/// Strictly greater, without tolerance, in the unit of `a`.
MENSOR_API bool operator>(const CValueWithUnit& a, const CValueWithUnit& b);

}  // namespace mensor

#endif  // MENSOR_VALUEWITHUNIT_H
