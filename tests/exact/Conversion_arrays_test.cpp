// Conversion_arrays_test.cpp: CConversion converts arrays and raw counts, and refuses some arrays.
#include "mensor_exact/Conversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "exact/expect_error.h"

namespace mensor::exact {
namespace {

CConversion between(const char* from, const char* to) {
    return CConversion::between(from, to,
                                CCatalogue::builtIn().with(ePack::CUSTOMARY).with(ePack::OFFSETS));
}

TEST(ConversionOfArrays, GivesTheBitsOfSingleValues) {
    std::mt19937_64 random(1);
    std::vector<double> values(1000), results(values.size());
    for (double& value : values) {
        const std::uint64_t bits = random();
        std::memcpy(&value, &bits, sizeof value);
    }
    for (const auto& [from, to] : {std::pair{"km", "m"},
                                   {"m/s", "km/h"},
                                   {"°F", "°C"},
                                   {"°C", "°F"},
                                   {"°C", "K"},
                                   {"°", "rad"},
                                   {"rad", "°"},
                                   {"m", "ft"},
                                   {"s", "d"}}) {
        const CConversion conversion = between(from, to);
        conversion.convertAll(values.data(), results.data(), values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double one = conversion.convert(values[i]);
            ASSERT_EQ(std::memcmp(&one, &results[i], sizeof one), 0)
                << std::hexfloat << values[i] << " " << from << " in " << to;
        }
    }
}

TEST(ConversionOfArrays, ConvertsFloatsAndWholeNumbersToDoublesAndFloats) {
    const CConversion conversion = between("°C", "°F");
    const float floats[] = {-40, 0, 37.5F};
    const std::int16_t shorts[] = {-40, 0, 37};
    const std::int32_t words[] = {-40, 0, 1000000001};
    const std::int64_t longs[] = {-40, 0, 1000000000000000001};
    double results[3] = {};
    float narrow[3] = {};
    conversion.convertAll(floats, results, 3);
    EXPECT_EQ(results[2], 99.5);
    conversion.convertAll(shorts, results, 3);
    EXPECT_EQ(results[0], -40);
    EXPECT_EQ(results[2], 98.6);
    conversion.convertAll(words, results, 3);
    EXPECT_EQ(results[2], 1800000033.8);
    conversion.convertAll(longs, results, 3);
    EXPECT_EQ(results[2], 1800000000000000033.8);
    conversion.convertAll(floats, narrow, 3);
    EXPECT_EQ(narrow[2], 99.5F);
    conversion.convertAll(shorts, narrow, 3);
    EXPECT_EQ(narrow[2], 98.6F);
    conversion.convertAll(words, narrow, 3);
    EXPECT_EQ(narrow[2], 1800000033.8F);
    conversion.convertAll(longs, narrow, 3);
    EXPECT_EQ(narrow[2], 1800000000000000033.8F);
    const double doubles[] = {-40, 0, 37.5};
    conversion.convertAll(doubles, narrow, 3);
    EXPECT_EQ(narrow[2], 99.5F);
}

TEST(ConversionOfArrays, ConvertsInPlace) {
    double values[] = {-40, 0, 37};
    between("°C", "°F").convertAll(values, values, 3);
    EXPECT_EQ(values[0], -40);
    EXPECT_EQ(values[1], 32);
    EXPECT_EQ(values[2], 98.6);
    float floats[] = {-40, 0, 37};
    between("°C", "°F").convertAll(floats, floats, 3);
    EXPECT_EQ(floats[2], 98.6F);
}

TEST(ConversionOfArrays, RefusesNullAndPartialOverlapAndWritesNothing) {
    const CConversion conversion = between("°C", "°F");
    double values[] = {1, 2, 3, 4};
    double* const none = nullptr;
    expectError(
        eError::ARRAYS, [&] { conversion.convertAll(values, values + 1, 3); },
        "the arrays overlap");
    expectError(
        eError::ARRAYS, [&] { conversion.convertAll(values + 1, values, 3); },
        "the arrays overlap");
    expectError(
        eError::ARRAYS, [&] { conversion.convertAll(none, values, 3); }, "an array is null");
    expectError(
        eError::ARRAYS, [&] { conversion.convertAll(values, none, 3); }, "an array is null");
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(values[i], i + 1);
    }
}

TEST(ConversionOfArrays, AcceptsNeighbouringArraysAndEmptyNullOnes) {
    const CConversion conversion = between("°C", "°F");
    double values[] = {1, 2, 3, 4};
    double* const none = nullptr;
    EXPECT_NO_THROW(conversion.convertAll(none, none, 0));
    EXPECT_NO_THROW(conversion.convertAll(values, values + 2, 2));
    EXPECT_NO_THROW(conversion.convertAll(values + 2, values, 2));
}

TEST(ConversionOfArrays, RefusesArraysOfDifferentTypesInOnePlace) {
    union {
        std::int64_t Counts[4];
        double Values[4];
    } both = {{1, 2, 3, 4}};
    EXPECT_THROW(between("km", "m").convertAll(both.Counts, both.Values, 4), CError);
    EXPECT_EQ(both.Counts[3], 4);
}

TEST(ConversionOfArrays, ConvertsCountsWithScaleAndOffsetInOneStep) {
    const std::int16_t counts[] = {-4000, 0, 21500, 27000};
    double results[4] = {};
    const CConversion milli = between("°C", "°F").ofCounts(CFraction(1, 1000));
    milli.convertAll(counts, results, 4);
    EXPECT_EQ(results[0], 24.8);
    EXPECT_EQ(results[1], 32);
    EXPECT_EQ(results[2], 70.7);
    EXPECT_EQ(results[3], 80.6);
    // Counts of 4000 to 20000 (4 to 20 mA) are 0 to 10 bar.
    const CConversion loop = between("bar", "kPa").ofCounts(CFraction(1, 1600), CFraction(-5, 2));
    EXPECT_EQ(loop.convert(4000), 0);
    EXPECT_EQ(loop.convert(20000), 1000);
    loop.convertAll(counts, results, 4);
    EXPECT_EQ(results[2], 1093.75);
    EXPECT_EQ(loop.factor(), "0.0625");
    EXPECT_EQ(loop.offset(), "-250");
}

TEST(ConversionOfArrays, RefusesAScaleOfZero) {
    expectError(eError::NOT_POSITIVE, [] { between("m", "km").ofCounts(0); });
}

}  // namespace
}  // namespace mensor::exact
