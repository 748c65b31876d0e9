// NewUnit.h: one unit by name, factor, unit and offset, for packs and tables. For the companion's own
// use; not installed.
#ifndef MENSOR_CHECKED_NEWUNIT_H
#define MENSOR_CHECKED_NEWUNIT_H

#include <string>
#include <utility>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor {
namespace checked {

/// A value x of the unit is Factor·x + Offset in `Unit`.
struct CDefinition {
    std::string Symbol;
    double Factor;
    CUnitPtr Unit;
    double Offset;
    bool IsAlternate = false;
    const CMeaning* Row = nullptr;  ///< of a pack: what the unit means exactly
};

/// The names given since it began, which it takes back unless it is told to keep them.
///
/// The caller holds the lock while it lives.
class CNaming {
public:
    CNaming() = default;
    CNaming(const CNaming&) = delete;
    CNaming& operator=(const CNaming&) = delete;
    ~CNaming();

    /// Builds the unit, names it and checks it. A unit that has a name already gets one more.
    ///
    /// @throws CIdentityError  another unit is in the way, or it is not what it should be.
    /// @throws std::invalid_argument  no such unit can be made; or what the library throws.
    CUnitPtr define(const CDefinition& definition);

    void keep() { m_Given.clear(); }

private:
    void name(const CUnitPtr& unit, const string_t& symbol, bool isAnother);

    std::vector<std::pair<string_t, CUnitPtr>> m_Given;
};

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_NEWUNIT_H
