// Verify.h: the check that a unit is the one asked for.
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

namespace mensor {
namespace checked {

/// The library gave another unit than the one asked for, or would convert it wrongly.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_CHECKED_API CIdentityError : public std::logic_error {
public:
    CIdentityError(const std::string& message, CUnitPtr inTheWay);
    ~CIdentityError() override;
    CIdentityError(const CIdentityError&);
    CIdentityError& operator=(const CIdentityError&);

    CUnitPtr inTheWay() const noexcept;  ///< the unit that bears the identity

private:
    CUnitPtr m_InTheWay;
};

/// Makes sure that `unit` means `meaning`, and that the library will convert it so: its dimension
/// and its converter to it are those of the meaning in the current context.
///
/// Exponents, radians, steradians and bits must be the same. Factors and offsets may differ by the
/// rounding of the doubles by which the registry converts: three roundings, each by at most 2^-53 of the
/// result, for each number of the chain of converters. In a product of units, the k roundings of a
/// factor to the power p count k·p times, and each power three times more; a root that is no power of two
/// adds the logarithm of the power, since its exponent is rounded, too. The second of arc may be 14
/// roundings off, the milligram per litre 20.
///
///     verify(CUnit::fromString("kg/(s·K)"), CMeaning::base("kg") / CMeaning::base("s") / ...);
/// @throws CIdentityError  names the object, what it means and what was asked for.
/// @throws std::invalid_argument  `unit` is empty.
/// @throws exact::CError  as meaningOf.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API void verify(const CUnitPtr& unit, const CMeaning& meaning);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_VERIFY_H
