// mensor: converts values, explains units, lists them, and checks lists of them.
//
//     $ mensor convert "2.5 km" m
//     2.5 km = 2500 m
//     $ mensor explain W/m²/K
//
// Units are read by the checked companion of the library: nothing is guessed, and what is refused is
// shown with its place. The status is 0, 1 if some input was refused, 2 for wrong use.
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <mensor/NonSI.h>
#include <mensor_checked/OwnUnits.h>

#include "Arguments.h"
#include "Commands.h"
#include "Report.h"

namespace {

using mensor::checked::CDefinitions;

constexpr int GOOD = 0;
constexpr int REFUSED = 1;
constexpr int WRONG_USE = 2;

// Defines the units of a file; its lines that are refused are reported.
void defineUnits(const std::string& name, CReport& report) {
    std::ifstream file(name);
    std::string table;
    for (std::string line; std::getline(file, line);) {
        table += line + '\n';
    }
    if (!file.is_open() || file.bad()) {
        throw std::runtime_error("cannot read \"" + name + "\"");
    }
    const CDefinitions result = mensor::checked::tryDefineUnits(table);
    for (const auto& finding : result.Findings) {
        report.refuse(name + ":" + std::to_string(finding.Line) + ": ", finding.Refusal);
    }
}

// Registers what the command line asks for; says whether all of it could be.
bool registerUnits(const CArguments& arguments, CReport& report) {
    mensor::NonSI::Psi();  // the one named unit that the library does not register by itself
    for (const mensor::checked::ePack pack : arguments.Packs) {
        try {
            mensor::checked::registerPack(pack);
        } catch (const mensor::checked::CIdentityError& e) {
            report.refuse("", e.what());
        }
    }
    for (const std::string& file : arguments.UnitFiles) {
        defineUnits(file, report);
    }
    return report.refused() == 0;
}

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
    if (!registerUnits(arguments, report)) {
        return REFUSED;
    }
    const auto command = arguments.Command == "convert"   ? convert
                         : arguments.Command == "explain" ? explain
                         : arguments.Command == "list"    ? list
                                                          : audit;
    command(arguments, report);
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
