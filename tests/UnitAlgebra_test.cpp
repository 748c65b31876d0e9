// UnitAlgebra_test.cpp: which kind of unit each operation gives, and the four caches of every unit.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StrEq;
using ::testing::ThrowsMessage;

// A unit with an odd hash code. With an even one, powers near the limits of int would have the hash
// codes of other powers.
CUnitPtr freshUnitWithOddHash() {
    CUnitPtr unit = freshUnit();
    while (unit->hashCode() % 2 == 0) {
        unit = freshUnit();
    }
    return unit;
}

std::size_t slotOf(const CUnitPtr& unit) { return static_cast<std::size_t>(Inside::id(unit)); }

// A unit with the hash code of its symbol that was never registered, so its id is 0.
CUnitPtr unregisteredUnit() {
    CUnitPtr unit = std::make_shared<CAlternateUnit>(freshSymbol(), CProductUnit::one());
    unit->calculateHashCode();
    return unit;
}

const CTransformedUnit& transformed(const CUnitPtr& unit) {
    return dynamic_cast<const CTransformedUnit&>(*unit);
}

// Factor `index` of a product.
CUnitRationalPower factor(const CUnitPtr& unit, int index) {
    return dynamic_cast<const CProductUnit&>(*unit).get(index);
}

// Offsets and factors.

TEST(UnitAlgebra, AddMakesATransformedUnitWithAnOffset) {
    const CUnitPtr unit = freshUnit();
    const CUnitPtr shifted = unit->add(273.15);
    EXPECT_EQ(shifted->getSystemUnit(), unit);
    EXPECT_THAT(shifted, ConvertsTo(unit, 1.0, 1.0 + 273.15));
    EXPECT_FALSE(transformed(shifted).toSystem()->isLinear());
}

TEST(UnitAlgebra, MultiplyByANumberMakesATransformedUnitWithAFactor) {
    const CUnitPtr unit = freshUnit();
    const CUnitPtr scaled = unit->multiply(1000);
    EXPECT_EQ(scaled->getSystemUnit(), unit);
    EXPECT_THAT(scaled, ConvertsTo(unit, 2.5, 2500.0));
    EXPECT_TRUE(transformed(scaled).toSystem()->isLinear());
}

TEST(UnitAlgebra, AddingZeroMakesATransformedUnit) {
    const CUnitPtr unit = freshUnit();
    const CUnitPtr shifted = unit + 0.0;
    ASSERT_NE(shifted, unit);
    const auto chain = std::dynamic_pointer_cast<CCompound>(transformed(shifted).toSystem());
    ASSERT_NE(chain, nullptr);
    const auto offset = std::dynamic_pointer_cast<CAddConverter>(chain->first());
    ASSERT_NE(offset, nullptr);
    EXPECT_THAT(offset->getOffset(), HasBitsOf(0.0));
}

TEST(UnitAlgebra, MultiplyingByOneMakesATransformedUnit) {
    const CUnitPtr unit = freshUnit();
    const CUnitPtr scaled = unit * 1.0;
    ASSERT_NE(scaled, unit);
    const auto chain = std::dynamic_pointer_cast<CCompound>(transformed(scaled).toSystem());
    ASSERT_NE(chain, nullptr);
    const auto factor = std::dynamic_pointer_cast<CMultiplyConverter>(chain->first());
    ASSERT_NE(factor, nullptr);
    EXPECT_THAT(factor->factor(), HasBitsOf(1.0));
}

TEST(UnitAlgebra, TheDimensionlessUnitCanBeScaled) {
    const CUnitPtr one = CProductUnit::one();
    const CUnitPtr dozen = one * 12.0;
    EXPECT_EQ(dozen->getSystemUnit(), one);
    EXPECT_THAT(dozen, ConvertsTo(one, 2.0, 24.0));
}

TEST(UnitAlgebra, OffsetsAndFactorsDoNotUseTheCachesOfTheUnit) {
    const CUnitPtr unit = freshUnit();
    unit->add(1.0);
    unit->multiply(2.0);
    unit->alternate(freshSymbol());
    EXPECT_THAT(Inside::multiplyLookUp(unit), IsEmpty());
    EXPECT_THAT(Inside::divideLookUp(unit), IsEmpty());
    EXPECT_THAT(Inside::powLookUp(unit), IsEmpty());
    EXPECT_THAT(Inside::rootLookUp(unit), IsEmpty());
}

