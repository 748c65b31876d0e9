// warm_up_test.cpp: after a warm-up, no thread does first-time work. Without one, threads get correct results
// and do not deadlock. The preset tsan also runs these tests.
#include "mensor_checked/warm_up.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Choosing.h"
#include "mensor_checked/Differences.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/OwnUnits.h"
#include "mensor_checked/Packs.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/making.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"
#include "support/invariants.h"
#include "support/outcome.h"
#include "support/threads.h"

namespace mensor {
namespace {

using checked::readUnit;
using checked::readValue;
using checked::tryReadUnit;
using checked::warmUp;
using checked::writeValue;
using ::testing::Each;
using ::testing::IsEmpty;

const std::vector<std::string>& texts() {
    static const std::vector<std::string> Texts = {
        "km/h",  "W/(m²·K)", "mmol/l", "V/√Hz", "N·m",   "kg·m²/s²", "µg/(kg·min)", "kW·h",
        "l/min", "mg/dl",    "1/min",  "J/mol", "mΩ·m",  "kPa·s/l",  "cm²",         "m³/h",
        "Bq/kg", "mSv/h",    "cd/m²",  "A·h",   "bit/s", "°/s",      "m^(1/2)/s",   "mV/V"};
    return Texts;
}

// Reads, writes, verifies and converts a text, and makes a unit from it.
void use(const std::string& text, int thread) {
    const auto reading = tryReadUnit(text);
    ASSERT_TRUE(reading) << reading.Refusal->message();
    const CUnitPtr unit = reading.Unit;
    EXPECT_EQ(readUnit(writeValue(1.5, unit).substr(4)), unit);
    EXPECT_EQ(readValue("0.5 " + text).unit(), unit);
    checked::verify(unit, checked::meaningOf(unit));
    EXPECT_EQ(checked::convertDifference(2, unit, unit), 2);
    switch (thread % 4) {
        case 0: checked::power(unit, 3); break;
        case 1: checked::scaled(unit, 5); break;
        case 2: checked::choicesFor(unit); break;
        default: checked::readable({1e-5, unit}); break;
    }
    tryReadUnit(text + "/xyz");
    tryReadUnit("1/(m·K)");
}

TEST(WarmUp, ReturnsTheTextsThatAreRefused) {
    const auto findings = warmUp({"km/h", "xyz", "1/(m·K)", "m"});
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].Index, 1U);
    EXPECT_EQ(findings[1].Refusal.Code, checked::eRefusal::COLLISION);
    EXPECT_THAT(warmUp(texts()), IsEmpty());
}

TEST(WarmUp, ASecondWarmUpRegistersNothing) {
    warmUp(texts());
    const Tables before;
    EXPECT_THAT(warmUp(texts()), IsEmpty());
    EXPECT_EQ(Tables(), before);
}

TEST(WarmUp, LaterUseRegistersAndCachesNothing) {
    warmUp(texts());
    const Tables before;
    const std::size_t dimensions = CUnit::dimensions().size();
    const std::size_t converters = CUnit::toDimensions().size();
    for (const std::string& text : texts()) {
        const CUnitPtr unit = readUnit(text);
        for (const std::string& other : texts()) {
            if (unit->isCompatible(readUnit(other))) {
                unit->convertValueToUnit(1, readUnit(other));
            }
        }
        readValue("2.5 " + text);
        writeValue(2.5, unit);
        checked::convertDifference(1, unit, unit->getDimension());
    }
    for (const auto& [label, unit] : CUnitFormat::labelUnitMap()) {
        tryReadUnit(mensor::toStdString(label));
        unit->getConverterTo(unit->getSystemUnit());
    }
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(CUnit::dimensions().size(), dimensions);
    EXPECT_EQ(CUnit::toDimensions().size(), converters);
}

TEST(WarmUp, ThrowsBadAllocIfThereIsNoMemory) {
    static bool isMemoryLeft = true;  // static, because the unit lives longer
    const auto unit = freshClientUnit();
    unit->CtxDimension = []() -> CUnitPtr {
        if (!isMemoryLeft) {
            throw std::bad_alloc();
        }
        return SI::Meter();
    };
    isMemoryLeft = false;
    EXPECT_THROW(warmUp({}), std::bad_alloc);
    isMemoryLeft = true;
    EXPECT_THAT(warmUp({"km/h"}), IsEmpty());
}

// "qc·m" is the same object as "qa·s", which cannot be written once its factor has no name.
TEST(WarmUp, AcceptsAUnitWithoutAText) {
    checked::defineUnits("qa = 1.7 m\nqc = 1.7 s\n");
    readUnit("qa·s");
    CUnitFormat::detach(readUnit("qa"), "qa");
    EXPECT_EQ(checked::textOf(readUnit("qc·m")), std::nullopt);
    EXPECT_THAT(warmUp({"qc·m"}), IsEmpty());
}

