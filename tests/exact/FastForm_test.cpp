// FastForm_test.cpp: the fast ways give the bits of the slow way on every kind of processor, and use
// the slow way only if they must. GMP computes the expected results.
//
// The environment variable MENSOR_EXACT_CASES sets the approximate number of values. Without it, the
// test tries a sample, or very many values if it is to be thorough (support/thorough.h).
#include "mensor_exact/FastForm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "exact/WholeLine.h"
#include "mensor_exact/TwoWords.h"
#include "support/thorough.h"

namespace mensor::exact {
namespace {

// `scripts/test --all` sets MENSOR_TESTS_THOROUGH. Debug builds and ARM, which are slow, try fewer
// values.
long cases() {
#if defined(__x86_64__) && defined(NDEBUG)
    constexpr long Thorough = 100'000'000;
#else
    constexpr long Thorough = 1'000'000;
#endif
    const char* const wanted = std::getenv("MENSOR_EXACT_CASES");
    return wanted != nullptr    ? std::atol(wanted)
           : test::isThorough() ? Thorough
                                : test::casesOf(400'000L, 100'000L);
}

// Everyday factors, factors with many bits, and very large and very small factors.
const CShortLine Factors[] = {
    {1, 0, 1, 0, false},
    {9, 0, 5, 0, false},
    {9, 0, 5, 1, false},
    {5, 0, 9, 0, false},
    {1000, 0, 1, 0, false},
    {1, 0, 1000, 0, false},
    {127, 0, 5000, 0, false},
    {5000, 0, 127, 0, false},
    {45359237, 0, 100000000, 0, false},
    {100000000, 0, 45359237, 0, false},
    {133322387415, 0, 1000000000, 0, false},
    {1, 0, 3, 0, false},
    {3, 0, 1, 0, false},
    {78125, 0, 10467, 0, false},
    {7, 0, 3, -901, false},
    {7, 0, 3, -700, false},
    {7, 0, 3, 700, false},
    {7, 0, 3, 899, false},
    {7, 0, 3, 1000, false},
    {7, 0, 3, -1000, false},
    {1, 0, 1, -1074, false},
    {1, 0, 1, 1000, false},
    {(std::uint64_t{1} << 53) + 1, 0, 1, 0, false},
    {1, 0, (std::uint64_t{1} << 53) + 1, 0, false},
    {12345678901234567, 0, 98765432109876543, 0, false},
    {~std::uint64_t{0}, 0, ~std::uint64_t{0} - 2, 0, false},
};

const CShortLine Lines[] = {
    {9, 160, 5, 0, false},
    {5, 160, 9, 0, true},
    {20, 5463, 20, 0, false},
    {20, 5463, 20, 0, true},
    {9, 2297, 5, -1, false},
    {5, 2298, 9, 1, true},
    {1, 32, 1, 0, true},
    {180, 45967, 25, 3, true},
    {9, 160, 5, 150, false},
    {9, 160, 5, 300, false},
    {1, 1, 1, 0, false},
    {1, 1, 3, 0, true},
    {1, 1 << 30, 7, 0, true},
    {1 << 30, 1, 7, 0, false},
    {1234567890123, 9876543210987, 7777777777, 0, true},
};

std::int64_t orderedBits(double x) { return static_cast<std::int64_t>(bitsOfDouble(x)); }

// Returns whether a form knows its conversion as a CShortLine, too.
enum class eLine { KNOWN, UNKNOWN };

CFastForm formOf(const CShortLine& line, eLine isKnown, const CSlowWay& slowWay,
                 const CLoops& loops) {
    const CLeading factor = CLeading::ofQuotient(line.A, line.D, line.Twos);
    const CShortLine* const known = isKnown == eLine::KNOWN ? &line : nullptr;
    return line.B == 0 ? CFastForm(factor, known, &slowWay, loops)
                       : CFastForm(factor, CLeading::ofQuotient(line.B, line.A, 0), !line.IsMinusB,
                                   known, &slowWay, loops);
}

std::string describe(const CShortLine& line, const CFastForm& form) {
    return std::string(form.Loops->Name) + ", way " + std::to_string(form.Way) + ": (" +
           std::to_string(line.A) + "x" + (line.IsMinusB ? "-" : "+") + std::to_string(line.B) +
           ")*2^" + std::to_string(line.Twos) + "/" + std::to_string(line.D);
}

template <class Work>
void forAllLoops(const Work& work) {
    for (const CLoops* const* loops = availableLoops(); *loops != nullptr; ++loops) {
        work(**loops);
    }
}

// Calls `work` with each conversion, its expected results, and each of its forms.
template <class Work>
void forAllForms(const Work& work) {
    std::vector<CShortLine> lines(std::begin(Factors), std::end(Factors));
    lines.insert(lines.end(), std::begin(Lines), std::end(Lines));
    forAllLoops([&](const CLoops& loops) {
        for (const eLine isKnown : {eLine::KNOWN, eLine::UNKNOWN}) {
            for (const CShortLine& line : lines) {
                const WholeLine judge(line);
                work(line, judge, formOf(line, isKnown, judge, loops));
            }
        }
    });
}

// The expected result: that of GMP for a finite number, else that of IEEE 754.
double expected(const WholeLine& judge, const CShortLine& line, double x) {
    if (std::isnan(x)) {
        return doubleOfBits(bitsOfDouble(x) | std::uint64_t{1} << 51);
    }
    if (std::isinf(x) || (x == 0 && line.B == 0)) {
        return x;
    }
    return doubleOfBits(judge.convert(CNumber::ofDouble(x), CFormat::ofDouble()).Bits);
}

float expectedFloat(const WholeLine& judge, const CShortLine& line, const CNumber& x) {
    if (x.Mantissa == 0 && line.B == 0) {
        return x.IsNegative ? -0.0F : 0.0F;
    }
    return floatOfBits(judge.convert(x, CFormat::ofFloat()).Bits);
}

const double Special[] = {0.0,
                          -0.0,
                          1.0,
                          -1.0,
                          std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity(),
                          std::numeric_limits<double>::denorm_min(),
                          -std::numeric_limits<double>::denorm_min(),
                          std::numeric_limits<double>::min(),
                          std::numeric_limits<double>::max(),
                          -std::numeric_limits<double>::max()};

// Makes random doubles of several kinds.
class Doubles {
public:
    explicit Doubles(const CShortLine& line, const CFastForm& form) : m_Line(line), m_Form(form) {}

    double next(std::mt19937_64& random) const {
        const double sign = random() % 2 == 0 ? 1 : -1;
        const auto mantissa = static_cast<double>(random() >> 11);
        switch (random() % 9) {
            case 0: return doubleOfBits(random());  // any double, also NaN with any payload
            case 1: return sign * static_cast<double>(random() % 20001);
            case 2: return sign * static_cast<double>(random() % 20001) / 10;
            case 3: {  // a multiple of the divisor, which may be a tie
                const std::uint64_t multiple = (random() >> (11 + random() % 40)) / m_Line.D;
                return sign *
                       std::ldexp(static_cast<double>(multiple * m_Line.D), anyPower(random, 100));
            }
            case 4: {  // a value whose result is close to zero
                const double zero = (m_Line.IsMinusB ? 1 : -1) * static_cast<double>(m_Line.B) /
                                    static_cast<double>(m_Line.A);
                const std::uint64_t shift = random() % 64;
                return doubleOfBits(bitsOfDouble(zero) + (random() >> shift) - (random() >> shift));
            }
            case 5: {  // a value whose result is nearly or fully subnormal or infinite
                const int target = random() % 2 == 0 ? -1076 + static_cast<int>(random() % 120)
                                                     : 1023 - static_cast<int>(random() % 60);
                int size = 0;
                std::frexp(static_cast<double>(m_Line.A) / static_cast<double>(m_Line.D), &size);
                return sign * std::ldexp(mantissa, target - m_Line.Twos - size - 52);
            }
            case 6: return Special[random() % std::size(Special)];
            case 7: {  // a value next to a limit of the fast way
                const std::int64_t limits[] = {m_Form.Least, m_Form.Most};
                const double limit = doubleOfBits(static_cast<std::uint64_t>(limits[random() % 2]) +
                                                  random() % 5 - 2);
                return sign * (random() % 2 == 0 ? limit : limit + mantissa * 0x1p-53 * limit);
            }
            default: return sign * std::ldexp(mantissa, anyPower(random, 140) - 53);
        }
    }

private:
    static int anyPower(std::mt19937_64& random, int range) {
        return static_cast<int>(random() % static_cast<unsigned>(2 * range)) - range;
    }

