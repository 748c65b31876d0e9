#include <mensor/SI.h>
#include <mensor/ValueWithUnit.h>

#include <iostream>

int main() {
    const auto distance = mensor::CValueWithUnit::fromString("2.5 km");
    std::cout << "2.5 km = " << distance.valueAs(mensor::SI::Meter()) << " m\n";
}
