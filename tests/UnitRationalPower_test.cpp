// UnitRationalPower_test.cpp: the record of one factor of a product.
#include "mensor/UnitRationalPower.h"

#include <gtest/gtest.h>

#include <climits>
#include <type_traits>
#include <utility>

#include "mensor/AlternateUnit.h"
#include "mensor/SI.h"

namespace mensor {
namespace {

TEST(UnitRationalPower, IsEmptyWithBothNumbersZeroByDefault) {
    const CUnitRationalPower power;
    EXPECT_EQ(power.getUnit(), nullptr);
    EXPECT_EQ(power.getPow(), 0);
    EXPECT_EQ(power.getRoot(), 0);
    EXPECT_TRUE(power == CUnitRationalPower(nullptr, 0, 0));
}

TEST(UnitRationalPower, StoresTheExponentWithoutReducingIt) {
    const struct {
        int Pow, Root;
    } rows[] = {
        {1, 1}, {2, 2}, {-6, 4}, {4, -6}, {0, 1}, {1, 0}, {INT_MAX, INT_MIN}, {INT_MIN, INT_MAX}};
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.Pow << "/" << row.Root);
        CUnitRationalPower power(SI::Meter(), row.Pow, row.Root);
        EXPECT_EQ(power.getUnit(), SI::Meter());
        EXPECT_EQ(power.getPow(), row.Pow);
        EXPECT_EQ(power.getRoot(), row.Root);

        CUnitRationalPower other(SI::Second(), 7, 5);
        other.setPow(row.Pow);
        other.setRoot(row.Root);
        EXPECT_EQ(other.getUnit(), SI::Second());
        EXPECT_EQ(other.getPow(), row.Pow);
        EXPECT_EQ(other.getRoot(), row.Root);
    }
}

TEST(UnitRationalPower, EachSetterChangesOneNumber) {
    CUnitRationalPower power(SI::Meter(), 1, 2);
    power.setPow(-3);
    EXPECT_TRUE(power == CUnitRationalPower(SI::Meter(), -3, 2));
    power.setRoot(5);
    EXPECT_TRUE(power == CUnitRationalPower(SI::Meter(), -3, 5));
}

TEST(UnitRationalPower, IsEqualOnlyWithTheSameUnitPowerAndRoot) {
    const CUnitRationalPower power(SI::Meter(), 2, 2);
    EXPECT_TRUE(power == CUnitRationalPower(SI::Meter(), 2, 2));
    EXPECT_FALSE(power == CUnitRationalPower(SI::Second(), 2, 2));
    EXPECT_FALSE(power == CUnitRationalPower(nullptr, 2, 2));
    EXPECT_FALSE(power == CUnitRationalPower(SI::Meter(), 1, 2));
    EXPECT_FALSE(power == CUnitRationalPower(SI::Meter(), 2, 1));
}

TEST(UnitRationalPower, EqualityDoesNotReduce) {
    EXPECT_FALSE(CUnitRationalPower(SI::Meter(), 2, 2) == CUnitRationalPower(SI::Meter(), 1, 1));
    EXPECT_FALSE(CUnitRationalPower(SI::Meter(), 1, -1) == CUnitRationalPower(SI::Meter(), -1, 1));
}

TEST(UnitRationalPower, EqualityComparesUnitsByPointer) {
    const CUnitPtr one = std::make_shared<CAlternateUnit>("qq", SI::Meter());
    const CUnitPtr two = std::make_shared<CAlternateUnit>("qq", SI::Meter());
    ASSERT_TRUE(one->equals(two));
    EXPECT_FALSE(CUnitRationalPower(one, 1, 1) == CUnitRationalPower(two, 1, 1));
}

TEST(UnitRationalPower, IsAValueThatIsCopiedAndMoved) {
    const CUnitRationalPower power(SI::Meter(), 3, 4);
    CUnitRationalPower copy(power);
    EXPECT_TRUE(copy == power);
    copy.setPow(5);
    EXPECT_EQ(power.getPow(), 3);

    CUnitRationalPower assigned;
    assigned = power;
    EXPECT_TRUE(assigned == power);

    const CUnitRationalPower moved(std::move(assigned));
    EXPECT_TRUE(moved == power);
    CUnitRationalPower target;
    target = CUnitRationalPower(SI::Second(), 1, 1);
    EXPECT_TRUE(target == CUnitRationalPower(SI::Second(), 1, 1));
    EXPECT_TRUE(std::is_nothrow_move_constructible<CUnitRationalPower>::value);
}

TEST(UnitRationalPower, IsAnOwnerOfTheUnit) {
    CUnitPtr unit = std::make_shared<CAlternateUnit>("qq", SI::Meter());
    const std::weak_ptr<CUnit> watch = unit;
    CUnitRationalPower power(unit, 1, 1);
    unit.reset();
    EXPECT_FALSE(watch.expired());
    power = CUnitRationalPower();
    EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace mensor