TEST(UnitAlgebra, OffsetsAndFactorsAreBuiltAtEachCall) {
    const auto unit = freshClientUnit();
    const CUnitPtr scaled = unit->multiply(3.0);
    const auto asked = unit->Asked;
    EXPECT_THAT(asked, ::testing::Contains("getSystemUnit"));
    unit->Asked.clear();
    EXPECT_EQ(unit->multiply(3.0), scaled);
    EXPECT_THAT(unit->Asked,
                ::testing::Contains("getSystemUnit"));  // built again, then found by its hash code
}

TEST(UnitAlgebra, AlternateMakesAUnitWithASymbol) {
    const CUnitPtr unit = freshUnit();
    const string_t symbol = freshSymbol();
    const CUnitPtr named = (unit ^ 2)->alternate(symbol);
    ASSERT_NE(std::dynamic_pointer_cast<CAlternateUnit>(named), nullptr);
    EXPECT_EQ(text(named->getSymbol()), text(symbol));
    EXPECT_EQ(named->baseUnits(), unit ^ 2);
    EXPECT_EQ((unit ^ 2)->alternate(symbol), named);
    EXPECT_EQ(CAlternateUnit::getInstance(symbol, unit ^ 2), named);
}

// Operators.

TEST(UnitAlgebra, OperatorsCallTheMemberFunctions) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr v = freshUnit();
    EXPECT_EQ(u * 7.0, u->multiply(7.0));
    EXPECT_EQ(u + 7.0, u->add(7.0));
    EXPECT_EQ(u * v, u->multiply(v));
    EXPECT_EQ(u / v, u->divide(v));
    EXPECT_EQ(u ^ 3, u->pow(3));
    EXPECT_EQ(u ^ -3, u->pow(-3));
    // Each calls another function: five different units.
    EXPECT_EQ((std::set<CUnitPtr>{u * 7.0, u + 7.0, u * v, u / v, u ^ 3}).size(), 5U);
}

TEST(UnitAlgebra, TheLeftOperandIsTheObjectOfTheCall) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr v = freshUnit();
    const CUnitPtr product = u * v;
    EXPECT_EQ(Inside::multiplyLookUp(u).at(slotOf(v)), product);
    EXPECT_THAT(Inside::multiplyLookUp(v), IsEmpty());
    const CUnitPtr quotient = u / v;
    EXPECT_EQ(Inside::divideLookUp(u).at(slotOf(v)), quotient);
    EXPECT_THAT(Inside::divideLookUp(v), IsEmpty());
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wparentheses"
TEST(UnitAlgebra, TheCaretNeedsParenthesesBecauseItBindsMoreLooselyThanProducts) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr v = freshUnit();
    EXPECT_EQ((u * v ^ 2), (u * v)->pow(2));
    EXPECT_NE((u * v ^ 2), u * (v ^ 2));
    EXPECT_EQ((u / v ^ 2), (u / v)->pow(2));
}
#pragma GCC diagnostic pop

// Products and quotients.

TEST(UnitAlgebra, AProductIsTheSameObjectAtEachCall) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr v = freshUnit();
    const CUnitPtr product = u->multiply(v);
    EXPECT_EQ(u->multiply(v), product);
    EXPECT_GE(Inside::multiplyLookUp(u).size(), slotOf(v) + 1);
    EXPECT_EQ(CProductUnit::getProductInstance(u, v), product);
    EXPECT_TRUE(factor(product, 0) == CUnitRationalPower(u, 1, 1));
    EXPECT_TRUE(factor(product, 1) == CUnitRationalPower(v, 1, 1));
}

TEST(UnitAlgebra, AQuotientIsTheSameObjectAtEachCall) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr v = freshUnit();
    const CUnitPtr quotient = u->divide(v);
    EXPECT_EQ(u->divide(v), quotient);
    EXPECT_GE(Inside::divideLookUp(u).size(), slotOf(v) + 1);
    EXPECT_EQ(CProductUnit::getQuotientInstance(u, v), quotient);
    EXPECT_TRUE(factor(quotient, 0) == CUnitRationalPower(u, 1, 1));
    EXPECT_TRUE(factor(quotient, 1) == CUnitRationalPower(v, -1, 1));
}

