#include "mensor/RememberedTexts.h"

#include <cstring>

namespace mensor {
namespace detail {

CRememberedTexts rememberedTexts;

CRememberedTexts::Key::Key(std::string_view text) noexcept : Words{}, Slot(0) {
    std::memcpy(Words.data(), text.data(), text.size());
    reinterpret_cast<unsigned char*>(Words.data())[LongestText] =
        static_cast<unsigned char>(text.size());
    std::uint64_t mixed = 0;
    for (const std::uintptr_t word : Words) {
        mixed = (mixed ^ word) * 0x9E3779B97F4A7C15U;
        mixed ^= mixed >> 29;
    }
    Slot = static_cast<std::size_t>(mixed >> 32) % SlotCount;
}

CUnit* CRememberedTexts::find(std::string_view text, unsigned epoch) const noexcept {
    if (text.size() > LongestText) {
        return nullptr;
    }
    const Key key(text);
    for (std::size_t i = 0; i < Reach; ++i) {
        const Slot& slot = m_Slots[(key.Slot + i) % SlotCount];
        const unsigned sequence = slot.Sequence.load(std::memory_order_acquire);
        std::uintptr_t difference = slot.Epoch.load(std::memory_order_acquire) ^ epoch;
        for (std::size_t word = 0; word < WordCount; ++word) {
            difference |= slot.Words[word].load(std::memory_order_acquire) ^ key.Words[word];
        }
        CUnit* const unit = slot.Unit.load(std::memory_order_acquire);
        if (difference == 0 && sequence % 2 == 0 &&
            slot.Sequence.load(std::memory_order_relaxed) == sequence) {
            return unit;
        }
    }
    return nullptr;
}

void CRememberedTexts::keep(std::string_view text, unsigned epoch, CUnit* unit) noexcept {
    if (text.size() > LongestText) {
        return;
    }
    const Key key(text);
    Slot* chosen = nullptr;
    for (std::size_t i = 0; i < Reach && chosen == nullptr; ++i) {
        Slot& slot = m_Slots[(key.Slot + i) % SlotCount];
        if (slot.Epoch.load(std::memory_order_relaxed) != epoch) {
            chosen = &slot;
        }
    }
    if (chosen == nullptr) {
        const unsigned turn = m_Displacements.fetch_add(1, std::memory_order_relaxed);
        chosen = &m_Slots[(key.Slot + turn % Reach) % SlotCount];
    }
    unsigned sequence = chosen->Sequence.load(std::memory_order_relaxed);
    if (sequence % 2 != 0 || !chosen->Sequence.compare_exchange_strong(sequence, sequence + 1,
                                                                       std::memory_order_acquire)) {
        return;  // another thread writes here: that entry will do
    }
    chosen->Epoch.store(epoch, std::memory_order_release);
    for (std::size_t word = 0; word < WordCount; ++word) {
        chosen->Words[word].store(key.Words[word], std::memory_order_release);
    }
    chosen->Unit.store(unit, std::memory_order_release);
    chosen->Sequence.store(sequence + 2, std::memory_order_release);
}

}  // namespace detail
}  // namespace mensor
