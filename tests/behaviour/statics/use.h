// use.h: see main.cpp.
#ifndef MENSOR_TESTS_STATICS_USE_H
#define MENSOR_TESTS_STATICS_USE_H

/// Uses all objects that the library and its companion create on first use, and ends the process if
/// an answer is wrong.
void useEverything();

/// Returns whether to use the objects now.
bool isFirst(const char* moment);

#endif  // MENSOR_TESTS_STATICS_USE_H
