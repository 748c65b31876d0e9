// Exact_benchmark.cpp: correctly rounded conversions, compared with one multiplication and with
// UDUNITS-2.
//
// "A virtual call" is the minimum cost of a library's converter that is chosen at run time: a virtual call and
// one multiplication. "The least" is a virtual call, one multiplication and one fused multiply-add, which a
// correct result needs at least. "A plain loop" multiplies each element, in vectors of the same width.
#include "Converter.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/FastForm.h"
#include "support.h"

#include <charconv>
#include <cstring>

using namespace mensor::exact;

namespace {

// Two classes inside this program, so that the compiler cannot know which one is called.
struct Multiply : Converter {
    explicit Multiply(double factor) : Factor(factor) {}
    double convert(double x) const override { return x * Factor; }
    double Factor;
};
struct Add : Converter {
    explicit Add(double offset) : Offset(offset) {}
    double convert(double x) const override { return x + Offset; }
    double Offset;
};

// A pair of units, with their names in UDUNITS-2.
struct Pair {
    const char* Name;
    const char* From;
    const char* To;
    const char* UdunitsFrom;
    const char* UdunitsTo;
    CShortLine Line;
};

const Pair Pairs[] = {
    {"ft to m", "ft", "m", "ft", "m", {3048, 0, 10000, 0, false}},
    {"m/s to km/h", "m/s", "km/h", "m/s", "km/h", {18, 0, 5, 0, false}},
    {"m to in", "m", "in", "m", "in", {5000, 0, 127, 0, false}},  // needs two sums for ties
    {"° to rad", "°", "rad", "degree", "radian", {1, 0, 1, 0, false}},
    {"rad to °", "rad", "°", "radian", "degree", {1, 0, 1, 0, false}},  // needs the test
    {"°F to °C", "°F", "°C", "°F", "°C", {5, 160, 9, 0, true}},
    {"°C to °F", "°C", "°F", "°C", "°F", {9, 160, 5, 0, false}},
};

CConversion between(const char* from, const char* to) {
    static const CCatalogue catalogue = CCatalogue::builtIn()
                                            .with(ePack::CUSTOMARY)
                                            .with(ePack::US)
                                            .with(ePack::SCIENCE)
                                            .with(ePack::OFFSETS);
    return CConversion::between(from, to, catalogue);
}

// The number of conversions in one batch.
constexpr std::size_t Values = 1024;

// The loops are separate functions, so that the compiler keeps the value in a floating-point register
// for all libraries alike.
template <class There>
[[gnu::noinline]] double thereAgain(const There& there, double value) {
    for (std::size_t i = 0; i < Values; ++i) {
        // Restores the value. The sum depends on the result and costs the same for all libraries.
        value = there(value) * 0.0 + 2.5;
    }
    return value;
}

template <class There>
[[gnu::noinline]] void thereOnce(const There& there, const double* values, double* results) {
    for (std::size_t i = 0; i < Values; ++i) {
        results[i] = there(values[i]);
    }
}

template <class There>
void dependent(benchmark::State& state, There there) {
    double value = 2.5;
    while (state.KeepRunningBatch(Values)) {
        value = thereAgain(there, value);
    }
    benchmark::DoNotOptimize(value);
}

template <class There>
void independent(benchmark::State& state, There there) {
    std::vector<double> values(Values), results(Values);
    for (std::size_t i = 0; i < Values; ++i) {
        values[i] = static_cast<double>(i) / 10;
    }
    while (state.KeepRunningBatch(Values)) {
        thereOnce(there, values.data(), results.data());
        benchmark::ClobberMemory();
    }
}

template <class Make>
void addOne(const std::string& name, const char* who, Make make) {
    add(name + ", dependent", who, [make](benchmark::State& state) { dependent(state, make()); });
    add(name + ", independent", who,
        [make](benchmark::State& state) { independent(state, make()); });
}

struct Arrays {
    std::vector<double> Values = std::vector<double>(16'000'000);
    std::vector<double> Results = std::vector<double>(16'000'000);
    std::vector<std::int16_t> Counts = std::vector<std::int16_t>(1'000'000);

