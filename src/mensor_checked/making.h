// making.h: functions that make units. Each returns the unit that was asked for, or throws.
//
//     checked::baseUnit("dollar_US");
//     checked::baseUnit("dollar_CA");    // throws CIdentityError: all symbols of eight or more code
//                                        // points have the same hash code, so it would be dollar_US
//     checked::label(checked::scaled(SI::Meter(), 0.3048), "ft");
//
// Each function has the arguments of an operation of the library. All of them throw
//   std::invalid_argument  an argument is out of range: an empty unit, an offset unit in a product, a
//                          number that is not finite, a text that cannot be a name;
//   CIdentityError         the library gives another unit; the message and inTheWay() name it;
// and pass on what the library throws. An object that was refused may stay registered, because the library
// cannot remove one.
//
// Threads: any thread; every function locks CUnit::mutex() for all its work (see warm_up.h).
#ifndef MENSOR_CHECKED_MAKING_H
#define MENSOR_CHECKED_MAKING_H

#include "mensor/Unit.h"
#include "mensor/mensor_global.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/checked_export.h"
#include "mensor_exact/Meaning.h"

namespace mensor::checked {

/// Returns the base unit with this symbol, and makes it if it does not exist.
MENSOR_CHECKED_API CUnitPtr baseUnit(const string_t& symbol);

/// Returns the alternate unit of `parent` with this symbol. Throws if the symbol belongs to another unit.
MENSOR_CHECKED_API CUnitPtr alternateUnit(const string_t& symbol, const CUnitPtr& parent);

/// Returns the unit whose size is `factor` times `unit`. The factor must be finite and above zero.
///
/// The zero of the scale stays. So a thousand times the degree Celsius is refused: the library would
/// give a thousand kelvins, without the offset.
MENSOR_CHECKED_API CUnitPtr scaled(const CUnitPtr& unit, double factor);

/// Returns the unit whose zero is at `offset` on the scale of `unit`. The offset must be finite; 0 gives
/// `unit` itself.
MENSOR_CHECKED_API CUnitPtr shifted(const CUnitPtr& unit, double offset);

/// Returns the unit whose value x is factor·x + offset in `unit`. With 5/9 and 459.67·5/9, on the kelvin,
/// it is the degree Fahrenheit. It converts both ways with its offset, which the operators of the library
/// lose.
MENSOR_CHECKED_API CUnitPtr affine(const CUnitPtr& unit, double factor, double offset);

/// Return products, quotients, powers and roots. Offset units are refused: the library cannot convert such
/// a product, or would drop the offset silently.
MENSOR_CHECKED_API CUnitPtr product(const CUnitPtr& left, const CUnitPtr& right);
MENSOR_CHECKED_API CUnitPtr quotient(const CUnitPtr& left, const CUnitPtr& right);
MENSOR_CHECKED_API CUnitPtr power(const CUnitPtr& unit, int n);
MENSOR_CHECKED_API CUnitPtr root(const CUnitPtr& unit, int n);

/// Returns a unit with this meaning, which may come from codes (mensor_codes/Codes.h) or exact::read. It is
/// a product of powers of base units, radian, steradian and bit, with the doubles nearest to the factor and
/// the offset. For any other dimension, the base unit with its name is made.
///
///     checked::unitOf(codes::read(codes::eSystem::UNECE, "KMH"));  // converts as km/h does
/// @throws std::invalid_argument  also: the factor or the offset is beyond the range of double.
MENSOR_CHECKED_API CUnitPtr unitOf(const exact::CMeaning& meaning);

/// Labels `unit` and returns it. The text must be a name (isName).
///
/// Throws CIdentityError if the unit has another label, which could then no longer be read; if the text
/// already names another unit; and if the text is a prefix and the name of an offset unit, such as "m°C",
/// and `unit` does not have that offset.
MENSOR_CHECKED_API CUnitPtr label(const CUnitPtr& unit, const string_t& text);

/// Makes `text` another name of `unit` and returns the unit. The text must be a name (isName).
///
/// Throws CIdentityError if the text already names another unit. Otherwise that unit's label would
/// silently win over the alias, or the alias would silently hide that unit's symbol.
MENSOR_CHECKED_API CUnitPtr alias(const CUnitPtr& unit, const string_t& text);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_MAKING_H
