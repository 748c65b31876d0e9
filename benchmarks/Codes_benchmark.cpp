// Codes_benchmark.cpp: finding codes of tables and what they mean, which remembers nothing, and finding
// the code for a meaning.
#include "Benchmark.h"
#include "mensor_codes/Codes.h"

using namespace mensor;
using codes::eSystem;

namespace {

void addCode(const std::string& name, eSystem system, const std::string& code) {
    add("find " + name + " " + code, "mensor::codes", [=](benchmark::State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(codes::tryRead(system, code));
        }
    });
}

// All codes with a meaning, one after the other, so that the table is not always in the nearest memory.
void addAll(const std::string& name, eSystem system) {
    add("find each " + name, "mensor::codes", [=](benchmark::State& state) {
        std::vector<std::string> all;
        for (const codes::CCode& code : codes::all(system)) {
            if (!code.Definition.empty()) {
                all.push_back(code.Code);
            }
        }
        std::size_t next = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(codes::tryRead(system, all[next]));
            next = next + 1 < all.size() ? next + 1 : 0;
        }
    });
}

void addMeaning(const std::string& name, eSystem system, const std::string& code) {
    add("write " + name + " " + code, "mensor::codes", [=](benchmark::State& state) {
        const exact::CMeaning meaning = codes::read(system, code);
        for (auto _ : state) {
            benchmark::DoNotOptimize(codes::codeFor(system, meaning));
        }
    });
}

const bool added = [] {
    for (const char* code : {"MTR", "CEL", "J48", "H87", "DZP", "XXX"}) {
        addCode("UNECE", eSystem::UNECE, code);
    }
    for (const char* code : {"m", "km/h", "beat/min"}) {
        addCode("SENML", eSystem::SENML, code);
    }
    addCode("OPCUA", eSystem::OPCUA, "5067858");
    addAll("UNECE", eSystem::UNECE);
    addAll("SENML", eSystem::SENML);
    addAll("OPCUA", eSystem::OPCUA);
    addMeaning("UNECE", eSystem::UNECE, "MQH");
    addMeaning("SENML", eSystem::SENML, "km/h");
    return true;
}();

}  // namespace
