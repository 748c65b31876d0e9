// SI_test.cpp: the accessors of the SI units, their definitions, and the prefix functions.
#include "mensor/SI.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "mensor/AlternateUnit.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "support/Catalogue.h"
#include "support/Matchers.h"

namespace mensor {
namespace {
using ::testing::StrEq, ::testing::ThrowsMessage;

template <CBaseUnitPtr (*Get)()>
CUnitPtr base() {
    return Get();
}

const Accessor BASE_UNITS[] = {
    {"A", base<SI::Ampere>},    {"cd", base<SI::Candela>}, {"K", base<SI::Kelvin>},
    {"kg", base<SI::Kilogram>}, {"m", base<SI::Meter>},    {"mol", base<SI::Mole>},
    {"s", base<SI::Second>},
};

// An alternate unit, the text of its definition, and the text of its base units, as they print. The
// values are those of the SI brochure, 9th edition, table 4. The order of the factors is that of
// the definitions.
struct Alternate {
    const char* Symbol;
    CUnitPtr (*Get)();
    const char* Definition;
    const char* BaseUnits;
};

const Alternate ALTERNATES[] = {
    {"rad", SI::Radian, "One", "One"},
    {"sr", SI::Steradian, "One", "One"},
    {"bit", SI::Bit, "One", "One"},
    {"Hz", SI::Hertz, "1/s", "1/s"},
    {"Bq", SI::Becquerel, "1/s", "1/s"},
    {"N", SI::Newton, "m·kg/s²", "m·kg/s²"},
    {"J", SI::Joule, "N·m", "m²·kg/s²"},
    {"W", SI::Watt, "J/s", "m²·kg/s³"},
    {"V", SI::Volt, "W/A", "m²·kg/(s³·A)"},
    {"\u2126", SI::Ohm, "V/A", "m²·kg/(s³·A²)"},
    {"Wb", SI::Weber, "V·s", "m²·kg/(s²·A)"},
    {"H", SI::Henry, "Wb/A", "m²·kg/(s²·A²)"},
    {"Gy", SI::Gray, "J/kg", "m²/s²"},
    {"Sv", SI::Sievert, "J/kg", "m²/s²"},
    {"Pa", SI::Pascal, "N/m²", "kg/(m·s²)"},
    {"C", SI::Coulomb, "s·A", "s·A"},
    {"F", SI::Farad, "C/V", "s^4·A²/(m²·kg)"},
    {"S", SI::Siemens, "A/V", "A²·s³/(m²·kg)"},
    {"T", SI::Tesla, "Wb/m²", "kg/(s²·A)"},
    {"lm", SI::Lumen, "cd·sr", "cd"},
    {"lx", SI::Lux, "lm/m²", "cd/m²"},
    {"kat", SI::Katal, "mol/s", "mol/s"},
};

std::vector<Accessor> all() {
    std::vector<Accessor> accessors(std::begin(BASE_UNITS), std::end(BASE_UNITS));
    for (const Alternate& row : ALTERNATES) {
        accessors.push_back({row.Symbol, row.Get});
    }
    accessors.push_back({"g", SI::Gram});
    accessors.push_back({"°C", SI::Celsius});
    return accessors;
}

TEST(SI, EachAccessorReturnsOneObjectOfItsOwn) {
    std::set<CUnitPtr> units;
    for (const Accessor& accessor : all()) {
        EXPECT_EQ(accessor.Get(), accessor.Get()) << accessor.Name;
        units.insert(accessor.Get());
    }
    EXPECT_EQ(units.size(), 31U);
}

TEST(SI, AllUnitsAreBuiltAtLoad) {
    const Tables afterLoad;
    for (const Accessor& accessor : all()) {
        accessor.Get();
    }
    EXPECT_EQ(Tables(), afterLoad);
}

TEST(SI, AccessorsReturnOwningPointers) {
    const CUnitPtr first = SI::Newton();
    const long before = first.use_count();
    const CUnitPtr second = SI::Newton();
    EXPECT_EQ(first.use_count(), before + 1);
}

TEST(SI, EachUnitIsFoundByItsSymbolOrLabel) {
    for (const Accessor& accessor : all()) {
        EXPECT_EQ(CUnitFormat::unitFor(accessor.Name), accessor.Get()) << accessor.Name;
        EXPECT_THAT(accessor.Get(), PrintsAs(accessor.Name));
    }
}

TEST(SI, BaseUnitAccessorsGiveBaseUnits) {
    static_assert(std::is_same_v<decltype(SI::Ampere()), CBaseUnitPtr>);
    static_assert(std::is_same_v<decltype(SI::Candela()), CBaseUnitPtr>);
    static_assert(std::is_same_v<decltype(SI::Kelvin()), CBaseUnitPtr>);
    static_assert(std::is_same_v<decltype(SI::Kilogram()), CBaseUnitPtr>);
    static_assert(std::is_same_v<decltype(SI::Meter()), CBaseUnitPtr>);
    static_assert(std::is_same_v<decltype(SI::Mole()), CBaseUnitPtr>);
    static_assert(std::is_same_v<decltype(SI::Second()), CBaseUnitPtr>);
    static_assert(std::is_same_v<decltype(SI::Radian()), CUnitPtr>);
    for (const Accessor& row : BASE_UNITS) {
        SCOPED_TRACE(row.Name);
        EXPECT_NE(std::dynamic_pointer_cast<CBaseUnit>(row.Get()), nullptr);
        EXPECT_EQ(row.Get(), CBaseUnit::getInstance(row.Name));
        EXPECT_EQ(text(row.Get()->getSymbol()), row.Name);
        EXPECT_EQ(row.Get()->getDimension(), row.Get());
    }
}

TEST(SI, NamedUnitsAreAlternateUnitsOfTheirDefinitions) {
    for (const Alternate& row : ALTERNATES) {
        SCOPED_TRACE(row.Symbol);
        const CUnitPtr unit = row.Get();
        EXPECT_NE(std::dynamic_pointer_cast<CAlternateUnit>(unit), nullptr);
        EXPECT_EQ(text(unit->getSymbol()), row.Symbol);
        EXPECT_THAT(unit->baseUnits(), PrintsAs(row.BaseUnits));
        const CUnitPtr definition = row.Definition == std::string("One")
                                        ? CProductUnit::one()
                                        : CUnit::fromString(row.Definition);
        EXPECT_THAT(definition, PrintsAs(row.Definition));
        EXPECT_EQ(definition->baseUnits(), unit->baseUnits());
        EXPECT_EQ(unit->getDimension(), definition->getDimension());
        EXPECT_THAT(unit, ConvertsTo(definition, 2.5, 2.5));
        EXPECT_THAT(unit, ConvertsTo(unit->baseUnits(), 2.5, 2.5));
    }
}

// The definitions built these products first and decided the order, so the other order gives the
// same text.
TEST(SI, ProductsPrintInTheOrderOfTheDefinition) {
    EXPECT_THAT(SI::Kilogram() * SI::Meter(), PrintsAs("m·kg"));
    EXPECT_THAT(SI::Kilogram() * SI::Meter() / (SI::Second() ^ 2), PrintsAs("m·kg/s²"));
    EXPECT_THAT(SI::Meter() * SI::Newton(), PrintsAs("N·m"));
    EXPECT_THAT(SI::Second() * SI::Volt(), PrintsAs("V·s"));
    EXPECT_THAT(SI::Ampere() * SI::Second(), PrintsAs("s·A"));
    EXPECT_THAT(SI::Steradian() * SI::Candela(), PrintsAs("cd·sr"));
}

TEST(SI, HertzAndBecquerelAreTwoCompatibleUnits) {
    EXPECT_NE(SI::Hertz(), SI::Becquerel());
    EXPECT_FALSE(SI::Hertz()->equals(SI::Becquerel()));
    EXPECT_EQ(SI::Hertz()->getDimension(), SI::Becquerel()->getDimension());
    EXPECT_THAT(SI::Hertz(), ConvertsTo(SI::Becquerel(), 2.5, 2.5));
}

TEST(SI, GrayAndSievertAreTwoCompatibleUnits) {
    EXPECT_NE(SI::Gray(), SI::Sievert());
    EXPECT_FALSE(SI::Gray()->equals(SI::Sievert()));
    EXPECT_EQ(SI::Gray()->getDimension(), SI::Sievert()->getDimension());
    EXPECT_THAT(SI::Gray(), ConvertsTo(SI::Sievert(), 2.5, 2.5));
}

TEST(SI, RadianSteradianAndBitAreThreeUnitsWithoutDimension) {
    EXPECT_FALSE(SI::Radian()->equals(SI::Steradian()));
    EXPECT_FALSE(SI::Radian()->equals(SI::Bit()));
    EXPECT_FALSE(SI::Steradian()->equals(SI::Bit()));
    for (const CUnitPtr& unit : {SI::Radian(), SI::Steradian(), SI::Bit()}) {
        EXPECT_EQ(unit->getDimension(), CProductUnit::one());
        EXPECT_EQ(unit->baseUnits(), CProductUnit::one());
    }
}

TEST(SI, TheSymbolOfTheOhmIsTheOhmSign) {
    const string_t symbol = SI::Ohm()->getSymbol();
    EXPECT_EQ(symbol.length(), 1U);
    EXPECT_EQ(symbol[0], U'\u2126');
    EXPECT_EQ(text(symbol), "\xE2\x84\xA6");
    EXPECT_EQ(CUnitFormat::unitFor("\u03A9"), nullptr);  // the Greek letter
    EXPECT_EQ(CUnitFormat::unitFor("k\u03A9"), nullptr);
    EXPECT_EQ(CUnitFormat::unitFor("k\u2126"), SI::Kilo(SI::Ohm()));
}

TEST(SI, TheDegreeCelsiusHasTheLabelDegreeSignC) {
    EXPECT_EQ(SI::Celsius()->toStdString(), "\xC2\xB0\x43");
    EXPECT_EQ(SI::Celsius()->toString().length(), 2U);
}

TEST(SI, TheGramIsAThousandthOfTheKilogramWithALabel) {
    EXPECT_EQ(SI::Gram(), SI::Kilogram()->multiply(0.001));
    EXPECT_NE(std::dynamic_pointer_cast<CTransformedUnit>(SI::Gram()), nullptr);
    EXPECT_EQ(SI::Gram()->getSystemUnit(), SI::Kilogram());
    EXPECT_EQ(text(SI::Gram()->getSymbol()), "");
    EXPECT_EQ(CUnit::searchSymbol("g"), nullptr);
    EXPECT_THAT(SI::Kilogram(), ConvertsTo(SI::Gram(), 1, 1000));
    EXPECT_THAT(SI::Gram(), ConvertsTo(SI::Kilogram(), 1, 0.001));
}

TEST(SI, ZeroDegreesCelsiusAre273Point15Kelvin) {
    EXPECT_NE(std::dynamic_pointer_cast<CTransformedUnit>(SI::Celsius()), nullptr);
    EXPECT_EQ(SI::Celsius()->getSystemUnit(), SI::Kelvin());
    EXPECT_EQ(text(SI::Celsius()->getSymbol()), "");
    EXPECT_THAT(SI::Celsius(), ConvertsTo(SI::Kelvin(), 0, 273.15));
    EXPECT_THAT(SI::Celsius(), ConvertsTo(SI::Kelvin(), 26.5, 26.5 + 273.15));
    EXPECT_THAT(SI::Kelvin(), ConvertsTo(SI::Celsius(), 273.15, 0));
}

// The hash code ignores offsets.
TEST(SI, TheKelvinWithAnyOffsetIsTheDegreeCelsius) {
    EXPECT_EQ(SI::Kelvin()->add(273.15), SI::Celsius());
    EXPECT_EQ(SI::Kelvin()->add(-10), SI::Celsius());
    EXPECT_EQ(SI::Kelvin()->multiply(1.0), SI::Celsius());
}

TEST(SI, OnlyTheGramAndTheDegreeCelsiusHaveLabels) {
    std::vector<std::string> labelled;
    for (const Accessor& accessor : all()) {
        if (CUnitFormat::unitLabelMap().count(accessor.Get()) != 0) {
            labelled.emplace_back(accessor.Name);
        }
    }
    EXPECT_THAT(labelled, ::testing::ElementsAre("g", "°C"));
}

// The prefix functions.

struct PrefixFunction {
    ePrefix Prefix;
    CUnitPtr (*Scale)(CUnitPtr);
    const char* Symbol;
    double Factor;
};

const PrefixFunction PREFIX_FUNCTIONS[] = {
    {YOTTA, SI::Yotta, "Y", 1e24},  {ZETTA, SI::Zetta, "Z", 1e21},  {EXA, SI::Exa, "E", 1e18},
    {PETA, SI::Peta, "P", 1e15},    {TERA, SI::Tera, "T", 1e12},    {GIGA, SI::Giga, "G", 1e9},
    {MEGA, SI::Mega, "M", 1e6},     {KILO, SI::Kilo, "k", 1000},    {HECTO, SI::Hecto, "h", 100},
    {DECA, SI::Deka, "da", 10},     {DECI, SI::Deci, "d", 0.1},     {CENTI, SI::Centi, "c", 0.01},
    {MILLI, SI::Milli, "m", 0.001}, {MICRO, SI::Micro, "µ", 1e-6},  {NANO, SI::Nano, "n", 1e-9},
    {PICO, SI::Pico, "p", 1e-12},   {FEMTO, SI::Femto, "f", 1e-15}, {ATTO, SI::Atto, "a", 1e-18},
    {ZEPTO, SI::Zepto, "z", 1e-21}, {YOCTO, SI::Yocto, "y", 1e-24},
};

TEST(SI, PrefixFunctionsMultiplyByTheFactorOfTheirPrefix) {
    for (const PrefixFunction& row : PREFIX_FUNCTIONS) {
        SCOPED_TRACE(row.Symbol);
        EXPECT_THAT(prefix(row.Prefix).Factor, HasBitsOf(row.Factor));
        EXPECT_EQ(text(prefix(row.Prefix).Symbol), row.Symbol);
        for (const CUnitPtr& unit : {CUnitPtr(SI::Meter()), SI::Newton()}) {
            const CUnitPtr scaled = row.Scale(unit);
            EXPECT_EQ(scaled, unit->multiply(row.Factor));
            EXPECT_THAT(scaled, ConvertsTo(unit, 2.5, 2.5 * row.Factor));
            EXPECT_EQ(scaled, CUnit::fromString(row.Symbol + unit->toStdString()));
        }
    }
}

TEST(SI, PrefixFunctionsMultiplyUnitsThatAreMultiplesAlready) {
    EXPECT_THAT(SI::Kilo(NonSI::Hour()), ConvertsTo(SI::Second(), 1, 3600000));
    EXPECT_EQ(SI::Kilo(NonSI::Hour())->getSystemUnit(), SI::Second());
}

TEST(SI, PrefixFunctionsAttachNoLabel) {
    const CUnitPtr own = CBaseUnit::getInstance(freshSymbol());
    const std::size_t labels = CUnitFormat::labelUnitMap().size();
    for (const PrefixFunction& row : PREFIX_FUNCTIONS) {
        const CUnitPtr scaled = row.Scale(own);
        EXPECT_EQ(text(CUnitFormat::labelFor(scaled)), "");
        EXPECT_THAT(
            [&] { scaled->toString(); },
            ThrowsMessage<std::invalid_argument>(StrEq("Cannot format given Object as a Unit")));
    }
    EXPECT_EQ(CUnitFormat::labelUnitMap().size(), labels);
}

// The factor 1e-48 is zero as a float, so the hash code is that of the metre.
TEST(SI, TheYoctoyoctometreIsAnEmptyPointer) {
    EXPECT_EQ(SI::Yocto(SI::Yocto(SI::Meter())), nullptr);
}

}  // namespace
}  // namespace mensor