TEST(UnitAlgebra, TheCacheEntryOfAProductIsAtTheIdOfTheOtherUnit) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr v = freshUnit();
    const CUnitPtr product = u * v;
    ASSERT_EQ(Inside::multiplyLookUp(u).size(), slotOf(v) + 1);
    for (std::size_t slot = 0; slot < slotOf(v); ++slot) {
        EXPECT_EQ(Inside::multiplyLookUp(u)[slot], nullptr) << slot;
    }
    EXPECT_EQ(Inside::multiplyLookUp(u)[slotOf(v)], product);
    EXPECT_THAT(Inside::divideLookUp(u), IsEmpty());

    const CUnitPtr quotient = u / v;
    ASSERT_EQ(Inside::divideLookUp(u).size(), slotOf(v) + 1);
    for (std::size_t slot = 0; slot < slotOf(v); ++slot) {
        EXPECT_EQ(Inside::divideLookUp(u)[slot], nullptr) << slot;
    }
    EXPECT_EQ(Inside::divideLookUp(u)[slotOf(v)], quotient);
}

TEST(UnitAlgebra, CachesNeverShrink) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr v = freshUnit();
    const CUnitPtr w = freshUnit();
    const CUnitPtr uw = u * w;  // w was registered last, so it has the larger id
    const CUnitPtr uv = u * v;
    EXPECT_EQ(Inside::multiplyLookUp(u).size(), slotOf(w) + 1);
    EXPECT_EQ(Inside::multiplyLookUp(u)[slotOf(w)], uw);
    EXPECT_EQ(Inside::multiplyLookUp(u)[slotOf(v)], uv);
}

// A cached result is returned without a call of any unit.
TEST(UnitAlgebra, ACachedResultIsReturnedWithoutBuildingAUnit) {
    const CUnitPtr u = freshUnit();
    const auto v = freshClientUnit();
    const CUnitPtr planted = freshUnit();

    u->multiply(v);
    u->divide(v);
    EXPECT_THAT(v->Asked, ::testing::Contains("elements").Times(2));
    u->multiply(v);
    u->divide(v);
    EXPECT_THAT(v->Asked, ::testing::Contains("elements").Times(2));

    Inside::multiplyLookUp(u)[slotOf(v)] = planted;
    EXPECT_EQ(u->multiply(v), planted);
    Inside::divideLookUp(u)[slotOf(v)] = planted;
    EXPECT_EQ(u->divide(v), planted);
    u->pow(3);
    Inside::powLookUp(u)[1] = planted;
    EXPECT_EQ(u->pow(3), planted);
    u->root(3);
    Inside::rootLookUp(u)[1] = planted;
    EXPECT_EQ(u->root(3), planted);
}

TEST(UnitAlgebra, AUnitTimesItselfIsItsSquare) {
    const CUnitPtr u = freshUnit();
    EXPECT_EQ(u * u, u->pow(2));
    EXPECT_EQ(Inside::multiplyLookUp(u)[slotOf(u)], u->pow(2));
    EXPECT_EQ(u / u, CProductUnit::one());
    EXPECT_EQ(Inside::divideLookUp(u)[slotOf(u)], CProductUnit::one());
}

TEST(UnitAlgebra, TheDimensionlessUnitUsesTheCachesLikeAnyOther) {
    const CUnitPtr one = CProductUnit::one();
    const CUnitPtr u = freshUnit();
    EXPECT_EQ(u * one, u);
    EXPECT_EQ(Inside::multiplyLookUp(u).at(0), u);
    EXPECT_EQ(u / one, u);
    EXPECT_EQ(Inside::divideLookUp(u).at(0), u);
    EXPECT_EQ(one * u, u);
    EXPECT_EQ(Inside::multiplyLookUp(one).at(slotOf(u)), u);
    const CUnitPtr inverse = one / u;
    EXPECT_TRUE(factor(inverse, 0) == CUnitRationalPower(u, -1, 1));
    EXPECT_EQ(Inside::divideLookUp(one).at(slotOf(u)), inverse);
    EXPECT_EQ(one * one, one);
    EXPECT_EQ(one / one, one);
    EXPECT_EQ(one->pow(3), one);
    EXPECT_EQ(one->root(3), one);
    EXPECT_EQ(one->pow(-3), one);
}

