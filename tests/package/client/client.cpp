#include <mensor/SI.h>
#include <mensor/ValueWithUnit.h>

#include <iostream>

using namespace mensor;

int main() {
    const auto distance = CValueWithUnit::fromString("2.5 km");
    std::cout << distance.valueAs(SI::Meter()) << " m\n";

    const CUnitPtr speed = SI::Meter() / SI::Second();
    std::cout << CUnit::fromString("km/h")->convertValueToUnit(90, speed) << " m/s\n";
}
