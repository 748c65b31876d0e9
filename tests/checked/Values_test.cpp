// Values_test.cpp: reads and writes values without losing a digit.
#include "mensor_checked/Values.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/Packs.h"
#include "support/CommaLocale.h"
#include "support/Matchers.h"
#include "support/documents.h"

namespace mensor {
namespace {

using checked::CReadOptions;
using checked::CValueReading;
using checked::eRefusal;
using checked::readValue;
using checked::tryReadValue;
using checked::writeValue;
using test::documentTables;
using test::Row;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

constexpr double Infinity = std::numeric_limits<double>::infinity();

CReadOptions notFinite() {
    CReadOptions options;
    options.NotFinite = true;
    return options;
}

TEST(Values, EveryTextOfThePageIsRead) {
    const auto tables = documentTables("reading.md", {"Value", "Is"});
    ASSERT_EQ(tables.size(), 1U);
    ASSERT_GT(tables[0].size(), 8U);
    for (const Row& row : tables[0]) {
        EXPECT_EQ(writeValue(readValue(row[0])), row[1]) << row[0];
    }
}

TEST(Values, ARefusedTextOfThePageChangesNoTable) {
    const auto tables = documentTables("reading.md", {"Value", "At", "Code", "Because"});
    ASSERT_EQ(tables.size(), 1U);
    ASSERT_GT(tables[0].size(), 12U);
    const Tables before;
    for (const Row& row : tables[0]) {
        SCOPED_TRACE(row[0]);
        const CValueReading reading = tryReadValue(row[0]);
        ASSERT_TRUE(reading.Refusal);
        EXPECT_FALSE(reading);
        EXPECT_EQ(std::to_string(reading.Refusal->Position), row[1]);
        EXPECT_EQ(nameOf(reading.Refusal->Code), row[2]);
        EXPECT_EQ(reading.Refusal->message(), row[3]);
        EXPECT_EQ(reading.Refusal->Text, row[0]);
    }
    EXPECT_EQ(Tables(), before);
}

// The two meanings of a collision are no texts to write instead.
TEST(Values, ACollisionTellsTheTwoMeaningsOfTheUnit) {
    checked::readUnit("1/V");
    const CValueReading reading = tryReadValue("5 min/km");
    ASSERT_TRUE(reading.Refusal);
    EXPECT_EQ(reading.Refusal->Code, eRefusal::DIMENSION_COLLISION);
    EXPECT_EQ(reading.Refusal->Byte, 2U);
    EXPECT_THAT(reading.Refusal->Readings, ElementsAre("0.06 s/m", "0.06 A·s³/(kg·m²)"));
}

TEST(Values, AreReadAsTheNearestDouble) {
    struct Number {
        const char* Text;
        double Value;
    };
    for (const Number& number :
         {Number{"0.1 m", 0.1},
          {"0.30000000000000004m", 0.1 + 0.2},
          {"1.7976931348623157e308 m", 1.7976931348623157e308},
          {"2.2250738585072014e-308 m", 2.2250738585072014e-308},
          {"5e-324 m", 5e-324},
          {"-0 m", -0.0},
          {"5. m", 5.0},
          {"1E3m", 1000.0},
          {"12345678901234567890123456789 m", 12345678901234567890123456789.0},
          {"0e999999 m", 0.0},
          {"0.000 m", 0.0},
          {"\u2212.5\u00A0m", -0.5}}) {
        EXPECT_THAT(readValue(number.Text).value(), HasBitsOf(number.Value)) << number.Text;
        EXPECT_EQ(readValue(number.Text).unit(), SI::Meter()) << number.Text;
    }
}

TEST(Values, AreReadTheSameInEveryLocale) {
    const test::CCommaLocale comma;
    EXPECT_EQ(readValue("2.5 km").value(), 2.5);
    EXPECT_EQ(writeValue(1234.5, SI::Meter()), "1234.5 m");
    EXPECT_EQ(tryReadValue("2,5 km").Refusal->Code, eRefusal::DECIMAL_COMMA);
}

TEST(Values, ANumberWithoutUnitIsReadByOptionOnly) {
    CReadOptions options;
    options.Dimensionless = true;
    EXPECT_EQ(readValue("5", options).unit(), CProductUnit::one());
    EXPECT_EQ(readValue("5 ", options).value(), 5);
    EXPECT_EQ(tryReadValue("5", options).Unit, CProductUnit::one());
    EXPECT_THROW(readValue("5"), checked::CReadError);
    EXPECT_EQ(tryReadValue("", options).Refusal->Code, eRefusal::NO_NUMBER);
}

TEST(Values, NaNAndInfinityAreReadByOptionOnly) {
    EXPECT_TRUE(std::isnan(readValue("NaN m", notFinite()).value()));
    EXPECT_EQ(readValue("inf m", notFinite()).value(), Infinity);
    EXPECT_EQ(readValue("-Infinity km", notFinite()).value(), -Infinity);
    EXPECT_EQ(readValue("\u2212inf m", notFinite()).value(), -Infinity);
    EXPECT_EQ(tryReadValue("infm", notFinite()).Refusal->Code, eRefusal::NO_NUMBER);
    EXPECT_EQ(tryReadValue("nan(1) m", notFinite()).Refusal->Code, eRefusal::NO_NUMBER);
    EXPECT_EQ(tryReadValue("1e999 m", notFinite()).Refusal->Code, eRefusal::NUMBER_RANGE);
}

TEST(Values, PositionsCountInTheWholeText) {
    const checked::CDiagnosis diagnosis = *tryReadValue("\u22125\u00A0µm·xyz").Refusal;
    EXPECT_EQ(diagnosis.Position, 6U);
    EXPECT_EQ(diagnosis.Byte, std::string("\u22125\u00A0µm·").size());
    EXPECT_EQ(diagnosis.caret(), "\u22125\u00A0µm·xyz\n      ^^^\n");
    EXPECT_THAT(tryReadValue("1W/m/K").Refusal->Readings, ElementsAre("1 W/(m·K)", "1 W·K/m"));
    EXPECT_EQ(tryReadValue("5 T·m/m/N·s").Refusal->Code, eRefusal::SECOND_DIVISION);
}

TEST(Values, ARefusalSuggestsWholeValues) {
    for (const char* const text : {"2.5 J/°C", "2.5J/°C"}) {
        const auto value = checked::tryReadValue(text);
        ASSERT_TRUE(value.Refusal) << text;
        EXPECT_EQ(value.Refusal->Text, text);
        ASSERT_EQ(value.Refusal->Readings.size(), 1U) << text;
        const std::string& meant = value.Refusal->Readings[0];
        EXPECT_EQ(readValue(meant).value(), 2.5) << meant;
        EXPECT_EQ(readValue(meant).unit(), checked::readUnit("J/K")) << meant;
    }
}

TEST(Values, HaveTheNotesOfTheUnit) {
    CReadOptions options;
    options.Differences = true;
    EXPECT_THAT(tryReadValue("5 J/°C", options).Notes,
                ElementsAre("\"°C\" is read as a difference, \"K\""));
}

TEST(Values, TextsThatAreTooLongOrNotUtf8AreRefused) {
    EXPECT_EQ(tryReadValue(std::string(4097, '1')).Refusal->Code, eRefusal::TOO_LONG);
    EXPECT_EQ(tryReadValue(std::string(4096, '1')).Refusal->Code, eRefusal::NUMBER_RANGE);
    EXPECT_EQ(readValue("0." + std::string(4000, '3') + " m").value(), 1.0 / 3.0);
    EXPECT_EQ(tryReadValue("5\xFF m").Refusal->Code, eRefusal::MALFORMED_TEXT);
    EXPECT_EQ(tryReadValue(std::string("5\0m", 3)).Refusal->Code, eRefusal::MALFORMED_TEXT);
    EXPECT_EQ(tryReadValue("\xFF").Refusal->Code, eRefusal::NO_NUMBER);
}

TEST(Values, AreWrittenWithTheFewestDigits) {
    EXPECT_EQ(writeValue(0.1, SI::Meter()), "0.1 m");
    EXPECT_EQ(writeValue(1.0 / 3.0, SI::Meter()), "0.3333333333333333 m");
    EXPECT_EQ(writeValue(1e-7, SI::Meter()), "1e-07 m");
    EXPECT_EQ(writeValue(-0.0, SI::Meter()), "-0 m");
    EXPECT_EQ(writeValue(5, CProductUnit::one()), "5 One");
    EXPECT_EQ(writeValue(CValueWithUnit(20.5, SI::Celsius())), "20.5 °C");
}

TEST(Values, NaNAndInfinityAreWrittenByOptionOnly) {
    EXPECT_THAT([] { writeValue(Infinity, SI::Meter()); },
                ThrowsMessage<checked::CWriteError>("the value inf is not finite"));
    EXPECT_THROW(writeValue(std::nan(""), SI::Meter()), checked::CWriteError);
    EXPECT_EQ(writeValue(-Infinity, SI::Meter(), notFinite()), "-inf m");
    EXPECT_EQ(writeValue(-std::nan(""), SI::Meter(), notFinite()), "nan m");
}

TEST(Values, AUnitWithoutTextIsRefused) {
    const CUnitPtr nameless = SI::Meter()->multiply(42);
    EXPECT_EQ(checked::textOf(nameless), std::nullopt);
    EXPECT_THAT([&] { writeValue(1, nameless); },
                ThrowsMessage<checked::CWriteError>(
                    "the unit \"42 m\" has no text that reads back as the same"));
    EXPECT_EQ(checked::textOf(CUnit::fromString("m°C")), std::nullopt)
        << "the text could not be read";
    CUnitFormat::alias(CUnit::fromString("m°C"), "mK");
    EXPECT_EQ(writeValue(1, CUnit::fromString("m°C")), "1 mK");
    CUnitFormat::label(nameless, "m2");
    EXPECT_EQ(checked::textOf(nameless), std::nullopt) << "the text would be read as m²";
    EXPECT_EQ(checked::textOf(nameless / SI::Second()), std::nullopt);
    CUnitFormat::label(nameless, "");
    EXPECT_EQ(checked::textOf(nameless), std::nullopt);
}

TEST(Values, EmptyPointersAreRefused) {
    EXPECT_THAT([] { writeValue(1, nullptr); },
                ThrowsMessage<std::invalid_argument>("writeValue: the unit is an empty pointer"));
    EXPECT_THROW(checked::textOf(nullptr), std::invalid_argument);
}

// Writes and reads the units of the catalogue and random products of them.
TEST(Values, ReadBackWithTheSameBitsAndTheSameUnit) {
    std::vector<CUnitPtr> units;
    for (const auto& [name, unit] : CUnitFormat::labelUnitMap()) {
        units.push_back(unit);
    }
    for (const auto& [name, unit] : CUnit::symbols()) {
        units.push_back(unit);
    }
    std::mt19937 random(1);
    const auto below = [&](std::size_t n) { return random() % n; };
    const std::size_t named = units.size();
    for (int i = 0; i < 400; ++i) {
        CUnitPtr product = units[below(named)];
        for (std::size_t factors = 1 + below(3); factors > 0; --factors) {
            const CUnitPtr factor = units[below(named)];
            const CUnitPtr raised = factor->pow(static_cast<int>(below(4)) + 1);
            const CUnitPtr rooted = below(8) == 0 ? raised->root(2) : raised;
            product = below(2) == 0 ? product * rooted : product / rooted;
        }
        units.push_back(product);
    }
    std::size_t written = 0;
    std::size_t without = 0;
    for (const CUnitPtr& unit : units) {
        double value = 0.0;
        do {
            const std::uint64_t bits = std::uint64_t{random()} << 32 | random();
            std::memcpy(&value, &bits, sizeof value);
        } while (!std::isfinite(value));
        std::string text;
        try {
            text = writeValue(value, unit);
        } catch (const checked::CWriteError&) {
            ++without;
            continue;
        }
        SCOPED_TRACE(text);
        const CValueWithUnit back = readValue(text);
        EXPECT_THAT(back.value(), HasBitsOf(value));
        EXPECT_EQ(back.unit(), unit);
        ++written;
    }
    EXPECT_GT(written, named + 200);
    EXPECT_LT(without, units.size() / 4) << "too many units without a text";
}

// The library writes the millikelvin as "m°C", which cannot be read in a product.
TEST(Values, ProductsAreWrittenByNamesThatReadBack) {
    checked::registerPack(checked::ePack::SI);
    for (const char* text : {"nV/mK", "mK/W", "1/mK", "m²/(mK·s)", "nV·mK^(-1/2)", "mK²·s"}) {
        const CUnitPtr unit = checked::readUnit(text);
        const auto written = checked::textOf(unit);
        ASSERT_TRUE(written) << text;
        EXPECT_EQ(checked::readUnit(*written), unit) << *written;
    }
    EXPECT_EQ(checked::textOf(checked::readUnit("nV/mK")), "nV/mK");
    EXPECT_EQ(checked::textOf(checked::readUnit("m²/(mK·s)")), "m²/(mK·s)");
    EXPECT_EQ(checked::textOf(checked::readUnit("mK^(-1/2)")), "1/mK^(1/2)");
    EXPECT_EQ(writeValue(2.5, checked::readUnit("nV/mK")), "2.5 nV/mK");
}

}  // namespace
}  // namespace mensor
