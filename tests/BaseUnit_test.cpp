// BaseUnit_test.cpp: base units, their identity by symbol, and the dimension that a client may set
// for them.
#include "mensor/BaseUnit.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "support/ClientConverters.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::HasSubstr;
using ::testing::StrEq;
using ::testing::ThrowsMessage;

CConverterPtr scales(double factor) { return std::make_shared<CMultiplyConverter>(factor); }

// ---- identity

TEST(BaseUnit, OneSymbolIsOneObject) {
    EXPECT_EQ(CBaseUnit::getInstance("m"), SI::Meter());
    const string_t symbol = freshSymbol();
    const CBaseUnitPtr unit = CBaseUnit::getInstance(symbol);
    EXPECT_EQ(CBaseUnit::getInstance(symbol), unit);
    EXPECT_NE(CBaseUnit::getInstance(freshSymbol()), unit);
}

TEST(BaseUnit, ANewSymbolIsRegistered) {
    const string_t symbol = freshSymbol();
    const std::size_t before = CUnit::instances().size();
    const CBaseUnitPtr unit = CBaseUnit::getInstance(symbol);
    EXPECT_EQ(CUnit::instances().size(), before + 1);
    EXPECT_EQ(Inside::id(unit), static_cast<int>(before) + 1);
    EXPECT_EQ(CUnit::searchSymbol(symbol), unit);
    EXPECT_EQ(CUnit::fromString(symbol), unit);
    EXPECT_THAT(unit, PrintsAs(text(symbol)));
}

TEST(BaseUnit, ItsHashCodeIsThatOfItsSymbol) {
    for (const char* symbol : {"q", "qr", "°q", "\xE2\x84\xA6q"}) {
        EXPECT_EQ(CBaseUnit::getInstance(symbol)->hashCode(), hashFromString(symbol));
    }
    EXPECT_EQ(SI::Mole()->hashCode(), 108298);
    const CBaseUnitPtr unit = freshUnit();
    const int before = unit->hashCode();
    unit->setDimension(SI::Meter(), scales(2));
    unit->calculateHashCode();
    EXPECT_EQ(unit->hashCode(), before) << "it depends on the symbol alone";
}

// The hash codes of long symbols are all the largest int, and the hash code alone decides identity.
TEST(BaseUnit, AllLongSymbolsAreOneUnit) {
    const CBaseUnitPtr first = CBaseUnit::getInstance("abcdefgh");
    const Tables before;
    EXPECT_EQ(CBaseUnit::getInstance("zyxwvuts"), first);
    EXPECT_EQ(text(CBaseUnit::getInstance("zyxwvuts")->getSymbol()), "abcdefgh");
    EXPECT_EQ(CUnit::searchSymbol("zyxwvuts"), nullptr);
    EXPECT_EQ(Tables(), before);
}

TEST(BaseUnit, ASymbolOfAUnitWithAnotherHashCodeIsRefused) {
    const string_t symbol = freshSymbol();
    const CUnitPtr owner = CClientUnit::make(symbol, hashFromString(symbol) + 1)->canonical();
    const Tables before;
    EXPECT_THAT([&] { CBaseUnit::getInstance(symbol); },
                ThrowsMessage<std::logic_error>(StrEq(
                    "The symbol: " + text(symbol) + " is currently associated to another unit.")));
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(CUnit::searchSymbol(symbol), owner);
}

TEST(BaseUnit, IsItsOwnSystemUnitAndBaseUnit) {
    for (const CBaseUnitPtr& unit : {SI::Meter(), SI::Kilogram(), freshUnit()}) {
        EXPECT_EQ(unit->getSystemUnit(), unit);
        EXPECT_EQ(unit->baseUnits(), unit);
        EXPECT_EQ(unit->getBaseUnits(), unit);
        EXPECT_TRUE(unit->isSystemUnit());
        ASSERT_EQ(unit->elements().size(), 1U);
        EXPECT_EQ(unit->elements()[0].getUnit(), unit);
    }
}

