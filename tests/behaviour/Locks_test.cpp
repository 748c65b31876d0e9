// Locks_test.cpp: the library takes its locks in one order (docs/threads.md). Threads that use
// units for the first time at once do not deadlock, and every call releases its locks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <fstream>
#include <functional>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "mensor/BaseUnit.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "mensor/io.h"
#include "support/ClientUnit.h"
#include "support/Fork.h"
#include "support/Inside.h"
#include "support/Matchers.h"
#include "support/invariants.h"
#include "support/outcome.h"
#include "support/threads.h"

namespace mensor {
namespace {

using Lock = std::lock_guard<std::recursive_mutex>;

// Returns whether the thread `id` of this process is blocked.
bool isAsleep(pid_t id) {
    std::ifstream file("/proc/self/task/" + std::to_string(id) + "/stat");
    std::string stat;
    std::getline(file, stat);
    const std::size_t end = stat.rfind(") ");  // the end of the name of the thread
    return end != std::string::npos && stat[end + 2] == 'S';
}

// Runs `action` in another thread while this one holds `held`. Calls `whileWaiting` when that thread is
// blocked. Returns false if it ends without blocking.
bool whileItWaits(std::recursive_mutex& held, const std::function<void()>& action,
                  const std::function<void()>& whileWaiting) {
    std::atomic<pid_t> id{0};
    std::atomic<bool> isDone{false};
    bool isWaiting = false;
    std::thread thread;
    {
        const Lock lock(held);
        thread = std::thread([&] {
            id = static_cast<pid_t>(syscall(SYS_gettid));
            action();
            isDone = true;
        });
        while (!isDone && (id == 0 || !isAsleep(id))) {
            std::this_thread::yield();
        }
        isWaiting = !isDone;
        if (isWaiting) {
            whileWaiting();
        }
    }
    thread.join();
    return isWaiting;
}

// Returns whether `action` holds `other` while it waits for `held`. No value if it does not wait
// for `held`.
std::optional<bool> holdsWhileItWaits(std::recursive_mutex& held, std::recursive_mutex& other,
                                      const std::function<void()>& action) {
    std::optional<bool> result;
    whileItWaits(held, action, [&] {
        result = !other.try_lock();
        if (!*result) {
            other.unlock();
        }
    });
    return result;
}

struct Operation {
    const char* Name;
    std::function<void()> Run;
};

std::vector<Operation> algebraOf(const CUnitPtr& a, const CUnitPtr& b) {
    return {
        {"product", [=] { a* b; }},
        {"quotient", [=] { a / b; }},
        {"power", [=] { a ^ 2; }},
        {"root", [=] { a->root(3); }},
        {"large power", [=] { a ^ 5000; }},
        {"large root", [=] { a->root(5000); }},
        {"negative power", [=] { a ^ -4; }},
        {"negative root", [=] { a->root(-5); }},
        {"large negative", [=] { a ^ -5000; }},
    };
}

// The thread does not hold the mutex of the unit while it waits for that of the tables.
TEST(LockOrder, FirstTimeAlgebraLocksTheTablesAndThenTheUnit) {
    const CUnitPtr a = freshUnit(), b = freshUnit();
    for (const auto& [name, run] : algebraOf(a, b)) {
        SCOPED_TRACE(name);
        EXPECT_EQ(holdsWhileItWaits(CUnit::mutex(), Inside::lookupMutex(a), run), false);
    }
}

// A power beyond those that are cached is computed at each call.
TEST(LockOrder, LargePowersAlwaysLockTheTablesAndThenTheUnit) {
    const CUnitPtr a = freshUnit();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(holdsWhileItWaits(CUnit::mutex(), Inside::lookupMutex(a), [&] { a ^ 5000; }),
                  false);
        EXPECT_EQ(holdsWhileItWaits(CUnit::mutex(), Inside::lookupMutex(a), [&] { a->root(5000); }),
                  false);
    }
}

// A cached power is looked up and its unit unlocked before the dimensionless unit is locked.
TEST(LockOrder, CachedNegativePowersLockOneUnitAtATime) {
    const CUnitPtr a = freshUnit(), known = (a ^ -3) * a->root(-3);
    std::recursive_mutex &ofOne = Inside::lookupMutex(CProductUnit::one()),
                         &ofUnit = Inside::lookupMutex(a);
    EXPECT_EQ(holdsWhileItWaits(ofOne, ofUnit, [&] { a ^ -3; }), false);
    EXPECT_EQ(holdsWhileItWaits(ofOne, ofUnit, [&] { a->root(-3); }), false);
    EXPECT_EQ(holdsWhileItWaits(ofOne, CUnit::mutex(), [&] { a ^ -3; }), false);
}

// Computing the dimension of a product and reading a text use the caches of units with only the mutex
// of the tables locked.
TEST(LockOrder, FirstDimensionsAndFirstTextsLockOnlyTheTables) {
    const CUnitPtr a = freshUnit(), b = freshUnit(), product = (a * 1000.0) * b;
    std::recursive_mutex& ofUnit = Inside::lookupMutex(a);
    const string_t text = a->getSymbol() + "^5·" + b->getSymbol();
    EXPECT_EQ(holdsWhileItWaits(ofUnit, CUnit::mutex(), [&] { product->getDimension(); }),
              std::nullopt);
    EXPECT_EQ(holdsWhileItWaits(ofUnit, CUnit::mutex(), [&] { CUnit::fromString(text); }),
              std::nullopt);
    EXPECT_EQ(holdsWhileItWaits(CUnit::mutex(), ofUnit, [&] { (a ^ 7)->getDimension(); }), false);
}

// Building a product calls a client's unit with both locks held.
TEST(LockOrder, ProductsAreBuiltWithBothLocksHeld) {
    const auto v = freshClientUnit();
    const CUnitPtr u = freshUnit(), unit = v;
    std::vector<bool> areBothHeld;
    CUnitPtr receiver = u;
    v->Elements = [&]() -> std::vector<CUnitRationalPower> {
        areBothHeld.push_back(!isFree(CUnit::mutex()) && !isFree(Inside::lookupMutex(receiver)));
        return {CUnitRationalPower(unit, 1, 1)};
    };
    u->multiply(v);
    u->divide(v);
    receiver = v;
    for (const int n : {2, 5000, -3, -6000}) {
        v->pow(n);
        v->root(n);
    }
    EXPECT_THAT(areBothHeld, ::testing::AllOf(::testing::SizeIs(10), ::testing::Each(true)));
    v->Elements = nullptr;
}

// A cached result needs at most one lock, so it can be read while another thread holds the other
// one.
TEST(LockOrder, CachedProductsAndDimensionsNeedAtMostOneLock) {
    const CUnitPtr a = freshUnit(), b = freshUnit();
    const auto algebra = [&] {
        return std::vector<CUnitPtr>{a * b, a / b, a ^ 2, a ^ -3, a->root(3)};
    };
    const auto known = algebra();
    const CUnitPtr product = a * b;
    product->getDimension();
    {
        const Lock lock(CUnit::mutex());
        std::thread([&] { EXPECT_EQ(algebra(), known); }).join();
    }
    {
        const Lock lock(Inside::lookupMutex(a));
        std::thread([&] { EXPECT_EQ(product->getDimension(), product); }).join();
    }
}

// New units, and a product of them whose dimension has not been computed.
struct NewUnits {
    CUnitPtr A = freshUnit(), B = freshUnit();
    CUnitPtr Product = (A * 1000.0) / (B ^ 2);
    CUnitPtr Dimension = A / (B ^ 2);
};

constexpr int Threads = 4;
constexpr int Rounds = 200;

void multiplyAndDivide(const NewUnits& units) {
    const CUnitPtr product = units.A * units.B;
    ASSERT_EQ(product / units.B, units.A);
    ASSERT_EQ(units.B * units.A, product);
    ASSERT_EQ((product ^ -2)->root(-2), product);
}

// In each round half of the threads use the algebra of the units whose dimensions the others
// compute.
void runAlgebraAndDimensions(const std::vector<NewUnits>& rounds,
                             const std::function<void(const NewUnits&)>& algebra) {
    race(Threads, static_cast<int>(rounds.size()), [&](int thread, int round) {
        const NewUnits& units = rounds[static_cast<std::size_t>(round)];
        if (thread % 2 == 0) {
            algebra(units);
        } else {
            ASSERT_EQ(units.Product->getDimension(), units.Dimension);
            ASSERT_THAT(units.Product, ConvertsTo(units.Dimension, 2.5, 2500.0));
        }
    });
    EXPECT_EQ(test::brokenInvariant(), "");
}

TEST(LockOrder, NoDeadlockBetweenFirstTimeAlgebraAndFirstDimensions) {
    runAlgebraAndDimensions(std::vector<NewUnits>(Rounds), multiplyAndDivide);
}

TEST(LockOrder, NoDeadlockWhenFirstTimeAlgebraHoldsTheMutex) {
    runAlgebraAndDimensions(std::vector<NewUnits>(Rounds), [](const NewUnits& units) {
        const Lock lock(CUnit::mutex());
        multiplyAndDivide(units);
    });
}

// Two accessors build their unit at the first call. A thread that builds waits for the mutex. This
// thread holds the mutex, calls the same accessor and must not wait for the other thread.
TEST(LockOrder, AnAccessorLocksTheTablesBeforeItBuildsItsUnit) {
    for (CUnitPtr (*const accessor)() : {NonSI::Psi, NonSI::None}) {
        CUnitPtr here, there;
        EXPECT_TRUE(whileItWaits(
            CUnit::mutex(), [&] { there = accessor(); }, [&] { here = accessor(); }));
        EXPECT_NE(here, nullptr);
        EXPECT_EQ(here, there);
    }
}

// A unit whose functions throw when they are told to.
class CThrowing : public CClientUnit {
public:
    CThrowing(const string_t& symbol, int hash) : CClientUnit(symbol, hash) {}

