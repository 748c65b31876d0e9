// ProductUnit_test.cpp: how factors are merged, which products are one unit, and what is computed
// from the factors.
#include "mensor/ProductUnit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/AlternateUnit.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StrEq;
using ::testing::ThrowsMessage;

using Elements = std::vector<CUnitRationalPower>;

const CProductUnit& product(const CUnitPtr& unit) {
    return dynamic_cast<const CProductUnit&>(*unit);
}

int weighted(int hash, std::int64_t pow, std::int64_t root) {
    const auto weight = static_cast<std::uint32_t>(3 * pow - 2 * root);
    return static_cast<int>(static_cast<std::uint32_t>(hash) * weight);
}

// New units a, b and c, so no product of them exists yet. Their hash codes are odd: with even ones,
// exponents near the limits of int would have the hash codes of other exponents.
class Letters {
public:
    Letters() {
        for (const char name : {'a', 'b', 'c'}) {
            CUnitPtr unit = freshUnit();
            while (unit->hashCode() % 2 == 0) {
                unit = freshUnit();
            }
            m_Units[name] = unit;
        }
    }

    CUnitPtr operator[](char name) const { return m_Units.at(name); }

    // "a", "one", or the factors of a product: "a^2/1 b^-1/2".
    std::string notation(const CUnitPtr& unit) const {
        if (unit == CProductUnit::one()) {
            return "one";
        }
        if (std::dynamic_pointer_cast<CProductUnit>(unit) == nullptr) {
            return std::string(1, nameOf(unit));
        }
        std::string result;
        for (const CUnitRationalPower& factor : unit->elements()) {
            result += result.empty() ? "" : " ";
            result += nameOf(factor.getUnit());
            result +=
                "^" + std::to_string(factor.getPow()) + "/" + std::to_string(factor.getRoot());
        }
        return result;
    }

private:
    char nameOf(const CUnitPtr& unit) const {
        for (const auto& [name, known] : m_Units) {
            if (known == unit) {
                return name;
            }
        }
        return '?';
    }

    std::map<char, CUnitPtr> m_Units;
};

struct Factor {
    char Name;
    int Pow, Root;
};

Elements records(const std::vector<Factor>& factors, const Letters& units) {
    Elements result;
    for (const Factor& factor : factors) {
        result.emplace_back(units[factor.Name], factor.Pow, factor.Root);
    }
    return result;
}

// The dimensionless unit.

TEST(ProductUnit, OneIsOneObjectWithoutFactors) {
    const CUnitPtr one = CProductUnit::one();
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(CProductUnit::one(), one);
    EXPECT_EQ(product(one).size(), 0);
    EXPECT_THAT(one->elements(), IsEmpty());
    EXPECT_EQ(text(one->getSymbol()), "One");
    EXPECT_EQ(one->hashCode(), 0);
    EXPECT_EQ(Inside::id(one), 0);
}

TEST(ProductUnit, OneIsFoundByItsHashCodeButNotByItsSymbol) {
    EXPECT_EQ(CUnit::instances().at(0), CProductUnit::one());
    EXPECT_EQ(CUnit::searchSymbol("One"), nullptr);
    EXPECT_EQ(CUnit::symbols().count("One"), 0U);
}

TEST(ProductUnit, AProductOfNoFactorsIsOneEvenIfAClientRemovedOneFromTheTable) {
    CUnit::instances().erase(0);
    EXPECT_EQ(CProductUnit::getQuotientInstance(SI::Meter(), SI::Meter()), CProductUnit::one());
    EXPECT_EQ(SI::Kelvin() ^ 0, CProductUnit::one());
}

TEST(ProductUnit, OneIsItsOwnSystemUnitBaseUnitAndDimension) {
    const CUnitPtr one = CProductUnit::one();
    EXPECT_EQ(one->getSystemUnit(), one);
    EXPECT_EQ(one->baseUnits(), one);
    EXPECT_EQ(one->getCtxDimension(), one);
    EXPECT_EQ(one->getCtxToDimension(), CConverter::identity());
    one->calculateHashCode();
    EXPECT_EQ(one->hashCode(), 0);
}

// Merging and reducing factors.

