// ProductUnit.h: the product of rational powers of units, and the dimensionless unit.
//
//     SI::Meter() / SI::Second();               // (m, 1, 1)(s, -1, 1)
//     SI::Meter()->divide(SI::Meter());         // CProductUnit::one()
//     (SI::Meter() ^ 2)->root(2);               // the metre itself
//
// The call that first builds a product decides the order of its factors: the merged factors of the
// left side, then the remaining ones of the right side. The hash code does not depend on the order,
// so m·s and s·m are one object.
#ifndef MENSOR_PRODUCTUNIT_H
#define MENSOR_PRODUCTUNIT_H

#include <memory>
#include <vector>

#include "mensor/DerivedUnit.h"
#include "mensor/UnitRationalPower.h"
#include "mensor/mensor_export.h"

namespace mensor {

/// A product of powers. Clients use the algebra of CUnit.
///
/// Class contract: any thread. The static functions lock mutex(). The functions that multiply the
/// results for all factors (`getSystemUnit`, `baseUnits`, `getCtxDimension`) lock what the algebra
/// of CUnit locks.
class MENSOR_API CProductUnit : public CDerivedUnit {
public:
    ~CProductUnit() override;

    /// The dimensionless unit. Its symbol is "One", but it is not in CUnit::symbols(), so the text
    /// "One" does not denote it.
    static CUnitPtr one();

    /// The registered product of both lists. Factors of the same unit object are merged, exponents
    /// are reduced, and factors with the exponent 0 are dropped. A single factor to the power 1 is
    /// its unit.
    /// @throws std::invalid_argument  a factor has no unit.
    /// @throws std::overflow_error  an exponent leaves the range of `int`. Nothing is registered then.
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

    /// The sum of the hash codes of the factors, each times (3·pow − 2·root), with wrap-around.
    void calculateHashCode() override;
    CUnitPtr getCtxDimension() override;
    CUnitPtr getSystemUnit() override;
    /// Returns whether `that` has the same factors in any order.
    bool equals(CUnitPtr that) const override;
    std::vector<CUnitRationalPower> elements() override;
    /// A scaling by the product of the slopes of the factors' converters, each raised to the
    /// exponent of its factor. It is computed with `pow` of the math library, so the last digit may
    /// differ between platforms.
    /// @throws std::logic_error  "Unit element  is non-linear, cannot convert", with the symbol of the factor
    ///     that has an offset.
    CConverterPtr getCtxToDimension() override;
    CUnitPtr baseUnits() override;

protected:
    CProductUnit();

private:
    friend struct detail::DebugLayout;
    friend struct detail::Products;

    MENSOR_LOCAL explicit CProductUnit(std::vector<CUnitRationalPower> elements);

    /// CUnit::getInstance of the product of `elements`. detail::Products cannot call that protected
    /// function.
    MENSOR_LOCAL static CUnitPtr registered(std::vector<CUnitRationalPower> elements);

    MENSOR_LOCAL bool elementsContainsOtherSingle(const CUnitRationalPower& element) const;
    MENSOR_LOCAL bool elementsContains(const std::vector<CUnitRationalPower>& elements) const;

    std::vector<CUnitRationalPower> m_Elements;  // never reordered, never changed
    // Set by the first getSystemUnit(); atomic access only. If it is this product, the pointer does
    // not own it.
    CUnitPtr m_SystemUnitCach;
};

}  // namespace mensor

#endif  // MENSOR_PRODUCTUNIT_H
