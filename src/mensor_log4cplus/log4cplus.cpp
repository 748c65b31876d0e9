// log4cplus.cpp: the module that hands a failure while mensor is loaded over to log4cplus. mensor loads it
// only where log4cplus is in the process (mensor/FailureReport.h).
#include <string>

#include <log4cplus/logger.h>

#include "mensor/FailureReport.h"

extern "C" [[gnu::visibility("default")]] void mensorLogFailure(
    const mensor::detail::FailureReport& report);

// The logger is looked up at each report: the application may configure it at any time.
void mensorLogFailure(const mensor::detail::FailureReport& report) {
    try {
        const log4cplus::Logger logger =
            log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("StdCoutLogger"));
        if (logger.isEnabledFor(log4cplus::ERROR_LOG_LEVEL)) {
            logger.forcedLog(log4cplus::ERROR_LOG_LEVEL, std::string(report.Kind) + report.What,
                             report.File, report.Line, report.Function);
        }
    } catch (...) {  // nobody is left to tell, and loading goes on
    }
}