    CShortLine m_Line;
    const CFastForm& m_Form;
};

TEST(FastForm, LeadingBitsOfAQuotientAreThoseOfTheExactQuotient) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 20'000; ++i) {
        std::uint64_t numerator = (random() >> random() % 64) | 1;
        std::uint64_t denominator = (random() >> random() % 64) | 1;
        if (i % 4 == 0) {  // a whole quotient
            numerator >>= 32;
            denominator = (denominator >> 33) | 1;
            numerator = (numerator | 1) * denominator;
        }
        const CLeading leading = CLeading::ofQuotient(numerator, denominator, 5);
        const mpz_class words = (wholeOf(leading.Word[0]) << 128) +
                                (wholeOf(leading.Word[1]) << 64) + wholeOf(leading.Word[2]);
        ASSERT_NE(leading.Word[0] >> 63, 0U);
        ASSERT_LT(leading.Twos, 5);
        // 2^(5 - Twos)·numerator = words·denominator + rest.
        const mpz_class rest = (wholeOf(numerator) << static_cast<unsigned>(5 - leading.Twos)) -
                               words * wholeOf(denominator);
        ASSERT_GE(rest, 0) << numerator << "/" << denominator;
        ASSERT_LT(rest, wholeOf(denominator)) << numerator << "/" << denominator;
        ASSERT_EQ(leading.IsWhole, rest == 0) << numerator << "/" << denominator;
    }
}

// Expects the right results for values whose exact results are ties. Each of them must be even.
void expectEven(const CShortLine& line, const std::vector<double>& values) {
    const WholeLine judge(line);
    std::vector<double> right;
    for (const double value : values) {
        right.push_back(expected(judge, line, value));
        ASSERT_EQ(bitsOfDouble(right.back()) & 1, 0U);
    }
    forAllLoops([&](const CLoops& loops) {
        for (const eLine isKnown : {eLine::KNOWN, eLine::UNKNOWN}) {
            const CFastForm form = formOf(line, isKnown, judge, loops);
            std::vector<double> results(values.size());
            form.convertAll(values.data(), results.data(), values.size());
            for (std::size_t i = 0; i < values.size(); ++i) {
                ASSERT_EQ(results[i], right[i]) << describe(line, form) << " of " << values[i];
                ASSERT_EQ(form.convert(values[i]), right[i])
                    << describe(line, form) << " of " << values[i];
            }
        }
    });
}

// Random values rarely have a tie as their exact result.
TEST(FastForm, RoundsTiesToTheEvenNeighbour) {
    std::mt19937_64 random(12);
    for (const CShortLine& line : {CShortLine{5000, 0, 127, 0, false},                // m to in
                                   CShortLine{78'125, 0, 10'467, 0, false},           // kJ to cal
                                   CShortLine{45'359'237, 0, 100'000'000, 0, false},  // lb to kg
                                   CShortLine{18, 0, 5, 0, false},                    // m/s to km/h
                                   CShortLine{1250, 0, 381, 0, false}}) {             // m to ft
        const std::uint64_t numerator = line.A >> __builtin_ctzll(line.A);
        const std::uint64_t denominator = line.D >> __builtin_ctzll(line.D);
        // The result is numerator·n, odd and with 54 bits, times a power of two.
        const std::uint64_t first = (std::uint64_t{1} << 53) / numerator + 1;
        std::vector<double> values;
        while (values.size() < 500) {
            const std::uint64_t n = (first + random() % (first - 1)) | 1;
            if (n * denominator < std::uint64_t{1} << 53) {
                values.push_back((random() % 2 == 0 ? 1 : -1) *
                                 std::ldexp(static_cast<double>(n * denominator),
                                            static_cast<int>(random() % 200) - 150));
            }
        }
        expectEven(line, values);
    }
}

TEST(FastForm, RoundsTiesWithAnOffsetToTheEvenNeighbour) {
    std::mt19937_64 random(13);
    for (const CShortLine& line : {CShortLine{9, 160, 5, 0, false},  // °C to °F
                                   CShortLine{5, 160, 9, 0, true},   // °F to °C
                                   CShortLine{3, 1, 1, 0, false}, CShortLine{7, 12, 3, 0, true}}) {
        std::vector<double> values;
        for (int i = 0; i < 200'000 && values.size() < 100; ++i) {
            // The result is n·2^-places, with an odd n of 54 bits. The value is x·2^-places.
            const std::uint64_t n = (std::uint64_t{1} << 53) + (random() >> 11 | 1);
            const auto places = static_cast<unsigned>(random() % 16 + 44);
            const mpz_class offset = wholeOf(line.B) << places;
            const mpz_class above = wholeOf(n) * wholeOf(line.D) * (random() % 2 == 0 ? 1 : -1) +
                                    (line.IsMinusB ? offset : -offset);
            const mpz_class x = above / wholeOf(line.A);
            if (x * wholeOf(line.A) == above && mpz_sizeinbase(x.get_mpz_t(), 2) <= 53) {
                values.push_back(std::ldexp(x.get_d(), -static_cast<int>(places)));
            }
        }
        EXPECT_EQ(values.size(), 100U) << line.A << "/" << line.D;
        expectEven(line, values);
    }
}

TEST(FastForm, GivesTheNearestDoubleOneByOneAndInArrays) {
    std::mt19937_64 random(1);
    constexpr std::size_t Count = 300;  // more than a block
    const long rounds =
        cases() / 3 / 2 / static_cast<long>(Count * (std::size(Factors) + std::size(Lines))) + 1;
    forAllForms([&](const CShortLine& line, const WholeLine& judge, const CFastForm& form) {
        const Doubles doubles(line, form);
        for (long round = 0; round < rounds; ++round) {
            std::vector<double> values(Count), results(Count);
            for (double& value : values) {
                value = doubles.next(random);
            }
            form.convertAll(values.data(), results.data(), Count);
            for (std::size_t i = 0; i < Count; ++i) {
                const std::uint64_t right = bitsOfDouble(expected(judge, line, values[i]));
                ASSERT_EQ(bitsOfDouble(form.convert(values[i])), right)
                    << describe(line, form) << " of " << std::hexfloat << values[i];
                ASSERT_EQ(bitsOfDouble(results[i]), right)
                    << describe(line, form) << " of " << std::hexfloat << values[i]
                    << " in an array";
            }
        }
    });
}

