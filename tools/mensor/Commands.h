// Commands.h: what mensor does. Each writes to the report and refuses there what it cannot use.
#ifndef MENSOR_TOOL_COMMANDS_H
#define MENSOR_TOOL_COMMANDS_H

#include <optional>
#include <string>

#include <mensor_exact/Meaning.h>

#include "Arguments.h"
#include "Report.h"
#include "Units.h"

void convert(const CArguments& arguments, const CUnits& units, CReport& report);
void explain(const CArguments& arguments, const CUnits& units, CReport& report);
void list(const CArguments& arguments, const CUnits& units, CReport& report);
void audit(const CArguments& arguments, const CUnits& units, CReport& report);

/// A unit of the command line, which keeps its spelling.
struct CTarget {
    std::string Text;
    mensor::exact::CMeaning Meaning;
};

/// Reads a unit of the command line; none if it is refused, which the report is told.
std::optional<CTarget> readTarget(const std::string& text, const CArguments& arguments,
                                  const CUnits& units, CReport& report);

/// What to say where differences were read: "\"J/°C\" is read as \"J/K\"".
std::string noteOnDifference(std::string_view unit, const CArguments& arguments,
                             const CUnits& units);

#endif  // MENSOR_TOOL_COMMANDS_H
