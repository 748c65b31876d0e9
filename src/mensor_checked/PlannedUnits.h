// PlannedUnits.h: calculates the units that a table of units would make, without making them. For the
// companion's own use; not installed.
//
// The registry cannot remove the symbol of a base unit. So it must be known beforehand whether a later line
// will be refused. The registry has one object for each hash code, so this class calculates hash codes, also
// those of the units that the library makes on the way to a system unit and to a dimension. Units without a
// new base unit are made. They have no name.
#ifndef MENSOR_CHECKED_PLANNEDUNITS_H
#define MENSOR_CHECKED_PLANNEDUNITS_H

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"
#include "mensor_exact/Exponent.h"

namespace mensor::checked {

struct CPlannedUnit;

struct CPlannedFactor {
    const CPlannedUnit* Unit;
    exact::CExponent Exponent;
};

/// A unit that is registered, or one that would be new.
struct CPlannedUnit {
    CUnitPtr Unit;  ///< empty if it would be new
    int Hash = 0;
    CMeaning Meaning;                      ///< of a new unit
    std::vector<CPlannedFactor> Factors;   ///< of a new product, else empty
    const CPlannedUnit* System = nullptr;  ///< the system unit of a new transformed unit, else null
    double Slope = 1.0;                    ///< the size of a new transformed unit in System
};

/// The units of one table. The caller holds the lock during the lifetime of the object.
///
/// The functions throw CIdentityError if a unit would be the same object as another one, and pass on what the
/// library throws.
class CPlannedUnits {
public:
    CPlannedUnits() = default;
    CPlannedUnits(const CPlannedUnits&) = delete;
    CPlannedUnits& operator=(const CPlannedUnits&) = delete;

    /// Returns the unit that `text` would be read as. The text can be read (readForMeaning).
    const CPlannedUnit& read(std::string_view text);

    /// Plans a base unit.
    void addBase(const std::string& symbol);

    /// Plans the unit `name`, whose value x is factor·x + offset in `unit`.
    void add(const std::string& name, const CPlannedUnit& unit, double factor, double offset,
             const CMeaning& meaning);

    /// Returns how many new units there are.
    std::size_t countOfNew() const { return m_New.size(); }

private:
    using CFactors = std::vector<CPlannedFactor>;

    const CPlannedUnit& registered(const CUnitPtr& unit);
    const CPlannedUnit& planned(CPlannedUnit unit);
    const CPlannedUnit& product(const CFactors& factors);
    const CPlannedUnit& registeredProduct(const CPlannedUnit& wanted);
    const CPlannedUnit& raised(const CPlannedUnit& unit, exact::CExponent exponent);
    const CPlannedUnit& transformed(const CPlannedUnit& unit, double factor, double offset,
                                    const CMeaning& meaning);
    const CPlannedUnit& systemOf(const CPlannedUnit& unit);
    const CPlannedUnit& dimensionOf(const CPlannedUnit& unit);
    CFactors factorsOf(const CPlannedUnit& unit);
    void multiplyInto(CFactors& product, const CPlannedUnit& unit, exact::CExponent exponent);
    void requireName(const std::string& name, const CPlannedUnit& unit) const;

    template <class OfFactor>
    const CPlannedUnit& fold(const CPlannedUnit& unit, OfFactor ofFactor);

    std::deque<CPlannedUnit> m_Units;  // its elements are never moved
    std::unordered_map<const CUnit*, const CPlannedUnit*> m_Registered;
    std::unordered_map<int, const CPlannedUnit*> m_New;  // by hash code
    std::map<std::string, const CPlannedUnit*, std::less<>> m_Named;
};

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_PLANNEDUNITS_H
