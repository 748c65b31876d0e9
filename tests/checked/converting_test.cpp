// converting_test.cpp: converters that round once, and their use as converters of the library.
#include "mensor_checked/converting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
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
#include "mensor_checked/Packs.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/making.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/Error.h"
#include "support/ClientConverters.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using checked::converter;
using checked::readUnit;
using ::testing::ThrowsMessage;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

TEST(Converting, GivesTheNearestDouble) {
    EXPECT_EQ(converter(readUnit("g"), readUnit("Mg"))->convert(5), 5e-6);
    EXPECT_EQ(converter(SI::Celsius(), SI::Kelvin())->convert(-40), 233.15);
    EXPECT_EQ(SI::Gram()->convertValueToUnit(5, readUnit("Mg")), 4.9999999999999996e-06)
        << "the result of the registry";
    checked::registerPack(checked::ePack::OFFSETS);
    EXPECT_EQ(converter(readUnit("°F"), SI::Celsius())->convert(98.6), 37);
}

// Converts random doubles between all pairs of names with the same dimension.
TEST(Converting, AgreesWithTheExactLibraryForAllPairs) {
    int count = 0;
    const std::vector<string_t> names = {"m", "km",  "nm",  "min",   "h",   "week",
                                         "s", "psi", "bar", "mm_Hg", "°C",  "K",
                                         "l", "ml",  "m³",  "°",     "rad", "″"};
    for (const string_t& from : names) {
        for (const string_t& to : names) {
            const CUnitPtr a = readUnit(std::string(from.data(), from.size()));
            const CUnitPtr b = readUnit(std::string(to.data(), to.size()));
            if (!checked::meaningOf(a).isCompatibleWith(checked::meaningOf(b))) {
                continue;
            }
            const CConverterPtr exactly = converter(a, b);
            const exact::CConversion expected(checked::meaningOf(a), checked::meaningOf(b));
            for (double x = 1e-12; std::fabs(x) < 1e12; x *= -7.3) {
                EXPECT_EQ(bitsOf(exactly->convert(x)), bitsOf(expected.convert(x)));
                ++count;
            }
        }
    }
    EXPECT_GT(count, 1000);
}

TEST(Converting, AUnitToItselfGivesTheIdentityConverter) {
    EXPECT_EQ(converter(SI::Meter(), SI::Meter()), CConverter::identity());
}

TEST(Converting, InvertsExactly) {
    const CConverterPtr toHours = converter(SI::Second(), NonSI::Hour());
    EXPECT_EQ(toHours->inverse()->convert(0.1), 360);
    EXPECT_TRUE(toHours->inverse()->equals(converter(NonSI::Hour(), SI::Second())));
    EXPECT_EQ(toHours->inverse()->inverse()->convert(7), toHours->convert(7));
    EXPECT_EQ(converter(SI::Celsius(), SI::Kelvin())->inverse()->convert(300.0), 26.85);
}

TEST(Converting, HasASlopeAndTellsScalingsFromShifts) {
    const CConverterPtr toHours = converter(SI::Second(), NonSI::Hour());
    EXPECT_EQ(toHours->derivative(5), 1.0 / 3600);
    EXPECT_TRUE(toHours->isLinear());
    const CConverterPtr toKelvin = converter(SI::Celsius(), SI::Kelvin());
    EXPECT_EQ(toKelvin->derivative(5), 1);
    EXPECT_FALSE(toKelvin->isLinear());
}