// A client's own class of unit may hold the mutex of a unit for a long time. Readers of warm texts do not
// wait for it.
TEST(WarmUp, WarmReadersLockNoUnit) {
    const std::vector<std::string> warm = {"km/h", "W/(m²·K)", "mV/V", "kg·m²/s²"};
    warmUp(warm);
    std::set<CUnitPtr> units = {CProductUnit::one()};  // all units that the readers below use
    for (const std::string& text : warm) {
        for (const CUnitPtr& unit : {readUnit(text), readUnit(text)->getDimension()}) {
            units.insert(unit);
            for (const CUnitRationalPower& element : unit->elements()) {
                units.insert(element.getUnit());
                units.insert(element.getUnit()->getDimension());
            }
        }
    }
    for (const CUnitPtr& held : units) {
        std::atomic<bool> isDone{false};
        std::thread reader;
        {
            const std::lock_guard<std::recursive_mutex> lock(Inside::lookupMutex(held));
            reader = std::thread([&] {
                for (const std::string& text : warm) {
                    const CUnitPtr unit = readUnit(text);
                    readValue("2.5 " + text);
                    writeValue(2.5, unit);
                    unit->convertValueToUnit(1, unit->getDimension());
                }
                isDone = true;
            });
            const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
            while (!isDone && std::chrono::steady_clock::now() < end) {
                std::this_thread::yield();
            }
            EXPECT_TRUE(isDone)
                << "a warm reader waits for the lock of the unit with the hash code "
                << held->hashCode();
        }
        reader.join();
        ASSERT_FALSE(HasFailure());
    }
}

TEST(Threads, ReadTheSameTextsForTheFirstTime) {
    race(4, [](int thread) {
        for (const std::string& text : texts()) {
            use(text, thread);
        }
    });
}

TEST(Threads, ReadTheSameTextsInDifferentOrders) {
    race(4, [](int thread) {
        const std::size_t n = texts().size();
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t step = thread % 2 == 0 ? i : n - 1 - i;
            use(texts()[(step + static_cast<std::size_t>(thread) * 5) % n], thread);
        }
    });
}

TEST(Threads, ReadWhileAnotherWarmsUp) {
    race(4, [](int thread) {
        if (thread == 0) {
            EXPECT_THAT(warmUp(texts()), IsEmpty());
        } else {
            for (const std::string& text : texts()) {
                use(text, thread);
            }
        }
    });
}

TEST(Threads, ReadWarmTextsDuringAlgebra) {
    warmUp(texts());
    race(4, [](int thread) {
        for (int round = 0; round < 20; ++round) {
            for (const std::string& text : texts()) {
                const CUnitPtr unit = readUnit(text);
                if (thread % 2 == 0) {
                    unit->pow(round % 5 + 2);
                    unit->multiply(CUnitPtr(SI::Kelvin()));
                } else {
                    writeValue(round, unit);
                    unit->convertValueToUnit(1, unit->getDimension());
                }
            }
        }
    });
}

TEST(Threads, MakeTheSameUnitsNamesAndPacks) {
    const string_t base = freshSymbol(), label = freshSymbol(), alias = freshSymbol();
    const std::string defined = text(freshSymbol());
    std::vector<std::vector<CUnitPtr>> results(4);
    race(4, [&](int thread) {
        const CUnitPtr unit = checked::baseUnit(base);
        checked::registerPack(checked::ePack::CUSTOMARY);
        checked::defineUnits(defined + " = 9/10 ft");
        results[static_cast<std::size_t>(thread)] = {
            unit,
            checked::label(checked::scaled(unit, 7), label),
            checked::alias(checked::power(unit, 2), alias),
            readUnit("lbf/in²"),
            readUnit(defined + "/" + text(base)),
        };
    });
    EXPECT_THAT(results, Each(results.front()));
    EXPECT_EQ(test::brokenInvariant(), "");
}

TEST(Threads, ReadNewTextsDuringAlgebra) {
    race(4, static_cast<int>(texts().size()), [](int thread, int round) {
        const std::string& text = texts()[static_cast<std::size_t>(round)];
        if (thread % 2 == 0) {
            use(text, thread);
        } else {
            const CUnitPtr unit = readUnit(text);
            EXPECT_EQ((unit ^ 2)->root(2), unit);
            EXPECT_EQ(unit * SI::Ampere() / SI::Ampere(), unit);
        }
    });
    EXPECT_EQ(test::brokenInvariant(), "");
}

