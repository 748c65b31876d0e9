// Request_benchmark.cpp: what a gateway does with every message: it gets the text "2.5 km" and
// needs the number in metres. With UDUNITS-2, the caller splits the text and reads the number.
#include "mensor/SI.h"
#include "mensor/ValueWithUnit.h"
#include "support.h"

#include <cstdlib>

using namespace mensor;

namespace {

void requestMensor(benchmark::State& state) {
    const std::string text = "2.5 km";
    const CUnitPtr metre = SI::Meter();
    double value = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value = CValueWithUnit::fromString(text).valueAs(metre));
    }
    if (value != 2500) {
        state.SkipWithError("wrong result");
    }
}

void requestUdunits(benchmark::State& state) {
    const std::string text = "2.5 km";
    ut_system* const system = udunits();
    ut_unit* const metre = udunit("m");
    double value = 0;
    for (auto _ : state) {
        char* rest = nullptr;
        const double number = std::strtod(text.c_str(), &rest);
        ut_unit* const unit = ut_parse(system, rest + 1, UT_UTF8);
        cv_converter* const converter = ut_get_converter(unit, metre);
        benchmark::DoNotOptimize(value = cv_convert_double(converter, number));
        cv_free(converter);
        ut_free(unit);
    }
    if (value != 2500) {
        state.SkipWithError("wrong result");
    }
}

const bool added = [] {
    add("request 2.5 km in m", "mensor", requestMensor);
    add("request 2.5 km in m", "UDUNITS-2", requestUdunits);
    return true;
}();

}  // namespace
