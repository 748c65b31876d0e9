// TextCache_test.cpp: the cache of texts alone, compiled into this test. behaviour/Caches_test.cpp
// tests its effect on programs.
#include "mensor/TextCache.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/threads.h"

namespace mensor {
namespace {

detail::CTextCache cache;  // zero-initialised, like the cache of the library

// An address that is different for each text and epoch. It is never dereferenced.
CUnit* unitOf(std::size_t text, unsigned epoch) {
    return reinterpret_cast<CUnit*>(static_cast<std::uintptr_t>(epoch) * 64 + text * 8 + 8);
}

unsigned freshEpoch() {
    static unsigned epoch = 0;
    return ++epoch;
}

// Texts that begin at the same entry of the cache: inserting one in a new epoch replaces the other.
std::vector<std::string> textsOfOneEntry(std::size_t count) {
    std::vector<std::string> texts{"kg·m²/s²"};
    for (int i = 0; texts.size() < count; ++i) {
        std::string other = "m^" + std::to_string(i);
        const unsigned first = freshEpoch(), second = freshEpoch();
        cache.insert(texts[0], first, unitOf(0, first));
        cache.insert(other, second, unitOf(1, second));
        if (cache.find(texts[0], first) == nullptr) {
            texts.push_back(std::move(other));
        }
    }
    return texts;
}

TEST(TextCache, FindsATextOnlyInTheEpochOfItsInsertion) {
    const unsigned epoch = freshEpoch();
    EXPECT_EQ(cache.find("m/s", epoch), nullptr);
    cache.insert("m/s", epoch, unitOf(0, epoch));
    EXPECT_EQ(cache.find("m/s", epoch), unitOf(0, epoch));
    EXPECT_EQ(cache.find("m/s", freshEpoch()), nullptr);
    EXPECT_EQ(cache.find("m/", epoch), nullptr);
    EXPECT_EQ(cache.find(std::string("m/s\0", 4), epoch), nullptr);
}

TEST(TextCache, HoldsFourTextsThatBeginAtTheSameEntry) {
    const std::vector<std::string> texts = textsOfOneEntry(5);
    const unsigned epoch = freshEpoch();
    for (std::size_t i = 0; i < 4; ++i) {
        cache.insert(texts[i], epoch, unitOf(i, epoch));
    }
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(cache.find(texts[i], epoch), unitOf(i, epoch)) << texts[i];
    }
    cache.insert(texts[4], epoch, unitOf(4, epoch));
    EXPECT_EQ(cache.find(texts[4], epoch), unitOf(4, epoch));
}

// Threads write two texts in two epochs to one entry for seconds. A reader that gets half of one
// write and half of another, or an entry that two writers have mixed, finds the unit of another
// text or epoch.
TEST(TextCache, ConcurrentWritesNeverGiveTheUnitOfAnotherTextOrEpoch) {
    const std::vector<std::string> texts = textsOfOneEntry(2);
    const std::array<unsigned, 2> epochs{freshEpoch(), freshEpoch()};
    std::atomic<long> found{0}, wrong{0};
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(4);
    race(6, [&](int thread) {
        long mine = 0, mineWrong = 0;
        for (unsigned i = 0; i % 256 != 0 || std::chrono::steady_clock::now() < end; ++i) {
            if (thread < 4) {  // the others only read
                const std::size_t text = i % 2;
                const unsigned epoch = epochs[i / 2 % 2];
                cache.insert(texts[text], epoch, unitOf(text, epoch));
            }
            for (std::size_t text = 0; text < 2; ++text) {
                for (const unsigned epoch : epochs) {
                    const CUnit* const unit = cache.find(texts[text], epoch);
                    mine += unit != nullptr ? 1 : 0;
                    mineWrong += unit != nullptr && unit != unitOf(text, epoch) ? 1 : 0;
                }
            }
        }
        found += mine;
        wrong += mineWrong;
    });
    EXPECT_GT(found, 1000);
    EXPECT_EQ(wrong, 0) << "of " << found;
}

}  // namespace
}  // namespace mensor