// A wrong result in one element of a vector must be noticed.
TEST(FastForm, GivesTheNearestDoubleIfOneOfManyNeedsTheSlowWay) {
    forAllForms([&](const CShortLine& line, const WholeLine& judge, const CFastForm& form) {
        std::mt19937_64 random(2);
        const Doubles doubles(line, form);
        for (std::size_t place = 0; place < 20; ++place) {
            std::vector<double> values(20, 98.6), results(20);
            values[place] = doubles.next(random);
            form.convertAll(values.data(), results.data(), values.size());
            for (std::size_t i = 0; i < values.size(); ++i) {
                ASSERT_EQ(bitsOfDouble(results[i]), bitsOfDouble(expected(judge, line, values[i])))
                    << describe(line, form) << " of " << std::hexfloat << values[i];
            }
        }
    });
}

TEST(FastForm, ConvertsArraysInPlace) {
    forAllForms([&](const CShortLine& line, const WholeLine&, const CFastForm& form) {
        std::mt19937_64 random(3);
        const Doubles doubles(line, form);
        std::vector<double> values(600);
        for (double& value : values) {
            value = doubles.next(random);
        }
        std::vector<double> apart(values.size());
        form.convertAll(values.data(), apart.data(), values.size());
        form.convertAll(values.data(), values.data(), values.size());
        EXPECT_EQ(std::memcmp(values.data(), apart.data(), sizeof(double) * values.size()), 0)
            << describe(line, form);
    });
}

TEST(FastForm, RoundsToFloatsOnce) {
    std::mt19937_64 random(4);
    forAllForms([&](const CShortLine& line, const WholeLine& judge, const CFastForm& form) {
        const Doubles doubles(line, form);
        std::vector<double> values;
        while (values.size() < 300) {
            double x = doubles.next(random);
            if (random() % 2 == 0) {
                // The result is close to the middle between two floats. Some of these are subnormal.
                const double slope = std::ldexp(
                    static_cast<double>(line.A) / static_cast<double>(line.D), line.Twos);
                const double zero = (line.IsMinusB ? 1 : -1) * static_cast<double>(line.B) /
                                    static_cast<double>(line.A);
                const double y = std::ldexp(static_cast<double>(random() % (1 << 25) | 1),
                                            static_cast<int>(random() % 200) - 160);
                x = y / slope + zero;
            }
            if (std::isfinite(x)) {
                values.push_back(x);
            }
        }
        std::vector<float> results(values.size());
        form.convertAll(values.data(), results.data(), values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const float right = expectedFloat(judge, line, CNumber::ofDouble(values[i]));
            ASSERT_EQ(WholeLine::bitsOfFloat(results[i]), WholeLine::bitsOfFloat(right))
                << describe(line, form) << " of " << std::hexfloat << values[i];
        }
    });
}

