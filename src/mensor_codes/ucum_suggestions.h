// ucum_suggestions.h: suggests codes for refused expressions. For the library's own use; not installed.
#ifndef MENSOR_CODES_UCUM_SUGGESTIONS_H
#define MENSOR_CODES_UCUM_SUGGESTIONS_H

#include <string>
#include <string_view>
#include <vector>

#include "mensor_codes/Codes.h"

namespace mensor::codes {

/// Returns at most five codes of UCUM that `unknown` may have meant, the best first.
std::vector<std::string> ucumSuggestions(std::string_view unknown);

/// Returns what a refused expression may have meant as a whole: "ug/m3" for "µg/m³", "2.m" for "2m". Empty
/// if there is no such code with a meaning.
std::vector<std::string> ucumReadings(const CRefusal& refusal);

}  // namespace mensor::codes

#endif  // MENSOR_CODES_UCUM_SUGGESTIONS_H
