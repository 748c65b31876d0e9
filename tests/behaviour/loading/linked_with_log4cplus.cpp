// linked_with_log4cplus [FIRST LAST]: a program that links mensor and log4cplus. The allocations
// FIRST to LAST fail, counted from the start of the program. Both libraries are initialised before
// main(), in the order of linking. Output, separated by tabs:
//
//     allocations  COUNT             until main()
//     log4cplus    ready|not ready   when the first allocation failed
#include <dirent.h>

#include <cstdlib>
#include <iostream>

#include <log4cplus/logger.h>

#include "mensor/SI.h"
#include "support/operator_new.h"

namespace {

long first = 0, last = 0;
long threadsAtStart = 0;
bool isLog4cplusReady = false;

// Does not call operator new.
long threads() {
    DIR* const tasks = opendir("/proc/self/task");
    long count = 0;
    while (readdir(tasks) != nullptr) {
        ++count;
    }
    closedir(tasks);
    return count;
}

void failAtChosen(long number) {
    if (number == first) {
        isLog4cplusReady = threads() > threadsAtStart;  // its initialisation starts threads
    }
    if (number >= first && number <= last) {
        throw std::bad_alloc();
    }
}

// Runs before the initialisers of all libraries.
void start(int argc, char** argv, char**) {
    if (argc == 3) {
        first = std::atol(argv[1]);
        last = std::atol(argv[2]);
    }
    threadsAtStart = threads();
    mensor::beforeAllocation = failAtChosen;
}
[[gnu::section(".preinit_array"), gnu::used]] void (*const Start)(int, char**, char**) = start;

}  // namespace

int main() {
    mensor::beforeAllocation = nullptr;
    std::cout << "allocations\t" << mensor::allocations << "\n"
              << "log4cplus\t" << (isLog4cplusReady ? "ready" : "not ready") << "\n";
    // Uses both libraries, so that the linker keeps both.
    return mensor::SI::Meter() != nullptr && log4cplus::Logger::exists("none") ? 1 : 0;
}
