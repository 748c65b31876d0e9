// The audit reads units with the registry, where two units may have the same hash code.
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "Commands.h"
#include "Display.h"
#include "Lines.h"
#include "Registry.h"

void audit(const CArguments& arguments, const CUnits& units, CReport& report) {
    if (!units.registerAll(&report)) {
        return;
    }
    const std::string& name = arguments.Operands[0];
    std::ifstream file;
    if (name != "-") {
        file.open(name);
        if (!file || file.peek() == std::ifstream::traits_type::eof()) {
            // A folder can be opened but not read. An empty file is accepted.
            if (!file.is_open() || !file.eof()) {
                throw std::runtime_error(cannotRead(name));
            }
        }
    }
    CLines lines(name == "-" ? std::cin : file, name == "-" ? "the standard input" : quoted(name));
    std::size_t texts = 0;
    for (std::string line; lines.next(line);) {
        report.progress(lines.number(), name == "-" ? lines.bytes() : 0);
        if (isBlank(line) || line[line.find_first_not_of(" \t")] == '#') {
            continue;
        }
        ++texts;
        const auto refusal = registry().refusalOf(line, arguments.Reading);
        if (!refusal) {
            continue;
        }
        if (report.isJson()) {
            report.countRefused();
            report.line(CJsonObject()
                            .text("file", name)
                            .count("line", lines.number())
                            .text("text", line)
                            .raw("error", jsonOf(*refusal))
                            .toString());
        } else {
            report.refuse(name + ":" + std::to_string(lines.number()) + ": ", *refusal);
        }
    }
    report.endProgress();
    if (report.isJson()) {
        report.line(
            CJsonObject().count("texts", texts).count("refused", report.refused()).toString());
    } else {
        report.line(std::to_string(texts) + " units, " + std::to_string(report.refused()) +
                    " refused");
    }
}
