#include <mensor_exact/Conversion.h>
#include <mensor_exact/Reading.h>

#include <iostream>

using namespace mensor::exact;

int main() {
    const CConversion conversion = CConversion::between("km/h", "m/s");
    std::cout << conversion.convertText("0.9") << " m/s, factor " << conversion.factor() << "\n";

    try {
        read("Km");
    } catch (const CReadError& e) {
        std::cout << e.what() << "\n";
    }
}
