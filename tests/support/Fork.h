// Fork.h: a child process that can go on. The logging library starts threads when it is loaded. A child
// made while one of them holds a lock, such as that of the sanitizers' allocator, would wait for it for
// ever.
#ifndef MENSOR_TESTS_FORK_H
#define MENSOR_TESTS_FORK_H

#include <sched.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace mensor {

/// The threads of this process that do something; this one does.
inline int busyThreads() {
    int count = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(thread.path() / "stat");
        std::string stat;
        std::getline(file, stat);
        const std::size_t end = stat.rfind(") ");  // of its name
        count += end != std::string::npos && stat[end + 2] != 'S' ? 1 : 0;
    }
    return count;
}

/// As fork(), when all other threads wait for something to do.
inline pid_t forkAtRest() {
    while (busyThreads() > 1) {
        sched_yield();
    }
    return fork();
}

}  // namespace mensor

#endif  // MENSOR_TESTS_FORK_H
