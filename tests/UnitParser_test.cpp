// UnitParser_test.cpp: which units texts denote.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"
#include "support/Notation.h"
#include "support/outcome.h"
#include "support/thorough.h"

namespace mensor {
namespace {

std::string ascii(const CUnitPtr& unit) {
    return text(CASCIIUnitFormat::instance()->format(unit, string_t()));
}

// The unit, or the class and message of the exception.
std::pair<CUnitPtr, std::string> parsed(const std::string& text) {
    CUnitPtr unit;
    std::string outcome = outcomeOf([&] { unit = CUnitFormat::parseUnit(text); });
    return {unit, outcome};
}

// Resolves the escapes of parser.tsv.
std::string unescaped(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
            continue;
        }
        const char escape = text.at(++i);
        if (escape == 'x') {
            result += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            result += escape == 't' ? '\t' : escape;
        }
    }
    return result;
}

TEST(UnitParser, ReadsEveryTextOfTheTable) {
    std::ifstream file(MENSOR_TEST_DATA "/parser.tsv");
    ASSERT_TRUE(file.is_open());
    std::string line;
    int rows = 0;
    for (int number = 1; std::getline(file, line); ++number) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        SCOPED_TRACE("parser.tsv:" + std::to_string(number) + ": " + line);
        ++rows;
        const std::size_t first = line.find('\t');
        const std::size_t second = line.find('\t', first + 1);
        ASSERT_NE(second, std::string::npos);
        ASSERT_TRUE(first > 1 && line[0] == '"' && line[first - 1] == '"');
        const std::string source = unescaped(line.substr(1, first - 2));
        const std::string kind = line.substr(first + 1, second - first - 1);
        const std::string result = line.substr(second + 1);

        const auto [unit, outcome] = parsed(source);
        if (kind != "unit") {
            EXPECT_EQ(outcome,
                      kind + ": " +
                          (result.find("\\x") == std::string::npos ? result : unescaped(result)));
            continue;
        }
        ASSERT_EQ(outcome, "returned");
        EXPECT_EQ(ascii(unit), result);
        EXPECT_EQ(CUnit::fromString(source), unit);
        if (unit != CProductUnit::one()) {  // its symbol "One" does not read as it
            EXPECT_EQ(CUnit::fromString(ascii(unit)), unit);
            EXPECT_EQ(CUnit::fromString(unit->toString()), unit) << unit->toStdString();
        }
    }
    EXPECT_GT(rows, 180);
}

TEST(UnitParser, ReturnsTheUnitItselfForASingleName) {
    EXPECT_EQ(CUnit::fromString("m"), SI::Meter());
    EXPECT_EQ(CUnit::fromString("km"), SI::Kilo(SI::Meter()));
    EXPECT_EQ(CUnit::fromString("N"), SI::Newton());
    EXPECT_EQ(CUnit::fromString(""), CProductUnit::one());
    EXPECT_EQ(CUnit::fromString("m^2/3"), CProductUnit::one());
    EXPECT_EQ(CUnit::fromString("km/h"), SI::Kilo(SI::Meter())->divide(CUnitFormat::unitFor("h")));
}

TEST(UnitParser, FindsNamesInBrackets) {
    CUnitFormat::alias(SI::Meter(), "[m]");
    CUnitFormat::alias(SI::Second(), "[a b/c^2]");
    CUnitFormat::alias(SI::Ampere(), "[a[b]]");
    EXPECT_EQ(ascii(CUnit::fromString("[m]2/[a b/c^2] [a[b]]")), "m^2 s^-1 A^-1");
    EXPECT_EQ(CUnit::fromString("[m]s"), SI::Meter() * SI::Second());
    EXPECT_EQ(CUnit::fromString("s2[m]"), CUnit::fromString("s^2·m"));
    EXPECT_EQ(CUnit::fromString("[m][m]"), SI::Meter()->pow(2));
}

TEST(UnitParser, FollowsChangesOfLabels) {
    const CUnitPtr mile = SI::Meter() * 1609.344;
    EXPECT_EQ(parsed("mi").second, "std::invalid_argument: Label: mi not recognized");
    CUnitFormat::label(mile, "mi");
    EXPECT_EQ(parsed("mi").first, mile);
    CUnitFormat::label(mile, "mile");
    EXPECT_EQ(parsed("mi").second, "std::invalid_argument: Label: mi not recognized");
}

// The characters that end a name, as docs/notation.md lists them.
TEST(UnitParser, NamesContainAllCharactersExceptTheListedOnes) {
    for (char32_t c = 0; c <= 0x110000; ++c) {
        const bool isListed = c <= 0x22 || (c >= 0x26 && c <= 0x3F) || c == 0x5E || c == 0xB2 ||
                              c == 0xB3 || c == 0xB7 || c == 0xB9;
        ASSERT_EQ(CUnitFormat::isUnitIdentifierPart(c), !isListed) << static_cast<unsigned>(c);
    }
    EXPECT_TRUE(CUnitFormat::isUnitIdentifierPart(0x7FFFFFFF));
}

