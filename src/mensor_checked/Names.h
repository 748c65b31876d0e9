// Names.h: from names to units. For the companion's own use; not installed.
//
// The caller of every function holds the lock.
#ifndef MENSOR_CHECKED_NAMES_H
#define MENSOR_CHECKED_NAMES_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_exact/NearestNames.h"

namespace mensor {
namespace checked {

/// The unit with this name, none if there is no such name.
///
/// What the library knows by exactly this name comes first. Then the name in the library's own
/// spelling: characters that Unicode has twice, "L" for the litre, and "One", which the library
/// prints for the dimensionless unit but does not read. "ML" is only the unit "Ml" if that is the
/// megalitre: a client's own "Ml" keeps its one spelling.
///
/// The library has no "psi" before NonSI::Psi() is called, which this function does when it is asked
/// for that name.
CUnitPtr unitNamed(std::string_view name);

/// Whether `unit` is a scale with a zero of its own, as the degree Celsius.
bool hasOffset(const CUnitPtr& unit);

/// A name that looks like a prefixed unit with an offset, which the library knows without it.
struct CPrefixedOffset {
    std::string Prefix;  ///< "m"
    std::string Name;    ///< "°C"
};

/// Tells "m°C" from other names of `unit`, which `name` denotes.
std::optional<CPrefixedOffset> prefixedOffset(std::string_view name, const CUnitPtr& unit);

/// What reading asks about a name.
struct CName {
    CUnitPtr Unit;                            ///< unitNamed
    bool IsExact;                             ///< known to the library by exactly this name
    bool HasOffset;                           ///< hasOffset
    std::optional<CPrefixedOffset> Prefixed;  ///< prefixedOffset
};

/// The same, remembered while the library's names stay as they are; none if there is no such name.
/// Good until the next call. Changes nothing in the library: "psi" may have no unit yet (isLateName).
const CName* knownName(std::string_view name);

/// Whether unitNamed would have the library make and name a unit.
bool isLateName(std::string_view name);

/// Adds all known names but those of scales that have lost their offset.
void addNamesTo(exact::CNearestNames& nearest);

/// All names under which `unit` can be read: its label, its aliases and its symbol.
std::vector<std::string> namesOf(const CUnitPtr& unit);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_NAMES_H
