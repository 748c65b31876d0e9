// first_algebra.cpp: prints how many nanoseconds one operation takes when its result is new.
//
// usage: first_algebra WHO WHAT   WHO: mensor, UDUNITS-2; WHAT: multiply, divide, pow
//
// The operands are the same for both: the named units of the SI, each with each, or each to the
// powers 2 to 5. What the catalogue has built already (a few of the results) is counted too.
#include <udunits2.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "mensor/SI.h"

using namespace mensor;

namespace {

const char* const Names[] = {"m", "s",  "kg", "A",  "K",  "mol", "cd", "rad", "Hz", "N",
                             "Pa", "J", "W",  "C",  "V",  "F",   "S",  "Wb",  "T",  "H",
                             "lm", "lx", "Bq", "Gy", "Sv", "kat"};

template <class Work>
double nanosecondsPerOperation(Work work) {
    const auto before = std::chrono::steady_clock::now();
    const int count = work();
    const auto after = std::chrono::steady_clock::now();
    return std::chrono::duration<double, std::nano>(after - before).count() / count;
}

template <class Unit, class Multiply, class Divide, class Pow>
double measure(const std::string& what, const std::vector<Unit>& units, Multiply multiply,
               Divide divide, Pow pow) {
    return nanosecondsPerOperation([&] {
        int count = 0;
        for (const Unit& left : units) {
            if (what == "pow") {
                for (int n = 2; n <= 5; ++n, ++count) {
                    pow(left, n);
                }
                continue;
            }
            for (const Unit& right : units) {
                what == "multiply" ? multiply(left, right) : divide(left, right);
                ++count;
            }
        }
        return count;
    });
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const std::string who = argv[1], what = argv[2];
    double time = 0;
    if (who == "mensor") {
        std::vector<CUnitPtr> units;
        for (const char* name : Names) {
            units.push_back(CUnit::fromString(name));
        }
        time = measure(
            what, units, [](const CUnitPtr& left, const CUnitPtr& right) { left->multiply(right); },
            [](const CUnitPtr& left, const CUnitPtr& right) { left->divide(right); },
            [](const CUnitPtr& unit, int n) { unit->pow(n); });
    } else {
        ut_set_error_message_handler(ut_ignore);
        ut_system* const system = ut_read_xml(nullptr);
        std::vector<ut_unit*> units;
        for (const char* name : Names) {
            units.push_back(ut_parse(system, name, UT_UTF8));
            if (!units.back()) {
                return 1;
            }
        }
        time = measure(
            what, units, [](ut_unit* left, ut_unit* right) { ut_free(ut_multiply(left, right)); },
            [](ut_unit* left, ut_unit* right) { ut_free(ut_divide(left, right)); },
            [](ut_unit* unit, int n) { ut_free(ut_raise(unit, n)); });
    }
    std::printf("%f\n", time);
    return 0;
}
