// Conversion_test.cpp: conversions of special doubles, with π and roots, and of decimal text.
#include "mensor_exact/Conversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <utility>

#include "exact/Judge.h"
#include "exact/expect_error.h"
#include "mensor_exact/pi.h"

namespace mensor::exact {
namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double Largest = std::numeric_limits<double>::max();
constexpr double Smallest = std::numeric_limits<double>::denorm_min();

CCatalogue everything() {
    CCatalogue catalogue = CCatalogue::builtIn();
    for (const ePack pack :
         {ePack::CUSTOMARY, ePack::US, ePack::SCIENCE, ePack::OFFSETS, ePack::COUNTING}) {
        catalogue = catalogue.with(pack);
    }
    return catalogue;
}

CConversion between(const std::string& from, const std::string& to) {
    return CConversion::between(from, to, everything());
}

std::string converted(const char* number, const char* from, const char* to) {
    return between(from, to).convertText(number);
}

std::string styled(const char* number, const char* from, const char* to,
                   const CDecimalStyle& style) {
    return between(from, to).convertText(number, style);
}

void expectBits(double found, double expected) {
    EXPECT_EQ(bitsOf(found), bitsOf(expected)) << found << ", not " << expected;
}

// ---- making conversions ----

TEST(Conversion, ReturnsItsExactFactorAndOffset) {
    EXPECT_EQ(between("°F", "°C").factor(), "5/9");
    EXPECT_EQ(between("°F", "°C").offset(), "-160/9");
    EXPECT_EQ(between("°C", "K").offset(), "273.15");
    EXPECT_EQ(between("°", "rad").factor(), "π/180");
    EXPECT_EQ(between("rad", "°").factor(), "180/π");
    EXPECT_EQ(between("km", "m").offset(), "0");
    EXPECT_EQ(between("km^(1/2)", "m^(1/2)").factor(), "1000^(1/2)");
    EXPECT_EQ(between("°C", "π K").offset(), "273.15/π");
    EXPECT_EQ(between("K, offset -1", "π K").offset(), "-1/π");
    EXPECT_EQ(between("π K", "°C").offset(), "-273.15");
}

TEST(Conversion, RefusesDifferentDimensions) {
    const auto refused = [](const char* from, const char* to, const char* sentence) {
        expectError(
            eError::DIFFERENT_DIMENSIONS, [=] { between(from, to); }, sentence);
    };
    refused("bar", "m", "cannot convert bar to m: pressure and length");
    refused("kg·m", "s", "cannot convert kg·m to s: kg·m and time");
    refused("rad", "m", "cannot convert rad to m: angle and length");
    refused("1", "m", "cannot convert 1 to m: number and length");
    refused("Wb/A", "kg/(s·K)", "cannot convert Wb/A to kg/(s·K): inductance and kg/(K·s)");
    refused("C/m", "A/V", "cannot convert C/m to A/V: A·s/m and electric conductance");
    refused("1/(m·K)", "1/s²", "cannot convert 1/(m·K) to 1/s²: 1/(K·m) and 1/s²");
    expectError(
        eError::DIFFERENT_DIMENSIONS,
        [] { CConversion(CMeaning::base("EUR"), CMeaning::base("USD")); },
        "cannot convert EUR to USD: EUR and USD");
}

TEST(Conversion, ConvertsUnitsWhoseHashCodesCollideInTheRegistry) {
    EXPECT_EQ(converted("1", "Wb/A", "mH"), "1000");
    EXPECT_EQ(converted("1", "kg/(s·K)", "g/(min·K)"), "60000");
    EXPECT_EQ(converted("2.5", "C/m", "mC/mm"), "2.5");
    EXPECT_EQ(converted("1", "A/V", "mS"), "1000");
    EXPECT_EQ(converted("1", "1/(m·K)", "1/(km·K)"), "1000");
    EXPECT_EQ(converted("1", "1/s²", "1/min²"), "3600");
}

TEST(Conversion, ReportsWhetherMarksAreKept) {
    EXPECT_TRUE(between("rpm", "rad/s").keepsMarks());
    EXPECT_FALSE(between("rad/s", "Hz").keepsMarks());
    EXPECT_FALSE(between("lm", "cd").keepsMarks());
    EXPECT_EQ(between("rad/s", "Hz").convert(2.5), 2.5);
}

TEST(Conversion, HasAnInverse) {
    const CConversion there = between("°F", "°C");
    const CConversion back = there.inverse();
    EXPECT_EQ(back.factor(), "1.8");
    EXPECT_EQ(back.offset(), "32");
    EXPECT_EQ(back.convert(37), 98.6);
    EXPECT_EQ(back.from(), there.to());
    EXPECT_EQ(back.to(), there.from());
}

TEST(Conversion, CopiesAreIndependent) {
    CConversion one = between("km", "m");
    const CConversion two = one;
    one = between("h", "s");
    EXPECT_EQ(one.convert(1), 3600);
    EXPECT_EQ(two.convert(1), 1000);
    const CConversion three = std::move(one);
    EXPECT_EQ(three.convert(1), 3600);
    EXPECT_EQ(one.convert(1), 3600);  // a move only copies
}

TEST(Conversion, TakesTheExactValuesOfDoublesAsFactorAndOffset) {
    // The registry stores factors and offsets as doubles. A unit of the registry means the exact
    // values of these doubles.
    const CMeaning unit = CMeaning::base("K")
                              .scaled(CFactor(CFraction::ofDouble(0.1)))
                              .shifted(CFraction::ofDouble(273.15));
    const CConversion conversion(unit, CMeaning::base("K"));
    const LinearJudge judge(mpq_class(0.1), mpq_class(mpq_class(273.15) * mpq_class(0.1)));
    for (const double x : {1.0, 0.1, -273.15, 1e10}) {
        expectBits(conversion.convert(x), judge.convert(x));
    }
    EXPECT_TRUE(conversion.isExact(-273.15));
    EXPECT_FALSE(conversion.isExact(1.0));
}

// ---- special doubles ----

TEST(Conversion, KeepsInfinitiesAndTheSignOfZero) {
    const CConversion linear = between("km", "mi");
    const CConversion affine = between("°F", "°C");
    for (const CConversion& conversion : {linear, affine, between("°", "rad")}) {
        expectBits(conversion.convert(Infinity), Infinity);
        expectBits(conversion.convert(-Infinity), -Infinity);
        EXPECT_TRUE(conversion.isExact(Infinity));
    }
    for (const CConversion& conversion : {linear, between("m", "m"), between("°", "rad")}) {
        expectBits(conversion.convert(0.0), 0.0);
        expectBits(conversion.convert(-0.0), -0.0);
        EXPECT_TRUE(conversion.isExact(-0.0));
    }
    expectBits(affine.convert(-0.0), -17.77777777777778);
    expectBits(affine.convert(0.0), -17.77777777777778);
}

TEST(Conversion, GivesPlusZeroIfAnOffsetCancelsTheValue) {
    expectBits(between("°F", "°C").convert(32.0), 0.0);
    expectBits(between("K, offset 5", "K").convert(-5.0), 0.0);
    expectBits(between("K, offset 5", "π K").convert(-5.0), 0.0);
    EXPECT_TRUE(between("K, offset 5", "π K").isExact(-5.0));
    EXPECT_FALSE(between("K, offset 5", "π K").isExact(-4.0));
    expectBits(between("°F", "°F").convert(-0.0), -0.0);  // the offsets cancel
}

TEST(Conversion, KeepsThePayloadOfNaNAndMakesItQuiet) {
    for (const CConversion& conversion :
         {between("km", "mi"), between("°F", "°C"), between("m", "m"), between("°", "rad")}) {
        for (const std::uint64_t bits :
             {std::uint64_t{0x7FF8000000000000}, std::uint64_t{0x7FF8000000ABCDEF},
              std::uint64_t{0x7FF0000000000001}, std::uint64_t{0xFFF4000000000123}}) {
            const double nan = doubleOf(bits);
            EXPECT_EQ(bitsOf(conversion.convert(nan)), bits | 0x8000000000000);
            EXPECT_TRUE(conversion.isExact(nan));
        }
    }
}

TEST(Conversion, RoundsSubnormalResultsOnce) {
    expectBits(between("m", "2 m").convert(Smallest), 0.0);
    expectBits(between("m", "2 m").convert(-Smallest), -0.0);
    expectBits(between("m", "2 m").convert(3 * Smallest), 2 * Smallest);
    expectBits(between("m", "2 m").convert(5 * Smallest), 2 * Smallest);
    expectBits(between("m", "1.999 m").convert(Smallest), Smallest);
    expectBits(between("m", "3 m").convert(Smallest), 0.0);
    expectBits(between("m", "3 m").convert(2 * Smallest), Smallest);
    expectBits(between("rad", "π rad").convert(2 * Smallest), Smallest);
    expectBits(between("rad", "π rad").convert(-Smallest), -0.0);
    EXPECT_FALSE(between("m", "2 m").isExact(Smallest));
    EXPECT_TRUE(between("m", "2 m").isExact(2 * Smallest));
    // Rounding to 53 bits first would give a tie, which would then be rounded up.
    const double x = 0x1.fffffffffffffp-1022;
    expectBits(between("m", "2 m").convert(x), 0x1p-1022);
    expectBits(between("ym", "Ym").convert(1e-270), 1e-318);
}

TEST(Conversion, OverflowsAtHalfAPlaceBeyondTheLargestDouble) {
    const CConversion doubled = between("2 m", "m");
    expectBits(doubled.convert(Largest), Infinity);
    expectBits(doubled.convert(-Largest), -Infinity);
    expectBits(doubled.convert(Largest / 2), Largest);
    EXPECT_FALSE(doubled.isExact(Largest));
    // 2^970 is half a last place of the largest double. Adding it gives a tie, which is rounded to the even
    // neighbour, infinity. The first offset is a little less.
    expectBits(between("m, offset 9.979201547673599e291", "m").convert(Largest), Largest);
    const std::string half = CFraction(2).power(970).toString();
    expectBits(between("m, offset " + half, "m").convert(Largest), Infinity);
    const std::string less = (CFraction(2).power(970) - CFraction(1)).toString();
    expectBits(between("m, offset " + less, "m").convert(Largest), Largest);
    expectBits(between("km", "m").convert(1e306), Infinity);
    expectBits(between("Ym", "ym").convert(1e300), Infinity);
}

TEST(Conversion, AVerySmallOffsetDecidesATie) {
    // 2^60 + 2^7 is the middle between two doubles.
    const double x = 0x1p60;
    const std::string tie = CFraction(2).power(7).toString();
    expectBits(between("m, offset " + tie, "m").convert(x), x);
    expectBits(between("m, offset 128.0000000001", "m").convert(x), x + 256);
    expectBits(between("m, offset 127.9999999999", "m").convert(x), x);
    // Three times this number is a tie. The offset is far below the smallest double.
    expectBits(between("3 m", "m").convert(0x1.5555555555556p0), 4.0);
    expectBits(between("3 m, offset 1e-400", "m").convert(0x1.5555555555556p0),
               0x1.0000000000001p2);
    expectBits(between("3 m, offset -1e-400", "m").convert(0x1.5555555555556p0), 4.0);
    expectBits(between("3 m", "m").convert(0x1.555555555555ap0), 0x1.0000000000004p2);
    expectBits(between("3 m, offset -1e-400", "m").convert(0x1.555555555555ap0),
               0x1.0000000000003p2);
}

TEST(Conversion, ReportsWhichResultsAreExact) {
    EXPECT_TRUE(between("km", "m").isExact(2.5));
    EXPECT_FALSE(between("m", "km").isExact(2.5));
    EXPECT_TRUE(between("m", "km").isExact(125.0));
    EXPECT_TRUE(between("°F", "°C").isExact(50.0));
    EXPECT_FALSE(between("°F", "°C").isExact(98.6));
    EXPECT_FALSE(between("°", "rad").isExact(180.0));
    EXPECT_TRUE(between("°", "rev").isExact(180.0));
}

// ---- π, roots, and large numbers ----

TEST(Conversion, RoundsCorrectlyWithPowersOfPiAndRoots) {
    struct Case {
        const char* From;
        const char* To;
        mpq_class Radicand;
        unsigned long Root;
        long Pi;
        unsigned long PiRoot;
    };
    const Case list[] = {
        {"km^(1/2)", "m^(1/2)", 1000, 2, 0, 1},
        {"V/kHz^(1/2)", "V/Hz^(1/2)", mpq_class(1, 1000), 2, 0, 1},
        {"mm^(2/3)", "m^(2/3)", mpq_class(1, 1000000), 3, 0, 1},
        {"in^(5/7)", "m^(5/7)", mpq_class("10571583017/3125000000000000000000"), 7, 0, 1},
        {"π^2·m", "m", 1, 1, 2, 1},
        {"m/π^3", "km", mpq_class(1, 1000), 1, -3, 1},
        {"π^(1/2)·m", "m", 1, 1, 1, 2},
        {"m/π^(3/2)", "m", 1, 1, -3, 2},
        {"°^(1/2)", "rad^(1/2)", mpq_class(1, 180), 2, 1, 2},
        {"π^99·m", "m", 1, 1, 99, 1},
    };
    std::mt19937_64 random(3);
    for (const Case& one : list) {
        mpq_class radicand = one.Radicand;
        if (std::string(one.From) == "in^(5/7)") {
            radicand = 1;
            for (int i = 0; i < 5; ++i) {
                radicand *= mpq_class(127, 5000);
            }
        }
        IrrationalJudge judge(radicand, one.Root, one.Pi, one.PiRoot);
        const CConversion conversion = between(one.From, one.To);
        for (int i = 0; i < 300; ++i) {
            double x = doubleOf(random());
            if (i % 2 == 0 || !std::isfinite(x)) {
                x = static_cast<double>(static_cast<std::int64_t>(random()) >> (random() % 60));
            }
            ASSERT_EQ(bitsOf(conversion.convert(x)), bitsOf(judge.convert(x)))
                << std::hexfloat << x << " " << one.From << " to " << one.To;
        }
    }
}

TEST(Conversion, RefinesTheBoundsOfPiAsFarAsNeeded) {
    // The offset is chosen so that 3 π K is the middle between two doubles, except for the digits of π
    // that are cut off here.
    const std::string pi =
        "3."
        "141592653589793238462643383279502884197169399375105820974944592307816406286208998628034825"
        "34"
        "211706798214808651328230664709384460955058223172535940812848111745028410270193852110555964"
        "4622"
        "948954930381964428810975665933446128475648233786783165271201909145648566923460348610454326"
        "6482";
    const CFraction truncated = CFraction::ofText(pi);
    const CFraction tie = CFraction(4) + CFraction(1) / CFraction(2).power(51);
    // Three times the shortened π is the tie. π itself is a little more.
    const CMeaning target = CMeaning::base("K").shifted(truncated * CFraction(3) - tie);
    const CMeaning source = CMeaning::base("K").scaled(CFactor::pi());
    expectBits(CConversion(source, target).convert(3.0), 0x1.0000000000001p2);
    const CFraction last = CFraction::ofText("1e-280");
    const CMeaning above = CMeaning::base("K").shifted((truncated + last) * CFraction(3) - tie);
    expectBits(CConversion(source, above).convert(3.0), 4.0);
}

TEST(Conversion, ConvertsWithTheLargestAllowedFactors) {
    const CConversion large = between("Ym^99", "ym^99");
    EXPECT_EQ(large.convertText("1"), "1e4752");
    expectBits(large.convert(1.0), Infinity);
    expectBits(large.inverse().convert(1.0), 0.0);
    EXPECT_EQ(large.inverse().convertText("1"), "1e-4752");
    EXPECT_EQ(between("Ym^50/ym^49", "m").convertText("1"), "1e2376");
}

TEST(Conversion, ConvertsFractions) {
    EXPECT_EQ(*between("°F", "°C").convert(CFraction(0)), CFraction(-160, 9));
    EXPECT_EQ(*between("ft", "m").convert(CFraction(1, 3)), CFraction(1016, 10000));
    EXPECT_FALSE(between("°", "rad").convert(CFraction(1)));
    EXPECT_EQ(*between("K, offset 5", "π K").convert(CFraction(-5)), CFraction(0));
    EXPECT_EQ(*between("°", "rev").convert(CFraction(90)), CFraction(1, 4));
}

// ---- text ----

TEST(Conversion, WritesShortDecimalsInFull) {
    EXPECT_EQ(converted("98.6", "°F", "°C"), "37");
    EXPECT_EQ(converted("5", "g", "t"), "0.000005");
    EXPECT_EQ(converted("-40", "°C", "K"), "233.15");
    EXPECT_EQ(converted("-40", "°C", "°F"), "-40");
    EXPECT_EQ(converted("0.1", "km", "m"), "100");
    EXPECT_EQ(converted("1", "in", "cm"), "2.54");
    EXPECT_EQ(converted("-0", "km", "m"), "0");
    EXPECT_EQ(converted("32", "°F", "°C"), "0");
}

TEST(Conversion, WritesTheNearestDoubleOfAnEndlessDecimal) {
    EXPECT_EQ(converted("1", "m", "ft"), "3.2808398950131235");
    EXPECT_EQ(converted("1", "rad", "°"), "57.29577951308232");
    EXPECT_EQ(converted("90", "°", "rad"), "1.5707963267948966");
    EXPECT_EQ(converted("1", "°F", "°C"), "-17.22222222222222");
    EXPECT_EQ(converted("7", "m^(1/2)", "km^(1/2)"), "0.22135943621178655");
    // 17 digits are written in full. For 18 digits the nearest double is written.
    EXPECT_EQ(converted("12345678901234567", "m", "km"), "12345678901234.567");
    EXPECT_EQ(converted("123456789012345678", "m", "km"), "123456789012345.67");
    EXPECT_EQ(converted("1e400", "m", "km"), "1e397");
}

TEST(Conversion, ConvertsDecimalsToDecimalsWithoutError) {
    // n/10 in one unit is n·Factor + Offset in the other unit, in units of 10^-Places.
    struct Case {
        const char* From;
        const char* To;
        long long Factor;
        long long Offset;
        std::size_t Places;
    };
    const Case list[] = {
        {"km", "m", 100000, 0, 3},    {"m", "km", 100, 0, 6},
        {"g", "t", 1, 0, 7},          {"in", "cm", 254, 0, 3},
        {"°C", "K", 10, 27315, 2},    {"K", "°C", 10, -27315, 2},
        {"bar", "Pa", 1000000, 0, 2}, {"kWh", "MJ", 36, 0, 2},
        {"h", "s", 36000, 0, 2},      {"min", "s", 600, 0, 2},
        {"lb", "kg", 45359237, 0, 9}, {"mi", "km", 1609344, 0, 7},
        {"mph", "m/s", 44704, 0, 6},  {"psi", "kPa", 689476, 0, 6},
        {"°C", "°F", 18, 3200, 2},    {"l/min", "l/h", 600, 0, 2},
        {"%", "1", 1, 0, 3},          {"ha", "m²", 100000, 0, 2},
        {"l", "m³", 1, 0, 4},         {"gal_US", "l", 3785411784, 0, 10},
    };
    CDecimalStyle plain;
    plain.Notation = eNotation::PLAIN;
    for (const Case& one : list) {
        const CConversion conversion = between(one.From, one.To);
        for (long n = -999; n <= 999; ++n) {
            const std::string number = (n < 0 ? "-" : "") + std::to_string(std::abs(n) / 10) + "." +
                                       std::to_string(std::abs(n) % 10);
            const long long result = n * one.Factor + one.Offset;
            std::string digits = std::to_string(std::llabs(result));
            if (digits.size() <= one.Places) {
                digits.insert(0, one.Places + 1 - digits.size(), '0');
            }
            digits.insert(digits.size() - one.Places, ".");
            digits.erase(digits.find_last_not_of('0') + 1);
            if (digits.back() == '.') {
                digits.pop_back();
            }
            ASSERT_EQ(conversion.convertText(number, plain), (result < 0 ? "-" : "") + digits)
                << number << " " << one.From << " to " << one.To;
        }
    }
}

TEST(Conversion, WritesInEachNotation) {
    CDecimalStyle style;
    style.Notation = eNotation::SCIENTIFIC;
    EXPECT_EQ(styled("12345", "m", "km", style), "1.2345e1");
    EXPECT_EQ(styled("1", "km", "m", style), "1e3");
    EXPECT_EQ(styled("5", "m", "m", style), "5");
    style.Notation = eNotation::ENGINEERING;
    EXPECT_EQ(styled("12345", "m", "km", style), "12.345");
    EXPECT_EQ(styled("0.00001", "m", "m", style), "10e-6");
    EXPECT_EQ(styled("123456789", "m", "m", style), "123.456789e6");
    EXPECT_EQ(styled("-0.5", "m", "m", style), "-500e-3");
    EXPECT_EQ(styled("0", "m", "m", style), "0");
    style.Notation = eNotation::PLAIN;
    EXPECT_EQ(styled("1e-20", "m", "m", style), "0.00000000000000000001");
    EXPECT_EQ(styled("1e25", "m", "m", style), "10000000000000000000000000");
    style.DecimalComma = true;
    EXPECT_EQ(styled("2.5", "m", "km", style), "0,0025");
    style.Notation = eNotation::SCIENTIFIC;
    EXPECT_EQ(styled("2.5", "m", "km", style), "2,5e-3");
}

TEST(Conversion, WritesAnExponentForVerySmallAndVeryLargeNumbers) {
    EXPECT_EQ(converted("0.000001", "m", "m"), "0.000001");
    EXPECT_EQ(converted("0.00000099", "m", "m"), "9.9e-7");
    EXPECT_EQ(converted("123456789012345670000", "m", "m"), "123456789012345670000");
    EXPECT_EQ(converted("1e21", "m", "m"), "1e21");
}

TEST(Conversion, RoundsToTheGivenNumberOfDigits) {
    CDecimalStyle style;
    style.Digits = 3;
    EXPECT_EQ(styled("1", "m", "ft", style), "3.28");
    EXPECT_EQ(styled("98.6", "°F", "°C", style), "37");
    EXPECT_EQ(styled("1.235", "m", "m", style), "1.24");
    EXPECT_EQ(styled("1.245", "m", "m", style), "1.24");
    EXPECT_EQ(styled("1.2450000000000000000000000001", "m", "m", style), "1.25");
    EXPECT_EQ(styled("-999.5", "m", "m", style), "-1000");
    EXPECT_EQ(styled("9.996", "m", "m", style), "10");
    EXPECT_EQ(styled("0", "m", "m", style), "0");
    EXPECT_EQ(styled("1e400", "m", "mi", style), "6.21e396");
    EXPECT_EQ(styled("1e-400", "m", "mi", style), "6.21e-404");
    style.Digits = 1;
    EXPECT_EQ(styled("0.25", "m", "m", style), "0.2");
    EXPECT_EQ(styled("95", "m", "m", style), "100");
    EXPECT_EQ(styled("0.00000095", "m", "m", style), "0.000001");
    style.Digits = 50;
    EXPECT_EQ(styled("1", "π rad", "rad", style),
              "3.1415926535897932384626433832795028841971693993751");
    EXPECT_EQ(styled("1", "m", "3 m", style),
              "0.33333333333333333333333333333333333333333333333333");
    EXPECT_EQ(styled("2", "m^(1/2)", "2^(1/2)·m^(1/2)", style),
              "1.4142135623730950488016887242096980785696718753769");
    expectError(
        eError::OPTIONS,
        [&] {
            style.Digits = 51;
            styled("1", "m", "m", style);
        },
        "the number of digits is 51, not 0 to 50");
    expectError(eError::OPTIONS, [&] {
        style.Digits = -1;
        styled("1", "m", "m", style);
    });
}

// The texts are 1.5/π cut off after many digits, and the next decimal number with as many digits.
TEST(Conversion, RoundsProductsWithPiThatAreNearlyTies) {
    CDecimalStyle style;
    style.Digits = 1;
    EXPECT_EQ(
        styled("0.47746482927568600730665129011754308610337893722136934624300203217669039290267960",
               "π rad", "rad", style),
        "1");
    EXPECT_EQ(
        styled("0.47746482927568600730665129011754308610337893722136934624300203217669039290267961",
               "π rad", "rad", style),
        "2");
    const std::string many =
        "0."
        "477464829275686007306651290117543086103378937221369346243002032176690392902679605270341408"
        "2987592578682185281";
    EXPECT_EQ(styled((many + "8").c_str(), "π rad", "rad", style), "1");
    EXPECT_EQ(styled((many + "9").c_str(), "π rad", "rad", style), "2");
}

TEST(Conversion, ConvertOnceGivesTheResultOfAConversion) {
    const CCatalogue catalogue = everything();
    const CFraction x = CFraction::ofText("-98.6");
    for (const auto& [from, to] : {std::pair{"km", "m"},
                                   {"ft", "mi"},
                                   {"°F", "°C"},
                                   {"°C", "°F"},
                                   {"°C", "K"},
                                   {"rad", "°"},
                                   {"°", "rad"},
                                   {"°", "′"},
                                   {"m^(1/2)", "km^(1/2)"}}) {
        const CMeaning a = catalogue.evaluate(from);
        const CMeaning b = catalogue.evaluate(to);
        EXPECT_EQ(CConversion::convertOnce(x, a, b), CConversion(a, b).convert(x))
            << from << " in " << to;
    }
    EXPECT_EQ(CConversion::convertOnce(0, catalogue.evaluate("°F"), catalogue.evaluate("°C")),
              CFraction(-160, 9));
    expectError(
        eError::DIFFERENT_DIMENSIONS,
        [&] { CConversion::convertOnce(1, catalogue.evaluate("m"), catalogue.evaluate("s")); },
        "cannot convert m to s: length and time");
}

TEST(Conversion, HasTheRightBitsOfPi) {
    Number pi(PiBits + 2);
    mpfr_const_pi(pi, MPFR_RNDD);
    mpz_class bits;
    EXPECT_EQ(mpfr_get_z_2exp(bits.get_mpz_t(), pi), -PiBits);
    mpz_class kept;
    mpz_import(kept.get_mpz_t(), std::size(PiWords), 1, sizeof PiWords[0], 0, 0, PiWords);
    EXPECT_EQ(kept, bits);
}

TEST(Conversion, RefusesNumbersThatItCannotConvert) {
    expectError(
        eError::BAD_NUMBER, [] { converted("98,6", "°F", "°C"); },
        "\"98,6\" is not a decimal number");
    expectError(
        eError::NUMBER_RANGE, [] { converted("1e400", "m", "mi"); },
        "the result is beyond the range of double; set a number of digits");
    expectError(eError::NUMBER_RANGE, [] { converted("1e-400", "m", "mi"); });
    expectError(eError::NUMBER_RANGE, [] { converted("1e-400", "°", "rad"); });
    expectError(eError::TOO_LARGE, [] { converted("1e30000", "m", "mi"); });
}

TEST(Conversion, ConvertingDifferencesIgnoresOffsets) {
    const CCatalogue catalogue = CCatalogue::builtIn().with(ePack::OFFSETS);
    const CMeaning celsius = *catalogue.meaning("°C");
    const CMeaning fahrenheit = *catalogue.meaning("°F");
    const auto conversion = CConversion::ofDifferences(celsius, fahrenheit);
    EXPECT_EQ(conversion.convertText("10"), "18");
    EXPECT_EQ(conversion.inverse().convert(-9.0), -5.0);
    EXPECT_EQ(conversion.offset(), "0");
    EXPECT_EQ(CConversion::ofDifferences(celsius, *catalogue.meaning("K")).convert(10.0), 10.0);
    EXPECT_EQ(
        CConversion::ofDifferences(*catalogue.meaning("km"), *catalogue.meaning("m")).factor(),
        "1000");
    expectError(eError::DIFFERENT_DIMENSIONS,
                [&] { CConversion::ofDifferences(celsius, *catalogue.meaning("m")); });
}

TEST(Conversion, WritesConvertedFractions) {
    const auto conversion = CConversion::between("km", "m");
    EXPECT_EQ(conversion.convertText(CFraction(1, 8)), "125");
    EXPECT_EQ(conversion.convertText(CFraction(1, 3000)), "0.3333333333333333");
}

}  // namespace
}  // namespace mensor::exact
