// AlternateUnit_test.cpp: units with a symbol of their own that convert like their base units.
#include "mensor/AlternateUnit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StrEq;
using ::testing::ThrowsMessage;

std::string symbolIsTaken(const string_t& symbol) {
    return "The symbol: " + text(symbol) + " is currently associated to another unit.";
}

TEST(AlternateUnit, TheSameSymbolAndParentGiveTheSameObject) {
    const CUnitPtr parent = freshUnit();
    const string_t symbol = freshSymbol();
    const CAlternateUnitPtr unit = CAlternateUnit::getInstance(symbol, parent);
    const Tables before;
    EXPECT_EQ(CAlternateUnit::getInstance(symbol, parent), unit);
    EXPECT_EQ(Tables(), before);
}

TEST(AlternateUnit, AKnownSymbolGivesItsUnitEvenForAnotherParent) {
    const CUnitPtr parent = freshUnit();
    const CUnitPtr other = freshUnit();
    const CUnitPtr square = other ^ 2;
    const string_t symbol = freshSymbol();
    const CAlternateUnitPtr unit = CAlternateUnit::getInstance(symbol, parent);
    const Tables before;
    EXPECT_EQ(CAlternateUnit::getInstance(symbol, other), unit);
    EXPECT_EQ(CAlternateUnit::getInstance(symbol, square), unit);
    EXPECT_EQ(unit->baseUnits(), parent);
    EXPECT_EQ(Tables(), before);
}

TEST(AlternateUnit, ANewSymbolIsRegistered) {
    const string_t symbol = freshSymbol();
    EXPECT_EQ(CUnit::searchSymbol(symbol), nullptr);
    const std::size_t count = CUnit::instances().size();
    const CAlternateUnitPtr unit = CAlternateUnit::getInstance(symbol, SI::Meter());
    EXPECT_EQ(CUnit::searchSymbol(symbol), unit);
    EXPECT_EQ(CUnit::instances().at(hashFromString(symbol)), unit);
    EXPECT_EQ(CUnit::instances().size(), count + 1);
    EXPECT_EQ(Inside::id(unit), static_cast<int>(count + 1));
}

TEST(AlternateUnit, TheConstructorDoesNotRegister) {
    const string_t symbol = freshSymbol();
    const Tables before;
    const auto unit = std::make_shared<CAlternateUnit>(symbol, SI::Meter());
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(unit->hashCode(), 0);
    EXPECT_EQ(Inside::id(unit), 0);
    EXPECT_EQ(text(unit->getSymbol()), text(symbol));
    EXPECT_EQ(unit->baseUnits(), SI::Meter());
}

TEST(AlternateUnit, IsItsOwnSystemUnit) {
    const CUnitPtr unit = (SI::Meter() ^ 2)->alternate(freshSymbol());
    EXPECT_EQ(unit->getSystemUnit(), unit);
    EXPECT_TRUE(unit->isSystemUnit());
}

TEST(AlternateUnit, IsOneFactorInAProduct) {
    const CUnitPtr unit = (SI::Meter() ^ 2)->alternate(freshSymbol());
    const auto elements = unit->elements();
    ASSERT_EQ(elements.size(), 1U);
    EXPECT_TRUE(elements[0] == CUnitRationalPower(unit, 1, 1));
}

TEST(AlternateUnit, ItsBaseUnitsAreThoseOfItsParent) {
    const CUnitPtr m = SI::Meter();
    EXPECT_EQ(m->alternate(freshSymbol())->baseUnits(), m);
    const CUnitPtr product = SI::Newton() * m;
    const CUnitPtr unit = product->alternate(freshSymbol());
    EXPECT_NE(unit->baseUnits(), product);
    EXPECT_EQ(unit->baseUnits(), (m ^ 2) * SI::Kilogram() / (SI::Second() ^ 2));
    EXPECT_EQ(CProductUnit::one()->alternate(freshSymbol())->baseUnits(), CProductUnit::one());
}