TEST(BaseUnit, OnlyGetInstanceRegisters) {
    static_assert(!std::is_constructible<CBaseUnit, string_t>::value, "");
    static_assert(std::is_base_of<CUnit, CBaseUnit>::value, "");
    class COpen : public CBaseUnit {
    public:
        explicit COpen(const string_t& symbol) : CBaseUnit(symbol) {}
    };
    COpen onTheStack(freshSymbol());
    EXPECT_THROW(onTheStack.getSystemUnit(), std::bad_weak_ptr);
    EXPECT_THROW(onTheStack.baseUnits(), std::bad_weak_ptr);
    EXPECT_THROW(onTheStack.getBaseUnits(), std::bad_weak_ptr);
    EXPECT_THROW(onTheStack.getCtxDimension(), std::bad_weak_ptr);
    EXPECT_EQ(CUnit::searchSymbol(onTheStack.getSymbol()), nullptr)
        << "the constructor does not register it";
}

// ---- equality

TEST(BaseUnit, EqualsEveryUnitWithTheSameSymbolOfAnyKind) {
    EXPECT_TRUE(SI::Meter()->equals(SI::Meter()));
    EXPECT_TRUE(SI::Meter()->equals(std::make_shared<CAlternateUnit>("m", SI::Second())));
    EXPECT_TRUE(SI::Meter()->equals(CClientUnit::make("m", 1)));
}

TEST(BaseUnit, EqualsNoUnitWithAnotherSymbol) {
    EXPECT_FALSE(SI::Meter()->equals(nullptr));
    EXPECT_FALSE(SI::Meter()->equals(SI::Second()));
    EXPECT_FALSE(SI::Meter()->equals(SI::Mole()));
    EXPECT_FALSE(SI::Meter()->equals(SI::Newton()));
    EXPECT_FALSE(SI::Meter()->equals(SI::Meter() ^ 2)) << "no symbol";
    EXPECT_FALSE(SI::Meter()->equals(SI::Gram())) << "a label is not a symbol";
    EXPECT_FALSE(SI::Meter()->equals(CClientUnit::make(std::string("m\0", 2), 1)));
    const CBaseUnitPtr composed = CBaseUnit::getInstance("q\xC3\xA9");
    EXPECT_FALSE(composed->equals(CClientUnit::make("qe\xCC\x81", 1))) << "bytes are compared";
}

// ---- the dimension

TEST(BaseUnit, IsItsOwnDimensionUntilOneIsSet) {
    const CBaseUnitPtr unit = freshUnit();
    EXPECT_EQ(unit->getCtxDimension(), unit);
    EXPECT_EQ(unit->getCtxToDimension(), CConverter::identity());
    EXPECT_EQ(unit->getCtxToDimension()->convert(1.5), 1.5);
    EXPECT_EQ(unit->getDimension(), unit);
    EXPECT_EQ(unit->getCtxDimension(), unit) << "asked again";
}

TEST(BaseUnit, ReturnsTheDimensionAndTheConverterThatWereSet) {
    const CBaseUnitPtr unit = freshUnit();
    const CUnitPtr dimension = SI::Meter() ^ 2;
    const CConverterPtr converter = scales(4);
    unit->setDimension(dimension, converter);
    EXPECT_EQ(unit->getCtxDimension(), dimension);
    EXPECT_EQ(unit->getCtxToDimension(), converter);
    EXPECT_EQ(unit->getDimension(), dimension);
    EXPECT_THAT(unit, ConvertsTo(dimension, 2.5, 10.0));

    const CConverterPtr other = scales(8);
    unit->setDimension(SI::Second(), other);
    EXPECT_EQ(unit->getCtxDimension(), SI::Second());
    EXPECT_EQ(unit->getCtxToDimension(), other);
    EXPECT_EQ(unit->getSystemUnit(), unit) << "only the dimension changes";
    EXPECT_EQ(unit->baseUnits(), unit);
}

TEST(BaseUnit, ANewDimensionReplacesOneThatWasUsed) {
    const CBaseUnitPtr unit = freshUnit();
    ASSERT_EQ(unit->getDimension(), unit);
    ASSERT_FALSE(unit->isCompatible(SI::Meter()));
    unit->setDimension(SI::Meter(), scales(4));
    EXPECT_EQ(unit->getDimension(), SI::Meter());
    EXPECT_TRUE(unit->isCompatible(SI::Meter()));
}

