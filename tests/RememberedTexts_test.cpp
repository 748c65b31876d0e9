// RememberedTexts_test.cpp: the memory of texts by itself, compiled into this test. What it means to
// programs is in behaviour/Remembered_test.cpp.
#include "mensor/RememberedTexts.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/Threads.h"

namespace mensor {
namespace {

detail::CRememberedTexts memory;  // zero before anything runs, as the library's

// Stands for a unit that only one text and epoch have; nobody looks into it.
CUnit* unitOf(std::size_t text, unsigned epoch) {
    return reinterpret_cast<CUnit*>(static_cast<std::uintptr_t>(epoch) * 64 + text * 8 + 8);
}

unsigned freshEpoch() {
    static unsigned epoch = 0;
    return ++epoch;
}

// Texts that come first to the same slot: where nothing of their epoch is kept, each displaces the other.
std::vector<std::string> textsOfOneSlot(std::size_t count) {
    std::vector<std::string> texts{"kg·m²/s²"};
    for (int i = 0; texts.size() < count; ++i) {
        std::string other = "m^" + std::to_string(i);
        const unsigned first = freshEpoch(), second = freshEpoch();
        memory.keep(texts[0], first, unitOf(0, first));
        memory.keep(other, second, unitOf(1, second));
        if (memory.find(texts[0], first) == nullptr) {
            texts.push_back(std::move(other));
        }
    }
    return texts;
}

TEST(RememberedTexts, AreFoundUnderTheirEpochAlone) {
    const unsigned epoch = freshEpoch();
    EXPECT_EQ(memory.find("m/s", epoch), nullptr);
    memory.keep("m/s", epoch, unitOf(0, epoch));
    EXPECT_EQ(memory.find("m/s", epoch), unitOf(0, epoch));
    EXPECT_EQ(memory.find("m/s", freshEpoch()), nullptr);
    EXPECT_EQ(memory.find("m/", epoch), nullptr);
    EXPECT_EQ(memory.find(std::string("m/s\0", 4), epoch), nullptr);
}

TEST(RememberedTexts, OfOneSlotAreAllKeptUntilThereAreMoreThanFour) {
    const std::vector<std::string> texts = textsOfOneSlot(5);
    const unsigned epoch = freshEpoch();
    for (std::size_t i = 0; i < 4; ++i) {
        memory.keep(texts[i], epoch, unitOf(i, epoch));
    }
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(memory.find(texts[i], epoch), unitOf(i, epoch)) << texts[i];
    }
    memory.keep(texts[4], epoch, unitOf(4, epoch));
    EXPECT_EQ(memory.find(texts[4], epoch), unitOf(4, epoch));
}

// Two texts and two epochs meet in one slot for seconds. Whoever reads half of one entry and half of
// another, or an entry that two writers have mixed, gets the unit of another text or epoch.
TEST(RememberedTexts, ThatThreadsWriteAndReadAtOnceGiveNoUnitOfAnotherTextOrEpoch) {
    const std::vector<std::string> texts = textsOfOneSlot(2);
    const std::array<unsigned, 2> epochs{freshEpoch(), freshEpoch()};
    std::atomic<long> found{0}, wrong{0};
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(4);
    race(6, [&](int thread) {
        long mine = 0, mineWrong = 0;
        for (unsigned i = 0; i % 256 != 0 || std::chrono::steady_clock::now() < end; ++i) {
            if (thread < 4) {  // the others only read
                const std::size_t text = i % 2;
                const unsigned epoch = epochs[i / 2 % 2];
                memory.keep(texts[text], epoch, unitOf(text, epoch));
            }
            for (std::size_t text = 0; text < 2; ++text) {
                for (const unsigned epoch : epochs) {
                    const CUnit* const unit = memory.find(texts[text], epoch);
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
