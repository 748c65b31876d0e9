// Codes_benchmark.cpp: finding the meaning of a code and the code of a meaning, both without a cache,
// compared with a map of finished meanings.
#include <unordered_map>

#include "mensor_codes/Codes.h"
#include "support.h"

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

std::vector<std::string> codesWithMeaning(eSystem system) {
    std::vector<std::string> result;
    for (const codes::CCode& code : codes::all(system)) {
        if (!code.Definition.empty()) {
            result.push_back(code.Code);
        }
    }
    return result;
}

// Takes the codes in turn, so that the row is not always in the fastest cache of the processor.
template <class Find>
void findEach(benchmark::State& state, const std::vector<std::string>& all, const Find& find) {
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(find(all[next]));
        next = next + 1 < all.size() ? next + 1 : 0;
    }
}

void addAll(const std::string& name, eSystem system) {
    add("find each " + name, "mensor::codes", [=](benchmark::State& state) {
        findEach(state, codesWithMeaning(system),
                 [=](const std::string& code) { return codes::tryRead(system, code); });
    });
    add("find each " + name, "std::unordered_map", [=](benchmark::State& state) {
        const std::vector<std::string> all = codesWithMeaning(system);
        std::unordered_map<std::string, exact::CMeaning> map;
        for (const std::string& code : all) {
            map.emplace(code, codes::read(system, code));
        }
        findEach(state, all, [&map](const std::string& code) {
            return std::optional<exact::CMeaning>(map.find(code)->second);
        });
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
