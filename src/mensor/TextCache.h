// TextCache.h: caches which units texts denote. Not installed.
//
// Programs read the same few texts over and over. A text denotes the same unit until a label or
// alias changes, so the cache returns the unit that parsing returned before (Tables.h says why that
// is exact). Only texts of registered units are cached. Such a unit lives until the process ends,
// so its plain address suffices.
//
// The size is fixed: EntryCount entries for texts of at most LongestText bytes. New texts replace
// old ones. Reading takes no lock. Each entry has a sequence number, which is odd while the entry
// is written. A reader that finds the number even, and unchanged after reading the entry, has read
// a complete entry. Every word is atomic, so there is no data race; acquire and release on each
// word keep its reading between the two readings of the number.
#ifndef MENSOR_TEXTCACHE_H
#define MENSOR_TEXTCACHE_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mensor {
class CUnit;
}

namespace mensor::detail {

class CTextCache {
public:
    // The unit that `text` denotes in this epoch of names, or null if it is not cached.
    CUnit* find(std::string_view text, unsigned epoch) const noexcept;

    // Caches that `text` denotes `unit`, which must be registered.
    void insert(std::string_view text, unsigned epoch, CUnit* unit) noexcept;

private:
    static constexpr std::size_t LongestText = 31;
    static constexpr std::size_t EntryCount = 512;
    static constexpr std::size_t ProbeCount = 4;  // entries in which a text may be
    static constexpr std::size_t WordCount = (LongestText + 1) / sizeof(std::uintptr_t);
    static_assert(WordCount * sizeof(std::uintptr_t) == LongestText + 1, "a byte for the length");

    // A text padded with zeros, with its length in the last byte: equal keys are equal texts.
    struct Key {
        explicit Key(std::string_view text) noexcept;
        std::array<std::uintptr_t, WordCount> Words;
        std::size_t First;  // the first entry to look at
    };

    struct Entry {
        std::atomic<unsigned> Sequence;
        std::atomic<unsigned> Epoch;  // 0: never used
        std::atomic<CUnit*> Unit;
        std::array<std::atomic<std::uintptr_t>, WordCount> Words;
    };

    // Has no initialiser, so the one object is zero before any code runs.
    std::array<Entry, EntryCount> m_Entries;
    std::atomic<unsigned> m_Replacements;  // chooses the entry that a new text replaces
};

extern CTextCache textCache;

}  // namespace mensor::detail

#endif  // MENSOR_TEXTCACHE_H
