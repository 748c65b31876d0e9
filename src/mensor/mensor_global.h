// mensor_global.h: the text types of the library, the decimal prefixes and the string helpers.
//
//     prefix(KILO).Factor;             // 1000
//     toStdString(prefix(MICRO).Symbol);  // "µ": one code point, two bytes
//     hashFromString("kg");            // 3420
#ifndef MENSOR_MENSOR_GLOBAL_H
#define MENSOR_MENSOR_GLOBAL_H

#include <sstream>
#include <string>
#include <vector>

#include "mensor/mensor_export.h"
#include "mensor/string_type.h"  // string_t: UTF-8 text counted in code points

namespace mensor {

/// One Unicode code point, the element of a `string_t`.
using char_t = char32_t;

/// The stream that composes messages and notations.
using stringstream_t = std::ostringstream;

/// The twenty decimal prefixes of the SI, largest first; each value is the row in `prefixes()`.
enum ePrefix : int {
    YOTTA,
    ZETTA,
    EXA,
    PETA,
    TERA,
    GIGA,
    MEGA,
    KILO,
    HECTO,
    DECA,
    DECI,
    CENTI,
    MILLI,
    MICRO,
    NANO,
    PICO,
    FEMTO,
    ATTO,
    ZEPTO,
    YOCTO
};

/// A decimal prefix: its symbol and its factor.
struct CPrefix {
    string_t Symbol;  ///< UTF-8, one code point (the micro sign is U+00B5) or "da"
    double Factor;    ///< the double nearest to the power of ten
};

/// All twenty prefixes in the order of `ePrefix`. Source: SI brochure, 9th edition, table 7.
///
/// The vector belongs to the library and never changes.
/// @par Threads  Any thread; takes no lock.
MENSOR_API const std::vector<CPrefix>& prefixes();

/// The prefix `p`, a row of `prefixes()`. `p` must be one of the twenty enumerators.
/// @par Threads  Any thread; takes no lock.
MENSOR_API const CPrefix& prefix(ePrefix p);

/// The UTF-8 bytes of `s`, unchanged: "m²" gives three bytes.
/// @par Threads  Any thread; takes no lock.
MENSOR_API std::string toStdString(const string_t& s);

/// The hash code of a symbol: the sum of code point × 31^(number of code points after it),
/// converted to `int` after every step.
///
/// The sum ends at 2147483647. So all texts of eight or more code points have the same hash code
/// (unless they begin with NUL), and so have most texts of six and seven. Use short symbols.
///
///     hashFromString("m");    // 109
///     hashFromString("kg");   // 107 * 31 + 103
/// @par Threads  Any thread; takes no lock.
MENSOR_API int hashFromString(const string_t& s);

}  // namespace mensor

#endif  // MENSOR_MENSOR_GLOBAL_H
