// UcumSuggestions.h: what a refused expression may have meant. For the library's own use; not
// installed.
#ifndef MENSOR_CODES_UCUMSUGGESTIONS_H
#define MENSOR_CODES_UCUMSUGGESTIONS_H

#include <string>
#include <string_view>
#include <vector>

#include "mensor_codes/Codes.h"

namespace mensor {
namespace codes {

/// Codes of UCUM that `unknown` may have meant, best first, at most five.
std::vector<std::string> ucumSuggestions(std::string_view unknown);

/// What a refused expression may have meant as a whole: "ug/m3" for "µg/m³", "2.m" for "2m". Only codes
/// with a meaning are given, and none for an unknown unit.
std::vector<std::string> ucumReadings(const CRefusal& refusal);

}  // namespace codes
}  // namespace mensor

#endif  // MENSOR_CODES_UCUMSUGGESTIONS_H