    Arrays() {
        for (std::size_t i = 0; i < Values.size(); ++i) {
            Values[i] = static_cast<double>(i * 7919 % 200003) / 10 - 5000;
        }
        for (std::size_t i = 0; i < Counts.size(); ++i) {
            Counts[i] = static_cast<std::int16_t>(i * 7919 % 65536);
        }
    }
};

Arrays& arrays() {
    static Arrays arrays;
    return arrays;
}

template <class Number, class Work>
void addSize(const std::string& name, const char* who, const std::vector<Number> Arrays::*values,
             std::size_t count, Work makeWork) {
    add(name, who, [=](benchmark::State& state) {
        const auto work = makeWork();
        const Number* const from = (arrays().*values).data();
        double* const to = arrays().Results.data();
        for (auto _ : state) {
            work(from, to, count);
            benchmark::ClobberMemory();
        }
    })->Unit(count < 100'000 ? benchmark::kNanosecond : benchmark::kMicrosecond);
}

template <class Number>
[[gnu::always_inline]] inline void multiply(const Number* __restrict values,
                                            double* __restrict results, std::size_t count,
                                            double factor) {
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = static_cast<double>(values[i]) * factor;
    }
}

#if defined(__x86_64__)
template <class Number>
[[gnu::target("avx2"), gnu::optimize("O3")]] void multiplyAvx2(const Number* values,
                                                               double* results, std::size_t count,
                                                               double factor) {
    multiply(values, results, count, factor);
}
template <class Number>
[[gnu::target("avx512f,avx512dq,avx512vl,prefer-vector-width=512"), gnu::optimize("O3")]] void
multiplyAvx512(const Number* values, double* results, std::size_t count, double factor) {
    multiply(values, results, count, factor);
}
#endif

// The vectors that the library uses on this processor.
template <class Number>
void plainLoop(const Number* values, double* results, std::size_t count) {
#if defined(__x86_64__)
    if (std::strcmp(bestLoops().Name, "AVX-512") == 0) {
        return multiplyAvx512(values, results, count, 0.3048);
    }
    if (std::strcmp(bestLoops().Name, "AVX2") == 0) {
        return multiplyAvx2(values, results, count, 0.3048);
    }
#endif
    multiply(values, results, count, 0.3048);
}

// Converts one element at a time.
[[gnu::noinline]] void scalarLoop(const double* values, double* results, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        double result = values[i] * 0.3048;
        benchmark::DoNotOptimize(result);
        results[i] = result;
    }
}

class NoSlowWay : public CSlowWay {
public:
    CNearest convert(const CNumber&, const CFormat&) const override { return {0, false}; }
};

// The fast way for processors without a fused multiply-add, also on a processor with one.
CFastForm withoutFma(const Pair& pair) {
    static const NoSlowWay none;
    const CLeading factor = CLeading::ofQuotient(pair.Line.A, pair.Line.D, 0);
    return pair.Line.B == 0 ? CFastForm(factor, &pair.Line, &none, PlainLoops)
                            : CFastForm(factor, CLeading::ofQuotient(pair.Line.B, pair.Line.A, 0),
                                        !pair.Line.IsMinusB, &pair.Line, &none, PlainLoops);
}

