#include <algorithm>
#include <cmath>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <mensor_exact/Conversion.h>
#include <mensor_exact/Error.h>
#include <mensor_exact/Notes.h>
#include <mensor_exact/Reading.h>
#include <mensor_exact/Refusal.h>
#include <mensor_exact/kinds.h>

#include "Commands.h"
#include "Display.h"
#include "Lines.h"

namespace {

using namespace mensor::exact;

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

// Returns whether the nearest double is infinite, or is zero although the number is not.
bool isBeyondDoubles(const CFraction& number) {
    const double nearest = number.toDouble();
    return !std::isfinite(nearest) || (nearest == 0.0 && !number.isZero());
}

// Returns the text of a number, written as a result is.
std::string written(const CFraction& number) {
    static const CConversion Same{CMeaning(), CMeaning()};
    return Same.convertText(number);
}

// Converts one value after another to all targets. There is at least one.
class Converter {
public:
    Converter(std::vector<CTarget> targets, const CArguments& arguments, const CUnits& units,
              CReport& report)
        : m_Targets(std::move(targets)),
          m_Arguments(arguments),
          m_Units(units),
          m_Report(report),
          m_Conversions(m_Targets.size()),
          m_Faults(m_Targets.size()) {}

    // Converts one value. `line` is its line in the pipe, or 0 if it is on the command line.
    void convert(const std::string& text, std::size_t line) {
        std::optional<CDiagnosis> refusal;
        const CValueReading value =
            m_Arguments.From ? readCodedValue(text, *m_Arguments.From, refusal)
                             : tryReadValue(text, m_Units.catalogue(), m_Arguments.Reading);
        if (!value) {
            if (!refusal) {
                refusal = diagnose(value.Refusal, m_Units.catalogue(), &m_Targets[0].Meaning);
                addNextWord(text, line, *refusal);
            }
        } else if (isBeyondDoubles(value.Value->Number)) {
            const std::string_view number =
                trimmed(std::string_view(text).substr(0, value.Unit.Begin));
            const auto begin = static_cast<std::size_t>(number.data() - text.data());
            refusal = diagnose(eRefusal::NUMBER_RANGE, text, {begin, begin + number.size()},
                               "this number is beyond the range of double");
        }
        if (m_Report.isJson()) {
            CJsonObject json;
            json.text("input", text);
            if (line > 0) {
                json.count("line", line);
            }
            convertToJson(text, value, refusal, json);
        } else {
            convertToText(text, value, refusal,
                          line > 0 ? "line " + std::to_string(line) + ": " : "");
        }
    }

private:
    // A result or a refusal.
    struct CResult {
        std::string Value;
        const char* Code = nullptr;  // null if there is a result
        std::string Message{};
    };

    // Offers "5 km" for the two words 5 and km.
    void addNextWord(const std::string& text, std::size_t line, CDiagnosis& refusal) const {
        if (line > 0 || refusal.Code != eRefusal::EMPTY) {
            return;
        }
        const std::string value = text + " " + m_Arguments.Operands[1];
        if (tryReadValue(value, m_Units.catalogue(), m_Arguments.Reading)) {
            refusal.Sentence += "; write the value in quotation marks";
            refusal.Readings = {value};
        }
    }

    // Prepares the conversions from `unit`. Most values of a pipe have the same unit as the one before.
    void prepare(const CMeaning& unit) {
        if (m_Unit == unit) {
            return;
        }
        m_Unit = unit;
        for (std::size_t i = 0; i < m_Targets.size(); ++i) {
            m_Conversions[i].reset();
            m_Faults[i].clear();
            if (unit.isCompatibleWith(m_Targets[i].Meaning)) {
                try {
                    m_Conversions[i].emplace(unit, m_Targets[i].Meaning);
                } catch (const CError& error) {
                    m_Faults[i] = error.what();
                }
            }
        }
    }

