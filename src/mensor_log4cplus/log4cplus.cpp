// log4cplus.cpp: the module that logs failures at load time with log4cplus. mensor loads it only if log4cplus
// is in the process (mensor/FailureReport.h).
#include <string>

#include <log4cplus/logger.h>

#include "mensor/FailureReport.h"

extern "C" [[gnu::visibility("default")]] void mensorLogFailure(
    const mensor::detail::FailureReport& report);

// Looks the logger up for each report, because the application may configure it at any time.
void mensorLogFailure(const mensor::detail::FailureReport& report) {
    try {
        const log4cplus::Logger logger =
            log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("StdCoutLogger"));
        if (logger.isEnabledFor(log4cplus::ERROR_LOG_LEVEL)) {
            logger.forcedLog(log4cplus::ERROR_LOG_LEVEL, std::string(report.Kind) + report.What,
                             report.File, report.Line, report.Function);
        }
    } catch (...) {  // a failure to log is ignored, so that loading continues
    }
}
