// Names.h: finds units by their names. For the companion's own use; not installed.
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

namespace mensor::checked {

/// Returns the unit with this name, or none.
///
/// The library looks up the name as it is spelled. If it does not know it, other spellings follow:
/// characters that Unicode has twice, "L" for the litre, and "One", which the library prints for the
/// dimensionless unit but does not read. "ML" is the unit "Ml" only if that is the megalitre, because a
/// client may have its own unit "Ml".
///
/// For "psi" this function calls NonSI::Psi(), because the library has no such name before that call.
CUnitPtr unitNamed(std::string_view name);

/// Returns the unit that a name was read as: that of unitNamed, or that of the pack EVERYDAY.
CUnitPtr unitRead(std::string_view name);

/// Returns whether `unit` is an offset unit, such as the degree Celsius.
bool hasOffset(const CUnitPtr& unit);

/// Returns the unit of differences of the offset unit `unit`, or none if the library has none.
///
/// For the degree Celsius this is the kelvin. The identity ignores offsets, so no other unit can have the size
/// of the degree Fahrenheit. If the converter of such a unit counts as a scaling, the function returns the unit
/// itself: products then convert it by its slope alone.
CUnitPtr differenceOf(const CUnitPtr& unit);

/// A name that is a prefix and an offset unit, such as "m°C". The library ignores the offset in it.
struct CPrefixedOffset {
    std::string Prefix;  ///< "m"
    std::string Name;    ///< "°C"
};

/// Returns the parts of `name`, a name of `unit`, if it is a prefix and an offset unit; else none.
std::optional<CPrefixedOffset> prefixedOffset(std::string_view name, const CUnitPtr& unit);

/// What the reader needs to know about a name.
struct CName {
    CUnitPtr Unit;                            ///< as unitNamed() returns it
    bool IsExact;                             ///< the library knows the name as it is spelled
    bool HasOffset;                           ///< as hasOffset() returns it
    std::optional<CPrefixedOffset> Prefixed;  ///< as prefixedOffset() returns it
};

/// Returns what is known about `name`, or none if it names no unit. The result is cached while the names of
/// the library do not change, and is valid until the next call. Registers nothing: "psi" may have no unit
/// yet (isLateName).
const CName* knownName(std::string_view name);

/// Returns whether unitNamed(name) would register a unit.
bool isLateName(std::string_view name);

/// Adds all names that are similar to the wanted one, except those like "m°C" (prefixedOffset).
void addNamesTo(exact::CNearestNames& nearest);

/// Returns all names under which `unit` can be read: its label, its aliases and its symbol.
std::vector<std::string> namesOf(const CUnitPtr& unit);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_NAMES_H
