// compatible_units.cpp: prints the entries of a drop-down list for a value. The first is the value in the
// unit in which it is easiest to read. The others are all units of the same kind.
#include <iostream>

#include <mensor/mensor.h>
#include <mensor_checked/Choosing.h>
#include <mensor_checked/Values.h>

using namespace mensor;

int main() {
    const CValueWithUnit given = CValueWithUnit::fromString("0.0042 bar");
    std::cout << checked::writeValue(checked::readable(given)) << '\n';

    for (const checked::CChoice& choice : checked::choicesFor(given.unit())) {
        const double value = given.valueAs(choice.Unit);
        if (value >= 0.001 && value < 10000) {  // leaves out results such as 4.2e+26 yPa
            std::cout << "    " << value << ' ' << choice.Text << '\n';
        }
    }
}
