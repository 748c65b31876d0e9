// Load_benchmark.cpp: what a process pays for linking the library: time from start to end, heap and
// resident memory.
//
// mensor links log4cplus, whose own start (with four threads) takes most of the time; mensor's own
// part is what a process with mensor needs more than one with log4cplus alone. What UDUNITS-2 needs
// for the same state, a database in memory, is reading its XML files, beyond an empty process.
#include "Benchmark.h"
#include "Programs.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

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

double timeOf(const std::string& program) {
    const auto before = std::chrono::steady_clock::now();
    finish(start(program, {}, nullptr), program);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count();
}

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

constexpr int Starts = 15;  // per repetition, of which the median is taken

void startOf(benchmark::State& state, const std::string& program) {
    for (auto _ : state) {
        std::vector<double> times;
        for (int i = 0; i < Starts; ++i) {
            times.push_back(timeOf(program));
        }
        state.SetIterationTime(median(times));
    }
}

// Both are started by turns, so that a change of the machine's mood meets both.
void moreThan(benchmark::State& state, const std::string& program, const std::string& base) {
    for (auto _ : state) {
        std::vector<double> differences;
        for (int i = 0; i < Starts; ++i) {
            const double without = timeOf(base);
            differences.push_back(timeOf(program) - without);
        }
        state.SetIterationTime(median(differences));
    }
}

// The programs print "<bytes of heap in use> <bytes resident>".
void memoryMoreThan(benchmark::State& state, const std::string& program, const std::string& base) {
    for (auto _ : state) {
        double heap = 0, resident = 0, baseHeap = 0, baseResident = 0;
        std::sscanf(outputOf(program, {"memory"}).c_str(), "%lf %lf", &heap, &resident);
        std::sscanf(outputOf(base, {"memory"}).c_str(), "%lf %lf", &baseHeap, &baseResident);
        state.counters["heap"] = heap - baseHeap;
        state.counters["resident"] = resident - baseResident;
    }
}

const bool added = [] {
    const auto addStart = [](const char* who, const char* program) {
        add("start a process", who, [program](benchmark::State& state) {
            startOf(state, program);
        })->UseManualTime()->Iterations(1)->Unit(benchmark::kMicrosecond);
    };
    addStart("nothing", "load_nothing");
    addStart("log4cplus", "load_log4cplus");
    addStart("mensor", "load_mensor");
    addStart("UDUNITS-2", "load_udunits2");
    const auto addOwn = [](const char* who, const char* program, const char* base) {
        add("own part of the start", who, [program, base](benchmark::State& state) {
            moreThan(state, program, base);
        })->UseManualTime()->Iterations(1)->Unit(benchmark::kMicrosecond);
        add("memory", who, [program, base](benchmark::State& state) {
            memoryMoreThan(state, program, base);
        })->Iterations(1);
    };
    addOwn("mensor", "load_mensor", "load_log4cplus");
    addOwn("UDUNITS-2", "load_udunits2", "load_nothing");
    return true;
}();

}  // namespace
