// OwnUnits.h: registers a program's own units from a text that people edit.
//
//     # units.txt
//     smoot = 1.7018 m                    # name = number unit
//     span  = 9/10 ft                     # a fraction; units of lines above may be used
//     °X    = 5/4 K, zero at +273.15 K    # a zero of its own: 0 °X is 273.15 K
//     EUR   = base unit                   # a dimension of its own
//
//     for (const auto& finding : checked::tryDefineUnits(contentsOf("units.txt")).Findings)
//         std::cerr << "units.txt:" << finding.Line << ": " << finding.Refusal.message() << '\n';
//
// <mensor_exact/DefinitionFile.h> shows the grammar. The units are registered with the nearest doubles and
// checked like those of the packs (Packs.h). A name always stays with its unit, so "replace" is refused for
// a name that has another meaning. If one line is refused, no unit gets a name.
#ifndef MENSOR_CHECKED_OWNUNITS_H
#define MENSOR_CHECKED_OWNUNITS_H

#include <string>
#include <string_view>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/checked_export.h"
#include "mensor_exact/DefinitionFile.h"

namespace mensor::checked {

using exact::CDefinitionError;

/// One line that is refused. The code of its refusal is COLLISION if another unit has the name or the
/// identity.
struct CLineFinding : exact::CLineFinding {
    CUnitPtr InTheWay;  ///< that other unit; empty if there is none
};

/// What tryDefineUnits returns: names or findings.
struct CDefinitions {
    std::vector<std::string> Names;      ///< of the units, in their order; empty when refused
    std::vector<CLineFinding> Findings;  ///< the lines that are refused; empty when defined

    explicit operator bool() const { return Findings.empty(); }
};

/// Registers all units of `table`, or none. Tries every line, and reports all that are refused.
///
/// New base units, and the units that need them, are made last, when all other lines are accepted. If the
/// table is refused, objects that were built for it may stay registered, but no name stays. Defining the same
/// table again changes nothing.
///
/// Exception: a unit that needs a new base unit is refused only by the registry. It would be the same object as
/// another unit, its name is that of a prefix and an offset unit, or the limit of new units is reached. Then the
/// symbol of the base unit stays, because the library cannot remove it.
/// @par Threads  Any thread, locks CUnit::mutex() for all its work (see warm_up.h).
MENSOR_CHECKED_API CDefinitions tryDefineUnits(std::string_view table);

/// Like tryDefineUnits, but throws if a line is refused. Returns the names.
/// @throws CDefinitionError  a line is refused.
/// @par Threads  Any thread, locks CUnit::mutex() for all its work (see warm_up.h).
MENSOR_CHECKED_API std::vector<std::string> defineUnits(std::string_view table);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_OWNUNITS_H
