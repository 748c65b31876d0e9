// Conversion_rounding_test.cpp: every conversion between units of the catalogue and of the packs gives
// the nearest double. GMP and MPFR compute the expected results.
//
// If MENSOR_TESTS_THOROUGH is set, the test tries ten million values, or a hundred thousand on ARM and
// under a sanitizer. Without it, it tries a sample.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "exact/DefinitionTable.h"
#include "exact/Judge.h"
#include "mensor_exact/Conversion.h"
#include "support/thorough.h"

namespace mensor::exact {
namespace {

constexpr long Thorough = test::IsSlow ? 100000 : 10000000;

// The approximate number of values. Half of them are random, and half of them are hard cases.
long cases() { return test::isThorough() ? Thorough : 20000; }

struct Unit {
    std::string Name;
    CMeaning Meaning;
    Reference Judged;
};

// All units of the table, by their dimensions.
std::map<std::map<std::string, int>, std::vector<Unit>> unitsByDimension() {
    CCatalogue catalogue = CCatalogue::builtIn();
    for (const ePack pack : {ePack::CUSTOMARY, ePack::SCIENCE, ePack::OFFSETS, ePack::COUNTING}) {
        catalogue = catalogue.with(pack);
    }
    const CCatalogue american = catalogue.with(ePack::US);
    const CCatalogue british = catalogue.with(ePack::IMPERIAL);
    const DefinitionTable table;
    std::map<std::map<std::string, int>, std::vector<Unit>> units;
    for (const DefinitionRow& row : table.rows()) {
        const CCatalogue& own = row.Set == "IMPERIAL" ? british : american;
        const Reference judged = table.meaningOf(row);
        units[judged.Dimensions].push_back({row.Name, own.meaning(row.Name).value(), judged});
    }
    return units;
}

// A double with any exponent, also subnormal. One in four has few bits.
double anyDouble(std::mt19937_64& random) {
    while (true) {
        std::uint64_t bits = random();
        if (random() % 4 == 0) {
            bits &= ~std::uint64_t{0} << (random() % 52);
        }
        const double x = doubleOf(bits);
        if (std::isfinite(x)) {
            return x;
        }
    }
}

// A double whose results are rarely zero, subnormal or infinite.
double usualDouble(std::mt19937_64& random) {
    const int exponent = static_cast<int>(random() % 120) - 60;
    return std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())), exponent - 63);
}

class Pair {
public:
    Pair(const Unit& from, const Unit& to)
        : m_Name(from.Name + " to " + to.Name), m_Conversion(from.Meaning, to.Meaning) {
        const Reference& a = from.Judged;
        const Reference& b = to.Judged;
        const mpq_class factor = a.Factor / b.Factor;
        if (a.Pi == b.Pi) {
            m_Linear =
                std::make_unique<LinearJudge>(factor, mpq_class(a.Offset * factor - b.Offset));
        } else {
            m_Irrational = std::make_unique<IrrationalJudge>(factor, 1, a.Pi - b.Pi);
        }
    }

    const LinearJudge* linear() const { return m_Linear.get(); }

    bool isRight(double x) {
        const double expected =
            m_Linear != nullptr ? m_Linear->convert(x) : m_Irrational->convert(x);
        const double found = m_Conversion.convert(x);
        ++Tried;
        if (bitsOf(found) != bitsOf(expected)) {
            ADD_FAILURE() << std::hexfloat << x << " " << m_Name << ": " << found << ", not "
                          << expected;
            return false;
        }
        return true;
    }

    static inline long Tried = 0;

private:
    std::string m_Name;
    CConversion m_Conversion;
    std::unique_ptr<LinearJudge> m_Linear;
    std::unique_ptr<IrrationalJudge> m_Irrational;
};