// The dimensionless unit and all unregistered units have id 0, so they share one cache entry.
TEST(UnitAlgebra, UnregisteredUnitsAndTheDimensionlessUnitShareOneCacheEntry) {
    const CUnitPtr stranger = unregisteredUnit();
    ASSERT_EQ(Inside::id(stranger), 0);
    ASSERT_EQ(Inside::id(CProductUnit::one()), 0);

    const CUnitPtr u = freshUnit();
    EXPECT_EQ(u * CProductUnit::one(), u);
    EXPECT_EQ(u * stranger, u);
    EXPECT_EQ(u / CProductUnit::one(), u);
    EXPECT_EQ(u / stranger, u);
}

TEST(UnitAlgebra, TheFirstResultInTheSharedCacheEntryIsTheResultForAll) {
    const CUnitPtr stranger = unregisteredUnit();
    const CUnitPtr other = unregisteredUnit();
    const CUnitPtr u = freshUnit();
    const CUnitPtr product = u * stranger;
    EXPECT_TRUE(factor(product, 1) == CUnitRationalPower(stranger, 1, 1));
    EXPECT_EQ(u * other, product);
    EXPECT_EQ(u * CProductUnit::one(), product);
    const CUnitPtr quotient = u / stranger;
    EXPECT_TRUE(factor(quotient, 1) == CUnitRationalPower(stranger, -1, 1));
    EXPECT_EQ(u / other, quotient);
    EXPECT_EQ(u / CProductUnit::one(), quotient);
}

// Powers and roots.

TEST(UnitAlgebra, TheFirstPowerAndTheFirstRootAreTheUnitItself) {
    for (const CUnitPtr& u : {CUnitPtr(freshUnit()), SI::Newton(), SI::Celsius(),
                              SI::Meter() / SI::Second(), CProductUnit::one()}) {
        const std::size_t powers = Inside::powLookUp(u).size();
        const std::size_t roots = Inside::rootLookUp(u).size();
        EXPECT_EQ(u->pow(1), u);
        EXPECT_EQ(u->root(1), u);
        EXPECT_EQ(Inside::powLookUp(u).size(), powers);
        EXPECT_EQ(Inside::rootLookUp(u).size(), roots);
    }
}

TEST(UnitAlgebra, ThePowerZeroIsTheDimensionlessUnit) {
    const CUnitPtr u = freshUnit();
    EXPECT_EQ(u->pow(0), CProductUnit::one());
    EXPECT_EQ(SI::Celsius()->pow(0), CProductUnit::one());
    EXPECT_THAT(Inside::powLookUp(u), IsEmpty());
}

TEST(UnitAlgebra, RefusesARootOfOrderZero) {
    const CUnitPtr u = freshUnit();
    EXPECT_THAT([&] { u->root(0); },
                ThrowsMessage<std::invalid_argument>(StrEq("Root's order of zero")));
    EXPECT_THAT(Inside::rootLookUp(u), IsEmpty());
}

TEST(UnitAlgebra, ARefusedRootLeavesTheUnitUnlocked) {
    const CUnitPtr u = freshUnit();
    EXPECT_THROW(u->root(0), std::invalid_argument);
    EXPECT_TRUE(isFree(Inside::lookupMutex(u)));
}

TEST(UnitAlgebra, TheFifthPowerFillsTheFourthCacheEntry) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr power = u->pow(5);
    EXPECT_THAT(Inside::powLookUp(u), ElementsAre(nullptr, nullptr, nullptr, power));
    EXPECT_THAT(Inside::rootLookUp(u), IsEmpty());
    const CUnitPtr square = u->pow(2);
    EXPECT_THAT(Inside::powLookUp(u), ElementsAre(square, nullptr, nullptr, power));
}

TEST(UnitAlgebra, TheFifthRootFillsTheFourthCacheEntry) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr root = u->root(5);
    EXPECT_THAT(Inside::rootLookUp(u), ElementsAre(nullptr, nullptr, nullptr, root));
    EXPECT_THAT(Inside::powLookUp(u), IsEmpty());
    const CUnitPtr square = u->root(2);
    EXPECT_THAT(Inside::rootLookUp(u), ElementsAre(square, nullptr, nullptr, root));
}

