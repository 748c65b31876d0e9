// FormatThenParse_test.cpp: what is written reads as the very object that was written.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/UnitFormat.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

// Everything that the catalogue has a name for.
std::vector<CUnitPtr> namedUnits() {
    NonSI::Psi();
    std::vector<CUnitPtr> units;
    for (const auto& [symbol, unit] : CUnit::symbols()) {
        units.push_back(unit);
    }
    for (const auto& [label, unit] : CUnitFormat::labelUnitMap()) {
        units.push_back(unit);
    }
    return units;
}

std::string ascii(const CUnitPtr& unit) {
    return text(CASCIIUnitFormat::instance()->format(unit, string_t()));
}

class Random {
public:
    explicit Random(std::uint32_t seed) : m_State(seed) {}

    // From 0 to `count` - 1.
    std::uint32_t below(std::size_t count) {
        m_State = m_State * 1664525U + 1013904223U;
        return static_cast<std::uint32_t>((m_State >> 8) % count);
    }

private:
    std::uint32_t m_State;
};

TEST(FormatThenParse, GivesEveryNamedUnit) {
    const std::vector<CUnitPtr> units = namedUnits();
    EXPECT_EQ(units.size(), 599U);
    for (const CUnitPtr& unit : units) {
        EXPECT_EQ(CUnit::fromString(unit->toString()), unit) << unit->toStdString();
        EXPECT_EQ(CUnit::fromString(ascii(unit)), unit) << ascii(unit);
    }
}

// Whether the factors, multiplied one after the other, are a product of just those factors at each
// step. They need not be: the hash alone decides what is one unit, and the first few may make a unit
// that was there before with other factors, which then merge otherwise with what follows.
bool isBuiltFactorByFactor(const std::vector<CUnitRationalPower>& factors) {
    CUnitPtr product = CProductUnit::one();
    for (std::size_t count = 1; count <= factors.size(); ++count) {
        const CUnitRationalPower& next = factors[count - 1];
        product = product->multiply(next.getUnit()->pow(next.getPow())->root(next.getRoot()));
        const std::vector<CUnitRationalPower> built = product->elements();
        if (!std::is_permutation(built.begin(), built.end(), factors.begin(),
                                 factors.begin() + static_cast<std::ptrdiff_t>(count))) {
            return false;
        }
    }
    return true;
}

// The factors in the order in which the standard notation writes them: divisors last.
std::vector<CUnitRationalPower> dividedLast(std::vector<CUnitRationalPower> factors) {
    std::stable_partition(factors.begin(), factors.end(),
                          [](const CUnitRationalPower& factor) { return factor.getPow() > 0; });
    return factors;
}

TEST(FormatThenParse, GivesEveryProductOfNamedUnits) {
    const std::vector<CUnitPtr> units = namedUnits();
    Random random(31415926);
    int checked = 0;
    int others = 0;
    for (int round = 0; round < 2000; ++round) {
        CUnitPtr product = CProductUnit::one();
        for (std::uint32_t factors = 1 + random.below(5); factors > 0; --factors) {
            const CUnitPtr& unit = units[random.below(units.size())];
            const int pow = static_cast<int>(random.below(9)) - 4;
            const int root = 1 + static_cast<int>(random.below(4));
            product = product->multiply(unit->pow(pow)->root(root));
        }
        if (product == CProductUnit::one()) {
            continue;  // its symbol is not one to be read
        }
        const std::vector<CUnitRationalPower> factors = product->elements();
        if (CUnit::fromString(product->toString()) != product) {
            ++others;
            EXPECT_FALSE(isBuiltFactorByFactor(dividedLast(factors))) << product->toStdString();
        }
        if (CUnit::fromString(ascii(product)) != product) {
            ++others;
            EXPECT_FALSE(isBuiltFactorByFactor(factors)) << ascii(product);
        }
        checked += 2;
    }
    EXPECT_GT(checked, 3500);
    EXPECT_LT(others, 60) << "too many accidents for a test to show anything";
}

}  // namespace
}  // namespace mensor
