// UcumAtoms.h: the atoms of UCUM, from a table that is independent of the library.
#ifndef MENSOR_TESTS_UCUMATOMS_H
#define MENSOR_TESTS_UCUMATOMS_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "expected_meaning.h"
#include "mensor_exact/Meaning.h"

namespace mensor {

struct UcumAtom {
    std::string Code;
    bool TakesPrefixes = false;
    std::optional<exact::CMeaning> Meaning;  ///< none if UCUM defines it by a function
};

/// Returns the rows of tests/data/ucum_atoms.tsv.
inline const std::vector<UcumAtom>& ucumAtoms() {
    static const std::vector<UcumAtom> atoms = [] {
        std::vector<UcumAtom> rows;
        for (const std::vector<std::string>& row : rowsOf("ucum_atoms.tsv")) {
            UcumAtom atom;
            atom.Code = row.at(0);
            atom.TakesPrefixes = row.at(1) == "yes";
            if (row.at(2) == "unit") {
                atom.Meaning =
                    meaningOf(row.at(3), row.at(4), row.at(5), row.size() > 6 ? row[6] : "");
            }
            rows.push_back(std::move(atom));
        }
        return rows;
    }();
    return atoms;
}

/// Returns the prefixes and their factors.
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
