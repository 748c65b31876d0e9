// UcumSuggestions.h: what an unknown unit of an expression may have meant. For the library's own use; not
// installed.
#ifndef MENSOR_CODES_UCUMSUGGESTIONS_H
#define MENSOR_CODES_UCUMSUGGESTIONS_H

#include <string>
#include <string_view>
#include <vector>

namespace mensor {
namespace codes {

/// Codes of UCUM that `unknown` may have meant, best first, at most five.
std::vector<std::string> ucumSuggestions(std::string_view unknown);

}  // namespace codes
}  // namespace mensor

#endif  // MENSOR_CODES_UCUMSUGGESTIONS_H
