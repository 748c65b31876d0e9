// Report.h: turns the times into the table of ratios, and the data of its picture.
#ifndef MENSOR_BENCHMARKS_REPORT_H
#define MENSOR_BENCHMARKS_REPORT_H

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// Collects the repetitions of every benchmark; at the end prints the table and, given a folder,
/// writes `table.md`, `times.md` and `ratios.dat` there.
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

    std::string m_Folder;  // where the files go; none are written if it is empty
    std::map<std::string, std::vector<double>> m_Times;  // nanoseconds of each repetition
    std::vector<std::string> m_Failures;                 // what gave up, and why
    std::vector<std::string> m_Names;                    // the keys of m_Times, as they came
};

#endif  // MENSOR_BENCHMARKS_REPORT_H
