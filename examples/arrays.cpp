// arrays.cpp: converts a whole block of samples in place, with one call. Each result has the same bits as
// the conversion of the single value.
#include <iostream>
#include <vector>

#include <mensor/mensor.h>

using namespace mensor;

int main() {
    std::vector<double> samples;  // °C, from a logger
    samples.reserve(1000);
    for (int i = 0; i < 1000; ++i) {
        samples.push_back(20 + 0.001 * i);
    }
    const double first = samples.front();

    const CConverterPtr toKelvin = SI::Celsius()->getConverterTo(SI::Kelvin());
    toKelvin->convertAll(samples.data(), samples.data(), samples.size());

    std::cout << samples.front() << " K to " << samples.back() << " K\n";
    std::cout << (samples.front() == toKelvin->convert(first) ? "the same bits\n" : "other bits\n");
}
