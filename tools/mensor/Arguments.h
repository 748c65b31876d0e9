// Arguments.h: reads the command line of mensor.
#ifndef MENSOR_TOOL_ARGUMENTS_H
#define MENSOR_TOOL_ARGUMENTS_H

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <mensor_codes/Codes.h>
#include <mensor_exact/Definitions.h>
#include <mensor_exact/Reading.h>

/// Thrown if the command line is wrong; what() says why.
class CUsageError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

struct CArguments {
    std::string Command;                ///< "convert", "explain", "list", "audit", "code"
    std::vector<std::string> Operands;  ///< the words after the command, without the options
    std::vector<mensor::exact::ePack> Packs;
    std::vector<std::string> UnitFiles;          ///< --units
    mensor::exact::CReadOptions Reading;         ///< --differences, --dimensionless, --strict
    std::optional<mensor::codes::eSystem> From;  ///< --from, --ucum: read codes of this system
    std::optional<mensor::codes::eSystem> To;    ///< --to: write codes of this system
    bool Kinds = false;    ///< refuse to count the radian, the steradian or the bit as 1
    bool Library = false;  ///< "explain" also shows what the library's reader does
    bool Json = false;
    bool Quiet = false;  ///< show no progress
    bool Help = false;
    bool Version = false;
};

/// @throws CUsageError
CArguments readArguments(const std::vector<std::string>& words);

/// Returns the help. Every line ends with "\n".
const char* help();

#endif  // MENSOR_TOOL_ARGUMENTS_H