TEST(BaseUnit, EmptyPointersRestoreTheDefaults) {
    const CBaseUnitPtr unit = freshUnit();
    const CConverterPtr converter = scales(4);
    unit->setDimension(SI::Meter(), converter);
    unit->setDimension(nullptr, nullptr);
    EXPECT_EQ(unit->getCtxDimension(), unit);
    EXPECT_EQ(unit->getCtxToDimension(), CConverter::identity());
    EXPECT_FALSE(unit->isCompatible(SI::Meter()));

    unit->setDimension(SI::Meter(), nullptr);
    EXPECT_EQ(unit->getCtxDimension(), SI::Meter());
    EXPECT_EQ(unit->getCtxToDimension(), CConverter::identity());
    unit->setDimension(nullptr, converter);
    EXPECT_EQ(unit->getCtxDimension(), unit);
    EXPECT_EQ(unit->getCtxToDimension(), converter);
}

TEST(SetDimension, ClearsBothTablesOfDimensions) {
    const CUnitPtr kilometre = CUnit::fromString("km");
    ASSERT_EQ(kilometre->getDimension(), SI::Meter());
    ASSERT_GT(CUnit::dimensions().size(), 0U);
    ASSERT_GT(CUnit::toDimensions().size(), 0U);
    const CBaseUnitPtr unit = freshUnit();
    const Tables before;
    unit->setDimension(SI::Meter(), scales(4));
    EXPECT_TRUE(CUnit::dimensions().empty());
    EXPECT_TRUE(CUnit::toDimensions().empty());
    EXPECT_EQ(Tables(), before) << "identity and text do not change";

    EXPECT_EQ(kilometre->getDimension(), SI::Meter());
    EXPECT_EQ(CUnit::dimensions().size(), 1U);
    EXPECT_EQ(CUnit::dimensions().at(kilometre), SI::Meter());
    EXPECT_TRUE(CUnit::toDimensions().empty());
    EXPECT_THAT(kilometre, ConvertsTo(SI::Meter(), 1.0, 1000.0));
    EXPECT_EQ(CUnit::dimensions().size(), 2U);
    EXPECT_EQ(CUnit::toDimensions().size(), 2U);
}

// Lengths as the time that light needs: the dimension of the metre is the second.
TEST(SetDimension, ChangesEveryUnitThatDependsOnTheBaseUnit) {
    constexpr double SpeedOfLight = 299792458;
    const CUnitPtr kilometre = CUnit::fromString("km"), speed = SI::Meter() / SI::Second();
    const CUnitPtr lux = SI::Lux();
    ASSERT_FALSE(kilometre->isCompatible(SI::Second()));
    ASSERT_FALSE(speed->isCompatible(CProductUnit::one()));
    ASSERT_FALSE(lux->isCompatible(SI::Candela() / (SI::Second() ^ 2)));

    SI::Meter()->setDimension(SI::Second(), scales(1 / SpeedOfLight));
    EXPECT_THAT(SI::Meter(), ConvertsTo(SI::Second(), SpeedOfLight, SpeedOfLight / SpeedOfLight));
    EXPECT_THAT(kilometre->convertValueToUnit(SpeedOfLight, SI::Second()), WithinOneUlp(1000.0));
    EXPECT_THAT(kilometre,
                ConvertsTo(SI::Meter(), 1.0,
                           SI::Second()->convertValueToUnit(1000 / SpeedOfLight, SI::Meter())));
    // Products compute their factors with pow, whose last digit may differ.
    EXPECT_EQ(speed->getDimension(), CProductUnit::one());
    EXPECT_THAT(speed->convertValueToUnit(SpeedOfLight, CProductUnit::one()), WithinOneUlp(1.0));
    EXPECT_TRUE(lux->isCompatible(SI::Candela() / (SI::Second() ^ 2)));

    SI::Meter()->setDimension(nullptr, nullptr);
    EXPECT_FALSE(kilometre->isCompatible(SI::Second()));
    EXPECT_THAT(kilometre, ConvertsTo(SI::Meter(), 1.0, 1000.0));
}

TEST(SetDimension, DoesNotChangeConvertersThatAClientHas) {
    const CBaseUnitPtr unit = freshUnit();
    unit->setDimension(SI::Meter(), scales(4));
    const CConverterPtr before = unit->getConverterTo(SI::Meter());
    unit->setDimension(SI::Meter(), scales(8));
    EXPECT_EQ(before->convert(1), 4);
    EXPECT_EQ(unit->getConverterTo(SI::Meter())->convert(1), 8);
    unit->setDimension(nullptr, nullptr);
    EXPECT_EQ(before->convert(1), 4);
}

