// Commands.h: what mensor does. Each writes to the report and refuses there what it cannot use.
#ifndef MENSOR_TOOL_COMMANDS_H
#define MENSOR_TOOL_COMMANDS_H

#include <optional>
#include <string>

#include <mensor_codes/Codes.h>
#include <mensor_exact/Meaning.h>
#include <mensor_exact/Reading.h>

#include "Arguments.h"
#include "Report.h"
#include "Units.h"

void convert(const CArguments& arguments, const CUnits& units, CReport& report);
void explain(const CArguments& arguments, const CUnits& units, CReport& report);
void list(const CArguments& arguments, const CUnits& units, CReport& report);
void audit(const CArguments& arguments, const CUnits& units, CReport& report);
void code(const CArguments& arguments, const CUnits& units, CReport& report);

/// The explanation of a code: --from, --ucum.
void explainCode(const CArguments& arguments, CReport& report);

/// The value "5 mg/dL", a number and behind blanks a code. Else `refusal` says why it is none.
mensor::exact::CValueReading readCodedValue(const std::string& text, mensor::codes::eSystem system,
                                            std::optional<mensor::exact::CDiagnosis>& refusal);

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
