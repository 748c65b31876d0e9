// Choosing_test.cpp: choicesFor() lists the units of a quantity, and readableUnit() picks one for a
// value.
#include "mensor_exact/Choosing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "mensor_exact/Reading.h"

namespace mensor::exact {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Not;

std::string readable(const char* value, const char* unit) {
    return readableUnit(CFraction::ofText(value), unit);
}

std::vector<std::string> namesFor(const char* unit,
                                  const CCatalogue& catalogue = CCatalogue::builtIn()) {
    std::vector<std::string> names;
    for (const CChoice& choice : choicesFor(read(unit, catalogue), catalogue)) {
        EXPECT_TRUE(choice.Meaning.isCompatibleWith(read(unit, catalogue)));
        EXPECT_EQ(read(choice.Name, catalogue), choice.Meaning);
        names.emplace_back(choice.Name);
    }
    return names;
}

TEST(Choices, AreTheCompatibleUnitsInOrderOfSize) {
    double before = 0;
    for (const CChoice& choice : choicesFor(read("Pa"))) {
        const double size = choice.Meaning.factor().toDouble();
        EXPECT_GE(size, before) << choice.Name;
        before = size;
    }
    EXPECT_THAT(namesFor("Pa"), AllOf(Contains("bar"), Contains("hPa"), Not(Contains("m"))));
    EXPECT_THAT(namesFor("K"), Contains("°C"));
}

TEST(Choices, IncludeAllUnitsOfOneMeaning) {
    EXPECT_THAT(namesFor("1/s"), AllOf(Contains("Hz"), Contains("Bq")));
}

TEST(Choices, OmitOtherSpellings) {
    EXPECT_THAT(namesFor("l"), AllOf(Contains("ml"), Not(Contains("mL")), Not(Contains("L"))));
    EXPECT_THAT(namesFor("m"), AllOf(Contains("\u00B5m"), Not(Contains("\u03BCm"))));
}

TEST(Choices, IncludeUnitsOfPacksAndOfTheProgram) {
    const CCatalogue catalogue =
        CCatalogue::builtIn().with(ePack::CUSTOMARY).with({{"smoot", "1.7018 m"}});
    EXPECT_THAT(namesFor("m", catalogue), AllOf(Contains("ft"), Contains("smoot")));
    EXPECT_THAT(namesFor("m"), Not(Contains("ft")));
}

TEST(ReadableUnit, HasTheLargestPrefixThatLeavesAtLeastOne) {
    EXPECT_EQ(readable("0.001", "m"), "mm");
    EXPECT_EQ(readable("0.000999", "m"), "\u00B5m");
    EXPECT_EQ(readable("1500", "m"), "km");
    EXPECT_EQ(readable("-1500", "m"), "km");
    EXPECT_EQ(readable("0.00025", "N"), "\u00B5N");
    EXPECT_EQ(readable("1000", "g"), "kg");
    EXPECT_EQ(readable("0.5", "kg"), "g");
    EXPECT_EQ(readable("5", "cm"), "mm") << "only powers of 1000";
    EXPECT_EQ(readable("1e-30", "s"), "ys") << "the smallest";
    EXPECT_EQ(readable("1e30", "s"), "Ys");
}

TEST(ReadableUnit, ComparesExactly) {
    EXPECT_EQ(readable("0.99999999999999999999", "km"), "m");
    EXPECT_EQ(readable("1.00000000000000000001", "km"), "km");
}

TEST(ReadableUnit, IsPrefixedOnlyIfItHasThatSize) {
    const CCatalogue catalogue =
        CCatalogue::builtIn().with({{"zork", "3 m"}, {"kzork", "3003 m"}, {"Mork", "7 m"}});
    EXPECT_EQ(readableUnit(CFraction(3003), "zork", catalogue), "zork");
    EXPECT_EQ(readableUnit(CFraction(1, 3003), "kzork", catalogue), "kzork");
    EXPECT_EQ(readableUnit(CFraction(1, 3003), "Mork", catalogue), "Mork") << "there is no ork";
}

TEST(ReadableUnit, KeepsTheUnitOfZeroAndUnitsWithoutPrefixes) {
    EXPECT_EQ(readable("0", "km"), "km");
    EXPECT_EQ(readable("0.001", "°C"), "°C");
    EXPECT_EQ(readable("0.001", "week"), "week");
    EXPECT_EQ(readable("0.001", "m/s"), "m/s");
    EXPECT_EQ(readableUnit(CFraction(5), "dazork",
                           CCatalogue::builtIn().with({{"zork", "3 m"}, {"dazork", "30 m"}})),
              "dazork")
        << "\"zork\" has no prefixes of powers of 1000";
}

}  // namespace
}  // namespace mensor::exact
