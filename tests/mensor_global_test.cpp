// mensor_global_test.cpp: the bytes of texts, the hash codes of symbols, and the prefixes.
#include "mensor/mensor_global.h"

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mensor/BaseUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "support/Matchers.h"

namespace mensor {
namespace {

constexpr int Largest = std::numeric_limits<int>::max();

std::string nuls(std::size_t count) { return std::string(count, '\0'); }

// A text of code points below 128, including control characters and NUL.
std::string ascii(std::initializer_list<char> codePoints) { return std::string(codePoints); }

// ---- toStdString

TEST(ToStdString, CopiesAllBytes) {
    EXPECT_EQ(toStdString("µm"), "\xC2\xB5\x6D");
    EXPECT_EQ(toStdString("m²").size(), 3U);
    EXPECT_EQ(toStdString("\xE2\x84\xA6"), "\xE2\x84\xA6");
    EXPECT_EQ(toStdString(string_t()), "");
}

TEST(ToStdString, KeepsNulsAndMalformedBytes) {
    for (const std::string& bytes :
         {std::string("k\0m", 3), nuls(4), std::string("m\xE2\x84"), std::string("\x80\xFF m")}) {
        EXPECT_EQ(toStdString(string_t(bytes)), bytes);
    }
}

// ---- hashFromString

struct Hash {
    std::string Text;
    int Expected;
};

// These texts are so short that the sum fits an int.
TEST(HashFromString, IsTheSumOfCodePointsTimesPowersOf31) {
    const Hash table[] = {
        {"", 0},      {"m", 109},      {"kg", 107 * 31 + 103}, {"mol", 109 * 961 + 111 * 31 + 108},
        {"cd", 3169}, {"rad", 112661}, {"zzzzz", 116425210},   {"AAAAAA", 1922924640},
    };
    for (const Hash& row : table) {
        EXPECT_EQ(hashFromString(row.Text), row.Expected) << row.Text;
    }
}

TEST(HashFromString, UsesCodePointsNotBytes) {
    EXPECT_EQ(hashFromString("°"), 176);
    EXPECT_EQ(hashFromString("µm"), 181 * 31 + 109);
    EXPECT_EQ(hashFromString("\xE2\x84\xA6"), 0x2126) << "ohm sign";
    EXPECT_EQ(hashFromString("€"), 8364);
    EXPECT_EQ(hashFromString("\xF0\x9F\x98\x80"), 128512) << "four bytes";
}

TEST(HashFromString, DependsOnTheOrderOfTheCodePoints) {
    EXPECT_NE(hashFromString("gk"), hashFromString("kg"));
}

// 75·31⁵ + 9·31³ + 30·31² + 12·31 + 1 is the largest int.
TEST(HashFromString, EndsAtTheLargestInt) {
    EXPECT_EQ(hashFromString(ascii({75, 0, 9, 30, 12, 0})), Largest - 1);
    EXPECT_EQ(hashFromString(ascii({75, 0, 9, 30, 12, 1})), Largest);
    EXPECT_EQ(hashFromString(ascii({75, 0, 9, 30, 12, 2})), Largest);
    EXPECT_EQ(hashFromString(ascii({75, 0, 9, 30, 13, 0})), Largest);
    EXPECT_EQ(hashFromString(ascii({2, 0, 0, 0, 0, 0, 0})), 2 * 887503681) << "seven code points";
    EXPECT_EQ(hashFromString(ascii({3, 0, 0, 0, 0, 0, 0})), Largest);
    EXPECT_EQ(hashFromString("Laaaaa"), Largest) << "six code points from L on";
}

TEST(HashFromString, EightCodePointsThatDoNotBeginWithNulHaveTheLargestIntAsHash) {
    for (const char* symbol : {"abcdefgh", "ABCDEFGH", "zzzzzzzz", "µ°²³·′″m",
                               "\x01\x01\x01\x01"
                               "\x01\x01\x01\x01",
                               "year_calendar"}) {
        EXPECT_EQ(hashFromString(symbol), Largest) << symbol;
    }
    EXPECT_EQ(hashFromString(ascii({1}) + nuls(7)), Largest);
}

TEST(HashFromString, StaysAtTheLargestInt) {
    EXPECT_EQ(hashFromString("mmmmmmm" + nuls(1)), Largest);
    EXPECT_EQ(hashFromString("m" + nuls(200)), Largest);
}

TEST(HashFromString, ReadsANulAsTheCodePointZero) {
    EXPECT_EQ(hashFromString(nuls(1)), 0);
    EXPECT_EQ(hashFromString(nuls(10) + "m"), 109) << "leading zeros add nothing";
    EXPECT_EQ(hashFromString("k" + nuls(1) + "m"), 107 * 961 + 109)
        << "the text does not end at a NUL";
    EXPECT_EQ(hashFromString("m" + nuls(1)), 109 * 31);
}

// 31²⁰⁷ is the first power that is infinite, and zero times infinity is NaN.
TEST(HashFromString, IsZeroAfterANulTimesAnInfinitePower) {
    EXPECT_EQ(hashFromString("m" + nuls(207)), Largest) << "the first NUL is multiplied by 31^206";
    EXPECT_EQ(hashFromString("m" + nuls(208)), 0) << "the first NUL is multiplied by 31^207";
    EXPECT_EQ(hashFromString("m" + nuls(300)), 0);
    EXPECT_EQ(hashFromString("m" + nuls(300) + "kg"), 3420);
    EXPECT_EQ(hashFromString(nuls(300)), 0);
    EXPECT_EQ(hashFromString(nuls(300) + "kg"), 3420);
    EXPECT_EQ(hashFromString(nuls(300) + "m" + nuls(200)), Largest);
}

TEST(HashFromString, AVeryLongTextHasTheLargestIntAsHash) {
    EXPECT_EQ(hashFromString(std::string(10000, 'm')), Largest);
}

TEST(HashFromString, UsesTheRawByteOfAnIncompleteSequence) {
    EXPECT_EQ(hashFromString("\xC2"), 0xC2);
    EXPECT_EQ(hashFromString("m\xC2"), 109 * 31 + 0xC2);
    EXPECT_EQ(hashFromString("\xE2\x84"), 0xE2 * 31 + 0x84);
    EXPECT_EQ(hashFromString("m\xE2"), 109 * 31 + 0xE2);
    EXPECT_EQ(hashFromString("\xF0\x9F\x98"), (0xF0 * 31 + 0x9F) * 31 + 0x98);
    EXPECT_EQ(hashFromString(std::string("\xC2\0", 2)), 0x80) << "the NUL is within the text";
}

TEST(HashFromString, UsesTheLowSixBitsOfEachFurtherByte) {
    EXPECT_EQ(hashFromString("\xC2m"), (0x02 << 6) + ('m' & 0x3F));
    EXPECT_EQ(hashFromString("\xE2\xC2\xB5"), (0x02 << 12) + (0x02 << 6) + 0x35);
}

// ---- prefixes

struct PrefixRow {
    ePrefix Prefix;
    int Value;
    const char* Symbol;
    double Factor;
    std::uint64_t Bits;  // of the double nearest to the power of ten, computed elsewhere
    CUnitPtr (*Scale)(CUnitPtr unit);
};

const PrefixRow Rows[] = {
    {YOTTA, 0, "Y", 1e24, 0x44ea784379d99db4, SI::Yotta},
    {ZETTA, 1, "Z", 1e21, 0x444b1ae4d6e2ef50, SI::Zetta},
    {EXA, 2, "E", 1e18, 0x43abc16d674ec800, SI::Exa},
    {PETA, 3, "P", 1e15, 0x430c6bf526340000, SI::Peta},
    {TERA, 4, "T", 1e12, 0x426d1a94a2000000, SI::Tera},
    {GIGA, 5, "G", 1e9, 0x41cdcd6500000000, SI::Giga},
    {MEGA, 6, "M", 1e6, 0x412e848000000000, SI::Mega},
    {KILO, 7, "k", 1000, 0x408f400000000000, SI::Kilo},
    {HECTO, 8, "h", 100, 0x4059000000000000, SI::Hecto},
    {DECA, 9, "da", 10, 0x4024000000000000, SI::Deka},
    {DECI, 10, "d", 0.1, 0x3fb999999999999a, SI::Deci},
    {CENTI, 11, "c", 0.01, 0x3f847ae147ae147b, SI::Centi},
    {MILLI, 12, "m", 0.001, 0x3f50624dd2f1a9fc, SI::Milli},
    {MICRO, 13, "\xC2\xB5", 1e-6, 0x3eb0c6f7a0b5ed8d, SI::Micro},
    {NANO, 14, "n", 1e-9, 0x3e112e0be826d695, SI::Nano},
    {PICO, 15, "p", 1e-12, 0x3d719799812dea11, SI::Pico},
    {FEMTO, 16, "f", 1e-15, 0x3cd203af9ee75616, SI::Femto},
    {ATTO, 17, "a", 1e-18, 0x3c32725dd1d243ac, SI::Atto},
    {ZEPTO, 18, "z", 1e-21, 0x3b92e3b40a0e9b4f, SI::Zepto},
    {YOCTO, 19, "y", 1e-24, 0x3af357c299a88ea7, SI::Yocto},
};

TEST(Prefixes, AreTheTwentyOfTheSIWithTheLargestFirst) {
    ASSERT_EQ(prefixes().size(), 20U);
    for (const PrefixRow& row : Rows) {
        SCOPED_TRACE(row.Symbol);
        EXPECT_EQ(static_cast<int>(row.Prefix), row.Value);
        const CPrefix& record = prefixes()[static_cast<std::size_t>(row.Value)];
        EXPECT_EQ(text(record.Symbol), row.Symbol);
        EXPECT_EQ(bitsOf(record.Factor), row.Bits) << exactly(record.Factor);
        EXPECT_THAT(record.Factor, HasBitsOf(row.Factor));
    }
}

TEST(Prefixes, AreTheSameVectorAtEachCallAndPrefixReturnsARow) {
    EXPECT_EQ(&prefixes(), &prefixes());
    for (const PrefixRow& row : Rows) {
        EXPECT_EQ(&prefix(row.Prefix), &prefixes()[static_cast<std::size_t>(row.Value)]);
    }
    static_assert(std::is_same<decltype(prefixes()), const std::vector<CPrefix>&>::value, "");
    static_assert(std::is_same<decltype(prefix(KILO)), const CPrefix&>::value, "");
}

TEST(Prefixes, CanBeCopied) {
    CPrefix copy = prefix(KILO);
    copy.Factor = 2;
    copy.Symbol = "x";
    EXPECT_EQ(prefix(KILO).Factor, 1000);
    EXPECT_EQ(text(prefix(KILO).Symbol), "k");
    static_assert(sizeof(ePrefix) == sizeof(int), "");
}

TEST(Prefixes, MicroIsOneCodePointAndDecaIsTwo) {
    EXPECT_EQ(prefix(MICRO).Symbol.length(), 1U);
    EXPECT_EQ(prefix(MICRO).Symbol.size(), 2U);
    EXPECT_EQ(prefix(MICRO).Symbol[0], char_t{0xB5});
    for (const PrefixRow& row : Rows) {
        EXPECT_EQ(prefix(row.Prefix).Symbol.length(), row.Prefix == DECA ? 2U : 1U) << row.Symbol;
    }
}

// A new unit, since the multiples of the metre are registered already.
TEST(Prefixes, MultiplyAUnitByTheirFactorAndAttachNoLabel) {
    const CUnitPtr unit = CBaseUnit::getInstance(freshSymbol());
    for (const PrefixRow& row : Rows) {
        SCOPED_TRACE(row.Symbol);
        const CUnitPtr scaled = row.Scale(unit);
        ASSERT_TRUE(scaled);
        EXPECT_THAT(scaled, ConvertsTo(unit, 1.0, row.Factor));
        EXPECT_EQ(scaled, unit->multiply(row.Factor));
        EXPECT_EQ(text(CUnitFormat::labelFor(scaled)), "");
    }
}

TEST(Prefixes, AreThePrefixesInTheLabelsOfTheMetre) {
    for (const PrefixRow& row : Rows) {
        SCOPED_TRACE(row.Symbol);
        const CUnitPtr scaled = CUnitFormat::unitFor(string_t(std::string(row.Symbol) + "m"));
        ASSERT_TRUE(scaled);
        EXPECT_EQ(scaled, row.Scale(SI::Meter()));
        EXPECT_THAT(scaled, ConvertsTo(SI::Meter(), 1.0, row.Factor));
        EXPECT_THAT(scaled, PrintsAs(std::string(row.Symbol) + "m"));
    }
}

}  // namespace
}  // namespace mensor
