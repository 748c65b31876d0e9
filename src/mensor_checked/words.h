// words.h: parts of messages. For the companion's own use; not installed.
#ifndef MENSOR_CHECKED_WORDS_H
#define MENSOR_CHECKED_WORDS_H

#include <string>

#include "mensor/Unit.h"
#include "mensor_checked/Meaning.h"

namespace mensor::checked {

/// Throws unless there is a unit.
/// @throws std::invalid_argument  "product: the unit is an empty pointer", if `function` is "product".
void requireUnit(const CUnitPtr& unit, const char* function);

/// Returns `text` in double quotes.
std::string quoted(const std::string& text);

/// Returns the shortest digits that read back as the same double.
std::string shortest(double x);

/// Returns the text of `unit` in quotes, or its meaning in quotes if it has no text.
std::string describe(const CUnitPtr& unit);

/// Returns `meaning` in quotes. For a factor or offset of more than 24 characters, which most doubles
/// need, writes the shortest digits of the nearest double.
std::string inWords(const CMeaning& meaning);

/// Returns the meaning of `unit` in quotes, or why it has no exact meaning.
std::string meaningInWords(const CUnitPtr& unit);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_WORDS_H
