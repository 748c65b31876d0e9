// everyday_names_test.cpp: the companion reads everyday spellings once their pack is registered, delivers the
// notes on a text, and refuses by Strict what people use for something else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Packs.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/converting.h"
#include "mensor_checked/making.h"
#include "mensor_exact/Definitions.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/Reading.h"

namespace mensor::checked {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

void registerEveryday() { registerPack(ePack::EVERYDAY); }

double in(const CUnitPtr& unit, const char* value) { return readValue(value).valueAs(unit); }

CDiagnosis refusalOf(const char* text, const CReadOptions& options = {}) {
    const CReading reading = tryReadUnit(text, options);
    EXPECT_FALSE(reading) << text << " is read";
    return reading ? CDiagnosis() : *reading.Refusal;
}

std::vector<std::string> spellings() {
    std::vector<std::string> names;
    for (const exact::CDefinition& row :
         exact::CCatalogue::builtIn().with(exact::ePack::EVERYDAY).definitions()) {
        if (row.Pack == exact::ePack::EVERYDAY) {
            names.emplace_back(row.Name);
        }
    }
    return names;
}

TEST(EverydayNames, AreReadAfterThePackIsRegistered) {
    EXPECT_THAT(refusalOf("kOhm").Packs, ElementsAre("everyday"));
    EXPECT_THAT(refusalOf("kilometres").Packs, ElementsAre("everyday"));
    registerEveryday();
    EXPECT_EQ(in(SI::Ohm(), "10 kOhm"), 10000);
    EXPECT_EQ(in(SI::Meter(), "2 kilometres"), 2000);
    EXPECT_DOUBLE_EQ(in(SI::Meter(), "5 um"), 5e-6);
    EXPECT_NEAR(in(NonSI::Bar(), "2 barg"), 3.01325, 1e-12);
    EXPECT_NEAR(in(NonSI::Bar(), "2 bar(g)"), 3.01325, 1e-12);
    EXPECT_NEAR(in(SI::Celsius(), "98.6 degF"), 37, 1e-12);
    EXPECT_NEAR(in(SI::Pascal(), "1 mmH2O"), 9.80665, 1e-12);
    EXPECT_EQ(readUnit("kOhm"), readUnit("kΩ"));
    EXPECT_EQ(in(SI::Joule(), "1 kWh"), 3600000);
}

TEST(EverydayNames, HaveTheMeaningsOfTheExactLibrary) {
    registerEveryday();
    const exact::CCatalogue people = exact::CCatalogue::builtIn().with(exact::ePack::EVERYDAY);
    int objects = 0;
    for (const std::string& name : spellings()) {
        const CMeaningReading meaning = tryReadMeaning(name);
        ASSERT_TRUE(meaning) << name;
        EXPECT_EQ(*meaning.Meaning, exact::read(name, people)) << name;
        const CReading unit = tryReadUnit(name);
        if (!unit) {  // "degR" has the identity of the degree Fahrenheit
            EXPECT_EQ(unit.Refusal->Code, eRefusal::COLLISION) << name << unit.Refusal->message();
            EXPECT_THAT(unit.Refusal->Sentence, HasSubstr("checked::readMeaning"));
            continue;
        }
        ++objects;
        const CMeaning ofUnit = meaningOf(unit.Unit);
        ASSERT_TRUE(ofUnit.isCompatibleWith(*meaning.Meaning)) << name;
        const double ratio = ofUnit.factor().toDouble() / meaning.Meaning->factor().toDouble();
        EXPECT_NEAR(ratio, 1, 1e-14) << name;
        const double offset = meaning.Meaning->offset().toDouble();
        EXPECT_NEAR(ofUnit.offset().toDouble(), offset, std::fabs(offset) * 1e-14) << name;
    }
    EXPECT_GT(objects, 300);
}

TEST(EverydayNames, RegisterNothingBeforeTheyAreRead) {
    const std::size_t before = CUnit::instances().size();
    registerEveryday();
    EXPECT_FALSE(tryReadUnit("mmHg/nothing"));
    EXPECT_TRUE(tryReadMeaning("mmHg"));
    EXPECT_EQ(CUnit::instances().size(), before);
    EXPECT_TRUE(tryReadUnit("mmHg"));
    EXPECT_GT(CUnit::instances().size(), before);
}

TEST(EverydayNames, GiveWayToLabelsOfTheProgram) {
    registerEveryday();
    const CUnitPtr spelling = readUnit("barg");
    const CUnitPtr own = label(scaled(SI::Meter(), 7), "barg");
    EXPECT_EQ(readUnit("barg"), own);
    EXPECT_NE(readUnit("barg"), spelling);
    EXPECT_THAT(tryReadUnit("barg").Notes, IsEmpty());
}

TEST(EverydayNames, AreWrittenIfTheUnitHasNoOtherText) {
    registerEveryday();
    EXPECT_EQ(writeValue(readValue("5 mmHg")), "5 mmHg");
    EXPECT_EQ(writeValue(readValue("5 kOhm")), "5 k\u2126");
    EXPECT_EQ(readValue(writeValue(readValue("5 barg"))).unit(), readUnit("barg"));
}

TEST(EverydayNames, AreDifferencesInProductsByOption) {
    registerEveryday();
    EXPECT_EQ(refusalOf("J/degC").Code, eRefusal::OFFSET_IN_PRODUCT);
    CReadOptions options;
    options.Differences = true;
    const CReading reading = tryReadUnit("J/degC", options);
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading.Unit, readUnit("J/K"));
    EXPECT_EQ(reading.Notes.size(), 1U);
    EXPECT_EQ(readMeaning("J/degC", options), readMeaning("J/K"));
}

