// programs.h: runs the small programs of programs/, to measure new processes.
#ifndef MENSOR_BENCHMARKS_PROGRAMS_H
#define MENSOR_BENCHMARKS_PROGRAMS_H

#include <string>
#include <vector>

/// Returns the output of the program. Ends the process if the program fails.
std::string outputOf(const std::string& program, std::vector<std::string> arguments);

/// Registers benchmarks of work that a process does for the first time. `what` is the argument WHAT of
/// programs/first_time.cpp.
void addFirst(const std::string& work, const std::string& what);

/// Returns the seconds from the start of the program to its end.
double timeOf(const std::string& program);

#endif  // MENSOR_BENCHMARKS_PROGRAMS_H
