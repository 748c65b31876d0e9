// Report.h: writes results, refusals, notes and the progress.
#ifndef MENSOR_TOOL_REPORT_H
#define MENSOR_TOOL_REPORT_H

#include <chrono>
#include <cstddef>
#include <string>

#include <mensor_exact/Diagnosis.h>
#include <mensor_exact/Meaning.h>

/// Writes all output of the program. There is one object for the whole run.
class CReport {
public:
    CReport(bool isJson, bool isQuiet);

    bool isJson() const { return m_IsJson; }

    /// Writes a line of results to standard output.
    void line(const std::string& text);

    /// Writes a refusal to standard error: "mensor: ", `where`, the message, and the text with carets.
    /// Counts it.
    void refuse(const std::string& where, const mensor::exact::CDiagnosis& diagnosis);
    void refuse(const std::string& where, const std::string& message);

    /// Counts a refusal that line() has written as JSON.
    void countRefused() { ++m_Refused; }

    /// Writes a note to standard error.
    void note(const std::string& where, const std::string& message);

    /// Shows the progress after each line of a pipe. `bytes` is the number of bytes read so far. It is
    /// shown only if standard error is a terminal and standard input and output are not; after the first
    /// second, at most five times a second.
    void progress(std::size_t lines, std::size_t bytes);
    void endProgress();

    std::size_t refused() const { return m_Refused; }

private:
    void clearProgress();

    const bool m_IsJson;
    bool m_ShowsProgress;
    bool m_IsProgressShown = false;
    std::size_t m_Size = 0;  // the size of standard input in bytes, if it is a file
    std::size_t m_Refused = 0;
    std::chrono::steady_clock::time_point m_NextProgress;
};

/// Returns a refusal as JSON.
std::string jsonOf(const mensor::exact::CDiagnosis& diagnosis);

/// Returns a meaning as JSON: its text, its kind of quantity, the doubles nearest to its factor and offset,
/// and its exponents.
std::string jsonOf(const mensor::exact::CMeaning& meaning);

#endif  // MENSOR_TOOL_REPORT_H
