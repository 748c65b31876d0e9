// Concurrency_test.cpp: threads that use something for the first time at once get one object. This
// is mainly for the tsan preset. In others it shows that the results agree. Locks_test.cpp tests
// the order of locks.
#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/BaseUnit.h"
#include "mensor/Converter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"
#include "support/invariants.h"
#include "support/many_texts.h"
#include "support/threads.h"

namespace mensor {
namespace {

using ::testing::AllOf;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::Ne;

constexpr int Threads = 4;
constexpr int Rounds = 30;  // a race goes wrong only now and then

// The results of `make` in several threads that call it at once.
template <class Make>
auto raceFor(Make make) {
    std::vector<decltype(make())> results(Threads);
    race(Threads, [&](int i) { results[static_cast<std::size_t>(i)] = make(); });
    return results;
}

// After each test the tables must be consistent.
class Concurrency : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(test::brokenInvariant(), ""); }
};

TEST_F(Concurrency, AnAccessorBuildsItsUnitOnce) {
    ASSERT_EQ(CUnitFormat::unitFor("psi"), nullptr) << "it must not be built yet";
    const std::size_t before = CUnit::instances().size();
    const std::vector<CUnitPtr> psis = raceFor(NonSI::Psi);
    EXPECT_THAT(psis, Each(AllOf(Ne(nullptr), NonSI::Psi())));
    EXPECT_EQ(CUnit::instances().size(), before + 1);
    EXPECT_EQ(CUnit::fromString("psi"), psis.front());
    const std::vector<CUnitPtr> nones = raceFor(NonSI::None);
    EXPECT_THAT(nones, Each(AllOf(Ne(nullptr), NonSI::None())));
}

TEST_F(Concurrency, SingletonsAreOneObjectInAllThreads) {
    EXPECT_THAT(raceFor(CASCIIUnitFormat::instance), Each(CASCIIUnitFormat::instance()));
    EXPECT_THAT(raceFor(CStandardUnitFormat::instance), Each(CStandardUnitFormat::instance()));
    EXPECT_THAT(raceFor(CConverter::identity), Each(CConverter::identity()));
    EXPECT_THAT(raceFor(CProductUnit::one), Each(CProductUnit::one()));
    EXPECT_THAT(raceFor([] { return &CUnit::mutex(); }), Each(&CUnit::mutex()));
    EXPECT_THAT(raceFor([] { return &CUnitFormat::aliasUnitMap(); }),
                Each(&CUnitFormat::aliasUnitMap()));
}

TEST_F(Concurrency, ABaseUnitIsRegisteredOnce) {
    for (int round = 0; round < Rounds; ++round) {
        const string_t symbol = freshSymbol();
        const std::size_t before = CUnit::instances().size();
        const auto units = raceFor([&] { return CBaseUnit::getInstance(symbol); });
        ASSERT_THAT(units, Each(AllOf(Ne(nullptr), CBaseUnit::getInstance(symbol))));
        ASSERT_EQ(CUnit::instances().size(), before + 1);
    }
}

TEST_F(Concurrency, UnitsRegisteredConcurrentlyHaveDifferentIds) {
    constexpr int UnitsOfEach = 100;
    std::vector<string_t> symbols;
    std::set<std::string> chosen;
    while (symbols.size() < Threads * UnitsOfEach) {
        symbols.push_back(freshSymbol());
        ASSERT_TRUE(chosen.insert(text(symbols.back())).second);
    }
    const int before = static_cast<int>(CUnit::instances().size());
    std::vector<CUnitPtr> units(symbols.size());
    race(Threads, [&](int thread) {
        for (std::size_t i = static_cast<std::size_t>(thread); i < symbols.size(); i += Threads) {
            units[i] = CBaseUnit::getInstance(symbols[i]);
        }
    });
    std::set<int> ids;
    for (const CUnitPtr& unit : units) {
        ids.insert(Inside::id(unit));
    }
    EXPECT_EQ(ids.size(), units.size());
    EXPECT_EQ(*ids.begin(), before + 1);
    EXPECT_EQ(*ids.rbegin(), before + Threads * UnitsOfEach);
}

