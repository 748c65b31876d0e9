// ExactReading_benchmark.cpp: reading without the registry, which remembers nothing: every text is read
// anew. UDUNITS-2 parses the same text.
#include "Benchmark.h"
#include "mensor_exact/Reading.h"

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

// Without the words of the refusal, and with them.
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

const bool added = [] {
    for (const char* text : {"m", "km", "m/s", "kg·m²/s²", "mol/(m^3*s)"}) {
        addText(text);
    }
    addRefusal("xyzzy");
    addRefusal("W/m²/K");
    return true;
}();

}  // namespace
