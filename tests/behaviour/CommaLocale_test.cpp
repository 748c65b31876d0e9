// CommaLocale_test.cpp: units and messages do not depend on the locale. The numbers of
// CValueWithUnit, of streams and of the symbols of converters depend on it (docs/reliability.md).
#include <clocale>
#include <iomanip>
#include <map>
#include <sstream>
#include <string>

#include "mensor/AddConverter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "mensor/io.h"
#include "support/CommaLocale.h"
#include "support/Inside.h"
#include "support/Matchers.h"
#include "support/outcome.h"

namespace mensor {
namespace {

using test::CCommaLocale;

// The number in the field, up to the first zero byte.
std::string numberOf(const CValueWithUnit& value) { return text(value.toString()).c_str(); }

TEST(CommaLocale, DoesNotChangeTheTextOfAnyUnit) {
    std::map<CUnitPtr, std::string> texts;
    for (const auto& [name, unit] : CUnitFormat::names()) {
        texts[unit] = unit->toStdString();
    }
    const CUnitPtr power = SI::Meter()->pow(12345) / SI::Second()->root(2345);
    texts[power] = "m^12345/s^1:2345";
    const CCommaLocale comma;
    for (const auto& [unit, text] : texts) {
        EXPECT_EQ(unit->toStdString(), text);
        EXPECT_EQ(CUnit::fromString(text), unit);
    }
    EXPECT_EQ(text(CASCIIUnitFormat::instance()->format(power, "")), "m^12345 s^-1:2345");
    EXPECT_EQ(CUnit::fromString("m.s"), SI::Meter() * SI::Second());
    EXPECT_EQ(CUnit::fromString("m,s"), SI::Meter() * SI::Second());
}

TEST(CommaLocale, ANumberIsReadWithADecimalComma) {
    EXPECT_EQ(CValueWithUnit::fromString("2.5 km").value(), 2.5);
    EXPECT_EQ(CValueWithUnit::fromString("2,5 km").value(), 2);
    const CCommaLocale comma;
    EXPECT_EQ(CValueWithUnit::fromString("2.5 km").value(), 2);
    EXPECT_EQ(CValueWithUnit::fromString("2,5 km").value(), 2.5);
    EXPECT_EQ(CValueWithUnit::fromString("1.234,5 km").value(), 1)
        << "no points between groups of digits";
}

TEST(CommaLocale, AValueIsWrittenWithAComma) {
    const CValueWithUnit value(-1234.5, SI::Meter());
    EXPECT_EQ(numberOf(value), "-1234.500000");
    const CCommaLocale comma;
    EXPECT_EQ(numberOf(value), "-1234,500000");
    EXPECT_EQ(text(value.toString()).substr(63), " m") << "the field has the same length";
    EXPECT_EQ(CValueWithUnit::fromString("-1234,500000 m"), value) << "the written text reads back";
}

TEST(CommaLocale, NewStreamsWriteNumbersWithAComma) {
    const CCommaLocale comma;
    std::ostringstream german, classic;
    classic.imbue(std::locale::classic());
    for (std::ostream* const stream : {&german, &classic}) {
        *stream << std::fixed << std::setprecision(1) << CValueWithUnit(1234.5, SI::Meter());
    }
    EXPECT_EQ(german.str(), "1.234,5 m");
    EXPECT_EQ(classic.str(), "1234.5 m");
}

TEST(CommaLocale, SymbolsOfConvertersHaveAComma) {
    const CMultiplyConverter mile(1609.344);
    const CAddConverter offset(273.15);
    EXPECT_EQ(text(mile.getSymbol(SI::Meter())), "[m*1609.34]");
    const CCommaLocale comma;
    EXPECT_EQ(text(mile.getSymbol(SI::Meter())), "[m*1.609,34]");
    EXPECT_EQ(text(offset.getSymbol(SI::Kelvin())), "[K+273,15]");
}

TEST(CommaLocale, DoesNotChangeAnyMessage) {
    const CUnitPtr huge = SI::Meter()->pow(2147483647);
    CUnitPtr late = SI::Meter();  // an id with four digits, which a locale may group
    for (double factor = 2; Inside::id(late) < 1000; ++factor) {
        late = SI::Meter() * factor;
    }
    const std::string classic = "std::logic_error: Unit with Id[ " +
                                std::to_string(Inside::id(late)) +
                                "] and Symbol [] is not a system unit";
    EXPECT_EQ(outcomeOf([&] { late->baseUnits(); }), classic);

    const CCommaLocale comma;
    EXPECT_EQ(outcomeOf([&] { huge->multiply(SI::Meter()); }),
              "std::overflow_error: Exponent 2147483648 is out of range");
    EXPECT_EQ(outcomeOf([] { SI::Meter()->pow(-2147483647 - 1); }),
              "std::overflow_error: Exponent -2147483648 is out of range");
    EXPECT_EQ(outcomeOf([] { CUnit::fromString("m^2147483648"); }),
              "std::out_of_range: Exponent 2147483648 is out of range");
    EXPECT_EQ(outcomeOf([&] { late->baseUnits(); }), classic);
}

// The user's locale with LC_NUMERIC set to "C".
TEST(CommaLocale, HasNoEffectIfNumbersStayInTheCLocale) {
    test::provideCommaLocale();
    const std::locale german(test::CommaLocaleName);
    std::locale::global(std::locale(german, std::locale::classic(), std::locale::numeric));
    ASSERT_NE(std::setlocale(LC_ALL, test::CommaLocaleName), nullptr);
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    ASSERT_NE(std::setlocale(LC_NUMERIC, "C"), nullptr);

    EXPECT_EQ(CValueWithUnit::fromString("2.5 km").value(), 2.5);
    EXPECT_EQ(numberOf(CValueWithUnit(1234.5, SI::Meter())), "1234.500000");
    std::ostringstream stream;
    stream << CValueWithUnit(1234.5, SI::Meter());
    EXPECT_EQ(stream.str(), "1234.5 m");
    EXPECT_EQ(text(CMultiplyConverter(1609.344).getSymbol(SI::Meter())), "[m*1609.34]");
}

}  // namespace
}  // namespace mensor
