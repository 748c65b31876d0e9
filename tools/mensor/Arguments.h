// Arguments.h: the command line of mensor.
#ifndef MENSOR_TOOL_ARGUMENTS_H
#define MENSOR_TOOL_ARGUMENTS_H

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <mensor_codes/Codes.h>
#include <mensor_exact/Definitions.h>
#include <mensor_exact/Reading.h>

/// The command line is wrong; what() says how.
class CUsageError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

struct CArguments {
    std::string Command;                ///< "convert", "explain", "list", "audit", "code"
    std::vector<std::string> Operands;  ///< what is behind it, without the options
    std::vector<mensor::exact::ePack> Packs;
    std::vector<std::string> UnitFiles;          ///< --units
    mensor::exact::CReadOptions Reading;         ///< --differences, --dimensionless, --strict
    std::optional<mensor::codes::eSystem> From;  ///< --from, --ucum: whose codes are read
    std::optional<mensor::codes::eSystem> To;    ///< --to: whose codes are written
    bool Kinds = false;    ///< no conversion counts the radian, the steradian or the bit as 1
    bool Library = false;  ///< "explain" tells of the library's reader, too
    bool Json = false;
    bool Quiet = false;  ///< no progress
    bool Help = false;
    bool Version = false;
};

/// @throws CUsageError
CArguments readArguments(const std::vector<std::string>& words);

/// The help, every line ended.
const char* help();

#endif  // MENSOR_TOOL_ARGUMENTS_H
