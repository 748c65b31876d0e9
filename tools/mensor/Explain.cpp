#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <mensor_exact/Certificate.h>
#include <mensor_exact/Reading.h>

#include "Commands.h"
#include "Display.h"
#include "Registry.h"

namespace {

using namespace mensor::exact;

// Returns the refused text with the brackets that the rules of mathematics imply: operations of the same
// rank are done from left to right. Returns none if the text is refused for another reason.
std::optional<std::string> fromLeftToRight(const CDiagnosis& refusal, const CUnits& units,
                                           const CReadOptions& options) {
    const bool isDivision = refusal.Code == eRefusal::SECOND_DIVISION;
    const bool isProduct = refusal.Code == eRefusal::PRODUCT_AFTER_DIVISION;
    if ((!isDivision && !isProduct) || refusal.Readings.empty()) {
        return std::nullopt;
    }
    const std::string& text = isDivision ? refusal.Readings.front() : refusal.Readings.back();
    const bool isRead{
        tryRead(text, units.catalogue(), options)};  // the option --strict may refuse it
    return isRead ? std::optional(text) : std::nullopt;
}

// Returns a refusal in one line.
std::string inOneLine(const CDiagnosis& refusal) {
    return std::string(nameOf(refusal.Code)) + ": " + refusal.Sentence;
}

// The explanation of one text.
class CExplanation {
public:
    CExplanation(const CArguments& arguments, const CUnits& units, CReport& report)
        : m_Text(arguments.Operands[0]),
          m_Arguments(arguments),
          m_Units(units),
          m_Report(report),
          m_Reading(tryRead(m_Text, units.catalogue(), arguments.Reading)) {
        if (m_Reading) {
            m_Notation = notationOf(m_Text, units.catalogue(), arguments.Reading);
            m_Certificate = certify(m_Notation, m_Reading.Meaning->unitsText(), units.catalogue());
        } else {
            report.countRefused();
            m_Refusal = diagnose(m_Reading.Refusal, units.catalogue());
            m_LeftToRight = fromLeftToRight(m_Refusal, units, arguments.Reading);
        }
        if (arguments.Library) {
            units.registerAll(nullptr);
            m_Library = registry().ask(m_Text, arguments.Reading);
        }
    }

    void tell() const {
        if (m_Reading) {
            tellMeaning();
        } else {
            tellRefusal();
        }
        if (m_Library) {
            tellLibrary(*m_Library);
        }
    }

    void tellAsJson() const {
        CJsonObject json;
        json.text("text", m_Text);
        if (m_Reading) {
            json.text("unit", m_Notation)
                .raw("meaning", jsonOf(*m_Reading.Meaning))
                .raw("certificate", m_Certificate.toJson());
            std::vector<std::string> texts;
            for (const std::string& note : notes()) {
                texts.push_back(jsonText(note));
            }
            if (!texts.empty()) {
                json.raw("notes", jsonArray(texts));
            }
        } else {
            json.raw("error", jsonOf(m_Refusal));
            if (m_LeftToRight) {
                json.text("leftToRight", *m_LeftToRight);
            }
        }
        if (m_Library) {
            json.raw("library", libraryAsJson(*m_Library));
        }
        m_Report.line(json.toString());
    }

private:
    static constexpr std::size_t LabelColumns = 13;

    void row(const std::string& label, const std::string& text) const {
        m_Report.line(padded(label, LabelColumns) + shown(text));
    }

    std::vector<std::string> notes() const {
        std::vector<std::string> notes;
        if (m_Reading.HasDifference) {
            notes.push_back(noteOnDifference(m_Text, m_Arguments, m_Units));
        }
        for (const CNote& note : m_Reading.Notes) {
            notes.push_back(note.words(m_Text));
        }
        return notes;
    }

