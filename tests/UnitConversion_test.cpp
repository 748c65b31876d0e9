// UnitConversion_test.cpp: dimensions, compatible units, and the converters between units.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "support/ClientConverters.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StrEq;
using ::testing::ThrowsMessage;

CConverterPtr factor(double x) { return std::make_shared<CMultiplyConverter>(x); }

bool hasDimensionCached(const CUnitPtr& unit) { return CUnit::dimensions().count(unit) == 1; }
bool hasConverterEntry(const CUnitPtr& unit) { return CUnit::toDimensions().count(unit) == 1; }

// Dimensions.

TEST(UnitConversion, TheDimensionIsComputedOnceAndThenCached) {
    const auto unit = freshClientUnit();
    const CUnitPtr dimension = freshUnit();
    unit->CtxDimension = [&] { return dimension; };
    ASSERT_FALSE(hasDimensionCached(unit));
    EXPECT_EQ(unit->getDimension(), dimension);
    EXPECT_EQ(CUnit::dimensions().at(unit), dimension);
    EXPECT_EQ(unit->getDimension(), dimension);
    EXPECT_THAT(unit->Asked, ElementsAre("getCtxDimension"));
}

TEST(UnitConversion, ACachedDimensionIsReturnedWithoutACallOfTheUnit) {
    const auto unit = freshClientUnit();
    const CUnitPtr planted = freshUnit();
    CUnit::dimensions()[unit] = planted;
    EXPECT_EQ(unit->getDimension(), planted);
    EXPECT_THAT(unit->Asked, IsEmpty());
}

TEST(UnitConversion, ADimensionThatThrowsIsNotCached) {
    const auto unit = freshClientUnit();
    unit->CtxDimension = []() -> CUnitPtr { throw std::runtime_error("no dimension"); };
    EXPECT_THAT([&] { unit->getDimension(); },
                ThrowsMessage<std::runtime_error>(StrEq("no dimension")));
    EXPECT_FALSE(hasDimensionCached(unit));
    EXPECT_TRUE(isFree(CUnit::mutex()));
    unit->CtxDimension = nullptr;
    EXPECT_EQ(unit->getDimension(), unit);
}

TEST(UnitConversion, EachKindOfUnitHasItsDimension) {
    const CUnitPtr m = SI::Meter();
    EXPECT_EQ(m->getDimension(), m);
    EXPECT_EQ((m * 1000.0)->getDimension(), m);
    EXPECT_EQ(SI::Celsius()->getDimension(), SI::Kelvin());
    EXPECT_EQ((m / SI::Second())->getDimension(), m / SI::Second());
    EXPECT_EQ(CUnit::fromString("km/h")->getDimension(), m / SI::Second());
    EXPECT_EQ(SI::Newton()->getDimension(), m * SI::Kilogram() / (SI::Second() ^ 2));
    EXPECT_EQ(SI::Radian()->getDimension(), CProductUnit::one());
    EXPECT_EQ(CProductUnit::one()->getDimension(), CProductUnit::one());
    EXPECT_EQ(NonSI::Liter()->getDimension(), m ^ 3);
}

TEST(UnitConversion, TheMutexIsHeldWhileAUnitComputesItsDimensionAndConverter) {
    const auto unit = freshClientUnit();
    std::vector<bool> wasFree;
    unit->CtxDimension = [&]() -> CUnitPtr {
        wasFree.push_back(isFree(CUnit::mutex()));
        return SI::Meter();
    };
    unit->CtxToDimension = [&]() -> CConverterPtr {
        wasFree.push_back(isFree(CUnit::mutex()));
        return CConverter::identity();
    };
    unit->getConverterTo(SI::Meter());
    EXPECT_THAT(wasFree, ElementsAre(false, false));
    EXPECT_TRUE(isFree(CUnit::mutex()));
}

// Compatibility.

TEST(UnitConversion, UnitsAreCompatibleIfTheirDimensionsAreTheSameObject) {
    const auto unit = freshClientUnit();
    const auto other = freshClientUnit();
    EXPECT_FALSE(unit->isCompatible(other));
    const CUnitPtr dimension = freshUnit();
    CUnit::dimensions().clear();
    unit->CtxDimension = other->CtxDimension = [&] { return dimension; };
    EXPECT_TRUE(unit->isCompatible(other));
    EXPECT_TRUE(other->isCompatible(unit));
    EXPECT_TRUE(unit->isCompatible(dimension));
    EXPECT_FALSE(unit->isCompatible(SI::Meter()));
}

