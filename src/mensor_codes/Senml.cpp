#include "mensor_codes/TableSystem.h"

namespace mensor {
namespace codes {

namespace {

constexpr char Texts[] =
#define MENSOR_CODE(code, definition, symbol, name, source, same, note) \
    code definition symbol name same note
#define MENSOR_DEPRECATED(code, definition, symbol, name, source, same, note) \
    code definition symbol name same note
#define MENSOR_REFUSED(code, symbol, name, reason, note) code symbol name note
#define MENSOR_REFUSED_DEPRECATED(code, symbol, name, reason, note) code symbol name note
#include "mensor_codes/senml.def"
#undef MENSOR_CODE
#undef MENSOR_DEPRECATED
#undef MENSOR_REFUSED
#undef MENSOR_REFUSED_DEPRECATED
    ;

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are literals, and the array's initialiser a list.
#define MENSOR_LENGTHS(code, definition, symbol, name, source, same, note, isDeprecated) \
    {sizeof code - 1, sizeof definition - 1, sizeof symbol - 1, sizeof name - 1,         \
     sizeof same - 1, sizeof note - 1,       eSource::source,   isDeprecated},

constexpr CCodeLengths Lengths[] = {
#define MENSOR_CODE(code, definition, symbol, name, source, same, note) \
    MENSOR_LENGTHS(code, definition, symbol, name, source, same, note, false)
#define MENSOR_DEPRECATED(code, definition, symbol, name, source, same, note) \
    MENSOR_LENGTHS(code, definition, symbol, name, source, same, note, true)
#define MENSOR_REFUSED(code, symbol, name, reason, note) \
    MENSOR_LENGTHS(code, "", symbol, name, reason, "", note, false)
#define MENSOR_REFUSED_DEPRECATED(code, symbol, name, reason, note) \
    MENSOR_LENGTHS(code, "", symbol, name, reason, "", note, true)
#include "mensor_codes/senml.def"
#undef MENSOR_CODE
#undef MENSOR_DEPRECATED
#undef MENSOR_REFUSED
#undef MENSOR_REFUSED_DEPRECATED
#undef MENSOR_LENGTHS
};
// NOLINTEND(bugprone-macro-parentheses)

using CTable = CCodeTable<Texts, Lengths, sizeof Lengths / sizeof Lengths[0]>;

constexpr CTableSystem<CTable, eSystem::SENML> System("SenML", "{} is no code of SenML");

}  // namespace

const CSystem& senml() { return System; }

}  // namespace codes
}  // namespace mensor