    CResult resultIn(std::size_t target, const CValue& value, std::string_view unit) const {
        const CTarget& to = m_Targets[target];
        if (!value.Unit.isCompatibleWith(to.Meaning)) {
            return {{},
                    "INCOMPATIBLE",
                    quoted(unit) + " is not compatible with " + quoted(to.Text) + ": " +
                        value.Unit.kind() + " and " + to.Meaning.kind()};
        }
        if (m_Arguments.Kinds) {
            const std::string note = noteOnKinds(target, value, unit);
            if (!note.empty()) {
                return {{}, "DIFFERENT_MARKS", note};
            }
        }
        if (m_Conversions[target]) {
            try {
                const std::optional<CFraction> exact = m_Conversions[target]->convert(value.Number);
                if (!exact) {
                    return {m_Conversions[target]->convertText(value.Number)};
                }
                if (!isBeyondDoubles(*exact)) {
                    return {written(*exact)};
                }
            } catch (const CError&) {
            }
        }
        if (!m_Faults[target].empty()) {
            return {{},
                    "FACTOR_RANGE",
                    quoted(unit) + " in " + quoted(to.Text) +
                        " cannot be computed exactly: " + m_Faults[target]};
        }
        return {{},
                "NUMBER_RANGE",
                "the value in " + quoted(to.Text) + " is beyond the range of double"};
    }

    // Returns a note if the conversion counts the radian, the steradian or the bit as 1; else an empty text.
    std::string noteOnKinds(std::size_t target, const CValue& value, std::string_view unit) const {
        const CMeaning& to = m_Targets[target].Meaning;
        return value.Unit.isCompatibleWith(to)
                   ? noteOnMarks(written(value.Number), unit, value.Unit, to)
                   : std::string();
    }

    // Returns all notes on a value and its results.
    std::vector<std::string> notesOn(const std::string& text, const CValueReading& value,
                                     std::string_view unit) const {
        std::vector<std::string> notes;
        if (value.HasDifference) {
            notes.push_back(noteOnDifference(unit, m_Arguments, m_Units));
        }
        for (const CNote& note : value.Notes) {
            notes.push_back(note.words(text));
        }
        for (std::size_t i = 0; i < m_Targets.size() && !m_Arguments.Kinds; ++i) {
            std::string note = noteOnKinds(i, *value.Value, unit);
            const bool isNew = std::find(notes.begin(), notes.end(), note) == notes.end();
            if (!note.empty() && isNew) {
                notes.push_back(std::move(note));
            }
        }
        return notes;
    }

    // Returns the unit as it was written.
    static std::string_view unitIn(const std::string& text, const CValueReading& value) {
        const std::string_view unit = trimmed(value.Unit.of(text));
        return unit.empty() ? "One" : unit;
    }

    void convertToText(const std::string& text, const CValueReading& value,
                       const std::optional<CDiagnosis>& refusal, const std::string& where) {
        if (refusal) {
            m_Report.refuse(where, *refusal);
            return;
        }
        const std::string_view unit = unitIn(text, value);
        for (const std::string& note : notesOn(text, value, unit)) {
            m_Report.note(where, note);
        }
        prepare(value.Value->Unit);
        std::string given;
        for (std::size_t i = 0; i < m_Targets.size(); ++i) {
            const CResult result = resultIn(i, *value.Value, unit);
            if (result.Code != nullptr) {
                m_Report.refuse(where, result.Message);
                continue;
            }
            if (given.empty()) {
                given = written(value.Value->Number) + " " + shown(unit) + " = ";
            }
            m_Report.line(given + result.Value + " " + shown(m_Targets[i].Text));
        }
    }