TEST_F(Concurrency, TheSameAlgebraGivesTheSameObjects) {
    for (int round = 0; round < Rounds; ++round) {
        const CUnitPtr a = freshUnit(), b = freshUnit();
        const string_t symbol = freshSymbol();
        const std::vector<std::function<CUnitPtr()>> operations = {
            [&] { return a * b; },
            [&] { return b * a; },
            [&] { return a / b; },
            [&] { return a ^ 2; },
            [&] { return a ^ 3; },
            [&] { return a ^ -2; },
            [&] { return a->root(2); },
            [&] { return b->root(-3); },
            [&] { return a * 1000.0; },
            [&] { return a + 5.0; },
            [&] { return (a * b) / a; },
            [&] { return ((a ^ 2) / b)->root(2); },
            [&] { return (a / b)->alternate(symbol); },
        };
        const std::size_t count = operations.size();
        std::vector<std::vector<CUnitPtr>> results(Threads, std::vector<CUnitPtr>(count));
        race(Threads, [&](int thread) {
            for (std::size_t i = 0; i < count; ++i) {
                // Half of the threads use the same order. The others begin at other operations.
                const std::size_t at =
                    thread % 2 == 0 ? i : (i + static_cast<std::size_t>(thread)) % count;
                results[static_cast<std::size_t>(thread)][at] = operations[at]();
            }
        });
        for (std::size_t i = 0; i < count; ++i) {
            const CUnitPtr expected = operations[i]();
            ASSERT_TRUE(expected) << i;
            for (const std::vector<CUnitPtr>& ofThread : results) {
                ASSERT_EQ(ofThread[i], expected) << "operation " << i << " in round " << round;
            }
        }
        ASSERT_EQ((a * b) / a, b);
    }
}

TEST_F(Concurrency, AProductHasOneSystemUnit) {
    for (int round = 0; round < Rounds; ++round) {
        const CUnitPtr a = freshUnit(), b = freshUnit();
        const CUnitPtr product = (a * 1000.0) / ((b * 60.0) ^ 2);
        const auto systems = raceFor([&] { return product->getSystemUnit(); });
        ASSERT_THAT(systems, Each(a / (b ^ 2)));
    }
}

TEST_F(Concurrency, ABaseUnitHasOneDimension) {
    for (int round = 0; round < Rounds; ++round) {
        const CUnitPtr unit = freshUnit();
        ASSERT_THAT(raceFor([&] { return unit->getCtxDimension(); }), Each(unit));
        ASSERT_THAT(raceFor([&] { return unit->getCtxToDimension(); }),
                    Each(CConverter::identity()));
        const CUnitPtr other = freshUnit();
        ASSERT_THAT(raceFor([&] { return other->getDimension(); }), Each(other));
    }
}

TEST_F(Concurrency, AProductHasOneDimensionAndConvertsTheSameInAllThreads) {
    for (int round = 0; round < Rounds; ++round) {
        const CUnitPtr a = freshUnit(), b = freshUnit();
        const CUnitPtr fast = (a * 1000.0) / b, slow = a / b;
        const auto dimensions = raceFor([&] { return fast->getDimension(); });
        ASSERT_THAT(dimensions, Each(slow));
        const CUnitPtr volume = (a * 10.0) ^ 3, reference = a ^ 3;
        // The factor is computed with pow, which gives the same result in all threads.
        const double expected = 2.5 * 1000;
        ASSERT_THAT(raceFor([&] { return volume->convertValueToUnit(2.5, reference); }),
                    Each(WithinOneUlp(expected)));
    }
}