TEST(UnitConversion, EqualButDistinctDimensionsAreNotCompatible) {
    const auto unit = freshClientUnit();
    const auto other = freshClientUnit();
    unit->CtxDimension = [] { return std::make_shared<CAlternateUnit>("qq", SI::Meter()); };
    other->CtxDimension = [] { return std::make_shared<CAlternateUnit>("qq", SI::Meter()); };
    EXPECT_FALSE(unit->isCompatible(other));
    EXPECT_TRUE(unit->getDimension()->equals(other->getDimension()));
}

TEST(UnitConversion, AUnitIsCompatibleWithItselfWithoutACallOfTheUnit) {
    const auto unit = freshClientUnit();
    unit->CtxDimension = []() -> CUnitPtr { throw std::runtime_error("no dimension"); };
    EXPECT_TRUE(unit->isCompatible(unit));
    EXPECT_THAT(unit->Asked, IsEmpty());
    EXPECT_FALSE(hasDimensionCached(unit));
}

TEST(UnitConversion, IsCompatibleComputesTheDimensionOfThisUnitFirst) {
    const auto unit = freshClientUnit();
    const auto other = freshClientUnit();
    std::vector<std::string> order;
    unit->CtxDimension = [&]() -> CUnitPtr {
        order.push_back("this");
        return SI::Meter();
    };
    other->CtxDimension = [&]() -> CUnitPtr {
        order.push_back("that");
        return SI::Meter();
    };
    EXPECT_TRUE(unit->isCompatible(other));
    EXPECT_THAT(order, ElementsAre("this", "that"));
    order.clear();
    CUnit::dimensions().clear();
    EXPECT_TRUE(other->isCompatible(unit));
    EXPECT_THAT(order, ElementsAre("that", "this"));
}

// The identity.

TEST(UnitConversion, AUnitConvertsToItselfByTheIdentity) {
    for (const CUnitPtr& unit :
         {CUnitPtr(SI::Meter()), SI::Newton(), SI::Celsius(), SI::Gram(), NonSI::Hour(),
          SI::Meter() / SI::Second(), SI::Celsius() * SI::Meter(), CProductUnit::one()}) {
        EXPECT_EQ(unit->getConverterTo(unit), CConverter::identity());
    }
}

TEST(UnitConversion, AUnitThatCannotComputeItsDimensionConvertsToItself) {
    const auto unit = freshClientUnit();
    unit->CtxDimension = []() -> CUnitPtr { throw std::runtime_error("no dimension"); };
    unit->CtxToDimension = []() -> CConverterPtr { throw std::runtime_error("no converter"); };
    EXPECT_EQ(unit->getConverterTo(unit), CConverter::identity());
    EXPECT_THAT(unit, ConvertsTo(unit, 2.5, 2.5));
    EXPECT_THAT(unit->Asked, IsEmpty());
    EXPECT_FALSE(hasDimensionCached(unit));
    EXPECT_FALSE(hasConverterEntry(unit));
}

// Converters.

TEST(UnitConversion, UnitsAreCalledOnceAndInAFixedOrder) {
    const auto unit = freshClientUnit();
    const auto other = freshClientUnit();
    std::vector<std::string> order;
    const auto logsDimension = [&order](const char* name) {
        return [&order, name]() -> CUnitPtr {
            order.push_back(std::string(name) + " dimension");
            return SI::Meter();
        };
    };
    const auto logsConverter = [&order](const char* name) {
        return [&order, name]() -> CConverterPtr {
            order.push_back(std::string(name) + " converter");
            return factor(2);
        };
    };
    unit->CtxDimension = logsDimension("this");
    unit->CtxToDimension = logsConverter("this");
    other->CtxDimension = logsDimension("that");
    other->CtxToDimension = logsConverter("that");
    unit->getConverterTo(other);
    EXPECT_THAT(
        order, ElementsAre("this dimension", "that dimension", "this converter", "that converter"));
    EXPECT_THAT(unit->Asked, ElementsAre("getCtxDimension", "getCtxToDimension"));
    unit->getConverterTo(other);
    other->getConverterTo(unit);
    EXPECT_EQ(order.size(), 4U);  // all four are cached, per unit
}

