#include "mensor_codes/UcumWriter.h"

#include "mensor_codes/UcumAtoms.h"

namespace mensor {
namespace codes {

CMatch ucumCodeFor(const exact::CMeaning& meaning) { return CUcumAtoms::codeFor(meaning); }

}  // namespace codes
}  // namespace mensor
