// main.cpp: the main() of the test programs. Each test runs in a process of its own, since the
// tables of the library live as long as the process, and many tests need them new.
//
// The processes are forked from one that has loaded the library and run no test. That takes a tenth
// of the time of starting a program, and less under an emulator. A process that has had another
// thread cannot fork safely. In that case, or if MENSOR_TESTS_START_ANEW is set, each test starts
// the program again. MENSOR_TEST_EMULATOR is the command that starts programs of another processor;
// the build may define it. If the filter selects one test, it runs in this process, where a
// debugger finds it.
#include <fnmatch.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/single_threaded.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#ifndef MENSOR_TEST_EMULATOR
#define MENSOR_TEST_EMULATOR ""
#endif

namespace {

using Clock = std::chrono::steady_clock;

// After this time a signal ends the test. The tests of all cases take minutes on an idle machine.
unsigned secondsOfATest() { return std::getenv("MENSOR_TESTS_THOROUGH") != nullptr ? 1800 : 300; }

// Returns whether one of the patterns, which are separated by colons, matches the whole name.
bool isMatchedByAny(const std::string& patterns, const std::string& name) {
    std::istringstream stream(patterns);
    for (std::string pattern; std::getline(stream, pattern, ':');) {
        if (fnmatch(pattern.c_str(), name.c_str(), 0) == 0) {
            return true;
        }
    }
    return false;
}

// The tests that --gtest_filter selects: POSITIVE[-NEGATIVE], each a list of patterns.
std::vector<std::string> selectedTests() {
    const std::string filter = GTEST_FLAG_GET(filter);
    const std::size_t dash = filter.find('-');
    std::string positive = filter.substr(0, dash);
    const std::string negative = dash == std::string::npos ? "" : filter.substr(dash + 1);
    if (positive.empty()) {
        positive = "*";
    }
    std::vector<std::string> names;
    const ::testing::UnitTest& all = *::testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const ::testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const std::string name = std::string(suite.name()) + '.' + suite.GetTestInfo(j)->name();
            if (isMatchedByAny(positive, name) && !isMatchedByAny(negative, name)) {
                names.push_back(name);
            }
        }
    }
    return names;
}

// Replaces this process by a new one of the same program that runs one test, under the same
// emulator, if any.
[[noreturn]] void startAnew(const std::string& name) {
    const char* const emulator = std::getenv("MENSOR_TEST_EMULATOR");
    std::istringstream command(emulator != nullptr ? emulator : MENSOR_TEST_EMULATOR);
    std::vector<std::string> words;
    for (std::string word; command >> word;) {
        words.push_back(word);
    }
    words.push_back(std::filesystem::read_symlink("/proc/self/exe"));
    words.push_back("--gtest_filter=" + name);
    words.push_back("--gtest_brief=1");
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    execvp(arguments.front(), arguments.data());
    std::perror(arguments.front());
    _exit(127);
}

// Runs the one test that the filter selects and returns the exit status. A test that skips itself,
// or a filter that selects none, counts as failed.
int runTheOne() {
    const int status = RUN_ALL_TESTS();
    return status == 0 && ::testing::UnitTest::GetInstance()->successful_test_count() != 1 ? 1
                                                                                           : status;
}

// Runs the test in a process and returns the status of waitpid(); 0 if the test passed.
int statusOf(const std::string& name) {
    std::fflush(nullptr);
    const bool isForkEnough =
        __libc_single_threaded != 0 && std::getenv("MENSOR_TESTS_START_ANEW") == nullptr;
    const pid_t child = fork();
    if (child == 0) {
        alarm(secondsOfATest());
        if (!isForkEnough) {
            startAnew(name);
        }
        GTEST_FLAG_SET(filter, name);
        GTEST_FLAG_SET(brief, true);
        std::exit(runTheOne());
    }
    int status = -1;
    if (child == -1 || waitpid(child, &status, 0) != child) {
        std::perror("fork");
        return -1;
    }
    return status;
}

std::string described(int status) {
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                               : "status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    const std::vector<std::string> tests = selectedTests();
    if (GTEST_FLAG_GET(list_tests)) {
        return RUN_ALL_TESTS();
    }
    if (tests.size() <= 1) {
        return runTheOne();
    }
    std::vector<std::string> failed;
    for (const std::string& name : tests) {
        if (!GTEST_FLAG_GET(brief)) {
            std::printf("[ RUN      ] %s\n", name.c_str());
        }
        const Clock::time_point begin = Clock::now();
        const int status = statusOf(name);
        const auto time =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin).count();
        if (status != 0) {
            std::printf("[  FAILED  ] %s: %s (%lld ms)\n", name.c_str(), described(status).c_str(),
                        static_cast<long long>(time));
            failed.push_back(name);
            if (GTEST_FLAG_GET(fail_fast)) {
                break;
            }
        } else if (!GTEST_FLAG_GET(brief)) {
            std::printf("[       OK ] %s (%lld ms)\n", name.c_str(), static_cast<long long>(time));
        }
    }
    std::printf("%zu tests, %zu failed\n", tests.size(), failed.size());
    return failed.empty() ? 0 : 1;
}
