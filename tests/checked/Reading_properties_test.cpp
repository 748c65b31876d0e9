// Reading_properties_test.cpp: each random text that is read has the meaning that Mathematics.h computes
// without the library. MENSOR_SEED is the seed of the random texts.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "mensor_checked/Meaning.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Values.h"
#include "support/Matchers.h"
#include "support/Mathematics.h"
#include "support/thorough.h"

namespace mensor {
namespace {

using checked::CReading;
using checked::tryReadUnit;
using test::areSame;
using test::calculated;
using test::measured;
using test::Quantity;

class Texts {
public:
    explicit Texts(std::uint32_t seed) : m_Random(seed) {
        for (const auto& [name, meaning] : test::everyName()) {
            m_Names.push_back(name);
        }
    }

    // Returns a text of the grammar.
    std::string expression(int depth) {
        std::string text = below(6) == 0 ? "1" : product(depth);
        if (text == "1" || below(2) == 0) {
            text += pick({"/", " / ", "\u2215", "÷", "\u2044"}) + factor(depth);
        }
        return text;
    }

    // Returns signs and names in random order. Most such texts are refused.
    std::string noise() {
        std::string text;
        for (std::size_t tokens = 1 + below(8); tokens > 0; --tokens) {
            text += below(2) == 0 ? name() : pick({"/", "·",  "*",   "**", "^", "(", ")",
                                                   "²", "⁻¹", "2",   "-1", ".", " ", ":",
                                                   "√", "1",  "0.5", "[",  "]", "+", "\u2212"});
        }
        return text;
    }

    std::size_t below(std::size_t n) { return m_Random() % n; }

private:
    std::string pick(const std::vector<std::string>& choices) {
        return choices[below(choices.size())];
    }

    // All names are equally likely, so that few units collide.
    std::string name() { return m_Names[below(m_Names.size())]; }

    std::string product(int depth) {
        std::string text = factor(depth);
        for (std::size_t more = below(3); more > 0; --more) {
            text += pick({"·", "*", " ", ".", " × ", "\u22C5", "\u00A0"}) + factor(depth);
        }
        return text;
    }

    std::string factor(int depth) {
        if (depth > 0 && below(5) == 0) {
            return "(" + expression(depth - 1) + ")" + power();
        }
        if (below(12) == 0) {
            return "√" + factor(depth - 1);
        }
        return name() + (below(6) == 0 ? pick({"2", "-1", "3", "-2"}) : power());
    }

    std::string power() {
        return below(2) == 0 ? ""
                             : pick({"²",    "³",        "⁻¹",    "⁻²",     "⁴",           "^2",
                                     "^-1",  "**2",      "**-3",  "^(1/2)", "^(-3/2)",     "^1:2",
                                     "^0.5", "^-1.5",    " ^ 2",  "^(2)",   "^( -1 / 3 )", "⁺²",
                                     "^+2",  "^\u22122", "^0.25", "^(0.2)"});
    }

    std::mt19937 m_Random;
    std::vector<std::string> m_Names;
};

std::uint32_t seed() {
    const char* given = std::getenv("MENSOR_SEED");
    return given != nullptr ? static_cast<std::uint32_t>(std::atoi(given)) : 1;
}

void expectMeaning(const std::string& text, const CUnitPtr& unit) {
    SCOPED_TRACE(text);
    const Quantity meaning = calculated(text);
    EXPECT_TRUE(areSame(measured(unit), meaning)) << measured(unit) << " not " << meaning;
    const checked::CMeaning own = checked::meaningOf(unit);
    Quantity told;
    for (const exact::CPower& power : own.dimensions()) {
        told.Exponents[power.Name] = {power.Exponent.numerator(), power.Exponent.denominator()};
    }
    told.Factor = own.factor().toDouble();
    told.Offset = own.offset().toDouble();
    EXPECT_TRUE(areSame(told, meaning)) << told << " not " << meaning;
}

TEST(ReadingProperties, AWellFormedTextHasItsMathematicalMeaning) {
    Texts texts(seed());
    int read = 0;
    int misleading = 0;
    for (int i = 0; i < 800; ++i) {
        const std::string text = texts.expression(2);
        const CReading reading = tryReadUnit(text);
        if (reading) {
            ++read;
            expectMeaning(text, reading.Unit);
            EXPECT_EQ(checked::tryReadUnit(text).Unit, reading.Unit) << text << " a second time";
            continue;
        }
        switch (reading.Refusal->Code) {  // the form of the text is right
            case checked::eRefusal::OFFSET_IN_PRODUCT:
            case checked::eRefusal::COLLISION:
            case checked::eRefusal::DIMENSION_COLLISION:
            case checked::eRefusal::FACTOR_RANGE:
            case checked::eRefusal::EXPONENT_RANGE: break;
            case checked::eRefusal::MISLEADING: ++misleading; break;
            default: ADD_FAILURE() << text << ": " << reading.Refusal->message();
        }
    }
    EXPECT_GT(read, 450);
    EXPECT_LE(misleading, 2) << "a trap refuses what nobody misreads";
}

TEST(ReadingProperties, ARandomTextThatIsReadHasItsMathematicalMeaning) {
    Texts texts(seed());
    int read = 0;
    for (int i = 0; i < 2000; ++i) {
        const std::string text = texts.noise();
        if (const CReading reading = tryReadUnit(text)) {
            ++read;
            expectMeaning(text, reading.Unit);
        }
    }
    EXPECT_GT(read, 100);
}

TEST(ReadingProperties, ATextThatIsRefusedForItsFormChangesNoTable) {
    Texts texts(seed());
    const int count = test::casesOf(300, 100);
    int refused = 0;
    for (int i = 0; i < count; ++i) {
        const std::string text = texts.noise();
        const Tables before;
        const CReading reading = tryReadUnit(text);
        if (reading.Refusal && reading.Refusal->Code < checked::eRefusal::COLLISION) {
            ++refused;
            EXPECT_EQ(Tables(), before) << text;
            const auto& diagnosis = *reading.Refusal;
            EXPECT_LE(diagnosis.Byte + diagnosis.Token.size(), text.size());
            EXPECT_EQ(text.substr(diagnosis.Byte, diagnosis.Token.size()), diagnosis.Token);
            EXPECT_FALSE(diagnosis.Sentence.empty());
        }
    }
    EXPECT_GT(refused, count / 3);
}

}  // namespace
}  // namespace mensor
