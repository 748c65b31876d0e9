// convert.cpp: converts a value that a person typed.
//
//     $ convert "2.5 km" m
//     2.5 km = 2500 m
#include <exception>
#include <iostream>

#include <mensor_checked/Reading.h>
#include <mensor_checked/Values.h>

using namespace mensor;

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: convert \"VALUE UNIT\" UNIT...\n";
        return 2;
    }
    try {
        const CValueWithUnit given = checked::readValue(argv[1]);
        for (int i = 2; i < argc; ++i) {
            const CUnitPtr unit = checked::readUnit(argv[i]);
            const CValueWithUnit converted = given.convertTo(unit);
            std::cout << checked::writeValue(given) << " = " << checked::writeValue(converted)
                      << '\n';
        }
    } catch (const checked::CReadError& e) {  // shows the typed text and the position of the error
        std::cerr << e.diagnosis().caret() << e.what() << '\n';
        return 1;
    } catch (const std::exception& e) {  // units of different kinds
        std::cerr << e.what() << '\n';
        return 1;
    }
}