TEST_F(Concurrency, ReadersGetCorrectResultsWhileUnitsAreRegistered) {
    const CUnitPtr metre = SI::Meter(), kilometre = CUnit::fromString("km");
    const CUnitPtr speed = CUnit::fromString("km/h"), reference = SI::Meter() / SI::Second();
    const CConverterPtr shared = speed->getConverterTo(reference);
    const double expected = shared->convert(90);
    std::vector<string_t> symbols;
    for (int i = 0; i < 200; ++i) {
        symbols.push_back(freshSymbol());
    }
    race(Threads, [&](int thread) {
        for (const string_t& symbol : symbols) {
            switch (thread) {
                case 0: {
                    const CUnitPtr unit = CBaseUnit::getInstance(symbol);
                    CUnitFormat::label(unit, symbol + string_t("_l"));
                    CUnitFormat::alias(unit, symbol + string_t("_a"));
                    break;
                }
                case 1:
                    ASSERT_EQ(CUnit::fromString("km/h"), speed);
                    ASSERT_EQ(speed->toStdString(), "km/h");
                    break;
                case 2:
                    ASSERT_THAT(shared->convert(90), HasBitsOf(expected));
                    ASSERT_EQ(kilometre->convertValueToUnit(2.5, metre), 2500);
                    break;
                default:
                    ASSERT_EQ(CUnit::searchSymbol("m"), metre);
                    ASSERT_EQ(CUnitFormat::unitFor("km"), kilometre);
                    ASSERT_TRUE(speed->isCompatible(reference));
                    break;
            }
        }
    });
    for (const string_t& symbol : symbols) {
        ASSERT_EQ(CUnitFormat::unitFor(symbol + string_t("_a")), CUnit::searchSymbol(symbol));
    }
}

TEST_F(Concurrency, ThreadsMayAttachTheSameLabelAndAliasConcurrently) {
    for (int round = 0; round < Rounds; ++round) {
        const CUnitPtr unit = freshUnit();
        const string_t label = freshSymbol();
        ASSERT_THAT(raceFor([&] { return CUnitFormat::label(unit, label); }), Each(unit));
        ASSERT_EQ(unit->toString(), label);
        const string_t alias = freshSymbol();
        ASSERT_THAT(raceFor([&] { return CUnitFormat::alias(unit, alias); }), Each(unit));
        ASSERT_EQ(CUnitFormat::unitFor(alias), unit);
    }
}

TEST_F(Concurrency, OneOfSeveralUnitsGetsALabel) {
    for (int round = 0; round < Rounds; ++round) {
        const string_t label = freshSymbol();
        std::vector<CUnitPtr> units(Threads), winners(Threads);
        for (CUnitPtr& unit : units) {
            unit = freshUnit();
        }
        race(Threads, [&](int thread) {
            const auto i = static_cast<std::size_t>(thread);
            try {
                winners[i] = CUnitFormat::label(units[i], label);
            } catch (const std::invalid_argument&) {
                // Another unit has the label.
            }
        });
        const CUnitPtr holder = CUnitFormat::unitFor(label);
        for (std::size_t i = 0; i < units.size(); ++i) {
            ASSERT_EQ(winners[i], units[i] == holder ? holder : nullptr);
            ASSERT_EQ(CUnitFormat::labelFor(units[i]) == label, units[i] == holder);
        }
        ASSERT_THAT(units, Contains(holder));
    }
}

TEST_F(Concurrency, AllThreadsSeeTheSameUnitForAnAliasThatSeveralUnitsWant) {
    for (int round = 0; round < Rounds; ++round) {
        const string_t alias = freshSymbol();
        const std::vector<CUnitPtr> units = raceFor([&] {
            CUnitFormat::alias(freshUnit(), alias);
            return CUnitFormat::unitFor(alias);
        });
        ASSERT_THAT(units, Each(AllOf(Ne(nullptr), CUnitFormat::unitFor(alias))));
    }
}

TEST_F(Concurrency, AUnitKeepsTheLastOfItsConcurrentLabels) {
    for (int round = 0; round < Rounds; ++round) {
        const CUnitPtr unit = freshUnit();
        const std::vector<string_t> labels = raceFor([&] {
            string_t label = freshSymbol();
            CUnitFormat::label(unit, label);
            return label;
        });
        for (const string_t& label : labels) {
            ASSERT_EQ(CUnitFormat::unitFor(label), unit->toString() == label ? unit : nullptr);
        }
        ASSERT_THAT(labels, Contains(unit->toString()));
    }
}