    void tellMeaning() const {
        row("text", m_Text);
        row("accepted", m_Notation);
        const std::string kind = m_Reading.Meaning->kind();
        const bool hasKind = kind != m_Reading.Meaning->unitsText();
        row("mathematics", m_Reading.Meaning->toString() + (hasKind ? ", " + kind : ""));
        for (const std::string& note : notes()) {
            row("note", note);
        }
        std::istringstream lines(m_Certificate.toText());
        std::string label = "certificate";
        for (std::string line; std::getline(lines, line); label.clear()) {
            row(label, line);
        }
    }

    void tellRefusal() const {
        const std::string indent(LabelColumns, ' ');
        std::string marked =
            underlined(m_Refusal.Text, m_Refusal.Byte, m_Refusal.Token.size(), indent);
        marked.replace(0, LabelColumns, padded("text", LabelColumns));
        marked.pop_back();
        m_Report.line(isBlank(m_Text) ? padded("text", LabelColumns) + "(none)" : marked);
        row("refused", inOneLine(m_Refusal));
        if (m_LeftToRight) {
            row("mathematics",
                *m_LeftToRight + ", from left to right, which is " +
                    read(*m_LeftToRight, m_Units.catalogue(), m_Arguments.Reading).toString());
        } else {
            row("mathematics", "no clear meaning");
        }
        for (std::size_t i = 0; i < m_Refusal.Readings.size(); ++i) {
            row(i == 0 ? "write" : "  or", m_Refusal.Readings[i]);
        }
        for (std::size_t i = 0; i < m_Refusal.Suggestions.size(); ++i) {
            row(i == 0 ? "known" : "", m_Refusal.Suggestions[i]);
        }
        for (std::size_t i = 0; i < m_Refusal.Packs.size(); ++i) {
            row(i == 0 ? "type" : "  or", "--pack " + m_Refusal.Packs[i]);
        }
        if (m_Refusal.Code == eRefusal::UNKNOWN_NAME && m_Refusal.message() != m_Refusal.Sentence &&
            m_Refusal.Readings.empty() && m_Refusal.Suggestions.empty() &&
            m_Refusal.Packs.empty()) {
            row("type", "mensor list, which shows all names");
        }
    }

    void tellLibrary(const CLibraryAnswer& answer) const {
        if (!answer.Unit) {
            row("library", "refuses it: " + answer.Refusal);
        } else if (answer.IsSame) {
            row("library", "reads the same");
        } else {
            row("library", "reads " + *answer.Unit + ", which is " +
                               (answer.Meaning ? answer.Meaning->toString()
                                               : "a unit without an exact meaning"));
        }
        if (m_Reading && answer.Checked) {
            row("checked", "refuses it: " + inOneLine(*answer.Checked));
        }
    }

    std::string libraryAsJson(const CLibraryAnswer& answer) const {
        CJsonObject library;
        if (answer.Unit) {
            library.text("unit", *answer.Unit)
                .raw("meaning", answer.Meaning ? jsonOf(*answer.Meaning) : "null");
        } else {
            library.text("error", answer.Refusal);
        }
        if (m_Reading && answer.Checked) {
            library.text("checked", inOneLine(*answer.Checked));
        }
        return library.toString();
    }

    const std::string m_Text;
    const CArguments& m_Arguments;
    const CUnits& m_Units;
    CReport& m_Report;
    const CReading m_Reading;
    std::string m_Notation;                    // set if the text was read
    CCertificate m_Certificate;                // set if the text was read
    CDiagnosis m_Refusal;                      // set if the text was refused
    std::optional<std::string> m_LeftToRight;  // may be set if the text was refused
    std::optional<CLibraryAnswer> m_Library;   // set with --library
};

}  // namespace

void explain(const CArguments& arguments, const CUnits& units, CReport& report) {
    if (arguments.From) {
        explainCode(arguments, report);
        return;
    }
    const CExplanation explanation(arguments, units, report);
    if (report.isJson()) {
        explanation.tellAsJson();
    } else {
        explanation.tell();
    }
}
