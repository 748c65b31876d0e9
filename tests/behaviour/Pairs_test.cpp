// Pairs_test.cpp: every ordered pair of units of the catalogue converts consistently or is refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "support/Catalogue.h"
#include "support/Matchers.h"
#include "support/thorough.h"

namespace mensor {
namespace {

constexpr std::size_t UNITS = 602;  // 29 symbols, 569 labels, one, aeon, psi, none

// 17 kinds of quantity have 21 units: one with its prefixes, or the kilogram, the gram and its 19.
// The others: luminous intensity and temperature 22, time 31, numbers 52, rates and doses 42,
// pressure 26, volume 7, acceleration 1.
constexpr std::size_t COMPATIBLE_PAIRS =
    17 * 21 * 21 + 2 * 22 * 22 + 31 * 31 + 52 * 52 + 2 * 42 * 42 + 26 * 26 + 7 * 7 + 1;

/// A unit, its known factor from outside the library, and its symbol in messages.
struct Member {
    CatalogueRow Row;
    CUnitPtr Unit;
    std::string Symbol;  // its symbol in the message of a refusal
    const CUnit* Kind;   // units with the same kind are compatible
};

// All names after load, and the units of accessors that have no name.
std::vector<Member> members() {
    std::vector<CatalogueRow> rows = catalogueRows();
    std::map<std::string, CUnitPtr> units;
    for (const CatalogueRow& row : rows) {
        units[row.Name] = CUnitFormat::unitFor(row.Name);
    }
    units["One"] = CProductUnit::one();
    units["aeon"] = NonSI::Aeon();
    units["psi"] = NonSI::Psi();
    units["none"] = NonSI::None();
    rows.push_back({"One", 0, "One", {}, 0, 0});
    rows.push_back({"aeon", 0, "s", {{'*', 1e9}, {'*', 31556952.0}}, 0, 0});
    rows.push_back({"psi", 0, "Pa", {{'*', 6894.76}}, 0, 0});
    rows.push_back({"none", 0, "One", {{'*', 1.0}}, 0, 0});

    // Other units of the same kind of quantity.
    const std::map<std::string, std::string> sameKind{{"rad", "One"}, {"sr", "One"}, {"bit", "One"},
                                                      {"Bq", "Hz"},   {"Sv", "Gy"},  {"lm", "cd"}};
    std::vector<Member> members;
    for (const CatalogueRow& row : rows) {
        const auto other = sameKind.find(row.System);
        const std::string kind = other == sameKind.end() ? row.System : other->second;
        const CUnitPtr system = kind == "One" ? CProductUnit::one() : CUnit::fromString(kind);
        members.push_back(
            {row, units.at(row.Name), row.isSystemUnit() ? row.Name : "", system.get()});
    }
    return members;
}

/// The allowed difference of two computations of a quantity, in its system unit: some roundings of
/// each intermediate result. A value in degrees Celsius plus its offset is such a result, too.
double rounding(const Member& from, const Member& to, const Member& by, double inSystem) {
    const bool hasOffset = from.Row.Name == "°C" || to.Row.Name == "°C" || by.Row.Name == "°C";
    return 16 * std::numeric_limits<double>::epsilon() *
           (std::fabs(inSystem) + (hasOffset ? 273.15 : 0.0));
}

TEST(Pairs, ThePairsIncludeTheUnitOfEveryAccessor) {
    std::set<CUnitPtr> units;
    for (const Member& member : members()) {
        units.insert(member.Unit);
    }
    EXPECT_EQ(units.size(), UNITS);
}

// The converter goes to the system unit and then to the other unit. So a value is multiplied by the
// factors of the first and the reciprocals of the second, rounded at each step.
TEST(Pairs, CompatibleUnitsConvertByTheirFactorsBitForBit) {
    const std::vector<Member> units = members();
    std::size_t pairs = 0;
    for (const Member& from : units) {
        for (const Member& to : units) {
            if (from.Kind != to.Kind) {
                continue;
            }
            ++pairs;
            const CConverterPtr converter = from.Unit->getConverterTo(to.Unit);
            if (from.Unit == to.Unit) {
                ASSERT_EQ(converter, CConverter::identity());
                continue;
            }
            for (const double x : {1.0, -2.5, 0.3}) {
                const double expected = to.Row.fromSystem(from.Row.toSystem(x));
                ASSERT_THAT(converter->convert(x), HasBitsOf(expected))
                    << x << " " << from.Row.Name << " in " << to.Row.Name;
            }
        }
    }
    EXPECT_EQ(pairs, COMPATIBLE_PAIRS);
}

TEST(Pairs, CompatibleUnitsConvertThereAndBackAndThroughAThirdUnit) {
    std::map<const CUnit*, std::vector<Member>> kinds;
    for (const Member& member : members()) {
        kinds[member.Kind].push_back(member);
    }
    EXPECT_EQ(kinds.size(), 26U);
    constexpr double x = 2.5;
    for (const auto& [kind, units] : kinds) {
        for (std::size_t i = 0; i < units.size(); ++i) {
            for (std::size_t j = 0; j < units.size(); ++j) {
                const Member& from = units[i];
                const Member& to = units[j];
                const Member& by = units[(i + 3 * j + 1) % units.size()];
                const double inSystem = from.Row.toSystem(x);
                const double tolerance = rounding(from, to, by, inSystem);

                const double there = from.Unit->convertValueToUnit(x, to.Unit);
                const double back = to.Unit->convertValueToUnit(there, from.Unit);
                ASSERT_NEAR(from.Row.toSystem(back), inSystem, tolerance)
                    << from.Row.Name << " in " << to.Row.Name << " and back";

                const double half = from.Unit->convertValueToUnit(x, by.Unit);
                const double whole = by.Unit->convertValueToUnit(half, to.Unit);
                ASSERT_NEAR(to.Row.toSystem(whole), to.Row.toSystem(there), tolerance)
                    << from.Row.Name << " in " << to.Row.Name << " through " << by.Row.Name;
            }
        }
    }
}

// The message names both by their symbols. A scaled unit has none, even if it has a label. On a slow platform
// only one of five incompatible pairs is tried to convert.
TEST(Pairs, IncompatibleUnitsAreRefusedByName) {
    const std::vector<Member> units = members();
    const std::size_t converters = CUnit::toDimensions().size();
    const std::size_t every = test::casesOf<std::size_t>(1, 5);
    std::size_t pairs = 0;
    for (const Member& from : units) {
        for (const Member& to : units) {
            ASSERT_EQ(from.Unit->isCompatible(to.Unit), from.Kind == to.Kind)
                << from.Row.Name << " and " << to.Row.Name;
            if (from.Kind == to.Kind) {
                continue;
            }
            if (++pairs % every != 0) {
                continue;
            }
            try {
                from.Unit->getConverterTo(to.Unit);
                FAIL() << from.Row.Name << " converts to " << to.Row.Name;
            } catch (const std::invalid_argument& error) {
                ASSERT_EQ(error.what(), from.Symbol + " is not compatible with " + to.Symbol +
                                            " in current context");
            }
        }
    }
    EXPECT_EQ(pairs, UNITS * UNITS - COMPATIBLE_PAIRS);
    EXPECT_LE(CUnit::toDimensions().size(), converters + 4);
}

}  // namespace
}  // namespace mensor