TEST(AlternateUnit, AnAlternateOfAnAlternateHasTheSameBaseUnits) {
    const CUnitPtr product = freshUnit() * freshUnit();
    const CUnitPtr first = product->alternate(freshSymbol());
    const CUnitPtr second = first->alternate(freshSymbol());
    ASSERT_NE(second, first);
    EXPECT_EQ(second->baseUnits(), product);
}

TEST(AlternateUnit, TheHashCodeDependsOnTheSymbolAlone) {
    const char* const symbols[] = {"N", "Wb", "µ", "kg/s", "qqqqqqqq"};
    for (const char* symbol : symbols) {
        SCOPED_TRACE(symbol);
        CAlternateUnit onMeter(symbol, SI::Meter());
        CAlternateUnit onOne(symbol, CProductUnit::one());
        onMeter.calculateHashCode();
        onOne.calculateHashCode();
        EXPECT_EQ(onMeter.hashCode(), hashFromString(symbol));
        EXPECT_EQ(onOne.hashCode(), hashFromString(symbol));
    }
    EXPECT_EQ(SI::Newton()->hashCode(), 'N');
    EXPECT_EQ(SI::Weber()->hashCode(), 'W' * 31 + 'b');
}

// All symbols of eight or more code points have the same hash code, which alone decides identity.
TEST(AlternateUnit, AllLongSymbolsAreOneUnit) {
    const CUnitPtr first = SI::Meter()->alternate("furlongs");
    const CUnitPtr second = SI::Second()->alternate("fortnight");
    EXPECT_EQ(second, first);
    EXPECT_EQ(text(second->getSymbol()), "furlongs");
    EXPECT_EQ(CUnit::searchSymbol("fortnight"), nullptr);
}

// The empty symbol has the hash code of the dimensionless unit.
TEST(AlternateUnit, TheEmptySymbolGivesTheDimensionlessUnit) {
    const Tables before;
    EXPECT_EQ(SI::Meter()->alternate(""), CProductUnit::one());
    EXPECT_EQ(Tables(), before);
}

TEST(AlternateUnit, ConvertsAsItsBaseUnitsDo) {
    const auto base = freshClientUnit();
    const CUnitPtr dimension = freshUnit();
    const CConverterPtr converter = std::make_shared<CMultiplyConverter>(3.0);
    base->CtxDimension = [&] { return dimension; };
    base->CtxToDimension = [&] { return converter; };
    const CUnitPtr unit = base->alternate(freshSymbol());
    EXPECT_EQ(unit->getCtxDimension(), dimension);
    EXPECT_EQ(unit->getCtxToDimension(), converter);
    EXPECT_THAT(unit, ConvertsTo(dimension, 2.0, 6.0));
    base->CtxDimension = nullptr;  // not stored: the base unit is asked again
    EXPECT_EQ(unit->getCtxDimension(), base);
}

TEST(AlternateUnit, ConvertsToItsBaseUnitsByTheIdentity) {
    const CUnitPtr newton = SI::Newton();
    const CUnitPtr product = SI::Kilogram() * SI::Meter() / (SI::Second() ^ 2);
    EXPECT_NE(newton, product);
    EXPECT_TRUE(newton->isCompatible(product));
    EXPECT_EQ(newton->getConverterTo(product), CConverter::identity());
    EXPECT_EQ(product->getConverterTo(newton), CConverter::identity());
    EXPECT_THAT(newton, PrintsAs("N"));
    EXPECT_THAT(product, Not(PrintsAs("N")));
}

TEST(AlternateUnit, UnitsWithTheSameBaseUnitsConvertIntoEachOther) {
    EXPECT_NE(SI::Hertz(), SI::Becquerel());
    EXPECT_EQ(SI::Hertz()->getConverterTo(SI::Becquerel()), CConverter::identity());
    EXPECT_EQ(SI::Radian()->getConverterTo(SI::Bit()), CConverter::identity());
}

// equals()

