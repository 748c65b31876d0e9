#include <mensor_codes/Codes.h>
#include <mensor_codes/OpcUa.h>

#include <iostream>

using namespace mensor;

int main() {
    const exact::CMeaning unit = codes::read(codes::eSystem::SENML, "km/h");
    const std::string code = codes::codeFor(codes::eSystem::UNECE, unit).Code;
    std::cout << code << " is " << unit.toString() << ", unit id " << codes::opcUaUnit(code).UnitId
              << "\n";

    try {
        codes::read(codes::eSystem::UNECE, "DZP");
    } catch (const exact::CReadError& e) {
        std::cout << e.what() << "\n";
    }
}
