// Packs.h: units beyond the library's catalogue, registered pack by pack when a program asks.
//
//     checked::registerPack(checked::ePack::CUSTOMARY);
//     checked::readValue("10 ft").valueAs(SI::Meter());                   // 3.048
//     checked::registerPack(checked::ePack::OFFSETS);
//     checked::readValue("98.6 °F").valueAs(SI::Celsius());               // 37, to the last digits
//     for (const auto& row : checked::packUnits()) list.add(row.Symbol);  // the whole table
//
// What a unit means is its row in the table of definitions, <mensor_exact/Definitions.h>. Every unit is
// checked after it is built: 0 and 1 convert as its row says, its dimension is that of
// the unit it rests on, and its text reads back as the same object. If one is not what its row says,
// since the program or another pack has a unit of that name or identity, the pack is refused and the
// unit in the way is named.
//
// docs/packs.md lists all units with their definitions and sources.
#ifndef MENSOR_CHECKED_PACKS_H
#define MENSOR_CHECKED_PACKS_H

#include <optional>
#include <string_view>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/checked_export.h"

namespace mensor {
namespace checked {

/// The packs. The numbers are part of the interface; new ones are added at the end.
enum class ePack : int {
    SI = 1,  ///< spellings of the SI that the library lacks: hPa, mK, klm, mL, the Greek µ and Ω
    CUSTOMARY,  ///< US customary and imperial units, and the older technical ones
    US,         ///< gal, qt, pt, fl_oz and ton as in the United States; brings CUSTOMARY
    IMPERIAL,   ///< the same names as in the United Kingdom; brings CUSTOMARY
    SCIENCE,    ///< energy, physics, astronomy, chemistry
    OFFSETS,    ///< the degree Fahrenheit and gauge pressures
    COUNTING    ///< ppm, rpm, KiB and their like
};

/// One unit of a pack. Texts are UTF-8 and belong to the library.
struct CPackUnit {
    ePack Pack;
    std::string_view Symbol;      ///< the name by which it is read, and written if it has no other
    std::string_view Definition;  ///< as its source has it: "25.4 mm", "5/9 K, offset 459.67"
    std::string_view Name;        ///< in English
    std::string_view Source;      ///< where the definition is published
    std::string_view Unit;        ///< what the registry builds it on, as readUnit reads it
    double Factor;  ///< a value x is Factor·x + Offset in `Unit`; the double nearest to the exact
    double Offset;  ///< likewise
    bool IsAlternate;  ///< a unit of its own that stands for `Unit`, as the hertz does for 1/s
};

/// A unit that no pack has, since the library would take it for another one.
struct CRefusedUnit {
    ePack Pack;            ///< once this pack is registered
    const char* Symbol;    ///< as somebody might call it
    double Factor;         ///< as in CPackUnit
    const char* Unit;      ///< as in CPackUnit
    double Offset;         ///< as in CPackUnit
    const char* InTheWay;  ///< the unit that it would be
    const char* Why;
};

/// All units of all packs, in the order in which they are built.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API const std::vector<CPackUnit>& packUnits();

/// The units that are left out, each with its reason.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API const std::vector<CRefusedUnit>& refusedUnits();

/// All packs.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API const std::vector<ePack>& allPacks();

/// "customary": the name for command lines and settings.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API const char* nameOf(ePack pack);

/// What is in it, in a few words.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API const char* descriptionOf(ePack pack);

/// The pack with this name, none if there is none.
/// @par Threads  Any thread; takes no lock.
MENSOR_CHECKED_API std::optional<ePack> packNamed(std::string_view name);

/// Registers all units of `pack`. Nothing happens to units that are there already.
///
/// A pack that is refused leaves no name behind; objects that were built may stay registered without
/// one, and the symbols of alternate units stay, as the library knows no way to take them back.
/// @throws CIdentityError  a unit cannot be built; the message names it, and inTheWay() the unit in
///     its way.
/// @throws std::invalid_argument  `pack` is no pack.
/// @par Threads  Any thread, locks CUnit::mutex() for all its work (see WarmUp.h).
MENSOR_CHECKED_API void registerPack(ePack pack);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_PACKS_H
