// Commands.h: the commands of mensor. Each writes its results and its refusals to the report.
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

/// Explains a code: "explain" with --from or --ucum.
void explainCode(const CArguments& arguments, CReport& report);

/// Reads a value such as "5 mg/dL": a number, blanks and a code. If it is refused, sets `refusal`.
mensor::exact::CValueReading readCodedValue(const std::string& text, mensor::codes::eSystem system,
                                            std::optional<mensor::exact::CDiagnosis>& refusal);

/// A unit of the command line, with its spelling.
struct CTarget {
    std::string Text;
    mensor::exact::CMeaning Meaning;
};

/// Reads a unit of the command line. If it is refused, reports it and returns none.
std::optional<CTarget> readTarget(const std::string& text, const CArguments& arguments,
                                  const CUnits& units, CReport& report);

/// Returns the note for a unit that was read with differences: "\"J/°C\" is read as \"J/K\"".
std::string noteOnDifference(std::string_view unit, const CArguments& arguments,
                             const CUnits& units);

#endif  // MENSOR_TOOL_COMMANDS_H
