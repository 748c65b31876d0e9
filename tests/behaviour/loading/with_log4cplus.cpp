#include <iostream>
#include <string>
#include <vector>

#include <log4cplus/appender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

#include "logging.h"

namespace {

const log4cplus::Initializer initializer;
std::vector<std::string> records;

// Stores the records as an appender of an application would write them.
class Recorder : public log4cplus::Appender {
public:
    ~Recorder() override { destructorImpl(); }
    void close() override {}

protected:
    void append(const log4cplus::spi::InternalLoggingEvent& event) override {
        records.push_back(log4cplus::getLogLevelManager().toString(event.getLogLevel()) + "\t" +
                          event.getLoggerName() + "\t" + event.getFile() + "\t" +
                          std::to_string(event.getLine()) + "\t" + event.getFunction() + "\t" +
                          event.getMessage());
    }
};

}  // namespace

void startLogging(const std::string& what) {
    if (what.find("+bare") != std::string::npos) {
        return;
    }
    log4cplus::Logger logger = log4cplus::Logger::getInstance("StdCoutLogger");
    logger.addAppender(log4cplus::SharedAppenderPtr(new Recorder));
    if (what.find("+off") != std::string::npos) {
        logger.setLogLevel(log4cplus::OFF_LOG_LEVEL);
    }
}

void printRecords() {
    for (const std::string& record : records) {
        std::cout << "record\t" << record << "\n";
    }
}
