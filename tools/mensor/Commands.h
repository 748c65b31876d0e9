// Commands.h: what mensor does. Each writes to the report and refuses there what it cannot use.
#ifndef MENSOR_TOOL_COMMANDS_H
#define MENSOR_TOOL_COMMANDS_H

#include "Arguments.h"
#include "Report.h"

void convert(const CArguments& arguments, CReport& report);
void explain(const CArguments& arguments, CReport& report);
void list(const CArguments& arguments, CReport& report);
void audit(const CArguments& arguments, CReport& report);

#endif  // MENSOR_TOOL_COMMANDS_H
