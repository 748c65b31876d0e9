#include "mensor/TextCache.h"

#include <cstring>

namespace mensor::detail {

CTextCache textCache;

CTextCache::Key::Key(std::string_view text) noexcept : Words{}, First(0) {
    std::memcpy(Words.data(), text.data(), text.size());
    reinterpret_cast<unsigned char*>(Words.data())[LongestText] =
        static_cast<unsigned char>(text.size());
    std::uint64_t mixed = 0;
    for (const std::uintptr_t word : Words) {
        mixed = (mixed ^ word) * 0x9E3779B97F4A7C15U;
        mixed ^= mixed >> 29;
    }
    First = static_cast<std::size_t>(mixed >> 32) % EntryCount;
}

CUnit* CTextCache::find(std::string_view text, unsigned epoch) const noexcept {
    if (text.size() > LongestText) {
        return nullptr;
    }
    const Key key(text);
    for (std::size_t i = 0; i < ProbeCount; ++i) {
        const Entry& entry = m_Entries[(key.First + i) % EntryCount];
        const unsigned sequence = entry.Sequence.load(std::memory_order_acquire);
        std::uintptr_t difference = entry.Epoch.load(std::memory_order_acquire) ^ epoch;
        for (std::size_t word = 0; word < WordCount; ++word) {
            difference |= entry.Words[word].load(std::memory_order_acquire) ^ key.Words[word];
        }
        CUnit* const unit = entry.Unit.load(std::memory_order_acquire);
        if (difference == 0 && sequence % 2 == 0 &&
            entry.Sequence.load(std::memory_order_relaxed) == sequence) {
            return unit;
        }
    }
    return nullptr;
}

void CTextCache::insert(std::string_view text, unsigned epoch, CUnit* unit) noexcept {
    if (text.size() > LongestText) {
        return;
    }
    const Key key(text);
    Entry* chosen = nullptr;
    for (std::size_t i = 0; i < ProbeCount && chosen == nullptr; ++i) {
        Entry& entry = m_Entries[(key.First + i) % EntryCount];
        if (entry.Epoch.load(std::memory_order_relaxed) != epoch) {
            chosen = &entry;
        }
    }
    if (chosen == nullptr) {
        const unsigned turn = m_Replacements.fetch_add(1, std::memory_order_relaxed);
        chosen = &m_Entries[(key.First + turn % ProbeCount) % EntryCount];
    }
    unsigned sequence = chosen->Sequence.load(std::memory_order_relaxed);
    if (sequence % 2 != 0 || !chosen->Sequence.compare_exchange_strong(sequence, sequence + 1,
                                                                       std::memory_order_acquire)) {
        return;  // another thread writes this entry; caching is optional
    }
    chosen->Epoch.store(epoch, std::memory_order_release);
    for (std::size_t word = 0; word < WordCount; ++word) {
        chosen->Words[word].store(key.Words[word], std::memory_order_release);
    }
    chosen->Unit.store(unit, std::memory_order_release);
    chosen->Sequence.store(sequence + 2, std::memory_order_release);
}

}  // namespace mensor::detail
