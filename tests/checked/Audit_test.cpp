// Audit_test.cpp: checks lists of units for collisions.
#include "mensor_checked/Audit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mensor_checked/Reading.h"

namespace mensor {
namespace {

using checked::audit;
using checked::CFinding;
using checked::CReadOptions;
using checked::eRefusal;
using ::testing::IsEmpty;

TEST(Audit, FindsEveryRefusedText) {
    const std::vector<CFinding> findings =
        audit({"N·s", "kg", "T·m", "W/m²/K", "1/(cm·K)", "m/s", "T·m/A", ""});
    ASSERT_EQ(findings.size(), 4U);
    EXPECT_EQ(findings[0].Index, 2U);
    EXPECT_EQ(findings[0].Refusal.Code, eRefusal::COLLISION);
    EXPECT_EQ(findings[0].Refusal.Text, "T·m");
    EXPECT_EQ(findings[1].Index, 3U);
    EXPECT_EQ(findings[1].Refusal.Code, eRefusal::SECOND_DIVISION);
    EXPECT_EQ(findings[2].Index, 4U);
    EXPECT_EQ(findings[2].Refusal.Code, eRefusal::DIMENSION_COLLISION);
    EXPECT_EQ(findings[3].Index, 7U);
    EXPECT_EQ(findings[3].Refusal.Code, eRefusal::EMPTY);
}

TEST(Audit, FindsTheSecondOfTwoCollidingUnits) {
    const std::vector<CFinding> findings = audit({"T·m", "N·s"});
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].Index, 1U);
}

TEST(Audit, FindsNothingInAListWithoutCollisions) {
    EXPECT_THAT(audit({"m", "km/h", "W/(m²·K)", "°C", "mmol/l", "V/√Hz", "km/h"}), IsEmpty());
    EXPECT_THAT(audit({}), IsEmpty());
}

TEST(Audit, UsesTheOptions) {
    CReadOptions options;
    options.Differences = true;
    options.Dimensionless = true;
    EXPECT_THAT(audit({"J/°C", ""}, options), IsEmpty());
}

}  // namespace
}  // namespace mensor
