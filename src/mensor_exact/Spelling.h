// Spelling.h: other spellings of the same name. For mensor's own libraries; not installed.
#ifndef MENSOR_EXACT_SPELLING_H
#define MENSOR_EXACT_SPELLING_H

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mensor_exact/ShortText.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// Returns `name` with the catalogue's choice among equivalent characters: Greek mu becomes the micro sign,
/// Greek omega the ohm sign, "℃" becomes "°C" and so on. Unicode defines these pairs as equivalent, and they
/// look alike in every font. Letters that are only similar do not change.
MENSOR_EXACT_API std::string respelled(std::string_view name);

/// A prefix of the SI.
struct CPrefix {
    CShortText<2> Symbol;
    std::int8_t Power;  ///< the exponent of ten
};

inline constexpr CPrefix Prefixes[] = {
    {"Y", 24}, {"Z", 21},  {"E", 18},  {"P", 15},  {"T", 12},  {"G", 9},   {"M", 6},
    {"k", 3},  {"h", 2},   {"da", 1},  {"d", -1},  {"c", -2},  {"m", -3},  {"\u00B5", -6},
    {"n", -9}, {"p", -12}, {"f", -15}, {"a", -18}, {"z", -21}, {"y", -24},
};

/// Returns true if `name` is the litre's "L", alone or with a prefix of the SI. The catalogue writes "l".
MENSOR_EXACT_API bool isCapitalLitre(std::string_view name);

/// A word of spellings.def. It means 10^Power of the unit with this symbol.
struct CWord {
    std::string_view Prefix;  ///< the symbol of the prefix, which may be empty
    std::string_view Symbol;
    int Power = 0;

    std::string text() const { return std::string(Prefix).append(Symbol); }
};

/// Returns the meaning of a name that the pack EVERYDAY reads without a row of its own: a word such as
/// "kilometres", or "u" for the micro sign as in "um". Empty for any other name. `Symbol` may refer to `name`.
MENSOR_EXACT_API std::optional<CWord> everydayWord(std::string_view name);

class CNearestNames;

/// Adds the words of spellings.def, in the singular and the plural. Adds words with a prefix only
/// if `unknown` begins with the name of that prefix.
void addEverydayWordsTo(CNearestNames& nearest, std::string_view unknown);

/// Returns the first result of `lookUp` that converts to true. Looks up `name` as it is written, then
/// respelled, then with the litre's small "l".
template <class LookUp>
auto lookUpSpellings(std::string_view name, const LookUp& lookUp) {
    auto found = lookUp(name);
    if (found) {
        return found;
    }
    const bool isAscii =
        std::all_of(name.begin(), name.end(), [](char c) { return (c & 0x80) == 0; });
    if (isAscii && !isCapitalLitre(name)) {
        return found;
    }
    std::string other = isAscii ? std::string(name) : respelled(name);
    if (other != name && (found = lookUp(other))) {
        return found;
    }
    if (isCapitalLitre(other)) {
        other.back() = 'l';
        found = lookUp(other);
    }
    return found;
}

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_SPELLING_H
