// TrapRows.h: the rows of traps.def and refusals.def as they are written. Not installed. For constant
// expressions, tests and the generator of docs/everyday.md. The library must not use these arrays at run time: the
// loader would have to relocate their pointers.
#ifndef MENSOR_EXACT_TRAPROWS_H
#define MENSOR_EXACT_TRAPROWS_H

#include <string_view>

#include "mensor_exact/Traps.h"

namespace mensor::exact {

struct CTrapRow {
    ePlace Place;
    std::string_view Text;
    std::string_view Sentence;  ///< without a full stop; "{}" stands for the text
    std::string_view Behind;    ///< the text before the blank or to the left of the slash
    std::string_view First;     ///< what to write instead; may be empty
    std::string_view Second;
};

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are literals, and the rows are lists.
/// All rows, in the order of the files.
inline constexpr CTrapRow TrapRows[] = {
#define MENSOR_TRAP(place, text, sentence, first, second) \
    {ePlace::place, text, sentence, "", first, second},
#define MENSOR_BEHIND(place, left, right, sentence, first, second) \
    {ePlace::place, right, sentence, left, first, second},
#define MENSOR_NAMED(verdict, text, sentence, first, second) \
    {ePlace::verdict, text, sentence, "", first, second},
#include "mensor_exact/traps.def"
#define MENSOR_REFUSAL(text, sentence, first, second) \
    {ePlace::UNKNOWN, text, sentence, "", first, second},
#include "mensor_exact/refusals.def"
};
// NOLINTEND(bugprone-macro-parentheses)

/// One name of a class. Some rows are traps only next to a name of their class.
struct CTrapMember {
    ePlace Class;
    std::string_view Name;
};

inline constexpr CTrapMember TrapMembers[] = {
#define MENSOR_CLASS(place, text) {ePlace::place, text},
#include "mensor_exact/traps.def"
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_TRAPROWS_H
