#include "mensor_codes/TableSystem.h"

namespace mensor {
namespace codes {

namespace {

constexpr char Texts[] =
#define MENSOR_CODE(code, definition, symbol, name, source, same, note) \
    code definition symbol name same note
#define MENSOR_REFUSED(code, symbol, name, reason, note) code symbol name note
#include "mensor_codes/unece.def"
#undef MENSOR_CODE
#undef MENSOR_REFUSED
    ;

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are literals, and the array's initialiser a list.
constexpr CCodeLengths Lengths[] = {
#define MENSOR_CODE(code, definition, symbol, name, source, same, note)          \
    {sizeof code - 1, sizeof definition - 1, sizeof symbol - 1, sizeof name - 1, \
     sizeof same - 1, sizeof note - 1,       eSource::source,   false},
#define MENSOR_REFUSED(code, symbol, name, reason, note)                            \
    {sizeof code - 1, 0,    sizeof symbol - 1, sizeof name - 1, 0, sizeof note - 1, \
     eSource::reason, false},
#include "mensor_codes/unece.def"
#undef MENSOR_CODE
#undef MENSOR_REFUSED
};
// NOLINTEND(bugprone-macro-parentheses)

using CTable = CCodeTable<Texts, Lengths, sizeof Lengths / sizeof Lengths[0]>;

constexpr CTableSystem<CTable, eSystem::UNECE> System("UN/CEFACT", "{} is no code of UN/CEFACT");

}  // namespace

const CSystem& unece() { return System; }

}  // namespace codes
}  // namespace mensor