// Expects the right doubles and floats for all of `values`.
template <class Number>
void expectRight(const CShortLine& line, const WholeLine& judge, const CFastForm& form,
                 const std::vector<Number>& values) {
    std::vector<double> results(values.size());
    std::vector<float> floats(values.size());
    form.convertAll(values.data(), results.data(), values.size());
    form.convertAll(values.data(), floats.data(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        CNumber number;
        if constexpr (std::is_same_v<Number, float>) {
            number = CNumber::ofDouble(static_cast<double>(values[i]));
        } else {
            number = CNumber::ofWhole(values[i]);
        }
        double right = number.IsNegative ? -0.0 : 0.0;
        if (number.Mantissa != 0 || line.B != 0) {
            right = doubleOfBits(judge.convert(number, CFormat::ofDouble()).Bits);
        }
        ASSERT_EQ(bitsOfDouble(results[i]), bitsOfDouble(right))
            << describe(line, form) << " of " << values[i];
        ASSERT_EQ(WholeLine::bitsOfFloat(floats[i]),
                  WholeLine::bitsOfFloat(expectedFloat(judge, line, number)))
            << describe(line, form) << " of " << values[i] << " to float";
    }
}

template <class Number>
std::vector<Number> wholeNumbers() {
    std::mt19937_64 random(5);
    std::vector<Number> values = {0, 1, -1, std::numeric_limits<Number>::max(),
                                  std::numeric_limits<Number>::min()};
    while (values.size() < 300) {
        values.push_back(
            static_cast<Number>(static_cast<std::int64_t>(random()) >>
                                (64 - sizeof(Number) * 8 + random() % (sizeof(Number) * 8))));
    }
    return values;
}

TEST(FastForm, ConvertsWholeNumbersOf16Bits) {
    forAllForms([](const CShortLine& line, const WholeLine& judge, const CFastForm& form) {
        expectRight(line, judge, form, wholeNumbers<std::int16_t>());
    });
}

TEST(FastForm, ConvertsWholeNumbersOf32Bits) {
    forAllForms([](const CShortLine& line, const WholeLine& judge, const CFastForm& form) {
        expectRight(line, judge, form, wholeNumbers<std::int32_t>());
    });
}

TEST(FastForm, ConvertsWholeNumbersOf64BitsThatAreNoDoubles) {
    std::vector<std::int64_t> values = wholeNumbers<std::int64_t>();
    const std::int64_t most = std::int64_t{1} << 53;
    for (const std::int64_t value : {most - 1, most, most + 1, most + 2, most + 3}) {
        values.push_back(value);
        values.push_back(-value);
    }
    forAllForms([&](const CShortLine& line, const WholeLine& judge, const CFastForm& form) {
        expectRight(line, judge, form, values);
    });
}

TEST(FastForm, ConvertsFloats) {
    std::mt19937_64 random(6);
    std::vector<float> values = {0.0F, -0.0F, 1.0F, std::numeric_limits<float>::denorm_min(),
                                 std::numeric_limits<float>::max()};
    while (values.size() < 300) {
        const float value = floatOfBits(random() & 0xFFFFFFFF);
        if (std::isfinite(value)) {
            values.push_back(value);
        }
    }
    forAllForms([&](const CShortLine& line, const WholeLine& judge, const CFastForm& form) {
        expectRight(line, judge, form, values);
    });
}

TEST(FastForm, KeepsNaNAndInfinityInFloats) {
    const double infinity = std::numeric_limits<double>::infinity();
    forAllForms([&](const CShortLine&, const WholeLine&, const CFastForm& form) {
        const double values[] = {std::nan(""), infinity, -infinity};
        float results[3] = {};
        form.convertAll(values, results, 3);
        EXPECT_TRUE(std::isnan(results[0]));
        EXPECT_EQ(results[1], std::numeric_limits<float>::infinity());
        EXPECT_EQ(results[2], -std::numeric_limits<float>::infinity());
    });
}

eWay wayOf(const CShortLine& line) {
    return formOf(line, eLine::KNOWN, WholeLine(line), bestLoops()).Way;
}

TEST(FastForm, MultipliesOnceIfTheFactorIsADouble) {
    EXPECT_EQ(wayOf({1000, 0, 1, 0, false}), MULTIPLY);
    EXPECT_EQ(wayOf({1, 0, 1, 0, false}), MULTIPLY);
    EXPECT_EQ(wayOf({1, 0, 1, -970, false}), MULTIPLY);
    EXPECT_EQ(wayOf({1, 0, 1, -971, false}), SLOWLY);
    EXPECT_EQ(wayOf({1, 0, 1, 1023, false}), MULTIPLY);
    EXPECT_EQ(wayOf({1, 0, 1, 1024, false}), SLOWLY);
}

TEST(FastForm, NeedsNoTestIfOddPartsAreSmall) {
    EXPECT_EQ(wayOf({5, 0, 9, 0, false}), PROVED);
    EXPECT_EQ(wayOf({1, 0, 1000, 0, false}), PROVED);
    EXPECT_EQ(wayOf({127, 0, 5000, 0, false}), PROVED);
    EXPECT_EQ(wayOf({45359237, 0, 100000000, 0, false}), TIES);
    EXPECT_EQ(wayOf({5000, 0, 127, 0, false}), TIES);
    // These have ties, too, but their tails are exact enough.
    EXPECT_EQ(wayOf({9, 0, 5, 0, false}), PROVED);
    EXPECT_EQ(wayOf({18, 0, 5, 0, false}), PROVED);
    const std::uint64_t most = std::uint64_t{1} << 45;
    EXPECT_EQ(wayOf({3, 0, most - 1, 0, false}), PROVED);
    EXPECT_EQ(wayOf({most - 1, 0, 3, 0, false}), PROVED);
    EXPECT_EQ(wayOf({most - 1, 0, 17, 0, false}), TIES);
    EXPECT_EQ(wayOf({most + 1, 0, 7, 0, false}), TESTED);
}

TEST(FastForm, NeedsNoTestIfNoProductIsNearTheMiddle) {
    const WholeLine unused({1, 0, 1, 0, false});
    // No number of 53 bits times π is too close to a middle.
    const CLeading pi = {{0xC90FDAA22168C234, 0xC4C6628B80DC1CD1, 0x29024E088A67CC74}, -190, false};
    EXPECT_EQ(CFastForm(pi, nullptr, &unused).Way, PROVED);
    // The products of 1 + 2^-100 are never ties, but very close to ties.
    CLeading next = CLeading::ofQuotient(1, 1, 0);
    next.Word[1] = std::uint64_t{1} << 27;
    EXPECT_EQ(CFastForm(next, nullptr, &unused).Way, TESTED);
    // Most random factors need no test.
    std::mt19937_64 random(7);
    int proved = 0;
    for (int i = 0; i < 200; ++i) {
        const CLeading factor = {
            {random() | std::uint64_t{1} << 63, random(), random()}, -190, false};
        proved += CFastForm(factor, nullptr, &unused).Way == PROVED ? 1 : 0;
    }
    // With only one tail it would be some 150.
    EXPECT_GT(proved, 165);
    EXPECT_LT(proved, 190);
}

TEST(FastForm, TakesTheSlowWayForVerySmallAndVeryLargeFactors) {
    EXPECT_EQ(wayOf({7, 0, 3, 898, false}), PROVED);
    EXPECT_EQ(wayOf({7, 0, 3, 900, false}), SLOWLY);
    EXPECT_EQ(wayOf({7, 0, 3, -901, false}), PROVED);
    EXPECT_EQ(wayOf({7, 0, 3, -902, false}), SLOWLY);
    EXPECT_EQ(wayOf({7, 1, 3, 199, false}), OFFSET);
    EXPECT_EQ(wayOf({7, 1, 3, 200, false}), SLOWLY);
    EXPECT_EQ(wayOf({7, 1, 3, -201, false}), OFFSET);
    EXPECT_EQ(wayOf({7, 1, 3, -202, false}), SLOWLY);
    const WholeLine unused({1, 0, 1, 0, false});
    const CLeading one = CLeading::ofQuotient(1, 1, 0);
    for (const int sign : {-1, 1}) {
        EXPECT_EQ(
            CFastForm(one, CLeading::ofQuotient(1, 1, sign * 200), false, nullptr, &unused).Way,
            OFFSET);
        EXPECT_EQ(
            CFastForm(one, CLeading::ofQuotient(1, 1, sign * 201), false, nullptr, &unused).Way,
            SLOWLY);
    }
}

mpq_class fractionOf(double x) { return mpq_class(x); }

// The proofs (tests/proofs) and docs/exact-fast.md assume this.
TEST(FastForm, TailsEncloseTheRestOfTheFactor) {
    const mpq_class unit = mpq_class(1) / (mpz_class(1) << 100);
    for (const CShortLine& line : Factors) {
        const WholeLine judge(line);
        const CFastForm form = formOf(line, eLine::UNKNOWN, judge, bestLoops());
        if ((form.Way != TESTED && form.Way != PROVED && form.Way != TIES) || line.Twos != 0) {
            continue;
        }
        const mpq_class factor = mpq_class(wholeOf(line.A)) / wholeOf(line.D);
        const mpq_class rest = factor - fractionOf(form.Head);
        int exponent = 0;
        std::frexp(form.Head, &exponent);
        mpq_class slack = unit;
        if (exponent > 0) {
            slack *= mpz_class(1) << static_cast<unsigned>(exponent - 1);
        } else {
            slack /= mpz_class(1) << static_cast<unsigned>(1 - exponent);
        }
        const auto isBelow = [&](double down, const mpq_class& number, double up) {
            return fractionOf(down) <= number && number < fractionOf(std::nextafter(up, 1e300));
        };
        EXPECT_GE(rest, 0);
        EXPECT_LT(fractionOf(form.Head) + rest, fractionOf(std::nextafter(form.Head, 1e300)));
        EXPECT_TRUE(isBelow(std::nextafter(form.Tail, 0), rest, form.Tail)) << describe(line, form);
        if (formOf(line, eLine::KNOWN, judge, bestLoops()).Way == TIES) {
            const CFastForm ties = formOf(line, eLine::KNOWN, judge, bestLoops());
            EXPECT_TRUE(isBelow(ties.Tail, rest, ties.Tail)) << describe(line, ties);
            const mpq_class below = rest - fractionOf(ties.Tail);
            EXPECT_TRUE(isBelow(ties.TailRest, below, ties.TailRest)) << describe(line, ties);
        }
        const mpq_class low = rest > slack ? mpq_class(rest - slack) : mpq_class(0);
        EXPECT_TRUE(isBelow(form.TailLow, low, form.TailLow)) << describe(line, form);
        const mpq_class high = rest + slack;
        EXPECT_GE(fractionOf(form.TailHigh), high) << describe(line, form);
        EXPECT_LT(fractionOf(std::nextafter(form.TailHigh, 0)), high) << describe(line, form);
    }
}

TEST(FastForm, RoundsTailsFarBelowTheHead) {
    const WholeLine unused({1, 0, 1, 0, false});
    const std::uint64_t highest = std::uint64_t{1} << 63;
    const CLeading far = {{highest, 0, highest}, -191, true};
    const CFastForm form(far, nullptr, &unused);
    EXPECT_EQ(form.Head, 1);
    EXPECT_EQ(form.Tail, 0x1p-128);
    EXPECT_EQ(form.TailLow, 0);
    EXPECT_EQ(form.TailHigh, 0x1p-100 + 0x1p-128);
    // A tail of 64 bits is rounded up to 53.
    const CLeading longer = {{highest, highest | 1, 0}, -191, true};
    EXPECT_EQ(CFastForm(longer, nullptr, &unused).TailHigh, 0x1p-64 + 0x1p-100 + 0x1p-116);
    const CLeading near = {{highest | 5, std::uint64_t{1} << 27, 0}, -191, true};
    EXPECT_EQ(CFastForm(near, nullptr, &unused).TailLow, 5 * 0x1p-63);
}

TEST(FastForm, CallsTheSlowWayOnceForEachValue) {
    const CShortLine line = {7, 0, 3, 1000, false};
    const WholeLine judge(line);
    forAllLoops([&](const CLoops& loops) {
        const CFastForm slow = formOf(line, eLine::UNKNOWN, judge, loops);
        ASSERT_EQ(slow.Way, SLOWLY);
        const double values[] = {1, 2, 3};
        double results[3] = {};
        long before = WholeLine::Calls;
        slow.convertAll(values, results, 3);
        EXPECT_EQ(WholeLine::Calls, before + 3) << loops.Name;
        // Among whole numbers, only those that are not doubles need the slow way.
        const CFastForm fast = formOf({9, 0, 5, 0, false}, eLine::UNKNOWN, judge, loops);
        const std::int64_t most = std::int64_t{1} << 53;
        const std::int64_t numbers[] = {1, -most, most, most + 1, -most - 1};
        double converted[5] = {};
        before = WholeLine::Calls;
        fast.convertAll(numbers, converted, 3);
        EXPECT_EQ(WholeLine::Calls, before) << loops.Name;
        fast.convertAll(numbers, converted, 5);
        EXPECT_EQ(WholeLine::Calls, before + 2) << loops.Name;
    });
}

TEST(FastForm, HasTheLimitsOfTheProof) {
    const auto limits = [](const CShortLine& line) {
        return formOf(line, eLine::KNOWN, WholeLine(line), bestLoops());
    };
    const CFastForm usual = limits({9, 0, 5, 0, false});
    EXPECT_EQ(usual.Least, orderedBits(0x1p-900) - 1);
    EXPECT_EQ(usual.Most, orderedBits(0x1p990));
    const CFastForm large = limits({9, 0, 5, 500, false});
    EXPECT_EQ(large.Least, orderedBits(0x1p-1000) - 1);
    EXPECT_EQ(large.Most, orderedBits(0x1p500));
    const CFastForm small = limits({9, 0, 5, -500, false});
    EXPECT_EQ(small.Least, orderedBits(0x1p-400) - 1);
    EXPECT_EQ(small.Most, orderedBits(0x1p990));

    const CFastForm line = limits({9, 160, 5, 0, false});
    EXPECT_EQ(line.Least, orderedBits(160 * 0x1p-19));
    EXPECT_EQ(line.Most, orderedBits(0x1p72 / 9));
    EXPECT_EQ(line.LeastDistance, orderedBits(-line.Center * 0x1p-24));
    EXPECT_EQ(line.TailLow, line.Tail - 0x1p-76);
    EXPECT_EQ(line.TailHigh, line.Tail + 0x1p-76);
    EXPECT_EQ(line.ExactCenter, 0);
    const CFastForm inverse32 = limits({5, 160, 9, 0, true});
    EXPECT_EQ(inverse32.Center, 32);
    EXPECT_EQ(inverse32.CenterTail, 0);
    EXPECT_EQ(inverse32.ExactCenter, 1);
    EXPECT_EQ(inverse32.TailHigh, inverse32.Tail + 0x1p-77);  // the factor is from 1/2 to 1
    // Head and center are rounded towards zero. The nearest doubles would be larger.
    EXPECT_EQ(line.Head, std::nextafter(1.8, 0));
    EXPECT_EQ(line.Center, std::nextafter(-160.0 / 9, 0));
    // CenterTail is the rest of the center times the factor.
    const mpq_class center = -mpq_class(160, 9) - fractionOf(line.Center);
    EXPECT_DOUBLE_EQ(line.CenterTail, 1.8 * center.get_d());
    EXPECT_LT(line.CenterTail, 0);
    EXPECT_EQ(limits({9, 160, 5, 0, true}).Center, -line.Center);
    EXPECT_EQ(limits({9, 160, 5, 0, true}).CenterTail, -line.CenterTail);
    EXPECT_EQ(line.MostWhole, (0x1p53 - 1 - 160) / 9);
    EXPECT_EQ(line.Inverse, std::nextafter(0.2, 0));
    const mpq_class inverse = mpq_class(1, 5) - fractionOf(line.Inverse);
    EXPECT_GE(inverse, fractionOf(line.InverseTail));
    EXPECT_LT(inverse, fractionOf(std::nextafter(line.InverseTail, 1)));

    // For longer numbers, the slow way decides whenever the two sums differ.
    const std::uint64_t most = std::uint64_t{1} << 40;
    for (const CShortLine& known :
         {CShortLine{most, 1, 1, 0, false}, CShortLine{1, most, 1, 0, false},
          CShortLine{1, 1, most, 0, false}}) {
        EXPECT_GT(limits(known).Most, 0);
    }
    // The tails are never closer to each other than the proof needs.
    const CFastForm longest = limits({most, 1, 1, 0, false});
    EXPECT_EQ(longest.TailHigh, 0x1p-97 * 0x1p40);
    EXPECT_EQ(longest.LeastDistance, orderedBits(0x1p-43));
    const CFastForm oneLonger = limits({1, 1, std::uint64_t{1} << 25, 0, false});
    EXPECT_EQ(oneLonger.TailHigh, 0x1p-97 * 0x1p-25);
    EXPECT_EQ(limits({1, 1, (std::uint64_t{1} << 24) - 1, 0, false}).LeastDistance,
              orderedBits(0x1p-4));
    for (const CShortLine& longer :
         {CShortLine{most + 1, 1, 1, 0, false}, CShortLine{1, most + 1, 1, 0, false},
          CShortLine{1, 1, most + 1, 0, false}}) {
        EXPECT_EQ(limits(longer).Most, -1);
        EXPECT_EQ(limits(longer).LeastDistance, orderedBits(-limits(longer).Center * 0x1p-12));
        EXPECT_EQ(limits(longer).Least, std::numeric_limits<std::int64_t>::min());
        EXPECT_EQ(limits(longer).MostWhole, 0);
    }
}

TEST(FastForm, SplitsTheFactorIntoHalvesOf26Bits) {
    for (const CShortLine& line : Factors) {
        const WholeLine judge(line);
        const CFastForm form = formOf(line, eLine::KNOWN, judge, bestLoops());
        EXPECT_EQ(form.HeadHigh + form.HeadLow, form.Head);
        if (form.HeadHigh == 0) {
            continue;
        }
        for (const double half : {form.HeadHigh, form.HeadLow}) {
            int exponent = 0;
            const double scaled = std::ldexp(std::frexp(half, &exponent), 26);
            EXPECT_EQ(scaled, std::floor(scaled)) << describe(line, form);
        }
    }
}

TEST(FastForm, DecidesUsualValuesZerosAndTiesWithoutTheSlowWay) {
    forAllLoops([](const CLoops& loops) {
        for (const CShortLine& line :
             {CShortLine{9, 0, 5, 0, false}, CShortLine{5, 0, 9, 0, false},
              CShortLine{18, 0, 5, 0, false}, CShortLine{9, 160, 5, 0, false},
              CShortLine{5, 160, 9, 0, true}, CShortLine{20, 5463, 20, 0, false},
              CShortLine{45359237, 0, 100000000, 0, false}}) {
            // CShortLine would decide without the slow way, so it is switched off.
            CShortLine hidden = line;
            const WholeLine judge(line);
            CFastForm form = formOf(hidden, eLine::KNOWN, judge, loops);
            form.HasLine = false;
            std::vector<double> values;
            std::mt19937_64 random(8);
            for (int i = 0; i < 5000; ++i) {
                values.push_back(std::round((static_cast<double>(random() % 20000) - 10000) * 1.1) /
                                 10);
                values.push_back(std::ldexp(static_cast<double>((random() >> 14) * line.D), -44));
                values.push_back(line.B == 0 ? 0.0 : 1.0);
            }
            std::vector<double> results(values.size());
            const long before = WholeLine::Calls;
            form.convertAll(values.data(), results.data(), values.size());
            for (const double value : values) {
                form.convert(value);
            }
            EXPECT_EQ(WholeLine::Calls, before) << describe(line, form);
        }
    });
}

// The least and the greatest value for which the way is proved are decided, also in a loop. Smaller
// values are not.
TEST(FastForm, DecidesAtItsLimitsWithoutTheSlowWay) {
    // The ways PROVED, TIES and TESTED.
    const std::pair<CShortLine, eLine> lines[] = {{{5, 0, 9, 0, false}, eLine::KNOWN},
                                                  {{78125, 0, 10467, 0, false}, eLine::KNOWN},
                                                  {{9, 0, 5, 0, false}, eLine::UNKNOWN}};
    forAllLoops([&](const CLoops& loops) {
        for (const auto& [line, isKnown] : lines) {
            const WholeLine judge(line);
            CFastForm form = formOf(line, isKnown, judge, loops);
            form.HasLine = false;
            const double least = doubleOfBits(static_cast<std::uint64_t>(form.Least) + 1);
            const double most = doubleOfBits(static_cast<std::uint64_t>(form.Most));
            for (const double x : {least, -least, most, -most}) {
                double result = 0;
                const long before = WholeLine::Calls;
                EXPECT_TRUE(form.Many(form, &x, &result, 1)) << describe(line, form) << " of " << x;
                EXPECT_EQ(form.convert(x), result);
                EXPECT_EQ(WholeLine::Calls, before) << describe(line, form) << " of " << x;
            }
            for (const double x : {std::nextafter(least, 0), -std::nextafter(least, 0)}) {
                double result = 0;
                const long before = WholeLine::Calls;
                EXPECT_FALSE(form.Many(form, &x, &result, 1))
                    << describe(line, form) << " of " << x;
                form.convert(x);
                EXPECT_EQ(WholeLine::Calls, before + 1) << describe(line, form) << " of " << x;
            }
        }
    });
}

// If the two sums with an offset differ, the result is a tie for values between the limits, and unknown
// beyond.
TEST(FastForm, DecidesTiesOnlyBetweenItsLimits) {
    const CShortLine line = {9, 160, 5, 0, false};
    const WholeLine judge(line);
    forAllLoops([&](const CLoops& loops) {
        CFastForm form = formOf(line, eLine::KNOWN, judge, loops);
        form.HasLine = false;
        form.TailLow -= 0x1p-40;  // so that the two sums always differ
        form.TailHigh += 0x1p-40;
        const auto isDecided = [&](double x) {
            double result = 0;
            const long before = WholeLine::Calls;
            const bool isRight = form.Many(form, &x, &result, 1);
            form.convert(x);
            EXPECT_EQ(isRight, WholeLine::Calls == before) << describe(line, form) << " of " << x;
            return isRight;
        };
        const double least = doubleOfBits(static_cast<std::uint64_t>(form.Least));
        const double most = doubleOfBits(static_cast<std::uint64_t>(form.Most));
        for (const double sign : {1, -1}) {
            EXPECT_TRUE(isDecided(sign * least));
            EXPECT_FALSE(isDecided(sign * std::nextafter(least, 0)));
            EXPECT_TRUE(isDecided(sign * most));
            EXPECT_FALSE(isDecided(sign * std::nextafter(most, 1e300)));
        }
        // Distances from the center.
        form.LeastDistance = orderedBits(0x1p-30);
        EXPECT_TRUE(isDecided(form.Center + 0x1p-30));
        EXPECT_TRUE(isDecided(form.Center - 0x1p-30));
        EXPECT_FALSE(isDecided(form.Center + 0x1p-31));
        EXPECT_FALSE(isDecided(form.Center - 0x1p-31));

        // Without a CShortLine, no value is between the limits.
        CFastForm unknown = formOf(line, eLine::UNKNOWN, judge, loops);
        unknown.TailLow -= 0x1p-40;
        unknown.TailHigh += 0x1p-40;
        const double noNumber = doubleOfBits(~std::uint64_t{0});
        for (const double x : {0.0, -0.0, 1.0, -1e300, noNumber, -noNumber}) {
            double result = 0;
            EXPECT_FALSE(unknown.Many(unknown, &x, &result, 1)) << loops.Name << " of " << x;
        }
    });
}

// The two sums may be equal but wrong for a value too close to the center. Only the center itself has an exact
// result, if it is a double.
TEST(FastForm, AsksTheSlowWayForValuesNextToTheCenter) {
    const CShortLine line = {9, 160, 5, 0, false};
    const CShortLine inverse = {5, 160, 9, 0, true};
    const WholeLine judge(line);
    const WholeLine inverseJudge(inverse);
    forAllLoops([&](const CLoops& loops) {
        const auto isDecided = [&](const CFastForm& form, double x) {
            double result = 0;
            const long before = WholeLine::Calls;
            const bool isRight = form.Many(form, &x, &result, 1);
            form.convert(x);
            EXPECT_EQ(isRight, WholeLine::Calls == before) << loops.Name << " of " << x;
            return isRight;
        };
        CFastForm form = formOf(line, eLine::KNOWN, judge, loops);
        form.HasLine = false;
        form.LeastDistance = orderedBits(2.0);
        EXPECT_FALSE(isDecided(form, -19.0));
        EXPECT_FALSE(isDecided(form, -17.0));
        EXPECT_FALSE(isDecided(form, form.Center));
        EXPECT_TRUE(isDecided(form, -20.0));
        EXPECT_TRUE(isDecided(form, -15.0));
        CFastForm exact = formOf(inverse, eLine::KNOWN, inverseJudge, loops);
        exact.HasLine = false;
        exact.LeastDistance = orderedBits(2.0);
        EXPECT_TRUE(isDecided(exact, 32.0));
        EXPECT_FALSE(isDecided(exact, 33.0));
        EXPECT_FALSE(isDecided(exact, std::nextafter(32.0, 0)));
        EXPECT_TRUE(isDecided(exact, 34.0));
    });
}

// The values that `countedOne` has converted.
long counted = 0;
double (*realOne)(const CFastForm& form, double x) = nullptr;
double countedOne(const CFastForm& form, double x) {
    ++counted;
    return realOne(form, x);
}

TEST(FastForm, ConvertsOnlyAShortPieceOfABlockValueByValue) {
    const CShortLine line = {9, 160, 5, 0, false};
    const WholeLine judge(line);
    forAllLoops([&](const CLoops& loops) {
        CFastForm form = formOf(line, eLine::KNOWN, judge, loops);
        realOne = form.One;
        form.One = countedOne;
        std::vector<double> values(1000, 21.5), results(values.size());
        values[700] = std::nan("");
        values[999] = std::numeric_limits<double>::infinity();
        counted = 0;
        form.convertAll(values.data(), results.data(), values.size());
        EXPECT_GE(counted, 2) << loops.Name;
        EXPECT_LE(counted, 64) << loops.Name;
        EXPECT_TRUE(std::isnan(results[700]));
        EXPECT_EQ(results[701], 70.7);
        EXPECT_EQ(results[999], values[999]);
    });
}

TEST(FastForm, LoopsDecideUsualArrays) {
    forAllLoops([](const CLoops& loops) {
        for (const CShortLine& line :
             {CShortLine{9, 0, 5, 0, false}, CShortLine{5, 0, 9, 0, false},
              CShortLine{1000, 0, 1, 0, false}, CShortLine{9, 160, 5, 0, false}}) {
            const WholeLine judge(line);
            const CFastForm form = formOf(line, eLine::KNOWN, judge, loops);
            const double values[] = {0.0, -0.0, 98.6, -40.0, 37.5, 5.0, 1e-30, 1e30, -17.5};
            double results[std::size(values)] = {};
            EXPECT_TRUE(form.Many(form, values, results, std::size(values)))
                << describe(line, form);
            float narrow[std::size(values)] = {};
            EXPECT_TRUE(loops.Narrow(values, narrow, std::size(values)));
        }
        // The way TESTED, for values whose two sums are equal.
        const CShortLine line = {5, 0, 9, 0, false};
        const WholeLine judge(line);
        const CFastForm form = formOf(line, eLine::UNKNOWN, judge, loops);
        ASSERT_EQ(form.Way, TESTED);
        const double values[] = {0.0, -0.0, 98.6, -40.5, 37.5};
        double results[5] = {};
        EXPECT_TRUE(form.Many(form, values, results, 5));
    });
}

TEST(FastForm, NarrowReportsOnlyMiddlesAndSubnormalFloats) {
    forAllLoops([](const CLoops& loops) {
        const auto isSure = [&](double x) {
            float result = 0;
            return loops.Narrow(&x, &result, 1);
        };
        EXPECT_FALSE(isSure(1 + 0x1p-24));
        EXPECT_FALSE(isSure(-1 - 0x1p-24));
        EXPECT_TRUE(isSure(1 + 0x1p-24 + 0x1p-52));
        EXPECT_TRUE(isSure(1 + 0x1p-24 - 0x1p-52));
        EXPECT_TRUE(isSure(1 + 0x1p-23));
        EXPECT_TRUE(isSure(1 + 0x1p-25));
        EXPECT_TRUE(isSure(0x1p-126));
        EXPECT_FALSE(isSure(std::nextafter(0x1p-126, 0)));
        EXPECT_FALSE(isSure(std::numeric_limits<double>::denorm_min()));
        EXPECT_TRUE(isSure(0.0));
        EXPECT_TRUE(isSure(-0.0));
    });
}

TEST(FastForm, CallsTheSlowWayIf128BitsAreTooFew) {
    const CShortLine line = {9, 160, 5, 0, false};
    const WholeLine judge(line);
    const CFastForm form = formOf(line, eLine::KNOWN, judge, bestLoops());
    const long before = WholeLine::Calls;
    form.exactly(CNumber::ofDouble(1.5), CFormat::ofDouble());
    EXPECT_EQ(WholeLine::Calls, before);
    form.exactly(CNumber::ofDouble(1e-100), CFormat::ofDouble());
    EXPECT_EQ(WholeLine::Calls, before + 1);
}

TEST(FastForm, DividesCountsOnce) {
    // Thousandths of °C in °F.
    const CShortLine line = {9, 160000, 5000, 0, false};
    const WholeLine judge(line);
    forAllLoops([&](const CLoops& loops) {
        const CFastForm form = formOf(line, eLine::KNOWN, judge, loops);
        EXPECT_GT(form.MostWhole, 0x1p31);
        const std::int16_t counts[] = {-4000, 0, 21500};
        double results[3] = {};
        form.convertAll(counts, results, 3);
        EXPECT_EQ(results[0], 24.8);
        EXPECT_EQ(results[1], 32);
        EXPECT_EQ(results[2], 70.7);
    });
}

TEST(FastForm, DividesEveryCountOf16BitsRight) {
    std::vector<std::int16_t> counts;
    // On a slow platform one of three. The first and the last are among them.
    for (int n = -32768; n <= 32767; n += test::casesOf(1, 3)) {
        counts.push_back(static_cast<std::int16_t>(n));
    }
    std::vector<double> results(counts.size());
    for (const CShortLine& line :
         {CShortLine{9, 160000, 5000, 0, false}, CShortLine{5, 160, 9, 0, true},
          CShortLine{5, 160, 9, 900, true}, CShortLine{1, 1, 3, -900, true},
          CShortLine{1, 1, std::uint64_t{1} << 40, 0, false},
          CShortLine{7, 1, (std::uint64_t{1} << 40) - 1, 0, false}}) {
        const WholeLine judge(line);
        std::vector<std::uint64_t> right;
        for (const std::int16_t n : counts) {
            right.push_back(judge.convert(CNumber::ofWhole(n), CFormat::ofDouble()).Bits);
        }
        forAllLoops([&](const CLoops& loops) {
            // The factor and the center are not used.
            const CLeading one = CLeading::ofQuotient(1, 1, 0);
            const CFastForm form(one, one, false, &line, &judge, loops);
            ASSERT_GE(form.MostWhole, 0x1p15);
            form.convertAll(counts.data(), results.data(), counts.size());
            for (std::size_t i = 0; i < counts.size(); ++i) {
                ASSERT_EQ(bitsOfDouble(results[i]), right[i])
                    << describe(line, form) << " of " << counts[i];
            }
        });
    }
}

// Very many results are written past the caches. The elements before and after them do not change.
TEST(FastForm, OffsetsGiveTheSameBitsPastTheCaches) {
    forAllForms([](const CShortLine& line, const WholeLine&, const CFastForm& form) {
        if (form.Way != OFFSET) {
            return;
        }
        std::mt19937_64 random(9);
        const Doubles doubles(line, form);
        constexpr std::size_t Count = 3 * CLoops::OffsetPiece;
        constexpr std::size_t Before = CLoops::Line;
        double values[Count];
        for (int round = 0; round < 8; ++round) {
            for (double& value : values) {
                // Only in some rounds, a value may need the slow way.
                value = round < 4 ? static_cast<double>(random() % 20001) / 8 + 3
                                  : doubles.next(random);
            }
            alignas(64) double expected[Before + Count + 1], results[Before + Count + 1];
            std::fill(std::begin(expected), std::end(expected), -1);
            std::fill(std::begin(results), std::end(results), -1);
            const CLoops& loops = *form.Loops;
            EXPECT_EQ(loops.Many[OFFSET](form, values, expected + Before, Count),
                      loops.OffsetPastCaches(form, values, results + Before, Count))
                << describe(line, form);
            EXPECT_EQ(std::memcmp(expected, results, sizeof expected), 0) << describe(line, form);
        }
    });
}

TEST(FastForm, CopiesPastTheCachesAllDoublesAndNoMore) {
    constexpr std::size_t Line = CLoops::Line;
    for (const CLoops* const* loops = availableLoops(); *loops != nullptr; ++loops) {
        for (std::size_t count = 0; count <= 5 * Line; count += Line) {
            alignas(64) double values[5 * Line], results[7 * Line];
            std::iota(std::begin(values), std::end(values), 1.5);
            std::fill(std::begin(results), std::end(results), -1);
            (*loops)->CopyPastCaches(values, results + Line, count);
            EXPECT_TRUE(std::equal(values, values + count, results + Line)) << (*loops)->Name;
            EXPECT_EQ(std::count(std::begin(results), std::end(results), -1),
                      static_cast<std::ptrdiff_t>(7 * Line - count))
                << (*loops)->Name;
        }
    }
}

TEST(FastForm, ConvertsWholeNumbersPastTheCaches) {
    const std::size_t count = 4'000'100;
    std::vector<std::int64_t> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = static_cast<std::int64_t>(i % 60000) - 30000;
    }
    values[3'000'001] = 9007199254740993;  // no double
    const CShortLine line = {9, 0, 5, 0, false};
    const WholeLine judge(line);
    const CFastForm form = formOf(line, eLine::KNOWN, judge, bestLoops());
    std::vector<double> results(count);
    form.convertAll(values.data(), results.data(), count);
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < count; i += i == 3'000'000 ? 1U : 100U) {
        double alone = 0;
        form.convertAll(&values[i], &alone, 1);
        wrong += results[i] == alone ? 0U : 1U;
    }
    EXPECT_EQ(wrong, 0U);
    EXPECT_NE(results[3'000'001], form.convert(9007199254740992));
}

