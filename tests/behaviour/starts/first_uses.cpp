// first_uses.cpp: a program that does nothing before its threads start. Each thread reads one value
// and converts it, for the first time in this process. Prints nothing if all results are right.
#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <thread>
#include <vector>

#include "mensor/Unit.h"
#include "mensor/ValueWithUnit.h"

namespace {

struct Use {
    const char* Text;
    const char* Unit;
    double Result;
};

constexpr std::array<Use, 8> Uses{{
    {"90 km/h", "m/s", 25},
    {"2.5 kN·m/s", "W", 2500},
    {"36 km/h", "m/min", 600},
    {"5 kW·h/m²", "J/m²", 1.8e7},
    {"3 m/s²", "km/h²", 38880},
    {"7 kg·m/s²", "N", 7},
    {"4 km²/h", "m²/s", 4e6 / 3600},
    {"6 g/ml", "kg/m³", 6000},
}};

}  // namespace

int main() {
    std::atomic<std::size_t> arrived{0};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (const Use& use : Uses) {
        threads.emplace_back([&arrived, &wrong, use] {
            ++arrived;
            while (arrived < Uses.size()) {
                std::this_thread::yield();
            }
            const double result = mensor::CValueWithUnit::fromString(use.Text).valueAs(
                mensor::CUnit::fromString(use.Unit));
            wrong += std::fabs(result - use.Result) > 1e-9 * use.Result ? 1 : 0;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (wrong != 0) {
        std::cout << wrong << " results are wrong\n";
    }
    return wrong;
}
