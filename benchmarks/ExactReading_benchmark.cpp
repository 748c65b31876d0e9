// ExactReading_benchmark.cpp: reading texts with the exact library, which has no cache. UDUNITS-2
// parses the same texts.
#include "mensor_exact/Conversion.h"
#include "mensor_exact/Reading.h"
#include "programs.h"
#include "support.h"

using namespace mensor;

namespace {

void addText(const std::string& text) {
    add("read exactly " + text, "mensor::exact", [text](benchmark::State& state) {
        const exact::CCatalogue catalogue = exact::CCatalogue::builtIn();
        for (auto _ : state) {
            benchmark::DoNotOptimize(exact::tryRead(text, catalogue));
        }
    });
}

// Measures a refusal, first without and then with its message.
void addRefusal(const std::string& text) {
    add("refuse exactly " + text, "code", [text](benchmark::State& state) {
        const exact::CCatalogue catalogue = exact::CCatalogue::builtIn();
        for (auto _ : state) {
            benchmark::DoNotOptimize(exact::tryRead(text, catalogue));
        }
    });
    add("refuse exactly " + text, "words", [text](benchmark::State& state) {
        const exact::CCatalogue catalogue = exact::CCatalogue::builtIn();
        for (auto _ : state) {
            const exact::CReading reading = exact::tryRead(text, catalogue);
            benchmark::DoNotOptimize(exact::diagnose(reading.Refusal, catalogue));
        }
    });
}

// The work of a program that reads a value once and shows it in another unit.
void addRequest() {
    add("read 2.5 km exactly, in m", "mensor::exact", [](benchmark::State& state) {
        const exact::CCatalogue catalogue = exact::CCatalogue::builtIn();
        const exact::CMeaning metre = exact::read("m", catalogue);
        const std::string text = "2.5 km";
        for (auto _ : state) {
            const exact::CValue value = exact::readValue(text, catalogue);
            const auto inMetres = exact::CConversion::convertOnce(value.Number, value.Unit, metre);
            benchmark::DoNotOptimize(inMetres->toDouble());
        }
    });
}

void addFirstText() {
    add("read exactly the first text", "mensor::exact",
        [](benchmark::State& state) {
            for (auto _ : state) {
                state.SetIterationTime(1e-9 * std::stod(outputOf("first_text", {"kg·m²/s²"})));
            }
        })
        ->UseManualTime()
        ->Iterations(5);
}

const bool added = [] {
    addRequest();
    addFirstText();
    for (const char* text : {"m", "km", "m/s", "kg·m²/s²", "mol/(m^3*s)"}) {
        addText(text);
    }
    addRefusal("xyzzy");
    addRefusal("W/m²/K");
    return true;
}();

}  // namespace