TEST(UnitConversion, TheConverterGoesThroughTheDimensionToTheOtherUnit) {
    const auto unit = freshClientUnit();
    const auto other = freshClientUnit();
    const CConverterPtr ofUnit = factor(6);
    const CConverterPtr ofOther = factor(4);
    unit->CtxDimension = other->CtxDimension = [] { return SI::Meter(); };
    unit->CtxToDimension = [&] { return ofUnit; };
    other->CtxToDimension = [&] { return ofOther; };
    const auto chain = std::dynamic_pointer_cast<CCompound>(unit->getConverterTo(other));
    ASSERT_NE(chain, nullptr);  // two factors, which are not combined
    EXPECT_EQ(chain->first(), ofUnit);
    const auto second = std::dynamic_pointer_cast<CMultiplyConverter>(chain->second());
    ASSERT_NE(second, nullptr);
    EXPECT_THAT(second->factor(), HasBitsOf(1.0 / 4.0));
    EXPECT_THAT(unit, ConvertsTo(other, 10.0, 15.0));
    EXPECT_EQ(CUnit::toDimensions().at(unit), ofUnit);
    EXPECT_EQ(CUnit::toDimensions().at(other), ofOther);
}

TEST(UnitConversion, TheConverterFromADimensionIsTheInverseAndNoChain) {
    const auto unit = freshClientUnit();
    unit->CtxDimension = [] { return SI::Meter(); };
    unit->CtxToDimension = [] { return factor(4); };
    const auto inverse =
        std::dynamic_pointer_cast<CMultiplyConverter>(SI::Meter()->getConverterTo(unit));
    ASSERT_NE(inverse, nullptr);
    EXPECT_THAT(inverse->factor(), HasBitsOf(0.25));
}

TEST(UnitConversion, TheChainToADimensionEndsWithTheIdentity) {
    const auto unit = freshClientUnit();
    const CConverterPtr ofUnit = factor(4);
    unit->CtxDimension = [] { return SI::Meter(); };
    unit->CtxToDimension = [&] { return ofUnit; };
    const auto chain = std::dynamic_pointer_cast<CCompound>(unit->getConverterTo(SI::Meter()));
    ASSERT_NE(chain, nullptr);
    EXPECT_EQ(chain->first(), ofUnit);
    EXPECT_EQ(chain->second(), CConverter::identity());
}

TEST(UnitConversion, TwoUnitsThatConvertByTheIdentityHaveTheIdentityAsConverter) {
    const CUnitPtr product = SI::Meter() * SI::Kilogram() / (SI::Second() ^ 2);
    ASSERT_NE(SI::Newton(), product);
    EXPECT_EQ(SI::Newton()->getConverterTo(product), CConverter::identity());
    EXPECT_EQ(product->getConverterTo(SI::Newton()), CConverter::identity());
}

TEST(UnitConversion, TheConverterToAUnitUndoesEachOfFortyScalings) {
    const CUnitPtr system = freshUnit(), from = system * 3.0;
    CUnitPtr to = system;
    for (int i = 0; i < 40; ++i) {
        to = to * 2.0;
    }
    EXPECT_THAT(from, ConvertsTo(to, 1.0, std::ldexp(3.0, -40)));
    EXPECT_THAT(to, ConvertsTo(from, 3.0, std::ldexp(1.0, 40)));
}

TEST(UnitConversion, TheConverterToAUnitCallsTheInverseOfAClientsConverter) {
    const CUnitPtr system = freshUnit(), from = system * 3.0;
    const auto to = freshClientUnit();
    to->CtxDimension = [&] { return system; };
    to->CtxToDimension = [] { return std::make_shared<CScaling>(4.0); };
    EXPECT_THAT(from, ConvertsTo(CUnitPtr(to), 1.0, 0.75));
}