TEST(FastForm, GivesTheSameBitsPastTheCaches) {
    const std::size_t count = 4'000'100;
    std::vector<double> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = static_cast<double>(i % 20011) / 10 - 1000;
    }
    // These two values need the slow way: the first with an offset, the second without. The loop below compares
    // the results of both.
    values[13 * 97 * 1000] = -160.0 / 9;
    values[count - 1] = 0x1p-1070;
    for (const CShortLine& line :
         {CShortLine{9, 0, 5, 0, false}, CShortLine{9, 160, 5, 0, false}}) {
        const WholeLine judge(line);
        const CFastForm form = formOf(line, eLine::KNOWN, judge, bestLoops());
        std::vector<double> results(count + 2, -1);
        std::vector<float> narrow(2 * count + 2, -1);
        form.convertAll(values.data(), results.data() + 1, count);
        EXPECT_EQ(results.front(), -1);
        EXPECT_EQ(results.back(), -1);
        // Floats need twice as many values.
        values.resize(2 * count, 98.6);
        form.convertAll(values.data(), narrow.data() + 1, 2 * count);
        EXPECT_EQ(narrow.front(), -1);
        EXPECT_EQ(narrow.back(), -1);
        std::size_t wrong = 0;
        const std::size_t step = test::casesOf<std::size_t>(13, 97);
        for (std::size_t i = 0; i < count; i += i + 1000 < count ? step : 1) {
            const double one = form.convert(values[i]);
            float alone = 0;
            form.convertAll(&values[i], &alone, 1);
            if (bitsOfDouble(results[i + 1]) != bitsOfDouble(one) ||
                WholeLine::bitsOfFloat(narrow[i + 1]) != WholeLine::bitsOfFloat(alone)) {
                ++wrong;
            }
        }
        EXPECT_EQ(wrong, 0U) << describe(line, form);
        EXPECT_EQ(narrow[2 * count], static_cast<float>(form.convert(98.6)));
        values.resize(count);
    }
}

