// mensor: converts values, explains units, lists them, and checks lists of them.
//
//     $ mensor convert "2.5 km" m
//     2.5 km = 2500 m
//     $ mensor explain W/m²/K
//
// The exact library reads and converts the units, without a registry. It guesses nothing. A refusal shows the
// place in the text. Only "audit" and --library load the library with the registry. The status is 0 if all
// is well, 1 if some input was refused, 2 for wrong use.
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "Arguments.h"
#include "Commands.h"
#include "Report.h"
#include "Units.h"

namespace {

constexpr int GOOD = 0;
constexpr int REFUSED = 1;
constexpr int WRONG_USE = 2;

int run(const CArguments& arguments) {
    if (arguments.Help) {
        std::cout << help();
        return GOOD;
    }
    if (arguments.Version) {
        std::cout << "mensor " MENSOR_VERSION "\n";
        return GOOD;
    }
    CReport report(arguments.Json, arguments.Quiet);
    const CUnits units(arguments, report);
    if (report.refused() > 0) {
        return REFUSED;
    }
    const auto command = arguments.Command == "convert"   ? convert
                         : arguments.Command == "explain" ? explain
                         : arguments.Command == "list"    ? list
                         : arguments.Command == "code"    ? code
                                                          : audit;
    command(arguments, units, report);
    return report.refused() == 0 ? GOOD : REFUSED;
}

}  // namespace

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    int status = WRONG_USE;
    try {
        status = run(readArguments({argv + 1, argv + argc}));
    } catch (const CUsageError& e) {
        std::cerr << "mensor: " << e.what() << "\nTry mensor --help\n";
        return WRONG_USE;
    } catch (const std::exception& e) {
        std::cerr << "mensor: " << e.what() << '\n';
        return WRONG_USE;
    }
    if (!std::cout.flush()) {
        std::cerr << "mensor: cannot write the output\n";
        return WRONG_USE;
    }
    return status;
}
