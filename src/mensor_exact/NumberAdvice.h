// NumberAdvice.h: finds corrections for a value with a wrong number. For the library's own use; not
// installed.
#ifndef MENSOR_EXACT_NUMBERADVICE_H
#define MENSOR_EXACT_NUMBERADVICE_H

#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/Parser.h"

namespace mensor::exact {

/// Corrections for a refused value.
struct CValuesMeant {
    const char* Sentence = nullptr;   ///< a better reason than the refusal has, or null
    std::vector<std::string> Values;  ///< not yet read; empty if the number is right
};

/// Returns corrections: "2.5 km" for "2,5 km", "0.5 in" for "1/2 in", "1000 m" for "1 000 m",
/// "2e3 m" for "2×10³ m", "90 min" for "1 h 30 min".
CValuesMeant valuesMeant(std::string_view text, CResolver& resolver);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_NUMBERADVICE_H