TEST(Converting, EqualsConvertersOfTheSameConversion) {
    const CConverterPtr toMetres = converter(readUnit("km"), SI::Meter());
    EXPECT_TRUE(toMetres->equals(converter(readUnit("Mm"), readUnit("km"))));
    EXPECT_TRUE(toMetres->equals(std::make_shared<CMultiplyConverter>(1000)));
    EXPECT_TRUE(std::make_shared<CMultiplyConverter>(1000)->equals(toMetres));
    EXPECT_FALSE(toMetres->equals(converter(readUnit("hm"), SI::Meter())));
    EXPECT_FALSE(toMetres->equals(nullptr));
    EXPECT_EQ(toMetres->hashCode(), CMultiplyConverter(1000).hashCode());

    const CConverterPtr toKelvin = converter(SI::Celsius(), SI::Kelvin());
    EXPECT_TRUE(toKelvin->equals(toKelvin));
    EXPECT_TRUE(toKelvin->equals(converter(SI::Celsius(), SI::Kelvin())));
    EXPECT_FALSE(toKelvin->equals(converter(SI::Kelvin(), SI::Celsius())));
    EXPECT_FALSE(
        toKelvin->equals(converter(checked::CMeaning::base("K").shifted(exact::CFraction(273)),
                                   checked::CMeaning::base("K"))));
    EXPECT_FALSE(toKelvin->equals(CConverter::identity()));
    EXPECT_FALSE(CConverter::identity()->equals(toKelvin));
}

TEST(Converting, CanBeChained) {
    const CConverterPtr toMetres = converter(readUnit("km"), SI::Meter());
    const CConverterPtr chain = toMetres->concatenate(std::make_shared<CAddConverter>(2));
    EXPECT_EQ(chain->convert(3), 5000) << "adds 2, then multiplies by 1000";
    EXPECT_EQ(chain->inverse()->convert(5000), 3);
    EXPECT_EQ(chain->derivative(0), 1000);
    EXPECT_EQ(toMetres->concatenate(CConverter::identity()), toMetres);
    EXPECT_EQ(CConverter::identity()->concatenate(toMetres)->convert(3), 3000);
    double values[] = {1, 2, 3};
    chain->convertAll(values, values, 3);
    EXPECT_THAT(values, ::testing::ElementsAre(3000, 4000, 5000));
}

