// threads.cpp: all threads share units and converters. The program needs no lock.
#include <iostream>
#include <thread>
#include <vector>

#include <mensor/mensor.h>

using namespace mensor;

int main() {
    const CConverterPtr toMetrePerSecond =
        CUnit::fromString("km/h")->getConverterTo(SI::Meter() / SI::Second());

    constexpr int THREADS = 4;
    std::vector<double> sums(THREADS);
    std::vector<std::thread> threads;
    threads.reserve(THREADS);
    for (int t = 0; t < THREADS; ++t) {
        threads.emplace_back([&, t] {
            double sum = 0;
            for (int i = 0; i < 1000; ++i) {
                sum += toMetrePerSecond->convert(i);
                // Every thread that reads a unit gets the same object.
                sum += CUnit::fromString("km/h") == CUnit::fromString("km/h") ? 0 : 1;
            }
            sums[static_cast<std::size_t>(t)] = sum;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const double sum : sums) {
        std::cout << sum << " m/s\n";
    }
}
