// HostileText_test.cpp: very long and odd texts are read or refused like short ones. They leave
// nothing in the heap except registered units, and need memory in proportion to their length. The
// tests count bytes, not time; tests/budget counts instructions.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mensor/BaseUnit.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"
#include "support/Utf8Texts.h"
#include "support/operator_new.h"
#include "support/outcome.h"
#include "support/thorough.h"
#include "support/threads.h"

namespace mensor {
namespace {

constexpr int Many = test::IsSlow ? 100000 : 1000000;

std::string repeated(const std::string& piece, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += piece;
    }
    return text;
}

// The bytes that remain in the heap after parsing `text`.
long keptBy(const std::string& text, CUnitPtr& unit) {
    const string_t whole = text;
    const long before = liveBytes;
    unit = CUnit::fromString(whole);
    return liveBytes - before;
}

// Each factor registers the product up to it. Its bytes do not depend on the number of units.
TEST(HostileText, LeavesOnlyTheProductsOfItsFactors) {
    constexpr int Factors = 5000;
    const struct {
        const char* What;
        std::string (*Factor)(int i);
    } rows[] = {
        {"one unit", [](int) -> std::string { return "pF·"; }},
        {"new powers", [](int i) { return "cd^" + std::to_string(i + 2) + '/'; }},
        {"new roots of one power",
         [](int i) { return "K^7:" + std::to_string(i % 4000 + 8) + '/'; }},
        {"large roots of new powers",
         [](int i) {
             return "mol^" + std::to_string(i + 4097) + ":4096" + (i % 2 == 0 ? "/" : "·");
         }},
    };
    for (const auto& [what, factor] : rows) {
        SCOPED_TRACE(what);
        std::string text;
        for (int i = 0; i < Factors; ++i) {
            text += factor(i);
        }
        const long before = liveBytes;
        outcomeOf([&] { CUnit::fromString(text); });  // exponents may be out of range
        EXPECT_LE(liveBytes - before, Factors * 2000L + 1000000);
    }
}

TEST(HostileText, ATextWithManyFactorsGivesTheProductOfTheAlgebra) {
    const auto own = CClientUnit::make("", 47110815);
    CUnitFormat::alias(own, "unregistered");
    const std::string piece = "m·kg^2/s^3·K^1:2·A^-1·mol^0/cd^2:-3·unregistered/pF^-1:-1/";
    CUnitPtr unit;
    keptBy(repeated(piece, 40), unit);
    const std::size_t registered = CUnit::instances().size();
    const CUnitPtr picofarad = CUnit::fromString("pF");

    CUnitPtr product = CProductUnit::one();
    for (int i = 0; i < 40; ++i) {
        const auto by = [&](const CUnitPtr& base, int pow, int root) {
            product = product->multiply(base->pow(pow)->root(root));
        };
        by(SI::Meter(), 1, 1);
        by(SI::Kilogram(), 2, 1);
        by(SI::Second(), -3, 1);
        by(SI::Kelvin(), -1, 2);
        by(SI::Ampere(), 1, 1);
        by(SI::Mole(), 0, 1);
        by(SI::Candela(), 2, -3);
        by(own, 1, 1);
        by(picofarad, 1, -1);
    }
    EXPECT_EQ(product, unit);
    EXPECT_EQ(CUnit::instances().size(), registered)
        << "the text has registered each of these products";
}

TEST(HostileText, TextsThatDifferInAnUnregisteredUnitAreOneUnitAsInTheAlgebra) {
    const CUnitPtr first = CClientUnit::make("", 47110816), other = CClientUnit::make("", 47110817);
    first->calculateHashCode();
    other->calculateHashCode();
    CUnitFormat::alias(first, "first");
    CUnitFormat::alias(other, "other");
    const std::string factors = repeated("m·s·", 40);
    const CUnitPtr product = CUnit::fromString(factors + "first");
    EXPECT_EQ(CUnit::fromString(factors + "other"), product);
    EXPECT_EQ(CUnit::fromString(factors)->multiply(other), product);
}

// The outcome of parsing `text`: the text of the unit, or the exception.
std::string endOf(const string_t& text) {
    std::string unit;
    const std::string outcome = outcomeOf([&] { unit = CUnit::fromString(text)->toStdString(); });
    return outcome == "returned" ? unit : outcome;
}

TEST(HostileText, NeedsLittleStackAndProportionalMemoryWhichItFrees) {
    const std::string opening(Many, '['), closing(Many, ']'), nines(1000, '9'), xs(Many, 'x'),
        nuls(Many, '\0');
    const auto unknown = [](const std::string& name) {
        return "std::invalid_argument: Label: " + name + " not recognized";
    };
    const auto tooLarge = [](const std::string& exponent) {
        return "std::out_of_range: Exponent " + exponent + " is out of range";
    };
    const std::vector<std::pair<std::string, std::string>> rows = {
        {opening, "One"},
        {opening + closing.substr(1), "One"},
        {opening + closing, unknown(opening + closing)},
        {"m" + repeated("<", Many), "m"},
        {"m" + repeated("<", Many) + ">s", "m·s"},
        {repeated("<i>", Many), "One"},
        {"m" + repeated("&", Many), "m"},
        {"m" + repeated("&", Many) + ";s", "m·s"},
        {repeated("&lt;", Many), "One"},
        {"m^" + nines, tooLarge(nines)},
        {"m^-" + nines + ":" + nines, tooLarge("-" + nines)},
        {"m^1:" + nines, tooLarge(nines)},
        {"m^" + std::string(1000, '0') + "1", "m"},
        {"m" + nuls + "/m", "One"},
        {"m" + nuls + "x/s", unknown("x")},
        {"m" + repeated("^0", Many), "std::invalid_argument: Root's order of zero"},
        {repeated("m^0 ", Many), "One"},
        {repeated("m/", Many), "One"},
        {"m·" + xs, unknown(xs)},
    };
    endOf("m·s");  // registers it
    const long before = liveBytes;
    runWithStack(256 * 1024, [&] {
        for (const auto& row : rows) {
            const auto& [text, end] = row;
            SCOPED_TRACE(text.substr(0, 20) + "... of " + std::to_string(text.size()) + " bytes");
            const string_t whole = text;
            const long held = liveBytes;
            peakBytes = held;
            const std::string found = endOf(whole);
            EXPECT_TRUE(found == end) << "the outcome is " << found.substr(0, 60);
            EXPECT_LE(peakBytes - held, 32 * static_cast<long>(text.size()) + 8192);
        }
    });
    EXPECT_LE(liveBytes - before, 4096);
}

TEST(HostileText, EachMalformedFormGivesAUnitOrAMessageWithTheName) {
    for (const test::Utf8Text& row : test::utf8Texts()) {
        SCOPED_TRACE(row.What);
        const std::string text = repeated(row.Bytes, 5000);
        CUnitPtr unit;
        const auto parse = [&] { unit = CUnit::fromString("m·" + text); };
        const std::string outcome = outcomeOf(parse);
        const long before = liveBytes;
        EXPECT_EQ(outcomeOf(parse), outcome);
        EXPECT_LE(liveBytes - before, 1024);
        if (!unit) {
            EXPECT_EQ(outcome.rfind("std::invalid_argument: Label: ", 0), 0U);
        }
    }
}

TEST(HostileText, ALongValueHasTheResultOfItsShortForms) {
    const std::string digits = repeated("7", Many);
    const long before = liveBytes;
    const struct {
        std::string Text, Outcome;
    } rows[] = {
        {digits + " m", "std::out_of_range: stod"},
        {"0." + digits + " m", "returned"},
        {"1e" + digits + " m", "std::out_of_range: stod"},
        {"1" + repeated(" ", Many), "returned"},
        {repeated(" ", Many), "std::invalid_argument: stod"},
        {"1 m " + digits, "returned"},
        {std::string("1\0 m", 4), "returned"},
        {std::string("1 \0m\0", 5), "returned"},
        {"1 m/" + repeated("&", Many), "returned"},
    };
    const long held = liveBytes - before;
    for (const auto& [text, outcome] : rows) {
        peakBytes = before + held;
        EXPECT_EQ(outcomeOf([text = &text] { CValueWithUnit::fromString(*text); }), outcome)
            << text.substr(0, 10);
        EXPECT_LE(peakBytes - before - held, 8 * static_cast<long>(text.size()) + 8192);
    }
    EXPECT_LE(liveBytes - before - held, 4096);
}

}  // namespace
}  // namespace mensor