// Only whole cache lines, or whole pieces with an offset, are written past the caches. The rest of the last block
// is stored as usual.
TEST(FastForm, WritesNothingBehindTheLastResultPastTheCaches) {
    const std::size_t whole = 4'000'000;  // whole pieces of 64
    const std::vector<double> values(whole + 64, 20.0);
    std::vector<double> room(values.size() + CLoops::Line);
    void* aligned = room.data();
    std::size_t bytes = room.size() * sizeof(double);
    auto* const results = static_cast<double*>(std::align(64, 8, aligned, bytes));
    for (const std::uint64_t offset : {0U, 160U}) {
        const CShortLine line = {9, offset, 5, 0, false};
        const WholeLine judge(line);
        const CFastForm form = formOf(line, eLine::KNOWN, judge, bestLoops());
        for (const std::size_t more : {1U, 8U, 63U, 64U}) {
            const std::size_t count = whole + more;
            std::fill(room.begin(), room.end(), -1);
            form.convertAll(values.data(), results, count);
            EXPECT_EQ(results[count - 1], form.convert(20.0)) << more;
            EXPECT_EQ(std::count(room.begin(), room.end(), -1),
                      static_cast<std::ptrdiff_t>(room.size() - count))
                << more;
        }
    }
}

// The doubles that countedCopy() and countedOffsets() have written.
std::size_t writtenPastCaches = 0;
void countedCopy(const double* values, double* results, std::size_t count) {
    writtenPastCaches += count;
    std::copy(values, values + count, results);
}
bool countedOffsets(const CFastForm& form, const double* values, double* results,
                    std::size_t count) {
    writtenPastCaches += count;
    return form.Loops->Many[OFFSET](form, values, results, count);
}

