// Checked_benchmark.cpp: reading with the checked companion, compared with the parser of the
// library on the same texts.
#include "mensor/Unit.h"
#include "mensor_checked/Reading.h"
#include "support.h"

using namespace mensor;

namespace {

void addText(const std::string& text) {
    add("read " + text, "mensor::checked", [text](benchmark::State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(checked::readUnit(text));
        }
    });
}

// Returns more texts than the cache of mensor or of the companion holds. Both have registered the units.
const std::vector<std::string>& manyTexts() {
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> all;
        for (std::size_t blanks = 1; blanks <= 400; ++blanks) {
            for (const char* text : {"km", "m/s", "kg·m²/s²", "W/(m²·K)", "mol/(m^3*s)"}) {
                all.push_back(std::string(blanks % 20, ' ') + text + std::string(blanks / 20, ' '));
            }
        }
        return all;
    }();
    return texts;
}

template <class Text, class Read>
void readMany(benchmark::State& state, Read read) {
    const std::vector<Text> texts(manyTexts().begin(), manyTexts().end());
    const std::vector<std::size_t> order = randomOrder(texts.size());
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(read(texts[order[i]]));
        i = (i + 1) % order.size();
    }
}

const bool added = [] {
    for (const char* text : {"m", "km", "m/s", "kg·m²/s²", "mol/(m^3*s)"}) {
        addText(text);
    }
    add("read one of 2000 texts", "mensor", [](benchmark::State& state) {
        readMany<string_t>(state, [](const string_t& text) { return CUnit::fromString(text); });
    });
    add("read one of 2000 texts", "mensor::checked", [](benchmark::State& state) {
        readMany<std::string>(state,
                              [](const std::string& text) { return checked::readUnit(text); });
    });
    return true;
}();

}  // namespace
