// UcumWriter.h: the code of UCUM for a meaning. For the library's own use; not installed.
#ifndef MENSOR_CODES_UCUMWRITER_H
#define MENSOR_CODES_UCUMWRITER_H

#include "mensor_codes/Codes.h"

namespace mensor {
namespace codes {

/// As codes::codeFor(): an atom, perhaps with a prefix or an exponent; else a product of atoms that is
/// in common use; else a product of units of the SI with at most one prefix. No code has other numbers
/// than powers of ten.
CMatch ucumCodeFor(const exact::CMeaning& meaning);

}  // namespace codes
}  // namespace mensor

#endif  // MENSOR_CODES_UCUMWRITER_H
