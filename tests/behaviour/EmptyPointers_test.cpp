// EmptyPointers_test.cpp: every function refuses an empty pointer with a message that names the
// function, and changes no table. A lookup or a refused transformation may return an empty pointer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "mensor/AlternateUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::StrEq;
using ::testing::ThrowsMessage;

TEST(EmptyPointers, AreRefusedWithTheNameOfTheCalledFunction) {
    const CUnitPtr none;
    const CUnitPtr metre = SI::Meter();
    const CConverterPtr twice = std::make_shared<CMultiplyConverter>(2);
    struct Row {
        const char* Function;
        std::function<void()> Call;
    };
    const std::vector<Row> rows{
        {"CUnit::multiply", [&] { metre->multiply(none); }},
        {"CUnit::divide", [&] { metre->divide(none); }},
        {"CUnit::isCompatible", [&] { metre->isCompatible(none); }},
        {"CUnit::getConverterTo", [&] { metre->getConverterTo(none); }},
        {"CUnit::convertValueToUnit", [&] { metre->convertValueToUnit(1, none); }},
        {"operator+", [&] { none + 1.0; }},
        {"operator*", [&] { none * 2.0; }},
        {"operator*", [&] { none* metre; }},
        {"operator/", [&] { none / metre; }},
        {"operator^", [&] { none ^ 2; }},
        {"CUnitFormat::label", [&] { CUnitFormat::label(none, "x"); }},
        {"CUnitFormat::alias", [&] { CUnitFormat::alias(none, "x"); }},
        {"CUnitFormat::labelPrefixedUnit", [&] { CUnitFormat::labelPrefixedUnit({KILO}, none); }},
        {"CAlternateUnit::getInstance", [&] { CAlternateUnit::getInstance("x", none); }},
        {"CAlternateUnit::CAlternateUnit", [&] { CAlternateUnit("x", none); }},
        {"CTransformedUnit::getInstance", [&] { CTransformedUnit::getInstance(none, twice); }},
        {"CTransformedUnit::CTransformedUnit", [&] { CTransformedUnit(none, twice); }},
        {"CProductUnit::getProductInstance",
         [&] { CProductUnit::getProductInstance(metre, none); }},
        {"CProductUnit::getQuotientInstance",
         [&] { CProductUnit::getQuotientInstance(none, metre); }},
        {"CProductUnit::getPowInstance", [&] { CProductUnit::getPowInstance(none, 2); }},
        {"CProductUnit::getRootInstance", [&] { CProductUnit::getRootInstance(none, 2); }},
        {"CProductUnit::getInstance",
         [&] { CProductUnit::getInstance({CUnitRationalPower(none, 1, 1)}, {}); }},
        {"Convert::to", [&] { Convert(1, none).to(metre); }},
        {"Convert::to", [&] { CValueWithUnit(1, none).valueAs(metre); }},
        {"CUnit::convertValueToUnit", [&] { CValueWithUnit(1, metre).valueAs(none); }},
        {"CValueWithUnit::toString", [&] { CValueWithUnit(1, none).toString(); }},
    };
    const Tables before;
    for (const Row& row : rows) {
        EXPECT_THAT(row.Call, ThrowsMessage<std::invalid_argument>(StrEq(
                                  std::string(row.Function) + ": the unit is an empty pointer")));
    }
    EXPECT_EQ(Tables(), before);
}

TEST(EmptyPointers, EmptyConverterPointersAreRefused) {
    const CConverterPtr none;
    const Tables before;
    EXPECT_THAT([&] { CTransformedUnit::getInstance(SI::Meter(), none); },
                ThrowsMessage<std::invalid_argument>(
                    StrEq("CTransformedUnit::getInstance: the converter is an empty pointer")));
    EXPECT_THAT([&] { CTransformedUnit(SI::Meter(), none); },
                ThrowsMessage<std::invalid_argument>(StrEq(
                    "CTransformedUnit::CTransformedUnit: the converter is an empty pointer")));
    EXPECT_THAT(
        [&] { CCompound(none, CConverter::identity()); },
        ThrowsMessage<std::invalid_argument>(StrEq("A compound converter needs two converters")));
    EXPECT_EQ(Tables(), before);
}

TEST(EmptyPointers, AreEqualToNoObject) {
    EXPECT_FALSE(SI::Meter()->equals(nullptr));
    EXPECT_FALSE(SI::Newton()->equals(nullptr));
    EXPECT_FALSE((SI::Meter() * 1000)->equals(nullptr));
    EXPECT_FALSE((SI::Meter() ^ 2)->equals(nullptr));
    EXPECT_FALSE(CConverter::identity()->equals(nullptr));
    EXPECT_FALSE((SI::Meter() * 1000)->getConverterTo(SI::Meter())->equals(nullptr));
}

TEST(EmptyPointers, ANegativeIdIsRefused) {
    class CNumbered : public CTransformedUnit {
    public:
        CNumbered() : CTransformedUnit(SI::Meter(), std::make_shared<CMultiplyConverter>(3)) {}
    };
    const CUnitPtr numbered = std::make_shared<CNumbered>();
    numbered->setId(-1);
    EXPECT_THAT([&] { SI::Meter()->multiply(numbered); },
                ThrowsMessage<std::out_of_range>(StrEq("Id -1 of a unit is negative")));
}

}  // namespace
}  // namespace mensor