TEST(UnitAlgebra, PowersAndRootsAreProductsWithOneFactor) {
    const CUnitPtr u = freshUnit();
    EXPECT_TRUE(factor(u->pow(5), 0) == CUnitRationalPower(u, 5, 1));
    EXPECT_TRUE(factor(u->root(5), 0) == CUnitRationalPower(u, 1, 5));
    EXPECT_TRUE(factor(u->pow(-5), 0) == CUnitRationalPower(u, -5, 1));
    EXPECT_TRUE(factor(u->root(-5), 0) == CUnitRationalPower(u, -1, 5));
    EXPECT_EQ(u->pow(5)->root(5), u);
    EXPECT_EQ(u->root(5)->pow(5), u);
}

TEST(UnitAlgebra, ANegativePowerIsTheReciprocalOfThePower) {
    const CUnitPtr one = CProductUnit::one();
    const CUnitPtr u = freshUnit();
    const CUnitPtr power = u->pow(-2);
    ASSERT_EQ(Inside::powLookUp(u).size(), 1U);  // the square was computed first and is cached
    const CUnitPtr square = Inside::powLookUp(u)[0];
    ASSERT_NE(square, nullptr);
    EXPECT_EQ(Inside::divideLookUp(one).at(slotOf(square)), power);
    EXPECT_EQ(u->pow(2), square);
    EXPECT_EQ(one->divide(square), power);
    EXPECT_EQ(u->pow(-2), power);
    EXPECT_EQ(u->pow(-1), one->divide(u));
}

TEST(UnitAlgebra, ANegativeRootIsTheReciprocalOfTheRoot) {
    const CUnitPtr one = CProductUnit::one();
    const CUnitPtr u = freshUnit();
    const CUnitPtr root = u->root(-3);
    ASSERT_EQ(Inside::rootLookUp(u).size(), 2U);
    const CUnitPtr cubic = Inside::rootLookUp(u)[1];
    ASSERT_NE(cubic, nullptr);
    EXPECT_EQ(Inside::divideLookUp(one).at(slotOf(cubic)), root);
    EXPECT_EQ(u->root(3), cubic);
    EXPECT_EQ(one->divide(cubic), root);
    EXPECT_EQ(u->root(-3), root);
    EXPECT_EQ(u->root(-1), one->divide(u));
}

TEST(UnitAlgebra, PowersAndRootsAreCachedUpTo4096) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr power = u->pow(4096);
    ASSERT_EQ(Inside::powLookUp(u).size(), 4095U);
    EXPECT_EQ(Inside::powLookUp(u).back(), power);
    const CUnitPtr root = u->root(4096);
    ASSERT_EQ(Inside::rootLookUp(u).size(), 4095U);
    EXPECT_EQ(Inside::rootLookUp(u).back(), root);
}

TEST(UnitAlgebra, PowersAndRootsBeyond4096AreRegisteredButNotCached) {
    for (const int n : {4097, 5000, 2000000000, INT_MAX, -4097, -2000000000, -INT_MAX}) {
        SCOPED_TRACE(n);
        const CUnitPtr u = freshUnitWithOddHash();
        const CUnitPtr power = u->pow(n);
        EXPECT_TRUE(factor(power, 0) == CUnitRationalPower(u, n, 1));
        EXPECT_EQ(u->pow(n), power);
        EXPECT_THAT(Inside::powLookUp(u), IsEmpty());
        const CUnitPtr root = u->root(n);
        EXPECT_TRUE(factor(root, 0) == CUnitRationalPower(u, n < 0 ? -1 : 1, n < 0 ? -n : n));
        EXPECT_EQ(u->root(n), root);
        EXPECT_THAT(Inside::rootLookUp(u), IsEmpty());
    }
}

// Errors.

struct Overflow {
    const char* Name;
    std::function<void()> Call;
    const char* Number;  // the number in the message
};

