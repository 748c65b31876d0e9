// LongRunning_test.cpp: what is asked again costs nothing, however often: a million requests leave as many
// blocks of memory as there were, and register nothing (support/Thorough.h; else it is ten thousand).
//
// The program's operator new counts the blocks, the library's included. Where a million takes too long it
// is fewer; MENSOR_REQUESTS in the environment says how many.
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
#include "support/Invariants.h"
#include "support/Matchers.h"
#include "support/OperatorNew.h"
#include "support/Session.h"
#include "support/Thorough.h"

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
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr long Most = 50'000;
#else
    constexpr long Most = 1'000'000;
#endif
    return test::isThorough() ? Most : 10'000;
}

// The number of the unit registered last, after one more.
int lastId() { return Inside::id(CBaseUnit::getInstance(freshSymbol())); }

// Asks, and lets the answer go. Whether there was one.
bool isAnswered(const Request& request) {
    try {
        request.Ask();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

// Those whose refusal searches all names for similar ones take a hundred times as long as the others:
// they come once in a hundred rounds.
bool isLengthy(const Request& request) {
    allocations = 0;
    beforeAllocation = [](long) {};
    isAnswered(request);
    beforeAllocation = nullptr;
    return allocations > 100;
}

void expectNothingIsLeft(const Requests& requests, bool areAnswered, long count) {
    for (const Request& request : test::registering()) {
        ASSERT_TRUE(isAnswered(request)) << request.Name;
    }
    Requests usual, lengthy;
    for (const Request& request : requests) {
        ASSERT_EQ(isAnswered(request), areAnswered) << request.Name;
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
        return asked + askAll(usual);  // always ends with the same
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
    EXPECT_LE(mallinfo2().uordblks, bytes + 4096) << "blocks that are not operator new's";
    EXPECT_EQ(CUnitFormat::namesVersion(), version);
    EXPECT_EQ(CUnitFormat::names().size(), names);
    EXPECT_EQ(lastId(), id + 1);
    EXPECT_EQ(test::brokenInvariant(), "");
    std::cout << asked << " requests, " << blocks << " blocks before and " << blocksAfter
              << " after\n";
}

TEST(LongRunning, AnsweredRequestsLeaveNothing) {
    ASSERT_NE(CUnitFormat::namesVersion(), 0U);
    expectNothingIsLeft(test::asking(), true, requestedRequests());
}

TEST(LongRunning, RefusedRequestsLeaveNothing) {
    ASSERT_NE(CUnitFormat::namesVersion(), 0U);
    expectNothingIsLeft(test::refused(), false, requestedRequests());
}

// For good, in the process of one test.
void endRemembering() {
    CUnit::instances();
    ASSERT_EQ(CUnitFormat::namesVersion(), 0U);
}

TEST(LongRunning, AnsweredRequestsLeaveNothingWhereNothingIsRemembered) {
    endRemembering();
    expectNothingIsLeft(test::asking(), true, requestedRequests());
}

TEST(LongRunning, RefusedRequestsLeaveNothingWhereNothingIsRemembered) {
    endRemembering();
    expectNothingIsLeft(test::refused(), false, requestedRequests() / 10);
}

}  // namespace
}  // namespace mensor
