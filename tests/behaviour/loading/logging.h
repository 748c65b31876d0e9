// logging.h: the use of log4cplus in load_mensor. There are two programs: with_log4cplus.cpp
// configures it, and without_log4cplus.cpp does not use it.
#ifndef MENSOR_TESTS_LOADING_LOGGING_H
#define MENSOR_TESTS_LOADING_LOGGING_H

#include <string>

/// Configures logging as `what` says, see load_mensor.cpp.
void startLogging(const std::string& what);

/// Writes the records since startLogging(), one in each line.
void printRecords();

#endif  // MENSOR_TESTS_LOADING_LOGGING_H
