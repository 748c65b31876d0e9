// Traps.h: texts that people often use with another meaning, and names that are no units. For mensor's own
// libraries; not installed. The rows are in traps.def and refusals.def.
#ifndef MENSOR_EXACT_TRAPS_H
#define MENSOR_EXACT_TRAPS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// Where a text must be to be a trap.
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
    QUOTIENT,    ///< to the right of a slash; `Behind` is to the left
    SHAPE,       ///< as QUOTIENT, with a square on the right: "kg/cm²". Read with a note
    UNUSUAL,     ///< anywhere; read with a note. The option Strict refuses it
    TOLD,        ///< anywhere; read with a note
    UNKNOWN      ///< anywhere, where no unit has this name
};

/// What is said about a text. Rows with the same answer share it. It has no pointers, which would be relocated
/// when the library is loaded.
struct MENSOR_EXACT_API CTrap {
    ePlace Place;
    std::uint8_t Sentence;          ///< the number of the sentence
    std::uint16_t First;            ///< where first() begins in the array of words
    std::uint16_t BehindAndSecond;  ///< where behind() begins; second() follows it

    /// Returns a sentence without a full stop. "{}" stands for the refused or noted text.
    std::string sentence() const;

    std::string_view behind() const noexcept { return textAt(BehindAndSecond); }
    /// What to write instead. May be empty. "{}" stands for the name before the trap.
    std::string_view first() const noexcept { return textAt(First); }
    std::string_view second() const noexcept {
        return textAt(BehindAndSecond + behind().size() + 1);
    }

private:
    static std::string_view textAt(std::size_t start) noexcept;
};

/// Returns what is said about this text in this place, or null. `behind` is the text before the blank or to the
/// left of the slash, for APART, QUOTIENT and SHAPE. It must be empty for all other places.
MENSOR_EXACT_API const CTrap* findTrap(ePlace place, std::string_view text,
                                       std::string_view behind = {}) noexcept;

/// Returns true if a row has this place and this text. Does not compare `behind`. A quick test before findTrap().
bool hasTrap(ePlace place, std::string_view text) noexcept;

/// Returns the note on a name, of a row of UNUSUAL or TOLD, or null.
MENSOR_EXACT_API const CTrap* findNote(std::string_view name) noexcept;

/// Returns the answer of the first row for two names with only a blank between them, or null. `isBelow` is true
/// if they are to the right of a slash.
MENSOR_EXACT_API const CTrap* findPair(std::string_view name, std::string_view next,
                                       bool isBelow) noexcept;

/// Returns the answer of the first row for two names that are one name or one unit, "mm Hg", "deg.C" or "psi-g",
/// or null.
MENSOR_EXACT_API const CTrap* findApart(std::string_view name, std::string_view next) noexcept;

/// Returns true if the name is in the class of this place.
bool isMember(std::string_view name, ePlace place) noexcept;

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_TRAPS_H
