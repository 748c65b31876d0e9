// Making.h: the makers of units, each checked: the result is the unit asked for, or there is none.
//
//     checked::baseUnit("dollar_US");
//     checked::baseUnit("dollar_CA");    // throws CIdentityError: all symbols of eight and more code
//                                        // points have one hash, so it would be dollar_US
//     checked::label(checked::scaled(SI::Meter(), 0.3048), "ft");
//
// Every function takes what the operation of the library takes. All throw
//   std::invalid_argument  a unit is an empty pointer or has no place here, or an argument is no number
//                          or no name;
//   CIdentityError         the library gives another unit; the message and inTheWay() name it;
// and pass on what the library throws. An object that was refused may stay registered, as the library
// knows no way to take one back.
//
// Threads: any thread; every function locks CUnit::mutex() for all its work (see WarmUp.h).
#ifndef MENSOR_CHECKED_MAKING_H
#define MENSOR_CHECKED_MAKING_H

#include "mensor/Unit.h"
#include "mensor/mensor_global.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/checked_export.h"
#include "mensor_exact/Meaning.h"

namespace mensor {
namespace checked {

/// The base unit with this symbol; also when it exists already.
MENSOR_CHECKED_API CUnitPtr baseUnit(const string_t& symbol);

/// The alternate unit with this symbol that stands for `parent`. Refused where the symbol already
/// stands for something else.
MENSOR_CHECKED_API CUnitPtr alternateUnit(const string_t& symbol, const CUnitPtr& parent);

/// The unit of the size of `factor` of `unit`, which must be finite and above zero.
///
/// The offset of `unit` stays where it is: a thousand degrees Celsius to the unit is refused where
/// the library would give the thousandfold kelvin.
MENSOR_CHECKED_API CUnitPtr scaled(const CUnitPtr& unit, double factor);

/// The unit whose zero is at `offset` of `unit`, which must be finite; an offset of 0 is `unit`
/// itself.
MENSOR_CHECKED_API CUnitPtr shifted(const CUnitPtr& unit, double offset);

/// The unit whose value x is factor·x + offset in `unit`: (5/9, 459.67·5/9) of the kelvin is the
/// degree Fahrenheit. It converts both ways with its offset, which the algebra's operators lose.
MENSOR_CHECKED_API CUnitPtr affine(const CUnitPtr& unit, double factor, double offset);

/// Products, quotients, powers and roots. A factor with an offset is refused: the library cannot
/// convert such a product, or would drop the offset without a word.
MENSOR_CHECKED_API CUnitPtr product(const CUnitPtr& left, const CUnitPtr& right);
MENSOR_CHECKED_API CUnitPtr quotient(const CUnitPtr& left, const CUnitPtr& right);
MENSOR_CHECKED_API CUnitPtr power(const CUnitPtr& unit, int n);
MENSOR_CHECKED_API CUnitPtr root(const CUnitPtr& unit, int n);

/// A unit with this meaning, as codes (mensor_codes/Codes.h) and the exact readers give it: a product of
/// powers of base units, radian, steradian and bit, with the doubles nearest to factor and offset. Another
/// dimension is the base unit with its name.
///
///     checked::unitOf(codes::read(codes::eSystem::UNECE, "KMH"));  // converts as km/h does
/// @throws std::invalid_argument  also: factor or offset are beyond the range of doubles.
MENSOR_CHECKED_API CUnitPtr unitOf(const exact::CMeaning& meaning);

/// Labels `unit`; gives `unit`. The text must be a name (isName).
///
/// Refused where the unit has another label already, which would stop being read; where the text
/// already names another unit; and where it is a prefix and the name of a unit with an offset, as
/// "m°C", of which this unit has not the zero.
MENSOR_CHECKED_API CUnitPtr label(const CUnitPtr& unit, const string_t& text);

/// Lets `text` be read as `unit`; gives `unit`. The text must be a name (isName).
///
/// Refused where the text already names another unit: as label or alias it would win over this one
/// in silence, and as symbol it would be hidden.
MENSOR_CHECKED_API CUnitPtr alias(const CUnitPtr& unit, const string_t& text);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_MAKING_H
