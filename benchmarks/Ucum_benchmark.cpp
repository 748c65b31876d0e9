// Ucum_benchmark.cpp: reading codes of UCUM without a cache, and finding the code of a meaning.
// UDUNITS-2 parses the same unit in its own notation.
#include "mensor_codes/Codes.h"
#include "support.h"

using namespace mensor;
using codes::eSystem;

namespace {

void addCode(const std::string& code) {
    add("read UCUM " + code, "mensor::codes", [code](benchmark::State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(codes::tryRead(eSystem::UCUM, code));
        }
    });
}

void addPeer(const std::string& code, const std::string& text) {
    add("read UCUM " + code, "UDUNITS-2", [text](benchmark::State& state) {
        for (auto _ : state) {
            ut_free(ut_parse(udunits(), text.c_str(), UT_UTF8));
        }
    });
}

void addWriting(const std::string& code) {
    add("write UCUM " + code, "mensor::codes", [code](benchmark::State& state) {
        const exact::CMeaning meaning = codes::read(eSystem::UCUM, code);
        for (auto _ : state) {
            benchmark::DoNotOptimize(codes::codeFor(eSystem::UCUM, meaning));
        }
    });
}

const bool added = [] {
    const std::pair<const char*, const char*> both[] = {
        {"mg/dL", "mg/dL"},
        {"kg.m2/s2", "kg.m2/s2"},
        {"mL/min/kg", "mL/min/kg"},
        {"W/(m2.K)", "W/(m2.K)"},
    };
    for (const auto& [code, text] : both) {
        addCode(code);
        addPeer(code, text);
    }
    for (const char* code : {"m", "Cel", "mm[Hg]", "10*3/uL", "{request}/s", "k[IU]/L", "xyzzy"}) {
        addCode(code);
    }
    for (const char* code : {"kg", "mg/dL", "W/(m2.K)", "7.m"}) {
        addWriting(code);
    }
    return true;
}();

}  // namespace
