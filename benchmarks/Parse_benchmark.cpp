// Parse_benchmark.cpp: from the text of a unit to the unit. Each library gets an existing text in
// its own type, a string_t or a C string. The result is released: in mensor a pointer to the only
// object of the unit, in UDUNITS-2 a new object.
#include "mensor/Unit.h"
#include "programs.h"
#include "support.h"
#include "typical_texts.h"

#include <iterator>
#include <stdexcept>

using namespace mensor;

namespace {

void addText(const std::string& text) {
    add("parse " + text, "mensor", [text = string_t(text)](benchmark::State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(CUnit::fromString(text));
        }
    });
    add("parse " + text, "UDUNITS-2", [text](benchmark::State& state) {
        ut_system* const system = udunits();
        for (auto _ : state) {
            ut_unit* const unit = ut_parse(system, text.c_str(), UT_UTF8);
            benchmark::DoNotOptimize(unit);
            ut_free(unit);
        }
    });
}

void mixMensor(benchmark::State& state) {
    const std::vector<string_t> texts(std::begin(TypicalTexts), std::end(TypicalTexts));
    const std::vector<std::size_t> order = randomOrder(texts.size());
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(CUnit::fromString(texts[order[i]]));
        i = (i + 1) % order.size();
    }
}

void mixUdunits(benchmark::State& state) {
    ut_system* const system = udunits();
    const std::vector<std::string> texts(std::begin(TypicalTexts), std::end(TypicalTexts));
    const std::vector<std::size_t> order = randomOrder(texts.size());
    std::size_t i = 0;
    for (auto _ : state) {
        ut_unit* const unit = ut_parse(system, texts[order[i]].c_str(), UT_UTF8);
        benchmark::DoNotOptimize(unit);
        ut_free(unit);
        i = (i + 1) % order.size();
    }
}

// The minimum cost of a refusal by exception.
void bareThrow(benchmark::State& state) {
    for (auto _ : state) {
        try {
            throw std::invalid_argument("Label: xyz not recognized");
        } catch (const std::invalid_argument& error) {
            benchmark::DoNotOptimize(error.what());
        }
    }
}

// mensor throws and UDUNITS-2 returns no unit.
void unknownMensor(benchmark::State& state) {
    const string_t text = "xyz";
    for (auto _ : state) {
        try {
            benchmark::DoNotOptimize(CUnit::fromString(text));
        } catch (const std::invalid_argument& error) {
            benchmark::DoNotOptimize(error.what());
        }
    }
}

void unknownUdunits(benchmark::State& state) {
    ut_system* const system = udunits();
    for (auto _ : state) {
        benchmark::DoNotOptimize(ut_parse(system, "xyz", UT_UTF8));
    }
}

const bool added = [] {
    for (const char* text :
         {"m", "km", "kPa", "mm_Hg", "m/s", "kg*m^2/s^2", "kg·m²/s²", "mol/(m^3*s)"}) {
        addText(text);
    }
    add("parse a mix of 50", "mensor", mixMensor);
    add("parse a mix of 50", "UDUNITS-2", mixUdunits);
    addFirst("parse a text not seen before", "parse");
    add("parse an unknown name", "mensor", unknownMensor);
    add("parse an unknown name", "UDUNITS-2", unknownUdunits);
    add("parse an unknown name", "bare throw and catch", bareThrow);
    return true;
}();

}  // namespace
