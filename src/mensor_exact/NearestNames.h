// NearestNames.h: what an unknown name may have meant. For mensor's own libraries; not installed.
#ifndef MENSOR_EXACT_NEARESTNAMES_H
#define MENSOR_EXACT_NEARESTNAMES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/exact_export.h"

namespace mensor {
namespace exact {

/// Collects the known names that are nearest to an unknown one: the same letters in other case, then
/// by the number of insertions, deletions, replacements and swaps of neighbours; names with usual
/// prefixes first.
class MENSOR_EXACT_API CNearestNames {
public:
    explicit CNearestNames(std::string_view unknown);

    /// Whether add() would keep this name.
    bool isNear(std::string_view known) const;

    void add(std::string_view known);

    /// A known name.
    struct CNear {
        std::string Name;
        std::size_t Distance;       ///< whatever the case
        std::size_t ExactDistance;  ///< with it
        bool IsRare;                ///< has a prefix that is hardly used, as "Eg"
    };

    /// The nearest ones, best first, at most twelve.
    std::vector<CNear> best() const;

private:
    static constexpr std::size_t Longest = 24;  // code points of an unknown name
    static constexpr std::size_t MostEdits = 2;

    // A name as code points, also in small letters.
    struct CLetters {
        std::array<char32_t, Longest + MostEdits> Exact;
        std::array<char32_t, Longest + MostEdits> Small;
        std::size_t Size = 0;
        std::uint64_t Set = 0;  // a bit for each small letter, which others may share
    };

    static bool read(std::string_view text, CLetters& letters);
    bool isFar(std::string_view known) const;
    bool measure(std::string_view known, CLetters& letters, std::size_t& distance) const;

    CLetters m_Unknown;
    std::size_t m_Farthest = 0;
    bool m_HasNone = false;  // the name is too long
    std::vector<CNear> m_Found;
};

}  // namespace exact
}  // namespace mensor

#endif  // MENSOR_EXACT_NEARESTNAMES_H
