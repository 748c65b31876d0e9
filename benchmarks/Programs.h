// Programs.h: runs the small programs of programs/, to measure what only a fresh process shows.
#ifndef MENSOR_BENCHMARKS_PROGRAMS_H
#define MENSOR_BENCHMARKS_PROGRAMS_H

#include <string>
#include <vector>

/// What the program prints. Ends the process if the program fails.
std::string outputOf(const std::string& program, std::vector<std::string> arguments);

/// Registers benchmarks of what only a process that has not done it yet can show.
/// `what` is known to programs/first_time.cpp.
void addFirst(const std::string& work, const std::string& what);

/// Seconds from before the program is started until it has ended.
double timeOf(const std::string& program);

#endif  // MENSOR_BENCHMARKS_PROGRAMS_H