TEST(UnitConversion, TheChainFromADimensionOwnsTheInverse) {
    const CUnitPtr system = freshUnit();
    const auto unit = freshClientUnit();
    unit->CtxDimension = [&] { return system; };
    unit->CtxToDimension = [] {
        return std::make_shared<CCompound>(CConverter::identity(), CConverter::identity());
    };
    const CConverterPtr quarter = unit->getConverterTo(system * 4.0);
    const CConverterPtr eighth = unit->getConverterTo(system * 8.0);
    EXPECT_EQ(quarter->convert(2), 0.5);
    EXPECT_EQ(eighth->convert(2), 0.25);
}

TEST(UnitConversion, ConvertersAreCachedPerUnitAndNotPerPair) {
    const CUnitPtr km = SI::Meter() * 1000.0;
    const CUnitPtr mm = SI::Meter() * 0.001;
    const auto first = std::dynamic_pointer_cast<CCompound>(km->getConverterTo(mm));
    const auto second = std::dynamic_pointer_cast<CCompound>(km->getConverterTo(mm));
    ASSERT_NE(first, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->first(), second->first());
    EXPECT_EQ(first->first(), CUnit::toDimensions().at(km));
    EXPECT_NE(first->second(), second->second());  // each call makes a new inverse
}

TEST(UnitConversion, ACachedConverterIsUsedWithoutACallOfTheUnit) {
    const auto unit = freshClientUnit();
    unit->CtxDimension = [] { return SI::Meter(); };
    CUnit::toDimensions()[unit] = factor(7);
    EXPECT_THAT(unit, ConvertsTo(SI::Meter(), 1.0, 7.0));
    EXPECT_THAT(unit->Asked, ElementsAre("getCtxDimension"));
}

TEST(UnitConversion, ConvertsKilometresAndMetres) {
    const CUnitPtr km = SI::Meter() * 1000.0;
    EXPECT_THAT(km, ConvertsTo(SI::Meter(), 1.0, 1000.0));
    EXPECT_THAT(SI::Meter(), ConvertsTo(km, 1000.0, 1.0));
    EXPECT_THAT(km, ConvertsTo(SI::Meter(), -2.5, -2500.0));
    EXPECT_THAT(km, ConvertsTo(SI::Meter() * 0.001, 1.0, 1000.0 * (1.0 / 0.001)));
}

TEST(UnitConversion, DegreesCelsiusConvertToKelvinsWithTheirOffset) {
    EXPECT_THAT(SI::Celsius(), ConvertsTo(SI::Kelvin(), 0.0, 273.15));
    EXPECT_THAT(SI::Kelvin(), ConvertsTo(SI::Celsius(), 273.15, 0.0));
    EXPECT_THAT(SI::Celsius(), ConvertsTo(SI::Kelvin(), 21.5, 21.5 + 273.15));
}

TEST(UnitConversion, TemperatureScalesWithOffsetsConvertByACompound) {
    const CUnitPtr fahrenheit = CTransformedUnit::getInstance(
        SI::Kelvin(),
        std::make_shared<CCompound>(std::make_shared<CAddConverter>(459.67), factor(5.0 / 9.0)));
    ASSERT_NE(fahrenheit, nullptr);
    const CConverterPtr converter = fahrenheit->getConverterTo(SI::Celsius());
    ASSERT_NE(std::dynamic_pointer_cast<CCompound>(converter), nullptr);
    EXPECT_FALSE(converter->isLinear());
    EXPECT_THAT(converter->convert(212.0), HasBitsOf((212.0 + 459.67) * (5.0 / 9.0) + -273.15));
    EXPECT_NEAR(converter->convert(212.0), 100.0, 1e-12);
    EXPECT_NEAR(SI::Celsius()->convertValueToUnit(-40.0, fahrenheit), -40.0, 1e-12);
}

TEST(UnitConversion, ConvertValueToUnitGivesTheResultOfTheConverter) {
    EXPECT_THAT(NonSI::Hour()->convertValueToUnit(1.5, SI::Second()), HasBitsOf(5400.0));
    const CUnitPtr kmh = CUnit::fromString("km/h");
    const CUnitPtr ms = SI::Meter() / SI::Second();
    EXPECT_THAT(kmh->convertValueToUnit(90.0, ms),
                WithinOneUlp(25.0));  // its slope is computed with pow
    EXPECT_THAT(kmh->convertValueToUnit(90.0, ms),
                HasBitsOf(kmh->getConverterTo(ms)->convert(90.0)));
}