// Stores past the caches would only make other arrays slower.
TEST(FastForm, WritesOnlyVeryLongArraysOfDoublesPastTheCaches) {
    CLoops loops = bestLoops();
    loops.CopyPastCaches = countedCopy;
    loops.OffsetPastCaches = countedOffsets;
    for (const std::uint64_t offset : {0U, 160U}) {
        const CShortLine line = {9, offset, 5, 0, false};
        const WholeLine judge(line);
        const CFastForm form = formOf(line, eLine::KNOWN, judge, loops);
        ASSERT_EQ(form.Way == OFFSET, offset != 0);
        const std::size_t many = 4'000'000;
        std::vector<double> values(many, 12.5), results(many);
        std::vector<float> floats(many);
        writtenPastCaches = 0;
        form.convertAll(values.data(), results.data(), many - 1);
        form.convertAll(values.data(), floats.data(), many);
        form.convertAll(values.data(), values.data(), many);
        EXPECT_EQ(writtenPastCaches, 0U);
        form.convertAll(values.data(), results.data(), many);
#if defined(__x86_64__)
        EXPECT_GE(writtenPastCaches, many - 2000);  // all but parts of the first and the last block
#else
        EXPECT_EQ(writtenPastCaches, 0U);
#endif
    }
}

// Where the calls of `notedBlock` have stored their results.
std::vector<const double*> notedBlocks;
bool notedBlock(const CFastForm& form, const double* values, double* results, std::size_t count) {
    notedBlocks.push_back(results);
    return bestLoops().Many[form.Way](form, values, results, count);
}

