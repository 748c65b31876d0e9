// Packs.h: units that the library's catalogue lacks. A program registers them pack by pack.
//
//     checked::registerPack(checked::ePack::CUSTOMARY);
//     checked::readValue("10 ft").valueAs(SI::Meter());                   // 3.048
//     checked::registerPack(checked::ePack::OFFSETS);
//     checked::readValue("98.6 °F").valueAs(SI::Celsius());               // 37, except for the last digits
//     for (const auto& row : checked::packUnits()) list.add(row.Symbol);  // the whole table
//
// The table of definitions (<mensor_exact/Definitions.h>) says what each unit means. Each unit is checked
// after it is built: 0 and 1 convert as the definition says, the dimension is that of the unit it is
// built on, and its text reads back as the same object. If a check fails, because the program or another
// pack has a unit of the same name or identity, the pack is refused. The exception names that unit.
//
// docs/packs.md lists all units with their definitions and sources.
#ifndef MENSOR_CHECKED_PACKS_H
#define MENSOR_CHECKED_PACKS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/checked_export.h"

namespace mensor::checked {

/// The packs. The numbers are part of the interface; new ones are added at the end.
enum class ePack : int {
    SI = 1,     ///< SI spellings that the library lacks: hPa, mK, klm, mL, the Greek µ and Ω
    CUSTOMARY,  ///< US customary and imperial units, and the older technical ones
    US,         ///< gal, qt, pt, fl_oz and ton as in the United States; brings CUSTOMARY
    IMPERIAL,   ///< the same names, as in the United Kingdom; brings CUSTOMARY
    SCIENCE,    ///< energy, physics, astronomy, chemistry
    OFFSETS,    ///< the degree Fahrenheit and gauge pressures
    COUNTING,   ///< ppm, rpm, KiB and their like
    EVERYDAY    ///< other spellings of units: degC, kOhm, barg
};

/// One unit of a pack. Texts are UTF-8 and belong to the library.
struct CPackUnit {
    ePack Pack;
    std::string_view
        Symbol;              ///< readUnit reads this name; the library writes it if it has no other
    std::string Definition;  ///< in the words of its source: "25.4 mm", "5/9 K, offset 459.67"
    std::string Name;        ///< the English name
    std::string Source;      ///< where the definition is published
    std::string Unit;        ///< the unit that the registry builds it on, as readUnit reads it
    double Factor;           ///< a value x is Factor·x + Offset in `Unit`; rounded once
    double Offset;           ///< likewise
    bool IsAlternate;        ///< an alternate unit of `Unit`, as the hertz is one of 1/s
};

/// A unit that no pack has, because the library would take it for another unit.
struct CRefusedUnit {
    ePack Pack;            ///< the unit would belong to this pack
    const char* Symbol;    ///< the name that it would have
    double Factor;         ///< as in CPackUnit
    const char* Unit;      ///< as in CPackUnit
    double Offset;         ///< as in CPackUnit
    const char* InTheWay;  ///< the unit for which the library would take it
    const char* Why;       ///< the reason, an English clause
};

/// Returns all units of all packs, in the order in which they are built. EVERYDAY has none: its names are on
/// the page docs/everyday.md.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API const std::vector<CPackUnit>& packUnits();

/// Returns the units that are left out, each with its reason.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API const std::vector<CRefusedUnit>& refusedUnits();

/// Returns all packs.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API const std::vector<ePack>& allPacks();

/// Returns the name for command lines and settings, such as "customary".
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API const char* nameOf(ePack pack);

/// Returns a few words on the contents of the pack.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API const char* descriptionOf(ePack pack);

/// Returns the pack with this name, or none.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API std::optional<ePack> packNamed(std::string_view name);

/// Registers all units of `pack`. Units that are registered already stay as they are.
///
/// EVERYDAY registers nothing at once. Its names can be read from then on, and a unit is made when its name
/// is first read. If the registry has a name already, the name keeps its meaning.
///
/// If the pack is refused, none of its names can be read. Objects that were built before the refusal may
/// stay registered without a name. Exception: memory runs out, or a CRegistrationBound of the caller is reached,
/// after an alternate unit was made. Then its symbol stays, because the library cannot remove it.
/// @throws CIdentityError  a unit cannot be built. The message names it; inTheWay() is the unit that has
///     its name or identity.
/// @throws std::invalid_argument  `pack` is no pack.
/// @par Threads  Any thread, locks CUnit::mutex() for all its work (see warm_up.h).
MENSOR_CHECKED_API void registerPack(ePack pack);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_PACKS_H