TEST(UnitParser, ExponentsContainDigitsTheMinusAndThreeSuperscripts) {
    const std::set<char32_t> listed = {U'0', U'1', U'2', U'3', U'4', U'5', U'6',
                                       U'7', U'8', U'9', U'-', U'¹', U'²', U'³'};
    for (char32_t c = 0; c <= 0x110000; ++c) {
        ASSERT_EQ(CUnitFormat::isExponent(c), listed.count(c) == 1) << static_cast<unsigned>(c);
    }
    EXPECT_FALSE(CUnitFormat::isExponent(0x7FFFFFFF));
}

TEST(UnitParser, ParsesExponentsDigitByDigitWithoutValidation) {
    const std::vector<std::pair<std::string, int>> rows = {
        {"", 1},
        {"0", 0},
        {"1", 1},
        {"12", 12},
        {"¹²", 12},
        {"1²", 12},
        {"¹²³", 123},
        {"007", 7},
        {"-", 0},
        {"-5", -5},
        {"2-", -2},
        {"-2-3", -23},
        {"--3", -3},
        {"³-²", -32},
        {"+5", 5},
        {"5+", 5},
        {"+", 0},
        {"-+1", -1},
        {"a", 49},
        {"1a", 59},
        {"/", -1},
        {"-/", 1},
        {" ", -16},
        {"°", 128},
        {"Ω", 8438},
        {"2147483647", 2147483647},
        {"-2147483647", -2147483647},
        {"./,),'7*,)", -2147483647},
        {std::string(100000, '0') + "2", 2},
    };
    for (const auto& [digits, value] : rows) {
        EXPECT_EQ(CUnitFormat::parseExponent(digits), value) << digits.substr(0, 20);
    }
}

TEST(UnitParser, RefusesExponentsThatDoNotFitAnInt) {
    for (const std::string digits : {"2147483648", "-2147483648", "21474836470", "¹2147483647",
                                     "-99999999999999999999999", "2147483648-", "./,),'7*,("}) {
        EXPECT_EQ(outcomeOf([&] { CUnitFormat::parseExponent(digits); }),
                  "std::out_of_range: Exponent " + digits + " is out of range");
    }
}

TEST(UnitParser, DoesNotCacheHugePowers) {
    const CUnitPtr huge = CUnit::fromString("m^2000000000");
    EXPECT_EQ(CUnit::fromString("m^2000000000"), huge);
    EXPECT_THAT(huge, PrintsAs("m^2000000000"));
    EXPECT_EQ(CUnit::fromString("m^1:2000000000"), SI::Meter()->root(2000000000));
    EXPECT_EQ(CUnit::fromString("m^2000000000:1000000000"), SI::Meter()->pow(2));
    EXPECT_LE(Inside::powLookUp(SI::Meter()).size(), 4096U);
    EXPECT_LE(Inside::rootLookUp(SI::Meter()).size(), 4096U);
}

// Time and memory are proportional to the length, and the stack does not grow.
TEST(UnitParser, ReadsTextsOfAMillionCharacters) {
    constexpr std::size_t million = 1000000;
    const std::string opening(million, '[');
    const std::string closing(million, ']');
    EXPECT_EQ(parsed(opening).first, CProductUnit::one());
    EXPECT_EQ(parsed("m " + opening).first, SI::Meter());
    EXPECT_EQ(parsed(opening + closing).second,
              "std::invalid_argument: Label: " + opening + closing + " not recognized");
    EXPECT_EQ(parsed(opening + closing + ']').second,
              "std::invalid_argument: Label: " + opening + closing + " not recognized");
    EXPECT_EQ(parsed(opening + closing.substr(1)).first, CProductUnit::one());
    EXPECT_EQ(parsed("m" + opening).second,
              "std::invalid_argument: Label: m" + opening + " not recognized");
    for (const char c : {'/', '<', '&', ' ', '(', '0'}) {
        EXPECT_EQ(parsed(std::string(million, c)).first, CProductUnit::one()) << c;
    }
    EXPECT_EQ(parsed('m' + std::string(million, '/') + 's').first, SI::Meter() / SI::Second());
    const std::string ones(million, '1');
    EXPECT_EQ(parsed("m" + ones).second,
              "std::out_of_range: Exponent " + ones + " is out of range");
    std::string middots;
    for (std::size_t i = 0; i < million; ++i) {
        middots += "·";
    }
    EXPECT_EQ(parsed("m" + middots + "s").first, SI::Meter() * SI::Second());
}

TEST(UnitParser, ReadsANulAsASeparator) {
    EXPECT_EQ(CUnit::fromString(std::string("m\0s", 3)), SI::Meter() * SI::Second());
    EXPECT_EQ(CUnit::fromString(std::string("m\0", 2) + "2"), SI::Meter()->pow(2));
}

