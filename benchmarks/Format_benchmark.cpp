// Format_benchmark.cpp: from a unit to its text. mensor returns a string_t. UDUNITS-2 fills an
// existing buffer. It prints the kilometre as "1000 m". It writes a product in base units only with
// UT_DEFINITION; otherwise it writes kg·m²/s² as the joule.
#include "mensor/UnitFormat.h"
#include "support.h"

using namespace mensor;

namespace {

void addUnit(const std::string& text, unsigned options) {
    add("format " + text, "mensor", [text = string_t(text)](benchmark::State& state) {
        const CUnitPtr unit = CUnit::fromString(text);
        const CUnitFormatPtr format = CStandardUnitFormat::instance();
        if (CUnit::fromString(format->format(unit, string_t())) != unit) {
            state.SkipWithError("wrong text");
        }
        for (auto _ : state) {
            benchmark::DoNotOptimize(format->format(unit, string_t()));
        }
    });
    add("format " + text, "UDUNITS-2", [text, options](benchmark::State& state) {
        const ut_unit* const unit = udunit(text);
        char buffer[128];
        for (auto _ : state) {
            benchmark::DoNotOptimize(ut_format(unit, buffer, sizeof buffer, options));
            benchmark::ClobberMemory();
        }
    });
}

const bool added = [] {
    addUnit("m", UT_UTF8);
    addUnit("km", UT_UTF8);
    addUnit("kg·m²/s²", UT_UTF8 | UT_DEFINITION);
    addUnit("kg·m²/(s³·A)", UT_UTF8 | UT_DEFINITION);
    return true;
}();

}  // namespace
