// TransformedUnit.h: a unit defined by a system unit and a converter to it.
//
//     CUnitPtr kilometre = SI::Meter() * 1000;
//     CUnitPtr celsius = SI::Kelvin() + 273.15;
#ifndef MENSOR_TRANSFORMEDUNIT_H
#define MENSOR_TRANSFORMEDUNIT_H

#include <memory>

#include "mensor/DerivedUnit.h"
#include "mensor/mensor_export.h"
#include "mensor/mensor_global.h"

namespace mensor {

class CTransformedUnit;
using CTransformedUnitPtr = std::shared_ptr<CTransformedUnit>;

/// A scaled or shifted system unit. It has text only through a label.
///
/// Class contract: any thread.
class MENSOR_API CTransformedUnit : public CDerivedUnit {
public:
    /// An unregistered unit that converts to `systemUnit` through `toSystem`; clients use the
    /// algebra of CUnit or `getInstance`.
    /// @throws std::invalid_argument  one of the two is empty.
    CTransformedUnit(CUnitPtr systemUnit, CConverterPtr toSystem);
    ~CTransformedUnit() override;

    /// The unit whose values `toParent` takes to values of `parent`.
    ///
    /// It refers to the system unit of `parent` directly; the converters are chained. Units of one
    /// system unit with the same slope in single precision are one unit, whatever their offsets.
    /// Empty if that identity belongs to a unit of another kind.
    /// @throws std::invalid_argument  one of the two is empty.
    /// @par Threads  Any thread, locks mutex(); where `parent` is a product, before it what the algebra of
    ///     CUnit locks.
    static CUnitPtr getInstance(CUnitPtr parent, CConverterPtr toParent);

    /// The converter from this unit to its system unit.
    CConverterPtr toSystem() const;

    void calculateHashCode() override;    ///< the system unit's plus the converter's
    CUnitPtr getCtxDimension() override;  ///< that of the system unit
    CUnitPtr getSystemUnit() override;
    /// Whether `that` is a transformed unit of the same system unit with an equal converter.
    bool equals(CUnitPtr that) const override;
    CConverterPtr getCtxToDimension() override;
    /// Empty; but the converter to the system unit is computed, and what that throws is thrown.
    /// @par Threads  Any thread, locks mutex().
    string_t getSymbol() override;

private:
    friend struct detail::DebugLayout;

    CUnitPtr _systemUnit;     // onto which this unit converts; never changes
    CConverterPtr _toSystem;  // from this unit to _systemUnit; never changes
};

}  // namespace mensor

#endif  // MENSOR_TRANSFORMEDUNIT_H
