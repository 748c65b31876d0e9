// Caches_test.cpp: a cached answer never differs from the tables. Asking for a table switches the
// caches off, so the tests do it only where a comment or the name says so.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "mensor/BaseUnit.h"
#include "mensor/DerivedUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "support/ClientUnit.h"
#include "support/Fork.h"
#include "support/Matchers.h"
#include "support/many_texts.h"
#include "support/threads.h"

namespace mensor {
namespace {

CUnitPtr parsedTwice(const string_t& text) {
    const CUnitPtr first = CUnit::fromString(text);
    EXPECT_EQ(CUnit::fromString(text), first) << toStdString(text);
    EXPECT_EQ(CUnitFormat::parseUnit(text), first) << toStdString(text);
    return first;
}

// Runs `action` in another thread while this one holds the mutex. Never returns if `action` needs
// the mutex.
void runInAnotherThreadWithTheMutexHeld(const std::function<void()>& action) {
    ASSERT_NE(CUnitFormat::namesVersion(), 0U) << "the caches are off";
    const std::lock_guard<std::recursive_mutex> lock(CUnit::mutex());
    std::thread(action).join();
}

TEST(CachedTexts, FollowALabelThatMovesToAnotherUnit) {
    const CUnitPtr mile = SI::Meter() * 1609.344;
    CUnitFormat::label(mile, "mi");
    EXPECT_EQ(parsedTwice("mi"), mile);
    const CUnitPtr perHour = parsedTwice("mi/h");

    CUnitFormat::label(mile, "mile");
    EXPECT_THROW(CUnit::fromString("mi"), std::invalid_argument);
    EXPECT_THROW(CUnit::fromString("mi/h"), std::invalid_argument);
    EXPECT_EQ(parsedTwice("mile/h"), perHour);

    const CUnitPtr milli = SI::Meter() * 0.0009765625;
    CUnitFormat::label(milli, "mi");
    EXPECT_EQ(parsedTwice("mi"), milli);
}

TEST(CachedTexts, ANewAliasReplacesASymbolImmediately) {
    EXPECT_EQ(parsedTwice("K"), SI::Kelvin());
    CUnitFormat::alias(SI::Celsius(), "K");
    EXPECT_EQ(parsedTwice("K"), SI::Celsius());
    EXPECT_EQ(parsedTwice("K/s"), SI::Celsius() / SI::Second());
}

TEST(CachedTexts, ARefusedTextIsAcceptedAfterItsNameIsRegistered) {
    EXPECT_THROW(CUnit::fromString("psi"), std::invalid_argument);
    EXPECT_THROW(CUnit::fromString("psi"), std::invalid_argument);
    const CUnitPtr psi = NonSI::Psi();
    EXPECT_EQ(parsedTwice("psi"), psi);

    EXPECT_THROW(CUnit::fromString("Fr"), std::invalid_argument);
    const CUnitPtr franc = CBaseUnit::getInstance("Fr");
    EXPECT_EQ(parsedTwice("Fr"), franc);
}

TEST(CachedTexts, FollowTheChangesOfAClientInATable) {
    EXPECT_EQ(parsedTwice("km"), SI::Kilo(SI::Meter()));
    CUnitFormat::labelUnitMap()["km"] = SI::Second();
    EXPECT_EQ(parsedTwice("km"), SI::Second());
    CUnitFormat::labelUnitMap().erase("km");
    EXPECT_THROW(CUnit::fromString("km"), std::invalid_argument);
    CUnitFormat::aliasUnitMap()["km"] = SI::Ampere();
    EXPECT_EQ(parsedTwice("km"), SI::Ampere());
    CUnitFormat::aliasUnitMap().clear();
    CUnit::symbols()["km"] = SI::Mole();
    EXPECT_EQ(parsedTwice("km"), SI::Mole());
}

TEST(CachedTexts, FollowTheChangesInATableAfterOtherTablesWereHandedOut) {
    auto& units = CUnitFormat::labelUnitMap();
    const std::function<void()> others[] = {
        [] { CUnit::symbols(); },
        [] { CUnit::instances(); },
        [] { CUnit::dimensions(); },
        [] { CUnit::toDimensions(); },
        [] { CUnitFormat::unitLabelMap(); },
        [] { CUnitFormat::aliasUnitMap(); },
    };
    for (const auto& other : others) {
        other();
        EXPECT_EQ(parsedTwice("km"), SI::Kilo(SI::Meter()));
        units["km"] = SI::Second();
        EXPECT_EQ(parsedTwice("km"), SI::Second());
        units["km"] = SI::Kilo(SI::Meter());
    }
}

// Each accessor runs in a process of its own, since the caches stay off after the first.
TEST(CachedTexts, EachAccessorThatHandsOutATableSwitchesTheCachesOff) {
    const std::function<void()> accessors[] = {
        [] { CUnit::symbols(); },
        [] { CUnit::instances(); },
        [] { CUnit::dimensions(); },
        [] { CUnit::toDimensions(); },
        [] { CUnitFormat::unitLabelMap(); },
        [] { CUnitFormat::labelUnitMap(); },
        [] { CUnitFormat::aliasUnitMap(); },
    };
    for (const auto& accessor : accessors) {
        const ChildEnd end = inChild([&](std::string& text) {
            text = CUnitFormat::namesVersion() != 0 ? "on, then " : "";
            accessor();
            text += CUnitFormat::namesVersion() != 0 ? "on" : "off";
            return 0;
        });
        EXPECT_EQ(end.Status, 0);
        EXPECT_EQ(end.Text, "on, then off") << &accessor - accessors;
    }
}

TEST(CachedTexts, MoreTextsThanTheCacheHoldsAllReadCorrectly) {
    const auto texts = test::manyTexts();
    ASSERT_GT(texts.size(), 1000U);
    for (int round = 0; round < 3; ++round) {
        if (round == 2) {
            CUnit::symbols();  // hands the table out, so from here on every text is parsed
        }
        for (const auto& [text, unit] : texts) {
            ASSERT_EQ(CUnit::fromString(text), unit) << text;
        }
    }
}

TEST(CachedTexts, TextsThatDifferOnlyInZeroBytesOrLengthAreDifferent) {
    EXPECT_EQ(parsedTwice("m"), SI::Meter());
    EXPECT_EQ(parsedTwice(std::string("m\0", 2)), SI::Meter());  // a zero byte is a separator
    EXPECT_EQ(parsedTwice(std::string("m\0m", 3)), SI::Meter() ^ 2);
    EXPECT_EQ(parsedTwice(std::string("\0", 1)), CProductUnit::one());
    EXPECT_EQ(parsedTwice(""), CProductUnit::one());
    for (std::size_t length = 1; length < 70; ++length) {
        EXPECT_EQ(parsedTwice(std::string(length, ' ') + "m"), SI::Meter()) << length;
        EXPECT_EQ(parsedTwice("s" + std::string(length, ' ')), SI::Second()) << length;
    }
}

TEST(CachedTexts, AnAliasOfAnUnregisteredUnitReadsAsThatUnit) {
    const CUnitPtr unregistered = std::make_shared<CTransformedUnit>(
        SI::Meter(), std::make_shared<CMultiplyConverter>(0.3048));
    CUnitFormat::alias(unregistered, "ft");
    EXPECT_EQ(parsedTwice("ft"), unregistered);
}

TEST(CachedTexts, AnAliasOfAnUnregisteredUnitWithANewHashCodeReadsAsThatUnit) {
    const CUnitPtr unregistered = CClientUnit::make("", hashFromString(freshSymbol()));
    unregistered->calculateHashCode();
    CUnitFormat::alias(unregistered, "fathom");
    EXPECT_EQ(parsedTwice("fathom"), unregistered);
}

// Each alias begins a new epoch. The text then overwrites its old entry in the cache.
TEST(CachedTexts, NeedNoMutexAfterTheNamesHaveChanged) {
    for (const std::string& text : {std::string("km/h"), std::string(30, ' ') + "m"}) {
        for (int i = 0; i < 3; ++i) {
            CUnitFormat::alias(SI::Meter(), "name " + std::to_string(i) + text);
            const CUnitPtr unit = CUnit::fromString(text);
            runInAnotherThreadWithTheMutexHeld([&] { EXPECT_EQ(CUnit::fromString(text), unit); });
        }
    }
}

TEST(CachedDimensions, NeedNoMutex) {
    const CUnitPtr from = SI::Meter() * 201.168, to = SI::Meter() * 20.1168;
    SI::Meter()->setDimension(nullptr, nullptr);  // clears what registering them has cached
    const double value = from->convertValueToUnit(2, to);
    runInAnotherThreadWithTheMutexHeld([&] {
        EXPECT_EQ(from->convertValueToUnit(2, to), value);
        EXPECT_TRUE(from->isCompatible(to));
        EXPECT_TRUE(to->isCompatible(from));
    });
}

TEST(CachedDimensions, FollowABaseUnitWhoseDimensionIsSet) {
    const CUnitPtr km = CUnit::fromString("km");
    const CUnitPtr mbar = CUnit::fromString("mbar");
    EXPECT_EQ(km->convertValueToUnit(2.5, SI::Meter()), 2500);
    EXPECT_EQ(km->convertValueToUnit(2.5, SI::Meter()), 2500);
    EXPECT_FALSE(km->isCompatible(SI::Second()));
    const CConverterPtr before = km->getConverterTo(SI::Meter());

    // The dimension of the metre becomes the second: a length is the time that light needs for it.
    SI::Meter()->setDimension(SI::Second(), std::make_shared<CMultiplyConverter>(1 / 299792458.0));
    EXPECT_TRUE(km->isCompatible(SI::Second()));
    EXPECT_EQ(km->convertValueToUnit(299792.458, SI::Second()),
              299792.458 * 1000 * (1 / 299792458.0));
    EXPECT_EQ(SI::Second()->getConverterTo(km)->convert(0), 0);
    EXPECT_FALSE(mbar->isCompatible(CUnit::fromString("m²")));
    EXPECT_EQ(before->convert(2.5), 2500);

    SI::Meter()->setDimension(nullptr, nullptr);
    EXPECT_FALSE(km->isCompatible(SI::Second()));
    EXPECT_THROW(km->getConverterTo(SI::Second()), std::invalid_argument);
    EXPECT_EQ(km->convertValueToUnit(2.5, SI::Meter()), 2500);
}

TEST(CachedDimensions, FollowTheChangesOfAClientInTheTables) {
    const CUnitPtr km = CUnit::fromString("km");
    EXPECT_EQ(km->convertValueToUnit(1, SI::Meter()), 1000);
    CUnit::toDimensions()[km] = std::make_shared<CMultiplyConverter>(7);
    EXPECT_EQ(km->convertValueToUnit(1, SI::Meter()), 7);
    CUnit::dimensions()[km] = SI::Second();
    EXPECT_FALSE(km->isCompatible(SI::Meter()));
    CUnit::dimensions().clear();
    CUnit::toDimensions().clear();
    EXPECT_EQ(km->convertValueToUnit(1, SI::Meter()), 1000);
}

TEST(CachedDimensions, AreNotReadFromANodeThatAClientExtracts) {
    const CUnitPtr km = CUnit::fromString("km");
    EXPECT_EQ(km->convertValueToUnit(1, SI::Meter()), 1000);
    ASSERT_NE(CUnitFormat::namesVersion(), 0U) << "the caches are off";
    auto entry = CUnit::toDimensions().extract(km);
    ASSERT_FALSE(entry.empty());
    entry.mapped() = std::make_shared<CMultiplyConverter>(7);
    EXPECT_EQ(km->convertValueToUnit(1, SI::Meter()), 1000);
}

TEST(CachedDimensions, AUnitWhoseRegistrationIsRefusedIsNotCached) {
    // A kind of unit that computes its converter while it is registered, as transformed units do.
    // Its registration is refused because of its symbol.
    class CRefused : public CDerivedUnit {
    public:
        CRefused() : CDerivedUnit("m") {}
        static void registerNow(const CUnitPtr& unit) { CUnit::getInstance(unit); }
        void calculateHashCode() override { m_HashCode = 123454321; }
        CUnitPtr getCtxDimension() override { return SI::Meter(); }
        CUnitPtr getSystemUnit() override { return SI::Meter(); }
        bool equals(CUnitPtr) const override { return false; }
        CConverterPtr getCtxToDimension() override {
            return std::make_shared<CMultiplyConverter>(++m_Asked);
        }
        string_t getSymbol() override {
            getConverterTo(SI::Meter());
            return m_Symbol;
        }

    private:
        int m_Asked = 0;
    };
    const CUnitPtr refused = std::make_shared<CRefused>();
    EXPECT_THROW(CRefused::registerNow(refused), std::logic_error);
    EXPECT_EQ(refused.use_count(), 1);                          // no table owns it
    EXPECT_EQ(refused->convertValueToUnit(1, SI::Meter()), 2);  // computed again
    EXPECT_EQ(refused->convertValueToUnit(1, SI::Meter()), 2);
}

// A unit whose registration is refused, because the metre has its symbol.
std::shared_ptr<CClientUnit> refusedUnit() {
    auto unit = CClientUnit::make("m", 123454321);
    unit->CtxDimension = [] { return SI::Meter(); };
    unit->CtxToDimension = [] { return std::make_shared<CMultiplyConverter>(3); };
    return unit;
}

TEST(CachedDimensions, ARefusedRegistrationKeepsEarlierTableEntries) {
    const auto unit = refusedUnit();
    EXPECT_EQ(unit->convertValueToUnit(2, SI::Meter()), 6);
    EXPECT_THROW(unit->canonical(), std::logic_error);
    EXPECT_EQ(CUnit::dimensions().count(unit), 1U);
    EXPECT_EQ(CUnit::toDimensions().count(unit), 1U);
    EXPECT_EQ(unit->convertValueToUnit(2, SI::Meter()), 6);
    EXPECT_THAT(unit->Asked, ::testing::ElementsAre("getCtxDimension", "getCtxToDimension",
                                                    "calculateHashCode", "getSymbol"));
}

// AddressSanitizer and ThreadSanitizer report a use after free here, if there is one.
TEST(CachedDimensions, AUnitConvertsWhileAnotherThreadFailsToRegisterIt) {
    race(2, 500, [](int thread, int round) {
        static std::shared_ptr<CClientUnit> unit;
        static std::atomic<int> ready{-1};
        if (thread == 0) {
            unit = refusedUnit();
            // If this is the first conversion, the refused registration removes its table entries.
            unit->Symbol = [of = unit.get()] {
                of->convertValueToUnit(1, SI::Meter());
                return string_t("m");
            };
            ready = round;
            ASSERT_THROW(unit->canonical(), std::logic_error);
        } else {
            while (ready < round) {
                std::this_thread::yield();
            }
            for (int i = 0; i < 10; ++i) {
                ASSERT_EQ(unit->convertValueToUnit(2, SI::Meter()), 6);
                ASSERT_EQ(unit->getConverterTo(SI::Meter())->convert(2), 6);
                ASSERT_TRUE(unit->isCompatible(SI::Meter()));
            }
        }
    });
}

TEST(CachedTexts, ConcurrentReadersSeeOneOfTheTwoUnitsOfAMovingLabel) {
    const CUnitPtr first = SI::Meter() * 0.3048;
    const CUnitPtr second = SI::Meter() * 0.3048006096;
    CUnitFormat::label(first, "foot");
    CUnitFormat::label(second, "survey");
    std::vector<std::thread> readers;
    std::atomic<int> wrong{0};
    std::atomic<bool> stop{false};
    for (int i = 0; i < 3; ++i) {
        readers.emplace_back([&] {
            while (!stop) {
                try {
                    const CUnitPtr unit = CUnit::fromString("foot");
                    wrong += unit != first && unit != second;
                } catch (const std::invalid_argument&) {
                    // between the two labels
                }
                wrong += CUnit::fromString("km/h") != CUnit::fromString("km/h");
            }
        });
    }
    for (int i = 0; i < 300; ++i) {
        const CUnitPtr& holder = i % 2 == 0 ? first : second;
        const CUnitPtr& next = i % 2 == 0 ? second : first;
        CUnitFormat::label(holder, "away");
        CUnitFormat::label(next, "foot");
        wrong += CUnit::fromString("foot") != next;
        CUnitFormat::label(holder, "survey");
    }
    stop = true;
    for (std::thread& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace mensor