    void throwFromNowOn() {
        IsThrowing = true;
        SystemUnit = BaseUnits = CtxDimension = []() -> CUnitPtr { fail(); };
        CtxToDimension = []() -> CConverterPtr { fail(); };
        Elements = []() -> std::vector<CUnitRationalPower> { fail(); };
    }

    string_t getSymbol() override {
        if (IsThrowing) {
            fail();
        }
        return CClientUnit::getSymbol();
    }

private:
    [[noreturn]] static void fail() { throw std::runtime_error("the client's unit fails"); }

    bool IsThrowing = false;
};

TEST(Locks, AreReleasedAfterAClientsUnitHasThrown) {
    const string_t symbol = freshSymbol(), spare = freshSymbol();
    const auto own = std::make_shared<CThrowing>(symbol, hashFromString(symbol));
    own->canonical();
    const CUnitPtr unit = own, a = freshUnit(), product = a * unit;
    own->throwFromNowOn();
    std::ostringstream stream;
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"product", [&] { a * unit->getSystemUnit(); }},
        {"product with it", [&] { SI::Meter() * unit; }},
        {"product of it", [&] { unit* a; }},
        {"quotient by it", [&] { SI::Meter() / unit; }},
        {"quotient of it", [&] { unit / a; }},
        {"power", [&] { unit ^ 3; }},
        {"large power", [&] { unit ^ 5000; }},
        {"negative power", [&] { unit ^ -2; }},
        {"root", [&] { unit->root(2); }},
        {"negative root", [&] { unit->root(-2); }},
        {"scaled", [&] { unit * 1000.0; }},
        {"scaled product", [&] { product * 1000.0; }},
        {"shifted", [&] { unit + 5.0; }},
        {"alternate", [&] { unit->alternate(spare); }},
        {"alternate of a product", [&] { product->alternate(spare); }},
        {"system unit of a product", [&] { product->getSystemUnit(); }},
        {"base units of a product", [&] { product->baseUnits(); }},
        {"dimension", [&] { unit->getDimension(); }},
        {"dimension of a product", [&] { product->getDimension(); }},
        {"compatible", [&] { a->isCompatible(unit); }},
        {"converter", [&] { product->getConverterTo(a); }},
        {"value", [&] { Convert(1, unit).to(a); }},
        {"label", [&] { CUnitFormat::labelFor(unit); }},
        {"prefixed labels", [&] { CUnitFormat::labelPrefixedUnit({KILO}, unit); }},
        {"text", [&] { unit->toString(); }},
        {"text of a product", [&] { product->toString(); }},
        {"ASCII text", [&] { CASCIIUnitFormat::instance()->format(product, ""); }},
        {"stream", [&] { stream << product; }},
        {"parsing", [&] { CUnit::fromString(symbol + "^2"); }},
        {"sum", [&] { CValueWithUnit(1, unit) + CValueWithUnit(1, a); }},
        {"order", [&] { (void)(CValueWithUnit(1, unit) < CValueWithUnit(1, a)); }},
    };
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        EXPECT_EQ(outcomeOf(operation), "std::runtime_error: the client's unit fails");
        EXPECT_TRUE(isFree(CUnit::mutex()));
        for (const CUnitPtr& each :
             {unit, a, product, CUnitPtr(SI::Meter()), CProductUnit::one()}) {
            EXPECT_TRUE(isFree(Inside::lookupMutex(each)));
        }
    }
}

TEST(Locks, AreFreeInAChildProcessOfAProgramWithoutThreads) {
    const CUnitPtr a = freshUnit(), b = freshUnit(), known = a * b;
    const pid_t child = forkAtRest();
    ASSERT_NE(child, -1);
    if (child == 0) {
        const CUnitPtr made = (known ^ 2) / SI::Second();
        const bool isRight = known / b == a &&
                             made->toString() == CUnit::fromString(made->toString())->toString() &&
                             test::brokenInvariant().empty();
        _exit(isRight ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace mensor