TEST(UnitAlgebra, ExponentsOutOfRangeAreRefusedAndNothingIsRegistered) {
    const CUnitPtr u = freshUnitWithOddHash();
    const CUnitPtr v = freshUnit();
    const CUnitPtr largest = u->pow(INT_MAX);
    const CUnitPtr smallest = u->pow(-INT_MAX)->divide(u);  // -2147483648
    const CUnitPtr root = u->root(INT_MAX);
    const CUnitPtr mixed = v->multiply(u->pow(65536));
    const CUnitPtr mixedRoot = v->multiply(u->root(65536));
    const std::vector<CUnitPtr> units = {u,    v,     largest,   smallest,
                                         root, mixed, mixedRoot, CProductUnit::one()};
    const Overflow rows[] = {
        {"smallest power", [&] { u->pow(INT_MIN); }, "-2147483648"},
        {"smallest root", [&] { u->root(INT_MIN); }, "-2147483648"},
        {"product", [&] { largest->multiply(u); }, "2147483648"},
        {"product, other way", [&] { u->multiply(largest); }, "2147483648"},
        {"product downwards", [&] { smallest->divide(u); }, "-2147483649"},
        {"quotient", [&] { CProductUnit::one()->divide(smallest); }, "2147483648"},
        {"power of a power", [&] { largest->pow(2); }, "4294967294"},
        {"negative power of a power", [&] { largest->pow(-2); }, "4294967294"},
        {"large power of a power", [&] { largest->pow(5000); }, "10737418235000"},
        {"root of a root", [&] { root->root(2); }, "4294967294"},
        {"large root of a root", [&] { root->root(5000); }, "10737418235000"},
        {"power of one factor", [&] { mixed->pow(32768); }, "2147483648"},
        {"root of one factor", [&] { mixedRoot->root(32768); }, "2147483648"},
    };
    for (const Overflow& row : rows) {
        SCOPED_TRACE(row.Name);
        const Tables before;
        EXPECT_THAT(row.Call, ThrowsMessage<std::overflow_error>(HasSubstr(row.Number)));
        EXPECT_EQ(Tables(), before);
        for (const CUnitPtr& unit : units) {
            EXPECT_TRUE(isFree(Inside::lookupMutex(unit)));
        }
    }
    // No cache has a result.
    EXPECT_THAT(Inside::multiplyLookUp(largest), Each(nullptr));
    EXPECT_THAT(Inside::powLookUp(largest), Each(nullptr));
    EXPECT_THAT(Inside::rootLookUp(root), Each(nullptr));
    EXPECT_THAT(Inside::powLookUp(u), IsEmpty());
    EXPECT_THAT(Inside::rootLookUp(u), IsEmpty());
}

TEST(UnitAlgebra, ExponentsAtTheLimitsOfIntAreExact) {
    const CUnitPtr u = freshUnitWithOddHash();
    EXPECT_EQ(u->pow(INT_MAX)->divide(u)->multiply(u), u->pow(INT_MAX));
    EXPECT_EQ(u->pow(INT_MAX)->divide(u->pow(INT_MAX - 1)), u);
    EXPECT_EQ(u->pow(INT_MAX)->root(INT_MAX), u);
    EXPECT_EQ(u->root(INT_MAX)->pow(INT_MAX), u);
    const CUnitPtr smallest = u->pow(-INT_MAX)->divide(u);
    EXPECT_TRUE(factor(smallest, 0) == CUnitRationalPower(u, INT_MIN, 1));
    EXPECT_EQ(smallest->multiply(u), u->pow(-INT_MAX));
    EXPECT_TRUE(factor(smallest->root(2), 0) == CUnitRationalPower(u, INT_MIN / 2, 1));
    // Intermediate products may leave the range of int if the result does not.
    EXPECT_EQ(u->root(65536)->multiply(u->root(65536)), u->root(32768));
}

TEST(UnitAlgebra, AnEmptyOperandIsRefused) {
    const CUnitPtr u = freshUnit();
    const CUnitPtr none;
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"multiply", [&] { u->multiply(none); }},
        {"divide", [&] { u->divide(none); }},
        {"right *", [&] { u* none; }},
        {"right /", [&] { u / none; }},
        {"left + number", [&] { none + 1.0; }},
        {"left * number", [&] { none * 2.0; }},
        {"left *", [&] { none* u; }},
        {"left /", [&] { none / u; }},
        {"left ^", [&] { none ^ 2; }},
    };
    for (const auto& [name, call] : rows) {
        SCOPED_TRACE(name);
        const Tables before;
        EXPECT_THAT(call, ThrowsMessage<std::invalid_argument>(HasSubstr("empty")));
        EXPECT_EQ(Tables(), before);
    }
    EXPECT_THAT(Inside::multiplyLookUp(u), IsEmpty());
    EXPECT_THAT(Inside::divideLookUp(u), IsEmpty());
    EXPECT_TRUE(isFree(Inside::lookupMutex(u)));
}

