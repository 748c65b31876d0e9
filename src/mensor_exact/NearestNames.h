// NearestNames.h: finds the known names that an unknown name may mean. For mensor's own libraries; not
// installed.
#ifndef MENSOR_EXACT_NEARESTNAMES_H
#define MENSOR_EXACT_NEARESTNAMES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// Returns the bit of a letter in a set of letters. Both cases of a letter have the same bit, and several
/// letters may share one. Bit 0 is for all letters that are not ASCII.
constexpr std::uint32_t letterBit(char32_t letter) {
    return letter < 0x80 ? std::uint32_t{1} << (letter % 32) : 1;
}

constexpr std::uint32_t letterSet(std::string_view name) {
    std::uint32_t letters = 0;
    for (const char c : name) {
        // All bytes of letters that are not ASCII give bit 0.
        letters |= letterBit(static_cast<unsigned char>(c));
    }
    return letters;
}

/// Returns whether the name is that of a unit with a prefix beyond tera and pico, which are hardly
/// used.
bool hasRarePrefix(std::string_view name);

/// Collects the known names that are most similar to an unknown one. First come names with the same
/// letters in other case. The others are ordered by the number of insertions, deletions, replacements
/// and swaps of neighbouring letters. Names with usual prefixes come before names with rare ones.
class MENSOR_EXACT_API CNearestNames {
public:
    explicit CNearestNames(std::string_view unknown);

    /// Returns whether add() may keep a name. A quick test that excludes most names.
    bool mayBeNear(std::string_view known) const {
        if (m_HasNone || known.size() + m_Farthest < m_Unknown.Size) {
            return false;
        }
        const std::uint32_t letters = letterSet(known);
        // A name in ASCII has as many letters as bytes.
        return ((letters & 1) != 0 || known.size() <= m_Unknown.Size + m_Farthest) &&
               // One change adds at most one letter and removes at most one.
               isAtMost(letters & ~m_Unknown.Set, m_Farthest) &&
               isAtMost(m_Unknown.Set & ~letters, m_Farthest);
    }

    /// Returns whether add() would keep this name if it were the only one.
    bool isNear(std::string_view known) const;

    /// Keeps a name if it is near and one of the nearest twelve.
    void add(std::string_view known);

    /// A known name that is near.
    struct CNear {
        std::string Name;
        std::size_t Distance;       ///< the number of changes, ignoring case
        std::size_t ExactDistance;  ///< the number of changes, with case
        bool IsRare;                ///< whether the prefix is rarely used, as in "Eg"
    };

    /// Returns the nearest names, the best first, at most twelve.
    const std::vector<CNear>& best() const { return m_Found; }

private:
    static constexpr std::size_t Longest = 24;  // the most code points of an unknown name
    static constexpr std::size_t MostEdits = 2;

    // A name as code points, also in small letters.
    struct CLetters {
        std::array<char32_t, Longest + MostEdits> Exact;
        std::array<char32_t, Longest + MostEdits> Small;
        std::size_t Size = 0;
        std::uint32_t Set = 0;  // letterSet()
    };

    // Returns whether no more than `most` bits are set. `most` is at most MostEdits.
    static constexpr bool isAtMost(std::uint32_t bits, std::size_t most) {
        static_assert(MostEdits == 2);
        bits = most > 0 ? bits & (bits - 1) : bits;
        bits = most > 1 ? bits & (bits - 1) : bits;
        return bits == 0;
    }

    static bool read(std::string_view text, CLetters& letters);
    bool measure(std::string_view known, CLetters& letters, std::size_t& distance) const;

    CLetters m_Unknown;
    std::size_t m_Farthest = 0;
    bool m_HasNone = false;      // the unknown name is too long
    std::vector<CNear> m_Found;  // sorted
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_NEARESTNAMES_H
