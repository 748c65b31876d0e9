// UnitRationalPower.h: one factor of a product, a unit raised to a rational power.
//
//     CUnitRationalPower(SI::Second(), -2, 1);   // s⁻²
//     CUnitRationalPower(SI::Meter(), 1, 2);     // the square root of the metre
#ifndef MENSOR_UNITRATIONALPOWER_H
#define MENSOR_UNITRATIONALPOWER_H

#include <memory>
#include <utility>

#include "mensor/mensor_export.h"

namespace mensor {

class CUnit;
using CUnitPtr = std::shared_ptr<CUnit>;

/// A plain value: unit, numerator and denominator of its exponent.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_API CUnitRationalPower {
public:
    /// No unit, 0/0.
    CUnitRationalPower() : m_Pow(0), m_Root(0) {}
    /// `unit` to the power `pow`/`root`, stored as given, not reduced.
    CUnitRationalPower(CUnitPtr unit, int pow, int root)
        : m_Unit(std::move(unit)), m_Pow(pow), m_Root(root) {}

    CUnitPtr getUnit() const { return m_Unit; }  ///< the unit that is raised
    int getPow() const { return m_Pow; }         ///< numerator of the exponent
    int getRoot() const { return m_Root; }  ///< denominator of the exponent, the order of the root

    /// The unit that is raised, without a count of its owners: valid as long as this record.
    const CUnitPtr& unit() const { return m_Unit; }
    void setPow(int pow) { m_Pow = pow; }
    void setRoot(int root) { m_Root = root; }

    /// Same unit object, same numerator, same denominator: 2/2 is not 1/1.
    bool operator==(const CUnitRationalPower& other) const;

private:
    friend struct detail::DebugLayout;

    CUnitPtr m_Unit;
    int m_Pow;
    int m_Root;
};

}  // namespace mensor

#endif  // MENSOR_UNITRATIONALPOWER_H