const bool added = [] {
    addOne("exact, one value", "a virtual call", [] {
        static const std::unique_ptr<Converter> converter = makeMultiply(0.3048);
        return [c = converter.get()](double x) { return c->convert(x); };
    });
    addOne("exact, one value", "a virtual call inside the program", [] {
        // The class is known only at run time.
        static const Multiply multiply(0.3048);
        static const Add add(0.3048);
        const Converter* chosen = &multiply;
        benchmark::DoNotOptimize(chosen);
        return
            [chosen = chosen == nullptr ? &add : chosen](double x) { return chosen->convert(x); };
    });
    if (makeFused(1, 0) != nullptr) {
        addOne("exact, one value", "the least", [] {
            static const std::unique_ptr<Converter> converter = makeFused(0.3048, 0x1p-57);
            return [c = converter.get()](double x) { return c->convert(x); };
        });
    }
    for (const Pair& pair : Pairs) {
        addOne(std::string("exact, ") + pair.Name, "mensor::exact", [pair] {
            return [c = between(pair.From, pair.To)](double x) { return c.convert(x); };
        });
        addOne(std::string("exact, ") + pair.Name, "UDUNITS-2", [pair] {
            return [c = udunitsConverter(pair.UdunitsFrom, pair.UdunitsTo)](double x) {
                return cv_convert_double(c, x);
            };
        });
        add(std::string("exact, build ") + pair.Name, "mensor::exact",
            [pair](benchmark::State& state) {
                const CConversion conversion = between(pair.From, pair.To);
                for (auto _ : state) {
                    benchmark::DoNotOptimize(CConversion(conversion.from(), conversion.to()));
                }
            });
        addUdunitsLookUp(std::string("exact, build ") + pair.Name, pair.UdunitsFrom,
                         pair.UdunitsTo);
    }
    addOne("exact, without FMA, ft to m", "mensor::exact",
           [] { return [form = withoutFma(Pairs[0])](double x) { return form.convert(x); }; });

    const std::pair<std::size_t, const char*> sizes[] = {
        {1'000, "10^3"}, {1'000'000, "10^6"}, {16'000'000, "1.6·10^7"}};
    for (const auto& [count, name] : sizes) {
        const std::string prefix = std::string("exact, ") + name + " values";
        addSize(prefix, "a plain loop", &Arrays::Values, count,
                [] { return [](auto... all) { plainLoop(all...); }; });
        for (const Pair& pair : Pairs) {
            addSize(prefix + " " + pair.Name, "mensor::exact", &Arrays::Values, count, [pair] {
                return [c = between(pair.From, pair.To)](const double* values, double* results,
                                                         std::size_t n) {
                    c.convertAll(values, results, n);
                };
            });
            addSize(prefix + " " + pair.Name, "UDUNITS-2", &Arrays::Values, count, [pair] {
                return [c = udunitsConverter(pair.UdunitsFrom, pair.UdunitsTo)](
                           const double* values, double* results, std::size_t n) {
                    cv_convert_doubles(c, values, n, results);
                };
            });
        }
        if (count <= 1'000'000) {
            const std::string counts = std::string("exact, ") + name + " counts";
            addSize(counts, "a plain loop", &Arrays::Counts, count,
                    [] { return [](auto... all) { plainLoop(all...); }; });
            addSize(counts + " of m°C to °F", "mensor::exact", &Arrays::Counts, count, [] {
                return [c = between("°C", "°F").ofCounts(CFraction(1, 1000))](
                           const std::int16_t* values, double* results, std::size_t n) {
                    c.convertAll(values, results, n);
                };
            });
        }
    }
    addSize("exact, without FMA, 10^3 values", "a scalar loop", &Arrays::Values, 1'000,
            [] { return scalarLoop; });
    addSize("exact, without FMA, 10^3 values ft to m", "mensor::exact", &Arrays::Values, 1'000, [] {
        return [form = withoutFma(Pairs[0])](const double* values, double* results, std::size_t n) {
            form.convertAll(values, results, n);
        };
    });

    add("exact, 98.6 °F as text", "mensor::exact", [](benchmark::State& state) {
        const CConversion conversion = between("°F", "°C");
        for (auto _ : state) {
            benchmark::DoNotOptimize(conversion.convertText("98.6"));
        }
    });
    add("exact, 98.6 °F as text", "from_chars, to_chars", [](benchmark::State& state) {
        std::string text = "98.6";
        for (auto _ : state) {
            benchmark::DoNotOptimize(text);
            double value = 0;
            std::from_chars(text.data(), text.data() + text.size(), value);
            char written[32];
            const auto end = std::to_chars(written, written + sizeof written, value * 0.3048);
            benchmark::DoNotOptimize(std::string(written, end.ptr));
        }
    });
    return true;
}();

}  // namespace