TEST(AlternateUnit, EqualsItselfButNoEmptyPointer) {
    const CUnitPtr unit = SI::Meter()->alternate(freshSymbol());
    EXPECT_TRUE(unit->equals(unit));
    EXPECT_FALSE(unit->equals(CUnitPtr()));
    CAlternateUnit onTheStack("qq", SI::Meter());
    EXPECT_FALSE(onTheStack.equals(CUnitPtr()));
}

TEST(AlternateUnit, EqualsAnotherObjectWithTheSameBaseUnitsAndSymbol) {
    const CUnitPtr unit = std::make_shared<CAlternateUnit>("qq", SI::Meter());
    const CUnitPtr same = std::make_shared<CAlternateUnit>("qq", SI::Meter());
    const CUnitPtr otherSymbol = std::make_shared<CAlternateUnit>("qr", SI::Meter());
    const CUnitPtr longer = std::make_shared<CAlternateUnit>("qqq", SI::Meter());
    const CUnitPtr otherBase = std::make_shared<CAlternateUnit>("qq", SI::Second());
    EXPECT_TRUE(unit->equals(same));
    EXPECT_TRUE(same->equals(unit));
    EXPECT_FALSE(unit->equals(otherSymbol));
    EXPECT_FALSE(unit->equals(longer));
    EXPECT_FALSE(longer->equals(unit));
    EXPECT_FALSE(unit->equals(otherBase));
}

TEST(AlternateUnit, UnitsWithTheSameBaseUnitsAndDifferentSymbolsAreNotEqual) {
    EXPECT_EQ(SI::Hertz()->baseUnits(), SI::Becquerel()->baseUnits());
    EXPECT_FALSE(SI::Hertz()->equals(SI::Becquerel()));
    EXPECT_FALSE(SI::Gray()->equals(SI::Sievert()));
    EXPECT_FALSE(SI::Radian()->equals(SI::Steradian()));
}

TEST(AlternateUnit, ComparesSymbolsByteByByte) {
    const CUnitPtr composed = std::make_shared<CAlternateUnit>("\u00C5", SI::Meter());
    const CUnitPtr angstrom = std::make_shared<CAlternateUnit>("\u212B", SI::Meter());
    EXPECT_FALSE(composed->equals(angstrom));  // the letters look the same
    const std::string withNul("q\0q", 3);
    const CUnitPtr left = std::make_shared<CAlternateUnit>(string_t(withNul), SI::Meter());
    const CUnitPtr right = std::make_shared<CAlternateUnit>(string_t("q"), SI::Meter());
    EXPECT_FALSE(left->equals(right));
    EXPECT_FALSE(right->equals(left));
}

TEST(AlternateUnit, EqualsIgnoresTheKindOfTheOtherUnit) {
    const CUnitPtr likeMeter = std::make_shared<CAlternateUnit>("m", SI::Meter());
    EXPECT_TRUE(likeMeter->equals(SI::Meter()));
    const CUnitPtr likeOne = std::make_shared<CAlternateUnit>("One", CProductUnit::one());
    EXPECT_TRUE(likeOne->equals(CProductUnit::one()));
}

TEST(AlternateUnit, EqualsComparesTheBaseUnitsFirstAndThenTheSymbol) {
    const auto other = freshClientUnit();
    const CUnitPtr unit = std::make_shared<CAlternateUnit>("qq", SI::Meter());
    EXPECT_FALSE(unit->equals(other));
    EXPECT_THAT(other->Asked, ElementsAre("baseUnits"));
    other->Asked.clear();
    other->BaseUnits = [] { return SI::Meter(); };
    EXPECT_FALSE(unit->equals(other));
    EXPECT_THAT(other->Asked, ElementsAre("baseUnits", "getSymbol"));
}

TEST(AlternateUnit, EqualsThrowsForATransformedUnit) {
    const CUnitPtr km = SI::Meter() * 1000.0;
    EXPECT_THAT(
        [&] { SI::Newton()->equals(km); },
        ThrowsMessage<std::logic_error>(StrEq("Unit with Id[ " + std::to_string(Inside::id(km)) +
                                              "] and Symbol [] is not a system unit")));
}

