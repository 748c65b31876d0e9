// Catalogue.h: the expected catalogue, each name and its unit, from data/labels.tsv. data/labels.py
// makes that file without the library.
//
//     for (const CatalogueRow& row : catalogueRows()) {
//         SCOPED_TRACE(row.Name);
//         EXPECT_EQ(bitsOf(unit->getConverterTo(system)->convert(2.5)), bitsOf(row.toSystem(2.5)));
//     }
#ifndef MENSOR_TESTS_CATALOGUE_H
#define MENSOR_TESTS_CATALOGUE_H

#include <cstdint>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "mensor/Unit.h"

namespace mensor {

/// One step of the conversion from a unit to its system unit.
struct Step {
    char Kind;  ///< '*' multiplies, '+' adds
    double Number;
};

/// One name after load.
struct CatalogueRow {
    std::string Name;         ///< symbol or label
    int Id;                   ///< the id of the unit
    std::string System;       ///< the text of the system unit
    std::vector<Step> Steps;  ///< to the system unit, in order; none for a system unit
    std::uint64_t SlopeBits;  ///< of the converter to the system unit at 0
    std::uint64_t OneBits;    ///< of 1 expressed in the system unit

    double toSystem(double x) const {
        for (const Step& step : Steps) {
            x = step.Kind == '*' ? x * step.Number : x + step.Number;
        }
        return x;
    }

    double fromSystem(double x) const {
        for (auto step = Steps.rbegin(); step != Steps.rend(); ++step) {
            x = step->Kind == '*' ? x * (1.0 / step->Number) : x + -step->Number;
        }
        return x;
    }

    bool isSystemUnit() const { return Steps.empty(); }
};

inline std::vector<CatalogueRow> catalogueRows() {
    const std::string path = std::string(MENSOR_TEST_DATA) + "/labels.tsv";
    std::ifstream file(path);
    std::vector<CatalogueRow> rows;
    for (std::string line; std::getline(file, line);) {
        if (line[0] == '#') {
            continue;
        }
        std::istringstream fields(line);
        std::string id, steps, slope, one;
        CatalogueRow row;
        std::getline(fields, row.Name, '\t');
        std::getline(fields, id, '\t');
        std::getline(fields, row.System, '\t');
        std::getline(fields, steps, '\t');
        std::getline(fields, slope, '\t');
        std::getline(fields, one, '\t');
        row.Id = std::stoi(id);
        row.SlopeBits = std::stoull(slope, nullptr, 16);
        row.OneBits = std::stoull(one, nullptr, 16);
        std::istringstream each(steps);
        for (std::string step; each >> step;) {
            row.Steps.push_back({step[0], std::stod(step.substr(1))});
        }
        rows.push_back(row);
    }
    if (rows.empty()) {
        throw std::runtime_error("No rows in " + path);
    }
    return rows;
}

/// An accessor of SI or NonSI, by name.
struct Accessor {
    const char* Name;
    CUnitPtr (*Get)();
};

}  // namespace mensor

#endif  // MENSOR_TESTS_CATALOGUE_H