TEST(UnitConversion, TheTargetUnitMayBeAText) {
    const CConverterPtr converter = NonSI::Hour()->getConverterTo("min");
    EXPECT_THAT(converter->convert(1.5),
                HasBitsOf(NonSI::Hour()->convertValueToUnit(1.5, NonSI::Minute())));
    EXPECT_EQ(SI::Meter()->getConverterTo("m"), CConverter::identity());
    EXPECT_EQ(CProductUnit::one()->getConverterTo(""), CConverter::identity());
    EXPECT_THAT(SI::Joule()->getConverterTo(string_t("m²·kg/s²"))->convert(2.0), HasBitsOf(2.0));
}

TEST(UnitConversion, ATextThatDoesNotParseThrowsWhatTheParserThrows) {
    EXPECT_THAT([] { SI::Meter()->getConverterTo("xyz"); },
                ThrowsMessage<std::invalid_argument>(StrEq("Label: xyz not recognized")));
    EXPECT_THAT([] { SI::Meter()->getConverterTo("s"); },
                ThrowsMessage<std::invalid_argument>(
                    StrEq("m is not compatible with s in current context")));
}

// Errors.

TEST(UnitConversion, TheMessageNamesIncompatibleUnitsByTheirSymbols) {
    struct Row {
        CUnitPtr From, To;
        const char* Message;
    };
    const Row rows[] = {
        {SI::Meter(), SI::Second(), "m is not compatible with s in current context"},
        {SI::Second(), SI::Meter(), "s is not compatible with m in current context"},
        {SI::Newton(), SI::Ohm(), "N is not compatible with \u2126 in current context"},
        {CProductUnit::one(), SI::Meter(), "One is not compatible with m in current context"},
        {SI::Meter(), SI::Radian(), "m is not compatible with rad in current context"},
        // Products and transformed units have no symbol. Labels are not used.
        {SI::Meter() / SI::Second(), SI::Meter(), " is not compatible with m in current context"},
        {SI::Meter(), NonSI::Hour(), "m is not compatible with  in current context"},
        {SI::Celsius(), SI::Meter() ^ 2, " is not compatible with  in current context"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.Message);
        const Tables before;
        EXPECT_FALSE(row.From->isCompatible(row.To));
        EXPECT_THAT([&] { row.From->getConverterTo(row.To); },
                    ThrowsMessage<std::invalid_argument>(StrEq(row.Message)));
        EXPECT_THAT([&] { row.From->convertValueToUnit(1.0, row.To); },
                    ThrowsMessage<std::invalid_argument>(StrEq(row.Message)));
        EXPECT_EQ(Tables(), before);
        EXPECT_TRUE(isFree(CUnit::mutex()));
    }
}

TEST(UnitConversion, ARefusedConversionCachesTheDimensionsButNoConverters) {
    const CUnitPtr unit = freshUnit();
    const CUnitPtr other = freshUnit();
    EXPECT_THROW(unit->getConverterTo(other), std::invalid_argument);
    EXPECT_TRUE(hasDimensionCached(unit));
    EXPECT_TRUE(hasDimensionCached(other));
    EXPECT_FALSE(hasConverterEntry(unit));
    EXPECT_FALSE(hasConverterEntry(other));
}

// getSymbol() of a transformed unit computes the converter to its system unit, and the message
// contains the symbols of both units.
TEST(UnitConversion, TheMessageOfARefusalComputesTheConvertersOfTransformedUnits) {
    const CUnitPtr km = SI::Meter() * 1000.0;
    const CUnitPtr hour = NonSI::Hour();
    CUnit::toDimensions().clear();
    EXPECT_FALSE(km->isCompatible(hour));
    EXPECT_THAT(CUnit::toDimensions(), IsEmpty());
    EXPECT_THROW(km->getConverterTo(hour), std::invalid_argument);
    EXPECT_TRUE(hasConverterEntry(km));
    EXPECT_TRUE(hasConverterEntry(SI::Meter()));
    EXPECT_TRUE(hasConverterEntry(hour));
    EXPECT_TRUE(hasConverterEntry(SI::Second()));
}

