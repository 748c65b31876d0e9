// FlatPlan_test.cpp: a chain gives the same bits as its nested steps, computed one after the other,
// for one value and for arrays.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <numeric>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/Converter.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "support/ClientConverters.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

// Converts x as a chain is defined: by its first step, then by its second, which may be chains too.
double nested(const CConverterPtr& converter, double x) {
    if (const auto compound = std::dynamic_pointer_cast<CCompound>(converter)) {
        return nested(compound->second(), nested(compound->first(), x));
    }
    return converter->convert(x);
}

std::vector<double> specialValues() {
    using Limits = std::numeric_limits<double>;
    std::vector<double> values{0.0,
                               1.0,
                               2.5,
                               0.1,
                               1e-9,
                               273.15,
                               1e300,
                               1e-300,
                               Limits::max(),
                               Limits::min(),
                               Limits::denorm_min(),
                               4.9e-320,
                               Limits::epsilon(),
                               Limits::infinity(),
                               Limits::quiet_NaN(),
                               1.0 / 3.0,
                               123456789.125};
    const std::size_t positive = values.size();
    for (std::size_t i = 0; i < positive; ++i) {
        values.push_back(-values[i]);
    }
    std::uint64_t payload = 0x7FF8000000000123U;  // a quiet NaN that can be recognised
    double named = 0;
    std::memcpy(&named, &payload, sizeof named);
    values.push_back(named);
    return values;
}

// All units of the catalogue that have a name.
std::set<CUnitPtr> catalogueUnits() {
    std::set<CUnitPtr> units;
    for (const auto& entry : CUnit::symbols()) {
        units.insert(entry.second);
    }
    for (const auto& entry : CUnitFormat::labelUnitMap()) {
        units.insert(entry.second);
    }
    return units;
}

