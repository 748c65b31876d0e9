// Certificate_test.cpp: a certificate lists the definitions, the factor and the offset of a conversion.
#include "mensor_exact/Certificate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "exact/expect_error.h"

namespace mensor::exact {
namespace {

using ::testing::ElementsAre, ::testing::HasSubstr, ::testing::Not;

CCatalogue packs() {
    return CCatalogue::builtIn().with(ePack::CUSTOMARY).with(ePack::OFFSETS).with(ePack::SCIENCE);
}

std::vector<std::string> namesOf(const CCertificate& certificate) {
    std::vector<std::string> names;
    for (const CCertifiedDefinition& definition : certificate.Definitions) {
        names.push_back(definition.Name);
    }
    return names;
}

TEST(Certificate, ListsEachDefinitionBeforeTheOnesThatItUses) {
    const CCertificate certificate = certify("mph", "km/h", packs());
    EXPECT_THAT(namesOf(certificate), ElementsAre("km", "mph", "mi", "ft", "m", "h", "min", "s"));
    EXPECT_EQ(certificate.Definitions[1].Text, "mi/h");
    EXPECT_EQ(certificate.Definitions[1].Source, "NIST SP 811 (2008), B.8");
    EXPECT_EQ(certificate.Definitions[4].Text, "");
    EXPECT_EQ(certificate.From, "mph");
    EXPECT_EQ(certificate.To, "km/h");
    EXPECT_EQ(certificate.Units, "m/s");
    EXPECT_TRUE(certificate.KeepsMarks);
    EXPECT_EQ(certificate.Version, MENSOR_VERSION);
}

TEST(Certificate, HasTheExactFactorAndOffset) {
    const CCertificate fahrenheit = certify("°F", "°C", packs());
    EXPECT_EQ(fahrenheit.Factor.Numerator, "5");
    EXPECT_EQ(fahrenheit.Factor.Denominator, "9");
    EXPECT_EQ(fahrenheit.Factor.Root, 1);
    EXPECT_EQ(fahrenheit.Factor.Pi, "0");
    EXPECT_FALSE(fahrenheit.Factor.IsNegative);
    EXPECT_EQ(fahrenheit.Offset.Text, "-160/9");
    EXPECT_TRUE(fahrenheit.Offset.IsNegative);
    EXPECT_EQ(fahrenheit.Offset.Numerator, "160");
    EXPECT_EQ(fahrenheit.Offset.Denominator, "9");
    const CCertificate parsec = certify("pc", "km", packs());
    EXPECT_EQ(parsec.Factor.Numerator, "96939420213600");
    EXPECT_EQ(parsec.Factor.Denominator, "1");
    EXPECT_EQ(parsec.Factor.Pi, "-1");
    EXPECT_EQ(parsec.Offset.Text, "0");
    EXPECT_EQ(parsec.Offset.Numerator, "0");
    EXPECT_EQ(parsec.Offset.Denominator, "1");
    const CCertificate root = certify("km^(1/2)", "m^(1/2)", packs());
    EXPECT_EQ(root.Factor.Numerator, "1000");
    EXPECT_EQ(root.Factor.Root, 2);
    EXPECT_EQ(certify("K, offset 1", "π K").Offset.Pi, "-1");
}

TEST(Certificate, WritesLinesForPeople) {
    EXPECT_EQ(certify("°F", "°C", packs()).toText(),
              "x °F = 5/9·x - 160/9 °C\n"
              "  °C = K, offset 273.15 (degree Celsius): SI brochure, 9th ed., table 4\n"
              "  °F = 5/9 K, offset 459.67 (degree Fahrenheit): NIST SP 811 (2008), B.8\n"
              "  K = base unit (kelvin): SI brochure, 9th ed., table 2\n"
              "  Only the result is rounded, once, to the nearest double, ties to even: by at most "
              "half a "
              "unit in its last place.\n"
              "  mensor " MENSOR_VERSION "\n");
    EXPECT_THAT(certify("°C", "K").toText(), HasSubstr("x °C = x + 273.15 K\n"));
    EXPECT_THAT(certify("rad/s", "Hz").toText(), HasSubstr("The two differ by radian"));
    EXPECT_THAT(certify("rev", "rad").toText(), Not(HasSubstr("The two differ")));
}

TEST(Certificate, WritesJsonForPrograms) {
    EXPECT_EQ(
        certify("%", "1").toJson(),
        "{\"from\": \"%\", \"to\": \"1\", \"units\": \"1\", \"keepsMarks\": true, "
        "\"definitions\": [{\"name\": \"%\", \"definition\": \"10^-2\", \"english\": \"per cent\", "
        "\"source\": \"SI brochure, 9th ed., 5.4.7\"}], "
        "\"factor\": {\"negative\": false, \"numerator\": \"1\", \"denominator\": \"100\", "
        "\"root\": 1, \"pi\": \"0\", \"text\": \"0.01\"}, "
        "\"offset\": {\"negative\": false, \"numerator\": \"0\", \"denominator\": \"1\", "
        "\"root\": 1, \"pi\": \"0\", \"text\": \"0\"}, "
        "\"rounded\": \"Only the result is rounded, once, to the nearest double, ties to even: by "
        "at most half a unit in its last place.\", \"version\": \"" MENSOR_VERSION "\"}");
    EXPECT_THAT(certify("m", "m").toJson(), HasSubstr("{\"name\": \"m\", \"definition\": null, "));
}

TEST(Certificate, EscapesQuotesBackslashesAndControlCharacters) {
    const CCatalogue own = CCatalogue::builtIn().with(
        {{"smoot\\", "1.7018 m", "a \"smoot\"", "line\nbreak\x01\x1F\t"}});
    EXPECT_THAT(certify("smoot\\", "m", own).toJson(),
                HasSubstr("{\"name\": \"smoot\\\\\", \"definition\": \"1.7018 m\", "
                          "\"english\": \"a \\\"smoot\\\"\", "
                          "\"source\": \"line\\u000abreak\\u0001\\u001f\\u0009\"}"));
}

TEST(Certificate, ALongChainOfDefinitionsNeedsLittleStack) {
    std::vector<std::string> names;
    for (int i = 0; i <= 20000; ++i) {
        names.push_back("u_" + std::to_string(i) + "_");
    }
    std::vector<CDefinition> definitions;
    for (std::size_t i = 0; i < names.size(); ++i) {
        definitions.push_back({names[i], i + 1 < names.size() ? names[i + 1] : "m"});
    }
    const CCatalogue own = CCatalogue::builtIn().with(definitions);
    EXPECT_EQ(certify("u_0_", "m", own).Definitions.size(), names.size() + 1);
}

TEST(Certificate, ThrowsTheErrorOfTheConversion) {
    expectError(
        eError::DIFFERENT_DIMENSIONS, [] { certify("bar", "m"); },
        "cannot convert bar to m: pressure and length");
    expectError(eError::UNKNOWN_NAME, [] { certify("furlong", "m"); });
}

TEST(Certificate, ListsUnitsOfPacksThatTheCatalogueLacks) {
    const CCatalogue catalogue = CCatalogue::builtIn().with(ePack::OFFSETS);
    ASSERT_FALSE(catalogue.find("lbf"));
    const CCertificate certificate = certify("psi_g", "Pa", catalogue);
    EXPECT_THAT(namesOf(certificate), ::testing::Contains("lbf"));
    EXPECT_EQ(certificate.Offset.Text, "101325");
}

TEST(Certificate, WritesADefinitionInBaseUnitsIfTheProgramRedefinesANameInIt) {
    const CCatalogue catalogue =
        packs().with({{"mi", "2 km", "a long mile", "", ePack::OWN, true}});
    const CCertificate certificate = certify("mph", "mi/h", catalogue);
    EXPECT_THAT(namesOf(certificate), ElementsAre("mi", "km", "h", "min", "mph", "m", "s"));
    EXPECT_EQ(certificate.Definitions[0].Text, "2 km");
    EXPECT_EQ(certificate.Definitions[4].Text, "0.44704 m/s")
        << "not \"mi/h\", since \"mi\" is the long mile now";
    EXPECT_EQ(certificate.Factor.Text, "0.804672");
}

}  // namespace
}  // namespace mensor::exact
