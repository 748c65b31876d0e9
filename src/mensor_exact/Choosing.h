// Choosing.h: lists the units of a quantity, and chooses the most readable unit for a value.
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
    std::string_view Name;  ///< valid as long as CDefinition::Name would be
    CMeaning Meaning;
};

/// Returns all units of the catalogue that are compatible with `meaning`, sorted by size, then by name.
/// The list has one spelling of each name: "ml", not "mL".
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::vector<CChoice> choicesFor(
    const CMeaning& meaning, const CCatalogue& catalogue = CCatalogue::builtIn());

/// Returns the name of the most readable unit for `value`, which is given in the unit named `unit`.
///
/// The candidates differ from `unit` by a prefix for a power of 1000. The result is the largest unit in which
/// the value is at least 1. If there is none, the result is the smallest unit.
///
/// Returns `unit` for zero, for a unit with an offset, for a unit without prefixed forms, and for a text
/// that is no name of the catalogue.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::string readableUnit(const CFraction& value, std::string_view unit,
                                          const CCatalogue& catalogue = CCatalogue::builtIn());

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_CHOOSING_H
