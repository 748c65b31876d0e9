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

/// Converts as what it stands for; is known and shown by its symbol.
///
/// Class contract: any thread.
class MENSOR_API CAlternateUnit : public CDerivedUnit {
public:
    /// An unregistered unit; clients use CUnit::alternate.
    /// @throws std::invalid_argument  `baseUnits` is empty.
    CAlternateUnit(string_t symbol, CUnitPtr baseUnits);
    ~CAlternateUnit() override;

    /// The unit with this symbol, registered now if it is new. A known symbol gives the unit that
    /// bears it, whatever `parent` is this time.
    /// @throws std::logic_error  `parent` is not a system unit, or "The symbol: m is currently
    ///     associated to another unit.".
    /// @throws std::invalid_argument  `parent` is empty.
    /// @par Threads  Any thread, locks mutex(); where `parent` is a product, before it what the algebra of
    ///     CUnit locks.
    static CAlternateUnitPtr getInstance(const string_t& symbol, CUnitPtr parent);

    void calculateHashCode() override;    ///< of the symbol alone
    CUnitPtr getCtxDimension() override;  ///< that of the base units
    CUnitPtr getSystemUnit() override;    ///< this unit
    /// Whether `that` has the same base units, by address, and the same symbol.
    /// @throws std::logic_error  `that` is not a system unit.
    bool equals(CUnitPtr that) const override;
    CConverterPtr getCtxToDimension() override;  ///< that of the base units
    CUnitPtr baseUnits() override;               ///< the expansion it was made with

private:
    CUnitPtr m_BaseUnits;  // the parent's expansion into base units; never changes
};

}  // namespace mensor

#endif  // MENSOR_ALTERNATEUNIT_H
