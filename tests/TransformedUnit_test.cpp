// TransformedUnit_test.cpp: scaled and shifted units and the nesting of their converters. Their hash
// code is the slope in single precision; some tests show what follows from that.
#include "mensor/TransformedUnit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor/mensor_math.h"
#include "support/ClientConverters.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"
#include "support/threads.h"

namespace mensor {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StrEq;
using ::testing::ThrowsMessage;

CConverterPtr factor(double x) { return std::make_shared<CMultiplyConverter>(x); }
CConverterPtr offset(double x) { return std::make_shared<CAddConverter>(x); }
CConverterPtr chain(CConverterPtr first, CConverterPtr second) {
    return std::make_shared<CCompound>(first, second);
}

CConverterPtr toSystem(const CUnitPtr& unit) {
    return dynamic_cast<const CTransformedUnit&>(*unit).toSystem();
}

// The nesting of a converter: "id", "*" or "+" with all digits, "(first, second)" for a compound.
std::string shape(const CConverterPtr& converter) {
    std::ostringstream out;
    out.precision(17);
    if (converter == CConverter::identity()) {
        out << "id";
    } else if (const auto add = std::dynamic_pointer_cast<CAddConverter>(converter)) {
        out << "+" << add->getOffset();
    } else if (const auto multiply = std::dynamic_pointer_cast<CMultiplyConverter>(converter)) {
        out << "*" << multiply->factor();
    } else if (const auto compound = std::dynamic_pointer_cast<CCompound>(converter)) {
        out << "(" << shape(compound->first()) << ", " << shape(compound->second()) << ")";
    } else {
        out << "?";
    }
    return out.str();
}

int wrappedSum(int left, int right) {
    return static_cast<int>(static_cast<std::uint32_t>(left) + static_cast<std::uint32_t>(right));
}

// Nesting: units chain converters through the base class, so no constants are combined and no step
// is left out.

TEST(TransformedUnit, AScaledSystemUnitConvertsByTheFactorAndThenTheIdentity) {
    const CConverterPtr thousand = factor(1000);
    const CUnitPtr unit = CTransformedUnit::getInstance(freshUnit(), thousand);
    const auto compound = std::dynamic_pointer_cast<CCompound>(toSystem(unit));
    ASSERT_NE(compound, nullptr);
    EXPECT_EQ(compound->first(), thousand);
    EXPECT_EQ(compound->second(), CConverter::identity());
}

TEST(TransformedUnit, TheConverterToTheSystemUnitHasTheDocumentedNesting) {
    const CUnitPtr base = freshUnit();
    EXPECT_EQ(shape(toSystem(base * 1000.0)), "(*1000, id)");
    EXPECT_EQ(shape(toSystem(freshUnit() + 100.0)), "(+100, id)");

    const CUnitPtr named = (base ^ 2)->alternate(freshSymbol());
    EXPECT_EQ(shape(toSystem(named * 3.0)), "(*3, id)");
    EXPECT_EQ(shape(toSystem((base ^ 3) * 5.0)), "(*5, id)");
    EXPECT_EQ(shape(toSystem(CProductUnit::one() * 7.5)), "(*7.5, id)");

    // From a transformed parent: first to the parent, then by its converter to the system unit.
    const CUnitPtr scaledTwice = base * 1000.0 * 7.0;
    EXPECT_EQ(shape(toSystem(scaledTwice)), "(*7, (((*1000, id), id), id))");
    EXPECT_EQ(shape(toSystem(scaledTwice * 3.0)),
              "(*3, (((*7, (((*1000, id), id), id)), id), id))");

    const CUnitPtr shifted = freshUnit() + 100.0;
    EXPECT_EQ(shape(toSystem(shifted * 7.0)), "(*7, (((+100, id), id), id))");
}

TEST(TransformedUnit, TheChainContainsTheConverterOfTheParent) {
    const CUnitPtr km = freshUnit() * 1000.0;
    const auto outer = std::dynamic_pointer_cast<CCompound>(toSystem(km * 7.0));
    ASSERT_NE(outer, nullptr);
    const auto parentToSystem = std::dynamic_pointer_cast<CCompound>(outer->second());
    ASSERT_NE(parentToSystem, nullptr);
    EXPECT_EQ(parentToSystem->second(), CConverter::identity());
    const auto parentToDimension = std::dynamic_pointer_cast<CCompound>(parentToSystem->first());
    ASSERT_NE(parentToDimension, nullptr);
    EXPECT_EQ(parentToDimension->first(), toSystem(km));
    EXPECT_EQ(parentToDimension->second(), CConverter::identity());
}

TEST(TransformedUnit, AScaledProductRefersToTheProductOfTheSystemUnits) {
    const CUnitPtr length = freshUnit();
    const CUnitPtr time = freshUnit();
    const CUnitPtr speed = (length * 1000.0) / (time * 8.0);
    const CUnitPtr unit = speed * 2.0;
    EXPECT_EQ(unit->getSystemUnit(), length / time);
    EXPECT_EQ(shape(toSystem(unit)), "(*2, (*125, id))");  // pow is exact for 1000 and 8⁻¹
}

TEST(TransformedUnit, AScaledProductOfOffsetUnitsHasNoConverterToItsSystemUnit) {
    const CUnitPtr product = SI::Celsius() * SI::Meter();
    EXPECT_EQ(product->getSystemUnit(), SI::Kelvin() * SI::Meter());
    const Tables before;
    EXPECT_THAT(
        [&] { product->multiply(2.0); },
        ThrowsMessage<std::logic_error>(StrEq("Unit element  is non-linear, cannot convert")));
    EXPECT_EQ(Tables(), before);
}

TEST(TransformedUnit, TheConvertersBetweenUnitsHaveTheDocumentedNesting) {
    const CUnitPtr base = freshUnit();
    const CUnitPtr km = base * 1000.0;
    const CUnitPtr half = base * 0.5;
    EXPECT_EQ(shape(km->getCtxToDimension()), "((*1000, id), id)");
    EXPECT_EQ(shape(km->getConverterTo(base)), "(((*1000, id), id), id)");
    EXPECT_EQ(shape(base->getConverterTo(half)), "(id, (id, *2))");
    EXPECT_EQ(shape(km->getConverterTo(half)), "(((*1000, id), id), (id, (id, *2)))");
    const CUnitPtr shifted = freshUnit() + 100.0;
    EXPECT_EQ(shape(shifted->getConverterTo(shifted->getSystemUnit())), "(((+100, id), id), id)");
    EXPECT_EQ(shape(shifted->getSystemUnit()->getConverterTo(shifted)), "(id, (id, +-100))");
}

TEST(TransformedUnit, ConvertersOfTheCatalogueHaveTheDocumentedNesting) {
    EXPECT_EQ(shape(toSystem(SI::Celsius())), "(+273.14999999999998, id)");
    EXPECT_EQ(shape(toSystem(SI::Gram())), "(*0.001, id)");
    EXPECT_EQ(shape(toSystem(NonSI::Minute())), "(*60, id)");
    EXPECT_EQ(shape(toSystem(NonSI::Hour())), "(*60, (((*60, id), id), id))");
    EXPECT_EQ(shape(toSystem(NonSI::Liter())), "(*0.001, id)");
}

TEST(TransformedUnit, TheConverterToTheDimensionEndsWithThatOfTheSystemUnit) {
    const auto system = freshClientUnit();
    const CUnitPtr dimension = freshUnit();
    const CConverterPtr ofSystem = factor(4);
    system->CtxDimension = [&] { return dimension; };
    system->CtxToDimension = [&] { return ofSystem; };
    const CUnitPtr unit = system * 10.0;
    EXPECT_EQ(unit->getCtxDimension(), dimension);
    const auto compound = std::dynamic_pointer_cast<CCompound>(unit->getCtxToDimension());
    ASSERT_NE(compound, nullptr);
    EXPECT_EQ(compound->first(), toSystem(unit));
    EXPECT_EQ(compound->second(), ofSystem);
    EXPECT_THAT(unit, ConvertsTo(dimension, 3.0, 120.0));
}

TEST(TransformedUnit, TheConverterToTheParentComesFirst) {
    const CUnitPtr base = freshUnit();
    const CUnitPtr shifted = base + 100.0;
    const CUnitPtr scaled = shifted * 7.0;  // (x · 7) + 100
    EXPECT_THAT(scaled, ConvertsTo(base, 2.0, 114.0));
    const CUnitPtr other = freshUnit();
    const CUnitPtr shiftedLater = other * 7.0 + 100.0;
    EXPECT_EQ(shiftedLater, other * 7.0);  // the slope alone decides the identity
}

// Identity.

TEST(TransformedUnit, ItsSystemUnitIsNeverATransformedUnit) {
    const CUnitPtr m = SI::Meter();
    const CUnitPtr km = m * 1000.0;
    const CUnitPtr back = km * 0.001;
    ASSERT_NE(std::dynamic_pointer_cast<CTransformedUnit>(back), nullptr);
    EXPECT_EQ(back->getSystemUnit(), m);
    EXPECT_NE(back, m);
    EXPECT_EQ((km * 12.5)->getSystemUnit(), m);
    EXPECT_EQ((SI::Celsius() * 12.5)->getSystemUnit(), SI::Kelvin());
    EXPECT_FALSE(km->isSystemUnit());
}

TEST(TransformedUnit, TheSameScalingIsTheSameObject) {
    const CUnitPtr unit = freshUnit();
    const CUnitPtr km = unit * 1000.0;
    const Tables before;
    EXPECT_EQ(unit * 1000.0, km);
    EXPECT_EQ(CTransformedUnit::getInstance(unit, factor(1000)), km);
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(SI::Kilo(SI::Meter()), CUnit::fromString("km"));
}

TEST(TransformedUnit, TheSameScalingByAnotherChainIsTheSameObject) {
    const CUnitPtr unit = freshUnit();
    const CUnitPtr direct = unit * 6.0;
    EXPECT_EQ(unit * 2.0 * 3.0, direct);
    EXPECT_EQ(shape(toSystem(direct)), "(*6, id)");
}

TEST(TransformedUnit, TheHashCodeIsThatOfTheSystemUnitPlusTheBitsOfTheSlope) {
    const double slopes[] = {1000.0,
                             0.001,
                             1.0,
                             -1.0,
                             -0.0,
                             1e24,
                             1e-24,
                             1e300,
                             0.1,
                             std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()};
    for (const double slope : slopes) {
        SCOPED_TRACE(slope);
        const CUnitPtr system = freshUnit();
        const CUnitPtr unit = system * slope;
        ASSERT_NE(unit, nullptr);
        EXPECT_EQ(unit->hashCode(),
                  wrappedSum(system->hashCode(), floatToIntBits(static_cast<float>(slope))));
    }
    EXPECT_EQ((SI::Meter() * 1000.0)->hashCode(), 'm' + 0x447A0000);
    const CUnitPtr shifted = freshUnit() + 5.0;
    EXPECT_EQ(shifted->hashCode(), shifted->getSystemUnit()->hashCode() + 0x3F800000);
}

TEST(TransformedUnit, TheHashCodeWrapsAround) {
    const CUnitPtr system = CBaseUnit::getInstance("qqqqqqqq");
    ASSERT_EQ(system->hashCode(), std::numeric_limits<int>::max());
    const CUnitPtr unit = system * 1000.0;
    EXPECT_EQ(unit->hashCode(), wrappedSum(std::numeric_limits<int>::max(), 0x447A0000));
    EXPECT_LT(unit->hashCode(), 0);
}

TEST(TransformedUnit, TheHashCodeUsesTheStoredHashCodeOfTheSystemUnit) {
    const CUnitPtr system = std::make_shared<CAlternateUnit>("qq", SI::Meter());
    CTransformedUnit unit(system, factor(2));
    unit.calculateHashCode();
    EXPECT_EQ(unit.hashCode(), 0x40000000);  // the hash code of the system unit is not computed yet
}

TEST(TransformedUnit, FactorsThatAreTheSameInSinglePrecisionAreOneUnit) {
    const CUnitPtr system = freshUnit();
    const double close = 1000.0 * (1.0 + 1e-9);
    const CUnitPtr first = system * close;
    EXPECT_EQ(system * 1000.0, first);
    EXPECT_THAT(system * 1000.0, ConvertsTo(system, 1.0, close));
    EXPECT_NE(system * (1000.0 * (1.0 + 1e-6)), first);
}

TEST(TransformedUnit, UnitsWithTheSameSystemUnitAndSlopeAreOneUnitEvenIfOffsetsDiffer) {
    const CUnitPtr system = freshUnit();
    const CUnitPtr first = system + 5.0;
    EXPECT_EQ(system + 6.0, first);
    EXPECT_EQ(system + 0.0, first);
    EXPECT_EQ(system * 1.0, first);
    EXPECT_EQ(first + 7.0, first);
    EXPECT_THAT(system + 6.0, ConvertsTo(system, 0.0, 5.0));

    const CUnitPtr other = freshUnit();
    const CUnitPtr unscaled = other * 1.0;
    EXPECT_EQ(other + 273.15, unscaled);
    EXPECT_THAT(other + 273.15, ConvertsTo(other, 0.0, 0.0));
}

TEST(TransformedUnit, TheKelvinPlusAnOffsetOrTimesOneIsTheDegreeCelsius) {
    const CUnitPtr celsius = SI::Celsius();
    EXPECT_EQ(SI::Kelvin() + 100.0, celsius);
    EXPECT_EQ(SI::Kelvin() + 0.0, celsius);
    EXPECT_EQ(SI::Kelvin() * 1.0, celsius);
    EXPECT_EQ(celsius + 10.0, celsius);
    EXPECT_EQ(celsius * 1.0, celsius);
    EXPECT_THAT(SI::Kelvin() * 1.0, ConvertsTo(SI::Kelvin(), 0.0, 273.15));
}

TEST(TransformedUnit, AMultipleOfTheDegreeCelsiusIsTheMultipleOfTheKelvinThatCameFirst) {
    EXPECT_EQ(SI::Celsius() * 1000.0, SI::Kelvin() * 1000.0);
    EXPECT_THAT(SI::Celsius() * 1000.0, ConvertsTo(SI::Kelvin(), 1.0, 1000.0));  // no offset
    EXPECT_THAT(SI::Milli(SI::Celsius()), ConvertsTo(SI::Kelvin(), 1.0, 0.001));
}

TEST(TransformedUnit, AMultipleOfTheKelvinIsTheMultipleOfTheDegreeCelsiusThatCameFirst) {
    const CUnitPtr celsius =
        SI::Celsius() * 7.0;  // not the factor of a prefix, so it does not exist yet
    EXPECT_THAT(celsius, ConvertsTo(SI::Kelvin(), 2.0, 14.0 + 273.15));
    EXPECT_EQ(SI::Kelvin() * 7.0, celsius);
    EXPECT_THAT(SI::Kelvin() * 7.0, ConvertsTo(SI::Kelvin(), 2.0, 14.0 + 273.15));
}

TEST(TransformedUnit, AFactorThatIsZeroInSinglePrecisionGivesAnEmptyPointer) {
    const CUnitPtr m = SI::Meter();
    const CUnitPtr speed = m / SI::Second();
    ASSERT_NE(SI::Yocto(m), nullptr);
    const Tables before;
    EXPECT_EQ(SI::Yocto(SI::Yocto(m)), nullptr);  // 1e-48: the hash code is that of the metre
    EXPECT_EQ(SI::Yocto(m) * 1e-24, nullptr);
    EXPECT_EQ(m * 1e-48, nullptr);
    EXPECT_EQ(m * 0.0, nullptr);
    EXPECT_EQ(CTransformedUnit::getInstance(m, factor(0.0)), nullptr);
    EXPECT_EQ(speed * 0.0, nullptr);
    EXPECT_EQ(CProductUnit::one() * 0.0, nullptr);
    EXPECT_EQ(Tables(), before);
    // The smallest float gives a unit. So does the negative zero, whose bits are not zero.
    EXPECT_NE(m * 1.4e-45, nullptr);
    EXPECT_NE(m * -0.0, nullptr);
}

TEST(TransformedUnit, AHashCodeThatBelongsToAnotherKindGivesAnEmptyPointer) {
    const CUnitPtr system = freshUnit();
    const auto owner =
        CClientUnit::make(freshSymbol(), wrappedSum(system->hashCode(), floatToIntBits(5.0F)));
    owner->canonical();
    const Tables before;
    EXPECT_EQ(system * 5.0, nullptr);
    EXPECT_EQ(Tables(), before);
}

TEST(TransformedUnit, AHashCodeOfATransformedUnitWithAnotherSystemUnitGivesThatUnit) {
    const CUnitPtr second = SI::Second();
    const CUnitPtr metre = SI::Meter();
    // The hash code of "s" is that of "m" plus 6. So the metre times the sixth float above 1000 is
    // the kilosecond.
    float slope = 1000.0F;
    for (int i = 0; i < 's' - 'm'; ++i) {
        slope = std::nextafter(slope, 2000.0F);
    }
    EXPECT_EQ(metre * static_cast<double>(slope), second * 1000.0);
}

TEST(TransformedUnit, TheConstructorDoesNotRegister) {
    const Tables before;
    const CConverterPtr converter = factor(2);
    const auto unit = std::make_shared<CTransformedUnit>(SI::Meter(), converter);
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(unit->hashCode(), 0);
    EXPECT_EQ(Inside::id(unit), 0);
    EXPECT_EQ(unit->getSystemUnit(), SI::Meter());
    EXPECT_EQ(unit->toSystem(), converter);
}

TEST(TransformedUnit, IsOneFactorInAProductAndHasNoBaseUnits) {
    const CUnitPtr km = SI::Meter() * 1000.0;
    const auto elements = km->elements();
    ASSERT_EQ(elements.size(), 1U);
    EXPECT_TRUE(elements[0] == CUnitRationalPower(km, 1, 1));
    EXPECT_THAT(
        [&] { km->baseUnits(); },
        ThrowsMessage<std::logic_error>(StrEq("Unit with Id[ " + std::to_string(Inside::id(km)) +
                                              "] and Symbol [] is not a system unit")));
}

// The symbol.

TEST(TransformedUnit, HasNoSymbolForAnyConverter) {
    for (const CUnitPtr& unit :
         {SI::Meter() * 1000.0, SI::Celsius(), SI::Gram(), NonSI::Hour(), freshUnit() + 5.0,
          (SI::Meter() / SI::Second()) * 3.6, SI::Newton() * 2.0}) {
        EXPECT_EQ(text(unit->getSymbol()), "");
        EXPECT_EQ(CUnit::symbols().count(string_t()), 0U);
    }
}

TEST(TransformedUnit, HasATextOnlyWithALabel) {
    const CUnitPtr unit = freshUnit() * 12.0;
    EXPECT_THAT([&] { unit->toString(); }, ThrowsMessage<std::invalid_argument>(
                                               StrEq("Cannot format given Object as a Unit")));
    const string_t label = freshSymbol();
    CUnitFormat::label(unit, label);
    EXPECT_THAT(unit, PrintsAs(text(label)));
    EXPECT_EQ(text(unit->getSymbol()), "");
}

TEST(TransformedUnit, GetSymbolComputesTheConverterToTheSystemUnit) {
    const CUnitPtr system = freshUnit();
    const CUnitPtr unit = system * 12.0;
    CUnit::dimensions().clear();
    CUnit::toDimensions().clear();
    EXPECT_EQ(text(unit->getSymbol()), "");
    EXPECT_EQ(CUnit::dimensions().at(unit), system);
    EXPECT_EQ(CUnit::dimensions().at(system), system);
    EXPECT_EQ(shape(CUnit::toDimensions().at(unit)), "((*12, id), id)");
    EXPECT_EQ(CUnit::toDimensions().at(system), CConverter::identity());
}

TEST(TransformedUnit, GetSymbolOfAKindThatIsItsOwnSystemUnitComputesNothing) {
    class CRoot : public CTransformedUnit {
    public:
        using CTransformedUnit::CTransformedUnit;
        CUnitPtr getSystemUnit() override { return shared_from_this(); }
    };
    const CUnitPtr unit = std::make_shared<CRoot>(freshUnit(), CConverter::identity());
    EXPECT_EQ(text(unit->getSymbol()), "");
    EXPECT_EQ(CUnit::dimensions().count(unit), 0U);
}

TEST(TransformedUnit, RegistrationFillsBothTablesOfDimensions) {
    const CUnitPtr system = freshUnit();
    CUnit::dimensions().clear();
    CUnit::toDimensions().clear();
    const CUnitPtr unit = system * 12.0;
    EXPECT_EQ(CUnit::dimensions().at(unit), system);
    EXPECT_EQ(shape(CUnit::toDimensions().at(unit)), "((*12, id), id)");
}

TEST(TransformedUnit, GetSymbolThrowsWhatTheConverterThrows) {
    const auto system = freshClientUnit();
    const CUnitPtr unit = system * 12.0;
    CUnit::dimensions().clear();
    CUnit::toDimensions().clear();
    system->CtxToDimension = []() -> CConverterPtr { throw std::runtime_error("no converter"); };
    EXPECT_THAT([&] { unit->getSymbol(); },
                ThrowsMessage<std::runtime_error>(StrEq("no converter")));
    system->CtxToDimension = nullptr;
    EXPECT_EQ(text(unit->getSymbol()), "");
}

TEST(TransformedUnit, IsNotRegisteredIfGetSymbolThrows) {
    const auto system = freshClientUnit();
    system->CtxToDimension = []() -> CConverterPtr { throw std::runtime_error("no converter"); };
    const Tables before;
    EXPECT_THAT([&] { system->multiply(12.0); },
                ThrowsMessage<std::runtime_error>(StrEq("no converter")));
    EXPECT_EQ(Tables(), before);
    EXPECT_TRUE(isFree(CUnit::mutex()));
    system->CtxToDimension = nullptr;
    EXPECT_EQ(system->multiply(12.0)->getSystemUnit(), system);
}

// equals()

TEST(TransformedUnit, EqualsItselfButNoEmptyPointer) {
    const CUnitPtr unit = freshUnit() * 2.0;
    EXPECT_TRUE(unit->equals(unit));
    EXPECT_FALSE(unit->equals(CUnitPtr()));
    // True even if the converter is not equal to itself, as a chain with an offset is not.
    const CUnitPtr shifted = std::make_shared<CTransformedUnit>(
        SI::Meter(), chain(chain(offset(1), factor(1)), factor(2)));
    EXPECT_TRUE(shifted->equals(shifted));
}

TEST(TransformedUnit, EqualsAUnitWithTheSameSystemUnitAndAnEqualConverter) {
    const auto make = [](const CUnitPtr& system, const CConverterPtr& converter) -> CUnitPtr {
        return std::make_shared<CTransformedUnit>(system, converter);
    };
    const CUnitPtr m = SI::Meter();
    EXPECT_TRUE(make(m, factor(2))->equals(make(m, factor(2))));
    EXPECT_TRUE(make(m, factor(2))->equals(make(m, factor(2.0 * (1.0 + 1e-9)))));
    EXPECT_TRUE(make(m, offset(5))->equals(make(m, offset(5))));
    EXPECT_TRUE(make(m, factor(1))->equals(make(m, CConverter::identity())));
    EXPECT_FALSE(make(m, factor(2))->equals(make(m, factor(3))));
    EXPECT_FALSE(make(m, offset(5))->equals(make(m, offset(6))));
    EXPECT_FALSE(make(m, offset(0))->equals(make(m, factor(1))));
    EXPECT_FALSE(make(m, factor(2))->equals(make(SI::Second(), factor(2))));
    // A compound equals only a compound with equal steps.
    EXPECT_TRUE(make(m, chain(factor(2), factor(3)))->equals(make(m, chain(factor(2), factor(3)))));
    EXPECT_FALSE(
        make(m, chain(factor(2), factor(3)))->equals(make(m, chain(factor(3), factor(2)))));
    EXPECT_FALSE(make(m, chain(factor(2), factor(3)))->equals(make(m, factor(6))));
    EXPECT_TRUE(make(m, factor(6))->equals(make(m, chain(factor(2), factor(3)))));
}

TEST(TransformedUnit, EqualsThrowsWhatTheOtherUnitOrItsConverterThrows) {
    class CSpeechless : public CScaling {
    public:
        using CScaling::CScaling;
        bool equals(CConverterPtr) const override { throw std::runtime_error("no comparison"); }
    };
    const CUnitPtr system = freshUnit();
    const auto other = freshClientUnit();
    other->SystemUnit = []() -> CUnitPtr { throw std::runtime_error("no system unit"); };
    EXPECT_THAT([&] { (system * 2.0)->equals(other); },
                ThrowsMessage<std::runtime_error>(StrEq("no system unit")));
    const CUnitPtr speechless =
        std::make_shared<CTransformedUnit>(system, std::make_shared<CSpeechless>(3.0));
    EXPECT_THAT([&] { speechless->equals(system * 2.0); },
                ThrowsMessage<std::runtime_error>(StrEq("no comparison")));
}

TEST(TransformedUnit, EqualsIsFalseForTheSystemUnitAndOtherKinds) {
    const CUnitPtr m = SI::Meter();
    const CUnitPtr identical = std::make_shared<CTransformedUnit>(m, CConverter::identity());
    EXPECT_FALSE(identical->equals(m));
    const auto client = freshClientUnit();
    client->SystemUnit = [&] { return m; };
    EXPECT_FALSE(identical->equals(client));
    EXPECT_FALSE(identical->equals(SI::Newton()));
    EXPECT_FALSE(identical->equals(CProductUnit::one()));
    const CUnitPtr onProduct =
        std::make_shared<CTransformedUnit>(m / SI::Second(), CConverter::identity());
    EXPECT_FALSE(onProduct->equals(m / SI::Second()));
}

// Errors.

TEST(TransformedUnit, EmptyArgumentsAreRefused) {
    const Tables before;
    EXPECT_THAT([] { CTransformedUnit::getInstance(CUnitPtr(), factor(2)); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("empty")));
    EXPECT_THAT([] { CTransformedUnit::getInstance(SI::Meter(), CConverterPtr()); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("empty")));
    EXPECT_THAT([] { CTransformedUnit(CUnitPtr(), factor(2)); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("empty")));
    EXPECT_THAT([] { CTransformedUnit(SI::Meter(), CConverterPtr()); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("empty")));
    EXPECT_EQ(Tables(), before);
}

TEST(TransformedUnit, AParentWithoutConverterToItsSystemUnitIsRefusedAndNothingIsRegistered) {
    const auto parent = freshClientUnit();
    parent->SystemUnit = [] { return SI::Meter(); };  // but its dimension is the parent itself
    const Tables before;
    EXPECT_THAT(
        [&] { parent->multiply(2.0); },
        ThrowsMessage<std::invalid_argument>(StrEq(
            text(parent->CUnit::getSymbol()) + " is not compatible with m in current context")));
    EXPECT_EQ(Tables(), before);
}

TEST(TransformedUnit, TheIdentityAsConverterMakesNoCompound) {
    const CUnitPtr system = freshUnit();
    const CUnitPtr unit = CTransformedUnit::getInstance(system, CConverter::identity());
    EXPECT_NE(unit, system);
    EXPECT_EQ(toSystem(unit), CConverter::identity());
}

TEST(TransformedUnit, AHundredThousandScalingsNeedLittleStack) {
    runWithStack(256 * 1024, [] {
        const auto scalings = [](double last) {
            CConverterPtr steps = factor(last);
            for (int i = 1; i < 100000; ++i) {
                steps = factor(i % 2 == 0 ? 2 : 0.5)->concatenate(steps);
            }
            return steps;
        };
        const CUnitPtr m = SI::Meter();
        const CUnitPtr unit = CTransformedUnit::getInstance(m, scalings(6));
        EXPECT_EQ(unit->convertValueToUnit(7, m), 21);
        EXPECT_EQ(m->convertValueToUnit(21, unit), 7);
        EXPECT_EQ(unit->convertValueToUnit(7, SI::Centi(m)), 2100);
        EXPECT_EQ((unit * 5.0)->convertValueToUnit(7, m), 105);
        EXPECT_EQ((m / unit)->convertValueToUnit(9, CProductUnit::one()), 3);
        EXPECT_EQ((m * 3.0), unit) << "the same slope";

        // Unregistered units are compared step by step and destroyed.
        const auto make = [&](double last) {
            return std::make_shared<CTransformedUnit>(m, scalings(last));
        };
        EXPECT_TRUE(make(6)->equals(make(6)));
        EXPECT_FALSE(make(6)->equals(make(7)));
    });
}

}  // namespace
}  // namespace mensor
