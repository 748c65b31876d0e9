// logging.h: what load_mensor has to do with log4cplus. There are two hosts: with_log4cplus.cpp, a program
// that has configured it, and without_log4cplus.cpp, one that does not know it.
#ifndef MENSOR_TESTS_LOADING_LOGGING_H
#define MENSOR_TESTS_LOADING_LOGGING_H

#include <string>

/// Configures logging as `what` says, see load_mensor.cpp.
void startLogging(const std::string& what);

/// Writes what was logged since, a line for each record.
void printRecords();

#endif  // MENSOR_TESTS_LOADING_LOGGING_H
