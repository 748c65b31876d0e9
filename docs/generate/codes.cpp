// codes.cpp: writes the tables of codes of the library as a page.
//
//     codes > docs/codes-tables.md
#include <iostream>
#include <string>
#include <string_view>

#include "mensor_codes/Codes.h"
#include "mensor_codes/OpcUa.h"

using namespace mensor;
using codes::eSystem;

namespace {

// Returns `text` as code. For Doxygen an apostrophe ends a text between backticks.
std::string code(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const bool isPlain = text.find_first_of("'\"%") == std::string_view::npos;
    std::string result = isPlain ? "`" : "<code>";
    for (const char c : text) {
        result += c == '"' ? std::string("&quot;") : std::string(1, c);
    }
    return result + (isPlain ? "`" : "</code>");
}

std::string remarks(const codes::CCode& row) {
    std::string text(row.Note);
    if (!row.SameAs.empty()) {
        text += (text.empty() ? "same as " : "; same as ") + code(row.SameAs);
    }
    if (row.IsDeprecated) {
        text += text.empty() ? "not for new use" : "; not for new use";
    }
    return text;
}

void writeMeanings(eSystem system, bool hasIds) {
    std::cout << "| Code |" << (hasIds ? " Unit id |" : "")
              << " Symbol | Name | Definition | Meaning | Source | Remarks |\n"
              << "|---|" << (hasIds ? "---|" : "") << "---|---|---|---|---|---|\n";
    for (const codes::CCode& row : codes::all(system)) {
        if (row.Definition.empty()) {
            continue;
        }
        std::cout << "| " << code(row.Code) << " | ";
        if (hasIds) {
            std::cout << *codes::unitIdOf(row.Code) << " | ";
        }
        std::cout << code(row.Symbol) << " | " << row.Name << " | " << code(row.Definition) << " | "
                  << code(codes::read(system, row.Code).toString()) << " | " << row.Source << " | "
                  << remarks(row) << " |\n";
    }
}

void writeRefusals(eSystem system) {
    std::cout
        << "| Code | Symbol | Name | Reason of the refusal | Remarks |\n|---|---|---|---|---|\n";
    for (const codes::CCode& row : codes::all(system)) {
        if (row.Definition.empty()) {
            std::cout << "| " << code(row.Code) << " | " << code(row.Symbol) << " | " << row.Name
                      << " | " << row.Source << " | " << remarks(row) << " |\n";
        }
    }
}

}  // namespace

int main() {
    std::cout << "# Tables of codes\n\n"
                 "All codes of [codes.md](codes.md), as the library has them. The meaning is in "
                 "base units; "
                 "definitions\n"
                 "use the names of [packs.md](packs.md) and a few of their own.\n\n"
                 "## UN/CEFACT and OPC UA\n\n";
    writeMeanings(eSystem::UNECE, true);
    std::cout << "\n### UN/CEFACT and OPC UA, refused\n\n";
    writeRefusals(eSystem::UNECE);
    std::cout << "\n## SenML\n\n";
    writeMeanings(eSystem::SENML, false);
    std::cout << "\n### SenML, refused\n\n";
    writeRefusals(eSystem::SENML);
    std::cout << "\n## Atoms of UCUM\n\n";
    writeMeanings(eSystem::UCUM, false);
    std::cout << "\n### Atoms of UCUM, refused\n\n";
    writeRefusals(eSystem::UCUM);
}
