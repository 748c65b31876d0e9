#include "Report.h"

#include <sys/stat.h>
#include <unistd.h>

#include <iostream>
#include <vector>

#include "Display.h"

namespace {

using mensor::exact::CDiagnosis, mensor::exact::CMeaning, mensor::exact::CPower;
using std::chrono::steady_clock;

constexpr auto FirstProgress = std::chrono::seconds(1);
constexpr auto BetweenProgress = std::chrono::milliseconds(200);

std::vector<std::string> jsonTexts(const std::vector<std::string>& texts) {
    std::vector<std::string> json;
    json.reserve(texts.size());
    for (const std::string& text : texts) {
        json.push_back(jsonText(text));
    }
    return json;
}

}  // namespace

CReport::CReport(bool isJson, bool isQuiet)
    : m_IsJson(isJson),
      m_ShowsProgress(!isQuiet && isatty(STDERR_FILENO) != 0 && isatty(STDIN_FILENO) == 0 &&
                      isatty(STDOUT_FILENO) == 0),
      m_NextProgress(steady_clock::now() + FirstProgress) {
    struct stat input {};
    if (fstat(STDIN_FILENO, &input) == 0 && S_ISREG(input.st_mode)) {
        m_Size = static_cast<std::size_t>(input.st_size);
    }
}

void CReport::line(const std::string& text) { std::cout << text << '\n'; }

void CReport::refuse(const std::string& where, const CDiagnosis& diagnosis) {
    refuse(where, diagnosis.message());
    std::cerr << underlined(diagnosis.Text, diagnosis.Byte, diagnosis.Token.size(), "    ");
}

void CReport::refuse(const std::string& where, const std::string& message) {
    countRefused();
    clearProgress();
    std::cerr << "mensor: " << shown(where + message) << '\n';
}

void CReport::note(const std::string& where, const std::string& message) {
    clearProgress();
    std::cerr << "mensor: " << shown(where + "note: " + message) << '\n';
}

void CReport::progress(std::size_t lines, std::size_t bytes) {
    if (!m_ShowsProgress || steady_clock::now() < m_NextProgress) {
        return;
    }
    m_NextProgress = steady_clock::now() + BetweenProgress;
    std::cerr << "\r\033[K" << lines << " lines, " << m_Refused << " refused";
    if (m_Size > 0 && bytes <= m_Size) {
        std::cerr << ", " << bytes * 100 / m_Size << " %";
    }
    std::cerr << std::flush;
    m_IsProgressShown = true;
}

void CReport::endProgress() { clearProgress(); }

void CReport::clearProgress() {
    if (m_IsProgressShown) {
        std::cerr << "\r\033[K" << std::flush;
        m_IsProgressShown = false;
    }
}

std::string jsonOf(const CDiagnosis& diagnosis) {
    return CJsonObject()
        .text("code", nameOf(diagnosis.Code))
        .count("position", diagnosis.Position)
        .count("byte", diagnosis.Byte)
        .text("token", diagnosis.Token)
        .text("message", diagnosis.message())
        .raw("readings", jsonArray(jsonTexts(diagnosis.Readings)))
        .raw("suggestions", jsonArray(jsonTexts(diagnosis.Suggestions)))
        .raw("packs", jsonArray(jsonTexts(diagnosis.Packs)))
        .raw("morePacks", jsonArray(jsonTexts(diagnosis.MorePacks)))
        .raw("withPacks", jsonArray(jsonTexts(diagnosis.WithPacks)))
        .toString();
}

std::string jsonOf(const CMeaning& meaning) {
    CJsonObject exponents;
    for (const std::vector<CPower>& powers : {meaning.dimensions(), meaning.marks()}) {
        for (const CPower& power : powers) {
            exponents.text(power.Name.c_str(), power.Exponent.toString());
        }
    }
    return CJsonObject()
        .text("text", meaning.toString())
        .text("kind", meaning.kind())
        .number("factor", meaning.factor().toDouble())
        .number("offset", meaning.offset().toDouble())
        .raw("exponents", exponents.toString())
        .toString();
}
