// Fork.h: runs work in a child process that cannot deadlock.
//
// A process may have threads that it did not start: those of log4cplus, or of a sanitizer. A child
// forked while one of them holds a lock, such as that of the sanitizers' allocator, would wait for
// it for ever.
#ifndef MENSOR_TESTS_FORK_H
#define MENSOR_TESTS_FORK_H

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

namespace mensor {

/// The number of threads of this process that are not blocked, including this one.
inline int busyThreads() {
    int count = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(thread.path() / "stat");
        std::string stat;
        std::getline(file, stat);
        const std::size_t end = stat.rfind(") ");  // the end of the name of the thread
        count += end != std::string::npos && stat[end + 2] != 'S' ? 1 : 0;
    }
    return count;
}

/// fork(), at a moment when all other threads are blocked.
inline pid_t forkAtRest() {
    while (busyThreads() > 1) {
        sched_yield();
    }
    return fork();
}

struct ChildEnd {
    std::string Text;
    int Status;  ///< the status of waitpid()
};

/// Runs `work`, which writes a text and returns an exit status, in a child process.
inline ChildEnd inChild(const std::function<int(std::string& text)>& work) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe to a child process");
    }
    std::fflush(nullptr);
    const pid_t child = forkAtRest();
    if (child == 0) {
        std::string text;
        const int status = work(text);
        for (std::size_t done = 0; done < text.size();) {
            const ssize_t count = write(ends[1], text.data() + done, text.size() - done);
            if (count <= 0) {
                _exit(2);
            }
            done += static_cast<std::size_t>(count);
        }
        std::fflush(nullptr);
        _exit(status);
    }
    close(ends[1]);
    ChildEnd end{{}, -1};
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(ends[0], buffer.data(), buffer.size())) > 0;) {
        end.Text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    close(ends[0]);
    waitpid(child, &end.Status, 0);
    return end;
}

}  // namespace mensor

#endif  // MENSOR_TESTS_FORK_H
