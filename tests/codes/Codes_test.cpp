#include "mensor_codes/Codes.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "mensor_codes/OpcUa.h"
#include "mensor_exact/Reading.h"

using namespace mensor;
using codes::eSystem;
using exact::eRefusal;

namespace {

TEST(Codes, ReadGivesTheMeaning) {
    EXPECT_EQ(codes::read(eSystem::UNECE, "MQH").toString(), "1/3600 m³/s");
    EXPECT_EQ(codes::read(eSystem::UNECE, "CEL").toString(), "K + 273.15");
    EXPECT_EQ(codes::read(eSystem::OPCUA, "5067858").toString(), "m");
    EXPECT_EQ(codes::read(eSystem::SENML, "m").toString(), "m");
}

TEST(Codes, EachSystemHasALongAndAShortName) {
    for (const eSystem system : codes::AllSystems) {
        EXPECT_EQ(codes::systemNamed(codes::shortNameOf(system)), system);
    }
    EXPECT_STREQ(codes::shortNameOf(static_cast<eSystem>(99)), "") << "no system";
    EXPECT_EQ(codes::systemNamed("UCUM"), std::nullopt);
    EXPECT_EQ(codes::systemNamed(""), std::nullopt);
    EXPECT_STREQ(codes::nameOf(eSystem::UNECE), "UN/CEFACT");
    EXPECT_STREQ(codes::nameOf(eSystem::OPCUA), "OPC UA");
    EXPECT_STREQ(codes::nameOf(eSystem::SENML), "SenML");
}

TEST(Codes, TheNearestCodeIsGivenWithItsDeviation) {
    const exact::CMeaning psi = exact::read("psi");  // 6894.76 Pa; lbf/in² is 6894.757293... Pa
    const codes::CMatch match = codes::codeFor(eSystem::UNECE, psi);
    EXPECT_FALSE(match);
    EXPECT_EQ(match.Nearest, "PS");
    EXPECT_NEAR(match.Deviation, -3.926e-7, 1e-10);
    EXPECT_EQ(
        match.toString(eSystem::UNECE),
        "no code of UN/CEFACT means exactly this; the nearest is PS, which is 3.9e-05 % smaller");

    codes::CMatch above;
    above.Nearest = "PS";
    above.Deviation = 0.05;
    EXPECT_EQ(above.toString(eSystem::UNECE),
              "no code of UN/CEFACT means exactly this; the nearest is PS, which is 5 % larger");

    const codes::CMatch larger = codes::codeFor(eSystem::SENML, exact::read("dm"));
    EXPECT_EQ(larger.Nearest, "m");
    EXPECT_EQ(larger.Deviation, 9);
    EXPECT_EQ(codes::codeFor(eSystem::SENML, exact::read("µm")).Nearest, "mm");
    EXPECT_EQ(codes::codeFor(eSystem::SENML, exact::read("µm")).Deviation, 999);
    EXPECT_EQ(codes::codeFor(eSystem::SENML, exact::read("µm")).toString(eSystem::SENML),
              "no code of SenML means exactly this")
        << "a thousandfold is not near";
    EXPECT_EQ(codes::codeFor(eSystem::OPCUA, psi).Nearest, "20563");
}

TEST(Codes, TheNearestCodeHasTheSameDimension) {
    const codes::CMatch none = codes::codeFor(eSystem::SENML, exact::CMeaning::base("mango"));
    EXPECT_FALSE(none);
    EXPECT_EQ(none.Nearest, "");
    EXPECT_EQ(none.toString(eSystem::SENML), "no code of SenML means exactly this");
    // The radian does not count as 1 here: rad/s is not Hz.
    EXPECT_EQ(codes::codeFor(eSystem::SENML, exact::read("rad/s")).Nearest, "");
    EXPECT_EQ(codes::codeFor(eSystem::UNECE, exact::read("rad/s")).Code, "2A");
}

TEST(Codes, TheNearestCodeIsFoundForAVeryLargeFactor) {
    const exact::CMeaning huge = exact::read("m").scaled(
        exact::CFactor(exact::CFraction::ofText("1234567890123456789012345678901234567891")));
    const codes::CMatch match = codes::codeFor(eSystem::UNECE, huge);
    EXPECT_FALSE(match);
    EXPECT_EQ(match.Nearest, "C63");  // the parsec
}

TEST(Codes, TheNearestCodeIsNoSynonymAndKeepsTheRadian) {
    const exact::CFactor huge(exact::CFraction::ofText("1234567890123456789012345678901234567891"));
    // The nearest code is the largest angle and not the largest number.
    EXPECT_EQ(codes::codeFor(eSystem::UNECE, exact::read("rad").scaled(huge)).Nearest, "M44");
    const exact::CFactor nearly(exact::CFraction::ofText("1.0001"));
    EXPECT_EQ(codes::codeFor(eSystem::UNECE, exact::read("kg/m³").scaled(nearly)).Nearest, "KMQ");
    EXPECT_EQ(codes::codeFor(eSystem::UNECE, exact::read("kg/m³")).Synonyms,
              (std::vector<std::string>{"F23", "GL"}));
}

TEST(Codes, AnOffsetUnitHasACodeButNoNearestCode) {
    EXPECT_EQ(codes::codeFor(eSystem::UNECE, exact::read("°C")).Code, "CEL");
    EXPECT_EQ(codes::codeFor(eSystem::UNECE, exact::read("K")).Code, "KEL");
    const exact::CMeaning shifted = exact::read("K").shifted(exact::CFraction(100));
    EXPECT_EQ(codes::codeFor(eSystem::UNECE, shifted).Nearest, "");
}

TEST(Codes, ARefusalSuggestsCodesThatDifferInCase) {
    const codes::CReading reading = codes::tryRead(eSystem::UNECE, "kgm");
    ASSERT_FALSE(reading);
    EXPECT_THAT(codes::diagnose(reading.Refusal).Suggestions, testing::ElementsAre("KGM"));
}

// A program may describe a refusal of its own.
TEST(Codes, ARefusalNeverSuggestsTheRefusedText) {
    const auto suggestions = [](eSystem system, std::string_view text) {
        return codes::diagnose({eRefusal::UNKNOWN_CODE, system, text, {0, text.size()}, ""})
            .Suggestions;
    };
    EXPECT_THAT(suggestions(eSystem::UNECE, "MTR"), testing::IsEmpty());
    EXPECT_THAT(suggestions(eSystem::UNECE, "mTR"), testing::ElementsAre("MTR"));
    EXPECT_THAT(suggestions(eSystem::UCUM, "Cel"), testing::Not(testing::Contains("Cel")));
    EXPECT_THAT(suggestions(eSystem::UCUM, "cel"), testing::Contains("Cel"));
    EXPECT_THAT(suggestions(eSystem::UCUM, ""), testing::IsEmpty());
}

TEST(Codes, EmptyAndMalformedTextsAreRefused) {
    for (const eSystem system : {eSystem::UNECE, eSystem::OPCUA, eSystem::SENML}) {
        EXPECT_EQ(codes::tryRead(system, "").Refusal.Code, eRefusal::EMPTY);
        EXPECT_EQ(codes::tryRead(system, "\xff").Refusal.Code, eRefusal::UNKNOWN_CODE);
        EXPECT_EQ(codes::tryRead(system, std::string(1, '\0')).Refusal.Code,
                  eRefusal::UNKNOWN_CODE);
        EXPECT_THROW(codes::read(system, " MTR"), exact::CReadError);
    }
}

TEST(Codes, CountedThingsHaveADimensionOfTheirOwn) {
    const exact::CMeaning piece = codes::read(eSystem::UNECE, "H87");
    EXPECT_EQ(piece, exact::CMeaning::base("piece"));
    EXPECT_FALSE(piece.isCompatibleWith(exact::CMeaning()));
}

TEST(Codes, CodeForFindsTheCodeOfAMeaning) {
    EXPECT_EQ(codes::codeFor(eSystem::UNECE, exact::read("m³/h")).Code, "MQH");
    EXPECT_EQ(codes::codeFor(eSystem::OPCUA, exact::read("m")).Code, "5067858");
}

TEST(Codes, ARefusalNamesOtherSystemsThatHaveTheCode) {
    const codes::CReading reading = codes::tryRead(eSystem::UNECE, "m");
    ASSERT_FALSE(reading);
    EXPECT_EQ(reading.Refusal.Code, eRefusal::UNKNOWN_CODE);
    EXPECT_THAT(codes::diagnose(reading.Refusal).message(),
                testing::AllOf(testing::StartsWith("\"m\" is no code of UN/CEFACT"),
                               testing::HasSubstr("SenML")));
}

}  // namespace