TEST(ProductUnit, FactorsAreMergedReducedAndDropped) {
    const struct {
        std::vector<Factor> Left, Right;
        const char* Result;
    } rows[] = {
        // Unmatched factors, in the order given.
        {{}, {}, "one"},
        {{{'a', 1, 1}}, {{'b', 1, 1}}, "a^1/1 b^1/1"},
        {{{'b', 1, 1}}, {{'a', 1, 1}}, "b^1/1 a^1/1"},
        {{{'c', 1, 1}, {'a', -2, 1}}, {{'b', 1, 2}}, "c^1/1 a^-2/1 b^1/2"},
        // Factors of the same unit are merged at the place of the left one.
        {{{'a', 1, 1}}, {{'a', 1, 1}}, "a^2/1"},
        {{{'a', 1, 2}}, {{'a', 1, 3}}, "a^5/6"},
        {{{'a', 1, 2}}, {{'a', -1, 3}}, "a^1/6"},
        {{{'a', 1, 1}, {'b', 1, 1}}, {{'c', 1, 1}, {'a', 1, 1}}, "a^2/1 b^1/1 c^1/1"},
        {{{'a', 1, 1}, {'b', 1, 1}}, {{'c', 1, 1}, {'b', 1, 1}}, "a^1/1 b^2/1 c^1/1"},
        {{{'a', 1, 2}}, {{'a', 1, 2}}, "a"},
        // Factors that cancel are dropped.
        {{{'a', 1, 1}}, {{'a', -1, 1}}, "one"},
        {{{'a', 1, 2}}, {{'a', -2, 4}}, "one"},
        {{{'a', 1, 1}, {'b', 1, 1}}, {{'a', -1, 1}}, "b"},
        {{{'a', 1, 1}, {'b', 1, 1}}, {{'b', -1, 1}, {'c', 1, 1}}, "a^1/1 c^1/1"},
        // Left factors are reduced, and dropped if the exponent is zero, even if they are not
        // merged.
        {{{'a', 2, 4}}, {}, "a^1/2"},
        {{{'a', -2, 4}}, {}, "a^-1/2"},
        {{{'a', 2, 2}}, {}, "a"},
        {{{'a', 0, 1}}, {}, "one"},
        {{{'a', 0, 1}, {'b', 1, 1}}, {}, "b"},
        {{{'a', 0, 5}}, {{'a', 1, 1}}, "a"},
        {{{'a', 0, 0}}, {{'b', 1, 1}}, "b"},
        // Unmatched right factors are neither reduced nor dropped.
        {{}, {{'a', 2, 4}}, "a^2/4"},
        {{}, {{'a', 0, 1}}, "a^0/1"},
        {{}, {{'a', 0, 1}, {'b', 1, 1}}, "a^0/1 b^1/1"},
        // A single factor whose power equals its root is the unit itself.
        {{}, {{'a', 1, 1}}, "a"},
        {{}, {{'a', 2, 2}}, "a"},
        {{}, {{'a', -3, -3}}, "a"},
        {{}, {{'a', 0, 0}}, "a"},
        {{}, {{'a', 2, 2}, {'b', 1, 1}}, "a^2/2 b^1/1"},
        // Only the first match is merged. Factors of the same side are not merged.
        {{{'a', 1, 1}}, {{'a', 1, 1}, {'a', 5, 1}}, "a^2/1"},
        {{{'a', 1, 1}, {'a', 1, 1}}, {}, "a^1/1 a^1/1"},
        {{{'a', 1, 1}, {'a', 1, 1}}, {{'a', 1, 1}}, "a^2/1 a^2/1"},
        {{}, {{'a', 1, 1}, {'a', 1, 1}}, "a^1/1 a^1/1"},
        // The greatest common divisor has the sign of the last divisor that is not zero.
        {{{'a', 1, -2}}, {}, "a^1/-2"},
        {{{'a', 2, -4}}, {}, "a^1/-2"},
        {{{'a', 4, -2}}, {}, "a^-2/1"},
        {{{'a', -1, -1}}, {}, "a"},
        {{{'a', 3, 0}}, {}, "a^1/0"},
        // Large exponents.
        {{{'a', INT_MIN, 1}}, {}, "a^-2147483648/1"},
        {{{'a', INT_MIN, INT_MIN}}, {}, "a"},
        {{{'a', INT_MAX, 1}}, {{'a', INT_MIN, 1}}, "a^-1/1"},
        {{{'a', 1, INT_MAX}}, {{'a', 1, INT_MAX}}, "a^2/2147483647"},
    };
    for (const auto& row : rows) {
        const Letters units;
        const Elements left = records(row.Left, units);
        const Elements right = records(row.Right, units);
        const CUnitPtr result = CProductUnit::getInstance(left, right);
        EXPECT_EQ(units.notation(result), row.Result);
        EXPECT_EQ(CProductUnit::getInstance(left, right), result);
    }
}

TEST(ProductUnit, FactorsAreMatchedByPointerNotByEquals) {
    const CUnitPtr one = std::make_shared<CAlternateUnit>("qqz", SI::Meter());
    const CUnitPtr two = std::make_shared<CAlternateUnit>("qqz", SI::Meter());
    one->calculateHashCode();
    two->calculateHashCode();
    ASSERT_TRUE(one->equals(two));
    const CUnitPtr result = CProductUnit::getProductInstance(one, two);
    ASSERT_EQ(product(result).size(), 2);
    EXPECT_EQ(product(result).get(0).getUnit(), one);
    EXPECT_EQ(product(result).get(1).getUnit(), two);
}

TEST(ProductUnit, TheFirstBuilderDecidesTheOrder) {
    const CUnitPtr m = freshUnit();
    const CUnitPtr s = freshUnit();
    const CUnitPtr first = CProductUnit::getProductInstance(s, m);
    EXPECT_EQ(CProductUnit::getProductInstance(m, s), first);
    EXPECT_TRUE(product(first).get(0) == CUnitRationalPower(s, 1, 1));
    EXPECT_TRUE(product(first).get(1) == CUnitRationalPower(m, 1, 1));

    const CUnitPtr a = freshUnit();
    const CUnitPtr b = freshUnit();
    const CUnitPtr other = CProductUnit::getProductInstance(a, b);
    EXPECT_TRUE(product(other).get(0) == CUnitRationalPower(a, 1, 1));
    EXPECT_TRUE(product(other).get(1) == CUnitRationalPower(b, 1, 1));
}

