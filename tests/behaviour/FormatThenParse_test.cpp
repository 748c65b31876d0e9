// FormatThenParse_test.cpp: the text of a unit reads back as the same object.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/UnitFormat.h"
#include "support/Matchers.h"
#include "support/Notation.h"

namespace mensor {
namespace {

// All units of the catalogue that have a name.
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

    // Returns a number from 0 to `count` - 1.
    std::uint32_t below(std::size_t count) {
        m_State = m_State * 1664525U + 1013904223U;
        return static_cast<std::uint32_t>((m_State >> 8) % count);
    }

private:
    std::uint32_t m_State;
};

TEST(FormatThenParse, ReturnsEveryNamedUnit) {
    const std::vector<CUnitPtr> units = namedUnits();
    EXPECT_EQ(units.size(), 599U);
    for (const CUnitPtr& unit : units) {
        EXPECT_EQ(CUnit::fromString(unit->toString()), unit) << unit->toStdString();
        EXPECT_EQ(CUnit::fromString(ascii(unit)), unit) << ascii(unit);
    }
}

TEST(FormatThenParse, ReturnsEveryProductOfNamedUnits) {
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
            continue;  // its symbol "One" does not read as it
        }
        if (CUnit::fromString(product->toString()) != product) {
            ++others;
            EXPECT_FALSE(test::readsBack(product, test::Notation::STANDARD))
                << product->toStdString();
        }
        if (CUnit::fromString(ascii(product)) != product) {
            ++others;
            EXPECT_FALSE(test::readsBack(product, test::Notation::ASCII)) << ascii(product);
        }
        checked += 2;
    }
    EXPECT_GT(checked, 3500);
    EXPECT_LT(others, 60) << "with too many equal hash codes the test shows nothing";
}

}  // namespace
}  // namespace mensor