// Reading texts, with the caches on, and with the caches off after a table has been handed out.
class ConcurrentReading : public Concurrency, public ::testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        if (!GetParam()) {
            CUnit::symbols();
        }
    }
};

INSTANTIATE_TEST_SUITE_P(, ConcurrentReading, ::testing::Bool(),
                         [](const auto& row) { return row.param ? "CachesOn" : "CachesOff"; });

TEST_P(ConcurrentReading, TheSameNewTextIsTheSameObject) {
    for (int round = 0; round < Rounds; ++round) {
        const CUnitPtr a = freshUnit(), b = freshUnit();
        const string_t text = a->getSymbol() + "²·" + b->getSymbol() + "^1:2/s·" + b->getSymbol();
        ASSERT_THAT(raceFor([&] { return CUnit::fromString(text); }),
                    Each((a ^ 2) * b->root(2) / SI::Second() / b));
    }
}

TEST_P(ConcurrentReading, MoreTextsThanTheCacheHoldsGiveTheirUnits) {
    const auto texts = test::manyTexts();
    ASSERT_GT(texts.size(), 512U);
    race(Threads, [&](int thread) {
        for (std::size_t i = 0; i < 2 * texts.size(); ++i) {
            const auto& [text, unit] =
                texts[(i * (2 * static_cast<std::size_t>(thread) + 1)) % texts.size()];
            ASSERT_EQ(CUnit::fromString(text), unit) << text;
            if (thread == 0 && i % 64 == 0) {
                CUnitFormat::alias(unit, freshSymbol());  // begins a new epoch of the cache
            }
        }
    });
}

// Labels move between units. The thread that moves one sees that at once, the others sooner or
// later.
TEST_P(ConcurrentReading, AMovingLabelReadsAsOneOfItsUnits) {
    const CUnitPtr first = freshUnit(), second = freshUnit();
    const string_t wanderer = freshSymbol(), firstAtRest = freshSymbol(),
                   secondAtRest = freshSymbol();
    const auto read = [](const string_t& text) {
        try {
            return CUnit::fromString(text);
        } catch (const std::invalid_argument&) {
            return CUnitPtr();
        }
    };
    race(Threads, 100, [&](int thread, int) {
        if (thread != 0) {
            ASSERT_THAT(read(wanderer), AnyOf(first, second, nullptr));
            ASSERT_THAT(read(firstAtRest), AnyOf(first, nullptr));
            ASSERT_THAT(first->toString(), AnyOf(first->getSymbol(), wanderer, firstAtRest));
            return;
        }
        CUnitFormat::label(first, wanderer);
        ASSERT_EQ(read(wanderer), first);
        CUnitFormat::label(first, firstAtRest);
        ASSERT_EQ(read(wanderer), nullptr);
        ASSERT_EQ(read(firstAtRest), first);
        CUnitFormat::label(second, wanderer);
        ASSERT_EQ(read(wanderer), second);
        CUnitFormat::label(second, secondAtRest);
        ASSERT_EQ(read(wanderer), nullptr);
    });
}

// Only the last owner destroys the chain.
TEST_F(Concurrency, AChainWithManyOwnersIsDestroyedOnce) {
    constexpr int Depth = 5000;
    for (int round = 0; round < Rounds; ++round) {
        const CConverterPtr leaf = std::make_shared<CAddConverter>(1);
        CConverterPtr chain = leaf;
        std::vector<CConverterPtr> held(Threads);
        for (int i = 1; i < Depth; ++i) {
            chain = std::make_shared<CCompound>(std::move(chain), leaf);
            if (i % (Depth / Threads) == 0) {
                held[static_cast<std::size_t>(i / (Depth / Threads))] = chain;
            }
        }
        held[0] = std::move(chain);
        race(Threads, [&](int thread) {
            CConverterPtr mine = std::move(held[static_cast<std::size_t>(thread)]);
            ASSERT_GE(mine->convert(0), 1);
            mine.reset();
        });
        ASSERT_EQ(leaf.use_count(), 1);
    }
}

}  // namespace
}  // namespace mensor
