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

/// A scaled or shifted system unit. It has no symbol, so only a label gives it a text.
///
/// Class contract: any thread.
class MENSOR_API CTransformedUnit : public CDerivedUnit {
public:
    /// Creates a unit that converts to `systemUnit` through `toSystem`, without registering it.
    /// Clients use the algebra of CUnit or `getInstance`.
    /// @throws std::invalid_argument  one of the two is empty.
    CTransformedUnit(CUnitPtr systemUnit, CConverterPtr toSystem);
    ~CTransformedUnit() override;

    /// Returns the unit that `toParent` converts to `parent`.
    ///
    /// The unit refers to the system unit of `parent`, and the converters are chained. Units with
    /// the same system unit and the same slope in single precision are one unit, even if their
    /// offsets differ. Empty if the hash code belongs to a unit of another kind.
    /// @throws std::invalid_argument  one of the two is empty.
    /// @par Threads  Any thread, locks mutex(). If `parent` is a product, locks what the algebra of CUnit locks
    ///     before that.
    static CUnitPtr getInstance(CUnitPtr parent, CConverterPtr toParent);

    /// The converter from this unit to its system unit.
    CConverterPtr toSystem() const;

    void calculateHashCode() override;    ///< the sum of those of the system unit and the converter
    CUnitPtr getCtxDimension() override;  ///< that of the system unit
    CUnitPtr getSystemUnit() override;
    /// Returns whether `that` is a transformed unit of the same system unit with an equal
    /// converter.
    bool equals(CUnitPtr that) const override;
    CConverterPtr getCtxToDimension() override;
    /// Returns the empty text. Computes the converter to the system unit first, and throws what
    /// that throws.
    /// @par Threads  Any thread, locks mutex().
    string_t getSymbol() override;

private:
    friend struct detail::DebugLayout;

    CUnitPtr _systemUnit;     // to which this unit converts; never changes
    CConverterPtr _toSystem;  // from this unit to _systemUnit; never changes
};

}  // namespace mensor

#endif  // MENSOR_TRANSFORMEDUNIT_H