// Calls `work` with pairs of compatible units: with all of them, or with an evenly spread sample of
// about `most`.
template <class Work>
void forPairs(long most, const Work& work) {
    const auto units = unitsByDimension();
    long pairs = 0;
    for (const auto& [dimension, same] : units) {
        pairs += static_cast<long>(same.size() * same.size());
    }
    const long step = pairs / most + 1;
    long next = 0;
    for (const auto& [dimension, same] : units) {
        for (const Unit& from : same) {
            for (const Unit& to : same) {
                if (next++ % step == 0) {
                    Pair pair(from, to);
                    work(pair, pairs / step + 1);
                }
            }
        }
    }
}

TEST(Rounding, GivesTheNearestDoubleOfRandomDoublesBetweenAllUnits) {
    std::mt19937_64 random(15);
    Pair::Tried = 0;
    forPairs(cases() / 2, [&](Pair& pair, long pairs) {
        const long values = cases() / pairs / 2 + 1;
        for (long i = 0; i < values; ++i) {
            if (!pair.isRight(i % 2 == 0 ? anyDouble(random) : usualDouble(random))) {
                return;
            }
        }
    });
    RecordProperty("values", static_cast<int>(Pair::Tried));
    EXPECT_GE(Pair::Tried, cases() / 2);
}

TEST(Rounding, GivesTheNearestDoubleAtAndNextToTies) {
    std::mt19937_64 random(16);
    Pair::Tried = 0;
    forPairs(cases() / 800, [&](Pair& pair, long pairs) {
        if (pair.linear() == nullptr) {
            return;
        }
        const LinearJudge withoutOffset(mpq_class(pair.linear()->a(), pair.linear()->d()), 0);
        const long last = Pair::Tried + cases() / pairs / 2;
        // Some pairs have no hard cases, such as m and m.
        for (long before = -1; Pair::Tried < last && Pair::Tried != before;) {
            before = Pair::Tried;
            // One value of any size, and one of a size at which an offset matters.
            const int any = static_cast<int>(random() % 2046) - 1022;
            const int usual = static_cast<int>(random() % 60) - 30;
            for (const int exponent : {any, usual}) {
                for (const LinearJudge* judge : {pair.linear(), &withoutOffset}) {
                    for (const double x : hardCases(*judge, exponent)) {
                        if (!pair.isRight(x)) {
                            return;
                        }
                    }
                }
            }
        }
    });
    RecordProperty("values", static_cast<int>(Pair::Tried));
    EXPECT_GE(Pair::Tried, cases() / 4);
}

// The test above relies on hardCases(), which this one checks.
TEST(Rounding, HardCasesAreTiesAndNumbersNextToTies) {
    struct Case {
        mpq_class Factor, Offset;
        bool HasTies;
    };
    const Case list[] = {
        {mpq_class(18, 5), 0, true},                       // m/s to km/h
        {mpq_class(9, 5), 32, true},                       // °C to °F
        {mpq_class(1), mpq_class(27315, 100), false},      // °C to K
        {mpq_class("44482216152605/6451600000"), 0, true}  // lbf/in² to Pa
    };
    for (const Case& one : list) {
        const LinearJudge judge(one.Factor, one.Offset);
        int ties = 0;
        int near = 0;
        for (int exponent = -20; exponent < 20; ++exponent) {
            for (const double x : hardCases(judge, exponent)) {
                // The distance of the result from the middle between two doubles, in last places.
                const mpq_class exact = mpq_class(x) * one.Factor + one.Offset;
                const double y = judge.convert(x);
                const double place = std::nextafter(std::fabs(y), HUGE_VAL) - std::fabs(y);
                const mpq_class distance =
                    abs(abs(mpq_class(exact - mpq_class(y)) / mpq_class(place)) - mpq_class(1, 2));
                ties += distance == 0 ? 1 : 0;
                near += distance != 0 && distance < mpq_class(1, 1 << 20) ? 1 : 0;
            }
        }
        EXPECT_EQ(ties > 0, one.HasTies) << one.Factor << " " << ties;
        EXPECT_TRUE(ties > 0 || near > 20) << one.Factor << " " << near;
    }
}

}  // namespace
}  // namespace mensor::exact
