// Fraction_test.cpp: fractions of any size are exact, and toDouble() rounds once.
#include "mensor_exact/Fraction.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "exact/Judge.h"
#include "exact/expect_error.h"

namespace mensor::exact {
namespace {

CFraction text(const std::string& digits) { return CFraction::ofText(digits); }

// A fraction of the library and of GMP with the same value.
struct Both {
    CFraction Found;
    mpq_class Expected;
};

Both whole(const std::string& digits) { return {text(digits), mpq_class(mpz_class(digits))}; }

void expectSame(const Both& number, const std::string& what) {
    const CFraction numerator = text(mpz_class(number.Expected.get_num()).get_str());
    const CFraction denominator = text(mpz_class(number.Expected.get_den()).get_str());
    EXPECT_EQ(number.Found, numerator / denominator) << what;
    EXPECT_EQ(number.Found * denominator, numerator) << what;
    EXPECT_EQ(bitsOf(number.Found.toDouble()),
              bitsOf(nearest(number.Expected.get_num(), number.Expected.get_den(), 0)))
        << what;
}

TEST(Fraction, IsInLowestTerms) {
    EXPECT_EQ(CFraction(6, 4), CFraction(3, 2));
    EXPECT_EQ(CFraction(-6, 4), CFraction(3, -2));
    EXPECT_EQ(CFraction(0, -7), CFraction());
    EXPECT_EQ(CFraction(1000, 10), CFraction(100));
    EXPECT_FALSE(CFraction(0, -7).isNegative());
    EXPECT_TRUE(CFraction(3, -2).isNegative());
}

TEST(Fraction, EqualsOnlyTheSameNumber) {
    EXPECT_NE(CFraction(-3), CFraction(3));
    EXPECT_NE(CFraction(3, 7), CFraction(3, 5));
    const CFraction large = CFraction(7).power(40);
    EXPECT_EQ(large, CFraction(7).power(20) * CFraction(7).power(20));
    EXPECT_NE(large, -large);
    EXPECT_NE(large, large + CFraction(1));
    EXPECT_NE(large / CFraction(3), large / CFraction(5));
    EXPECT_NE(CFraction(1) / large, CFraction(1) / (large + CFraction(1)));
    EXPECT_NE(CFraction(0), large);
    EXPECT_NE(large, CFraction(0));
}

TEST(Fraction, AcceptsTheSmallestInteger) {
    const auto least = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(CFraction(least).toString(), "-9223372036854775808");
    EXPECT_EQ(CFraction(least, least), CFraction(1));
}

TEST(Fraction, IsWrittenAsAShortDecimalOrAsAQuotient) {
    EXPECT_EQ(CFraction(5, 9).toString(), "5/9");
    EXPECT_EQ(CFraction(-160, 9).toString(), "-160/9");
    EXPECT_EQ(CFraction(254, 10).toString(), "25.4");
    EXPECT_EQ(text("1e-24").toString(), "1e-24");
    EXPECT_EQ(CFraction().toString(), "0");
    EXPECT_EQ(text("12345678901234567").toString(), "12345678901234567");
    EXPECT_EQ(text("123456789012345678").toString(), "123456789012345678");
    EXPECT_EQ(text("1.2345678901234567").toString(), "1.2345678901234567");
    EXPECT_EQ(text("1.23456789012345678").toString(), "61728394506172839/50000000000000000");
    EXPECT_EQ((CFraction(1) / text("1e30") / CFraction(3)).toString(),
              "1/3000000000000000000000000000000");
}

TEST(Fraction, ReadsDecimals) {
    EXPECT_EQ(text("98.6"), CFraction(986, 10));
    EXPECT_EQ(text("+.5"), CFraction(1, 2));
    EXPECT_EQ(text("5."), CFraction(5));
    EXPECT_EQ(text("-1.25e+2"), CFraction(-125));
    EXPECT_EQ(text("1E-3"), CFraction(1, 1000));
    EXPECT_EQ(text("000.000"), CFraction());
    EXPECT_EQ(text("-0"), CFraction());
    EXPECT_EQ(text("0e99999999999999999999"), CFraction());
    EXPECT_EQ(text("18446744073709551615").toString(), "18446744073709551615");
    EXPECT_EQ(text("18446744073709551616").toString(), "18446744073709551616");
    EXPECT_EQ(text("123456789012345678901234567890").toString(), "123456789012345678901234567890");
}

TEST(Fraction, RefusesTextsThatAreNotDecimals) {
    for (const char* const bad :
         {"", "+", ".", "-.", "1.2.3", "1,5", " 1", "1 ", "e5", "1e", "1e+", "1e5.0", "0x10", "inf",
          "nan", "1_000", "\xC2\xBD", "--1", "1e1e1"}) {
        expectError(
            eError::BAD_NUMBER, [bad] { CFraction::ofText(bad); },
            "\"" + std::string(bad) + "\" is not a decimal number");
    }
}

TEST(Fraction, RefusesNumbersWithTooManyBits) {
    expectError(eError::TOO_LARGE, [] { text("1e30000"); });
    expectError(eError::TOO_LARGE, [] { text("1e-99999999999999999999"); });
    expectError(eError::TOO_LARGE, [] { text(std::string(30000, '9')); });
    expectError(eError::TOO_LARGE, [] { text("3").power(1000000); });
    expectError(eError::TOO_LARGE, [] { text("2").power(70000); });
    expectError(eError::TOO_LARGE, [] {
        const CFraction large = text("1e15000");
        (void)(large * large);
    });
    EXPECT_EQ(text("1e15000") / text("1e15000"), CFraction(1));
}

TEST(Fraction, RefusesDivisionByZero) {
    expectError(
        eError::DIVISION_BY_ZERO, [] { CFraction(1, 0); }, "a division by zero");
    expectError(eError::DIVISION_BY_ZERO, [] { (void)(CFraction(1) / CFraction()); });
    expectError(eError::DIVISION_BY_ZERO, [] { CFraction().power(-1); });
}

TEST(Fraction, TheFractionOfADoubleIsExact) {
    EXPECT_NE(CFraction::ofDouble(0.1), CFraction(1, 10));
    EXPECT_EQ(CFraction::ofDouble(0.1).toString(), "3602879701896397/36028797018963968");
    EXPECT_EQ(CFraction::ofDouble(-0.0), CFraction());
    EXPECT_FALSE(CFraction::ofDouble(-0.0).isNegative());
    for (const double x :
         {1.0, -1.5, 5e-324, 2.2250738585072014e-308, 1.7976931348623157e308, 0.1}) {
        EXPECT_EQ(CFraction::ofDouble(x).toDouble(), x);
    }
    const double infinity = std::numeric_limits<double>::infinity();
    expectError(eError::BAD_NUMBER, [=] { CFraction::ofDouble(infinity); });
    expectError(eError::BAD_NUMBER, [] { CFraction::ofDouble(std::nan("")); });
}

TEST(Fraction, RoundsToTheNearestDoubleTiesToEven) {
    EXPECT_EQ(text("9007199254740993").toDouble(), 9007199254740992.0);
    EXPECT_EQ(text("9007199254740995").toDouble(), 9007199254740996.0);
    EXPECT_EQ(text("9007199254740993.0000000001").toDouble(), 9007199254740994.0);
    EXPECT_EQ(text("1.7976931348623157e308").toDouble(), 1.7976931348623157e308);
    EXPECT_EQ(text("1e309").toDouble(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(text("-1e309").toDouble(), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(text("1e-400").toDouble(), 0.0);
    EXPECT_TRUE(std::signbit(text("-1e-400").toDouble()));
    // The limit of infinity is half a last place beyond the largest double. The limit of zero is half of the
    // smallest double.
    const CFraction largest = CFraction::ofDouble(std::numeric_limits<double>::max());
    const CFraction half = CFraction(2).power(970);
    EXPECT_EQ((largest + half).toDouble(), std::numeric_limits<double>::infinity());
    EXPECT_EQ((largest + half - CFraction(1)).toDouble(), std::numeric_limits<double>::max());
    const CFraction smallest = CFraction::ofDouble(5e-324);
    EXPECT_EQ((smallest / CFraction(2)).toDouble(), 0.0);
    EXPECT_EQ((smallest * CFraction(3) / CFraction(2)).toDouble(), 1e-323);
    EXPECT_EQ((smallest * CFraction(51, 100)).toDouble(), 5e-324);
}

TEST(Fraction, GivesTheResultsOfGmp) {
    std::mt19937_64 random(1);
    const auto any = [&random] {
        std::string digits = "7";
        for (auto i = random() % 45; i > 0; --i) {
            digits += static_cast<char>('0' + random() % (random() % 3 == 0 ? 1 : 10));
        }
        return whole((random() % 2 == 0 ? "-" : "") + digits);
    };
    for (int i = 0; i < 500; ++i) {
        const Both a = any();
        const Both b = any();
        const Both c = any();
        const Both quotient = {a.Found / b.Found, mpq_class(a.Expected / b.Expected)};
        expectSame(quotient, "a/b");
        expectSame({quotient.Found + c.Found / a.Found,
                    mpq_class(quotient.Expected + c.Expected / a.Expected)},
                   "a/b + c/a");
        expectSame({quotient.Found - c.Found, mpq_class(quotient.Expected - c.Expected)},
                   "a/b - c");
        expectSame({quotient.Found * c.Found, mpq_class(quotient.Expected * c.Expected)}, "a/b*c");
        const int times = static_cast<int>(random() % 5);
        mpq_class power = 1;
        for (int j = 0; j < times; ++j) {
            power *= quotient.Expected;
        }
        expectSame({quotient.Found.power(times), power}, "power");
        expectSame({quotient.Found.power(-times), mpq_class(1 / power)}, "negative power");
        EXPECT_EQ(quotient.Found - quotient.Found, CFraction());
    }
}

TEST(Fraction, SumsAreInLowestTerms) {
    EXPECT_EQ(text("1e200") + text("1e-200") - text("1e200"), text("1e-200"));
    EXPECT_EQ(text("0.1") + text("0.2"), text("0.3"));
    EXPECT_EQ(CFraction(1, 3) + CFraction(2, 3), CFraction(1));
    EXPECT_EQ(text("4294967296").power(3) * CFraction(1, 3) +
                  text("4294967296").power(3) * CFraction(2, 3),
              text("4294967296").power(3));
}

TEST(Fraction, CountsItsBits) {
    EXPECT_EQ(CFraction().bits(), 1U);
    EXPECT_EQ(CFraction(1).bits(), 2U);
    EXPECT_EQ(CFraction(255).bits(), 9U);
    EXPECT_EQ(CFraction(256).bits(), 10U);
    EXPECT_EQ(CFraction(5, 9).bits(), 7U);
    EXPECT_EQ(CFraction(1000).bits(), 11U);
    EXPECT_EQ(CFraction(1, 1000).bits(), 11U);
    EXPECT_EQ(text("1e4000").bits(), 13289U);
    EXPECT_TRUE(text("1e4000").needsMoreThan(13288));
    EXPECT_FALSE(text("1e4000").needsMoreThan(13289));
}

TEST(Fraction, CopiesOfALargeFractionShareItUntilTheLastOneIsGone) {
    const CFraction large = CFraction(3).power(500) / CFraction(7).power(300);
    CFraction copy = large;
    CFraction moved = std::move(copy);
    EXPECT_EQ(moved, large);
    copy = moved;
    copy = *&copy;
    EXPECT_EQ(copy, large);
    moved = CFraction(1);
    EXPECT_EQ(copy, large);
    EXPECT_EQ(moved, CFraction(1));
    copy = CFraction(2);
    EXPECT_EQ(large * CFraction(7).power(300), CFraction(3).power(500));
}

}  // namespace
}  // namespace mensor::exact
