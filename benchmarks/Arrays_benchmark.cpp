// Arrays_benchmark.cpp: many values at once, from one array into another, compared with the limits
// of the machine: copying the bytes, and a plain loop y = x * a + b compiled for this processor.
#include "mensor/Converter.h"
#include "mensor/Unit.h"
#include "roofline.h"
#include "support.h"

#include <cstring>

using namespace mensor;

namespace {

// One pair of arrays for all, so that a benchmark finds its own data in the caches of the
// processor. Allocated separately and written once, so that no page is new during the measurement.
struct Arrays {
    std::vector<double> Values = std::vector<double>(10'000'000, 2.5);
    std::vector<double> Results = std::vector<double>(10'000'000, 0.0);
};

Arrays& arrays() {
    static Arrays arrays;
    return arrays;
}

template <class Work>
void addSize(const std::string& name, std::size_t count, const char* who, Work makeWork) {
    add(name, who, [count, makeWork](benchmark::State& state) {
        const double* const values = arrays().Values.data();
        double* const results = arrays().Results.data();
        const auto work = makeWork();
        work(values, results, count);
        for (auto _ : state) {
            work(values, results, count);
            benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(state.iterations() *
                                static_cast<std::int64_t>(2 * sizeof(double) * count));
    })->Unit(count < 100'000 ? benchmark::kNanosecond : benchmark::kMicrosecond);
}

CConverterPtr converter(const char* from, const char* to) {
    return CUnit::fromString(from)->getConverterTo(CUnit::fromString(to));
}

void addPair(const std::string& name, const char* from, const char* to, std::size_t count) {
    addSize(name, count, "mensor, a loop of convert", [=] {
        return [c = converter(from, to)](const double* values, double* results, std::size_t n) {
            for (std::size_t i = 0; i < n; ++i) {
                results[i] = c->convert(values[i]);
            }
        };
    });
    addSize(name, count, "mensor", [=] {
        return [c = converter(from, to)](const double* values, double* results, std::size_t n) {
            c->convertAll(values, results, n);
        };
    });
    addSize(name, count, "UDUNITS-2", [=] {
        return
            [c = udunitsConverter(from, to)](const double* values, double* results, std::size_t n) {
                cv_convert_doubles(c, values, n, results);
            };
    });
}

const bool added = [] {
    const std::pair<std::size_t, const char*> sizes[] = {
        {1'000, "10^3 values"}, {1'000'000, "10^6 values"}, {10'000'000, "10^7 values"}};
    for (const auto& [count, name] : sizes) {
        addPair(std::string(name) + " km to m", "km", "m", count);
        addPair(std::string(name) + " °C to K", "°C", "K", count);
        addSize(name, count, "memcpy", [] {
            return [](const double* values, double* results, std::size_t n) {
                std::memcpy(results, values, n * sizeof(double));
            };
        });
        addSize(name, count, "plain loop", [] {
            return [](const double* values, double* results, std::size_t n) {
                scaleAndShift(values, results, n, 1000.0, 0.5);
            };
        });
    }
    return true;
}();

}  // namespace
