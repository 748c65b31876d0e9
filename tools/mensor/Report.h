// Report.h: what the program tells: results, refusals with their place, and how far it is.
#ifndef MENSOR_TOOL_REPORT_H
#define MENSOR_TOOL_REPORT_H

#include <chrono>
#include <cstddef>
#include <string>

#include <mensor_exact/Diagnosis.h>
#include <mensor_exact/Meaning.h>

/// Everything that is written. One object for the whole run.
class CReport {
public:
    CReport(bool isJson, bool isQuiet);

    bool isJson() const { return m_IsJson; }

    /// A line of results, on standard output.
    void line(const std::string& text);

    /// Tells of an input that is refused, on standard error: "mensor: `where`message", then the text
    /// with carets.
    void refuse(const std::string& where, const mensor::exact::CDiagnosis& diagnosis);
    void refuse(const std::string& where, const std::string& message);

    /// Counts an input that is refused without telling of it here.
    void countRefused() { ++m_Refused; }

    void note(const std::string& where, const std::string& message);

    /// Called for each line of a pipe, with the bytes read so far: shows how far it is, about five
    /// times a second and after the first second, where standard error is a terminal and the rest is
    /// not.
    void progress(std::size_t lines, std::size_t bytes);
    void endProgress();

    std::size_t refused() const { return m_Refused; }

private:
    void clearProgress();

    const bool m_IsJson;
    bool m_ShowsProgress;
    bool m_IsProgressShown = false;
    std::size_t m_Size = 0;  // of standard input in bytes, where it is a file
    std::size_t m_Refused = 0;
    std::chrono::steady_clock::time_point m_NextProgress;
};

/// A refusal as JSON.
std::string jsonOf(const mensor::exact::CDiagnosis& diagnosis);

/// A meaning as JSON: its text, what is measured, the doubles nearest to its factor and offset, and its
/// exponents.
std::string jsonOf(const mensor::exact::CMeaning& meaning);

#endif  // MENSOR_TOOL_REPORT_H
