// Traps.h: texts that are read as something else than people mean by them, and names that are no units.
// For mensor's own libraries; not installed. The rows are in traps.def and refusals.def.
#ifndef MENSOR_EXACT_TRAPS_H
#define MENSOR_EXACT_TRAPS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// Where a trap is.
enum class ePlace : std::uint8_t {
    DEGREE,      ///< after a degree sign and a blank
    PRESSURE,    ///< after a pressure and a blank
    ELECTRIC,    ///< after a voltage, a current or a power, and a blank
    MASS,        ///< after a mass and a blank
    PERCENT,     ///< after "%" and a blank
    MASS_PER,    ///< after a mass and a blank, before a slash and one of the names of this class
    APART,       ///< after the name `Behind` and a blank or a point
    MASS_BELOW,  ///< after a mass and a blank, right of a slash
    TECHNICAL,   ///< directly after a quotient of this class: "kg/cm2"
    NOTE,        ///< anywhere after a blank
    HEAT,        ///< below the slash, with another unit, after a heat or a power
    CUBED,       ///< before the exponent 3
    POWER,       ///< before an exponent
    QUOTIENT,    ///< right of a slash; `Behind` is left of it
    SHAPE,       ///< squared, right of a slash; `Behind` is left of it. Read with a note
    UNUSUAL,     ///< anywhere; read with a note, and refused by the option Strict
    TOLD,        ///< anywhere; read with a note
    UNKNOWN      ///< anywhere, where no unit has this name
};

/// One row. It has no pointers, which would be relocated when the library is loaded.
struct MENSOR_EXACT_API CTrap {
    std::uint16_t Start;  ///< of its texts among all
    std::uint8_t Lengths[4];
    ePlace Place;
    std::uint8_t SentenceNumber;

    /// Constant, without a full stop; "{}" in it is the text that is refused or noted.
    const char* sentence() const noexcept;

    std::string_view text() const noexcept { return piece(0); }
    std::string_view behind() const noexcept { return piece(1); }
    /// What to write instead, which may be empty. "{}" in it is the name before the trap.
    std::string_view first() const noexcept { return piece(2); }
    std::string_view second() const noexcept { return piece(3); }

private:
    std::string_view piece(std::size_t index) const noexcept;
};

/// All rows, in the order of the files.
MENSOR_EXACT_API const CTrap* trapsBegin() noexcept;
MENSOR_EXACT_API const CTrap* trapsEnd() noexcept;

/// The row of this place, null if there is none. `behind` is what is before the blank or left of the
/// slash, for the places that ask for it.
const CTrap* findTrap(ePlace place, std::string_view text, std::string_view behind = {}) noexcept;

/// Whether there is a row of this place with this text, whatever is before it.
bool hasTrap(ePlace place, std::string_view text) noexcept;

/// The note on a name, null if there is none: a row of UNUSUAL or TOLD.
MENSOR_EXACT_API const CTrap* findNote(std::string_view name) noexcept;

/// The row for two names with only a blank between, null if that is no trap. `isBelow` says whether they
/// stand to the right of a slash.
const CTrap* findPair(std::string_view name, std::string_view next, bool isBelow) noexcept;

/// The row for two names that are one name or one unit: "mm Hg", "deg.C". Null if they are not.
const CTrap* findApart(std::string_view name, std::string_view next) noexcept;

/// Whether a name is in the class of this place.
bool isMember(std::string_view name, ePlace place) noexcept;

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_TRAPS_H