// A client may have defined the degree Fahrenheit by (x + 459.67)·5/9, which has no unit of differences.
TEST(EverydayNames, AreRefusedInProductsIfTheUnitHasNoDifferences) {
    registerEveryday();
    CTransformedUnit::getInstance(
        SI::Kelvin(), std::make_shared<CCompound>(std::make_shared<CAddConverter>(459.67),
                                                  std::make_shared<CMultiplyConverter>(5.0 / 9.0)));
    ASSERT_TRUE(tryReadUnit("degF"));
    CReadOptions options;
    options.Differences = true;
    const CDiagnosis refusal = refusalOf("J/degF", options);
    EXPECT_EQ(refusal.Code, eRefusal::OFFSET_IN_PRODUCT);
    EXPECT_THAT(refusal.Sentence, HasSubstr("there is no unit for its differences"));
    EXPECT_EQ(readMeaning("J/degF", options),
              readMeaning("J/K").scaled(exact::CFactor(exact::CFraction(9, 5))));
}

TEST(EverydayNames, AReadingOfAMeaningTellsTheOptionForDifferences) {
    registerEveryday();
    const CMeaningReading reading = tryReadMeaning("J/degF");
    ASSERT_TRUE(reading.Refusal);
    EXPECT_EQ(reading.Refusal->Code, eRefusal::OFFSET_IN_PRODUCT);
    EXPECT_THAT(reading.Refusal->Sentence,
                HasSubstr("the option Differences (--differences) reads it as a difference"));
}

// The words for units of the catalogue are names of the registry.
TEST(EverydayNames, AreNotThoseThatTheProgramHasRemoved) {
    registerEveryday();
    const CUnitPtr week = readUnit("week");
    CUnitFormat::detach(week, "week");
    EXPECT_EQ(refusalOf("week").Code, eRefusal::UNKNOWN_NAME);
}

TEST(EverydayNames, AreReadAgainFromTheCache) {
    registerEveryday();
    const CUnitPtr first = readUnit("kgf/cm2");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(readUnit("kgf/cm2"), first);
        EXPECT_THAT(tryReadUnit("5 psig").Refusal->Sentence, HasSubstr("number"));
    }
}

TEST(EverydayNames, AreSuggested) {
    registerEveryday();
    EXPECT_THAT(refusalOf("kOhn").Suggestions, testing::Contains("kOhm"));
}

TEST(NotesOfTheCompanion, AreDeliveredWithTheReading) {
    EXPECT_THAT(tryReadUnit("pH").Notes,
                ElementsAre("\"pH\" is the picohenry; the pH of a liquid has no unit"));
    EXPECT_THAT(tryReadUnit("pH").Notes.size(), 1U) << "also the second time";
    EXPECT_THAT(tryReadMeaning("m/PS").Notes, ElementsAre(HasSubstr("petasiemens")));
    EXPECT_THAT(tryReadValue("7 pH").Notes, ElementsAre(HasSubstr("picohenry")));
    EXPECT_THAT(tryReadUnit("kg/cm²").Notes, ElementsAre(HasSubstr("mass per area")));
    EXPECT_THAT(tryReadUnit("kg·m").Notes, IsEmpty());
    registerEveryday();
    EXPECT_THAT(tryReadUnit("barg").Notes, ElementsAre(HasSubstr("101325 Pa")));
}

