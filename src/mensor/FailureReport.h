// FailureReport.h: logs a failure that occurs while the library is loaded. Not installed.
//
// The library does not link log4cplus, which would start threads in every program. If the process
// has loaded and initialised log4cplus, the library loads a module that links it and passes the
// record on (src/mensor_log4cplus). Otherwise the program cannot have configured where records go,
// and no record is written. The library never loads or initialises log4cplus itself: to initialise
// it when memory is short would end the program.
#ifndef MENSOR_FAILUREREPORT_H
#define MENSOR_FAILUREREPORT_H

namespace mensor::detail {

/// A record at error level for the logger "StdCoutLogger".
struct FailureReport {
    const char* Kind;  ///< the beginning of the message, "Exception: "
    const char* What;  ///< the rest of the message
    const char* File;
    int Line;  ///< of the statement that reports
    const char* Function;
};

/// Passes `report` to log4cplus if that is in this process. Ignores all errors and does not call
/// operator new.
void reportFailure(const FailureReport& report) noexcept;

/// The file of the module, in a folder next to the library.
constexpr char ModuleFile[] = "mensor/log4cplus.so";

/// The only function of the module.
constexpr char ModuleFunction[] = "mensorLogFailure";
using LogFailure = void(const FailureReport& report);

}  // namespace mensor::detail

#endif  // MENSOR_FAILUREREPORT_H
