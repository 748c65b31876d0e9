// Algebra_benchmark.cpp: multiplying, dividing and raising existing units. mensor caches results,
// so the second call differs from the first. UDUNITS-2 makes a new object at each call, and freeing
// it is part of the measured work.
#include "mensor/Unit.h"
#include "programs.h"
#include "support.h"

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
        addFirst(std::string(what) + ", first time", what);
    }
    return true;
}();

}  // namespace
