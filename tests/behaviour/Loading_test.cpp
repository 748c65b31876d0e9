// Loading_test.cpp: the library loads in a fixed order and without output. If memory runs out
// meanwhile, its tables stay consistent. A program that loads the library has an operator new of
// its own, which throws at given allocations (loading/).
#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "mensor/mensor_global.h"
#include "support/Catalogue.h"
#include "support/Matchers.h"
#include "support/thorough.h"

namespace mensor {
namespace {
using ::testing::ElementsAre, ::testing::Gt, ::testing::HasSubstr, ::testing::IsEmpty,
    ::testing::Le, ::testing::Not, ::testing::SizeIs, ::testing::StartsWith;

using Names = std::set<std::string>;

std::vector<std::string> split(const std::string& line, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(line);
    for (std::string part; std::getline(in, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

std::string contentsOf(const std::string& path) {
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    return contents.str();
}

// The program that loads the library.

struct Record {
    std::string Level, Logger, File, Function, Message;
    int Line;
};

void PrintTo(const Record& record, std::ostream* out) {
    *out << record.Level << ", " << record.Logger << ", " << record.File << ":" << record.Line
         << ", " << record.Function << ", " << record.Message;
}

struct Outcome {
    int Status = -1;
    std::string Error;  // the output on the standard error stream
    std::vector<Record> Records;
    long Allocations = 0;
    Names Labels;
    std::vector<std::string> Faults, Works, Mapped;
    long ThreadsStarted = -1;
    std::size_t Units = 0;
};

const char LINE_OF_THE_SI_UNITS[] = "registerSiUnits() exception\n";

/// The output of the command.
std::string outputOf(const std::string& command, int& status) {
    std::FILE* const pipe = popen(("ulimit -c 0; " + command).c_str(), "r");
    std::string output;
    char buffer[4096];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, pipe)) {
        output.append(buffer, count);
    }
    status = pclose(pipe);
    return output;
}

Outcome outcomeFrom(const std::string& output) {
    Outcome outcome;
    for (const std::string& line : split(output, '\n')) {
        const std::vector<std::string> parts = split(line, '\t');
        if (parts[0] == "record") {
            outcome.Records.push_back({parts.at(1), parts.at(2), parts.at(3), parts.at(5),
                                       parts.at(6), std::stoi(parts.at(4))});
        } else if (parts[0] == "allocations") {
            outcome.Allocations = std::stol(parts.at(1));
        } else if (parts[0] == "started") {
            outcome.ThreadsStarted = std::stol(parts.at(1));
        } else if (parts[0] == "mapped") {
            outcome.Mapped.push_back(parts.at(1));
        } else if (parts[0] == "labels") {
            const auto labels = split(line.substr(line.find('\t') + 1), ' ');
            outcome.Labels.insert(labels.begin(), labels.end());
        } else if (parts[0] == "fault") {
            outcome.Faults.push_back(parts.at(1));
        } else if (parts[0] == "units") {
            outcome.Units = static_cast<std::size_t>(std::stol(parts.at(1)));
        } else if (parts[0] == "works") {
            outcome.Works.push_back(parts.at(1));
        } else if (line + "\n" == LINE_OF_THE_SI_UNITS) {
            outcome.Error += line + "\n";
        } else {
            ADD_FAILURE() << "unknown line of the program: " << line;
        }
    }
    return outcome;
}

/// The program that loads the library, and the file of the library.
struct Host {
    const char* Program = WITH_LOG4CPLUS;
    const char* Library = MENSOR_LIBRARY;

    std::string command(const std::string& what) const {
        return std::string(Program) + " '" + Library + "' '" MENSOR_TABLES "' " + what;
    }
};

const Host Without{WITHOUT_LOG4CPLUS, MENSOR_LIBRARY};

/// Loads the library; these allocations throw `what`.
Outcome load(const std::string& what, const std::vector<long>& failing = {},
             const Host& host = {}) {
    const std::string errors =
        ::testing::TempDir() + "mensor_loading_" + std::to_string(getpid()) + ".txt";
    std::string command = host.command(what);
    for (const long number : failing) {
        command += " " + std::to_string(number);
    }
    int status = -1;
    Outcome outcome = outcomeFrom(outputOf(command + " 2>" + errors, status));
    outcome.Status = status;
    outcome.Error = contentsOf(errors);
    std::remove(errors.c_str());
    return outcome;
}

/// Loads the library once for each of these allocations and lets that allocation fail.
std::map<long, Outcome> loadForEach(const std::string& what, long first, long last, long step,
                                    const Host& host = {}) {
    int status = -1;
    const std::string output = outputOf(host.command(what + "+each") + " " + std::to_string(first) +
                                            " " + std::to_string(last) + " " + std::to_string(step),
                                        status);
    EXPECT_EQ(status, 0);
    const std::string mark = "attempt\t";
    std::map<long, Outcome> outcomes;
    for (std::size_t begin = output.find(mark); begin < output.size();) {
        begin += mark.size();
        const std::size_t end = output.find(mark, begin);
        const std::string attempt = output.substr(begin, end - begin);
        const std::size_t line = attempt.find('\n');
        Outcome& outcome = outcomes[std::stol(attempt)];
        outcome = outcomeFrom(attempt.substr(line + 1));
        outcome.Status = 0;  // any other status is an error
        begin = end;
    }
    return outcomes;
}

// Some tests let one allocation after the other fail and load the library for each. They try one of
// every step() allocations. The number is odd, so that it does not follow the loops over prefixes.
// MENSOR_STEP in the environment is another number; 1 takes a minute.
long step() {
    const char* const requested = std::getenv("MENSOR_STEP");
    return requested != nullptr                  ? std::atol(requested)
           : test::isThorough() && !test::IsSlow ? 7
                                                 : test::casesOf(51L, 101L);
}

// The number of allocations during load. The first is that of the prefix table. Those of the
// registry begin with the second and end with the last.
long allocationsOfALoad() { return load("bad_alloc").Allocations; }

constexpr long FIRST_OF_THE_REGISTRY = 2;
const char SI_FUNCTION[] = "void mensor::registerSiUnits()";
const char NON_SI_FUNCTION[] = "void mensor::registerNonSiUnits()";

std::string lineOfSource(const std::string& file, int number) {
    std::ifstream in(std::string(MENSOR_SOURCE_DIR) + "/" + file);
    std::string line;
    for (int i = 0; i < number; ++i) {
        std::getline(in, line);
    }
    return line;
}

MATCHER_P2(Reports, function, message, "") {
    *result_listener << "logged at: " << lineOfSource(arg.File, arg.Line);
    return arg.Level == "ERROR" && arg.Logger == "StdCoutLogger" &&
           arg.File.rfind("src/mensor/UnitRegistry", 0) == 0 &&
           lineOfSource(arg.File, arg.Line).find("reportFailure(") != std::string::npos &&
           arg.Function == function && arg.Message == message;
}

// Returns the labels that exist if the library is loaded up to the given labels of SI units and of
// other units.

struct Labelling {
    std::string Label, Replaces;
};

std::vector<Labelling> labellingsOfTheSIUnits() {
    std::vector<Labelling> steps;
    for (const std::string& symbol :
         split("A cd K m mol s rad sr Hz N Pa J W C V F \u2126 S Wb T H lx Bq Gy Sv kat", ' ')) {
        for (const CPrefix& prefix : prefixes()) {
            steps.push_back({text(prefix.Symbol) + symbol, ""});
        }
    }
    steps.push_back({"g", ""});
    for (const CPrefix& prefix : prefixes()) {
        if (prefix.Factor != 1000) {
            steps.push_back({text(prefix.Symbol) + "g", ""});
        }
    }
    steps.push_back({"°C", ""});
    for (const CPrefix& prefix : prefixes()) {
        steps.push_back({text(prefix.Symbol) + "°C", text(prefix.Symbol) + "K"});
    }
    return steps;
}

std::vector<Labelling> labellingsOfTheOthers() {
    std::vector<Labelling> steps;
    for (const std::string& label :
         split("% grav rev grade byte min h d week year month day_sidereal year_sidereal "
               "year_calendar mm_Hg in_Hg l pl nl µl ml cl dl atm bar mbar ° ′ ″ centiradian",
               ' ')) {
        steps.push_back({label, label == "mbar" ? "hPa" : label == "centiradian" ? "crad" : ""});
    }
    return steps;
}

void give(Names& names, const Labelling& step) {
    names.erase(step.Replaces);
    names.insert(step.Label);
}

Names labelsAfter(std::size_t siSteps, std::size_t otherSteps) {
    const auto si = labellingsOfTheSIUnits();
    const auto others = labellingsOfTheOthers();
    Names names;
    std::for_each(si.begin(), si.begin() + static_cast<std::ptrdiff_t>(siSteps),
                  [&](const Labelling& step) { give(names, step); });
    std::for_each(others.begin(), others.begin() + static_cast<std::ptrdiff_t>(otherSteps),
                  [&](const Labelling& step) { give(names, step); });
    return names;
}

MATCHER(AreThoseOfAnInterruptedSIRegistration, "") {
    static const std::set<Names> all = [] {
        std::set<Names> result;
        for (std::size_t steps = 0; steps <= labellingsOfTheSIUnits().size(); ++steps) {
            result.insert(labelsAfter(steps, labellingsOfTheOthers().size()));
        }
        return result;
    }();
    *result_listener << "which match no number of steps";
    return all.count(arg) == 1;
}

MATCHER(AreThoseOfAnInterruptedNonSIRegistration, "") {
    static const std::set<Names> all = [] {
        std::set<Names> result;
        for (std::size_t steps = 0; steps < labellingsOfTheOthers().size(); ++steps) {
            result.insert(labelsAfter(labellingsOfTheSIUnits().size(), steps));
        }
        return result;
    }();
    *result_listener << "which match no number of steps";
    return all.count(arg) == 1;
}

/// After any failure the tables are consistent, and the next call builds a missing unit.
void expectSound(const Outcome& outcome) {
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_THAT(outcome.Faults, IsEmpty());
    EXPECT_THAT(outcome.Works,
                ElementsAre("A cd K kg m mol s rad sr bit Hz Bq g N J W V \u2126 Wb H Gy Sv Pa C F "
                            "S T °C lm lx kat % rev ° ′ ″ centiradian grade byte byte atm bar psi "
                            "mbar mm_Hg in_Hg l grav min h d week year_calendar year month "
                            "day_sidereal year_sidereal ",
                            "1000 3600"));
}

TEST(Loading, HasNoOutputAndRegistersTheCatalogue) {
    const Outcome outcome = load("bad_alloc");
    EXPECT_EQ(outcome.Error, "");
    EXPECT_THAT(outcome.Records, IsEmpty());
    EXPECT_GT(outcome.Allocations, 1000);
    EXPECT_EQ(outcome.Units, 652U);
    Names labels;
    for (const CatalogueRow& row : catalogueRows()) {
        if (!row.isSystemUnit()) {
            labels.insert(row.Name);
        }
    }
    EXPECT_EQ(outcome.Labels, labels);
    expectSound(outcome);
}

TEST(Loading, AFailureAmongTheSIUnitsIsReportedAndTheOthersAreRegistered) {
    const Outcome outcome = load("bad_alloc", {allocationsOfALoad() / 2});
    EXPECT_EQ(outcome.Error, LINE_OF_THE_SI_UNITS);
    EXPECT_THAT(outcome.Records, ElementsAre(Reports(SI_FUNCTION, "Exception: std::bad_alloc")));

    EXPECT_THAT(outcome.Labels, AreThoseOfAnInterruptedSIRegistration());
    EXPECT_EQ(outcome.Labels.count("YA"), 1U);    // registered before the failure
    EXPECT_EQ(outcome.Labels.count("kkat"), 0U);  // would be registered after the failure
    EXPECT_EQ(outcome.Labels.count("°C"), 0U);
    for (const Labelling& step : labellingsOfTheOthers()) {
        EXPECT_EQ(outcome.Labels.count(step.Label), 1U) << step.Label;
    }
    expectSound(outcome);
}

TEST(Loading, AFailureAmongTheOtherUnitsIsReportedWithoutALineOnStandardError) {
    const Outcome outcome = load("bad_alloc", {allocationsOfALoad() - 20});
    EXPECT_EQ(outcome.Error, "");
    EXPECT_THAT(outcome.Records,
                ElementsAre(Reports(NON_SI_FUNCTION, "Exception: std::bad_alloc")));
    EXPECT_THAT(outcome.Labels, AreThoseOfAnInterruptedNonSIRegistration());
    EXPECT_EQ(outcome.Labels.count("l"), 1U);
    EXPECT_EQ(outcome.Labels.count("centiradian"), 0U);
    expectSound(outcome);
}

TEST(Loading, AnExceptionThatIsNotStandardIsReportedAsUnknown) {
    const long count = allocationsOfALoad();
    const Outcome si = load("int", {count / 2});
    EXPECT_EQ(si.Error, LINE_OF_THE_SI_UNITS);
    EXPECT_THAT(si.Records, ElementsAre(Reports(SI_FUNCTION, "Unknown Exception: ")));
    EXPECT_THAT(si.Labels, AreThoseOfAnInterruptedSIRegistration());
    expectSound(si);

    const Outcome others = load("int", {count - 20});
    EXPECT_EQ(others.Error, "");
    EXPECT_THAT(others.Records, ElementsAre(Reports(NON_SI_FUNCTION, "Unknown Exception: ")));
    EXPECT_THAT(others.Labels, AreThoseOfAnInterruptedNonSIRegistration());
    expectSound(others);
}

// A hundred allocations after the first failure, the library has reported the failure and registers the
// other units.
TEST(Loading, FailuresInBothGroupsAreReportedInOrder) {
    const long first = allocationsOfALoad() / 2;
    const Outcome outcome = load("bad_alloc", {first, first + 100});
    EXPECT_EQ(outcome.Error, LINE_OF_THE_SI_UNITS);
    EXPECT_THAT(outcome.Records,
                ElementsAre(Reports(SI_FUNCTION, "Exception: std::bad_alloc"),
                            Reports(NON_SI_FUNCTION, "Exception: std::bad_alloc")));
    expectSound(outcome);
}

// A failure does not load log4cplus.
TEST(Loading, WithoutLog4cplusAFailureWritesOnlyTheLineOnStandardError) {
    const long count = load("bad_alloc", {}, Without).Allocations;
    const Outcome si = load("bad_alloc", {count / 2}, Without);
    EXPECT_EQ(si.Error, LINE_OF_THE_SI_UNITS);
    EXPECT_THAT(si.Mapped, IsEmpty());
    EXPECT_THAT(si.Labels, AreThoseOfAnInterruptedSIRegistration());
    expectSound(si);

    const Outcome others = load("bad_alloc", {count - 20}, Without);
    EXPECT_EQ(others.Error, "");
    EXPECT_THAT(others.Mapped, IsEmpty());
    EXPECT_THAT(others.Labels, AreThoseOfAnInterruptedNonSIRegistration());
    expectSound(others);
}

TEST(Loading, WithoutLog4cplusSurvivesTheFailureOfAnyAllocation) {
    const long count = load("bad_alloc", {}, Without).Allocations;
    for (const char* const what : {"bad_alloc", "bad_alloc+onwards"}) {
        for (const auto& [number, outcome] :
             loadForEach(what, FIRST_OF_THE_REGISTRY, count, 3 * step(), Without)) {
            SCOPED_TRACE(std::string(what) + " " + std::to_string(number));
            expectSound(outcome);
            EXPECT_THAT(outcome.Mapped, IsEmpty());
        }
    }
}

TEST(Loading, StartsNoThreadAndDoesNotLoadLog4cplus) {
    const Outcome outcome = load("bad_alloc", {}, Without);
    EXPECT_EQ(outcome.ThreadsStarted, 0);
    EXPECT_THAT(outcome.Mapped, IsEmpty());
    EXPECT_THAT(load("bad_alloc").Mapped,
                ElementsAre("liblog4cplus"));  // the program itself links it
}

// The module is not installed.
TEST(Loading, WithoutTheModuleAFailureWritesOnlyTheLineOnStandardError) {
    const Outcome outcome =
        load("bad_alloc", {allocationsOfALoad() / 2}, {WITH_LOG4CPLUS, MENSOR_ALONE});
    EXPECT_EQ(outcome.Error, LINE_OF_THE_SI_UNITS);
    EXPECT_THAT(outcome.Records, IsEmpty());
    expectSound(outcome);
}

TEST(Loading, FindsTheModuleNextToTheTargetOfASymbolicLink) {
    const Outcome outcome =
        load("bad_alloc", {allocationsOfALoad() / 2}, {WITH_LOG4CPLUS, MENSOR_LINKED});
    EXPECT_THAT(outcome.Records, ElementsAre(Reports(SI_FUNCTION, "Exception: std::bad_alloc")));
    expectSound(outcome);
}

// Two programs that link both libraries and run out of memory during load. They differ in which
// library is initialised first.

struct LinkedOutcome {
    int Status = -1;
    std::string Output, Error;
    long Allocations = 0;
};

LinkedOutcome startLinked(const std::string& program, const std::string& arguments = "") {
    const std::string errors =
        ::testing::TempDir() + "mensor_linked_" + std::to_string(getpid()) + ".txt";
    LinkedOutcome outcome;
    outcome.Output = outputOf(program + " " + arguments + " 2>" + errors, outcome.Status);
    outcome.Error = contentsOf(errors);
    std::remove(errors.c_str());
    std::istringstream(outcome.Output).ignore(100, '\t') >> outcome.Allocations;
    return outcome;
}

LinkedOutcome failInTheRegistry(const std::string& program, long firstOfTheRegistry,
                                long failures) {
    const long first = firstOfTheRegistry + allocationsOfALoad() / 2;
    return startLinked(program, std::to_string(first) + " " + std::to_string(first + failures - 1));
}

// If log4cplus were initialised at the first failure, the second would end the program.
TEST(Loading, AFailureBeforeLog4cplusIsInitialisedDoesNotInitialiseIt) {
    for (const long failures : {1L, 2L}) {
        SCOPED_TRACE(failures);
        const LinkedOutcome outcome =
            failInTheRegistry(MENSOR_FIRST, FIRST_OF_THE_REGISTRY, failures);
        EXPECT_EQ(outcome.Status, 0);
        EXPECT_THAT(outcome.Output, HasSubstr("log4cplus\tnot ready"));
        EXPECT_EQ(outcome.Error, LINE_OF_THE_SI_UNITS);
    }
}

TEST(Loading, AFailureAfterLog4cplusIsInitialisedIsLogged) {
    const long ofBoth = startLinked(LOG4CPLUS_FIRST).Allocations;
    const LinkedOutcome outcome =
        failInTheRegistry(LOG4CPLUS_FIRST, ofBoth - allocationsOfALoad(), 1);
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_THAT(outcome.Output, HasSubstr("log4cplus\tready"));
    EXPECT_THAT(outcome.Error, StartsWith(LINE_OF_THE_SI_UNITS));
    EXPECT_THAT(outcome.Error,
                HasSubstr("StdCoutLogger"));  // log4cplus complains that it has no appender
}

// The report needs memory, too. If there is none, it is incomplete or missing, and loading goes on.
TEST(Loading, SurvivesAFailureOfTheReportItself) {
    const long first = allocationsOfALoad() / 2;
    std::size_t complete = 0;
    for (long second = first + 1; second <= first + 4; ++second) {
        SCOPED_TRACE(second);
        const Outcome outcome = load("bad_alloc", {first, second});
        EXPECT_EQ(outcome.Error, LINE_OF_THE_SI_UNITS);
        EXPECT_THAT(outcome.Records, SizeIs(Le(1U)));
        complete += outcome.Records.size() == 1 &&
                    outcome.Records[0].Message == "Exception: std::bad_alloc";
        EXPECT_THAT(outcome.Labels, AreThoseOfAnInterruptedSIRegistration());
        expectSound(outcome);
    }
    EXPECT_LT(complete, 4U);
}

TEST(Loading, TheLineOnStandardErrorIsWrittenEvenIfTheLoggerIsOff) {
    const Outcome outcome = load("bad_alloc+off", {allocationsOfALoad() / 2});
    EXPECT_EQ(outcome.Error, LINE_OF_THE_SI_UNITS);
    EXPECT_THAT(outcome.Records, IsEmpty());
}

// log4cplus without a configuration writes an error line. The line of mensor comes before it.
TEST(Loading, TheLineOnStandardErrorComesFirst) {
    const Outcome outcome = load("bad_alloc+bare", {allocationsOfALoad() / 2});
    EXPECT_THAT(outcome.Error, StartsWith(LINE_OF_THE_SI_UNITS));
    EXPECT_THAT(outcome.Error, HasSubstr("StdCoutLogger"));
}

void expectInterruptedSIRegistration(const Outcome& outcome) {
    EXPECT_THAT(outcome.Records[0], Reports(SI_FUNCTION, "Exception: std::bad_alloc"));
    EXPECT_EQ(outcome.Error, LINE_OF_THE_SI_UNITS);
    EXPECT_THAT(outcome.Labels, AreThoseOfAnInterruptedSIRegistration());
}

void expectInterruptedNonSIRegistration(const Outcome& outcome) {
    EXPECT_THAT(outcome.Records[0], Reports(NON_SI_FUNCTION, "Exception: std::bad_alloc"));
    EXPECT_EQ(outcome.Error, "");
    EXPECT_THAT(outcome.Labels, AreThoseOfAnInterruptedNonSIRegistration());
}

// Each failure is reported once, by the group that it happened in, and the tables are sound.
TEST(Loading, SurvivesTheFailureOfAnyAllocation) {
    std::size_t reported = 0;
    const auto outcomes =
        loadForEach("bad_alloc", FIRST_OF_THE_REGISTRY, allocationsOfALoad(), step());
    for (const auto& [number, outcome] : outcomes) {
        SCOPED_TRACE(number);
        expectSound(outcome);
        if (outcome.Records.empty()) {  // code that ignores the failure, such as a destructor
            EXPECT_EQ(outcome.Error, "");
            EXPECT_EQ(outcome.Units, 652U);
            EXPECT_EQ(outcome.Labels,
                      labelsAfter(labellingsOfTheSIUnits().size(), labellingsOfTheOthers().size()));
            continue;
        }
        ++reported;
        ASSERT_THAT(outcome.Records, SizeIs(1));
        if (outcome.Records[0].Function == SI_FUNCTION) {
            expectInterruptedSIRegistration(outcome);
        } else {
            expectInterruptedNonSIRegistration(outcome);
        }
    }
    std::cout << outcomes.size() << " allocations failed, " << reported << " reports\n";
    EXPECT_GT(reported, outcomes.size() * 9 / 10);
}

// There is no memory for the report and for the other group. The line needs none.
TEST(Loading, SurvivesWhenAllLaterAllocationsFail) {
    const auto outcomes =
        loadForEach("bad_alloc+onwards", FIRST_OF_THE_REGISTRY, allocationsOfALoad(), 5 * step());
    EXPECT_GT(outcomes.size(), 10U);
    std::cout << outcomes.size() << " times all later allocations failed\n";
    for (const auto& [number, outcome] : outcomes) {
        SCOPED_TRACE(number);
        expectSound(outcome);
        const bool isSI = !outcome.Error.empty();
        for (const Record& record : outcome.Records) {
            EXPECT_EQ(record.Function, NON_SI_FUNCTION);
        }
        if (isSI) {
            EXPECT_EQ(outcome.Error, LINE_OF_THE_SI_UNITS);
        }
    }
}

// The prefix table is initialised before the registry, and its exception is not caught.
TEST(Loading, AFailureInThePrefixTableEndsTheProgram) {
    const Outcome outcome = load("bad_alloc", {FIRST_OF_THE_REGISTRY - 1});
    EXPECT_NE(outcome.Status, 0);
    EXPECT_THAT(outcome.Error, HasSubstr("std::bad_alloc"));
    EXPECT_THAT(outcome.Error, Not(HasSubstr("registerSiUnits")));
}

// Clients keep pointers to units, so dlclose() does not unload the library or the companion, whose
// code converts and destroys units.
TEST(Loading, UnitsStayAfterTheLibrariesAreClosed) {
    int status = -1;
    const std::string output = outputOf(RELOAD_MENSOR, status);
    EXPECT_EQ(status, 0);
    const std::string mark = "unloaded, but there: 2\n";
    const std::size_t unloading = output.find(mark);
    ASSERT_NE(unloading, std::string::npos) << output;
    EXPECT_THAT(split(output.substr(0, unloading), '\n'), SizeIs(Gt(1000U)));
    EXPECT_EQ(output.substr(unloading + mark.size()), output.substr(0, unloading));
}

// The order of the static initialisers.

#if UINTPTR_MAX == UINT32_MAX
unsigned char kindOf(const ElfW(Sym) & symbol) { return ELF32_ST_TYPE(symbol.st_info); }
#else
unsigned char kindOf(const ElfW(Sym) & symbol) { return ELF64_ST_TYPE(symbol.st_info); }
#endif

/// The address of a function without the mark of the Thumb instruction set.
std::uintptr_t codeAddress(std::uintptr_t address) {
#ifdef __arm__
    return address & ~std::uintptr_t{1};
#else
    return address;
#endif
}

/// The source file of each function in the library, by its address before relocation.
std::map<std::uintptr_t, std::string> sourcesOfFunctions() {
    const std::string image = contentsOf(MENSOR_LIBRARY);
    const auto read = [&image](auto& record, std::size_t offset) {
        std::memcpy(&record, image.substr(offset, sizeof record).data(), sizeof record);
    };
    ElfW(Ehdr) header;
    read(header, 0);
    const auto section = [&](std::size_t index) {
        ElfW(Shdr) result;
        read(result, header.e_shoff + index * header.e_shentsize);
        return result;
    };
    std::map<std::uintptr_t, std::string> sources;
    for (std::size_t i = 0; i < header.e_shnum; ++i) {
        const ElfW(Shdr) table = section(i);
        if (table.sh_type != SHT_SYMTAB) {
            continue;
        }
        const ElfW(Shdr) names = section(table.sh_link);
        std::string source;
        for (std::size_t at = 0; at < table.sh_size; at += sizeof(ElfW(Sym))) {
            ElfW(Sym) symbol;
            read(symbol, table.sh_offset + at);
            if (kindOf(symbol) == STT_FILE) {
                source = image.c_str() + names.sh_offset + symbol.st_name;
            } else if (kindOf(symbol) == STT_FUNC) {
                sources.emplace(codeAddress(symbol.st_value), source);
            }
        }
    }
    return sources;
}

/// The static initialisers of the loaded library in the order in which they ran, as addresses
/// before relocation.
std::vector<std::uintptr_t> initialisers() {
    std::vector<std::uintptr_t> addresses;
    dl_iterate_phdr(
        [](dl_phdr_info* object, std::size_t, void* result) {
            if (std::string(object->dlpi_name).find("libmensor.so") == std::string::npos) {
                return 0;
            }
            const std::uintptr_t base = object->dlpi_addr;
            const std::uintptr_t* functions = nullptr;
            std::size_t count = 0;
            for (int i = 0; i < object->dlpi_phnum; ++i) {
                if (object->dlpi_phdr[i].p_type != PT_DYNAMIC) {
                    continue;
                }
                const auto* entry =
                    reinterpret_cast<const ElfW(Dyn)*>(base + object->dlpi_phdr[i].p_vaddr);
                for (; entry->d_tag != DT_NULL; ++entry) {
                    if (entry->d_tag == DT_INIT_ARRAY) {
                        functions =
                            reinterpret_cast<const std::uintptr_t*>(base + entry->d_un.d_ptr);
                    } else if (entry->d_tag == DT_INIT_ARRAYSZ) {
                        count = entry->d_un.d_val / sizeof(std::uintptr_t);
                    }
                }
            }
            for (std::size_t i = 0; i < count; ++i) {
                static_cast<std::vector<std::uintptr_t>*>(result)->push_back(
                    codeAddress(functions[i] - base));
            }
            return 1;
        },
        &addresses);
    return addresses;
}

TEST(Loading, ThePrefixTableIsInitialisedBeforeTheRegistryAndTheRegistryLast) {
    const std::map<std::uintptr_t, std::string> sources = sourcesOfFunctions();
    std::vector<std::string> order;
    for (const std::uintptr_t address : initialisers()) {
        const std::string& source = sources.at(address);
        if (source != "InstrProfilingRuntime.cpp.o") {  // the compiler's, in the build of coverage
            order.push_back(source);
        }
    }
    ASSERT_GE(order.size(), 2U);
    EXPECT_EQ(order[order.size() - 2], "mensor_global.cpp");
    EXPECT_EQ(order[order.size() - 1], "UnitRegistry.cpp");
}

}  // namespace
}  // namespace mensor
