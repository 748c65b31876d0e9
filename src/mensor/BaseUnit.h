// BaseUnit.h: a unit that stands for one independent dimension of measurement.
//
//     CBaseUnitPtr currency = CBaseUnit::getInstance("EUR");
//     CBaseUnit::getInstance("EUR") == currency;   // true: the symbol alone decides
#ifndef MENSOR_BASEUNIT_H
#define MENSOR_BASEUNIT_H

#include <memory>

#include "mensor/Unit.h"
#include "mensor/mensor_export.h"
#include "mensor/mensor_global.h"

namespace mensor {

class CBaseUnit;
using CBaseUnitPtr = std::shared_ptr<CBaseUnit>;

/// A base unit: its own system unit, identified by its symbol.
///
/// Class contract: any thread, except `setDimension`.
class MENSOR_API CBaseUnit : public CUnit {
public:
    ~CBaseUnit() override;

    /// The base unit with this symbol, registered now if it is new.
    ///
    /// Keep symbols to five code points: longer ones may have the same hash, and the hash alone
    /// decides identity. Where the hash belongs to a unit of another kind the result points at that
    /// unit; `setDimension` refuses it.
    /// @throws std::logic_error  "The symbol: x is currently associated to another unit.".
    /// @par Threads  Any thread, locks mutex().
    static CBaseUnitPtr getInstance(const string_t& symbol);

    /// Maps this base unit onto `dimension`, reached through `toDimension`, and forgets all cached
    /// dimensions and converters, so that every unit resting on this one follows.
    ///
    /// Empty pointers restore the default: the unit itself and the identity.
    /// @throws std::logic_error  this object is a unit of another kind, see `getInstance`.
    /// @par Threads  Caller serialises this with everything that asks for dimensions or converters.
    void setDimension(CUnitPtr dimension, CConverterPtr toDimension);

    CUnitPtr getBaseUnits();  ///< this unit

    void calculateHashCode() override;
    CUnitPtr getCtxDimension() override;  ///< what `setDimension` stored, else this unit
    CUnitPtr getSystemUnit() override;    ///< this unit
    /// Whether the symbol of `that`, of whatever kind it is, has the same bytes.
    bool equals(CUnitPtr that) const override;
    CConverterPtr getCtxToDimension() override;  ///< what `setDimension` stored, else the identity
    CUnitPtr baseUnits() override;               ///< this unit

protected:
    explicit CBaseUnit(const string_t& symbol);

private:
    CUnitPtr m_Dimension;         // the unit this one is mapped onto; empty means this unit
    CConverterPtr m_ToDimension;  // from this unit to m_Dimension; empty means the identity
};

}  // namespace mensor

#endif  // MENSOR_BASEUNIT_H
