// Report.h: makes the table of ratios from the times, and the data of its picture.
#ifndef MENSOR_BENCHMARKS_REPORT_H
#define MENSOR_BENCHMARKS_REPORT_H

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// Collects the repetitions of every benchmark. At the end it prints the table, and writes `table.md`,
/// `times.md` and `ratios.dat` into the folder if there is one.
class CReport : public benchmark::ConsoleReporter {
public:
    explicit CReport(std::string folder);
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;
    bool failed() const { return !m_Failures.empty(); }

private:
    struct Line;
    static const std::vector<Line>& lines();

    std::string table(std::string& data) const;
    std::string times() const;

    std::string m_Folder;  // for the files; empty: no files are written
    std::map<std::string, std::vector<double>> m_Times;  // nanoseconds of each repetition
    std::vector<std::string> m_Failures;                 // failed benchmarks, with the reason
    std::vector<std::string> m_Names;  // the keys of m_Times, in the order of their runs
};

#endif  // MENSOR_BENCHMARKS_REPORT_H
