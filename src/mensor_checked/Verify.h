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

/// The library gave another unit than the one asked for, or knows it by a wrong dimension.
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
///     verify(CUnit::fromString("kg/(s·K)"), CMeaning::base("kg") / CMeaning::base("s") / ...);
/// @throws CIdentityError  names the object, what it means and what was asked for.
/// @throws std::invalid_argument  `unit` is empty.
/// @par Threads  Any thread, locks CUnit::mutex() (see WarmUp.h).
MENSOR_CHECKED_API void verify(const CUnitPtr& unit, const CMeaning& meaning);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_VERIFY_H
