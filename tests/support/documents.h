// documents.h: reads the pages of docs/, so that tests can check what a page shows. For tests that
// are built with MENSOR_DOCS, the folder.
//
//     for (const auto& table : documentTables("reading.md", {"Written", "Is"}))
//         for (const Row& row : table) ... row[0] ...
#ifndef MENSOR_TESTS_DOCUMENTS_H
#define MENSOR_TESTS_DOCUMENTS_H

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace mensor::test {

using Row = std::vector<std::string>;

/// The text of the page. @throws std::runtime_error  there is no page with this name.
inline std::string document(const std::string& name) {
    std::ifstream file(MENSOR_DOCS "/" + name);
    if (!file) {
        throw std::runtime_error("no page " + name);
    }
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The cells of a line "| a | `b` |" without blanks and back quotes around, "\x00" as that byte;
/// none if the line is not a row.
inline Row cells(const std::string& line) {
    Row row;
    if (line.empty() || line[0] != '|') {
        return row;
    }
    std::istringstream in(line.substr(1));
    for (std::string cell; std::getline(in, cell, '|');) {
        const auto begin = cell.find_first_not_of(' ');
        const auto end = cell.find_last_not_of(' ');
        cell = begin == std::string::npos ? "" : cell.substr(begin, end - begin + 1);
        if (cell.size() > 1 && cell.front() == '`' && cell.back() == '`') {
            cell = cell.substr(1, cell.size() - 2);
        }
        for (std::size_t at = 0; (at = cell.find("\\x", at)) != std::string::npos; ++at) {
            const int byte = std::stoi(cell.substr(at + 2, 2), nullptr, 16);
            cell.replace(at, 4, 1, static_cast<char>(static_cast<unsigned char>(byte)));
        }
        row.push_back(cell);
    }
    return row;
}

/// The rows of every table of the page with this header row.
inline std::vector<std::vector<Row>> documentTables(const std::string& name, const Row& head) {
    std::vector<std::vector<Row>> tables;
    bool isInside = false;
    std::istringstream in(document(name));
    for (std::string line; std::getline(in, line);) {
        const Row row = cells(line);
        if (row == head) {
            isInside = true;
            tables.emplace_back();
            std::getline(in, line);  // "|---|---|"
        } else if (row.empty()) {
            isInside = false;
        } else if (isInside) {
            tables.back().push_back(row);
        }
    }
    return tables;
}

}  // namespace mensor::test

#endif  // MENSOR_TESTS_DOCUMENTS_H
