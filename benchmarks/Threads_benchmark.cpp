// Threads_benchmark.cpp: two threads, each on a core of its own, compared with one thread. There is
// no peer: the parser of UDUNITS-2 serves one thread at a time. Each kind of work is measured twice:
// both threads use the same units, or each uses its own.
#include <cstdint>

#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/ValueWithUnit.h"
#include "mensor_exact/Reading.h"
#include "support.h"

using namespace mensor;

namespace {

// The units of the two threads if they differ.
const char* const Texts[2] = {"km", "kPa"};
const char* const Targets[2] = {"m", "Pa"};
const char* const Requests[2] = {"2.5 km", "2.5 kPa"};

// Pins each thread to its own core while it works. Afterwards the main thread is on the first core again.
class COwnCore {
public:
    explicit COwnCore(benchmark::State& state) : m_Thread(state.thread_index()) {
        if (!pinToCore(m_Thread)) {
            state.SkipWithError("needs two cores");
        }
    }
    ~COwnCore() { pinToCore(0); }
    COwnCore(const COwnCore&) = delete;
    COwnCore& operator=(const COwnCore&) = delete;

private:
    int m_Thread;
};

// `makeWork(which)` returns the function that thread `which` repeats.
template <class MakeWork>
void addWork(const std::string& name, MakeWork makeWork) {
    for (const bool same : {false, true}) {
        const auto run = [same, makeWork](benchmark::State& state) {
            const COwnCore core(state);
            auto work = makeWork(same ? 0 : state.thread_index());
            for (auto _ : state) {
                work();
            }
        };
        const std::string work = name + (same ? ", same unit" : ", distinct units");
        add(work, "one thread", run)->UseRealTime();
        add(work, "two threads", run)->Threads(2)->UseRealTime();
    }
}

// Arithmetic in registers, for about as long as reading a text. Two threads share nothing here, so this
// row shows what the machine gives to two threads.
std::uint64_t arithmetic(std::uint64_t number) {
    for (int i = 0; i < 100; ++i) {
        number = (number ^ number >> 29) * 0x9E3779B97F4A7C15;
    }
    return number;
}

const bool added = [] {
    addWork("share nothing", [](int which) {
        return [number = static_cast<std::uint64_t>(which) + 1]() mutable {
            number = arithmetic(number);
            benchmark::DoNotOptimize(number);
        };
    });
    addWork("parse", [](int which) {
        return
            [text = string_t(Texts[which])] { benchmark::DoNotOptimize(CUnit::fromString(text)); };
    });
    addWork("look up", [](int which) {
        return [from = CUnit::fromString(Texts[which]), to = CUnit::fromString(Targets[which])] {
            benchmark::DoNotOptimize(from->getConverterTo(to));
        };
    });
    addWork("convert", [](int which) {
        return
            [c = CUnit::fromString(Texts[which])->getConverterTo(CUnit::fromString(Targets[which])),
             value = 2.5]() mutable {
                benchmark::DoNotOptimize(value);
                benchmark::DoNotOptimize(c->convert(value));
            };
    });
    addWork("request", [](int which) {
        return [text = std::string(Requests[which]), to = CUnit::fromString(Targets[which])] {
            benchmark::DoNotOptimize(CValueWithUnit::fromString(text).valueAs(to));
        };
    });
    addWork("read exactly", [](int which) {
        return [text = std::string(Texts[which])] {
            benchmark::DoNotOptimize(exact::tryRead(text, exact::CCatalogue::builtIn()));
        };
    });
    return true;
}();

}  // namespace
