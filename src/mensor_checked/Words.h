// Words.h: what messages are made of. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_WORDS_H
#define MENSOR_CHECKED_WORDS_H

#include <string>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor {
namespace checked {

/// @throws std::invalid_argument  "product: the unit is an empty pointer".
void requireUnit(const CUnitPtr& unit, const char* function);

/// `text` in double quotes.
std::string quoted(const std::string& text);

/// The shortest digits that read back as the same double.
std::string shortest(double x);

/// `unit` for a message: its text, else what it means. Quoted.
std::string describe(const CUnitPtr& unit);

/// `meaning` for a message, quoted. Numbers that are only exact with many digits, as doubles mostly are,
/// come with the shortest digits of the nearest double.
std::string inWords(const CMeaning& meaning);

/// What `unit` means for a message; if it has no exact meaning, why.
std::string meaningInWords(const CUnitPtr& unit);

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_WORDS_H
