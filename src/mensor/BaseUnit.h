// BaseUnit.h: the unit of an independent dimension.
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

/// A base unit. It is its own system unit, and its symbol identifies it.
///
/// Class contract: any thread, except `setDimension`.
class MENSOR_API CBaseUnit : public CUnit {
public:
    ~CBaseUnit() override;

    /// The base unit with this symbol, registered now if it is new.
    ///
    /// Use at most five code points: longer symbols may have the same hash code, which alone
    /// decides identity. If the hash code belongs to a unit of another kind, the result points at
    /// that unit, and `setDimension` refuses it.
    /// @throws std::logic_error  "The symbol: x is currently associated to another unit.".
    /// @par Threads  Any thread, locks mutex().
    static CBaseUnitPtr getInstance(const string_t& symbol);

    /// Sets the dimension of this base unit, and the converter to it. Clears all cached dimensions
    /// and converters, so that every unit that depends on this one follows.
    ///
    /// Empty pointers restore the default: the unit itself and the identity converter.
    /// @throws std::logic_error  this object is a unit of another kind, see `getInstance`.
    /// @par Threads  Caller serialises this with everything that asks for dimensions or converters.
    void setDimension(CUnitPtr dimension, CConverterPtr toDimension);

    CUnitPtr getBaseUnits();  ///< this unit

    void calculateHashCode() override;
    CUnitPtr getCtxDimension() override;  ///< what `setDimension` stored, else this unit
    CUnitPtr getSystemUnit() override;    ///< this unit
    /// Returns whether the symbol of `that` has the same bytes. `that` may be of any kind.
    bool equals(CUnitPtr that) const override;
    CConverterPtr getCtxToDimension()
        override;                   ///< what `setDimension` stored, else the identity converter
    CUnitPtr baseUnits() override;  ///< this unit

protected:
    explicit CBaseUnit(const string_t& symbol);

private:
    CUnitPtr m_Dimension;  // set by setDimension(); empty means this unit
    CConverterPtr
        m_ToDimension;  // from this unit to m_Dimension; empty means the identity converter
};

}  // namespace mensor

#endif  // MENSOR_BASEUNIT_H
