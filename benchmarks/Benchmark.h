// Benchmark.h: what the benchmarks share: their names, the peer's units, and the cores they run on.
//
//     add("parse km", "mensor", [](benchmark::State& state) { ... });
//     add("parse km", "UDUNITS-2", [](benchmark::State& state) { ... });
//
// A benchmark is called "<work>: <who>". Report.cpp puts two of them into one line of the table.
#ifndef MENSOR_BENCHMARKS_BENCHMARK_H
#define MENSOR_BENCHMARKS_BENCHMARK_H

#include <benchmark/benchmark.h>
#include <udunits2.h>

#include <string>
#include <utility>
#include <vector>

/// Registers the benchmark "`work`: `who`". Call it from a static initialiser.
template <class Function>
benchmark::internal::Benchmark* add(const std::string& work, const std::string& who,
                                    Function function) {
    return benchmark::RegisterBenchmark((work + ": " + who).c_str(), std::move(function));
}

/// UDUNITS-2 with its default database, read once.
ut_system* udunits();

/// A unit of UDUNITS-2, which the process keeps. Ends the process if it does not know the text.
ut_unit* udunit(const std::string& text);

/// The converter between two units of UDUNITS-2, which the process keeps.
cv_converter* udunitsConverter(const std::string& from, const std::string& to);

/// A long random order of `count` things, the same in every run. Short ones are learned by heart
/// by the processor's branch prediction.
std::vector<std::size_t> randomOrder(std::size_t count);

/// Keeps the calling thread on the core of that number, counted among those the process was given,
/// from the last; gives false if there are not so many.
bool pinToCore(int number);

#endif  // MENSOR_BENCHMARKS_BENCHMARK_H
