// Reading.h: units as people write them.
#ifndef MENSOR_EXACT_READING_H
#define MENSOR_EXACT_READING_H

#include <string_view>

#include "mensor_exact/exact_export.h"

namespace mensor {
namespace exact {

/// What a reader allows beyond the plain grammar.
struct CReadOptions {
    bool Dimensionless = false;  ///< the empty text is the dimensionless unit
    bool Differences = false;    ///< an offset unit in a product is its difference: "J/°C" is J/K
                                 ///< (but "W/m°C" stays refused: W/(m·K)?)
    bool NotFinite = false;      ///< values may be "nan", "inf", "infinity", with a sign
};

/// Whether `text` is one name by the grammar, so that a unit labelled with it can be read:
/// "km", "[in_i]", but not "m2", "a b" or "".
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API bool isName(std::string_view text);

}  // namespace exact
}  // namespace mensor

#endif  // MENSOR_EXACT_READING_H
