// LongRunning_test.cpp: repeated requests need no memory. After a million requests there are as
// many blocks of memory and units as before. Without MENSOR_TESTS_THOROUGH it is ten thousand
// requests.
//
// The operator new of this program counts the blocks, including those of the library.
// MENSOR_REQUESTS in the environment sets another number of requests.
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <string>

#include "mensor/BaseUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "support/Inside.h"
#include "support/Matchers.h"
#include "support/Session.h"
#include "support/invariants.h"
#include "support/operator_new.h"
#include "support/thorough.h"

namespace mensor {
namespace {

using test::Request;
using test::Requests;

long requestedRequests() {
    const char* const requested = std::getenv("MENSOR_REQUESTS");
    if (requested != nullptr) {
        return std::atol(requested);
    }
#if defined(__arm__)
    constexpr long Most = 20'000;  // under an emulator
#else
    constexpr long Most = test::IsSlow ? 50'000 : 1'000'000;
#endif
    return test::isThorough() ? Most : 10'000;
}

// Registers a unit and returns its id.
int lastId() { return Inside::id(CBaseUnit::getInstance(freshSymbol())); }

// Makes the request and drops the answer. Returns whether there was one.
bool isAnswered(const Request& request) {
    try {
        request.Ask();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

// Requests whose refusal searches all names for similar ones take a hundred times as long as the
// others, so they are made once in a hundred rounds.
bool isLengthy(const Request& request) {
    allocations = 0;
    beforeAllocation = [](long) {};
    isAnswered(request);
    beforeAllocation = nullptr;
    return allocations > 100;
}

enum class eOutcome { ANSWERED, REFUSED };

// Makes `count` requests, of which each has this outcome, and expects that they leave no memory, unit or
// name.
void expectNothingIsLeft(const Requests& requests, eOutcome outcome, long count) {
    for (const Request& request : test::registering()) {
        ASSERT_TRUE(isAnswered(request)) << request.Name;
    }
    Requests usual, lengthy;
    for (const Request& request : requests) {
        ASSERT_EQ(isAnswered(request), outcome == eOutcome::ANSWERED) << request.Name;
        (isLengthy(request) ? lengthy : usual).push_back(request);
    }
    ASSERT_GT(usual.size(), 20U);
    const auto askAll = [](const Requests& some) {
        for (const Request& request : some) {
            isAnswered(request);
        }
        return static_cast<long>(some.size());
    };
    const auto askRounds = [&](long wanted) {
        long asked = 0;
        for (long round = 0; asked < wanted; ++round) {
            asked += askAll(usual);
            if (round % 100 == 0) {
                asked += askAll(lengthy);
            }
        }
        return asked + askAll(usual);  // ends with the usual requests
    };
    askRounds(1000);  // warm-up
    const int id = lastId();
    const std::size_t names = CUnitFormat::names().size();
    const unsigned version = CUnitFormat::namesVersion();
    askRounds(1000);
    const long blocks = liveBlocks;
    const std::size_t bytes = mallinfo2().uordblks;

    const long asked = askRounds(count);

    const long blocksAfter = liveBlocks;
    EXPECT_EQ(blocksAfter, blocks);
    EXPECT_LE(mallinfo2().uordblks, bytes + 4096) << "blocks that did not come from operator new";
    EXPECT_EQ(CUnitFormat::namesVersion(), version);
    EXPECT_EQ(CUnitFormat::names().size(), names);
    EXPECT_EQ(lastId(), id + 1);
    EXPECT_EQ(test::brokenInvariant(), "");
    std::cout << asked << " requests, " << blocks << " blocks before and " << blocksAfter
              << " after\n";
}

TEST(LongRunning, AnsweredRequestsKeepNoMemory) {
    ASSERT_NE(CUnitFormat::namesVersion(), 0U);
    expectNothingIsLeft(test::asking(), eOutcome::ANSWERED, requestedRequests());
}

TEST(LongRunning, RefusedRequestsKeepNoMemory) {
    ASSERT_NE(CUnitFormat::namesVersion(), 0U);
    expectNothingIsLeft(test::refused(), eOutcome::REFUSED, requestedRequests());
}

// Switches the caches off for the rest of the process.
void switchCachesOff() {
    CUnit::instances();
    ASSERT_EQ(CUnitFormat::namesVersion(), 0U);
}

TEST(LongRunning, AnsweredRequestsKeepNoMemoryWithTheCachesOff) {
    switchCachesOff();
    expectNothingIsLeft(test::asking(), eOutcome::ANSWERED, requestedRequests());
}

TEST(LongRunning, RefusedRequestsKeepNoMemoryWithTheCachesOff) {
    switchCachesOff();
    expectNothingIsLeft(test::refused(), eOutcome::REFUSED, requestedRequests() / 10);
}

}  // namespace
}  // namespace mensor