    void convertToJson(const std::string& text, const CValueReading& value,
                       const std::optional<CDiagnosis>& refusal, CJsonObject& json) {
        if (refusal) {
            m_Report.countRefused();
            m_Report.line(json.raw("error", jsonOf(*refusal)).toString());
            return;
        }
        const std::string_view unit = unitIn(text, value);
        json.raw("value", written(value.Value->Number)).text("unit", unit);
        prepare(value.Value->Unit);
        std::vector<std::string> results;
        for (std::size_t i = 0; i < m_Targets.size(); ++i) {
            const CResult result = resultIn(i, *value.Value, unit);
            CJsonObject entry;
            entry.text("unit", m_Targets[i].Text);
            if (result.Code != nullptr) {
                m_Report.countRefused();
                entry.raw("error", CJsonObject()
                                       .text("code", result.Code)
                                       .text("message", result.Message)
                                       .toString());
            } else {
                entry.raw("value", result.Value);
            }
            results.push_back(entry.toString());
        }
        json.raw("results", jsonArray(results));
        std::vector<std::string> notes;
        for (const std::string& note : notesOn(text, value, unit)) {
            notes.push_back(jsonText(note));
        }
        if (!notes.empty()) {
            json.raw("notes", jsonArray(notes));
        }
        m_Report.line(json.toString());
    }

    const std::vector<CTarget> m_Targets;
    const CArguments& m_Arguments;
    const CUnits& m_Units;
    CReport& m_Report;
    std::optional<CMeaning> m_Unit;                         // the unit of the value before
    std::vector<std::optional<CConversion>> m_Conversions;  // from m_Unit to each target
    std::vector<std::string> m_Faults;                      // why a conversion is missing
};

}  // namespace

std::string noteOnDifference(std::string_view unit, const CArguments& arguments,
                             const CUnits& units) {
    return quoted(unit) + " is read as " +
           quoted(notationOf(unit, units.catalogue(), arguments.Reading));
}

std::optional<CTarget> readTarget(const std::string& text, const CArguments& arguments,
                                  const CUnits& units, CReport& report) {
    const bool isCode = arguments.To && arguments.Command == "convert";
    CReading reading;
    CDiagnosis refusal;
    if (isCode) {
        const auto ofCode = mensor::codes::tryRead(*arguments.To, text);
        reading.Meaning = ofCode.Meaning;
        if (!ofCode) {
            refusal = mensor::codes::diagnose(ofCode.Refusal);
        }
    } else {
        reading = tryRead(text, units.catalogue(), arguments.Reading);
        if (!reading) {
            refusal = diagnose(reading.Refusal, units.catalogue());
        }
    }
    if (!reading) {
        if (report.isJson()) {
            report.countRefused();
            report.line(CJsonObject().text("unit", text).raw("error", jsonOf(refusal)).toString());
        } else {
            report.refuse("", refusal);
        }
        return std::nullopt;
    }
    const std::string_view unit = trimmed(text);
    if (reading.HasDifference) {
        report.note("", noteOnDifference(unit, arguments, units));
    }
    for (const CNote& note : reading.Notes) {
        report.note("", note.words(text));
    }
    return CTarget{std::string(unit.empty() ? "One" : unit), *std::move(reading.Meaning)};
}

void convert(const CArguments& arguments, const CUnits& units, CReport& report) {
    std::vector<CTarget> targets;
    for (auto text = arguments.Operands.begin() + 1; text != arguments.Operands.end(); ++text) {
        if (auto target = readTarget(*text, arguments, units, report)) {
            targets.push_back(std::move(*target));
        }
    }
    if (report.refused() > 0) {
        return;
    }
    Converter converter(std::move(targets), arguments, units, report);
    if (arguments.Operands[0] != "-") {
        converter.convert(arguments.Operands[0], 0);
        return;
    }
    CLines lines(std::cin, "the standard input");
    for (std::string line; std::cout && lines.next(line);) {
        if (!isBlank(line)) {
            converter.convert(line, lines.number());
        }
        report.progress(lines.number(), lines.bytes());
        if (!lines.isMoreAtHand()) {
            std::cout.flush();  // the program that writes the lines may wait for the result
        }
    }
    report.endProgress();
}
