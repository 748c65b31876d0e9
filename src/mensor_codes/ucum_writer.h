// ucum_writer.h: writes a meaning as a code of UCUM. For the library's own use; not installed.
#ifndef MENSOR_CODES_UCUM_WRITER_H
#define MENSOR_CODES_UCUM_WRITER_H

#include "mensor_codes/Codes.h"

namespace mensor::codes {

/// Does the work of codes::codeFor(). It tries an atom, then a product in common use (ucum_usual.def), and
/// then products of atoms with at most one prefix. The only numbers in a code are powers of ten.
CMatch ucumCodeFor(const exact::CMeaning& meaning);

}  // namespace mensor::codes

#endif  // MENSOR_CODES_UCUM_WRITER_H
