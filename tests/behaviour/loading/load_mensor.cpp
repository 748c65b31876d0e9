// load_mensor LIBRARY MODULE WHAT [NUMBER...]: loads the library while chosen allocations fail.
//
// While the library is loaded, operator new throws WHAT at the allocations of these NUMBERs,
// counted from 1: "bad_alloc" or "int". A suffix "+off" disables the logger, "+bare" leaves logging
// without configuration. With "+onwards" all allocations from the first NUMBER fail, until the
// library is loaded. With "+each" the NUMBERs are FIRST, LAST and STEP: each of these allocations
// fails in a process of its own. Output, separated by tabs:
//
//     attempt  NUMBER                                          the allocation that fails, with "+each"
//     record  LEVEL  LOGGER  FILE  LINE  FUNCTION  MESSAGE     a record that was logged during load
//     allocations  COUNT                                       the allocations during load
//     started  COUNT                                           the threads that were started during load
//     mapped  FILE                                             a loaded file of log4cplus or of mensor
//     ...                                                      what MODULE prints about the tables
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <new>
#include <string>
#include <vector>

#include "logging.h"
#include "support/Fork.h"
#include "support/operator_new.h"

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

bool isMapped(const std::string& name) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(name) != std::string::npos) {
            return true;
        }
    }
    return false;
}

long threads() {
    const std::filesystem::directory_iterator begin("/proc/self/task"), end;
    return static_cast<long>(std::distance(begin, end));
}

int load(const char* libraryFile, const char* moduleFile, const std::string& what) {
    startLogging(what);
    const long threadsBefore = threads();

    mensor::beforeAllocation = failAtChosen;
    void* const library = dlopen(libraryFile, RTLD_NOW);
    mensor::beforeAllocation = nullptr;
    if (library == nullptr) {
        std::cerr << dlerror() << "\n";
        return 1;
    }

    printRecords();
    std::cout << "allocations\t" << mensor::allocations << "\n"
              << "started\t" << threads() - threadsBefore << "\n";
    for (const char* const name : {"liblog4cplus", "mensor/log4cplus.so"}) {
        if (isMapped(name)) {
            std::cout << "mapped\t" << name << "\n";
        }
    }

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
            _exit(status);  // log4cplus would wait for threads that this process does not have
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
