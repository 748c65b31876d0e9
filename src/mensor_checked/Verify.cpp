#include "mensor_checked/Verify.h"

#include <utility>

#include "mensor_checked/Faults.h"
#include "mensor_checked/Lock.h"
#include "mensor_checked/Rounding.h"
#include "mensor_checked/words.h"

namespace mensor::checked {

CIdentityError::CIdentityError(const std::string& message, CUnitPtr inTheWay)
    : std::logic_error(message), m_InTheWay(std::move(inTheWay)) {}
CIdentityError::CIdentityError(const CIdentityError&) = default;
CIdentityError& CIdentityError::operator=(const CIdentityError&) = default;
CIdentityError::~CIdentityError() = default;

CUnitPtr CIdentityError::inTheWay() const noexcept { return m_InTheWay; }

void verify(const CUnitPtr& unit, const CMeaning& meaning) {
    requireUnit(unit, "verify");
    const Lock lock;
    const CMeaning own = meaningOf(unit);
    if (!areSame(own, meaning, unit)) {
        throw CIdentityError(inWords(meaning) + " was asked for, but the object is " +
                                 describe(unit) + ", which means " + inWords(own),
                             unit);
    }
    const auto fault = faultOf(unit, meaning);
    if (!fault) {
        return;
    }
    if (!fault->Dimension) {
        throw CIdentityError("the library would convert " + describe(unit) + " as " +
                                 quoted(fault->Known) + " in place of " + inWords(meaning),
                             unit);
    }
    throw CIdentityError(describe(unit) + " would count as " + quoted(fault->Known) +
                             ", since its dimension is the same object as " +
                             describe(fault->Dimension) + " here",
                         fault->Dimension);
}

}  // namespace mensor::checked
