// OutOfMemory_test.cpp: whichever allocation fails, what was asked throws std::bad_alloc and can be asked
// again, as if nothing had happened.
//
// The program's operator new is the library's, too. Each request is tried with its first, second, third
// ... allocation failing until it succeeds; each answer must be that of a process in which nothing failed.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <iostream>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/BaseUnit.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/WarmUp.h"
#include "support/ClientUnit.h"
#include "support/Fork.h"
#include "support/Invariants.h"
#include "support/Matchers.h"
#include "support/OperatorNew.h"
#include "support/Session.h"
#include "support/Thorough.h"
#include "support/Threads.h"

namespace mensor {
namespace {

using test::Request;
using test::Requests;

// In processes of their own fail so few of the requests' allocations, in so few of the requests. In one
// process fail all, or from so many of a request on ever fewer, since it copies a table or searches the
// names; and the tables are looked at after so few failures.
struct Effort {
    long Stride, RequestStride, ManyOfARequest, LookEvery, WarmUpsTried;
};
constexpr Effort All{9, 1, 1'000'000, 1, 40}, Many{13, 3, 32, 32, 5}, Some{13, 9, 8, 128, 5};
const Effort& effort() {
    return test::isThorough() ? (test::IsSlow ? Many : All) : (test::IsSlow ? Some : Many);
}

constexpr long Never = std::numeric_limits<long>::max();

thread_local long firstFailing = Never;
thread_local long lastFailing = 0;

// While it lives, these allocations fail.
class CFailing {
public:
    CFailing(long first, long last) {
        firstFailing = first;
        lastFailing = last;
        allocations = 0;
        beforeAllocation = [](long number) {
            if (number >= firstFailing && number <= lastFailing) {
                throw std::bad_alloc();
            }
        };
    }
    ~CFailing() { beforeAllocation = nullptr; }
    CFailing(const CFailing&) = delete;
    CFailing& operator=(const CFailing&) = delete;
};

struct Attempt {
    std::string Outcome;
    bool HasRunOut;    // std::bad_alloc
    long Allocations;  // granted and failed ones
};

Attempt attempt(const Request& request, long first, long last) {
    Attempt result{"", false, 0};
    result.Outcome = test::outcomeOf({request.Name, [&]() -> test::Answer {
                                          const CFailing failing(first, last);
                                          return request.Ask();
                                      }});
    result.HasRunOut = result.Outcome.rfind("std::bad_alloc", 0) == 0;
    result.Allocations = allocations;
    return result;
}

TEST(OutOfMemory, LeavesTheTablesOfUnitsAndTextsAsTheyWere) {
    const CBaseUnitPtr a = CBaseUnit::getInstance(freshSymbol());
    const CBaseUnitPtr b = CBaseUnit::getInstance(freshSymbol());
    const CUnitPtr ratio = a / b;
    ratio->baseUnits();  // registers what it is folded from, and that may stay
    const string_t base = freshSymbol(), client = freshSymbol(), own = freshSymbol();
    const string_t label = freshSymbol(), alias = freshSymbol();
    const int hash = hashFromString(client);
    const std::pair<const char*, std::function<CUnitPtr()>> operations[] = {
        {"base unit", [&] { return CBaseUnit::getInstance(base); }},
        {"client's unit", [&] { return CClientUnit::make(client, hash)->canonical(); }},
        {"product", [&] { return a * b; }},
        {"quotient", [&] { return b / a; }},
        {"power", [&] { return a ^ 3; }},
        {"root", [&] { return a->root(5); }},
        {"scaled", [&] { return a * 1000.0; }},
        {"shifted", [&] { return b + 40.0; }},
        {"alternate", [&] { return ratio->alternate(own); }},
        {"label", [&] { return CUnitFormat::label(a, label); }},
        {"alias", [&] { return CUnitFormat::alias(b, alias); }},
        {"empty label", [&] { return CUnitFormat::label(b, ""); }},
        {"empty label of another unit", [&] { return CUnitFormat::label(ratio, ""); }},
    };
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        const Tables before;
        CUnitPtr result;
        int granted = 0;
        for (; granted < 1000; ++granted) {
            try {
                const CFailing failing(granted + 1, Never);
                result = operation();
                break;
            } catch (const std::bad_alloc&) {
            }
            ASSERT_EQ(Tables(), before) << "after " << granted << " allocations";
            ASSERT_TRUE(isFree(CUnit::mutex()));
            ASSERT_TRUE(isFree(Inside::lookupMutex(a)));
        }
        ASSERT_TRUE(result);
        EXPECT_GT(granted, 0) << "or nothing was refused";
        EXPECT_FALSE(Tables() == before);
        EXPECT_EQ(operation(), result);
        EXPECT_EQ(CUnit::instances().at(result->hashCode()), result);
    }
}

TEST(OutOfMemory, BaseUnitsAreComparedAsTheyAreOrNotAtAll) {
    const string_t symbol = "symbolOfMoreBytesThanAStringHolds";
    const CUnitPtr unit = CBaseUnit::getInstance(symbol), other = CClientUnit::make(symbol, 0);
    bool areEqual = false;
    int granted = 0;
    for (; granted < 100 && !areEqual; ++granted) {
        try {
            const CFailing failing(granted + 1, Never);
            areEqual = unit->equals(other);
            break;
        } catch (const std::bad_alloc&) {
        }
    }
    EXPECT_TRUE(areEqual);
    EXPECT_GT(granted, 0) << "or nothing was refused";
}

void append(Requests& requests, const Requests& more) {
    requests.insert(requests.end(), more.begin(), more.end());
}

// First what registers, then all the rest, which then is asked again.
Requests rememberedSession() {
    Requests requests = test::registering();
    append(requests, test::asking());
    append(requests, test::refused());
    append(requests, test::asking());
    return requests;
}

Requests session() {
    Requests requests = rememberedSession();
    append(requests, test::registeringMany());
    return requests;
}

// What `work` returns in a process of its own; what it reports is reported there.
std::string inFreshProcess(const std::function<std::string()>& work) {
    const ChildEnd end = inChild([&](std::string& text) {
        text = work();
        return ::testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(end.Status, 0);
    return end.Text;
}

// Whether nobody holds the mutex of the process or that of a unit. Asked of the C library: under the
// emulator a forked process cannot start the thread that would try to lock them.
bool areAllFree() {
    const auto isHeld = [](std::recursive_mutex& mutex) {
        return mutex.native_handle()->__data.__owner != 0;
    };
    bool areFree = !isHeld(CUnit::mutex());
    for (const auto& [hash, unit] : CUnit::instances()) {
        areFree = areFree && !isHeld(Inside::lookupMutex(unit));
    }
    return areFree;
}

TEST(OutOfMemory, AHeldMutexIsSeen) {
    EXPECT_TRUE(areAllFree());
    {
        const std::lock_guard<std::recursive_mutex> lock(CUnit::mutex());
        EXPECT_FALSE(areAllFree());
    }
    const std::lock_guard<std::recursive_mutex> lock(Inside::lookupMutex(SI::Meter()));
    EXPECT_FALSE(areAllFree());
}

// All tables and caches of the process. Units stand by their ids.
std::string everythingKnown() {
    std::string all;
    const auto put = [&](long number) { (all += std::to_string(number)) += ' '; };
    const auto idOf = [](const CUnitPtr& unit) { return unit ? Inside::id(unit) : -1; };
    for (const auto& [hash, unit] : CUnit::instances()) {
        put(hash);
        put(idOf(unit));
        for (const auto* cache : {&Inside::multiplyLookUp(unit), &Inside::divideLookUp(unit),
                                  &Inside::rootLookUp(unit), &Inside::powLookUp(unit)}) {
            put(static_cast<long>(cache->size()));
            for (std::size_t i = 0; i < cache->size(); ++i) {
                if ((*cache)[i]) {
                    put(static_cast<long>(i));
                    put(idOf((*cache)[i]));
                }
            }
        }
    }
    for (const auto* names :
         {&CUnit::symbols(), &CUnitFormat::labelUnitMap(), &CUnitFormat::aliasUnitMap()}) {
        for (const auto& [name, unit] : *names) {
            all += text(name) + ' ';
            put(idOf(unit));
        }
    }
    std::vector<std::pair<int, int>> dimensions;  // since those tables are sorted by address
    for (const auto& [unit, dimension] : CUnit::dimensions()) {
        dimensions.emplace_back(idOf(unit), idOf(dimension));
    }
    for (const auto& [unit, converter] : CUnit::toDimensions()) {
        dimensions.emplace_back(idOf(unit), converter ? converter->hashCode() : -1);
    }
    std::sort(dimensions.begin(), dimensions.end());
    for (const auto& [unit, dimension] : dimensions) {
        put(unit);
        put(dimension);
    }
    return all;
}

void expectSound() {
    ASSERT_EQ(test::brokenInvariant(), "");
    ASSERT_TRUE(areAllFree());
}

void report(long failures) {
    std::cout << failures << " allocations failed\n";
    ::testing::Test::RecordProperty("failures", static_cast<int>(failures));
    EXPECT_GT(failures, 50);
}

// One process in which one allocation after the other fails: what failed before must not add up. Where
// nobody looks at the tables before the end, the library goes on remembering.
void expectTheSameAnswers(bool alone, bool isWatched) {
    const std::string separator(1, '\x1E');
    const Requests requests = isWatched ? session() : rememberedSession();
    const std::string undisturbed = inFreshProcess([&] {
        std::string outcomes;
        for (const Request& request : requests) {
            outcomes += test::outcomeOf(request) + separator;
        }
        return outcomes;
    });
    std::string disturbed;
    long failures = 0;
    for (const Request& request : requests) {
        SCOPED_TRACE(request.Name);
        ASSERT_TRUE(isWatched || CUnitFormat::namesVersion() != 0);
        std::string outcome;
        for (long n = 1;; n += 1 + n / effort().ManyOfARequest) {
            SCOPED_TRACE(n);
            const Attempt now = attempt(request, n, alone ? n : Never);
            if (isWatched &&
                failures % (alone ? effort().LookEvery : 4 * effort().LookEvery) == 0) {
                ASSERT_NO_FATAL_FAILURE(expectSound());
            }
            failures += now.Allocations >= n ? 1 : 0;
            if (now.HasRunOut) {
                continue;
            }
            ASSERT_TRUE(outcome.empty() || now.Outcome == outcome) << now.Outcome;
            outcome = now.Outcome;
            if (now.Allocations < n) {
                break;
            }
        }
        disturbed += outcome + separator;
    }
    expectSound();
    EXPECT_EQ(disturbed, undisturbed);
    report(failures);
}

TEST(OutOfMemory, ASessionGoesOnAsIfNothingHadFailed) { expectTheSameAnswers(true, true); }

TEST(OutOfMemory, ASessionGoesOnOnceThereIsMemoryAgain) { expectTheSameAnswers(false, true); }

TEST(OutOfMemory, ASessionThatIsRememberedGoesOnAsIfNothingHadFailed) {
    expectTheSameAnswers(true, false);
}

TEST(OutOfMemory, ASessionThatIsRememberedGoesOnOnceThereIsMemoryAgain) {
    expectTheSameAnswers(false, false);
}

// Whether allocation `n` of the request fails without a trace. False once there is no such allocation.
bool isForgotten(const Request& request, long n, bool alone, bool isWatched,
                 const std::string& undisturbed) {
    const std::string end = inFreshProcess([&]() -> std::string {
        const Attempt disturbed = attempt(request, n, alone ? n : Never);
        if (isWatched) {
            expectSound();
        }
        const std::string outcome =
            disturbed.HasRunOut ? test::outcomeOf(request) : disturbed.Outcome;
        EXPECT_EQ(outcome + everythingKnown(), undisturbed);
        EXPECT_TRUE(areAllFree());
        return disturbed.Allocations < n ? "no such allocation" : "forgotten";
    });
    return end == "forgotten";
}

// Each failure in a process of its own in which nothing has failed before. Where nobody looks at the
// tables in between, the library goes on remembering. The longer a request takes the more alike are
// its allocations: it copies a table.
void expectTheSameTables(bool alone, bool isWatched) {
    long failures = 0;
    long requests = 0;
    for (const Request& request : session()) {
        SCOPED_TRACE(request.Name);
        if (requests++ % effort().RequestStride != 0) {
            test::outcomeOf(request);
            continue;
        }
        const std::string undisturbed = inFreshProcess([&] {
            const std::string outcome = test::outcomeOf(request);
            return outcome + everythingKnown();
        });
        for (long n = 1 + requests % effort().Stride;
             isForgotten(request, n, alone, isWatched, undisturbed);
             n += effort().Stride + n / 32) {
            ++failures;
        }
        ASSERT_FALSE(::testing::Test::HasFailure());
        test::outcomeOf(request);
    }
    report(failures);
}

TEST(OutOfMemory, LeavesAllTablesAsIfNothingHadFailed) { expectTheSameTables(true, true); }

TEST(OutOfMemory, LeavesAllThatIsRememberedAsIfNothingHadFailed) {
    expectTheSameTables(false, false);
}

// On whichever side it is deep, whatever hangs on its other side.
TEST(OutOfMemory, ALongChainIsDestroyedOnASmallStack) {
    const auto nested = [](int depth, const auto& isFirst, const auto& step) {
        CConverterPtr chain = step();
        for (int i = 0; i < depth; ++i) {
            chain = isFirst(i) ? std::make_shared<CCompound>(chain, step())
                               : std::make_shared<CCompound>(step(), chain);
        }
        return chain;
    };
    const auto inFirst = [](int) { return true; };
    const auto inSecond = [](int) { return false; };
    const auto byTurns = [](int i) { return i % 2 == 0; };
    const auto alone = []() -> CConverterPtr { return std::make_shared<CAddConverter>(1.5); };
    const auto several = [&] { return nested(50, byTurns, alone); };
    const auto destroy = [](CConverterPtr chain) {
        const CFailing failing(1, Never);
        chain.reset();
    };
    runWithStack(256 * 1024, [&] {
        destroy(nested(20'000, inFirst, alone));
        destroy(nested(20'000, inSecond, alone));
        destroy(nested(20'000, byTurns, alone));
        destroy(nested(2'000, inFirst, several));
        destroy(nested(2'000, inSecond, several));
        destroy(nested(2'000, byTurns, several));
        destroy(std::make_shared<CCompound>(nested(20'000, inFirst, alone),
                                            nested(20'000, inSecond, alone)));
    });
}

// Thousands of allocations, of which a few are tried.
TEST(OutOfMemory, AWarmUpThatReturnsHasWarmedUp) {
    const Request warmUp{
        "warm-up", [] {
            return static_cast<double>(checked::warmUp({"km/h", "W/(m²·K)", "xyz"}).size());
        }};
    const std::string undisturbed = inFreshProcess([&] {
        const std::string outcome = test::outcomeOf(warmUp);
        return outcome + everythingKnown();
    });
    const long count = std::stol(
        inFreshProcess([&] { return std::to_string(attempt(warmUp, Never, Never).Allocations); }));
    ASSERT_GT(count, effort().WarmUpsTried);
    for (long n = 1; n <= count; n += count / effort().WarmUpsTried) {
        SCOPED_TRACE(n);
        ASSERT_TRUE(isForgotten(warmUp, n, true, false, undisturbed));
        ASSERT_FALSE(::testing::Test::HasFailure());
    }
}

}  // namespace
}  // namespace mensor
