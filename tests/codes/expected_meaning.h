// expected_meaning.h: reads the tables of expected meanings.
#ifndef MENSOR_TESTS_EXPECTED_MEANING_H
#define MENSOR_TESTS_EXPECTED_MEANING_H

#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "mensor_exact/Meaning.h"

namespace mensor {

/// Reads "5/9", "25.4" or "1e-7".
inline exact::CFraction fractionOf(const std::string& text) {
    const std::size_t slash = text.find('/');
    const exact::CFraction numerator = exact::CFraction::ofText(text.substr(0, slash));
    return slash == std::string::npos
               ? numerator
               : numerator / exact::CFraction::ofText(text.substr(slash + 1));
}

/// Reads "1", "-2" or "-1/2".
inline exact::CExponent exponentOf(const std::string& text) {
    const std::size_t slash = text.find('/');
    return slash == std::string::npos
               ? exact::CExponent(std::stoi(text))
               : exact::CExponent(std::stoi(text), std::stoi(text.substr(slash + 1)));
}

/// Returns the meaning with this factor, this exponent of π, this offset in base units, and these base
/// units: "kg:1 m:-3".
inline exact::CMeaning meaningOf(const std::string& factor, const std::string& pi,
                                 const std::string& offset, const std::string& dimensions) {
    exact::CMeaning meaning;
    std::istringstream each(dimensions);
    for (std::string power; each >> power;) {
        const std::size_t colon = power.rfind(':');
        meaning = meaning * exact::CMeaning::base(power.substr(0, colon))
                                .power(exponentOf(power.substr(colon + 1)));
    }
    meaning = meaning.scaled(exact::CFactor(fractionOf(factor)) *
                             exact::CFactor::pi().power(exponentOf(pi)));
    return offset == "0" ? meaning : meaning.shifted(fractionOf(offset) / fractionOf(factor));
}

/// Returns the rows of a table of tests/data, without comments, split at tabs.
inline std::vector<std::vector<std::string>> rowsOf(const std::string& name) {
    const std::string path = std::string(MENSOR_TEST_DATA) + "/" + name;
    std::ifstream file(path);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(file, line);) {
        if (line[0] == '#') {
            continue;
        }
        std::vector<std::string> row;
        std::istringstream fields(line);
        for (std::string field; std::getline(fields, field, '\t');) {
            row.push_back(field);
        }
        rows.push_back(std::move(row));
    }
    if (rows.empty()) {
        throw std::runtime_error("no rows in " + path);
    }
    return rows;
}

}  // namespace mensor

#endif  // MENSOR_TESTS_EXPECTED_MEANING_H
