#include "programs.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "support.h"

extern char** environ;

namespace {

pid_t start(const std::string& program, const std::vector<std::string>& arguments,
            const posix_spawn_file_actions_t* actions) {
    const std::string path = std::string(MENSOR_BENCHMARK_PROGRAMS "/") + program;
    std::vector<char*> argv = {const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    pid_t pid = 0;
    if (posix_spawn(&pid, path.c_str(), actions, nullptr, argv.data(), environ) != 0) {
        std::fprintf(stderr, "cannot start %s\n", path.c_str());
        std::exit(1);
    }
    return pid;
}

void finish(pid_t pid, const std::string& program) {
    int status = 0;
    if (waitpid(pid, &status, 0) != pid || status != 0) {
        std::fprintf(stderr, "%s failed\n", program.c_str());
        std::exit(1);
    }
}

}  // namespace

std::string outputOf(const std::string& program, std::vector<std::string> arguments) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        std::perror("pipe");
        std::exit(1);
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    const pid_t pid = start(program, arguments, &actions);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    std::string output;
    char buffer[256];
    for (ssize_t count; (count = read(ends[0], buffer, sizeof buffer)) > 0;) {
        output.append(buffer, static_cast<std::size_t>(count));
    }
    close(ends[0]);
    finish(pid, program);
    return output;
}

void addFirst(const std::string& work, const std::string& what) {
    for (const char* who : {"mensor", "UDUNITS-2"}) {
        add(work, who,
            [what, who](benchmark::State& state) {
                for (auto _ : state) {
                    state.SetIterationTime(1e-9 * std::stod(outputOf("first_time", {who, what})));
                }
            })
            ->UseManualTime()
            ->Iterations(5);
    }
}

double timeOf(const std::string& program) {
    const auto before = std::chrono::steady_clock::now();
    finish(start(program, {}, nullptr), program);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count();
}
