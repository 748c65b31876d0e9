// load_mensor LIBRARY MODULE WHAT [NUMBER...]: loads the library while chosen allocations fail.
//
// WHAT is thrown by operator new while the library is loaded, at the allocations of these NUMBERs,
// counted from 1: "bad_alloc" or "int"; "+off" behind it disables the logger, "+bare" leaves logging
// as it is without configuration. With "+onwards" all allocations from the chosen one on fail, until the
// library is loaded. With "+each" the NUMBERs are FIRST, LAST and STEP: each of these
// allocations fails in a process of its own. Written to standard output, separated by tabs:
//
//     attempt  NUMBER                                          of each process; its errors follow, too
//     record  LEVEL  LOGGER  FILE  LINE  FUNCTION  MESSAGE     one per record logged meanwhile
//     allocations  COUNT                                       while the library was loaded
//     ...                                                      what the module says of the tables
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <new>
#include <string>
#include <vector>

#include <log4cplus/appender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

#include "support/Fork.h"
#include "support/OperatorNew.h"

namespace {

constexpr std::size_t MOST_FAILURES = 8;

bool throwsInt = false;
bool goesOnFailing = false;
long failing[MOST_FAILURES] = {};  // an array, since a container would allocate

void failAtChosen(long number) {
    if (std::find(std::begin(failing), std::end(failing), number) != std::end(failing) ||
        (goesOnFailing && number > failing[0])) {
        if (throwsInt) {
            throw 42;
        }
        throw std::bad_alloc();
    }
}

// Keeps what was logged, as the application's appender would write it.
class Recorder : public log4cplus::Appender {
public:
    explicit Recorder(std::vector<std::string>& records) : m_Records(records) {}
    ~Recorder() override { destructorImpl(); }
    void close() override {}

protected:
    void append(const log4cplus::spi::InternalLoggingEvent& event) override {
        m_Records.push_back(log4cplus::getLogLevelManager().toString(event.getLogLevel()) + "\t" +
                            event.getLoggerName() + "\t" + event.getFile() + "\t" +
                            std::to_string(event.getLine()) + "\t" + event.getFunction() + "\t" +
                            event.getMessage());
    }

private:
    std::vector<std::string>& m_Records;
};

int load(const char* libraryFile, const char* moduleFile, const std::string& what) {
    std::vector<std::string> records;
    if (what.find("+bare") == std::string::npos) {
        log4cplus::Logger logger = log4cplus::Logger::getInstance("StdCoutLogger");
        logger.addAppender(log4cplus::SharedAppenderPtr(new Recorder(records)));
        if (what.find("+off") != std::string::npos) {
            logger.setLogLevel(log4cplus::OFF_LOG_LEVEL);
        }
    }

    mensor::beforeAllocation = failAtChosen;
    void* const library = dlopen(libraryFile, RTLD_NOW);
    mensor::beforeAllocation = nullptr;
    if (library == nullptr) {
        std::cerr << dlerror() << "\n";
        return 1;
    }

    for (const std::string& record : records) {
        std::cout << "record\t" << record << "\n";
    }
    std::cout << "allocations\t" << mensor::allocations << "\n";

    void* const module = dlopen(moduleFile, RTLD_NOW);
    if (module == nullptr) {
        std::cerr << dlerror() << "\n";
        return 1;
    }
    using PrintTables = void (*)();
    reinterpret_cast<PrintTables>(dlsym(module, "printTables"))();
    return 0;
}

int loadForEach(const char* libraryFile, const char* moduleFile, const std::string& what,
                long first, long last, long step) {
    for (long number = first; number <= last; number += step) {
        std::cout << "attempt\t" << number << std::endl;
        const pid_t child = mensor::forkAtRest();
        if (child == 0) {
            failing[0] = number;
            dup2(STDOUT_FILENO, STDERR_FILENO);
            const int status = load(libraryFile, moduleFile, what);
            std::cout.flush();
            _exit(status);  // the threads that the logging library would wait for are not here
        }
        int status = -1;
        waitpid(child, &status, 0);
        if (status != 0) {
            std::cout << "fault\tstatus " << status << std::endl;
        }
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4 || argc > 4 + static_cast<int>(MOST_FAILURES)) {
        std::cerr << "load_mensor LIBRARY MODULE WHAT [NUMBER...]\n";
        return 2;
    }
    const log4cplus::Initializer logging;
    const std::string what = argv[3];
    throwsInt = what.find("int") != std::string::npos;
    goesOnFailing = what.find("+onwards") != std::string::npos;
    if (what.find("+each") != std::string::npos) {
        return loadForEach(argv[1], argv[2], what, std::stol(argv[4]), std::stol(argv[5]),
                           std::stol(argv[6]));
    }
    for (int i = 4; i < argc; ++i) {
        failing[i - 4] = std::stol(argv[i]);
    }
    return load(argv[1], argv[2], what);
}
