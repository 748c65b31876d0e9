// Reading_collisions_test.cpp: reads a thousand everyday units in fifty orders, each in a new process.
//
// Units with the same hash code are one unit, so the order of reading decides which of two colliding units is
// refused. A unit must not be silently wrong in any order. docs/collisions-everyday.md lists the refused texts.
// This test compares the page, or writes it if MENSOR_UPDATE_DOCS is set.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "mensor_checked/Meaning.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Values.h"
#include "support/Everyday.h"
#include "support/Fork.h"
#include "support/Mathematics.h"
#include "support/documents.h"

namespace mensor {
namespace {

using checked::CReading;
using test::areSame;
using test::everyday;
using test::Expression;
using test::Fraction;
using test::measured;
using test::order;
using test::Quantity;

constexpr int Orders = 50;

// Reads all texts in the order of `seed`. Writes a line with "!" for each fault, and a line with the index and
// the reason for each refused text.
void readAll(std::uint32_t seed, std::ostream& out) {
    std::map<std::map<std::string, Fraction>, std::size_t>
        dimensions;  // with the first text of each dimension
    std::map<CUnitPtr, std::size_t> known;
    std::vector<CUnitPtr> units(everyday().size());
    for (const std::size_t i : order(seed, everyday().size())) {
        const Expression& expression = everyday()[i];
        const CReading reading = checked::tryReadUnit(expression.Text);
        if (reading.Refusal) {
            const auto& refusal = *reading.Refusal;
            if (refusal.Code != checked::eRefusal::COLLISION &&
                refusal.Code != checked::eRefusal::DIMENSION_COLLISION) {
                out << "! " << expression.Text << ": " << refusal.message() << "\n";
            }
            out << i << "\t" << nameOf(refusal.Code) << "\t" << refusal.Sentence << "\n";
            continue;
        }
        units[i] = reading.Unit;
    }
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (!units[i]) {
            continue;
        }
        const Expression& expression = everyday()[i];
        const Quantity does = measured(units[i]);
        if (!areSame(does, expression.Meaning)) {
            out << "! " << expression.Text << " is " << does << ", not " << expression.Meaning
                << "\n";
        }
        const std::size_t like = dimensions.emplace(expression.Meaning.Exponents, i).first->second;
        const std::size_t alike = known.emplace(units[i]->getDimension(), i).first->second;
        if (alike != like) {
            out << "! " << expression.Text << " converts to " << everyday()[alike].Text
                << ", not to " << everyday()[like].Text << "\n";
        } else if (expression.Meaning.Offset == 0.0 && everyday()[like].Meaning.Offset == 0.0) {
            const double ratio = units[i]->convertValueToUnit(1, units[like]);
            const double expected = expression.Meaning.Factor / everyday()[like].Meaning.Factor;
            if (std::fabs(ratio - expected) > 1e-11 * expected) {
                out << "! 1 " << expression.Text << " is " << ratio << " " << everyday()[like].Text
                    << ", not " << expected << "\n";
            }
        }
        const auto text = checked::textOf(units[i]);
        if (!text || checked::readUnit(*text) != units[i]) {
            out << "! " << expression.Text << " has no text that reads back\n";
        }
    }
    if (dimensions.empty()) {
        out << "! nothing was read\n";
    }
}

// Returns what readAll writes in a new process.
std::string inFreshProcess(std::uint32_t seed) {
    const ChildEnd end = inChild([&](std::string& text) {
        std::ostringstream out;
        try {
            readAll(seed, out);
        } catch (const std::exception& e) {
            out << "! " << e.what() << "\n";
        }
        text = out.str();
        return 0;
    });
    return end.Status == 0
               ? end.Text
               : end.Text + "! the process ended with status " + std::to_string(end.Status);
}

struct Refused {
    std::set<std::uint32_t> Orders;
    std::set<std::string> Codes;
    std::string Sentence;  // in the first order that refused it
};

std::string pageOf(const std::map<std::size_t, Refused>& refused, std::size_t refusals) {
    std::ostringstream page;
    page
        << "# Collisions among everyday units\n\n"
           "In the library, two units with the same hash code are one object. The companion\n"
           "([reading.md](reading.md)) refuses the second of them. How often does that happen?\n\n"
        << everyday().size()
        << " expressions from physics, process industry, electronics and medicine\n"
           "(`tests/data/everyday.tsv`) were read in "
        << Orders
        << " random orders, each in a fresh process. None was\nsilently wrong in any order. "
        << refused.size() << " of them were refused in at least one order, on average "
        << (refusals * 10 + Orders * 5) / (Orders * 10) << " in\nan order, that is one in "
        << everyday().size() * Orders / refusals
        << ". The number of collisions grows with the square of the number of\nunits, so a program "
           "with twenty units will hardly have one.\n\n"
           "`tests/checked/Reading_collisions_test.cpp` writes this page. The reason is that "
           "of the first order.\n\n"
           "| Expression | Orders | Reason |\n|---|---|---|\n";
    for (const auto& [index, what] : refused) {
        page << "| `" << everyday()[index].Text << "` | " << what.Orders.size() << " | "
             << what.Sentence << " |\n";
    }
    return page.str();
}

TEST(ReadingCollisions, NoUnitIsSilentlyWrongInAnyOrder) {
    ASSERT_GE(everyday().size(), 500U);
    std::map<std::size_t, Refused> refused;
    std::size_t refusals = 0;
    for (std::uint32_t seed = 1; seed <= Orders; ++seed) {
        std::istringstream lines(inFreshProcess(seed));
        for (std::string line; std::getline(lines, line);) {
            if (line[0] == '!') {
                ADD_FAILURE() << "order " << seed << ": " << line.substr(2);
                continue;
            }
            std::istringstream in(line);
            std::string index, code, sentence;
            std::getline(in, index, '\t');
            std::getline(in, code, '\t');
            std::getline(in, sentence);
            sentence.resize(std::min(sentence.size(), sentence.find("; its values convert by")));
            Refused& what = refused[std::stoul(index)];
            what.Sentence = what.Orders.empty() ? sentence : what.Sentence;
            what.Orders.insert(seed);
            what.Codes.insert(code);
            ++refusals;
        }
    }
    ASSERT_GT(refusals, 0U) << "the library has collisions, so the test must find some";
    const std::string page = pageOf(refused, refusals);
    if (std::getenv("MENSOR_UPDATE_DOCS") != nullptr) {
        std::ofstream(MENSOR_DOCS "/collisions-everyday.md") << page;
    }
    EXPECT_EQ(test::document("collisions-everyday.md"), page);
}

TEST(EverydayTable, CoversFourFields) {
    std::map<std::string, int> fields;
    std::set<std::string> texts;
    for (const Expression& expression : everyday()) {
        ++fields[expression.Field];
        EXPECT_TRUE(texts.insert(expression.Text).second) << expression.Text << " occurs twice";
    }
    EXPECT_EQ(fields.size(), 4U);
    for (const auto& [field, count] : fields) {
        EXPECT_GE(count, 100) << field;
    }
}

// Two independent computations: the script that made the table, and Mathematics.h.
TEST(EverydayTable, AgreesWithAnIndependentComputation) {
    for (const Expression& expression : everyday()) {
        const Quantity other = test::calculated(expression.Text);
        EXPECT_TRUE(areSame(other, expression.Meaning))
            << expression.Text << " is " << other << ", not " << expression.Meaning;
    }
}

}  // namespace
}  // namespace mensor
