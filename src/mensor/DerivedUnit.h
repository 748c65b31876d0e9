// DerivedUnit.h: the base of all kinds of units except the base unit.
#ifndef MENSOR_DERIVEDUNIT_H
#define MENSOR_DERIVEDUNIT_H

#include "mensor/Unit.h"
#include "mensor/mensor_export.h"
#include "mensor/mensor_global.h"

namespace mensor {

/// The abstract base of CAlternateUnit, CTransformedUnit and CProductUnit.
///
/// Class contract: any thread.
class MENSOR_API CDerivedUnit : public CUnit {
public:
    ~CDerivedUnit() override;

protected:
    explicit CDerivedUnit(const string_t& symbol);
};

}  // namespace mensor

#endif  // MENSOR_DERIVEDUNIT_H
