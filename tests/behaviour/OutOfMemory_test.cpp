// OutOfMemory_test.cpp: if any allocation fails, the call throws std::bad_alloc, and a second call
// succeeds as if nothing had happened.
//
// The library uses the operator new of this program. Each request is repeated with its first,
// second, third ... allocation failing until it succeeds. Each answer must be that of a process
// without failures.
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
#include "mensor_checked/warm_up.h"
#include "support/ClientUnit.h"
#include "support/Fork.h"
#include "support/Matchers.h"
#include "support/Session.h"
#include "support/invariants.h"
#include "support/operator_new.h"
#include "support/thorough.h"
#include "support/threads.h"

namespace mensor {
namespace {

using test::Request;
using test::Requests;

// How many of all cases the tests try.
struct Effort {
    long Stride;         // in a process of its own: fails each Stride-th allocation of a request
    long RequestStride;  // ... and of each RequestStride-th request
    long
        ManyOfARequest;  // in one process: all allocations of a request up to this one, then ever fewer
    long LookEvery;      // the number of failures between two checks of the tables
    long WarmUpsTried;  // the number of allocations of a warm-up that fail
};
constexpr Effort All{9, 1, 1'000'000, 1, 40}, Many{13, 3, 32, 32, 5}, Some{13, 3, 8, 128, 5};
const Effort& effort() {
    return test::isThorough() ? (test::IsSlow ? Many : All) : (test::IsSlow ? Some : Many);
}

constexpr long Never = std::numeric_limits<long>::max();

thread_local long firstFailing = Never;
thread_local long lastFailing = 0;

// These allocations fail while the object exists.
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
    long Allocations;  // including the failed ones
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

TEST(OutOfMemory, LeavesTheTablesOfUnitsAndNamesUnchanged) {
    const CBaseUnitPtr a = CBaseUnit::getInstance(freshSymbol());
    const CBaseUnitPtr b = CBaseUnit::getInstance(freshSymbol());
    const CUnitPtr ratio = a / b;
    ratio->baseUnits();  // registers its factors, which may stay
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
        EXPECT_GT(granted, 0) << "otherwise nothing was refused";
        EXPECT_FALSE(Tables() == before);
        EXPECT_EQ(operation(), result);
        EXPECT_EQ(CUnit::instances().at(result->hashCode()), result);
    }
}

TEST(OutOfMemory, EqualsOfBaseUnitsIsCorrectOrThrows) {
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
    EXPECT_GT(granted, 0) << "otherwise nothing was refused";
}

void append(Requests& requests, const Requests& more) {
    requests.insert(requests.end(), more.begin(), more.end());
}

// First the requests that register units, then all others, some of them twice.
Requests shortSession() {
    Requests requests = test::registering();
    append(requests, test::asking());
    append(requests, test::refused());
    append(requests, test::asking());
    return requests;
}

Requests session() {
    Requests requests = shortSession();
    append(requests, test::registeringMany());
    return requests;
}

// Runs `work` in a process of its own and returns its result. Failures of its expectations are
// reported there.
std::string inFreshProcess(const std::function<std::string()>& work) {
    const ChildEnd end = inChild([&](std::string& text) {
        text = work();
        return ::testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(end.Status, 0);
    return end.Text;
}

// Returns whether no thread holds the mutex of the process or that of a unit. Reads the mutexes of
// the C library, because under the emulator a forked process cannot start a thread that tries to
// lock them.
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

TEST(OutOfMemory, TheTestFindsAHeldMutex) {
    EXPECT_TRUE(areAllFree());
    {
        const std::lock_guard<std::recursive_mutex> lock(CUnit::mutex());
        EXPECT_FALSE(areAllFree());
    }
    const std::lock_guard<std::recursive_mutex> lock(Inside::lookupMutex(SI::Meter()));
    EXPECT_FALSE(areAllFree());
}

// All tables and caches of the process as a text, with ids for units.
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
    std::vector<std::pair<int, int>>
        dimensions;  // sorted below, since the tables are sorted by address
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

// Which allocations fail: one of a request, or that one and all later ones.
enum class eFailing { ONE, ALL_LATER };

long lastFailingOf(eFailing failing, long n) { return failing == eFailing::ONE ? n : Never; }

// With the caches on, the test must not look at the tables before the end, since that switches the
// caches off.
enum class eCaches { ON, OFF };

// In one process, lets one allocation after the other fail. All answers must be those of a process
// without failures.
void expectTheSameAnswers(eFailing failing, eCaches caches) {
    const std::string separator(1, '\x1E');
    const Requests requests = caches == eCaches::OFF ? session() : shortSession();
    const std::string undisturbed = inFreshProcess([&] {
        std::string outcomes;
        for (const Request& request : requests) {
            outcomes += test::outcomeOf(request) + separator;
        }
        return outcomes;
    });
    const long lookEvery = failing == eFailing::ONE ? effort().LookEvery : 4 * effort().LookEvery;
    std::string disturbed;
    long failures = 0;
    for (const Request& request : requests) {
        SCOPED_TRACE(request.Name);
        if (caches == eCaches::ON) {
            ASSERT_NE(CUnitFormat::namesVersion(), 0U);
        }
        std::string outcome;
        for (long n = 1;; n += 1 + n / effort().ManyOfARequest) {
            SCOPED_TRACE(n);
            const Attempt now = attempt(request, n, lastFailingOf(failing, n));
            if (caches == eCaches::OFF && failures % lookEvery == 0) {
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

TEST(OutOfMemory, AnswersAreTheSameAfterSingleFailures) {
    expectTheSameAnswers(eFailing::ONE, eCaches::OFF);
}

TEST(OutOfMemory, ResultsAreTheSameAfterMemoryIsAvailableAgain) {
    expectTheSameAnswers(eFailing::ALL_LATER, eCaches::OFF);
}

TEST(OutOfMemory, CachedAnswersAreTheSameAfterSingleFailures) {
    expectTheSameAnswers(eFailing::ONE, eCaches::ON);
}

TEST(OutOfMemory, CachedResultsAreTheSameAfterMemoryIsAvailableAgain) {
    expectTheSameAnswers(eFailing::ALL_LATER, eCaches::ON);
}

// Returns whether the request leaves the answer and the tables of a process without failures if its
// allocation `n` fails. False as well if there is no allocation `n`.
bool leavesNoTrace(const Request& request, long n, eFailing failing, eCaches caches,
                   const std::string& undisturbed) {
    const std::string end = inFreshProcess([&]() -> std::string {
        const Attempt disturbed = attempt(request, n, lastFailingOf(failing, n));
        if (caches == eCaches::OFF) {
            expectSound();
        }
        const std::string outcome =
            disturbed.HasRunOut ? test::outcomeOf(request) : disturbed.Outcome;
        EXPECT_EQ(outcome + everythingKnown(), undisturbed);
        EXPECT_TRUE(areAllFree());
        return disturbed.Allocations < n ? "no such allocation" : "no trace";
    });
    return end == "no trace";
}

// Lets each allocation fail in a process of its own, in which nothing has failed before. The later
// allocations of a long request are alike, since it copies a table, so fewer of them are tried.
void expectTheSameTables(eFailing failing, eCaches caches) {
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
             leavesNoTrace(request, n, failing, caches, undisturbed);
             n += effort().Stride + n / 32) {
            ++failures;
        }
        ASSERT_FALSE(::testing::Test::HasFailure());
        test::outcomeOf(request);
    }
    report(failures);
}

TEST(OutOfMemory, TablesAreTheSameAfterASingleFailure) {
    expectTheSameTables(eFailing::ONE, eCaches::OFF);
}

TEST(OutOfMemory, TablesAndCachesAreTheSameAfterMemoryIsAvailableAgain) {
    expectTheSameTables(eFailing::ALL_LATER, eCaches::ON);
}

// Chains that are deep in the first step, in the second, in both, and with another chain on the
// other side.
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
    const auto alternately = [](int i) { return i % 2 == 0; };
    const auto alone = []() -> CConverterPtr { return std::make_shared<CAddConverter>(1.5); };
    const auto several = [&] { return nested(50, alternately, alone); };
    const auto destroy = [](CConverterPtr chain) {
        const CFailing failing(1, Never);
        chain.reset();
    };
    runWithStack(256 * 1024, [&] {
        destroy(nested(20'000, inFirst, alone));
        destroy(nested(20'000, inSecond, alone));
        destroy(nested(20'000, alternately, alone));
        destroy(nested(2'000, inFirst, several));
        destroy(nested(2'000, inSecond, several));
        destroy(nested(2'000, alternately, several));
        destroy(std::make_shared<CCompound>(nested(20'000, inFirst, alone),
                                            nested(20'000, inSecond, alone)));
    });
}

// The warm-up makes thousands of allocations, of which a few fail.
TEST(OutOfMemory, AWarmUpThatReturnsIsComplete) {
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
        ASSERT_TRUE(leavesNoTrace(warmUp, n, eFailing::ONE, eCaches::ON, undisturbed));
        ASSERT_FALSE(::testing::Test::HasFailure());
    }
}

}  // namespace
}  // namespace mensor