TEST(Converting, ConvertsArraysToTheSameBits) {
    const CConverterPtr toHours = converter(SI::Second(), NonSI::Hour());
    std::vector<double> values = {
        0.0, -0.0, 1, 0.1, 1e300, 5e-324, NaN, std::numeric_limits<double>::infinity(), -7.25};
    std::vector<double> results(values.size());
    toHours->convertAll(values.data(), results.data(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(bitsOf(results[i]), bitsOf(toHours->convert(values[i]))) << values[i];
    }
    const std::vector<double> expected = results;
    toHours->convertAll(values.data(), values.data(), values.size());
    EXPECT_TRUE(std::equal(values.begin(), values.end(), expected.begin(),
                           [](double a, double b) { return bitsOf(a) == bitsOf(b); }));
    EXPECT_THROW(toHours->convertAll(values.data(), values.data() + 1, 3), std::invalid_argument);
    EXPECT_THROW(toHours->convertAll(nullptr, values.data(), 1), std::invalid_argument);
}

// A unit of 1001 m is not registered yet.
TEST(Converting, CanDefineAUnitOfTheLibrary) {
    const CConverterPtr converter = checked::converter(
        exact::CMeaning::base("m").scaled(exact::CFactor(exact::CFraction(1001))),
        exact::CMeaning::base("m"));
    const CUnitPtr unit = CTransformedUnit::getInstance(SI::Meter(), converter);
    EXPECT_EQ(unit->convertValueToUnit(2, SI::Meter()), 2002);
    EXPECT_EQ(checked::meaningOf(unit).toString(), "1001 m");
    EXPECT_EQ(unit, SI::Meter()->multiply(1001)) << "both have the same identity";
    EXPECT_EQ((unit / SI::Second())->convertValueToUnit(2, readUnit("m/s")), 2002);
    EXPECT_TRUE(checked::converter(unit, readUnit("km"))
                    ->equals(checked::converter(checked::meaningOf(unit),
                                                checked::meaningOf(readUnit("km")))))
        << "exact, as for the units of the library";
    const CConverterPtr shift = checked::converter(
        exact::CMeaning::base("K").shifted(exact::CFraction(-1001)), exact::CMeaning::base("K"));
    EXPECT_EQ(
        checked::meaningOf(std::make_shared<CTransformedUnit>(SI::Kelvin(), shift)).toString(),
        "K - 1001");
}

TEST(Converting, ConvertsByMeaningsWhereTheRegistryHasNoObject) {
    readUnit("Wb/A");
    ASSERT_EQ(checked::tryReadUnit("kg/(s·K)").Refusal->Code, checked::eRefusal::COLLISION);
    EXPECT_EQ(converter(checked::readMeaning("kg/(s·K)"), checked::readMeaning("g/(min·K)"))
                  ->convert(0.1),
              6000);
    readUnit("1/V");
    const checked::CReading pace = checked::tryReadUnit("min/km");
    ASSERT_EQ(pace.Refusal->Code, checked::eRefusal::DIMENSION_COLLISION);
    EXPECT_EQ(converter(checked::readMeaning("min/km"), checked::readMeaning("s/m"))->convert(5),
              0.3);
}

TEST(Converting, UsesTheConverterOfTheRegistryIfABaseUnitIsMapped) {
    const auto own = std::dynamic_pointer_cast<CBaseUnit>(CBaseUnit::getInstance("qxy"));
    own->setDimension(SI::Second(), std::make_shared<CMultiplyConverter>(0.25));
    EXPECT_EQ(converter(own, SI::Second())->convert(3), 0.75);
    EXPECT_EQ(converter(SI::Second(), own)->convert(0.75), 3);
}

TEST(Converting, UsesTheConverterOfTheRegistryForAClientsClassOfConverter) {
    const CUnitPtr bent = CTransformedUnit::getInstance(SI::Meter(), std::make_shared<CBent>(0.5));
    EXPECT_EQ(converter(bent, SI::Meter())->convert(2), 1);
    EXPECT_EQ(converter(SI::Meter(), bent)->convert(1), 2);
}

TEST(Converting, ComparesTheKindsOfAClientsClassOfConverter) {
    const auto converter = std::make_shared<CBent>(0.5);
    const CUnitPtr bent = CTransformedUnit::getInstance(SI::Radian(), converter);
    EXPECT_EQ(checked::converter(bent, SI::Radian(), checked::eKinds::SAME)->convert(2), 1);
    EXPECT_EQ(checked::converter(bent, CProductUnit::one())->convert(2), 1);
    EXPECT_THROW(checked::converter(bent, CProductUnit::one(), checked::eKinds::SAME),
                 exact::CError);
    EXPECT_THROW(checked::converter(CProductUnit::one(), bent, checked::eKinds::SAME),
                 exact::CError);
}

TEST(Converting, RefusesUnitsThatOnlyACollisionMakesCompatible) {
    const CUnitPtr right = readUnit("1/s²");
    const CUnitPtr wrong = CUnit::fromString("1/(cm·K)");
    ASSERT_TRUE(wrong->isCompatible(right));
    EXPECT_THROW(converter(wrong, right), exact::CError);
    EXPECT_THROW(converter(right, wrong), exact::CError);
}

TEST(Converting, RefusesDifferentDimensionsAndEmptyPointers) {
    EXPECT_THAT(
        [] { converter(NonSI::Bar(), SI::Meter()); },
        ThrowsMessage<exact::CError>("cannot convert 100000 kg/(m·s²) to m: pressure and length"));
    EXPECT_THAT([] { converter(nullptr, SI::Meter()); },
                ThrowsMessage<std::invalid_argument>("converter: the unit is an empty pointer"));
    EXPECT_THAT([] { converter(SI::Meter(), nullptr); },
                ThrowsMessage<std::invalid_argument>("converter: the unit is an empty pointer"));
}

}  // namespace
}  // namespace mensor
