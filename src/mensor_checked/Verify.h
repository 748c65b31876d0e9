// Verify.h: checks that a unit has a given meaning.
//
//     const auto newton = checked::CMeaning::base("kg") * checked::CMeaning::base("m") /
//                         checked::CMeaning::base("s").power(2);
//     checked::verify(SI::Newton(), newton);
//     checked::verify(SI::Newton() * SI::Meter(), newton);     // throws CIdentityError
#ifndef MENSOR_CHECKED_VERIFY_H
#define MENSOR_CHECKED_VERIFY_H

#include <stdexcept>
#include <string>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/checked_export.h"

namespace mensor::checked {

/// Thrown when the library gives another unit than was asked for, or would convert it wrongly.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_CHECKED_API CIdentityError : public std::logic_error {
public:
    CIdentityError(const std::string& message, CUnitPtr inTheWay);
    ~CIdentityError() override;
    CIdentityError(const CIdentityError&);
    CIdentityError& operator=(const CIdentityError&);

    CUnitPtr inTheWay()
        const noexcept;  ///< the unit that has the name or the identity; may be empty

private:
    CUnitPtr m_InTheWay;
};

/// Checks that `unit` means `meaning` and that the library converts it so: its dimension, and the converter
/// to it, are those of the meaning. Dimensions set by CBaseUnit::setDimension count.
///
/// Exponents, radians, steradians and bits must be the same. Factors and offsets may differ by the rounding
/// of doubles. One rounding is at most 2^-53 of the result. Each number of a chain of converters may add
/// three. In a product of units, a factor with k roundings adds k·p + 3 if its exponent is p. A root that is
/// not a power of two adds the logarithm of the power, because its exponent is rounded, too. The second of
/// arc may differ by 14 roundings, the milligram per litre by 20.
///
///     verify(CUnit::fromString("kg/(s·K)"), CMeaning::base("kg") / CMeaning::base("s") / ...);
/// @throws CIdentityError  the check fails. The message names the unit, its meaning and `meaning`.
/// @throws std::invalid_argument  `unit` is empty.
/// @throws exact::CError  as meaningOf.
/// @par Threads  Any thread, locks CUnit::mutex() (see warm_up.h).
MENSOR_CHECKED_API void verify(const CUnitPtr& unit, const CMeaning& meaning);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_VERIFY_H
