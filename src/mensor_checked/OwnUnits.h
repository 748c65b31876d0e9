// OwnUnits.h: a program's own units, from a text that people edit.
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
// The grammar is that of <mensor_exact/DefinitionFile.h>. Units are registered, by the nearest doubles.
// Every unit is checked as those of the packs are (Packs.h). The registry takes no name away from
// another unit, whatever "replace" asks for. If one line is refused, no line counts.
#ifndef MENSOR_CHECKED_OWNUNITS_H
#define MENSOR_CHECKED_OWNUNITS_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/checked_export.h"

namespace mensor {
namespace checked {

/// One line that is refused.
struct CLineFinding {
    std::size_t Line;    ///< from 1
    CDiagnosis Refusal;  ///< of the line without its end: COLLISION for a name or unit in the way
    CUnitPtr InTheWay;   ///< that unit; empty if there is none
};

/// What became of a table: either names or findings.
struct CDefinitions {
    std::vector<std::string> Names;      ///< of the units, as defined; empty when refused
    std::vector<CLineFinding> Findings;  ///< the lines that are refused; empty when defined

    explicit operator bool() const { return Findings.empty(); }
};

/// A table of units that is refused; what() tells the first line.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class MENSOR_CHECKED_API CDefinitionError : public std::invalid_argument {
public:
    explicit CDefinitionError(std::vector<CLineFinding> findings);
    ~CDefinitionError() override;
    CDefinitionError(const CDefinitionError&);
    CDefinitionError& operator=(const CDefinitionError&);

    const std::vector<CLineFinding>& findings() const noexcept;

private:
    std::vector<CLineFinding> m_Findings;
};

/// Defines all units of `table`, or none: every line is tried, those that are refused are reported,
/// and then no name stays.
///
/// Objects built for a table that is refused may stay registered without a name, and the symbols of
/// base units stay, as the library knows no way to take them back. Defining the same table again changes nothing.
/// @par Threads  Any thread, locks CUnit::mutex() for all its work (see WarmUp.h).
MENSOR_CHECKED_API CDefinitions tryDefineUnits(std::string_view table);

/// The same; gives the names.
/// @throws CDefinitionError  a line is refused.
/// @par Threads  Any thread, locks CUnit::mutex() for all its work (see WarmUp.h).
MENSOR_CHECKED_API std::vector<std::string> defineUnits(std::string_view table);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_OWNUNITS_H