TEST(UnitConversion, AnEmptyTableEntryStaysIfTheConverterOfTheUnitThrows) {
    const auto unit = freshClientUnit();
    unit->CtxDimension = [] { return SI::Meter(); };
    unit->CtxToDimension = []() -> CConverterPtr { throw std::runtime_error("no converter"); };
    CUnit::toDimensions().erase(SI::Meter());
    EXPECT_THAT([&] { unit->getConverterTo(SI::Meter()); },
                ThrowsMessage<std::runtime_error>(StrEq("no converter")));
    ASSERT_TRUE(hasConverterEntry(unit));
    EXPECT_EQ(CUnit::toDimensions().at(unit), nullptr);
    EXPECT_FALSE(hasConverterEntry(SI::Meter()));  // it was not called
    EXPECT_TRUE(isFree(CUnit::mutex()));

    unit->CtxToDimension = [] { return factor(2); };
    EXPECT_THAT(unit, ConvertsTo(SI::Meter(), 3.0, 6.0));
    EXPECT_NE(CUnit::toDimensions().at(unit), nullptr);
}

TEST(UnitConversion, AnEmptyTableEntryStaysIfTheConverterOfTheOtherUnitThrows) {
    const auto unit = freshClientUnit();
    unit->CtxDimension = [] { return SI::Meter(); };
    unit->CtxToDimension = []() -> CConverterPtr { throw std::runtime_error("no converter"); };
    CUnit::toDimensions().erase(SI::Meter());
    EXPECT_THAT([&] { SI::Meter()->getConverterTo(unit); },
                ThrowsMessage<std::runtime_error>(StrEq("no converter")));
    EXPECT_EQ(CUnit::toDimensions().at(SI::Meter()), CConverter::identity());
    EXPECT_EQ(CUnit::toDimensions().at(unit), nullptr);

    unit->CtxToDimension = [] { return factor(2); };
    EXPECT_THAT(SI::Meter(), ConvertsTo(unit, 6.0, 3.0));
}

TEST(UnitConversion, AProductWithAnOffsetUnitCannotConvert) {
    const CUnitPtr product = SI::Celsius() * SI::Meter();
    const CUnitPtr target = SI::Kelvin() * SI::Meter();
    EXPECT_TRUE(product->isCompatible(target));
    for (int i = 0; i < 2; ++i) {
        EXPECT_THAT(
            [&] { product->getConverterTo(target); },
            ThrowsMessage<std::logic_error>(StrEq("Unit element  is non-linear, cannot convert")));
        EXPECT_EQ(CUnit::toDimensions().at(product), nullptr);
    }
    EXPECT_EQ(product->getConverterTo(product), CConverter::identity());
}

TEST(UnitConversion, AnEmptyUnitIsRefused) {
    const CUnitPtr none;
    const std::size_t entries = CUnit::toDimensions().size();
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"isCompatible", [&] { SI::Meter()->isCompatible(none); }},
        {"getConverterTo", [&] { SI::Meter()->getConverterTo(none); }},
        {"convertValueToUnit", [&] { SI::Meter()->convertValueToUnit(1.0, none); }},
    };
    for (const auto& [name, call] : rows) {
        SCOPED_TRACE(name);
        const Tables before;
        EXPECT_THAT(call, ThrowsMessage<std::invalid_argument>(::testing::HasSubstr("empty")));
        EXPECT_EQ(Tables(), before);
    }
    EXPECT_EQ(CUnit::toDimensions().size(), entries);
    EXPECT_EQ(CUnit::dimensions().count(none), 0U);
}

TEST(UnitConversion, AUnitWithoutSharedOwnerHasNoDimension) {
    CClientUnit unit("qx", 42);
    EXPECT_THROW(unit.getDimension(), std::bad_weak_ptr);
    EXPECT_THROW(unit.getConverterTo(SI::Meter()), std::bad_weak_ptr);
}

// CBaseUnit::setDimension.