TEST(NotesOfTheCompanion, TheOptionStrictRefusesTextsWithNotes) {
    CReadOptions strict;
    strict.Strict = true;
    EXPECT_TRUE(tryReadUnit("PS"));
    EXPECT_EQ(refusalOf("PS", strict).Code, eRefusal::MISLEADING);
    EXPECT_TRUE(tryReadUnit("PS")) << "the cache keeps the two apart";
    EXPECT_EQ(refusalOf("PS", strict).Code, eRefusal::MISLEADING);
    EXPECT_EQ(tryReadValue("7 pH", strict).Refusal->Code, eRefusal::MISLEADING);
    EXPECT_EQ(tryReadMeaning("Gs", strict).Refusal->Code, eRefusal::MISLEADING);
    EXPECT_TRUE(tryReadUnit("kg·m", strict));
}

TEST(NotesOfTheCompanion, AProgramsOwnNamesGetNoNotes) {
    label(scaled(SI::Watt(), 735.49875), "st");
    CReadOptions strict;
    strict.Strict = true;
    EXPECT_TRUE(tryReadUnit("st", strict));
    EXPECT_THAT(tryReadUnit("st").Notes, IsEmpty());
}

TEST(NotesOfTheCompanion, AProgramsOwnNameWithoutAMeaningGetsNoNote) {
    CUnitFormat::label(SI::Watt()->multiply(-735.0), "st");
    CReadOptions strict;
    strict.Strict = true;
    EXPECT_EQ(refusalOf("st", strict).Code, eRefusal::FACTOR_RANGE);
}

TEST(TrapsOfTheCompanion, AProgramsOwnNameIsNoTrap) {
    EXPECT_EQ(refusalOf("bar ac").Code, eRefusal::UNKNOWN_NAME);
    EXPECT_EQ(refusalOf("bar g").Code, eRefusal::MISLEADING);
    label(scaled(SI::Meter(), 3), "abs");
    EXPECT_TRUE(tryReadUnit("bar abs"));
}

TEST(AdviceOfTheCompanion, CorrectsTextsWithOffsetUnitsAndSums) {
    EXPECT_THAT(refusalOf("W/m²/°C").Readings, ElementsAre("W/(m²·K)", "W·K/m²"));
    const CValueReading sum = tryReadValue("1 h 30 min");
    ASSERT_FALSE(sum);
    EXPECT_THAT(sum.Refusal->Readings, ElementsAre("90 min"));
    registerEveryday();
    EXPECT_THAT(tryReadValue("1 hr 30 min").Refusal->Readings, ElementsAre("90 min"));
    EXPECT_THAT(tryReadValue("1 h 30 mins").Refusal->Readings, ElementsAre("90 mins"));
}

// There is no other unit for differences of this degree Fahrenheit, so the refusal cannot name one.
TEST(AdviceOfTheCompanion, OffersNoUnitForItsOwnDifferences) {
    CUnitFormat::label(affine(SI::Kelvin(), 5.0 / 9.0, 459.67 * 5.0 / 9.0), "°F");
    EXPECT_EQ(refusalOf("W/m²/°F").Code, eRefusal::SECOND_DIVISION);
    EXPECT_THAT(refusalOf("W/m²/°F").Readings, IsEmpty());
}

TEST(KindsOfTheCompanion, AreRefusedByOption) {
    const CUnitPtr turns = readUnit("rev/min");
    const CUnitPtr perMinute = readUnit("1/min");
    EXPECT_NEAR(converter(turns, perMinute)->convert(1), 2 * std::acos(-1.0), 1e-14);
    try {
        converter(turns, perMinute, eKinds::SAME);
        FAIL() << "not refused";
    } catch (const exact::CError& error) {
        EXPECT_EQ(error.code(), exact::eError::DIFFERENT_MARKS);
    }
    EXPECT_EQ(converter(readUnit("km"), SI::Meter(), eKinds::SAME)->convert(2), 2000);
    EXPECT_THROW(converter(readMeaning("byte"), readMeaning("rad"), eKinds::SAME), exact::CError);
    EXPECT_NO_THROW(converter(readMeaning("byte"), readMeaning("bit"), eKinds::SAME));
}

}  // namespace
}  // namespace mensor::checked