// Returns the empty text if `converter` gives the bits of its nested steps for each value, one by
// one, as an array and in place. Otherwise describes the difference.
std::string difference(const CConverterPtr& converter, const std::vector<double>& values) {
    std::vector<double> all(values.size(), 7.0);
    std::vector<double> inPlace = values;
    converter->convertAll(values.data(), all.data(), values.size());
    converter->convertAll(inPlace.data(), inPlace.data(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double expected = nested(converter, values[i]);
        const double one = converter->convert(values[i]);
        if (bitsOf(one) != bitsOf(expected) || bitsOf(all[i]) != bitsOf(expected) ||
            bitsOf(inPlace[i]) != bitsOf(expected)) {
            return exactly(values[i]) + ": nested " + exactly(expected) + ", one " + exactly(one) +
                   ", array " + exactly(all[i]) + ", in place " + exactly(inPlace[i]);
        }
    }
    return std::string();
}

TEST(FlatPlan, GivesTheBitsOfTheNestedStepsForEveryPairOfCompatibleCatalogueUnits) {
    const std::vector<double> values = specialValues();
    const std::set<CUnitPtr> units = catalogueUnits();
    int pairs = 0;
    for (const CUnitPtr& from : units) {
        for (const CUnitPtr& to : units) {
            if (!from->isCompatible(to)) {
                continue;
            }
            ++pairs;
            ASSERT_EQ(difference(from->getConverterTo(to), values), "")
                << text(CUnitFormat::labelFor(from)) << " to " << text(CUnitFormat::labelFor(to));
        }
    }
    EXPECT_GT(pairs, 10000);
}

CConverterPtr add(double offset) { return std::make_shared<CAddConverter>(offset); }
CConverterPtr multiply(double factor) { return std::make_shared<CMultiplyConverter>(factor); }
CConverterPtr pair(CConverterPtr first, CConverterPtr second) {
    return std::make_shared<CCompound>(std::move(first), std::move(second));
}

TEST(FlatPlan, RunsTheStepsInOrderForAllKindsAndNestings) {
    const CConverterPtr identity = CConverter::identity();
    const CConverterPtr square = std::make_shared<CSquare>();
    const std::vector<CConverterPtr> leaves{identity, add(0.1), multiply(3.7), square};
    std::vector<CConverterPtr> chains = leaves;
    for (const CConverterPtr& first : leaves) {
        for (const CConverterPtr& second : leaves) {
            const CConverterPtr two = pair(first, second);
            chains.push_back(two);
            for (const CConverterPtr& third : leaves) {
                chains.push_back(pair(two, third));
                chains.push_back(pair(third, two));
                chains.push_back(pair(two, pair(third, two)));
            }
        }
    }
    for (const CConverterPtr& chain : chains) {
        EXPECT_EQ(difference(chain, specialValues()), "");
    }
    EXPECT_THAT(pair(add(1), multiply(2))->convert(3), HasBitsOf(8.0));
    EXPECT_THAT(pair(multiply(2), add(1))->convert(3), HasBitsOf(7.0));
}

TEST(FlatPlan, CombinesNoConstants) {
    // 0.1 * 3 * 7 differs from 0.1 * 21 in the last bit.
    const CConverterPtr chain = pair(multiply(3), multiply(7));
    EXPECT_THAT(chain->convert(0.1), HasBitsOf(0.1 * 3 * 7));
    ASSERT_NE(bitsOf(0.1 * 3 * 7), bitsOf(0.1 * 21));
}

TEST(FlatPlan, LongChainsGiveTheBitsOfTheirSteps) {
    for (const int length : {31, 32, 33, 34, 63, 64, 65, 200}) {
        CConverterPtr toTheLeft = multiply(1.1);
        CConverterPtr toTheRight = multiply(1.1);
        double expected = 0.3 * 1.1;
        for (int i = 1; i < length; ++i) {
            const CConverterPtr step = i % 2 == 0 ? multiply(1.01) : add(0.7);
            toTheLeft = pair(toTheLeft, step);
            expected = step->convert(expected);
        }
        EXPECT_THAT(toTheLeft->convert(0.3), HasBitsOf(expected)) << length;
        EXPECT_EQ(difference(toTheLeft, specialValues()), "") << length;
        EXPECT_EQ(difference(pair(toTheLeft, toTheLeft), specialValues()), "") << length;
        for (int i = 1; i < length; ++i) {
            toTheRight = pair(i % 2 == 0 ? multiply(1.01) : add(0.7), toTheRight);
        }
        EXPECT_EQ(difference(toTheRight, specialValues()), "") << length;
    }
}

TEST(FlatPlan, OwnsTheStepsOfAChainInsideIt) {
    CConverterPtr chain;
    {
        const CConverterPtr inner = pair(multiply(3), add(4));
        chain = pair(inner, CConverter::identity());
    }
    EXPECT_THAT(chain->convert(2), HasBitsOf(10.0));
}

// The nesting: (leaf) for a single converter, [first second] for a compound.
std::string shapeOf(const CConverterPtr& converter) {
    if (const auto compound = std::dynamic_pointer_cast<CCompound>(converter)) {
        return "[" + shapeOf(compound->first()) + " " + shapeOf(compound->second()) + "]";
    }
    if (converter == CConverter::identity()) {
        return "1";
    }
    if (const auto factor = std::dynamic_pointer_cast<CMultiplyConverter>(converter)) {
        return "*" + exactly(factor->factor());
    }
    if (const auto offset = std::dynamic_pointer_cast<CAddConverter>(converter)) {
        return "+" + exactly(offset->getOffset());
    }
    return "?";
}

TEST(FlatPlan, TheConverterToAUnitHasTheNestingOfTheInverseOfTheConverterFromIt) {
    const CUnitPtr kelvin = SI::Kelvin();
    const std::vector<std::pair<CUnitPtr, CUnitPtr>> pairs{
        {NonSI::Hour(), NonSI::Minute()},
        {SI::Celsius(), kelvin * 1.8},
        {kelvin * 1.8, SI::Celsius()},
        {SI::Milli(SI::Joule()), SI::Kilo(SI::Newton()) * SI::Meter()},
        {NonSI::YearCalendar(), NonSI::Week()}};
    for (const auto& [from, to] : pairs) {
        const auto compound = std::dynamic_pointer_cast<CCompound>(from->getConverterTo(to));
        ASSERT_TRUE(compound);
        EXPECT_EQ(shapeOf(compound->first()), shapeOf(from->getCtxToDimension()));
        EXPECT_EQ(shapeOf(compound->second()), shapeOf(to->getCtxToDimension()->inverse()));
        EXPECT_EQ(compound->second(), compound->second()) << "each call returns the same object";
        EXPECT_NE(from->getConverterTo(to), compound) << "each call returns a new object";
        EXPECT_TRUE(from->getConverterTo(to)->equals(compound));
        EXPECT_EQ(from->getConverterTo(to)->hashCode(), compound->hashCode());
        EXPECT_THAT(from->getConverterTo(to)->derivative(2), HasBitsOf(compound->derivative(2)));
        EXPECT_EQ(shapeOf(from->getConverterTo(to)->inverse()), shapeOf(compound->inverse()));
    }
}

TEST(FlatPlan, ConcurrentCallsForTheSecondStepReturnOneObject) {
    for (int round = 0; round < 50; ++round) {
        const auto compound =
            std::dynamic_pointer_cast<CCompound>(NonSI::Hour()->getConverterTo(NonSI::Minute()));
        std::vector<CConverterPtr> seconds(4);
        std::vector<std::thread> threads;
        for (CConverterPtr& second : seconds) {
            threads.emplace_back([&] {
                EXPECT_THAT(compound->convert(1.5), HasBitsOf(1.5 * 60 * 60 * (1.0 / 60)));
                second = compound->second();
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (const CConverterPtr& second : seconds) {
            EXPECT_EQ(second, compound->second());
        }
    }
}

TEST(FlatPlan, AConverterThatContainsADelayedInverseIsInverted) {
    // Both converters delay their inversion. Inverting one of them also inverts the other.
    const auto own = freshClientUnit();
    own->CtxDimension = [] { return SI::Second(); };
    own->CtxToDimension = [] { return NonSI::Hour()->getConverterTo(NonSI::Minute()); };
    const auto compound = std::dynamic_pointer_cast<CCompound>(NonSI::Week()->getConverterTo(own));
    ASSERT_TRUE(compound);
    EXPECT_EQ(shapeOf(compound->second()),
              shapeOf(NonSI::Hour()->getConverterTo(NonSI::Minute())->inverse()));
}

TEST(FlatPlan, AClientsConverterIsInvertedAtOnce) {
    // Its inverse() may throw, and that must happen in getConverterTo(), not later.
    class COneWay : public CScaling {
    public:
        COneWay() : CScaling(2) {}
        CConverterPtr inverse() override { throw std::logic_error("no inverse"); }
    };
    const CUnitPtr oneWay = CTransformedUnit::getInstance(SI::Meter(), std::make_shared<COneWay>());
    EXPECT_THROW((SI::Meter() * 3)->getConverterTo(oneWay), std::logic_error);
}

TEST(FlatPlan, CallsTheFunctionsOfASubclassOfCompound) {
    class CDoubled : public CCompound {
    public:
        using CCompound::CCompound;
        double convert(double x) const override { return 2 * CCompound::convert(x); }
    };
    const CConverterPtr doubled = std::make_shared<CDoubled>(multiply(3), add(1));
    const CConverterPtr chain = pair(doubled, multiply(10));
    EXPECT_THAT(chain->convert(5), HasBitsOf(320.0));
    double values[] = {5};
    doubled->convertAll(values, values, 1);
    EXPECT_THAT(values[0], HasBitsOf(32.0));
}

TEST(ConvertAll, CallsConvertOfAClientsSubclassForEachValue) {
    class CNegated : public CMultiplyConverter {
    public:
        using CMultiplyConverter::CMultiplyConverter;
        double convert(double x) const override { return -CMultiplyConverter::convert(x); }
    };
    class CRaised : public CAddConverter {
    public:
        using CAddConverter::CAddConverter;
        double convert(double x) const override { return 1 + CAddConverter::convert(x); }
    };
    class CTurned : public CIdentity {
    public:
        double convert(double x) const override { return -x; }
    };
    const std::vector<CConverterPtr> converters{
        std::make_shared<CNegated>(2), std::make_shared<CRaised>(2), std::make_shared<CTurned>()};
    for (const CConverterPtr& converter : converters) {
        EXPECT_EQ(difference(converter, specialValues()), "");
        EXPECT_EQ(difference(pair(converter, multiply(3)), specialValues()), "");
    }
}

TEST(ConvertAll, GivesTheSameBitsAtEveryLength) {
    const std::vector<CConverterPtr> converters{
        CConverter::identity(),
        add(273.15),
        multiply(1e-3),
        pair(add(-32), multiply(5.0 / 9)),
        std::make_shared<CSquare>(),
        pair(std::make_shared<CSquare>(), add(1)),
        SI::Celsius()->getConverterTo(SI::Kelvin()),
        NonSI::YearCalendar()->getConverterTo(SI::Second()),
        multiply(std::numeric_limits<double>::quiet_NaN()),
        pair(add(std::numeric_limits<double>::quiet_NaN()), multiply(2)),
        multiply(std::numeric_limits<double>::infinity()),
        multiply(0.0),
        multiply(-0.0)};
    std::vector<double> values = specialValues();
    for (int i = 0; values.size() < 2600; ++i) {
        values.push_back(std::ldexp(1.0 + i / 7.0, i % 40 - 20));
    }
    for (const CConverterPtr& converter : converters) {
        for (const int length : {0, 1, 2, 3, 4, 5, 7, 8, 9, 31, 1023, 1024, 1025, 2500}) {
            ASSERT_EQ(difference(converter, {values.begin(), values.begin() + length}), "");
        }
    }
}

// Returns `target` with the results of values[from], values[from + 1] ... from target[to] on.
std::vector<double> withResults(const CConverterPtr& converter, const std::vector<double>& values,
                                std::size_t from, std::vector<double> target, std::size_t to,
                                std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) {
        target[to + i] = converter->convert(values[from + i]);
    }
    return target;
}

// Each array begins at each of the eight offsets of a double in a cache line.
TEST(ConvertAll, WritesEachResultOnceForEachAlignmentOfTheArrays) {
    constexpr std::size_t Places = 8, Longest = 40, Size = Places + Longest + 1;
    alignas(64) double values[Size];
    alignas(64) double results[Size];
    std::vector<double> numbers(Size);
    std::iota(numbers.begin(), numbers.end(), 1.0);
    const std::vector<double> untouched(Size, -1.0);
    for (const CConverterPtr& converter : {add(0.5), multiply(3)}) {
        for (std::size_t from = 0; from < Places; ++from) {
            for (std::size_t to = 0; to < Places; ++to) {
                for (std::size_t length = 0; length <= Longest; ++length) {
                    std::copy(numbers.begin(), numbers.end(), values);
                    std::copy(untouched.begin(), untouched.end(), results);
                    converter->convertAll(values + from, results + to, length);
                    ASSERT_EQ(std::vector<double>(results, results + Size),
                              withResults(converter, numbers, from, untouched, to, length));
                    converter->convertAll(values + from, values + from, length);
                    ASSERT_EQ(std::vector<double>(values, values + Size),
                              withResults(converter, numbers, from, numbers, from, length));
                }
            }
        }
    }
}

TEST(ConvertAll, GivesTheSameBitsForArraysLargerThanAnyCache) {
    constexpr std::size_t count = 4'000'101, part = 1000;
    std::vector<double> values = specialValues();
    for (std::size_t i = 0; values.size() < count; ++i) {
        values.push_back(values[i] * 1.5);
    }
    std::vector<double> expected(count), results(count + 3);
    for (const CConverterPtr& converter :
         {add(273.15), multiply(1e-3), pair(add(-32), multiply(5.0 / 9))}) {
        for (std::size_t done = 0; done < count; done += part) {
            converter->convertAll(values.data() + done, expected.data() + done,
                                  std::min(part, count - done));
        }
        for (const std::size_t from :
             {std::size_t(1), std::size_t(2)}) {  // one of the two addresses is divisible by 16
            std::fill(results.begin(), results.end(), -1.0);
            converter->convertAll(values.data(), results.data() + from, count);
            EXPECT_EQ(std::memcmp(results.data() + from, expected.data(), count * sizeof(double)),
                      0);
            EXPECT_EQ(results[from - 1], -1.0);
            EXPECT_EQ(results[from + count], -1.0);
        }
    }
}

TEST(ConvertAll, WritesNothingOutsideTheResults) {
    std::vector<double> values(100, 1.0);
    std::vector<double> results(102, -1.0);
    SI::Celsius()->getConverterTo(SI::Kelvin())->convertAll(values.data(), results.data() + 1, 100);
    EXPECT_EQ(results.front(), -1.0);
    EXPECT_EQ(results[1], 274.15);
    EXPECT_EQ(results[100], 274.15);
    EXPECT_EQ(results.back(), -1.0);
    EXPECT_EQ(values[99], 1.0);
}

TEST(ConvertAll, RefusesArraysThatOverlapInPartAndDoesNotChangeThem) {
    const std::vector<double> original{1, 2, 3, 4, 5, 6};
    std::vector<double> values = original;
    const CConverterPtr converter = multiply(2);
    for (const int shift : {1, 2}) {
        double* const low = values.data();
        double* const high = values.data() + shift;
        for (const bool upward : {true, false}) {
            const auto overlap = [&] {
                converter->convertAll(upward ? low : high, upward ? high : low, 3);
            };
            EXPECT_THAT(overlap, ::testing::ThrowsMessage<std::invalid_argument>(
                                     "CConverter::convertAll: the arrays overlap in part"))
                << shift;
            EXPECT_EQ(values, original);
        }
    }
    converter->convertAll(values.data(), values.data() + 3, 3);  // adjacent arrays do not overlap
    EXPECT_THAT(values, ::testing::ElementsAre(1, 2, 3, 2, 4, 6));
}

TEST(ConvertAll, RefusesANullArrayUnlessTheCountIsZero) {
    double value = 1;
    const CConverterPtr converter = multiply(2);
    converter->convertAll(nullptr, nullptr, 0);
    EXPECT_THAT([&] { converter->convertAll(nullptr, &value, 1); },
                ::testing::ThrowsMessage<std::invalid_argument>(
                    "CConverter::convertAll: an array is null"));
    EXPECT_THROW(converter->convertAll(&value, nullptr, 1), std::invalid_argument);
    EXPECT_EQ(value, 1);
}

}  // namespace
}  // namespace mensor
