// work.cpp: repeats one kind of work and prints the nanoseconds of one repetition. It is a separate
// program, so that it can be started with different builds of the library.
//
// usage: work WHAT   WHAT: parse, "look up", convert, format, request
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <mensor/mensor.h>

using namespace mensor;

int main(int count, char** arguments) {
    const CUnitPtr kilometre = CUnit::fromString("km");
    const CUnitPtr flow = CUnit::fromString("kg·m²/(s³·A)");
    const CConverterPtr converter = kilometre->getConverterTo(SI::Meter());
    const string_t text = "kg·m²/s²";
    const std::string typed = "2.5 km";
    volatile double kept = 0;

    const std::map<std::string, std::function<void()>> works{
        {"parse", [&] { kept = CUnit::fromString(text) ? 1 : 0; }},
        {"look up", [&] { kept = kilometre->getConverterTo(SI::Meter()) ? 1 : 0; }},
        {"convert", [&] { kept = converter->convert(kept); }},
        {"format", [&] { kept = static_cast<double>(flow->toString().size()); }},
        {"request", [&] { kept = CValueWithUnit::fromString(typed).valueAs(SI::Meter()); }},
    };
    const auto work = works.find(count == 2 ? arguments[1] : "");
    if (work == works.end()) {
        return 2;
    }
    constexpr int OPERATIONS = 20000;
    std::vector<double> times;
    for (int i = 0; i < 15; ++i) {
        const auto before = std::chrono::steady_clock::now();
        for (int n = 0; n < OPERATIONS; ++n) {
            work->second();
        }
        const std::chrono::duration<double, std::nano> time =
            std::chrono::steady_clock::now() - before;
        times.push_back(time.count() / OPERATIONS);
    }
    std::printf("%.17g\n", *std::min_element(times.begin(), times.end()));
}
