// ProductUnit.h: the product of rational powers of units, and the dimensionless unit.
//
//     SI::Meter() / SI::Second();               // (m, 1, 1)(s, -1, 1)
//     SI::Meter()->divide(SI::Meter());         // CProductUnit::one()
//     (SI::Meter() ^ 2)->root(2);               // the metre itself
//
// The factors stand in the order of whoever built the product first: merged left factors in left
// order, then the unmatched right ones. The order does not enter the hash, so m·s and s·m are one
// object.
#ifndef MENSOR_PRODUCTUNIT_H
#define MENSOR_PRODUCTUNIT_H

#include <memory>
#include <vector>

#include "mensor/DerivedUnit.h"
#include "mensor/UnitRationalPower.h"
#include "mensor/mensor_export.h"

namespace mensor {

namespace detail {
struct Products;
}

/// A product of powers. Clients use the algebra of CUnit.
///
/// Class contract: any thread. The makers lock mutex(); what folds the factors (`getSystemUnit`,
/// `baseUnits`, `getCtxDimension`) locks what the algebra of CUnit locks.
class MENSOR_API CProductUnit : public CDerivedUnit {
public:
    ~CProductUnit() override;

    /// The dimensionless unit. It bears the symbol "One", but is not in CUnit::symbols(), so the
    /// text "One" does not read as it.
    static CUnitPtr one();

    /// The canonical product of both lists: factors of the same unit object are merged, exponents
    /// reduced, vanished factors dropped; a single factor to the power one is its unit.
    /// @throws std::invalid_argument  a record has no unit.
    /// @throws std::overflow_error  an exponent leaves the range of `int`; nothing is registered.
    /// @par Threads  Any thread, locks mutex().
    static CUnitPtr getInstance(const std::vector<CUnitRationalPower>& LeftElements,
                                const std::vector<CUnitRationalPower>& RightElements);

    static CUnitPtr getProductInstance(CUnitPtr left, CUnitPtr right);   ///< left · right
    static CUnitPtr getQuotientInstance(CUnitPtr left, CUnitPtr right);  ///< left / right
    /// The root of order `n`, which must not be zero.
    static CUnitPtr getRootInstance(CUnitPtr unit, int n);
    static CUnitPtr getPowInstance(CUnitPtr unit, int n);  ///< the power `n`

    int size() const;                         ///< number of factors
    CUnitRationalPower get(int index) const;  ///< factor `index`, which must be in range
    /// The factors, valid as long as this unit.
    const std::vector<CUnitRationalPower>& factors() const { return m_Elements; }

    /// The sum of each factor's hash times (3·pow − 2·root), wrapping round.
    void calculateHashCode() override;
    CUnitPtr getCtxDimension() override;
    CUnitPtr getSystemUnit() override;
    /// Whether `that` has the same factors in any order.
    bool equals(CUnitPtr that) const override;
    std::vector<CUnitRationalPower> elements() override;
    /// A scaling by the slopes of the factors' converters, each to its power. The math library's
    /// `pow` computes it, so its last place may differ between platforms.
    /// @throws std::logic_error  "Unit element  is non-linear, cannot convert", with the symbol of
    ///     the factor that has an offset.
    CConverterPtr getCtxToDimension() override;
    CUnitPtr baseUnits() override;

protected:
    CProductUnit();

private:
    friend struct detail::DebugLayout;
    friend struct detail::Products;

    MENSOR_LOCAL explicit CProductUnit(std::vector<CUnitRationalPower> elements);

    /// CUnit::getInstance of the product of `elements`. A friend of this class may not call that.
    MENSOR_LOCAL static CUnitPtr registered(std::vector<CUnitRationalPower> elements);

    MENSOR_LOCAL bool elementsContainsOtherSingle(const CUnitRationalPower& element) const;
    MENSOR_LOCAL bool elementsContains(const std::vector<CUnitRationalPower>& elements) const;

    std::vector<CUnitRationalPower> m_Elements;  // never reordered, never changed
    // Set once, by the first getSystemUnit(); atomic access only. Where it is this very product, it
    // points without owning.
    CUnitPtr m_SystemUnitCach;
};

}  // namespace mensor

#endif  // MENSOR_PRODUCTUNIT_H