// Errors.

TEST(AlternateUnit, ATransformedParentIsRefusedEvenForAKnownSymbol) {
    const CUnitPtr km = SI::Meter() * 1000.0;
    const CUnitPtr speed = km / SI::Second();
    const std::string message =
        "Unit with Id[ " + std::to_string(Inside::id(km)) + "] and Symbol [] is not a system unit";
    const Tables before;
    EXPECT_THAT([&] { km->alternate("qzq"); }, ThrowsMessage<std::logic_error>(StrEq(message)));
    EXPECT_THAT([&] { km->alternate("N"); }, ThrowsMessage<std::logic_error>(StrEq(message)));
    EXPECT_THAT([&] { CAlternateUnit::getInstance("N", km); },
                ThrowsMessage<std::logic_error>(StrEq(message)));
    EXPECT_THAT([&] { speed->alternate("N"); }, ThrowsMessage<std::logic_error>(StrEq(message)));
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(SI::Meter()->alternate("N"), SI::Newton());
}

TEST(AlternateUnit, TheSymbolOfABaseUnitIsRefusedAndNothingChanges) {
    const CUnitPtr product = freshUnit() * freshUnit();
    for (const char* symbol : {"m", "kg", "mol", "A"}) {
        SCOPED_TRACE(symbol);
        const Tables before;
        EXPECT_THAT([&] { product->alternate(symbol); },
                    ThrowsMessage<std::logic_error>(StrEq(symbolIsTaken(symbol))));
        EXPECT_THAT([&] { CAlternateUnit::getInstance(symbol, SI::Meter()); },
                    ThrowsMessage<std::logic_error>(StrEq(symbolIsTaken(symbol))));
        EXPECT_EQ(Tables(), before);
    }
}

TEST(AlternateUnit, ASymbolOfAUnitWithAnotherHashCodeIsRefusedAndNothingChanges) {
    const string_t symbol = freshSymbol();
    const CUnitPtr owner = CClientUnit::make(symbol, 987654321)->canonical();
    ASSERT_EQ(CUnit::searchSymbol(symbol), owner);
    const Tables before;
    const std::size_t ids = CUnit::instances().size();
    EXPECT_THAT([&] { SI::Meter()->alternate(symbol); },
                ThrowsMessage<std::logic_error>(StrEq(symbolIsTaken(symbol))));
    EXPECT_EQ(Tables(), before);
    EXPECT_TRUE(isFree(CUnit::mutex()));
    const CUnitPtr next = freshUnit();
    EXPECT_EQ(Inside::id(next), static_cast<int>(ids) + 1);  // the refusal used no id
}

TEST(AlternateUnit, AnEmptyParentIsRefused) {
    const Tables before;
    EXPECT_THAT([] { CAlternateUnit::getInstance("qzq", CUnitPtr()); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("empty")));
    EXPECT_THAT([] { CAlternateUnit("qzq", CUnitPtr()); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("empty")));
    EXPECT_EQ(Tables(), before);
}

TEST(AlternateUnit, AUnitWithoutSharedOwnerHasNoSystemUnit) {
    CAlternateUnit unit("qq", SI::Meter());
    EXPECT_THROW(unit.getSystemUnit(), std::bad_weak_ptr);
    EXPECT_THROW(unit.elements(), std::bad_weak_ptr);
    EXPECT_EQ(unit.baseUnits(), SI::Meter());
    EXPECT_EQ(unit.getCtxDimension(), SI::Meter());
}

// The hash code of a symbol may belong to a unit of a client's kind. The result points at that
// unit.
TEST(AlternateUnit, AHashCodeThatBelongsToAnotherKindGivesThatUnit) {
    const string_t symbol = freshSymbol();
    const CUnitPtr owner = CClientUnit::make("", hashFromString(symbol))->canonical();
    const Tables before;
    EXPECT_EQ(SI::Meter()->alternate(symbol), owner);
    EXPECT_EQ(Tables(), before);
}

}  // namespace
}  // namespace mensor
