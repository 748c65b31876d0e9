// failure_report.h: how a failure while the library is loaded gets into the log. For the library's own
// use; not installed.
//
// The library does not link log4cplus: that would start threads in every program. A program that has
// configured log4cplus has it in the process already. If so, a module of ours that links it is loaded, and
// hands the record over (src/mensor_log4cplus). If not, or if log4cplus is not initialised yet, nobody can
// have configured where records go, and none is written. log4cplus is never brought into a process nor
// initialised, since to initialise it while memory fails would end the program.
#ifndef MENSOR_FAILURE_REPORT_H
#define MENSOR_FAILURE_REPORT_H

namespace mensor {
namespace detail {

/// A record at error level for the logger "StdCoutLogger".
struct FailureReport {
    const char* Kind;  ///< the beginning of the message, "Exception: "
    const char* What;  ///< the rest of it
    const char* File;
    int Line;  ///< of the statement that reports
    const char* Function;
};

/// Hands `report` over to log4cplus if it is in this process. Fails without a word, and needs no memory of
/// operator new.
void reportFailure(const FailureReport& report) noexcept;

/// The folder of the module, beside the library, and its file.
constexpr char ModuleFile[] = "mensor/log4cplus.so";

/// The one function of the module.
constexpr char ModuleFunction[] = "mensorLogFailure";
using LogFailure = void(const FailureReport& report);

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_FAILURE_REPORT_H
