// RememberedTexts.h: the units of texts that were parsed before. For the library's own use; not
// installed.
//
// Programs read the same few texts over and over. A text denotes the same unit until a label or alias
// changes, so what parsing it gave may be given again (see tables.h for why that is exact). Only
// texts that denote a registered unit are kept: such a unit lives as long as the process, so the bare
// address does.
//
// The memory is fixed: SlotCount slots, each for a text of at most LongestText bytes; new texts
// displace old ones. Reading takes no lock. A slot has a sequence number, odd while it is written: a
// reader that finds it even and unchanged around its reading has read one whole entry. Every word is
// atomic, so no two threads race; the acquire and release on each word keep it between the two
// readings of the number.
#ifndef MENSOR_REMEMBEREDTEXTS_H
#define MENSOR_REMEMBEREDTEXTS_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mensor {

class CUnit;

namespace detail {

class CRememberedTexts {
public:
    // The unit that `text` denoted when it was kept under this epoch of names, or none.
    CUnit* find(std::string_view text, unsigned epoch) const noexcept;

    // Keeps that `text` denotes `unit`, which must be registered.
    void keep(std::string_view text, unsigned epoch, CUnit* unit) noexcept;

private:
    static constexpr std::size_t LongestText = 31;
    static constexpr std::size_t SlotCount = 512;
    static constexpr std::size_t Reach = 4;  // slots in which a text may stand
    static constexpr std::size_t WordCount = (LongestText + 1) / sizeof(std::uintptr_t);
    static_assert(WordCount * sizeof(std::uintptr_t) == LongestText + 1, "a byte for the length");

    // A text filled with zeros, its length in the last byte: equal keys are equal texts.
    struct Key {
        explicit Key(std::string_view text) noexcept;
        std::array<std::uintptr_t, WordCount> Words;
        std::size_t Slot;
    };

    struct Slot {
        std::atomic<unsigned> Sequence;
        std::atomic<unsigned> Epoch;  // 0: never used
        std::atomic<CUnit*> Unit;
        std::array<std::atomic<std::uintptr_t>, WordCount> Words;
    };

    std::array<Slot, SlotCount> m_Slots;    // zero before anything runs: it has no initialiser
    std::atomic<unsigned> m_Displacements;  // chooses whom a new text displaces
};

extern CRememberedTexts rememberedTexts;

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_REMEMBEREDTEXTS_H
