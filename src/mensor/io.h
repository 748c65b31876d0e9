// io.h: units and values on a narrow stream.
//
//     std::cout << SI::Meter() / SI::Second();             // m/s
//     std::cout << CValueWithUnit::fromString("2.5 km");   // 2.5 km
//     std::cout << SI::Meter() * 1609.344;                 // [m*1609.34]: a unit without a text
//
// For messages, logs and tests. The text in brackets is for people: it does not read back.
#ifndef MENSOR_IO_H
#define MENSOR_IO_H

#include <iosfwd>
#include <memory>
#include <type_traits>

#include "mensor/Unit.h"
#include "mensor/ValueWithUnit.h"
#include "mensor/mensor_export.h"

namespace mensor {

/// Writes `unit` in the standard notation. A unit without a text is described in brackets:
/// "[m*1609.34]" or "[K+273.15]" by its converter to the system unit, "[m*1609.34]·s^-1" for a
/// product with such a factor, "[no unit]" for an empty pointer, "[unit without text]" for a
/// client's kind.
///
/// Does not throw if the unit has no text. Applies the width of the stream, counted in bytes.
/// @par Threads  Any thread, locks CUnit::mutex(); the caller serialises the stream.
MENSOR_API std::ostream& operator<<(std::ostream& stream, const CUnitPtr& unit);

/// The same for pointers to the kinds of units. The standard library would write their addresses.
/// @par Threads  Any thread, locks CUnit::mutex(); the caller serialises the stream.
template <class Kind>
std::enable_if_t<std::is_convertible_v<Kind*, CUnit*> && !std::is_same_v<Kind, CUnit>,
                 std::ostream&>
operator<<(std::ostream& stream, const std::shared_ptr<Kind>& unit) {
    return stream << CUnitPtr(unit);
}

/// Writes the number with the settings of the stream (format, precision, width, locale), a blank
/// and the unit as above.
///
///     std::cout << std::fixed << std::setprecision(2) << value;   // 2.50 km
/// @par Threads  Any thread, locks CUnit::mutex(); the caller serialises the stream.
MENSOR_API std::ostream& operator<<(std::ostream& stream, const CValueWithUnit& value);

}  // namespace mensor

#endif  // MENSOR_IO_H
