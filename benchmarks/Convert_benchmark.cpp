// Convert_benchmark.cpp: getting a converter, and converting one value with it.
//
// A converter of mensor is a chain of the steps that define the two units. A converter of UDUNITS-2
// is a single new object, which must be freed. Boost.Units knows the factor at compile time, which
// is the minimum cost of a conversion.
#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "support.h"

#include <boost/units/absolute.hpp>
#include <boost/units/make_scaled_unit.hpp>
#include <boost/units/quantity.hpp>
#include <boost/units/systems/si.hpp>
#include <boost/units/systems/temperature/celsius.hpp>

#include <cmath>
#include <memory>

using namespace mensor;

namespace {

// One pair of units. UDUNITS-2 has other names for some.
struct Pair {
    const char* Name;
    const char* From;
    const char* To;
    const char* UdunitsFrom;
    const char* UdunitsTo;
};

// The minimum cost of a lookup: a chain is a new object that shares its two steps, and it is freed
// again.
struct CChain {
    virtual ~CChain() = default;
    CConverterPtr First, Second;
    char Rest[sizeof(CCompound) - 2 * sizeof(CConverterPtr) - sizeof(void*)] = {};
};

void addLeastLookup() {
    add("look up km to m", "the least", [](benchmark::State& state) {
        const CConverterPtr chain = CUnit::fromString("km")->getConverterTo(CUnit::fromString("m"));
        const auto* const compound = dynamic_cast<const CCompound*>(chain.get());
        if (compound == nullptr) {
            state.SkipWithError("no chain");
            return;
        }
        const CConverterPtr first = compound->first(), second = compound->second();
        for (auto _ : state) {
            const auto made = std::make_shared<CChain>();
            made->First = first;
            made->Second = second;
            benchmark::DoNotOptimize(made.get());
        }
    });
}

void addLookup(const Pair& pair) {
    add(std::string("look up ") + pair.Name, "mensor", [pair](benchmark::State& state) {
        const CUnitPtr from = CUnit::fromString(pair.From), to = CUnit::fromString(pair.To);
        for (auto _ : state) {
            benchmark::DoNotOptimize(from->getConverterTo(to));
        }
    });
    addUdunitsLookUp(std::string("look up ") + pair.Name, pair.UdunitsFrom, pair.UdunitsTo);
    add(std::string("look up and convert ") + pair.Name, "mensor", [pair](benchmark::State& state) {
        const CUnitPtr from = CUnit::fromString(pair.From), to = CUnit::fromString(pair.To);
        double value = 2.5;
        for (auto _ : state) {
            benchmark::DoNotOptimize(value);
            benchmark::DoNotOptimize(from->getConverterTo(to)->convert(value));
        }
    });
    add(std::string("look up and convert ") + pair.Name, "UDUNITS-2",
        [pair](benchmark::State& state) {
            ut_unit* const from = udunit(pair.UdunitsFrom);
            ut_unit* const to = udunit(pair.UdunitsTo);
            double value = 2.5;
            for (auto _ : state) {
                benchmark::DoNotOptimize(value);
                cv_converter* const converter = ut_get_converter(from, to);
                benchmark::DoNotOptimize(cv_convert_double(converter, value));
                cv_free(converter);
            }
        });
}

// Dependent: each conversion needs the result of the previous one. Every second conversion goes back,
// so the values stay the same. Independent: the processor may overlap the conversions.
constexpr std::size_t Values = 1024;

template <class There, class Back>
void dependent(benchmark::State& state, There there, Back back) {
    double value = 2.5;
    benchmark::DoNotOptimize(value);
    while (state.KeepRunningBatch(2 * Values)) {
        for (std::size_t i = 0; i < Values; ++i) {
            value = back(there(value));
        }
    }
    benchmark::DoNotOptimize(value);
    if (!(std::fabs(value - 2.5) < 0.1)) {
        state.SkipWithError("wrong result");
    }
}

template <class There>
void independent(benchmark::State& state, There there) {
    std::vector<double> values(Values, 2.5), results(Values);
    benchmark::DoNotOptimize(values.data());
    while (state.KeepRunningBatch(Values)) {
        for (std::size_t i = 0; i < Values; ++i) {
            results[i] = there(values[i]);
        }
        benchmark::DoNotOptimize(results.data());
        benchmark::ClobberMemory();
    }
}

void addConversion(const Pair& pair) {
    const std::string name = std::string("convert ") + pair.Name;
    const auto through = [](const CConverterPtr& converter) {
        return [c = converter.get()](double x) { return c->convert(x); };
    };
    const auto throughPeer = [](const cv_converter* converter) {
        return [converter](double x) { return cv_convert_double(converter, x); };
    };
    add(name + ", dependent", "mensor", [=](benchmark::State& state) {
        const CUnitPtr from = CUnit::fromString(pair.From), to = CUnit::fromString(pair.To);
        const CConverterPtr there = from->getConverterTo(to), back = to->getConverterTo(from);
        dependent(state, through(there), through(back));
    });
    add(name + ", dependent", "UDUNITS-2", [=](benchmark::State& state) {
        dependent(state, throughPeer(udunitsConverter(pair.UdunitsFrom, pair.UdunitsTo)),
                  throughPeer(udunitsConverter(pair.UdunitsTo, pair.UdunitsFrom)));
    });
    add(name + ", independent", "mensor", [=](benchmark::State& state) {
        const CConverterPtr there =
            CUnit::fromString(pair.From)->getConverterTo(CUnit::fromString(pair.To));
        independent(state, through(there));
    });
    add(name + ", independent", "UDUNITS-2", [=](benchmark::State& state) {
        independent(state, throughPeer(udunitsConverter(pair.UdunitsFrom, pair.UdunitsTo)));
    });
}

namespace bu = boost::units;
using Metres = bu::quantity<bu::si::length>;
using Kilometres =
    bu::quantity<bu::make_scaled_unit<bu::si::length, bu::scale<10, bu::static_rational<3>>>::type>;
using Kelvins = bu::quantity<bu::absolute<bu::si::temperature>>;
using DegreesCelsius = bu::quantity<bu::absolute<bu::celsius::temperature>>;

template <class From, class To>
void addBoost(const std::string& name) {
    const auto there = [](double x) { return To(From::from_value(x)).value(); };
    const auto back = [](double x) { return From(To::from_value(x)).value(); };
    add(name + ", dependent", "Boost.Units",
        [=](benchmark::State& state) { dependent(state, there, back); });
    add(name + ", independent", "Boost.Units",
        [=](benchmark::State& state) { independent(state, there); });
}

const bool added = [] {
    const Pair kilometre = {"km to m", "km", "m", "km", "m"};
    const Pair celsius = {"°C to K", "°C", "K", "°C", "K"};
    const Pair hour = {"h to min", "h", "min", "h", "min"};
    const Pair product = {"kg·m²/s² to J", "kg·m²/s²", "J", "kg·m²/s²", "J"};
    const Pair year = {"year_calendar to s", "year_calendar", "s", "common_year", "s"};
    addLeastLookup();
    for (const Pair& pair : {kilometre, celsius, hour, product}) {
        addLookup(pair);
    }
    for (const Pair& pair : {kilometre, celsius, year}) {
        addConversion(pair);
    }
    addBoost<Kilometres, Metres>("convert km to m");
    addBoost<DegreesCelsius, Kelvins>("convert °C to K");
    return true;
}();

}  // namespace
