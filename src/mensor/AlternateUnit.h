// AlternateUnit.h: a system unit with a symbol of its own for a combination of other units.
//
//     CUnitPtr newton = (SI::Kilogram() * SI::Meter() / (SI::Second() ^ 2))->alternate("N");
#ifndef MENSOR_ALTERNATEUNIT_H
#define MENSOR_ALTERNATEUNIT_H

#include <memory>

#include "mensor/DerivedUnit.h"
#include "mensor/mensor_export.h"
#include "mensor/mensor_global.h"

namespace mensor {

class CAlternateUnit;
using CAlternateUnitPtr = std::shared_ptr<CAlternateUnit>;

/// Converts like its base units. Its symbol identifies it and is its text.
///
/// Class contract: any thread.
class MENSOR_API CAlternateUnit : public CDerivedUnit {
public:
    /// Creates a unit without registering it. Clients use CUnit::alternate.
    /// @throws std::invalid_argument  `baseUnits` is empty.
    CAlternateUnit(string_t symbol, CUnitPtr baseUnits);
    ~CAlternateUnit() override;

    /// Returns the alternate unit with this symbol, and registers it if it is new. A known symbol
    /// returns its unit, even if `parent` is another one this time.
    /// @throws std::logic_error  `parent` is not a system unit, or "The symbol: m is currently
    ///     associated to another unit.".
    /// @throws std::invalid_argument  `parent` is empty.
    /// @par Threads  Any thread, locks mutex(). If `parent` is a product, locks what the algebra of CUnit locks
    ///     before that.
    static CAlternateUnitPtr getInstance(const string_t& symbol, CUnitPtr parent);

    void calculateHashCode() override;    ///< from the symbol alone
    CUnitPtr getCtxDimension() override;  ///< that of the base units
    CUnitPtr getSystemUnit() override;    ///< this unit
    /// Returns whether `that` has the same base units, by address, and the same symbol.
    /// @throws std::logic_error  `that` is not a system unit.
    bool equals(CUnitPtr that) const override;
    CConverterPtr getCtxToDimension() override;  ///< that of the base units
    CUnitPtr baseUnits() override;               ///< the base units of the parent

private:
    CUnitPtr m_BaseUnits;  // the base units of the parent; never changes
};

}  // namespace mensor

#endif  // MENSOR_ALTERNATEUNIT_H
