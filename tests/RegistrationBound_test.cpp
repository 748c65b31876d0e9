// RegistrationBound_test.cpp: no more units are registered than the bound allows, and registered units are
// found.
#include "mensor/RegistrationBound.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

TEST(RegistrationBound, AllowsAsManyNewUnitsAsItsNumber) {
    const CUnitPtr known = SI::Meter()->multiply(11.0);
    CRegistrationBound bound(2);
    EXPECT_EQ(bound.used(), 0U);
    const CUnitPtr first = SI::Meter()->multiply(12.0);
    EXPECT_EQ(bound.used(), 1U);
    SI::Meter()->multiply(13.0);
    EXPECT_EQ(bound.used(), 2U);
    const Tables before;
    EXPECT_THROW(SI::Meter()->multiply(14.0), CTooManyUnits);
    EXPECT_THROW(SI::Meter() * SI::Meter()->multiply(12.0), std::length_error);
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(SI::Meter()->multiply(11.0), known);
    EXPECT_EQ(SI::Meter()->multiply(12.0), first);
    EXPECT_EQ(bound.used(), 2U);
}

TEST(RegistrationBound, EndsWithTheObject) {
    {
        const CRegistrationBound bound(0);
        EXPECT_THROW(SI::Meter()->multiply(12.0), CTooManyUnits);
    }
    EXPECT_NE(SI::Meter()->multiply(12.0), nullptr);
}

TEST(RegistrationBound, TheSmallestNestedBoundDecides) {
    const CRegistrationBound outer(1);
    {
        const CRegistrationBound wider(5);
        SI::Meter()->multiply(12.0);
        EXPECT_THROW(SI::Meter()->multiply(13.0), CTooManyUnits);
    }
    EXPECT_THROW(SI::Meter()->multiply(13.0), CTooManyUnits);
    EXPECT_EQ(outer.used(), 1U);
}

TEST(RegistrationBound, AcceptsTheLargestNumber) {
    const CRegistrationBound bound(static_cast<std::size_t>(-1));
    SI::Meter()->multiply(12.0);
    EXPECT_EQ(bound.used(), 1U);
}

}  // namespace
}  // namespace mensor