// Bytes that begin no character, or an incomplete one, alone and with others, give a unit or the
// documented exception, which quotes them.
TEST(UnitParser, ReadsOrRefusesBytesThatAreNotUtf8) {
    int units = 0;
    for (int first = 0x80; first < 0x100; ++first) {
        for (const int second : {0x20, 0x2D, 0x2F, 0x32, 0x3C, 0x5B, 0x5D, 0x6D, 0x80, 0xAF,
                                 0xB2, 0xB7, 0xBF, 0xC2, 0xE2, 0xF0, 0xF8, 0xFC, 0xFE, 0xFF}) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
            for (const std::string& text : {bytes, "m" + bytes, bytes + "m", "[" + bytes}) {
                const auto [unit, outcome] = parsed(text);
                if (unit) {
                    ++units;
                    continue;
                }
                const std::string start = "std::invalid_argument: Label: ";
                const std::string end = " not recognized";
                ASSERT_EQ(outcome.substr(0, start.size()), start) << first << ", " << second;
                ASSERT_EQ(outcome.substr(outcome.size() - end.size()), end);
                const std::string name =
                    outcome.substr(start.size(), outcome.size() - start.size() - end.size());
                ASSERT_NE(text.find(name), std::string::npos) << first << ", " << second;
            }
        }
    }
    EXPECT_GE(units, 0x80 * 20) << "an open bracket includes all that follows";
}

std::string utf8(const std::u32string& text) {
    string_t result;
    for (const char32_t c : text) {
        result.push_back(c);
    }
    return toStdString(result);
}

// The first product has the hash code of cd², so it is cd², and further products have its
// exponents.
TEST(UnitParser, RegistersNothingIfEqualHashCodesLeadToExponentsOutOfRange) {
    const CUnitPtr first = CUnit::fromString("cd^1400000002:2100000001");
    EXPECT_EQ(SI::Candela()->pow(2), first);
    const std::size_t before = CUnit::instances().size();
    const auto [unit, outcome] = parsed("cd^2 cd^1:2 s^1:5");
    EXPECT_EQ(outcome, "std::overflow_error: Exponent 4900000005 is out of range");
    EXPECT_EQ(CUnit::instances().size(), before);
}

TEST(UnitParser, RegistersNothingIfSmallExponentsLeadOutOfRange) {
    CUnitFormat::label(CUnit::fromString("m^2000000000"), "huge");
    CUnit::fromString("cd^1400000002:2100000001");
    EXPECT_EQ(parsed("s·huge·huge").second,
              "std::overflow_error: Exponent 4000000000 is out of range");
    const std::size_t before = CUnit::instances().size();
    EXPECT_EQ(parsed("K·huge·huge").second,
              "std::overflow_error: Exponent 4000000000 is out of range");
    EXPECT_EQ(parsed("K^7 cd^2 cd^3").second,
              "std::overflow_error: Exponent 7700000005 is out of range");
    EXPECT_EQ(CUnit::instances().size(), before);
}

TEST(UnitParser, ReadsEveryShortTextLikeAnIndependentReader) {
    CUnitFormat::alias(SI::Ampere(), "[m]");
    CUnitFormat::alias(SI::Kelvin(), "m[");
    // At least one character of each class that the parser distinguishes.
    const std::u32string alphabet = U"ms[]20-²<>&;/·";
    int units = 0;
    int unknownNames = 0;
    int zeroRoots = 0;
    int failures = 0;
    const auto check = [&](const std::u32string& codePoints) {
        const std::string source = utf8(codePoints);
        const test::Asked asked = test::askedBy(source);
        const CUnitPtr expectedUnit = asked.Refusal.empty() ? asked.unit() : nullptr;
        const std::string expected = expectedUnit ? "returned" : asked.Refusal;
        const auto [unit, outcome] = parsed(source);
        if (unit != expectedUnit || outcome != expected) {
            ++failures;
            ADD_FAILURE() << '"' << source << "\": " << outcome << " instead of " << expected
                          << (unit ? ", " + ascii(unit) : "")
                          << (expectedUnit ? " instead of " + ascii(expectedUnit) : "");
        }
        ++(expectedUnit                                 ? units
           : expected.find("zero") != std::string::npos ? zeroRoots
                                                        : unknownNames);
    };

    // On a slow platform one of nine texts of four characters.
    const std::size_t size = alphabet.size();
    for (std::size_t length = 0, count = 1; length <= 4; ++length, count *= size) {
        const std::size_t step = length == 4 ? test::casesOf<std::size_t>(1, 9) : 1;
        for (std::size_t number = 0; number < count && failures < 10; number += step) {
            std::u32string codePoints;
            for (std::size_t rest = number; codePoints.size() < length; rest /= size) {
                codePoints += alphabet[rest % size];
            }
            check(codePoints);
        }
    }
    // A sample of longer texts, which combine all states.
    const int rounds = test::casesOf(20000, 5000);
    std::uint32_t state = 271828;
    for (int round = 0; round < rounds && failures < 10; ++round) {
        std::u32string codePoints;
        for (int i = 0; i < 9; ++i) {
            state = state * 1664525U + 1013904223U;
            codePoints += alphabet[(state >> 16) % size];
        }
        check(codePoints);
    }
    // All three outcomes must be frequent, or the comparison shows little.
    const int least = test::casesOf(10000, 2000);
    EXPECT_GT(units, least);
    EXPECT_GT(unknownNames, least);
    EXPECT_GT(zeroRoots, least / 500);
}

}  // namespace
}  // namespace mensor
