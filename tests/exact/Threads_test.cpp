// Threads_test.cpp: eight threads that share objects of the exact library get the answers of one thread.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "exact/Judge.h"
#include "mensor_exact/Certificate.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/Error.h"
#include "support/threads.h"

namespace mensor::exact {
namespace {

constexpr int Threads = 8;
constexpr int Rounds = 20;

TEST(Threads, ThreadsThatShareObjectsGetTheAnswersOfOneThread) {
    const CCatalogue catalogue =
        CCatalogue::builtIn()
            .with(ePack::CUSTOMARY)
            .with(ePack::OFFSETS)
            .with({{"smoot", "1.70180000000000000000000000000000000000001 m"}, {"piece", ""}});
    const std::vector<CConversion> conversions = {
        CConversion::between("°F", "°C", catalogue), CConversion::between("°", "rad", catalogue),
        CConversion::between("smoot", "in", catalogue),
        CConversion::between("km^(1/2)", "m^(1/2)", catalogue)};
    const CMeaning meaning = *catalogue.meaning("smoot");
    const auto answers = [&](double x) {
        std::string all;
        for (const CConversion& conversion : conversions) {
            const CConversion copy = conversion;
            all += std::to_string(bitsOf(copy.convert(x))) + " " + copy.convertText("98.6") + " " +
                   copy.factor() + copy.offset() + (copy.isExact(x) ? "=" : "~");
        }
        all += (meaning * catalogue.evaluate("piece/lbf")).toString();
        all += catalogue.find("mi")->Text;
        all += certify("mph", "smoot/s", catalogue).toJson();
        all += catalogue.with(ePack::US).meaning("gal")->toString();
        try {
            CConversion::between("bar", "m", catalogue);
        } catch (const CError& error) {
            all += error.what();
        }
        return all;
    };
    std::vector<std::string> expected;
    for (int round = 0; round < Rounds; ++round) {
        expected.push_back(answers(std::ldexp(98.6, 3 * round)));
    }
    race(Threads, Rounds, [&](int, int round) {
        EXPECT_EQ(answers(std::ldexp(98.6, 3 * round)), expected[static_cast<std::size_t>(round)]);
    });
}

// The test runs in a process of its own, so nothing was used before.
TEST(Threads, SeveralThreadsMayBeTheFirstToUseTheLibrary) {
    const struct {
        const char* From;
        const char* To;
        double Result;
    } tasks[] = {{"°", "rad", 3.141592653589793}, {"km", "m", 180000.0}};
    race(Threads, [&](int thread) {
        const auto& task = tasks[thread % 2];
        EXPECT_EQ(CConversion::between(task.From, task.To).convert(180.0), task.Result);
    });
}

}  // namespace
}  // namespace mensor::exact
