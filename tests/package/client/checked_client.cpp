#include <mensor_checked/Reading.h>
#include <mensor_checked/Values.h>

#include <iostream>

using namespace mensor;

int main() {
    const auto distance = checked::readValue("2.5 km");
    std::cout << distance.valueAs(checked::readUnit("m")) << " m\n";

    try {
        checked::readUnit("W/m²/K");
    } catch (const checked::CReadError& e) {
        std::cout << e.diagnosis().caret() << e.what() << "\n";
    }
}
