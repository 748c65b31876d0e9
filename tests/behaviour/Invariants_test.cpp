// Invariants_test.cpp: what holds of the tables at all times, and that its breaking is noticed.
#include "support/Invariants.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mensor/SI.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::StartsWith;

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

TEST(Invariants, NoticeTheUnitUnderAnotherHash) {
    Inside::hashCode(freshClientUnit()) += 1;
    EXPECT_THAT(test::brokenInvariant(), StartsWith("another hash code of the unit under"));
}

TEST(Invariants, NoticeTheSkippedNumber) {
    freshClientUnit()->setId(static_cast<int>(CUnit::instances().size()) + 1);
    EXPECT_THAT(test::brokenInvariant(), StartsWith("the number "));
}

TEST(Invariants, NoticeTheNumberThatCameTwice) {
    SI::Meter()->setId(Inside::id(SI::Second()));
    EXPECT_THAT(test::brokenInvariant(), StartsWith("again the number "));
}

TEST(Invariants, NoticeTheSymbolWithoutItsUnit) {
    CUnit::instances().erase(freshClientUnit()->hashCode());
    EXPECT_THAT(test::brokenInvariant(), StartsWith("no registered unit has the symbol"));
}

TEST(Invariants, NoticeTheUnitWithoutItsSymbol) {
    CUnit::symbols().erase("mol");
    EXPECT_EQ(test::brokenInvariant(), "not in the table of symbols: \"mol\"");
}

TEST(Invariants, NoticeTheLabelWithoutItsInverse) {
    CUnitFormat::unitLabelMap().erase(SI::Gram());
    EXPECT_EQ(test::brokenInvariant(), "the unit does not have the label \"g\"");
}

TEST(Invariants, NoticeTheInverseWithoutItsLabel) {
    CUnitFormat::labelUnitMap().erase("g");
    EXPECT_EQ(test::brokenInvariant(), "a unit has a label that is another unit's or nobody's");
}

TEST(Invariants, NoticeTheAliasOfAUnitThatIsNotRegistered) {
    const string_t alias = freshSymbol();
    CUnitFormat::alias(CClientUnit::make("x", 4711), alias);
    EXPECT_THAT(test::brokenName(), StartsWith("no registered unit has the name"));
    EXPECT_THAT(test::brokenInvariant(), StartsWith("the unit is not registered of the alias"));
}

TEST(Invariants, NoticeTheCachedResultThatIsNotCanonical) {
    Inside::powLookUp(SI::Meter()).push_back(CClientUnit::make("x", 4711));
    EXPECT_THAT(test::brokenInvariant(), StartsWith("a result that is not canonical in a cache"));
}

TEST(Invariants, NoticeTheDimensionThatIsNotCanonical) {
    CUnit::dimensions()[SI::Meter()] = CClientUnit::make("x", 4711);
    EXPECT_THAT(test::brokenInvariant(), StartsWith("a unit or dimension that is not canonical"));
}

TEST(Invariants, CanBeAskedOfNamesWithoutEndingWhatIsRemembered) {
    const unsigned version = CUnitFormat::namesVersion();
    EXPECT_EQ(test::brokenName(), "");
    EXPECT_EQ(CUnitFormat::namesVersion(), version);
    EXPECT_NE(version, 0U);
}

}  // namespace
}  // namespace mensor
