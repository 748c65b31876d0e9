// ReadingCache_test.cpp: the cache of texts stays small, and never changes which unit a text gives.
//
// The operator new of this program counts the bytes, including those of the library.
#include "mensor_checked/ReadingCache.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/warm_up.h"
#include "support/Matchers.h"
#include "support/operator_new.h"
#include "support/thorough.h"

namespace mensor {
namespace {

using checked::readUnit;
using checked::tryReadUnit;

// Returns text number i of many that read as the kilometre.
std::string kilometre(int i) {
    return std::string(static_cast<std::size_t>(i % 50), ' ') + "km" +
           std::string(static_cast<std::size_t>(i / 50), ' ');
}

// A text that is read twice in a row is stored.
TEST(ReadingCache, GivesTheSameUnitsAfterItDroppedTexts) {
    EXPECT_THAT(checked::warmUp({"km/h"}), ::testing::IsEmpty());
    const CUnitPtr speed = readUnit("km/h");
    for (int i = 0; i < 2500; ++i) {
        for (int round = 0; round < 3; ++round) {
            ASSERT_EQ(readUnit(kilometre(i)), SI::Kilo(SI::Meter())) << i;
        }
    }
    EXPECT_EQ(readUnit("km/h"), speed);
}

TEST(ReadingCache, HoldsABoundedNumberOfTexts) {
    const auto readTwice = [](int i) {
        readUnit(kilometre(i));
        readUnit(kilometre(i));
    };
    readTwice(0);
    long before = liveBytes;
    for (int i = 1; i < 900; ++i) {
        readTwice(i);
    }
    const long bytesOfAText = (liveBytes - before) / 900;
    EXPECT_GT(bytesOfAText, 50) << "the texts are stored";
    before = liveBytes;
    long most = 0;
    for (int i = 900; i < 2500; ++i) {
        readTwice(i);
        most = std::max<long>(most, liveBytes - before);
    }
    EXPECT_LT(most, 500 * bytesOfAText) << "more than 1000 texts are stored";
}

// A text of the warm-up whose name has got another unit is stored anew.
TEST(ReadingCache, KeepsATextOfTheWarmUpAfterItsNameHasMoved) {
    CUnitFormat::label(SI::Meter()->multiply(3), "qq");
    EXPECT_THAT(checked::warmUp({"qq/s"}), ::testing::IsEmpty());
    CUnitFormat::label(SI::Meter()->multiply(3), "rr");
    CUnitFormat::label(SI::Meter()->multiply(5), "qq");
    const CUnitPtr speed = readUnit("qq/s");
    EXPECT_EQ(speed, SI::Meter()->multiply(5) / SI::Second());
    readUnit("qq/s");
    for (int i = 0; i < 1500; ++i) {
        readUnit(kilometre(i));
        readUnit(kilometre(i));
    }
    const long before = liveBlocks;
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(readUnit("qq/s"), speed);
    }
    EXPECT_EQ(liveBlocks, before) << "the text is still stored";
}

// A new symbol is no label, so the version of the names stays the same.
TEST(ReadingCache, GivesTheUnitOfANewSymbolThatWasReadAsAnotherUnit) {
    const std::string text = "\u03BCg/s";  // a Greek mu; the label has the micro sign
    const CUnitPtr before = readUnit(text);
    EXPECT_EQ(before, readUnit("\u00B5g/s"));
    EXPECT_EQ(readUnit(text), before);
    EXPECT_EQ(readUnit(text), before) << "the text is stored";
    const unsigned version = CUnitFormat::namesVersion();
    const CUnitPtr own = CBaseUnit::getInstance("\u03BCg");
    ASSERT_EQ(CUnitFormat::namesVersion(), version);
    EXPECT_EQ(readUnit(text), own / SI::Second());
}

TEST(ReadingCache, StoresNoLongText) {
    const std::string text = "km" + std::string(99, ' ');
    readUnit("km");
    readUnit(text);
    const long before = liveBlocks;
    for (int i = 0; i < 5; ++i) {
        readUnit(text);
    }
    EXPECT_EQ(liveBlocks, before);
    readUnit(text.substr(0, 100));
    readUnit(text.substr(0, 100));
    EXPECT_GT(liveBlocks, before) << "a text of 100 bytes is stored";
}

TEST(ReadingCache, GivesTheRightUnitsForMoreTextsThanItHolds) {
    const int count = test::casesOf(12000, 3000);
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i) {
        texts.push_back("m^" + std::to_string(1 + i % 23) + "·kg^" +
                        std::to_string(1 + i / 23 % 23) + "/s^" + std::to_string(1 + i / 529));
    }
    std::vector<CUnitPtr> units;
    for (const std::string& text : texts) {
        units.push_back(tryReadUnit(text).Unit);
    }
    EXPECT_GT(std::set<CUnitPtr>(units.begin(), units.end()).size(), texts.size() / 3);
    for (std::size_t i = 0; i < texts.size(); i += 7) {
        ASSERT_EQ(tryReadUnit(texts[i]).Unit, units[i]) << texts[i];
    }
}

}  // namespace
}  // namespace mensor
