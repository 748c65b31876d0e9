#include "mensor_codes/Codes.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "mensor_codes/OpcUa.h"
#include "mensor_exact/Reading.h"

using namespace mensor;
using codes::eSystem;
using exact::eRefusal;

namespace {

TEST(Codes, AreReadAsWhatTheyMean) {
    EXPECT_EQ(codes::read(eSystem::UNECE, "MQH").toString(), "1/3600 m³/s");
    EXPECT_EQ(codes::read(eSystem::UNECE, "CEL").toString(), "K + 273.15");
    EXPECT_EQ(codes::read(eSystem::OPCUA, "5067858").toString(), "m");
    EXPECT_EQ(codes::read(eSystem::SENML, "m").toString(), "m");
}

TEST(Codes, OfCountedThingsHaveADimensionOfTheirOwn) {
    const exact::CMeaning piece = codes::read(eSystem::UNECE, "H87");
    EXPECT_EQ(piece, exact::CMeaning::base("piece"));
    EXPECT_FALSE(piece.isCompatibleWith(exact::CMeaning()));
}

TEST(Codes, AreFoundForMeanings) {
    EXPECT_EQ(codes::codeFor(eSystem::UNECE, exact::read("m³/h")).Code, "MQH");
    EXPECT_EQ(codes::codeFor(eSystem::OPCUA, exact::read("m")).Code, "5067858");
}

TEST(Codes, ThatDoNotExistAreRefusedWithTheSystemsThatHaveThem) {
    const codes::CReading reading = codes::tryRead(eSystem::UNECE, "m");
    ASSERT_FALSE(reading);
    EXPECT_EQ(reading.Refusal.Code, eRefusal::UNKNOWN_CODE);
    EXPECT_THAT(codes::diagnose(reading.Refusal).message(),
                testing::AllOf(testing::StartsWith("\"m\" is no code of UN/CEFACT"),
                               testing::HasSubstr("SenML")));
}

}  // namespace
