// load_mensor LIBRARY MODULE WHAT [NUMBER...]: loads the library while chosen allocations fail.
//
// WHAT is thrown by operator new while the library is loaded, at the allocations of these NUMBERs,
// counted from 1: "bad_alloc" or "int"; "+off" behind it disables the logger, "+bare" leaves logging
// as it is without configuration. Written to standard output, separated by tabs:
//
//     record  LEVEL  LOGGER  FILE  LINE  FUNCTION  MESSAGE     one per record logged meanwhile
//     allocations  COUNT                                       while the library was loaded
//     ...                                                      what the module says of the tables
//
// An armed operator new must be that of the program: the library's calls then come here.
#include <dlfcn.h>

#include <cstdlib>
#include <iostream>
#include <new>
#include <set>
#include <string>
#include <vector>

#include <log4cplus/appender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

namespace {

constexpr std::size_t MOST_FAILURES = 8;

bool isArmed = false;
bool throwsInt = false;
long allocations = 0;
long failing[MOST_FAILURES] = {};  // an array, since a container would allocate

void* allocate(std::size_t size) {
    if (isArmed) {
        ++allocations;
        for (const long number : failing) {
            if (number == allocations) {
                if (throwsInt) {
                    throw 42;
                }
                throw std::bad_alloc();
            }
        }
    }
    if (void* memory = std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
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

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

int main(int argc, char** argv) {
    if (argc < 4 || argc > 4 + static_cast<int>(MOST_FAILURES)) {
        std::cerr << "load_mensor LIBRARY MODULE WHAT [NUMBER...]\n";
        return 2;
    }
    const std::string what = argv[3];
    throwsInt = what.find("int") != std::string::npos;
    for (int i = 4; i < argc; ++i) {
        failing[i - 4] = std::stol(argv[i]);
    }

    std::vector<std::string> records;
    const log4cplus::Initializer logging;
    if (what.find("+bare") == std::string::npos) {
        log4cplus::Logger logger = log4cplus::Logger::getInstance("StdCoutLogger");
        logger.addAppender(log4cplus::SharedAppenderPtr(new Recorder(records)));
        if (what.find("+off") != std::string::npos) {
            logger.setLogLevel(log4cplus::OFF_LOG_LEVEL);
        }
    }

    isArmed = true;
    void* const library = dlopen(argv[1], RTLD_NOW);
    isArmed = false;
    if (library == nullptr) {
        std::cerr << dlerror() << "\n";
        return 1;
    }

    for (const std::string& record : records) {
        std::cout << "record\t" << record << "\n";
    }
    std::cout << "allocations\t" << allocations << "\n";

    void* const module = dlopen(argv[2], RTLD_NOW);
    if (module == nullptr) {
        std::cerr << dlerror() << "\n";
        return 1;
    }
    using PrintTables = void (*)();
    reinterpret_cast<PrintTables>(dlsym(module, "printTables"))();
    return 0;
}
