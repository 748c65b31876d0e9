// io.h: units and values on a narrow stream.
//
//     std::cout << SI::Meter() / SI::Second();             // m/s
//     std::cout << CValueWithUnit::fromString("2.5 km");   // 2.5 km
//     std::cout << SI::Meter() * 1609.344;                 // [m*1609.34]: a unit without a text
//
// For messages, logs and tests. What is in brackets is for the eye: it does not read back.
#ifndef MENSOR_IO_H
#define MENSOR_IO_H

#include <iosfwd>
#include <memory>
#include <type_traits>

#include "mensor/Unit.h"
#include "mensor/ValueWithUnit.h"
#include "mensor/mensor_export.h"

namespace mensor {

/// Writes `unit` in the standard notation; where it has none, a short description in brackets:
/// "[m*1609.34]" or "[K+273.15]" for what it is to its system unit, "[m*1609.34]·s^-1" for a product
/// with such a factor, "[no unit]" for an empty pointer, "[unit without text]" for a client's kind.
///
/// Never throws for lack of a text. The stream's width is honoured, counted in bytes.
/// @par Threads  Any thread, locks CUnit::mutex(); the caller serialises the stream.
MENSOR_API std::ostream& operator<<(std::ostream& stream, const CUnitPtr& unit);

/// The same for pointers to the kinds of units, for which the standard library would write an address.
/// @par Threads  Any thread, locks CUnit::mutex(); the caller serialises the stream.
template <class Kind>
std::enable_if_t<std::is_convertible_v<Kind*, CUnit*> && !std::is_same_v<Kind, CUnit>,
                 std::ostream&>
operator<<(std::ostream& stream, const std::shared_ptr<Kind>& unit) {
    return stream << CUnitPtr(unit);
}

/// Writes the number as the stream is set (format, precision, width, locale), a blank and the unit
/// as above.
///
///     std::cout << std::fixed << std::setprecision(2) << value;   // 2.50 km
/// @par Threads  Any thread, locks CUnit::mutex(); the caller serialises the stream.
MENSOR_API std::ostream& operator<<(std::ostream& stream, const CValueWithUnit& value);

}  // namespace mensor

#endif  // MENSOR_IO_H