TEST(ProductUnit, TheCatalogueDecidesTheOrderOfItsProducts) {
    const CUnitPtr joule = SI::Kilogram() * (SI::Meter() ^ 2) / (SI::Second() ^ 2);
    ASSERT_EQ(product(joule).size(), 3);
    EXPECT_TRUE(product(joule).get(0) == CUnitRationalPower(SI::Meter(), 2, 1));
    EXPECT_TRUE(product(joule).get(1) == CUnitRationalPower(SI::Kilogram(), 1, 1));
    EXPECT_TRUE(product(joule).get(2) == CUnitRationalPower(SI::Second(), -2, 1));
    EXPECT_EQ(joule, SI::Joule()->baseUnits());
    EXPECT_THAT(joule, PrintsAs("m²·kg/s²"));
}

TEST(ProductUnit, ANewProductIsRegisteredWithoutSymbol) {
    const CUnitPtr a = freshUnit();
    const CUnitPtr b = freshUnit();
    const std::size_t count = CUnit::instances().size();
    const std::size_t symbols = CUnit::symbols().size();
    const CUnitPtr unit = CProductUnit::getProductInstance(a, b);
    EXPECT_EQ(text(unit->getSymbol()), "");
    EXPECT_EQ(CUnit::instances().size(), count + 1);
    EXPECT_EQ(CUnit::instances().at(unit->hashCode()), unit);
    EXPECT_EQ(Inside::id(unit), static_cast<int>(count + 1));
    EXPECT_EQ(CUnit::symbols().size(), symbols);
}

TEST(ProductUnit, ReturnsCopiesOfItsFactors) {
    const Letters units;
    const CUnitPtr unit = units['a'] / (units['b'] ^ 2);
    Elements elements = unit->elements();
    ASSERT_EQ(elements.size(), 2U);
    EXPECT_EQ(product(unit).size(), 2);
    elements[0].setPow(7);
    elements.pop_back();
    CUnitRationalPower first = product(unit).get(0);
    first.setRoot(7);
    EXPECT_EQ(units.notation(unit), "a^1/1 b^-2/1");
}

// Products, quotients, roots and powers.

TEST(ProductUnit, DividedByItselfIsTheDimensionlessUnit) {
    const CUnitPtr m = freshUnit();
    EXPECT_EQ(CProductUnit::getQuotientInstance(m, m), CProductUnit::one());
    const CUnitPtr speed = m / freshUnit();
    EXPECT_EQ(CProductUnit::getQuotientInstance(speed, speed), CProductUnit::one());
}

TEST(ProductUnit, ProductsAndQuotientsMergeTheFactorsOfBothSides) {
    const Letters units;
    const CUnitPtr a = units['a'];
    const CUnitPtr b = units['b'];
    const CUnitPtr c = units['c'];
    const CUnitPtr ab = CProductUnit::getProductInstance(a, b);
    EXPECT_EQ(units.notation(ab), "a^1/1 b^1/1");
    EXPECT_EQ(units.notation(CProductUnit::getProductInstance(ab, c)), "a^1/1 b^1/1 c^1/1");
    EXPECT_EQ(units.notation(CProductUnit::getProductInstance(ab, b)), "a^1/1 b^2/1");
    const CUnitPtr quotient = CProductUnit::getQuotientInstance(c, ab);
    EXPECT_EQ(units.notation(quotient), "c^1/1 a^-1/1 b^-1/1");
    EXPECT_EQ(CProductUnit::getQuotientInstance(ab, b), a);
    EXPECT_EQ(CProductUnit::getProductInstance(quotient, ab), c);
    const CUnitPtr root = CProductUnit::getRootInstance(b, 2);
    EXPECT_EQ(units.notation(CProductUnit::getQuotientInstance(a, root)), "a^1/1 b^-1/2");
    EXPECT_EQ(CProductUnit::getProductInstance(CProductUnit::one(), a), a);
    EXPECT_EQ(CProductUnit::getQuotientInstance(a, CProductUnit::one()), a);
}

TEST(ProductUnit, TheRootOfASquareIsTheUnitItself) {
    const CUnitPtr m = freshUnit();
    const CUnitPtr square = CProductUnit::getPowInstance(m, 2);
    EXPECT_TRUE(product(square).get(0) == CUnitRationalPower(m, 2, 1));
    EXPECT_EQ(CProductUnit::getRootInstance(square, 2), m);
}

TEST(ProductUnit, PowersOfASquareRootAreReduced) {
    const Letters units;
    const CUnitPtr m = units['a'];
    const CUnitPtr root = CProductUnit::getRootInstance(m, 2);
    EXPECT_EQ(units.notation(root), "a^1/2");
    EXPECT_EQ(units.notation(CProductUnit::getPowInstance(root, 4)), "a^2/1");
    EXPECT_EQ(CProductUnit::getPowInstance(root, 2), m);
    EXPECT_EQ(units.notation(CProductUnit::getPowInstance(root, -3)), "a^-3/2");
}

TEST(ProductUnit, PowersAndRootsRaiseEveryFactor) {
    const Letters units;
    const CUnitPtr unit = (units['a'] ^ 4) * (units['b'] ^ -6);
    EXPECT_EQ(units.notation(CProductUnit::getRootInstance(unit, 2)), "a^2/1 b^-3/1");
    EXPECT_EQ(units.notation(CProductUnit::getRootInstance(unit, 4)), "a^1/1 b^-3/2");
    EXPECT_EQ(units.notation(CProductUnit::getPowInstance(unit, 3)), "a^12/1 b^-18/1");
    EXPECT_EQ(CProductUnit::getPowInstance(unit, 0), CProductUnit::one());
    EXPECT_EQ(CProductUnit::getPowInstance(CProductUnit::one(), 5), CProductUnit::one());
    EXPECT_EQ(CProductUnit::getRootInstance(CProductUnit::one(), 5), CProductUnit::one());
}

