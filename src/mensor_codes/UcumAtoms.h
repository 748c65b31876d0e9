// UcumAtoms.h: the atoms and prefixes of UCUM. For the library's own use; not installed.
//
//     CUcumUnit unit;
//     findUcumUnit("mm[Hg]", unit);       // FOUND: the prefix m and the atom m[Hg]
//     findUcumUnit("kmin", unit);         // TAKES_NO_PREFIX
#ifndef MENSOR_CODES_UCUMATOMS_H
#define MENSOR_CODES_UCUMATOMS_H

#include <cstddef>
#include <functional>
#include <string_view>

#include "mensor_codes/Codes.h"
#include "mensor_exact/SmallMeaning.h"

namespace mensor::codes {

/// The rows of ucum.def, as constant data.
class CUcumAtoms {
public:
    static constexpr std::size_t None = static_cast<std::size_t>(-1);

    static std::size_t size();
    static std::size_t find(std::string_view code);  ///< returns the row, or None
    static std::string_view codeOf(std::size_t row);
    static CCode code(std::size_t row);
    static bool takesPrefixes(std::size_t row);

    /// Returns whether the atom has no meaning, because UCUM defines it by another function than a factor
    /// and an offset.
    static bool isRefused(std::size_t row);
    static std::string_view reason(std::size_t row);  ///< why it is refused

    /// Returns what the atom means. The atom must not be a refused one.
    static exact::CSmallMeaning meaning(std::size_t row);

    /// Returns whether the library writes another code for the meaning of this atom.
    static bool isSynonym(std::size_t row);
};

struct CUcumPrefix {
    std::string_view Symbol;
    exact::CSmallFraction Factor;
};

/// All prefixes, those of the SI first.
inline constexpr CUcumPrefix UcumPrefixes[] = {
    {"Y", exact::CSmallFraction(1, 24)},       {"Z", exact::CSmallFraction(1, 21)},
    {"E", exact::CSmallFraction(1, 18)},       {"P", exact::CSmallFraction(1, 15)},
    {"T", exact::CSmallFraction(1, 12)},       {"G", exact::CSmallFraction(1, 9)},
    {"M", exact::CSmallFraction(1, 6)},        {"k", exact::CSmallFraction(1, 3)},
    {"h", exact::CSmallFraction(1, 2)},        {"da", exact::CSmallFraction(1, 1)},
    {"d", exact::CSmallFraction(1, -1)},       {"c", exact::CSmallFraction(1, -2)},
    {"m", exact::CSmallFraction(1, -3)},       {"u", exact::CSmallFraction(1, -6)},
    {"n", exact::CSmallFraction(1, -9)},       {"p", exact::CSmallFraction(1, -12)},
    {"f", exact::CSmallFraction(1, -15)},      {"a", exact::CSmallFraction(1, -18)},
    {"z", exact::CSmallFraction(1, -21)},      {"y", exact::CSmallFraction(1, -24)},
    {"Ki", exact::CSmallFraction(1024)},       {"Mi", exact::CSmallFraction(1048576)},
    {"Gi", exact::CSmallFraction(1073741824)}, {"Ti", exact::CSmallFraction(1099511627776)},
};

/// An atom with or without a prefix.
struct CUcumUnit {
    std::size_t Atom = CUcumAtoms::None;
    const CUcumPrefix* Prefix = nullptr;  ///< null if there is none
};

enum class eUcumUnit { FOUND, UNKNOWN, TAKES_NO_PREFIX };

/// Looks up `symbol` as an atom, and then as a prefix and an atom that takes prefixes.
eUcumUnit findUcumUnit(std::string_view symbol, CUcumUnit& unit);

}  // namespace mensor::codes

#endif  // MENSOR_CODES_UCUMATOMS_H
