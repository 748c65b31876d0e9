// Reading_test.cpp: which texts are read, which are refused, and with which messages. The examples are the
// tables of docs/reading.md.
#include "mensor_checked/Reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Choosing.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/OwnUnits.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/making.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"
#include "support/Mathematics.h"
#include "support/documents.h"

namespace mensor {
namespace {

using checked::CDiagnosis;
using checked::CReading;
using checked::CReadOptions;
using checked::eRefusal;
using checked::readUnit;
using checked::tryReadUnit;
using test::documentTables;
using test::measured;
using test::Row;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::StrEq;

const char* const Page = "reading.md";

CReadOptions differences() {
    CReadOptions options;
    options.Differences = true;
    return options;
}

eRefusal refusalOf(const std::string& text, const CReadOptions& options = {}) {
    const CReading reading = tryReadUnit(text, options);
    EXPECT_TRUE(reading.Refusal) << text << " was read";
    return reading.Refusal ? reading.Refusal->Code : eRefusal();
}

void expectRefusedAsDocumented(const Row& row) {
    SCOPED_TRACE(row[0]);
    const CReading reading = tryReadUnit(row[0]);
    ASSERT_TRUE(reading.Refusal);
    EXPECT_EQ(std::to_string(reading.Refusal->Position), row[1]);
    EXPECT_EQ(nameOf(reading.Refusal->Code), row[2]);
    EXPECT_EQ(reading.Refusal->message(), row[3]);
}

TEST(Reading, ReadsEveryTextOfThePage) {
    const auto tables = documentTables(Page, {"Written", "Is"});
    ASSERT_EQ(tables.size(), 1U);
    ASSERT_GT(tables[0].size(), 25U);
    for (const Row& row : tables[0]) {
        SCOPED_TRACE(row[0]);
        const CUnitPtr unit = readUnit(row[0]);
        EXPECT_EQ(checked::textOf(unit), row[1]);
        const test::Quantity meaning = test::calculated(row[0]);
        EXPECT_TRUE(areSame(measured(unit), meaning)) << measured(unit) << " not " << meaning;
    }
}

TEST(Reading, ATextThatIsRefusedForItsFormChangesNoTable) {
    const auto tables = documentTables(Page, {"Written", "At", "Code", "Because"});
    ASSERT_EQ(tables.size(), 2U);
    ASSERT_GT(tables[0].size(), 35U);
    const Tables before;
    for (const Row& row : tables[0]) {
        expectRefusedAsDocumented(row);
    }
    EXPECT_EQ(Tables(), before);
}

TEST(Reading, RefusesTheTextsOfThePageForTheirMeaning) {
    const auto tables = documentTables(Page, {"Written", "At", "Code", "Because"});
    ASSERT_EQ(tables.size(), 2U);
    readUnit("1/s²");
    readUnit("Wb/A");
    for (const Row& row : tables[1]) {
        expectRefusedAsDocumented(row);
    }
}

TEST(Reading, ReadsDifferencesByOptionWithANote) {
    const auto tables = documentTables(Page, {"Written", "Is", "Note"});
    ASSERT_EQ(tables.size(), 1U);
    for (int times = 0; times < 2; ++times) {  // the second time from the cache
        for (const Row& row : tables[0]) {
            SCOPED_TRACE(row[0]);
            const CReading reading = tryReadUnit(row[0], differences());
            ASSERT_TRUE(reading);
            EXPECT_EQ(text(reading.Unit->toString()), row[1]);
            EXPECT_THAT(reading.Notes, ElementsAre(StrEq(row[2])));
            EXPECT_EQ(refusalOf(row[0]), eRefusal::OFFSET_IN_PRODUCT) << "without the option";
        }
    }
}

TEST(Reading, ThePageShowsEveryRefusal) {
    std::set<std::string> shown = {"TOO_LONG",
                                   "REFUSED_BY_LIBRARY"};  // the page has no row for these
    for (const auto& head : {"Written", "Value"}) {
        for (const auto& table : documentTables(Page, {head, "At", "Code", "Because"})) {
            for (const Row& row : table) {
                shown.insert(row[2]);
            }
        }
    }
    for (int code = 1; code <= static_cast<int>(eRefusal::NUMBER_RANGE); ++code) {
        EXPECT_EQ(shown.count(nameOf(static_cast<eRefusal>(code))), 1U)
            << nameOf(static_cast<eRefusal>(code));
    }
    const std::string page = test::document(Page);
    EXPECT_THAT(page, HasSubstr("TOO_LONG"));
    EXPECT_THAT(page, HasSubstr("REFUSED_BY_LIBRARY"));
    EXPECT_THAT(page, HasSubstr("LIMIT_REACHED"));
}

TEST(Reading, EverySuggestedTextIsRead) {
    for (const auto& table : documentTables(Page, {"Written", "At", "Code", "Because"})) {
        for (const Row& row : table) {
            const CReading reading = tryReadUnit(row[0]);
            if (!reading.Refusal || reading.Refusal->Code == eRefusal::COLLISION ||
                reading.Refusal->Code == eRefusal::DIMENSION_COLLISION) {
                continue;
            }
            for (const auto* list : {&reading.Refusal->Readings, &reading.Refusal->Suggestions}) {
                for (const std::string& offer : *list) {
                    EXPECT_TRUE(tryReadUnit(offer)) << offer << " for " << row[0];
                }
            }
        }
    }
}

TEST(Reading, ReadsEveryNameOfTheCatalogue) {
    std::size_t names = 0;
    for (const auto& [name, meaning] : test::everyName()) {
        SCOPED_TRACE(name);
        const CUnitPtr unit = readUnit(name);
        EXPECT_EQ(unit, CUnit::fromString(name));
        EXPECT_TRUE(areSame(measured(unit), meaning)) << measured(unit) << " not " << meaning;
        ++names;
    }
    // The only other names are those of prefixed °C, such as "m°C".
    EXPECT_EQ(names + 20, CUnitFormat::labelUnitMap().size() + CUnit::symbols().size());
}

TEST(Reading, ReadsTheSameObjectAsTheLibrary) {
    for (const char* text : {"kg·m²/s²", "W/(m²·K)", "m^1:2", "kg m2 s-2", "1/s", "km/h", "mol/l",
                             "V·s/m", "m^3:2", "rad/s", "%", "µm²", "S/m", "bit/s", "N·m"}) {
        EXPECT_EQ(readUnit(text), CUnit::fromString(text)) << text;
    }
}

TEST(Reading, IntermediateProductsDoNotCollide) {
    readUnit("s/m");
    EXPECT_EQ(refusalOf("1/V"), eRefusal::COLLISION);
    EXPECT_EQ(text(CUnit::fromString("µV/V")->toString()), "µV·s/m") << "as the library reads it";
    EXPECT_EQ(text(readUnit("mV/V")->toString()), "mV/V");
    EXPECT_EQ(readUnit("mV/V"), SI::Milli(SI::Volt()) / SI::Volt());
}

TEST(Reading, APositionIsGivenInCodePointsAndBytes) {
    const CDiagnosis diagnosis = *tryReadUnit("µΩ·kß").Refusal;
    EXPECT_EQ(diagnosis.Position, 3U);
    EXPECT_EQ(diagnosis.Byte, std::string("µΩ·").size());
    EXPECT_EQ(diagnosis.Token, "kß");
    EXPECT_EQ(diagnosis.Text, "µΩ·kß");
    EXPECT_EQ(diagnosis.caret(), "µΩ·kß\n   ^^\n");
}

TEST(Reading, TheCaretIsUnderTheTokenInTextsWithControlCharacters) {
    EXPECT_EQ(tryReadUnit("m\n\xFFs").Refusal->caret(), "m??s\n  ^\n");
    EXPECT_EQ(tryReadUnit("m/").Refusal->caret(), "m/\n  ^\n");
}

TEST(Reading, TheExceptionHasTheDiagnosis) {
    try {
        readUnit("W/m²/K");
        FAIL() << "was read";
    } catch (const std::invalid_argument& e) {
        EXPECT_STREQ(e.what(),
                     "a second division needs brackets (write \"W/(m²·K)\" or \"W·K/m²\")");
        const auto& error = dynamic_cast<const checked::CReadError&>(e);
        EXPECT_EQ(error.diagnosis().Code, eRefusal::SECOND_DIVISION);
        EXPECT_THAT(error.diagnosis().Readings, ElementsAre("W/(m²·K)", "W·K/m²"));
        EXPECT_EQ(checked::CReadError(error).diagnosis().Token, "/");
    }
}

TEST(Reading, ReadsTheEmptyTextByOptionOnly) {
    CReadOptions options;
    options.Dimensionless = true;
    for (const char* text : {"", " ", "\u00A0\t "}) {
        EXPECT_EQ(refusalOf(text), eRefusal::EMPTY);
        EXPECT_EQ(readUnit(text, options), CProductUnit::one());
        EXPECT_EQ(refusalOf(text), eRefusal::EMPTY) << "after the option";
    }
}

TEST(Reading, LimitsTheLengthAndTheNesting) {
    const std::string blanks(4095, ' ');
    EXPECT_EQ(readUnit(blanks + "m"), SI::Meter());
    EXPECT_EQ(refusalOf(blanks + " m"), eRefusal::TOO_LONG);
    std::string wide;
    for (int i = 0; i < 4095; ++i) {
        wide += "\u3000";
    }
    EXPECT_EQ(readUnit(wide + "m"), SI::Meter()) << "code points count, not bytes";
    EXPECT_EQ(refusalOf(wide + "mm"), eRefusal::TOO_LONG);
    EXPECT_EQ(refusalOf(std::string(100000, 'm')), eRefusal::TOO_LONG);
    EXPECT_EQ(readUnit(std::string(64, '(') + "m" + std::string(64, ')')), SI::Meter());
    EXPECT_EQ(refusalOf(std::string(65, '(') + "m" + std::string(65, ')')), eRefusal::TOO_DEEP);
    EXPECT_EQ(refusalOf(std::string(4096, '(')), eRefusal::TOO_DEEP);
    EXPECT_EQ(refusalOf(std::string(4096, 'x')), eRefusal::UNKNOWN_NAME);
    EXPECT_EQ(refusalOf(std::string(4096, '[')), eRefusal::OPEN_BRACKET);
}

TEST(Reading, AcceptsExponentsUpTo99) {
    EXPECT_EQ(readUnit("(m^33)³"), SI::Meter()->pow(99));
    EXPECT_EQ(readUnit("m^50 m^49"), SI::Meter()->pow(99));
    EXPECT_EQ(readUnit("m^-99"), SI::Meter()->pow(-99));
    EXPECT_EQ(readUnit("m^99·m^-98"), SI::Meter());
    EXPECT_EQ(refusalOf("(m^33)^4"), eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(refusalOf("m^50 s m^50"), eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(refusalOf("m^-100"), eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(refusalOf("m^1:100"), eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(refusalOf("(m^1:10)^1:10"), eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(refusalOf("m^1:97·m^1:89"), eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(refusalOf("m^99999999999999999999"), eRefusal::EXPONENT_RANGE);
}

TEST(Reading, TheTokenIsTheWholeExponentThatIsOutOfRange) {
    for (const std::string exponent :
         {"100", "-100", "^100", "^-100", "^1:210", "^(1/210)", "**100", "¹⁰⁰", "⁻¹⁰⁰"}) {
        const auto reading = checked::tryReadUnit("m" + exponent + "·s");
        ASSERT_TRUE(reading.Refusal) << exponent;
        EXPECT_EQ(reading.Refusal->Token, exponent);
    }
}

TEST(Reading, ReducesExponentsOfAnySizeExactly) {
    EXPECT_EQ(refusalOf("m^(1000/4)"), eRefusal::EXPONENT_RANGE) << "not m^25";
    EXPECT_EQ(readUnit("m^(1000/500)"), SI::Meter()->pow(2));
    EXPECT_EQ(readUnit("m^(0002/4)"), SI::Meter()->root(2));
    EXPECT_EQ(readUnit("m^0.50000000"), SI::Meter()->root(2));
    EXPECT_EQ(readUnit("s^0.015625"), SI::Second()->root(64));
    EXPECT_EQ(refusalOf("m^0.50000001"), eRefusal::INEXACT_EXPONENT);
    EXPECT_EQ(refusalOf("m^0.50000010"), eRefusal::INEXACT_EXPONENT);
    EXPECT_EQ(refusalOf("m^100.5"), eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(refusalOf("m^9999.999999"), eRefusal::INEXACT_EXPONENT);
    EXPECT_EQ(refusalOf("m^(80001/4)"), eRefusal::EXPONENT_RANGE);
}

TEST(Reading, EqualFactorsCancel) {
    EXPECT_EQ(readUnit("m·s/s"), SI::Meter());
    EXPECT_EQ(readUnit("m/m"), CProductUnit::one());
    EXPECT_EQ(readUnit("m^0"), CProductUnit::one());
    EXPECT_EQ(readUnit("√m·√m"), SI::Meter());
}

TEST(Reading, ResolvesLabelsBeforeAliasesBeforeSymbols) {
    const CUnitPtr a = SI::Meter()->multiply(3), b = SI::Meter()->multiply(5);
    CUnitFormat::alias(b, "qq");
    EXPECT_EQ(readUnit("qq"), b);
    CUnitFormat::label(a, "qq");
    EXPECT_EQ(readUnit("qq"), a);
}

TEST(Reading, ReadsALabelThatMovesAsItsNewUnit) {
    const CUnitPtr a = SI::Meter()->multiply(3), b = SI::Meter()->multiply(5);
    CUnitFormat::label(a, "qq");
    for (int times = 0; times < 3; ++times) {  // the text is cached from the second time on
        EXPECT_EQ(readUnit("qq/s"), a / SI::Second());
    }
    ASSERT_NE(CUnitFormat::namesVersion(), 0U) << "the version is 0, so the test does not test it";
    CUnitFormat::label(a, "rr");
    EXPECT_EQ(refusalOf("qq/s"), eRefusal::UNKNOWN_NAME);
    CUnitFormat::label(b, "qq");
    EXPECT_EQ(readUnit("qq/s"), b / SI::Second());
}

TEST(Reading, PrefersTheClientsUnitLToTheLitre) {
    EXPECT_EQ(readUnit("L"), NonSI::Liter());
    EXPECT_EQ(readUnit("mL/s"), CUnit::fromString("ml/s"));
    const CUnitPtr own = SI::Meter()->multiply(42);
    CUnitFormat::alias(own, "L");
    CUnitFormat::alias(own, "mL");
    EXPECT_EQ(readUnit("L"), own);
    EXPECT_EQ(readUnit("mL/s"), own / SI::Second());
    EXPECT_EQ(refusalOf("hL"), eRefusal::UNKNOWN_NAME) << "the library has no hl";
}

TEST(Reading, ReadsNamesInBrackets) {
    const CUnitPtr inch = SI::Meter()->multiply(0.0254);
    CUnitFormat::label(inch, "[in_[i] 2]");
    EXPECT_EQ(readUnit("[in_[i] 2]"), inch);
    EXPECT_EQ(readUnit("N/[in_[i] 2]²"), SI::Newton() / (inch ^ 2));
    EXPECT_TRUE(checked::isName("[in_[i] 2]"));
}

TEST(Reading, IsNameAcceptsNamesOnly) {
    for (const char* name : {"km", "°C", "mm_Hg", "%", "′", "[a b]", "ф"}) {
        EXPECT_TRUE(checked::isName(name)) << name;
    }
    for (const char* text :
         {"", "m2", "a b", "a/b", "m²", "[a", "a]", "[a]b", "a[b]", "-", "\xFF"}) {
        EXPECT_FALSE(checked::isName(text)) << text;
    }
}

TEST(Reading, RefusesTheSecondOfTwoCollidingUnits) {
    EXPECT_EQ(text(readUnit("T·m")->toString()), "T·m");
    EXPECT_EQ(refusalOf("N·s"), eRefusal::COLLISION);
    EXPECT_THAT(tryReadUnit("N·s").Refusal->Readings, ElementsAre("kg·m/s", "kg·m/(A·s²)"));
}

TEST(Reading, RefusesTheSecondOfTwoCollidingUnitsInTheOtherOrder) {
    EXPECT_EQ(text(readUnit("N·s")->toString()), "N·s");
    EXPECT_EQ(refusalOf("T·m"), eRefusal::COLLISION);
    EXPECT_THAT(tryReadUnit("T·m").Refusal->Readings, ElementsAre("kg·m/(A·s²)", "kg·m/s"));
}

TEST(Reading, RefusesAUnitWhoseDimensionCollides) {
    EXPECT_EQ(refusalOf("1/(cm·K)"), eRefusal::DIMENSION_COLLISION);
    EXPECT_EQ(CUnit::fromString("1/(cm·K)")->convertValueToUnit(1, readUnit("1/s²")), 100)
        << "the wrong result that the refusal prevents";
}

TEST(Reading, ANoteTellsThatAPrefixHasMoved) {
    readUnit("mN·m");
    for (int times = 0; times < 2; ++times) {
        const CReading moved = tryReadUnit("N·mm");
        EXPECT_EQ(moved.Unit, CUnit::fromString("mN·m"));
        EXPECT_THAT(moved.Notes,
                    ElementsAre("\"N·mm\" is the same object as \"mN·m\" here, and is written so"));
    }
}

TEST(Reading, RefusesAnotherUnitWithTheSameMeaning) {
    // A client's own class of unit may have any hash code: here that of Bq·m, with the elements of Hz·m.
    const int hash = hashFromString("Bq") + hashFromString("m");
    const auto impostor = CClientUnit::make("", hash);
    impostor->Elements = [] {
        return std::vector<CUnitRationalPower>{{SI::Hertz(), 1, 1}, {SI::Meter(), 1, 1}};
    };
    impostor->canonical();
    EXPECT_EQ(refusalOf("Bq·m"), eRefusal::COLLISION);
    EXPECT_THAT(tryReadUnit("Bq·m").Refusal->Sentence,
                HasSubstr("which means the same but is another unit"));
}

TEST(Reading, ARefusalQuotesTheExceptionOfTheLibrary) {
    const CUnitPtr perScale =
        SI::Joule() / SI::Celsius();  // no text makes this unit, but the algebra does
    CUnitFormat::label(perScale, "JpC");
    EXPECT_EQ(refusalOf("JpC"), eRefusal::REFUSED_BY_LIBRARY);
    EXPECT_THAT(tryReadUnit("JpC").Refusal->Sentence,
                HasSubstr("Unit element  is non-linear, cannot convert"));
}

TEST(Reading, RefusesAUnitThatTheLibraryConvertsByAnotherSize) {
    const auto times = [](double factor) { return std::make_shared<CMultiplyConverter>(factor); };
    const auto overflows = std::make_shared<CCompound>(
        std::make_shared<CCompound>(times(1e300), times(1e300)), times(1e-300));
    CUnitFormat::label(CTransformedUnit::getInstance(SI::Meter(), overflows), "hyp");
    const CReading reading = tryReadUnit("hyp");
    ASSERT_TRUE(reading.Refusal);
    EXPECT_EQ(reading.Refusal->Code, eRefusal::FACTOR_RANGE);
    EXPECT_THAT(reading.Refusal->Sentence,
                StartsWith("the library would convert \"hyp\" as \"inf m\" in place of \""));
}

TEST(Reading, ReadsFahrenheitInProductsAsADifference) {
    // The factor comes first in this converter, so it counts as a scaling, and products convert it by its slope.
    const auto converter =
        std::make_shared<CCompound>(std::make_shared<CMultiplyConverter>(5.0 / 9.0),
                                    std::make_shared<CAddConverter>(459.67 * 5.0 / 9.0));
    const CUnitPtr fahrenheit = CTransformedUnit::getInstance(SI::Kelvin(), converter);
    CUnitFormat::label(fahrenheit, "°F");
    EXPECT_EQ(readUnit("℉"), fahrenheit);
    EXPECT_EQ(refusalOf("J/°F"), eRefusal::OFFSET_IN_PRODUCT);
    const CReading reading = tryReadUnit("J/°F", differences());
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading.Notes.size(), 1U);
    EXPECT_NEAR(reading.Unit->convertValueToUnit(1, readUnit("J/K")), 1.8, 1e-12);
}

TEST(Reading, RefusesFahrenheitInProductsIfItsConverterIsNotLinear) {
    const auto converter = std::make_shared<CCompound>(
        std::make_shared<CAddConverter>(459.67), std::make_shared<CMultiplyConverter>(5.0 / 9.0));
    CUnitFormat::label(CTransformedUnit::getInstance(SI::Kelvin(), converter), "°F");
    EXPECT_EQ(refusalOf("J/°F", differences()), eRefusal::OFFSET_IN_PRODUCT);
    EXPECT_THAT(tryReadUnit("J/°F").Refusal->Sentence,
                HasSubstr("there is no unit for its differences"));
}

TEST(Reading, RefusesMCelsiusInProductsWhereMCouldBeTheMetre) {
    const CReading alone = tryReadUnit("m°C", differences());
    EXPECT_THAT(alone.Notes, ElementsAre("\"m°C\" is read as a difference, \"0.001 K\""));
    EXPECT_TRUE(tryReadUnit("W/k°C", differences()));
    EXPECT_EQ(refusalOf("W/m°C", differences()), eRefusal::PREFIXED_OFFSET);
    EXPECT_EQ(refusalOf("m°C"), eRefusal::PREFIXED_OFFSET) << "after the option";
    CUnitFormat::alias(alone.Unit, "mK");
    EXPECT_EQ(readUnit("mK"), alone.Unit);
    EXPECT_THAT(tryReadUnit("m°C").Refusal->Readings, ElementsAre("mK"));
}

TEST(Reading, OffersNoProductForAPrefixedScaleWithoutDifferences) {
    const auto converter = std::make_shared<CCompound>(
        std::make_shared<CAddConverter>(459.67), std::make_shared<CMultiplyConverter>(5.0 / 9.0));
    CUnitFormat::label(CTransformedUnit::getInstance(SI::Kelvin(), converter), "°F");
    CUnitFormat::label(SI::Kelvin()->multiply(0.005 / 9.0), "m°F");
    EXPECT_EQ(refusalOf("W/m°F", differences()), eRefusal::PREFIXED_OFFSET);
    EXPECT_THAT(tryReadUnit("W/m°F", differences()).Refusal->Readings, ::testing::IsEmpty());
}

TEST(Reading, APrefixBeforeTheNameOfAnotherQuantityIsPartOfTheName) {
    const CUnitPtr own = SI::Meter()->multiply(7);
    CUnitFormat::label(checked::affine(SI::Kelvin(), 0.8, 273.15), "°Re");
    CUnitFormat::label(own, "da°Re");
    EXPECT_EQ(readUnit("da°Re"), own);
}

TEST(Reading, ReadsUnitsWhoseBaseUnitIsMapped) {
    // The metre becomes the time that light takes for it.
    const CUnitPtr speed = readUnit("km/s");
    SI::Meter()->setDimension(SI::Second(), std::make_shared<CMultiplyConverter>(1 / 299792458.0));
    EXPECT_EQ(readUnit("km/s"), speed);
    EXPECT_EQ(speed->getDimension(), CProductUnit::one());
    EXPECT_EQ(readUnit("kg·cm²/s²")->getDimension(), SI::Kilogram());
    SI::Meter()->setDimension(nullptr, nullptr);
    EXPECT_EQ(readUnit("km/s"), speed);
}

TEST(Reading, ChecksACachedTextAgainWhenABaseUnitIsMapped) {
    // The product collides only while the base unit is mapped onto the kelvin.
    const CBaseUnitPtr base = CBaseUnit::getInstance("qq");
    for (int times = 0; times < 3; ++times) {  // the text is cached from the second time on
        EXPECT_TRUE(tryReadUnit("1/(cm·qq)"));
    }
    base->setDimension(SI::Kelvin(), CConverter::identity());
    ASSERT_NE(CUnitFormat::namesVersion(), 0U);
    EXPECT_EQ(refusalOf("1/(cm·qq)"), eRefusal::DIMENSION_COLLISION);
    base->setDimension(nullptr, nullptr);
    EXPECT_TRUE(tryReadUnit("1/(cm·qq)"));
}

TEST(Reading, ReadsABaseUnitThatIsMappedWithAnOffset) {
    const CBaseUnitPtr base = CBaseUnit::getInstance("qq");
    base->setDimension(SI::Kelvin(), std::make_shared<CAddConverter>(273.15));
    EXPECT_EQ(readUnit("qq"), base);
    EXPECT_EQ(base->convertValueToUnit(0, SI::Kelvin()), 273.15);
}

// A unit without an exact meaning cannot be checked.
TEST(Reading, RefusesANameWhoseExponentsAreBeyond99) {
    CUnitFormat::label(SI::Meter() ^ 99, "hyp");
    EXPECT_EQ(readUnit("hyp"), SI::Meter() ^ 99);
    CUnitFormat::label(SI::Meter() ^ 150, "hypp");
    EXPECT_EQ(refusalOf("hypp"), eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(refusalOf("hyp·m"), eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(refusalOf("hyp²"), eRefusal::EXPONENT_RANGE);
}

// The metres cancel in the meaning, but not in the product of the units that the library builds.
TEST(Reading, RefusesExponentsThatOnlyTheProductOfTheLibraryHas) {
    CUnitFormat::label(SI::Meter() / SI::Meter()->multiply(1.5), "qa");
    CUnitFormat::label(SI::Meter() / SI::Meter()->multiply(0.7), "qb");
    EXPECT_TRUE(tryReadUnit("qa^60·qb^39"));
    const CReading reading = tryReadUnit("qa^60·qb^60");
    ASSERT_TRUE(reading.Refusal);
    EXPECT_EQ(reading.Refusal->Code, eRefusal::EXPONENT_RANGE);
    EXPECT_EQ(reading.Refusal->Sentence, "the exponents of \"qb\" add up to more than 99");
    EXPECT_TRUE(checked::tryReadMeaning("qa^60·qb^60"));
}

// m^(5/6) and m^(101/150) have the same hash code: it depends on 3·5 − 2·6 = 3, and on 3·101 − 2·150 = 3. No text
// can be read as the second one, because its exponent is too large.
TEST(Reading, RefusesATextThatTheRegistryTakesForAUnitWithoutAText) {
    const CUnitPtr other = SI::Meter()->pow(101)->root(150);
    const CReading reading = tryReadUnit("m^(5/6)");
    ASSERT_TRUE(reading.Refusal);
    EXPECT_EQ(reading.Refusal->Code, eRefusal::COLLISION);
    EXPECT_THAT(reading.Refusal->Sentence, HasSubstr(": it would mean \""));
    EXPECT_THAT(reading.Refusal->Readings, ElementsAre("m^(5/6)", HasSubstr("exponent")));
}

TEST(Reading, RefusesANameWhoseUnitHasNoPositiveSize) {
    CUnitFormat::label(SI::Meter()->multiply(-3.0), "hyp");
    const CReading reading = tryReadUnit("hyp");
    ASSERT_TRUE(reading.Refusal);
    EXPECT_EQ(reading.Refusal->Code, eRefusal::FACTOR_RANGE);
    EXPECT_THAT(reading.Refusal->Sentence,
                StartsWith("the size of this unit cannot be computed: "));
    EXPECT_EQ(refusalOf("hyp·s"), eRefusal::FACTOR_RANGE);
    EXPECT_THAT(checked::choicesFor(SI::Meter()), ::testing::SizeIs(::testing::Gt(20U)));
}

// The name of a client's own unit has no other spelling.
TEST(Reading, ReadsACapitalLOnlyForTheLitre) {
    EXPECT_EQ(readUnit("L"), NonSI::Liter());
    EXPECT_EQ(readUnit("mL"), readUnit("ml"));
    EXPECT_EQ(refusalOf("ML"), eRefusal::UNKNOWN_NAME);
    CUnitFormat::label(SI::Meter()->multiply(12345.0), "Ml");
    EXPECT_EQ(readUnit("Ml"), SI::Meter()->multiply(12345.0));
    EXPECT_EQ(refusalOf("ML"), eRefusal::UNKNOWN_NAME);
    EXPECT_EQ(refusalOf("ML/s"), eRefusal::UNKNOWN_NAME);
    CUnitFormat::label(NonSI::Liter()->multiply(1000.0), "kl");
    EXPECT_EQ(readUnit("kL"), NonSI::Liter()->multiply(1000.0)) << "it is a thousand litres";
    CUnitFormat::label(SI::Meter()->multiply(-3.0), "Yl");
    EXPECT_EQ(refusalOf("YL"), eRefusal::UNKNOWN_NAME) << "the Yl has no meaning";
}

TEST(Reading, ReadsPsiBeforeTheLibraryKnowsIt) {
    const CUnitPtr psi = readUnit("psi");
    EXPECT_EQ(psi, NonSI::Psi());
    EXPECT_EQ(checked::meaningOf(psi).toString(), "6894.76 kg/(m·s²)");
}

TEST(Reading, RefusesAnotherDefinitionOfPsi) {
    EXPECT_THROW(checked::label(SI::Pascal()->multiply(6894.757), "psi"), checked::CIdentityError);
    EXPECT_FALSE(checked::tryDefineUnits("psi = 6894.757293168361 Pa"));
    const CUnitPtr psi = readUnit("psi");
    NonSI::Psi();
    EXPECT_EQ(readUnit("psi"), psi);
}

TEST(Reading, DoesNotRegisterPsiForARefusedText) {
    const Tables before;
    EXPECT_EQ(refusalOf("psi psi^x"), eRefusal::MALFORMED_EXPONENT);
    EXPECT_EQ(Tables(), before);
}

TEST(Reading, AMeaningRegistersNothing) {
    readUnit("Wb/A");
    const Tables before;
    EXPECT_EQ(checked::readMeaning("kg/(s·K)").toString(), "kg/(K·s)");
    EXPECT_EQ(checked::readMeaning("rad/s").toString(), "rad/s");
    EXPECT_EQ(checked::readMeaning("Ym^50·m^49").factor().toString(), "1e1200");
    EXPECT_EQ(Tables(), before);
    EXPECT_THROW(checked::readMeaning("kg/m/s"), checked::CReadError);
    EXPECT_EQ(checked::tryReadMeaning("m^60·km^60").Refusal->Code, eRefusal::EXPONENT_RANGE);
    CReadOptions options = differences();
    const checked::CMeaningReading difference = checked::tryReadMeaning("J/°C", options);
    ASSERT_TRUE(difference);
    EXPECT_EQ(difference.Meaning->toString(), "kg·m²/(K·s²)");
    EXPECT_EQ(difference.Notes.size(), 1U);
}

TEST(Reading, AMeaningUsesTheClientsNames) {
    CUnitFormat::label(SI::Meter()->multiply(0.25), "qspan");
    EXPECT_EQ(checked::readMeaning("qspan/s").toString(), "0.25 m/s");
}

}  // namespace
}  // namespace mensor