// Orders that CUnit::root refuses or negates are used unchanged here.
TEST(ProductUnit, GetRootInstanceDoesNotCheckTheOrder) {
    const Letters units;
    EXPECT_EQ(units.notation(CProductUnit::getRootInstance(units['a'], -2)), "a^1/-2");
    EXPECT_EQ(units.notation(CProductUnit::getRootInstance(units['b'], 0)), "b^1/0");
    EXPECT_EQ(units.notation(CProductUnit::getPowInstance(units['c'], -2)), "c^-2/1");
}

// The hash code, which alone decides identity.

TEST(ProductUnit, TheHashCodeIsTheWeightedSumOfTheFactorsHashCodes) {
    EXPECT_EQ((SI::Meter() / SI::Second())->hashCode(), 'm' - 5 * 's');
    EXPECT_EQ((SI::Meter() ^ 2)->hashCode(), 4 * 'm');
    EXPECT_EQ(SI::Meter()->root(2)->hashCode(), -'m');
    const struct {
        int Pow, Root;
    } rows[] = {{2, 1},       {-1, 1},       {1, 2},       {-7, 3}, {5, 6},
                {INT_MAX, 1}, {-INT_MAX, 1}, {1, INT_MAX}, {3, 20}, {INT_MIN, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.Pow << "/" << row.Root);
        const Letters units;
        const int a = units['a']->hashCode();
        const CUnitPtr power =
            CProductUnit::getInstance({CUnitRationalPower(units['a'], row.Pow, row.Root)}, {});
        EXPECT_EQ(power->hashCode(), weighted(a, row.Pow, row.Root));
        const CUnitPtr both = CProductUnit::getProductInstance(power, units['b']);
        EXPECT_EQ(both->hashCode(),
                  static_cast<int>(static_cast<std::uint32_t>(power->hashCode()) +
                                   static_cast<std::uint32_t>(units['b']->hashCode())));
    }
}

TEST(ProductUnit, TheHashCodeUsesTheStoredHashCodesOfTheFactors) {
    const auto client = freshClientUnit();
    client->Hash = 1;  // a new hash code, but it is not computed again
    const CUnitPtr square = client->pow(2);
    EXPECT_EQ(square->hashCode(), 4 * client->hashCode());
    EXPECT_THAT(client->Asked, Each(StrEq("elements")));  // calculateHashCode was not called
}

TEST(ProductUnit, TheCubeRootSquaredIsTheDimensionlessUnit) {
    EXPECT_EQ(SI::Meter()->root(3)->pow(2), CProductUnit::one());  // 3·2 − 2·3 = 0
    const CUnitPtr unit = freshUnit();
    const CUnitPtr cubeRoot = unit->root(3);
    const CUnitPtr square = unit->pow(2);
    const Tables before;
    EXPECT_EQ(cubeRoot->pow(2), CProductUnit::one());
    EXPECT_EQ(square->root(3), CProductUnit::one());
    EXPECT_EQ(CProductUnit::getInstance({CUnitRationalPower(unit, 4, 6)}, {}), CProductUnit::one());
    EXPECT_EQ(Tables(), before);
}

TEST(ProductUnit, AFactorWithHashWeightZeroDoesNotChangeTheHashCode) {
    const CUnitPtr a = freshUnit();
    const CUnitPtr b = freshUnit();
    EXPECT_EQ(
        CProductUnit::getInstance({CUnitRationalPower(a, 2, 3)}, {CUnitRationalPower(b, 1, 1)}), b);
}

TEST(ProductUnit, PowersWithTheSameHashWeightAreOneUnit) {
    const struct {
        Factor First, Second;
        const char* Result;
    } rows[] = {
        {{'a', 1, 1}, {'a', 3, 4}, "a"},  // 3·3 − 2·4 = 1, the weight of 1/1
        {{'a', 1, 1}, {'a', 5, 7}, "a"},
        {{'a', 1, 2}, {'a', 3, 5}, "a^1/2"},  // −1
        {{'a', 3, 5}, {'a', 1, 2}, "a^3/5"},
        {{'a', -1, 1}, {'a', 1, 4}, "a^-1/1"},  // −5
        {{'a', 1, 4}, {'a', -1, 1}, "a^1/4"},
        {{'a', 3, 2}, {'a', 1, INT_MAX}, "a^3/2"},  // 5, after wrap-around
    };
    for (const auto& row : rows) {
        const Letters units;
        const CUnitPtr first = CProductUnit::getInstance(records({row.First}, units), {});
        const CUnitPtr second = CProductUnit::getInstance(records({row.Second}, units), {});
        EXPECT_EQ(units.notation(second), row.Result);
        EXPECT_EQ(second, first);
    }
    const CUnitPtr unit = freshUnit();
    EXPECT_EQ(unit->root(4)->pow(3), unit);
}

TEST(ProductUnit, ProductsWithTheSameHashCodeAreOneUnit) {
    const CUnitPtr entropyRate = SI::Kilogram() / (SI::Second() * SI::Kelvin());
    const CUnitPtr henry = SI::Weber() / SI::Ampere();
    EXPECT_EQ(entropyRate, henry);
    EXPECT_TRUE(product(henry).get(0) == CUnitRationalPower(SI::Weber(), 1, 1));
    EXPECT_EQ('k' * 31 + 'g' - 5 * ('s' + 'K'), ('W' * 31 + 'b') - 5 * 'A');
}