TEST(UnitConversion, SetDimensionClearsBothTablesAndTheNextCallFillsThem) {
    const CBaseUnitPtr unit = freshUnit();
    (unit * 2.0)->getConverterTo(unit);
    ASSERT_FALSE(CUnit::dimensions().empty());
    ASSERT_FALSE(CUnit::toDimensions().empty());
    const CUnitPtr other = freshUnit();
    unit->setDimension(other, factor(3));
    EXPECT_THAT(CUnit::dimensions(), IsEmpty());
    EXPECT_THAT(CUnit::toDimensions(), IsEmpty());
    EXPECT_EQ(unit->getDimension(), other);
    EXPECT_EQ(CUnit::dimensions().size(), 1U);
    EXPECT_EQ(CUnit::dimensions().at(unit), other);
    EXPECT_THAT(CUnit::toDimensions(), IsEmpty());
}

TEST(UnitConversion, SetDimensionChangesEveryUnitThatDependsOnTheBaseUnit) {
    const CBaseUnitPtr length = freshUnit();
    const CBaseUnitPtr time = freshUnit();
    const CUnitPtr scaled = length * 10.0;
    const CUnitPtr speed = length / time;
    const CUnitPtr named = speed->alternate(freshSymbol());
    EXPECT_FALSE(length->isCompatible(time));
    EXPECT_FALSE(scaled->isCompatible(time));
    EXPECT_FALSE(speed->isCompatible(CProductUnit::one()));
    EXPECT_FALSE(named->isCompatible(CProductUnit::one()));

    length->setDimension(time, factor(4));  // 1 length is 4 time
    EXPECT_TRUE(length->isCompatible(time));
    EXPECT_THAT(length, ConvertsTo(time, 3.0, 12.0));
    EXPECT_THAT(time, ConvertsTo(length, 3.0, 0.75));
    EXPECT_THAT(scaled, ConvertsTo(time, 3.0, 120.0));
    EXPECT_THAT(scaled, ConvertsTo(length, 3.0, 30.0));
    EXPECT_THAT(speed, ConvertsTo(CProductUnit::one(), 3.0, 12.0));
    EXPECT_THAT(named, ConvertsTo(CProductUnit::one(), 3.0, 12.0));
    EXPECT_THAT(named, ConvertsTo(speed, 3.0, 3.0));

    length->setDimension(nullptr, nullptr);
    EXPECT_EQ(length->getDimension(), length);
    EXPECT_FALSE(length->isCompatible(time));
    EXPECT_FALSE(speed->isCompatible(CProductUnit::one()));
    EXPECT_THAT(scaled, ConvertsTo(length, 3.0, 30.0));
}

TEST(UnitConversion, SetDimensionDoesNotChangeConvertersThatAClientHas) {
    const CBaseUnitPtr unit = freshUnit();
    const CBaseUnitPtr other = freshUnit();
    unit->setDimension(other, factor(4));
    const CConverterPtr there = unit->getConverterTo(other);
    const CConverterPtr back = other->getConverterTo(unit);
    const CConverterPtr scaled = (unit * 10.0)->getConverterTo(other);

    unit->setDimension(other, factor(5));
    EXPECT_THAT(unit, ConvertsTo(other, 1.0, 5.0));
    EXPECT_THAT(there->convert(1.0), HasBitsOf(4.0));
    EXPECT_THAT(back->convert(1.0), HasBitsOf(0.25));
    EXPECT_THAT(scaled->convert(1.0), HasBitsOf(40.0));

    unit->setDimension(nullptr, nullptr);
    EXPECT_FALSE(unit->isCompatible(other));
    EXPECT_THAT(there->convert(1.0), HasBitsOf(4.0));
}

TEST(UnitConversion, SetDimensionAcceptsAConverterWithAnOffset) {
    const CBaseUnitPtr unit = freshUnit();
    const CBaseUnitPtr other = freshUnit();
    unit->setDimension(other, std::make_shared<CAddConverter>(100.0));
    EXPECT_THAT(unit, ConvertsTo(other, 1.0, 101.0));
    EXPECT_THAT(other, ConvertsTo(unit, 1.0, -99.0));
}

}  // namespace
}  // namespace mensor
