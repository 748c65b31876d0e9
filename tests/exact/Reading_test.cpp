// Reading_test.cpp: the exact library reads texts of units and values, or refuses them with a reason.
#include "mensor_exact/Reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Reading.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/Spelling.h"
#include "support/Everyday.h"
#include "support/Mathematics.h"
#include "support/documents.h"
#include "support/operator_new.h"
#include "support/threads.h"

namespace mensor::exact {
namespace {

using test::documentTables;
using test::everyday;
using test::Row;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const char* const Page = "reading.md";

CCatalogue builtIn() { return CCatalogue::builtIn(); }

// The built-in catalogue with one more unit.
CCatalogue withUnit(const char* name, const char* definition) {
    return builtIn().with({{name, definition}});
}

CReadOptions differences() {
    CReadOptions options;
    options.Differences = true;
    return options;
}

CReadOptions dimensionless() {
    CReadOptions options;
    options.Dimensionless = true;
    return options;
}

CDiagnosis diagnosisOf(std::string_view text, const CCatalogue& catalogue = builtIn(),
                       const CReadOptions& options = {}) {
    const CReading reading = tryRead(text, catalogue, options);
    EXPECT_FALSE(reading) << text << " was read";
    return reading ? CDiagnosis() : diagnose(reading.Refusal, catalogue);
}

CDiagnosis diagnosisOfValue(std::string_view text) {
    const CValueReading reading = tryReadValue(text);
    EXPECT_FALSE(reading) << text << " was read";
    return reading ? CDiagnosis() : diagnose(reading.Refusal);
}

std::string meaningText(std::string_view text) { return read(text).toString(); }

bool isClose(double a, double b) { return std::fabs(a - b) <= 1e-11 * std::fabs(b); }

// Returns whether `meaning` is the quantity within the rounding of its doubles. The quantity has no
// marks.
bool isQuantity(const CMeaning& meaning, const test::Quantity& quantity) {
    std::map<std::string, test::Fraction> exponents;
    for (const CPower& power : meaning.dimensions()) {
        exponents[power.Name] = {power.Exponent.numerator(), power.Exponent.denominator()};
    }
    return exponents == quantity.Exponents &&
           isClose(meaning.factor().toDouble(), quantity.Factor) &&
           isClose(meaning.offset().toDouble(), quantity.Offset);
}

TEST(Reading, GivesTheMeaningOfTheUnit) {
    EXPECT_EQ(meaningText("km"), "1000 m");
    EXPECT_EQ(meaningText("N"), "kg·m/s²");
    EXPECT_EQ(meaningText("V/√Hz"), "kg·m²/(A·s^(5/2))");
    EXPECT_EQ(meaningText("°"), "π/180 rad");
    EXPECT_EQ(meaningText("°C"), "K + 273.15");
    EXPECT_EQ(meaningText("1"), "1");
    EXPECT_EQ(meaningText("One"), "1");
    EXPECT_EQ(meaningText("m/km"), "0.001");
}

TEST(Reading, AcceptsEveryTextThatThePageShowsAsAccepted) {
    const auto tables = documentTables(Page, {"Written", "Is"});
    ASSERT_EQ(tables.size(), 1U);
    for (const Row& row : tables[0]) {
        SCOPED_TRACE(row[0]);
        EXPECT_EQ(read(row[0]), read(row[1]));
        EXPECT_TRUE(isQuantity(read(row[0]), test::calculated(row[0])));
    }
}

TEST(Reading, RefusesEveryTextThatThePageShowsAsMalformed) {
    const auto tables = documentTables(Page, {"Written", "At", "Code", "Because"});
    ASSERT_EQ(tables.size(), 2U);
    for (const Row& row : tables[0]) {
        if (row[0] == "klm") {
            continue;  // a name of the built-in catalogue, which the registry lacks
        }
        SCOPED_TRACE(row[0]);
        const CDiagnosis diagnosis = diagnosisOf(row[0]);
        EXPECT_EQ(std::to_string(diagnosis.Position), row[1]);
        EXPECT_EQ(nameOf(diagnosis.Code), row[2]);
        if (diagnosis.Code == eRefusal::UNKNOWN_NAME) {
            EXPECT_EQ(row[3].find(diagnosis.Sentence), 0U) << "suggestions may be others";
        } else {
            EXPECT_EQ(diagnosis.message(), row[3]);
        }
    }
}

TEST(Reading, RefusesValuesAsThePageShows) {
    const auto tables = documentTables(Page, {"Value", "At", "Code", "Because"});
    ASSERT_EQ(tables.size(), 1U);
    for (const Row& row : tables[0]) {
        if (row[2] == "NUMBER_RANGE") {
            EXPECT_TRUE(tryReadValue(row[0])) << row[0] << " is no double, but a fraction";
            continue;
        }
        SCOPED_TRACE(row[0]);
        const CDiagnosis diagnosis = diagnosisOfValue(row[0]);
        EXPECT_EQ(std::to_string(diagnosis.Position), row[1]);
        EXPECT_EQ(nameOf(diagnosis.Code), row[2]);
        EXPECT_EQ(diagnosis.message(), row[3]);
    }
}

TEST(Reading, ReadsEverydayUnitsWithTheirMathematicalMeaning) {
    ASSERT_GE(everyday().size(), 500U);
    for (const test::Expression& expression : everyday()) {
        const CReading reading = tryRead(expression.Text);
        ASSERT_TRUE(reading) << expression.Text;
        EXPECT_TRUE(isQuantity(*reading.Meaning, expression.Meaning)) << expression.Text;
    }
}

TEST(Reading, TheOrderOfReadingDoesNotMatter) {
    std::vector<CMeaning> meanings;
    for (const test::Expression& expression : everyday()) {
        meanings.push_back(read(expression.Text));
    }
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        for (const std::size_t i : test::order(seed, everyday().size())) {
            ASSERT_EQ(read(everyday()[i].Text), meanings[i]) << everyday()[i].Text;
        }
    }
}

TEST(Reading, DistinguishesUnitsWhoseHashCodesCollideInTheRegistry) {
    EXPECT_NE(read("Wb/A"), read("kg/(s·K)"));
    EXPECT_NE(read("C/m"), read("A/V"));
    EXPECT_NE(read("1/(m·K)"), read("1/s²"));
    EXPECT_EQ(read("kg/(s·K)").toString(), "kg/(K·s)");
}

TEST(Reading, FindsNamesInOtherSpellings) {
    EXPECT_EQ(read("\u03BCbit", withUnit("\u00B5bit", "10^-6 bit")).toString(), "0.000001 bit")
        << "Greek mu for the micro sign";
    EXPECT_EQ(read("\u212A"), read("K")) << "kelvin sign";
    EXPECT_EQ(read("\u2103"), read("°C"));
    EXPECT_EQ(read("mL"), read("ml"));
}

TEST(Reading, ReadsTheSignsOfOtherScripts) {
    EXPECT_EQ(read("m\u30FBs"), read("m·s")) << "katakana middle dot";
    EXPECT_EQ(read("m\u1680s"), read("m s")) << "ogham space mark";
    EXPECT_EQ(read("m\uFE632"), read("m-2")) << "small hyphen-minus";
    EXPECT_EQ(read("m^1\uFF1A2"), read("m^1:2")) << "fullwidth colon";
}

TEST(Reading, PrefersANameOfTheProgramToAnotherSpelling) {
    const CCatalogue catalogue = withUnit("\u212A", "5 m");
    EXPECT_EQ(read("\u212A", catalogue), read("m").scaled(CFactor(CFraction(5))));
    EXPECT_EQ(read("K", catalogue), read("K"));
}

TEST(Reading, DoesNotReadALitreAsAUnitOfTheProgram) {
    const CCatalogue catalogue = withUnit("yl", "7 m");  // a yacht length, no yoctolitre
    EXPECT_TRUE(tryRead("yl", catalogue));
    EXPECT_EQ(diagnosisOf("yL", catalogue).Code, eRefusal::UNKNOWN_NAME);
    EXPECT_EQ(read("ML", withUnit("Mega", "3 m")), read("l").scaled(CFactor(CFraction(1000000))));
}

TEST(Reading, SuggestsTheNearestNamesOfTheCatalogue) {
    const CDiagnosis diagnosis = diagnosisOf("smot/s", withUnit("smoot", "1.7018 m"));
    EXPECT_EQ(diagnosis.Code, eRefusal::UNKNOWN_NAME);
    EXPECT_EQ(diagnosis.Token, "smot");
    EXPECT_THAT(diagnosis.Suggestions, ::testing::Contains("smoot"));
    EXPECT_THAT(diagnosisOf("KG").Suggestions, ::testing::Contains("kg"));
    EXPECT_THAT(diagnosisOf("x").Suggestions, IsEmpty()) << "one edit away from every other letter";
    EXPECT_THAT(diagnosisOf(std::string(25, 'q')).Suggestions, IsEmpty());
}

TEST(Reading, RefusesAnOffsetUnitInAProduct) {
    const CDiagnosis diagnosis = diagnosisOf("J/°C");
    EXPECT_EQ(diagnosis.Code, eRefusal::OFFSET_IN_PRODUCT);
    EXPECT_EQ(diagnosis.Token, "°C");
    EXPECT_EQ(diagnosis.Sentence,
              "\"°C\" is a scale with its own zero and cannot be part of a product; for "
              "differences write \"K\"");
    EXPECT_THAT(diagnosis.Readings, ElementsAre("J/K"));
    EXPECT_EQ(diagnosisOf("°C²").Code, eRefusal::OFFSET_IN_PRODUCT);
    EXPECT_EQ(read("(°C)"), read("°C"));
}

TEST(Reading, ReportsTheSizeOfADifferenceWithoutAName) {
    const CDiagnosis diagnosis = diagnosisOf("J/°X", withUnit("°X", "5/4 K, offset 10"));
    EXPECT_THAT(
        diagnosis.Sentence,
        HasSubstr(
            "its differences are 1.25 K, as the option Differences (--differences) reads them"));
    EXPECT_THAT(diagnosis.Readings, IsEmpty());
}

TEST(Reading, ReadsDifferencesByOption) {
    const CReading reading = tryRead("J/°C", builtIn(), differences());
    ASSERT_TRUE(reading);
    EXPECT_EQ(*reading.Meaning, read("J/K"));
    EXPECT_TRUE(reading.HasDifference);
    EXPECT_FALSE(tryRead("J/K", builtIn(), differences()).HasDifference);
    EXPECT_EQ(read("°C", builtIn(), differences()), read("°C")) << "alone it keeps its offset";
}

TEST(Reading, RefusesAPrefixBeforeAnOffsetUnit) {
    const CDiagnosis alone = diagnosisOf("m°C");
    EXPECT_EQ(alone.Code, eRefusal::PREFIXED_OFFSET);
    EXPECT_EQ(alone.Sentence, "\"m°C\" is a prefix before a scale with its own zero");
    EXPECT_THAT(alone.Readings, ElementsAre("mK"));
    EXPECT_THAT(diagnosisOf("W/m°C").Readings, ElementsAre("W/(m·K)", "kW/K"));
}

TEST(Reading, ReadsAPrefixedOffsetUnitAsADifferenceIfThatIsUnambiguous) {
    EXPECT_EQ(read("m°C", builtIn(), differences()), read("mK"));
    EXPECT_EQ(read("W/k°C", builtIn(), differences()), read("W/kK"));
    EXPECT_EQ(diagnosisOf("W/m°C", builtIn(), differences()).Code, eRefusal::PREFIXED_OFFSET)
        << "W/(m·K)?";
}

TEST(Reading, RefusesSumsOfExponentsBeyond99) {
    const CDiagnosis diagnosis = diagnosisOf("m^60·s·m^40");
    EXPECT_EQ(diagnosis.Code, eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(diagnosis.Byte, 9U);
    EXPECT_EQ(diagnosis.Sentence, "the exponents of \"m\" add up to more than 99");
    EXPECT_EQ(meaningText("m^60·m^39"), "m^99");
}

TEST(Reading, RefusesAFactorOfTooManyBits) {
    const CCatalogue many =
        withUnit("odd", "1234567890123456789012345678901234567890123456789012345678901234567890");
    EXPECT_EQ(diagnosisOf("odd^99", many).Code, eRefusal::FACTOR_RANGE);
    EXPECT_TRUE(tryRead("odd^50", many));
}

TEST(Reading, ReadsTheEmptyTextByOptionOnly) {
    EXPECT_EQ(diagnosisOf("").Code, eRefusal::EMPTY);
    EXPECT_EQ(read("", builtIn(), dimensionless()), CMeaning());
    EXPECT_EQ(read(" ", builtIn(), dimensionless()), CMeaning());
}

TEST(Reading, ReadsAnyNumberOfFactors) {
    std::string text = "m";
    for (int i = 0; i < 200; ++i) {
        text += "·s·s^-1";
    }
    EXPECT_EQ(read(text), read("m"));
    EXPECT_EQ(read("A·s·K·m·kg·mol·cd·rad").toString(), "A·K·cd·kg·m·mol·s·rad");
}

TEST(Reading, WritesTheUnitInTheNotationOfDefinitions) {
    EXPECT_EQ(notationOf("W·m**-2 K^-1"), "W/(m²·K)");
    EXPECT_EQ(notationOf("kg m s-2"), "kg·m/s²");
    EXPECT_EQ(notationOf("√(m/s²)"), "m^(1/2)/s");
    EXPECT_EQ(notationOf("m⁻¹"), "1/m");
    EXPECT_EQ(notationOf("m·m/km"), "m·m/km");
    EXPECT_EQ(notationOf("\u212A"), "K") << "the kelvin sign";
    EXPECT_EQ(notationOf("°C"), "°C");
    EXPECT_EQ(notationOf("1"), "1");
    EXPECT_EQ(notationOf("One/s"), "1/s");
    EXPECT_EQ(notationOf("J/°C", builtIn(), differences()), "J/K");
    EXPECT_EQ(notationOf("W/k°C", builtIn(), differences()), "W/kK");
    const CCatalogue scales = withUnit("°X", "5/4 K, offset 10");
    EXPECT_EQ(notationOf("J/°X", scales, differences()), "0.8 kg·m²/(K·s²)") << "has no name";
    EXPECT_EQ(notationOf("√°X", scales, differences()), "5^(1/2)/4^(1/2) K^(1/2)");
    EXPECT_THROW(notationOf("xyzzy"), CReadError);
    for (const test::Expression& expression : everyday()) {
        const std::string text = notationOf(expression.Text);
        EXPECT_EQ(CCatalogue::builtIn().evaluate(text), read(expression.Text)) << text;
        EXPECT_EQ(read(text), read(expression.Text)) << text;
    }
}

TEST(Reading, ThrowsTheDiagnosis) {
    try {
        read("W/m²/K");
        FAIL() << "not refused";
    } catch (const CReadError& error) {
        EXPECT_EQ(error.diagnosis().Code, eRefusal::SECOND_DIVISION);
        EXPECT_STREQ(error.what(),
                     "a second division needs brackets (write \"W/(m²·K)\" or \"W·K/m²\")");
    }
}

TEST(Reading, OffersBracketsAroundAPowerWithASecondExponent) {
    EXPECT_THAT(diagnosisOf("kg·m^2^3").Readings, ElementsAre("kg·(m^2)^3"));
}

TEST(Reading, ARefusalRefersToTheTextOfTheCaller) {
    const std::string text = "kg·xyzzy/s";
    const CReading reading = tryRead(text);
    ASSERT_FALSE(reading);
    EXPECT_EQ(reading.Refusal.Code, eRefusal::UNKNOWN_NAME);
    EXPECT_EQ(reading.Refusal.token(), "xyzzy");
    EXPECT_EQ(reading.Refusal.token().data(), text.data() + 4);
    EXPECT_EQ(reading.Refusal.position(), 3U);
}

TEST(ReadingOfValues, GivesTheNumberExactly) {
    const CValue value = readValue("2.5 km");
    EXPECT_EQ(value.Number, CFraction(5, 2));
    EXPECT_EQ(value.Unit, read("km"));
    EXPECT_EQ(readValue("\u22120.1e-3m").Number, CFraction(-1, 10000));
    EXPECT_EQ(readValue(".5 m").Number, CFraction(1, 2));
    EXPECT_EQ(readValue("5.m").Number, CFraction(5));
    EXPECT_EQ(readValue("1e-400 m").Number, CFraction::ofText("1e-400"));
    EXPECT_EQ(readValue("2 eV", builtIn().with(ePack::SCIENCE)).Number, CFraction(2))
        << "no exponent";
    EXPECT_EQ(readValue("5", builtIn(), dimensionless()).Unit, CMeaning());
}

TEST(ReadingOfValues, ReportsThePositionOfTheUnit) {
    const std::string text = " 2.5 km/h ";
    const CValueReading reading = tryReadValue(text);
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading.Unit.of(text), "km/h ");
}

TEST(ReadingOfValues, CountsPositionsFromTheBeginningOfTheWholeText) {
    const CDiagnosis diagnosis = diagnosisOfValue("2.5W/m²/K");
    EXPECT_EQ(diagnosis.Byte, 8U);
    EXPECT_EQ(diagnosis.Position, 7U);
    EXPECT_THAT(diagnosis.Readings, ElementsAre("2.5 W/(m²·K)", "2.5 W·K/m²"));
    EXPECT_THAT(diagnosisOfValue("2.5 /s").Readings, ElementsAre("2.5 1/s"));
}

TEST(ReadingOfValues, RefusesTextsThatDoNotBeginWithANumber) {
    EXPECT_EQ(diagnosisOfValue("km").Code, eRefusal::NO_NUMBER);
    EXPECT_EQ(diagnosisOfValue("0x10 m").Code, eRefusal::HEXADECIMAL);
    EXPECT_EQ(diagnosisOfValue("2 5").Code, eRefusal::STRAY_NUMBER);
    EXPECT_EQ(diagnosisOfValue("1e999999999 m").Code, eRefusal::NUMBER_RANGE);
    EXPECT_THAT(diagnosisOfValue("2,5 km").Readings, ElementsAre("2.5 km"));
    EXPECT_THAT(diagnosisOfValue("2,500 km").Readings, ElementsAre("2.500 km", "2500 km"));
}

TEST(ReadingOfValues, RefusesInfinityWithEveryOption) {
    CReadOptions options;
    options.NotFinite = true;
    EXPECT_EQ(tryReadValue("inf m", builtIn(), options).Refusal.Code, eRefusal::NOT_FINITE);
    EXPECT_EQ(tryReadValue("NaN m", builtIn(), options).Refusal.Code, eRefusal::NOT_FINITE);
}

TEST(Reading, AllocatesNothingForEverydayTexts) {
    const CCatalogue catalogue = builtIn();
    for (const char* const text : {"km", "kg·m²/s²", "W/(m²·K)", "xyzzy", "W/m²/K", "", "m°C"}) {
        beforeAllocation = [](long) { throw std::bad_alloc(); };
        bool hasThrown = false;
        try {
            tryRead(text, catalogue);
            tryReadValue("2.5 km", catalogue);
        } catch (const std::bad_alloc&) {
            hasThrown = true;
        }
        beforeAllocation = nullptr;
        EXPECT_FALSE(hasThrown) << text;
    }
}

TEST(Reading, LeaksNoMemory) {
    const auto readMany = [](int begin, int end) {
        for (int i = begin; i < end; ++i) {
            const std::string number = std::to_string(i);
            tryRead("km^(" + std::to_string(i % 99 + 1) + "/" + std::to_string(i / 99 % 99 + 1) +
                    ")·m");
            tryReadValue(number + " kg·m²/s²");
            diagnosisOf("name" + number);
        }
    };
    readMany(0, 100);
    const long before = liveBytes;
    readMany(100, 3000);
    EXPECT_EQ(liveBytes, before);
}

TEST(Reading, ThrowsBadAllocAndReadsRightAfterwards) {
    static long failing = 0;
    const std::string text = "A·s·K·m·kg·mol·cd·rad/W";
    const CMeaning meaning = read(text);
    for (failing = 1;; ++failing) {
        allocations = 0;
        bool hasThrown = false;
        beforeAllocation = [](long number) {
            if (number == failing) {
                throw std::bad_alloc();
            }
        };
        try {
            EXPECT_EQ(read(text), meaning);
            diagnose(tryRead("kgg/s").Refusal).message();
        } catch (const std::bad_alloc&) {
            hasThrown = true;
        }
        beforeAllocation = nullptr;
        ASSERT_EQ(read(text), meaning);
        if (!hasThrown) {
            break;
        }
    }
    EXPECT_GT(failing, 3);
}

TEST(Reading, WorksWhileAnotherThreadHoldsTheMutexOfTheRegistry) {
    const std::lock_guard<std::recursive_mutex> guard(CUnit::mutex());
    std::string text;
    std::thread([&] { text = meaningText("kPa·l/min"); }).join();
    EXPECT_EQ(text, meaningText("kPa·l/min"));
}

TEST(Reading, ThreadsCanShareACatalogue) {
    const CCatalogue catalogue = withUnit("smoot", "1.7018 m");
    race(8, 50, [&](int, int) {
        EXPECT_EQ(read("smoot/s", catalogue).kind(), "speed");
        EXPECT_FALSE(diagnosisOf("smot", catalogue).Suggestions.empty());
    });
}

TEST(Reading, HasThePrefixesOfTheLibrary) {
    ASSERT_EQ(std::size(Prefixes), prefixes().size());
    for (std::size_t i = 0; i < prefixes().size(); ++i) {
        EXPECT_EQ(std::string(Prefixes[i].Symbol), toStdString(prefixes()[i].Symbol));
        EXPECT_TRUE(isClose(std::pow(10.0, Prefixes[i].Power), prefixes()[i].Factor));
    }
}

TEST(Reading, IsNameAcceptsOnlyNames) {
    for (const char* const name : {"km", "[in_i]", "°C", "%"}) {
        EXPECT_TRUE(isName(name)) << name;
    }
    for (const char* const text : {"", "m2", "a b", "[a", "m/s"}) {
        EXPECT_FALSE(isName(text)) << text;
    }
}

}  // namespace
}  // namespace mensor::exact