TEST(ProductUnit, AProductWithTheHashCodeOfAnotherKindIsThatUnit) {
    const CUnitPtr a = freshUnit();
    const CUnitPtr b = freshUnit();
    const CUnitPtr owner =
        CClientUnit::make(freshSymbol(), a->hashCode() + b->hashCode())->canonical();
    const Tables before;
    EXPECT_EQ(a * b, owner);
    EXPECT_EQ(Tables(), before);
}

// equals()

TEST(ProductUnit, EqualsAProductWithTheFactorsInAnotherOrder) {
    const CUnitPtr m = freshUnit();
    const CUnitPtr s = freshUnit();
    const CUnitPtr ms = m * s;
    const auto mirrored = freshClientUnit();
    mirrored->Elements = [&]() -> Elements {
        return {CUnitRationalPower(s, 1, 1), CUnitRationalPower(m, 1, 1)};
    };
    EXPECT_TRUE(ms->equals(mirrored));  // only the factors count, not the kind
    EXPECT_TRUE(ms->equals(ms));
    EXPECT_EQ(ms, s * m);
}

TEST(ProductUnit, EqualsComparesTheNumberAndTheRecordsOfTheFactors) {
    const CUnitPtr m = freshUnit();
    const CUnitPtr s = freshUnit();
    const CUnitPtr speed = m / s;
    EXPECT_FALSE(speed->equals(m * s));
    EXPECT_FALSE(speed->equals(m / (s ^ 2)));
    EXPECT_FALSE(speed->equals(m));
    EXPECT_FALSE(speed->equals(speed * freshUnit()));
    EXPECT_FALSE((speed * freshUnit())->equals(speed));
    EXPECT_FALSE(speed->equals(CProductUnit::one()));
    EXPECT_FALSE(CProductUnit::one()->equals(speed));
    EXPECT_TRUE(CProductUnit::one()->equals(CProductUnit::one()));
    EXPECT_FALSE(speed->equals(CUnitPtr()));
    EXPECT_FALSE(CProductUnit::one()->equals(CUnitPtr()));

    const auto client = freshClientUnit();
    client->Elements = [&]() -> Elements { return {CUnitRationalPower(m, 2, 2)}; };
    EXPECT_FALSE(
        CProductUnit::getInstance({}, {CUnitRationalPower(m, 3, 3), CUnitRationalPower(s, 0, 1)})
            ->equals(client));
    client->Elements = []() -> Elements { return {}; };
    EXPECT_TRUE(CProductUnit::one()->equals(client));
}

// A factor that the other unit has twice is found twice in one factor of this unit.
TEST(ProductUnit, EqualsFindsEachFactorOfTheOtherInThisProduct) {
    const CUnitPtr a = freshUnit();
    const CUnitPtr b = freshUnit();
    const CUnitPtr ab = a * b;
    const CUnitPtr aa =
        CProductUnit::getInstance({CUnitRationalPower(a, 1, 1), CUnitRationalPower(a, 1, 1)}, {});
    EXPECT_TRUE(ab->equals(aa));
    EXPECT_FALSE(aa->equals(ab));
}

class ProductOfItsOwn : public CProductUnit {};

TEST(ProductUnit, ThrowsWhenComparedWithoutASharedOwner) {
    const ProductOfItsOwn onTheStack;
    EXPECT_THROW(onTheStack.equals(CProductUnit::one()), std::bad_weak_ptr);
    EXPECT_EQ(onTheStack.size(), 0);
    const CUnitPtr owned = std::make_shared<ProductOfItsOwn>();
    EXPECT_EQ(text(owned->getSymbol()), "One");
    EXPECT_TRUE(owned->equals(CProductUnit::one()));
}

// System unit, base units and dimension, computed from the factors.

TEST(ProductUnit, TheSystemUnitIsTheProductOfTheFactorsSystemUnits) {
    const CUnitPtr m = freshUnit();
    const CUnitPtr s = freshUnit();
    const CUnitPtr km = m * 1000.0;
    EXPECT_EQ((km / (s * 3600.0))->getSystemUnit(), m / s);
    EXPECT_EQ((km ^ 3)->getSystemUnit(), m ^ 3);
    EXPECT_EQ(km->root(2)->getSystemUnit(), m->root(2));
    EXPECT_EQ((km->root(5) ^ -1)->getSystemUnit(), m->root(-5));
    EXPECT_EQ((km / m)->getSystemUnit(), CProductUnit::one());
    EXPECT_EQ((km * m)->getSystemUnit(), m ^ 2);
    const CUnitPtr speed = m / s;
    EXPECT_EQ(speed->getSystemUnit(), speed);
    EXPECT_TRUE(speed->isSystemUnit());
    const CUnitPtr newtonMetre = SI::Newton() * SI::Meter();
    EXPECT_EQ(newtonMetre->getSystemUnit(), newtonMetre);  // the newton is a system unit
}

TEST(ProductUnit, TheSystemUnitIsComputedOnce) {
    const auto client = freshClientUnit();
    const CUnitPtr system = freshUnit();
    const CUnitPtr square = client->pow(2);
    client->SystemUnit = [&] { return system; };
    client->Asked.clear();
    EXPECT_EQ(square->getSystemUnit(), system ^ 2);
    EXPECT_THAT(client->Asked, ElementsAre("getSystemUnit"));
    client->SystemUnit = nullptr;
    EXPECT_EQ(square->getSystemUnit(), system ^ 2);
    EXPECT_THAT(client->Asked, ElementsAre("getSystemUnit"));
}