// A system unit that is its own dimension. Each virtual function calls `hook`.
class CHooked : public CClientUnit {
public:
    CHooked(const string_t& symbol, std::function<void()> hook)
        : CClientUnit(symbol, hashFromString(symbol)), m_Hook(std::move(hook)) {
        SystemUnit = BaseUnits = CtxDimension = [this] { return m_Hook(), shared_from_this(); };
        CtxToDimension = [this] { return m_Hook(), CConverter::identity(); };
        Elements = [this] { return m_Hook(), CUnit::elements(); };
    }

    string_t getSymbol() override {
        m_Hook();
        return CClientUnit::getSymbol();
    }

private:
    std::function<void()> m_Hook;
};

// Returns all functions of the companion that call a virtual function of `unit`, which is read as `text`.
std::vector<std::pair<const char*, std::function<void()>>> functionsOf(const CUnitPtr& unit,
                                                                       const std::string& text) {
    using namespace checked;
    const CValueWithUnit value(2.5, unit);
    const CDifference change(1.5, unit);
    return {
        {"alternateUnit", [=] { alternateUnit(freshSymbol(), unit); }},
        {"scaled", [=] { scaled(unit, 3); }},
        {"shifted", [=] { shifted(unit, 3); }},
        {"affine", [=] { affine(unit, 3, 4); }},
        {"product", [=] { product(SI::Meter(), unit); }},
        {"quotient", [=] { quotient(SI::Meter(), unit); }},
        {"power", [=] { power(unit, 3); }},
        {"root", [=] { root(unit, 3); }},
        {"label", [=] { checked::label(unit, freshSymbol()); }},
        {"verify", [=] { verify(unit, CMeaning::base(text)); }},
        {"readUnit", [=] { readUnit(text + "²"); }},
        {"readValue", [=] { readValue("2.5 " + text + "³"); }},
        {"textOf", [=] { textOf(unit); }},
        {"writeValue", [=] { writeValue(2.5, unit); }},
        {"writeValue of a value", [=] { writeValue(value); }},
        {"convertDifference", [=] { convertDifference(1, unit, SI::Meter()); }},
        {"difference", [=] { difference(value, CValueWithUnit(1, SI::Meter())); }},
        {"valueAs", [=] { change.valueAs(SI::Meter()); }},
        {"sum with a difference", [=] { CValueWithUnit(1, SI::Meter()) + change; }},
        {"without a difference", [=] { CValueWithUnit(1, SI::Meter()) - change; }},
        {"choicesFor", [=] { choicesFor(unit); }},
        {"readableUnit", [=] { readableUnit(1e-5, unit); }},
        {"readable", [=] { readable(value); }},
        {"audit", [=] { audit({text + "^4"}); }},
        {"warmUp", [=] { warmUp({text + "^5"}); }},
        {"defineUnits", [=] { defineUnits(mensor::toStdString(freshSymbol()) + " = 3 " + text); }},
    };
}

TEST(Companion, HoldsTheMutexWhenItCallsAUnit) {
    static int asked, free;  // static, because the units live longer
    for (std::size_t i = 0; i < functionsOf(SI::Meter(), "m").size(); ++i) {
        const string_t symbol = freshSymbol();
        const auto unit = std::make_shared<CHooked>(symbol, [&] {
            ++asked;
            free += isFree(CUnit::mutex()) ? 1 : 0;
        });
        unit->canonical();
        asked = free = 0;
        const auto [name, function] = functionsOf(unit, text(symbol))[i];
        SCOPED_TRACE(name);
        outcomeOf(function);
        EXPECT_GT(asked, 0);
        EXPECT_EQ(free, 0) << "of " << asked;
    }
}

TEST(Companion, ReleasesTheMutexWhenAUnitThrows) {
    static bool isThrowing;
    static int thrown;
    for (std::size_t i = 0; i < functionsOf(SI::Meter(), "m").size(); ++i) {
        const string_t symbol = freshSymbol();
        const auto unit = std::make_shared<CHooked>(symbol, [&] {
            if (isThrowing) {
                ++thrown;
                throw std::runtime_error("the client's unit fails");
            }
        });
        unit->canonical();
        const auto [name, function] = functionsOf(unit, text(symbol))[i];
        SCOPED_TRACE(name);
        isThrowing = true;
        thrown = 0;
        outcomeOf(function);
        EXPECT_GT(thrown, 0);
        EXPECT_TRUE(isFree(CUnit::mutex()));
        EXPECT_TRUE(isFree(Inside::lookupMutex(unit)));
        isThrowing = false;
    }
}

}  // namespace
}  // namespace mensor