TEST(SetDimension, AcceptsANonLinearConverterThatProductsRefuse) {
    const CBaseUnitPtr unit = freshUnit();
    unit->setDimension(SI::Meter(), std::make_shared<CSquare>());
    EXPECT_THAT(unit, ConvertsTo(SI::Meter(), 3.0, 9.0));
    EXPECT_THAT(unit->multiply(2.0), ConvertsTo(SI::Meter(), 1.5, 9.0));
    const CUnitPtr speed = unit / SI::Second();
    EXPECT_THAT([&] { speed->getConverterTo(SI::Meter() / SI::Second()); },
                ThrowsMessage<std::logic_error>(StrEq("Unit element " + text(unit->getSymbol()) +
                                                      " is non-linear, cannot convert")));
}

// ---- a symbol whose hash code belongs to a unit of another kind

struct Foreign {
    const char* Kind;
    CUnitPtr Unit;
    string_t Symbol;  // has the hash code of the unit
};

std::vector<Foreign> foreignUnits() {
    const CUnitPtr area = SI::Meter() ^ 2,
                   client = CClientUnit::make("qqqqq", 1700000000)->canonical();
    return {
        {"product", area, symbolWithHash(area->hashCode())},
        {"alternate", SI::Newton(), "N"},
        {"alternate, other symbol", SI::Joule(), string_t(std::string("\0J", 2))},
        {"transformed", CUnit::fromString("km"),
         symbolWithHash(CUnit::fromString("km")->hashCode())},
        {"client's", client, symbolWithHash(client->hashCode())},
        {"dimensionless", CProductUnit::one(), ""},
    };
}

// Turns off the sanitizer that checks the class of an object at each call: these tests call
// functions of an object of another class on purpose.
#define OF_ANOTHER_CLASS __attribute__((no_sanitize("vptr")))

OF_ANOTHER_CLASS void setDimension(const CBaseUnitPtr& cast) {
    cast->setDimension(SI::Meter(), CConverter::identity());
}

// No function called through the result may read the unit of the other kind as if it were a base unit.
OF_ANOTHER_CLASS void askAllMembers(const CBaseUnitPtr& cast, const CUnitPtr& unit) {
    EXPECT_EQ(cast->getBaseUnits(), unit);
    EXPECT_EQ(cast->getSystemUnit(), unit->getSystemUnit());
    EXPECT_EQ(cast->getCtxDimension(), unit->getCtxDimension());
    EXPECT_EQ(cast->getDimension(), unit->getDimension());
    EXPECT_EQ(cast->hashCode(), unit->hashCode());
    EXPECT_EQ(text(cast->getSymbol()), text(unit->getSymbol()));
    EXPECT_TRUE(cast->isCompatible(unit));
}

TEST(BaseUnit, ASymbolWithTheHashCodeOfAnotherKindGivesThatUnit) {
    for (const Foreign& foreign : foreignUnits()) {
        SCOPED_TRACE(foreign.Kind);
        ASSERT_EQ(hashFromString(foreign.Symbol), foreign.Unit->hashCode());
        const CUnitPtr dimension = foreign.Unit->getDimension();
        const CConverterPtr converter = foreign.Unit->getCtxToDimension();
        const Tables before;
        const std::size_t cached = CUnit::dimensions().size();
        const CBaseUnitPtr cast = CBaseUnit::getInstance(foreign.Symbol);
        EXPECT_EQ(CUnitPtr(cast), foreign.Unit);
        EXPECT_THAT([&] { setDimension(cast); },
                    ThrowsMessage<std::logic_error>(HasSubstr(text(foreign.Unit->getSymbol()))));
        askAllMembers(cast, foreign.Unit);
        EXPECT_GE(CUnit::dimensions().size(), cached) << "nothing was cleared";
        EXPECT_EQ(foreign.Unit->getDimension(), dimension);
        EXPECT_EQ(foreign.Unit->getCtxToDimension()->derivative(0), converter->derivative(0));
        EXPECT_EQ(Tables(), before);
    }
}

}  // namespace
}  // namespace mensor
