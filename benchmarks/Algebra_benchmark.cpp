// Algebra_benchmark.cpp: multiplying, dividing and raising units that are ready. mensor remembers
// results, so the second time differs from the first; UDUNITS-2 makes a new object every time, and
// its free belongs to the work.
#include "Benchmark.h"
#include "Programs.h"
#include "mensor/Unit.h"

using namespace mensor;

namespace {

template <class Mensor, class Udunits>
void addRepeated(const std::string& what, const char* left, const char* right, Mensor mensorWork,
                 Udunits udunitsWork) {
    add(what + ", repeated", "mensor", [=](benchmark::State& state) {
        const CUnitPtr one = CUnit::fromString(left), other = CUnit::fromString(right);
        for (auto _ : state) {
            benchmark::DoNotOptimize(mensorWork(one, other));
        }
    });
    add(what + ", repeated", "UDUNITS-2", [=](benchmark::State& state) {
        const ut_unit* const one = udunit(left);
        const ut_unit* const other = udunit(right);
        for (auto _ : state) {
            ut_unit* const unit = udunitsWork(one, other);
            benchmark::DoNotOptimize(unit);
            ut_free(unit);
        }
    });
}

// The first time can be seen only in a process that has not done it yet.
void addFirst(const std::string& what) {
    for (const char* who : {"mensor", "UDUNITS-2"}) {
        add(what + ", first time", who, [what, who](benchmark::State& state) {
            for (auto _ : state) {
                state.SetIterationTime(1e-9 * std::stod(outputOf("first_algebra", {who, what})));
            }
        })->UseManualTime()->Iterations(5);
    }
}

const bool added = [] {
    addRepeated(
        "multiply", "N", "m", [](const CUnitPtr& a, const CUnitPtr& b) { return a->multiply(b); },
        [](const ut_unit* a, const ut_unit* b) { return ut_multiply(a, b); });
    addRepeated(
        "divide", "m", "s", [](const CUnitPtr& a, const CUnitPtr& b) { return a->divide(b); },
        [](const ut_unit* a, const ut_unit* b) { return ut_divide(a, b); });
    addRepeated(
        "pow", "m", "m", [](const CUnitPtr& a, const CUnitPtr&) { return a->pow(3); },
        [](const ut_unit* a, const ut_unit*) { return ut_raise(a, 3); });
    for (const char* what : {"multiply", "divide", "pow"}) {
        addFirst(what);
    }
    return true;
}();

}  // namespace
