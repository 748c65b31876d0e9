// Invariants_test.cpp: the invariants of the tables hold, and the check finds each violation.
#include "support/invariants.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mensor/SI.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::HasSubstr, ::testing::StartsWith;

TEST(Invariants, HoldAfterLoading) {
    EXPECT_EQ(test::brokenName(), "");
    EXPECT_EQ(test::brokenInvariant(), "");
}

TEST(Invariants, HoldAfterAlgebraTextsAndLabels) {
    const CUnitPtr own = SI::Meter()->multiply(3.5);
    CUnitFormat::label(own, "first");
    CUnitFormat::label(own, "second");
    CUnitFormat::alias(own, "third");
    ((CUnit::fromString("kg·second/s^3:2") ^ 2) * SI::Volt())->getDimension();
    EXPECT_THROW(CUnit::fromString("first"), std::invalid_argument);
    EXPECT_EQ(test::brokenName(), "");
    EXPECT_EQ(test::brokenInvariant(), "");
}

TEST(Invariants, FindAUnitUnderAnotherHashCode) {
    Inside::hashCode(freshClientUnit()) += 1;
    EXPECT_THAT(test::brokenInvariant(), StartsWith("a different hash code of the unit under"));
}

TEST(Invariants, FindASkippedId) {
    freshClientUnit()->setId(static_cast<int>(CUnit::instances().size()) + 1);
    EXPECT_THAT(test::brokenInvariant(), StartsWith("the wrong id "));
}

TEST(Invariants, FindAnIdThatIsUsedTwice) {
    SI::Meter()->setId(Inside::id(SI::Second()));
    EXPECT_THAT(test::brokenInvariant(), HasSubstr(" for the second time"));
}

TEST(Invariants, FindASymbolWithoutItsUnit) {
    CUnit::instances().erase(freshClientUnit()->hashCode());
    EXPECT_THAT(test::brokenInvariant(), StartsWith("no registered unit has the symbol"));
}

TEST(Invariants, FindAUnitWithoutItsSymbol) {
    CUnit::symbols().erase("mol");
    EXPECT_EQ(test::brokenInvariant(), "the table of symbols lacks \"mol\"");
}

TEST(Invariants, FindALabelWithoutItsInverse) {
    CUnitFormat::unitLabelMap().erase(SI::Gram());
    EXPECT_EQ(test::brokenInvariant(), "the unit does not have the label \"g\"");
}

TEST(Invariants, FindAnInverseWithoutItsLabel) {
    CUnitFormat::labelUnitMap().erase("g");
    EXPECT_EQ(test::brokenInvariant(),
              "a unit has a label that belongs to another unit or to none");
}

TEST(Invariants, FindAnAliasOfAnUnregisteredUnit) {
    const string_t alias = freshSymbol();
    CUnitFormat::alias(CClientUnit::make("x", 4711), alias);
    EXPECT_THAT(test::brokenName(), StartsWith("no registered unit has the name"));
    EXPECT_THAT(test::brokenInvariant(), StartsWith("an unregistered unit has the alias"));
}

TEST(Invariants, FindACachedResultThatIsNotRegistered) {
    Inside::powLookUp(SI::Meter()).push_back(CClientUnit::make("x", 4711));
    EXPECT_THAT(test::brokenInvariant(), StartsWith("an unregistered result in a cache"));
}

TEST(Invariants, FindADimensionThatIsNotRegistered) {
    CUnit::dimensions()[SI::Meter()] = CClientUnit::make("x", 4711);
    EXPECT_THAT(test::brokenInvariant(), StartsWith("an unregistered unit or dimension"));
}

TEST(Invariants, CheckNamesWithoutSwitchingTheCachesOff) {
    const unsigned version = CUnitFormat::namesVersion();
    EXPECT_EQ(test::brokenName(), "");
    EXPECT_EQ(CUnitFormat::namesVersion(), version);
    EXPECT_NE(version, 0U);
}

}  // namespace
}  // namespace mensor
