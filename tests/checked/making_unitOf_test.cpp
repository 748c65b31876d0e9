// making_unitOf_test.cpp: registered units that are made from meanings, such as those of codes.
#include "mensor_checked/making.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>

#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/Unit.h"
#include "mensor_codes/Codes.h"
#include "mensor_exact/Reading.h"

namespace mensor {
namespace {

using codes::eSystem;

CUnitPtr unitOf(eSystem system, const char* code) {
    return checked::unitOf(codes::read(system, code));
}

TEST(UnitOf, CodesConvertAsTheyMean) {
    EXPECT_DOUBLE_EQ(
        unitOf(eSystem::UNECE, "KMH")->getConverterTo(CUnit::fromString("m/s"))->convert(36.0),
        10.0);
    EXPECT_NEAR(unitOf(eSystem::UNECE, "FAH")->getConverterTo(SI::Celsius())->convert(98.6), 37.0,
                1e-12);
    EXPECT_DOUBLE_EQ(
        unitOf(eSystem::UCUM, "mg/dL")->getConverterTo(unitOf(eSystem::UNECE, "GL"))->convert(5.0),
        0.05);
    EXPECT_DOUBLE_EQ(
        unitOf(eSystem::UNECE, "DZN")->getConverterTo(unitOf(eSystem::UNECE, "PR"))->convert(1.0),
        6.0);
}

TEST(UnitOf, ACodeOfACatalogueUnitIsThatUnit) {
    EXPECT_EQ(unitOf(eSystem::UNECE, "MTR"), SI::Meter());
    EXPECT_EQ(unitOf(eSystem::SENML, "rad"), SI::Radian());
    EXPECT_EQ(unitOf(eSystem::UNECE, "C62"), CProductUnit::one());
}

TEST(UnitOf, AFactorBeyondTheRangeOfDoubleIsRefused) {
    const exact::CMeaning tiny =
        exact::read("m").scaled(exact::CFactor(exact::CFraction::ofText("1e-320")));
    EXPECT_THROW(checked::unitOf(tiny), std::invalid_argument);
}

TEST(UnitOf, AnOffsetBeyondTheRangeOfDoubleIsRefused) {
    const exact::CMeaning meaning = exact::read("K").shifted(exact::CFraction::ofText("1e400"));
    EXPECT_THAT([&] { checked::unitOf(meaning); },
                testing::ThrowsMessage<std::invalid_argument>(
                    "the size of the unit is beyond the range of doubles"));
}

// A code is refused if the registry would take its unit for another one.
TEST(UnitOf, EachCodeOfUneceIsConvertedCorrectlyOrRefused) {
    std::size_t made = 0;
    std::size_t refused = 0;
    for (const codes::CCode& code : codes::all(eSystem::UNECE)) {
        if (code.Definition.empty()) {
            continue;
        }
        const exact::CMeaning meaning = codes::read(eSystem::UNECE, code.Code);
        const double factor = meaning.factor().toDouble();
        try {
            const CUnitPtr unit = checked::unitOf(meaning);
            const CConverterPtr converter = unit->getConverterTo(unit->getDimension());
            const double size = converter->convert(1.0) - converter->convert(0.0);
            EXPECT_NEAR(size / factor, 1.0, 1e-12) << code.Code;
            ++made;
        } catch (const checked::CIdentityError&) {
            ++refused;
        }
    }
    EXPECT_GT(made, 1500U);
    EXPECT_LT(refused, 60U);
}

}  // namespace
}  // namespace mensor
