// support.h: helpers of the benchmarks: registration, units of UDUNITS-2, random orders and cores.
//
//     add("parse km", "mensor", [](benchmark::State& state) { ... });
//     add("parse km", "UDUNITS-2", [](benchmark::State& state) { ... });
//
// A benchmark is called "<work>: <library>". Report.cpp puts two of them into one line of the table.
#ifndef MENSOR_BENCHMARKS_SUPPORT_H
#define MENSOR_BENCHMARKS_SUPPORT_H

#include <benchmark/benchmark.h>
#include <udunits2.h>

#include <string>
#include <utility>
#include <vector>

/// Registers the benchmark "`work`: `who`", where `who` is the library. Call it from a static
/// initialiser.
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

/// Registers the benchmark "`work`: UDUNITS-2" of making a converter between two units and freeing it.
void addUdunitsLookUp(const std::string& work, const std::string& from, const std::string& to);

/// Returns a long random order of `count` things, the same in every run. The branch prediction of the
/// processor would learn a short one.
std::vector<std::size_t> randomOrder(std::size_t count);

/// Keeps the calling thread on one core of the process. Number 0 is the last core. Returns false if the
/// process has fewer cores.
bool pinToCore(int number);

#endif  // MENSOR_BENCHMARKS_SUPPORT_H
