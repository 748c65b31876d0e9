// Choosing.h: which units there are for a quantity, and which of them suits a value.
//
//     for (const auto& choice : exact::choicesFor(exact::read("Pa"))) list.add(choice.Name);
//     exact::readableUnit(CFraction::ofText("0.000001"), "m");     // "µm"
//     exact::readableUnit(CFraction::ofText("0.00025"), "N");      // "µN"
#ifndef MENSOR_EXACT_CHOOSING_H
#define MENSOR_EXACT_CHOOSING_H

#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/Definitions.h"
#include "mensor_exact/Fraction.h"
#include "mensor_exact/Meaning.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// One entry of a drop-down list.
struct CChoice {
    std::string_view Name;  ///< lives as the texts of CDefinition do
    CMeaning Meaning;
};

/// All units of the catalogue that are compatible with `meaning`, by size, then by name. Other
/// spellings of a name, as "mL" of "ml", are left out.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::vector<CChoice> choicesFor(
    const CMeaning& meaning, const CCatalogue& catalogue = CCatalogue::builtIn());

/// The name of the unit in which `value`, given in the unit named `unit`, reads best: of the names that
/// differ from it by a prefix for a power of 1000, the largest in which the value is at least 1; the
/// smallest if there is none.
///
/// Zero, units with an offset, units that have no prefixed forms, and texts that are no name of the
/// catalogue stay as they are.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::string readableUnit(const CFraction& value, std::string_view unit,
                                          const CCatalogue& catalogue = CCatalogue::builtIn());

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_CHOOSING_H
