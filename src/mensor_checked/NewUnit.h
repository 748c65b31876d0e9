// NewUnit.h: makes, names and checks one unit of a pack or of a table. For the companion's own use; not
// installed.
#ifndef MENSOR_CHECKED_NEWUNIT_H
#define MENSOR_CHECKED_NEWUNIT_H

#include <string>
#include <utility>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor::checked {

/// The unit to make: a value x of it is Factor·x + Offset in `Unit`.
struct CNewUnit {
    std::string Symbol;
    double Factor;
    CUnitPtr Unit;
    double Offset;
    bool IsAlternate = false;
    const CMeaning* Row = nullptr;  ///< the exact meaning of a unit of a pack
};

/// Names units. The destructor removes the names again unless keep() was called.
///
/// The caller holds the lock during the lifetime of the object.
class CNaming {
public:
    CNaming() = default;
    CNaming(const CNaming&) = delete;
    CNaming& operator=(const CNaming&) = delete;
    ~CNaming();

    /// Builds the unit, names it and checks it. If the unit exists already, it gets one more name.
    ///
    /// Passes on what the library throws.
    /// @throws CIdentityError  another unit has the name or the identity, or the check fails.
    /// @throws std::invalid_argument  a number or the name is out of range.
    CUnitPtr define(const CNewUnit& wanted);

    /// Returns whether the alternate unit `wanted` would be new. Throws what define() would throw because of its
    /// name or its identity.
    static bool isNewAlternate(const CNewUnit& wanted);

    /// Keeps all names that define() has given so far. Without this call the destructor removes them.
    void keep() { m_Given.clear(); }

private:
    void name(const CUnitPtr& unit, const string_t& symbol, bool isAnother);

    std::vector<std::pair<string_t, CUnitPtr>> m_Given;
};

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_NEWUNIT_H