// A vector that lies across two cache lines takes two stores, so the first block ends at a cache line. With an
// offset, a short first block would take longer than the second stores.
TEST(FastForm, BeginsBlocksAtCacheLinesUnlessThereIsAnOffset) {
    CLoops loops = bestLoops();
    loops.Many[PROVED] = loops.Many[OFFSET] = notedBlock;
    const std::vector<double> values(3000, 12.5);
    std::vector<double> room(values.size() + 8);
    double* results = room.data();
    while (reinterpret_cast<std::uintptr_t>(results) % 64 != 16) {
        ++results;
    }
    for (const CShortLine& line :
         {CShortLine{18, 0, 5, 0, false}, CShortLine{9, 160, 5, 0, false}}) {
        const WholeLine judge(line);
        const CFastForm form = formOf(line, eLine::KNOWN, judge, loops);
        notedBlocks.clear();
        form.convertAll(values.data(), results, values.size());
        ASSERT_GE(notedBlocks.size(), 3U);
        EXPECT_EQ(notedBlocks[0], results);
        EXPECT_EQ(notedBlocks[1], results + (form.Way == OFFSET ? 1024 : 6));
    }
}

TEST(FastForm, ListsTheLoopsOfThisProcessorTheFastestFirst) {
    std::string names;
    for (const CLoops* const* loops = availableLoops(); *loops != nullptr; ++loops) {
        names += std::string(names.empty() ? "" : ", ") + (*loops)->Name;
    }
    const char* const wanted = std::getenv("MENSOR_EXPECTED_LOOPS");
#if defined(__x86_64__)
    if (wanted == nullptr) {
        EXPECT_TRUE(names == "AVX-512, AVX2, plain" || names == "AVX2, plain" || names == "plain")
            << names;
    } else {
        EXPECT_EQ(names, wanted);
    }
#else
    EXPECT_EQ(names, "plain");
    EXPECT_EQ(wanted, nullptr);
#endif
}

}  // namespace
}  // namespace mensor::exact
