// print.cpp: prints certificates for check.py, one JSON object in each line: from each unit of the
// catalogue and all packs to its base units and to the units before and after it that have the same
// dimensions.
//
//     print_certificates            all of them
//     print_certificates FROM TO    one
#include <cstdio>
#include <map>
#include <string>
#include <string_view>

#include "mensor_exact/Certificate.h"
#include "mensor_exact/DefinitionFile.h"
#include "mensor_exact/Definitions.h"

using mensor::exact::CCatalogue, mensor::exact::CDefinition, mensor::exact::ePack;

namespace {

CCatalogue catalogueOf(ePack country) {
    return CCatalogue::builtIn()
        .with(ePack::CUSTOMARY)
        .with(country)
        .with(ePack::SCIENCE)
        .with(ePack::OFFSETS)
        .with(ePack::COUNTING);
}

void print(std::string_view from, std::string_view to, const CCatalogue& catalogue) {
    std::printf("%s\n", mensor::exact::certify(from, to, catalogue).toJson().c_str());
}

void printAll(const CCatalogue& catalogue) {
    std::map<std::string, std::string_view> lastOfUnits;
    for (const CDefinition& definition : catalogue.definitions()) {
        const std::string units = catalogue.meaning(definition.Name)->unitsText();
        print(definition.Name, units, catalogue);
        std::string_view& last = lastOfUnits[units];
        if (!last.empty()) {
            print(last, definition.Name, catalogue);
            print(definition.Name, last, catalogue);
        }
        last = definition.Name;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const CCatalogue catalogue = catalogueOf(ePack::US);
    if (argc == 3) {
        print(argv[1], argv[2], catalogue);
        return 0;
    }
    printAll(catalogue);
    printAll(catalogueOf(ePack::IMPERIAL));
    // Roots, π in both units, groups, and units with different marks.
    for (const auto& [from, to] : {std::pair("V/kHz^(1/2)", "µV/Hz^(1/2)"),
                                   {"ft^(1/2)", "km^(1/2)"},
                                   {"rpm", "°/s"},
                                   {"W/(m²·K)", "BTU/(h·ft²·K)"},
                                   {"rev/min", "Hz"},
                                   {"kg·m/s²", "lbf"},
                                   {"%", "ppm"}}) {
        print(from, to, catalogue);
    }
    // Definitions of a program: replaced names, zeros, π and roots.
    const CCatalogue own = mensor::exact::readDefinitions(
        "qway = 3 km/h\n"
        "replace km = 2 km\n"
        "replace lb = 1/2 kg\n"
        "°X = 5/4 K, zero at +273.15 K\n"
        "°Y = 2 °C, zero at +1/3 °X\n"
        "qturn = 1/7 rev\n"
        "qroot = 2/3 km/√lb\n"
        "EUR = base unit\n"
        "qprice = 1.07 EUR/lb\n"
        "replace rev = 3 °\n",
        catalogue, "units.txt");
    printAll(own);
    // A unit of a pack that is defined by a unit of another pack.
    const CCatalogue gauge = CCatalogue::builtIn().with(ePack::OFFSETS);
    print("psi_g", "Pa", gauge);
    print("psi_g", "Pa", gauge.with({{"lbf", "3 N"}}));
}