// A product that owned itself would never be freed.
TEST(ProductUnit, AProductThatIsItsOwnSystemUnitDoesNotOwnItself) {
    const CUnitPtr m = freshUnit();
    const CUnitPtr s = freshUnit();
    const CUnitPtr speed = m / s;
    ASSERT_EQ(CProductUnit::one() * m * (s ^ -1),
              speed);  // the steps of the computation are cached now
    const long owners = speed.use_count();
    EXPECT_EQ(speed->getSystemUnit(), speed);
    EXPECT_EQ(speed.use_count(), owners);
    const CUnitPtr owner = speed->getSystemUnit();
    EXPECT_EQ(speed.use_count(), owners + 1);  // the returned pointer is an owner
}

TEST(ProductUnit, ASystemUnitThatThrowsIsComputedAgainAtTheNextCall) {
    const auto client = freshClientUnit();
    const CUnitPtr square = client->pow(2);
    client->SystemUnit = []() -> CUnitPtr { throw std::runtime_error("not yet"); };
    EXPECT_THAT([&] { square->getSystemUnit(); },
                ThrowsMessage<std::runtime_error>(StrEq("not yet")));
    client->SystemUnit = nullptr;
    EXPECT_EQ(square->getSystemUnit(), square);
}

TEST(ProductUnit, ConcurrentCallsReturnTheSameSystemUnit) {
    const CUnitPtr m = freshUnit();
    const CUnitPtr s = freshUnit();
    const CUnitPtr expected = m / s;
    m->pow(1)->root(1);
    const CUnitPtr speed = (m * 1000.0) / (s * 3600.0);
    std::vector<CUnitPtr> results(4);
    std::vector<std::thread> threads;
    for (CUnitPtr& result : results) {
        threads.emplace_back([&result, &speed] { result = speed->getSystemUnit(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(results, Each(expected));
}

TEST(ProductUnit, BaseUnitsAreComputedFromAllFactorsAtEachCall) {
    const CUnitPtr force = SI::Newton()->baseUnits();
    EXPECT_EQ((SI::Newton() * SI::Meter())->baseUnits(), force * SI::Meter());
    EXPECT_EQ((SI::Newton() ^ 2)->baseUnits(), force ^ 2);
    EXPECT_EQ(SI::Newton()->root(2)->baseUnits(), force->root(2));
    EXPECT_EQ((SI::Meter() / SI::Newton())->baseUnits(), SI::Meter() / force);

    const auto client = freshClientUnit();
    const CUnitPtr base = freshUnit();
    const CUnitPtr square = client->pow(2);
    client->Asked.clear();
    EXPECT_EQ(square->baseUnits(), square);
    client->BaseUnits = [&] { return base; };
    EXPECT_EQ(square->baseUnits(), base ^ 2);
    EXPECT_THAT(client->Asked, ::testing::IsSupersetOf({"baseUnits", "baseUnits"}));
}

TEST(ProductUnit, BaseUnitsThrowForATransformedFactor) {
    const CUnitPtr km = SI::Meter() * 1000.0;
    EXPECT_THAT(
        [&] { (km ^ 2)->baseUnits(); },
        ThrowsMessage<std::logic_error>(StrEq("Unit with Id[ " + std::to_string(Inside::id(km)) +
                                              "] and Symbol [] is not a system unit")));
}

TEST(ProductUnit, TheDimensionIsComputedAtEachCall) {
    const auto client = freshClientUnit();
    const CUnitPtr dimension = freshUnit();
    const CUnitPtr s = freshUnit();
    const CUnitPtr unit = client->root(2) / s;
    client->Asked.clear();
    client->CtxDimension = [&] { return dimension; };
    EXPECT_EQ(unit->getCtxDimension(), dimension->root(2) / s);
    EXPECT_EQ(unit->getCtxDimension(), dimension->root(2) / s);
    EXPECT_THAT(client->Asked, ElementsAre("getCtxDimension", "getCtxDimension"));
    EXPECT_EQ(CUnit::dimensions().count(client),
              0U);  // the factor was called directly, not through the cache
    EXPECT_EQ((SI::Newton() * (SI::Meter() * 1000.0))->getCtxDimension(),
              SI::Joule()->getCtxDimension());
}

// The converter to the dimension.

TEST(ProductUnit, TheConverterMultipliesTheSlopesOfTheFactorsRaisedToTheirExponents) {
    const CUnitPtr m = freshUnit();
    const CUnitPtr s = freshUnit();
    const CUnitPtr km = m * 1000.0;
    const struct {
        CUnitPtr Unit;
        double Factor;
    } rows[] = {
        {km / (s * 3600.0), 1000.0 / 3600.0},
        {km ^ 2, 1e6},
        {km ^ -1, 1e-3},
        {(m * 4.0)->root(2), 2.0},
        {(m * 8.0)->root(3) / (s * 4.0), 0.5},
        {(m * -2.0) ^ 3, -8.0},
    };
    for (const auto& row : rows) {
        const auto converter =
            std::dynamic_pointer_cast<CMultiplyConverter>(row.Unit->getCtxToDimension());
        ASSERT_NE(converter, nullptr);
        // The result of pow may differ in the last digit between platforms.
        EXPECT_THAT(converter->factor(), WithinOneUlp(row.Factor));
        EXPECT_NE(row.Unit->getCtxToDimension(), converter);  // each call returns a new object
    }
}

TEST(ProductUnit, TheExponentIsComputedInDoublePrecision) {
    const CUnitPtr m = freshUnit();
    const auto converter = std::dynamic_pointer_cast<CMultiplyConverter>(
        CProductUnit::getInstance({CUnitRationalPower(m * 10.0, 1, 3)}, {})->getCtxToDimension());
    ASSERT_NE(converter, nullptr);
    EXPECT_THAT(converter->factor(), WithinOneUlp(2.154434690031884));
}

TEST(ProductUnit, AProductThatIsItsDimensionConvertsByTheIdentity) {
    EXPECT_EQ((SI::Meter() / SI::Second())->getCtxToDimension(), CConverter::identity());
    EXPECT_EQ((SI::Newton() * SI::Meter())->getCtxToDimension(), CConverter::identity());
    const CUnitPtr km = SI::Meter() * 1000.0;
    EXPECT_EQ((km * (SI::Second() * 0.001))->getCtxToDimension(), CConverter::identity());
}

TEST(ProductUnit, AFactorWithinABillionthOfOneGivesTheIdentity) {
    constexpr double above =
        std::numeric_limits<double>::epsilon();  // the step between doubles above 1
    constexpr double below = above / 2;
    const struct {
        double Slope;
        bool IsIdentity;
    } rows[] = {
        {1.0, true},
        {1.0 + 5e-10, true},
        {1.0 - 5e-10, true},
        {1.0 + 4503599 * above, true},   // 9.9999999e-10 off: still the identity
        {1.0 + 4503600 * above, false},  // 1.00000008e-9 off
        {1.0 - 9007199 * below, true},
        {1.0 - 9007200 * below, false},
        {1.0 + 2e-9, false},
        {1.0 - 2e-9, false},
        {2.0, false},
        {-1.0, false},
        {0.0, false},
        {std::numeric_limits<double>::infinity(), false},
        {std::numeric_limits<double>::quiet_NaN(), false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(exactly(row.Slope));
        const auto unit = freshClientUnit();
        const CUnitPtr product = unit * freshUnit();
        const auto slope = std::make_shared<CMultiplyConverter>(row.Slope);
        unit->CtxToDimension = [&] { return slope; };
        const CConverterPtr converter = product->getCtxToDimension();
        EXPECT_EQ(converter == CConverter::identity(), row.IsIdentity);
        if (!row.IsIdentity) {
            // The power 1, for which pow is exact.
            EXPECT_THAT(converter->derivative(0.0), HasBitsOf(row.Slope));
        }
    }
}

TEST(ProductUnit, TheMessageNamesANonLinearFactorByItsSymbol) {
    const CBaseUnitPtr shifted = freshUnit();
    shifted->setDimension(freshUnit(), std::make_shared<CAddConverter>(5.0));
    const CUnitPtr product = SI::Meter() * shifted;
    EXPECT_THAT([&] { product->getCtxToDimension(); },
                ThrowsMessage<std::logic_error>(StrEq("Unit element " + text(shifted->getSymbol()) +
                                                      " is non-linear, cannot convert")));
}

TEST(ProductUnit, TheMessageHasTwoBlanksForANonLinearFactorWithoutSymbol) {
    const CUnitPtr product = SI::Celsius() * SI::Meter();
    const CUnitPtr square = SI::Celsius() ^ 2;
    const Tables before;
    for (const CUnitPtr& unit : {product, square}) {
        EXPECT_THAT(
            [&] { unit->getCtxToDimension(); },
            ThrowsMessage<std::logic_error>(StrEq("Unit element  is non-linear, cannot convert")));
    }
    EXPECT_EQ(Tables(), before);
}

TEST(ProductUnit, FactorsAfterANonLinearOneAreNotAsked) {
    const CBaseUnitPtr shifted = freshUnit();
    shifted->setDimension(freshUnit(), std::make_shared<CAddConverter>(5.0));
    const auto before = freshClientUnit();
    const auto after = freshClientUnit();
    const CUnitPtr product = before * shifted * after;
    before->Asked.clear();
    after->Asked.clear();
    EXPECT_THROW(product->getCtxToDimension(), std::logic_error);
    EXPECT_THAT(before->Asked, ElementsAre("getCtxToDimension"));
    EXPECT_THAT(after->Asked, IsEmpty());
}

// A chain is linear if its first step is. A multiple of the degree Celsius begins with a factor.
TEST(ProductUnit, TheOffsetOfAFactorThatReportsItselfLinearIsDropped) {
    const CUnitPtr scaled = SI::Celsius() * 7.0;
    const CUnitPtr product = scaled * SI::Meter();
    EXPECT_THAT(scaled, ConvertsTo(SI::Kelvin(), 1.0, 7.0 + 273.15));
    EXPECT_THAT(product, ConvertsTo(SI::Kelvin() * SI::Meter(), 1.0, 7.0));  // pow(7, 1) is exact
}

// Errors.

TEST(ProductUnit, ExponentsOutOfRangeAreRefusedAndNothingIsRegistered) {
    const struct {
        std::vector<Factor> Left, Right;
        const char* Number;
    } rows[] = {
        {{{'a', INT_MAX, 1}}, {{'a', 1, 1}}, "2147483648"},
        {{{'a', INT_MIN, 1}}, {{'a', -1, 1}}, "-2147483649"},
        {{{'b', 1, 1}, {'a', INT_MAX, 1}}, {{'c', 1, 1}, {'a', INT_MAX, 1}}, "4294967294"},
        {{{'a', 1, 65536}}, {{'a', 1, 65537}}, "4295032832"},
        {{{'a', INT_MIN, -1}}, {}, "2147483648"},
        {{{'a', INT_MIN, INT_MIN}}, {{'a', INT_MIN, INT_MIN}}, "9223372036854775808"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Number);
        const Letters units;
        const Elements left = records(row.Left, units);
        const Elements right = records(row.Right, units);
        const Tables before;
        EXPECT_THAT([&] { CProductUnit::getInstance(left, right); },
                    ThrowsMessage<std::overflow_error>(HasSubstr(row.Number)));
        EXPECT_EQ(Tables(), before);
    }
}

TEST(ProductUnit, ExponentsAtTheLimitsOfIntAreMerged) {
    const Letters units;
    const CUnitPtr result = CProductUnit::getInstance({CUnitRationalPower(units['a'], INT_MIN, 1)},
                                                      {CUnitRationalPower(units['a'], INT_MAX, 1)});
    EXPECT_EQ(units.notation(result), "a^-1/1");
    EXPECT_EQ(units.notation(
                  CProductUnit::getInstance({CUnitRationalPower(units['b'], -INT_MAX, -INT_MAX)},
                                            {CUnitRationalPower(units['b'], -INT_MAX, -INT_MAX)})),
              "b^2/1");
}

TEST(ProductUnit, QuotientsPowersAndRootsThatOverflowAreRefusedAndNothingIsRegistered) {
    const Letters units;
    const CUnitPtr smallest =
        CProductUnit::getInstance({CUnitRationalPower(units['a'], INT_MIN, 1)}, {});
    const CUnitPtr large = units['b'] ^ 65536;
    const CUnitPtr fine = units['c']->root(65536);
    const Tables before;
    EXPECT_THAT([&] { CProductUnit::getQuotientInstance(units['b'], smallest); },
                ThrowsMessage<std::overflow_error>(HasSubstr("2147483648")));
    EXPECT_THAT([&] { CProductUnit::getPowInstance(large, 65536); },
                ThrowsMessage<std::overflow_error>(HasSubstr("4294967296")));
    EXPECT_THAT([&] { CProductUnit::getPowInstance(smallest, -1); },
                ThrowsMessage<std::overflow_error>(HasSubstr("2147483648")));
    EXPECT_THAT([&] { CProductUnit::getRootInstance(fine, 65536); },
                ThrowsMessage<std::overflow_error>(HasSubstr("4294967296")));
    EXPECT_EQ(Tables(), before);
}

TEST(ProductUnit, AFactorWithoutUnitIsRefused) {
    const CUnitRationalPower metre(SI::Meter(), 1, 1);
    const CUnitRationalPower empty;
    const CUnitRationalPower none(nullptr, 1, 1);
    const Tables before;
    const struct {
        Elements Left, Right;
    } rows[] = {{{empty}, {}},        {{}, {empty}},      {{none}, {}},
                {{}, {none}},         {{metre}, {none}},  {{none}, {metre}},
                {{metre, empty}, {}}, {{metre}, {empty}}, {{none}, {none}}};
    for (const auto& row : rows) {
        EXPECT_THAT([&] { CProductUnit::getInstance(row.Left, row.Right); },
                    ThrowsMessage<std::invalid_argument>(HasSubstr("empty")));
    }
    EXPECT_EQ(Tables(), before);
}

TEST(ProductUnit, AnEmptyUnitIsRefused) {
    const CUnitPtr none;
    const CUnitPtr m = SI::Meter();
    const Tables before;
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"product, left", [&] { CProductUnit::getProductInstance(none, m); }},
        {"product, right", [&] { CProductUnit::getProductInstance(m, none); }},
        {"quotient, left", [&] { CProductUnit::getQuotientInstance(none, m); }},
        {"quotient, right", [&] { CProductUnit::getQuotientInstance(m, none); }},
        {"root", [&] { CProductUnit::getRootInstance(none, 2); }},
        {"power", [&] { CProductUnit::getPowInstance(none, 2); }},
    };
    for (const auto& [name, call] : rows) {
        SCOPED_TRACE(name);
        EXPECT_THAT(call, ThrowsMessage<std::invalid_argument>(HasSubstr("empty")));
    }
    EXPECT_EQ(Tables(), before);
}

// Exponents that only a hand-made factor can have.
TEST(ProductUnit, ExponentsWithRootZeroDoNotCrash) {
    const Letters units;
    const CUnitPtr undefined = CProductUnit::getInstance(
        {}, {CUnitRationalPower(units['a'], 0, 0), CUnitRationalPower(units['b'], 2, 1)});
    const CUnitPtr infinite = CProductUnit::getInstance(
        {}, {CUnitRationalPower(units['a'], 1, 0), CUnitRationalPower(units['c'], 1, 1)});
    const Tables before;
    EXPECT_THAT([&] { undefined->pow(2); }, ThrowsMessage<std::invalid_argument>(HasSubstr("0/0")));
    EXPECT_THAT([&] { undefined->root(2); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("0/0")));
    EXPECT_THAT([&] { infinite->getSystemUnit(); },
                ThrowsMessage<std::invalid_argument>(StrEq("Root's order of zero")));
    EXPECT_EQ(Tables(), before);
}

}  // namespace
}  // namespace mensor
