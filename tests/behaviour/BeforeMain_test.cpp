// BeforeMain_test.cpp: threads that a client starts during the initialisation of its statics find
// the library initialised and can use it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "mensor/BaseUnit.h"
#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "support/invariants.h"
#include "support/threads.h"

namespace mensor {
namespace {

using ::testing::Each;

std::vector<CUnitPtr> firstUses() {
    const CUnitPtr franc = CBaseUnit::getInstance("Fr");
    CUnitFormat::alias(franc, "CHF");
    return {
        NonSI::Psi(),
        NonSI::None(),
        CUnitFormat::label(franc * 0.01, "Rp"),
        CUnit::fromString("Rp/(kW·h)"),
        franc / SI::Kilogram(),
    };
}

const std::vector<std::vector<CUnitPtr>> UsedBeforeMain = [] {
    std::vector<std::vector<CUnitPtr>> results(4);
    race(4, [&](int thread) { results[static_cast<std::size_t>(thread)] = firstUses(); });
    return results;
}();

TEST(BeforeMain, ThreadsGetTheSameUnitsAsInMain) {
    EXPECT_THAT(UsedBeforeMain, Each(firstUses()));
    EXPECT_EQ(UsedBeforeMain.front()[3]->toStdString(), "Rp/(kW·h)");
    EXPECT_EQ(CUnit::fromString("CHF/kg"), UsedBeforeMain.front()[4]);
    EXPECT_EQ(test::brokenInvariant(), "");
}

}  // namespace
}  // namespace mensor