TEST(UnitAlgebra, AResultThatThrewIsComputedAgainAtTheNextCall) {
    const CUnitPtr u = freshUnit();
    const auto v = freshClientUnit();
    v->Elements = []() -> std::vector<CUnitRationalPower> { throw std::runtime_error("not yet"); };
    const Tables before;
    EXPECT_THAT([&] { u->multiply(v); }, ThrowsMessage<std::runtime_error>(StrEq("not yet")));
    EXPECT_THAT([&] { u->divide(v); }, ThrowsMessage<std::runtime_error>(StrEq("not yet")));
    EXPECT_THAT([&] { v->pow(2); }, ThrowsMessage<std::runtime_error>(StrEq("not yet")));
    EXPECT_THAT([&] { v->root(2); }, ThrowsMessage<std::runtime_error>(StrEq("not yet")));
    EXPECT_EQ(Tables(), before);
    EXPECT_TRUE(isFree(Inside::lookupMutex(u)));
    EXPECT_TRUE(isFree(Inside::lookupMutex(v)));

    v->Elements = nullptr;
    EXPECT_TRUE(factor(u->multiply(v), 1) == CUnitRationalPower(v, 1, 1));
    EXPECT_TRUE(factor(u->divide(v), 1) == CUnitRationalPower(v, -1, 1));
    EXPECT_TRUE(factor(v->pow(2), 0) == CUnitRationalPower(v, 2, 1));
    EXPECT_TRUE(factor(v->root(2), 0) == CUnitRationalPower(v, 1, 2));
}

TEST(UnitAlgebra, AUnitWithoutSharedOwnerThrowsInTheAlgebra) {
    CClientUnit unit("qx", 42);
    EXPECT_THROW(unit.add(1.0), std::bad_weak_ptr);
    EXPECT_THROW(unit.multiply(2.0), std::bad_weak_ptr);
    EXPECT_THROW(unit.multiply(SI::Meter()), std::bad_weak_ptr);
    EXPECT_THROW(unit.divide(SI::Meter()), std::bad_weak_ptr);
    EXPECT_THROW(unit.pow(1), std::bad_weak_ptr);
    EXPECT_THROW(unit.pow(2), std::bad_weak_ptr);
    EXPECT_THROW(unit.root(2), std::bad_weak_ptr);
    EXPECT_THROW(unit.alternate("qy"), std::bad_weak_ptr);
    EXPECT_EQ(unit.pow(0), CProductUnit::one());
}

// Locks.

TEST(UnitAlgebra, ProductsPowersAndRootsHoldTheMutexOfTheUnitWhileTheyCompute) {
    const CUnitPtr u = freshUnit();
    const auto v = freshClientUnit();
    CUnit* const self = v.get();
    std::vector<bool> receiverWasFree;
    CUnitPtr receiver = u;
    v->Elements = [&]() -> std::vector<CUnitRationalPower> {
        receiverWasFree.push_back(isFree(Inside::lookupMutex(receiver)));
        return {CUnitRationalPower(self->shared_from_this(), 1, 1)};
    };
    u->multiply(v);
    u->divide(v);
    receiver = v;
    v->pow(2);
    v->root(2);
    v->pow(-3);
    v->root(-3);
    EXPECT_THAT(receiverWasFree, ElementsAre(false, false, false, false, false, false));
    EXPECT_TRUE(isFree(Inside::lookupMutex(u)));
    EXPECT_TRUE(isFree(Inside::lookupMutex(v)));
    v->Elements = nullptr;
}

TEST(UnitAlgebra, OffsetsFactorsAndSymbolsDoNotLockTheUnit) {
    const auto v = freshClientUnit();
    CUnit* const self = v.get();
    std::vector<bool> wasFree;
    const auto probe = [&]() -> CUnitPtr {
        wasFree.push_back(isFree(Inside::lookupMutex(self->shared_from_this())));
        return self->shared_from_this();
    };
    v->SystemUnit = probe;
    v->BaseUnits = probe;
    v->add(1.0);
    v->multiply(2.0);
    v->alternate(freshSymbol());
    EXPECT_THAT(wasFree, AllOf(::testing::SizeIs(::testing::Ge(3U)), Each(true)));
    v->SystemUnit = nullptr;
    v->BaseUnits = nullptr;
}

}  // namespace
}  // namespace mensor
