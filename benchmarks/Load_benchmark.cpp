// Load_benchmark.cpp: the cost of linking the library for a process: time from start to end, heap
// and resident memory.
//
// The cost of a library is the difference between a process with it and an empty one. To be in the
// same state, with all units in memory, UDUNITS-2 reads its XML files.
#include "programs.h"
#include "support.h"

#include <algorithm>
#include <cstdio>

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

constexpr int Starts = 15;  // per repetition; the median counts

void startOf(benchmark::State& state, const std::string& program) {
    for (auto _ : state) {
        std::vector<double> times;
        for (int i = 0; i < Starts; ++i) {
            times.push_back(timeOf(program));
        }
        state.SetIterationTime(median(times));
    }
}

// Starts both alternately, so that a change of the machine's speed affects both.
void moreThan(benchmark::State& state, const std::string& program, const std::string& base) {
    for (auto _ : state) {
        std::vector<double> differences;
        for (int i = 0; i < Starts; ++i) {
            const double without = timeOf(base);
            differences.push_back(timeOf(program) - without);
        }
        state.SetIterationTime(median(differences));
    }
}

// The programs print "<bytes of heap in use> <bytes resident>".
void memoryMoreThan(benchmark::State& state, const std::string& program, const std::string& base) {
    for (auto _ : state) {
        double heap = 0, resident = 0, baseHeap = 0, baseResident = 0;
        std::sscanf(outputOf(program, {"memory"}).c_str(), "%lf %lf", &heap, &resident);
        std::sscanf(outputOf(base, {"memory"}).c_str(), "%lf %lf", &baseHeap, &baseResident);
        state.counters["heap"] = heap - baseHeap;
        state.counters["resident"] = resident - baseResident;
    }
}

const bool added = [] {
    const auto addStart = [](const char* who, const char* program) {
        add("start a process", who, [program](benchmark::State& state) { startOf(state, program); })
            ->UseManualTime()
            ->Iterations(1)
            ->Unit(benchmark::kMicrosecond);
    };
    addStart("nothing", "load_nothing");
    addStart("mensor", "load_mensor");
    addStart("UDUNITS-2", "load_udunits2");
    const auto addOwn = [](const char* who, const char* program, const char* base) {
        add("own part of the start", who,
            [program, base](benchmark::State& state) { moreThan(state, program, base); })
            ->UseManualTime()
            ->Iterations(1)
            ->Unit(benchmark::kMicrosecond);
        add("memory", who, [program, base](benchmark::State& state) {
            memoryMoreThan(state, program, base);
        })->Iterations(1);
    };
    addOwn("mensor", "load_mensor", "load_nothing");
    addOwn("the least", "load_least", "load_nothing");
    addOwn("UDUNITS-2", "load_udunits2", "load_nothing");
    return true;
}();

}  // namespace
