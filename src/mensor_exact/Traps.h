// Traps.h: texts that are read as something else than people mean by them, and names that are no units.
// For mensor's own libraries; not installed. The rows are in traps.def and refusals.def.
#ifndef MENSOR_EXACT_TRAPS_H
#define MENSOR_EXACT_TRAPS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mensor_exact/exact_export.h"

namespace mensor {
namespace exact {

/// Where a trap stands.
enum class ePlace : std::uint8_t {
    DEGREE,      ///< behind a degree sign and a blank
    PRESSURE,    ///< behind a pressure and a blank
    ELECTRIC,    ///< behind a voltage, a current or a power, and a blank
    MASS,        ///< behind a mass and a blank
    PERCENT,     ///< behind "%" and a blank
    MASS_BELOW,  ///< behind a mass and a blank, right of a stroke
    CUBED,       ///< before the exponent 3
    POWER,       ///< before an exponent
    QUOTIENT,    ///< right of a stroke; `Behind` is left of it
    UNUSUAL,     ///< anywhere; read with a note, and refused by the option Strict
    TOLD,        ///< anywhere; read with a note
    UNKNOWN      ///< anywhere, where no unit has this name
};

/// One row. The sentence is without a full stop; "{}" in it is the text that is refused or noted.
struct MENSOR_EXACT_API CTrap {
    const char* Sentence;
    std::uint16_t Start;  ///< of its texts among all
    std::uint8_t Lengths[4];
    ePlace Place;

    std::string_view text() const noexcept { return piece(0); }
    std::string_view behind() const noexcept { return piece(1); }
    /// What to write instead, which may be empty. "{}" in it is the name before the blank.
    std::string_view first() const noexcept { return piece(2); }
    std::string_view second() const noexcept { return piece(3); }

private:
    std::string_view piece(std::size_t index) const noexcept;
};

/// All rows, in the order of the files.
MENSOR_EXACT_API const CTrap* trapsBegin() noexcept;
MENSOR_EXACT_API const CTrap* trapsEnd() noexcept;

/// The row of this place, null if there is none. Of PLACES behind a blank `behind` is the name there; of
/// a QUOTIENT what is left of the stroke.
const CTrap* findTrap(ePlace place, std::string_view text, std::string_view behind = {}) noexcept;

/// The note on a name, null if there is none: a row of UNUSUAL or TOLD.
MENSOR_EXACT_API const CTrap* findNote(std::string_view name) noexcept;

/// The row for two names with only a blank between, null if that is no trap. `isBelow` says whether they
/// stand to the right of a stroke.
const CTrap* findPair(std::string_view name, std::string_view next, bool isBelow) noexcept;

}  // namespace exact
}  // namespace mensor

#endif  // MENSOR_EXACT_TRAPS_H
