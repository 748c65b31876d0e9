// UcumAtoms.h: what the atoms of UCUM are, by a table that shares nothing with the library.
#ifndef MENSOR_TESTS_UCUMATOMS_H
#define MENSOR_TESTS_UCUMATOMS_H

#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "mensor_exact/Meaning.h"

namespace mensor {

struct UcumAtom {
    std::string Code;
    bool TakesPrefixes = false;
    std::optional<exact::CMeaning> Meaning;  ///< none of a function
};

inline exact::CFraction fractionOf(const std::string& text) {
    const std::size_t slash = text.find('/');
    const exact::CFraction numerator = exact::CFraction::ofText(text.substr(0, slash));
    return slash == std::string::npos
               ? numerator
               : numerator / exact::CFraction::ofText(text.substr(slash + 1));
}

/// The rows of tests/data/ucum_atoms.tsv.
inline const std::vector<UcumAtom>& ucumAtoms() {
    static const std::vector<UcumAtom> atoms = [] {
        std::vector<UcumAtom> rows;
        std::ifstream file(MENSOR_TEST_DATA "/ucum_atoms.tsv");
        for (std::string line; std::getline(file, line);) {
            if (line[0] == '#') {
                continue;
            }
            std::istringstream fields(line);
            std::string prefixes, kind, factor, pi, offset, dimensions;
            UcumAtom atom;
            std::getline(fields, atom.Code, '\t');
            std::getline(fields, prefixes, '\t');
            std::getline(fields, kind, '\t');
            std::getline(fields, factor, '\t');
            std::getline(fields, pi, '\t');
            std::getline(fields, offset, '\t');
            std::getline(fields, dimensions, '\t');
            atom.TakesPrefixes = prefixes == "yes";
            if (kind == "unit") {
                exact::CMeaning meaning;
                std::istringstream each(dimensions);
                for (std::string power; each >> power;) {
                    const std::size_t colon = power.rfind(':');
                    meaning = meaning * exact::CMeaning::base(power.substr(0, colon))
                                            .power(std::stoi(power.substr(colon + 1)));
                }
                meaning = meaning.scaled(exact::CFactor(fractionOf(factor)) *
                                         exact::CFactor::pi().power(std::stoi(pi)));
                if (offset != "0") {  // in base units
                    meaning = meaning.shifted(fractionOf(offset) / fractionOf(factor));
                }
                atom.Meaning = meaning;
            }
            rows.push_back(std::move(atom));
        }
        if (rows.empty()) {
            throw std::runtime_error("no rows in " MENSOR_TEST_DATA "/ucum_atoms.tsv");
        }
        return rows;
    }();
    return atoms;
}

/// The prefixes and their factors.
inline const std::vector<std::pair<std::string, exact::CFraction>>& ucumPrefixes() {
    static const std::vector<std::pair<std::string, exact::CFraction>> prefixes = [] {
        std::vector<std::pair<std::string, exact::CFraction>> result;
        const std::pair<const char*, const char*> texts[] = {
            {"Y", "1e24"},  {"Z", "1e21"},     {"E", "1e18"},        {"P", "1e15"},
            {"T", "1e12"},  {"G", "1e9"},      {"M", "1e6"},         {"k", "1e3"},
            {"h", "1e2"},   {"da", "1e1"},     {"d", "1e-1"},        {"c", "1e-2"},
            {"m", "1e-3"},  {"u", "1e-6"},     {"n", "1e-9"},        {"p", "1e-12"},
            {"f", "1e-15"}, {"a", "1e-18"},    {"z", "1e-21"},       {"y", "1e-24"},
            {"Ki", "1024"}, {"Mi", "1048576"}, {"Gi", "1073741824"}, {"Ti", "1099511627776"}};
        for (const auto& [symbol, factor] : texts) {
            result.emplace_back(symbol, exact::CFraction::ofText(factor));
        }
        return result;
    }();
    return prefixes;
}

}  // namespace mensor

#endif  // MENSOR_TESTS_UCUMATOMS_H
