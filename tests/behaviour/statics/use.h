// use.h: see main.cpp.
#ifndef MENSOR_TESTS_STATICS_USE_H
#define MENSOR_TESTS_STATICS_USE_H

/// Uses all that the library and its companion create on first use, and ends the process if an answer
/// is wrong.
void useEverything();

/// Whether the program is to use it first at this moment.
bool isFirst(const char* moment);

#endif  // MENSOR_TESTS_STATICS_USE_H
