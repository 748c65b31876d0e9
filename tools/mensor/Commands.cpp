#include "Commands.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <stdexcept>
#include <utility>

#include <mensor/UnitFormat.h>
#include <mensor_checked/Choosing.h>
#include <mensor_checked/Values.h>

#include "Display.h"
#include "Lines.h"

namespace {

using mensor::CUnit, mensor::CUnitFormat, mensor::CUnitPtr;
using namespace mensor::checked;

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

bool isBlank(const std::string& line) { return line.find_first_not_of(" \t") == std::string::npos; }

// The unit for people: its text, else what it means.
std::string nameOfUnit(const CUnitPtr& unit) {
    return textOf(unit).value_or(meaningOf(unit).toString());
}

// What a given unit is converted to.
struct CTarget {
    CUnitPtr Unit;
    std::string Text;
};

std::optional<CTarget> readTarget(const std::string& text, const CArguments& arguments,
                                  CReport& report) {
    const CReading reading = tryReadUnit(text, arguments.Reading);
    if (!reading) {
        if (report.isJson()) {
            report.countRefused();
            report.line(
                CJsonObject().text("unit", text).raw("error", jsonOf(*reading.Refusal)).toString());
        } else {
            report.refuse("", *reading.Refusal);
        }
        return std::nullopt;
    }
    for (const std::string& note : reading.Notes) {
        report.note("", note);
    }
    return CTarget{reading.Unit, nameOfUnit(reading.Unit)};
}

// One value to all targets.
class Converter {
public:
    Converter(std::vector<CTarget> targets, const CArguments& arguments, CReport& report)
        : m_Targets(std::move(targets)), m_Options(arguments.Reading), m_Report(report) {}

    // `line` is 0 where the value stands on the command line.
    void convert(const std::string& text, std::size_t line) {
        const std::string where = line > 0 ? "line " + std::to_string(line) + ": " : "";
        const CValueReading value = tryReadValue(text, m_Options);
        CJsonObject json;
        json.text("input", text);
        if (line > 0) {
            json.count("line", line);
        }
        if (m_Report.isJson()) {
            convertToJson(value, json);
        } else {
            convertToText(value, where);
        }
    }

private:
    // The result, or why there is none.
    struct CResult {
        double Value = 0.0;
        const char* Code = nullptr;
        std::string Message;
    };

    static CResult resultOf(const CValueReading& value, const CTarget& target) {
        if (!value.Unit->isCompatible(target.Unit)) {
            return {0.0, "INCOMPATIBLE",
                    quoted(nameOfUnit(value.Unit)) + " is not compatible with " +
                        quoted(target.Text) + ": " + meaningOf(value.Unit).toString() + " and " +
                        meaningOf(target.Unit).toString()};
        }
        const double result = value.Unit->convertValueToUnit(value.Value, target.Unit);
        if (!std::isfinite(result)) {
            return {0.0, "NUMBER_RANGE",
                    "the value in " + quoted(target.Text) + " is beyond the range of numbers"};
        }
        return {result, nullptr, {}};
    }

    void convertToText(const CValueReading& value, const std::string& where) {
        if (!value) {
            m_Report.refuse(where, *value.Refusal);
            return;
        }
        for (const std::string& note : value.Notes) {
            m_Report.note(where, note);
        }
        const std::string given = shortest(value.Value) + " " + nameOfUnit(value.Unit);
        for (const CTarget& target : m_Targets) {
            const CResult result = resultOf(value, target);
            if (result.Code != nullptr) {
                m_Report.refuse(where, result.Message);
            } else {
                m_Report.line(given + " = " + shortest(result.Value) + " " + target.Text);
            }
        }
    }

    void convertToJson(const CValueReading& value, CJsonObject& json) {
        if (!value) {
            m_Report.countRefused();
            m_Report.line(json.raw("error", jsonOf(*value.Refusal)).toString());
            return;
        }
        json.number("value", value.Value).text("unit", nameOfUnit(value.Unit));
        std::vector<std::string> results;
        for (const CTarget& target : m_Targets) {
            const CResult result = resultOf(value, target);
            CJsonObject entry;
            entry.text("unit", target.Text);
            if (result.Code != nullptr) {
                m_Report.countRefused();
                entry.raw("error", CJsonObject()
                                       .text("code", result.Code)
                                       .text("message", result.Message)
                                       .toString());
            } else {
                entry.number("value", result.Value);
            }
            results.push_back(entry.toString());
        }
        json.raw("results", jsonArray(results));
        if (!value.Notes.empty()) {
            std::vector<std::string> notes;
            for (const std::string& note : value.Notes) {
                notes.push_back(jsonText(note));
            }
            json.raw("notes", jsonArray(notes));
        }
        m_Report.line(json.toString());
    }

    const std::vector<CTarget> m_Targets;
    const CReadOptions m_Options;
    CReport& m_Report;
};

// explain.

// What a refused text says if operations of one rank are done from left to right, as mathematics has
// it; none where it says nothing.
std::optional<std::string> fromLeftToRight(const CDiagnosis& refusal, const CReadOptions& options) {
    CDiagnosis next = refusal;
    for (int i = 0; i < 100; ++i) {
        const bool isDivision = next.Code == eRefusal::SECOND_DIVISION;
        const bool isProduct = next.Code == eRefusal::PRODUCT_AFTER_DIVISION;
        if ((!isDivision && !isProduct) || next.Readings.size() < 2) {
            return std::nullopt;
        }
        const std::string text = next.Readings[isDivision ? 0 : 1];
        const CReading reading = tryReadUnit(text, options);
        if (reading) {
            return text;
        }
        next = *reading.Refusal;
    }
    return std::nullopt;
}

// The unit as the library writes it, which need not read back.
std::string libraryText(const CUnitPtr& unit) {
    try {
        return unit->toStdString();
    } catch (const std::exception&) {  // a scaled unit without a label
        return meaningOf(unit).toString();
    }
}

// What the library's own reader makes of a text.
struct CAlone {
    CUnitPtr Unit;
    std::string Refusal;
};

CAlone readAlone(const std::string& text) {
    try {
        return {CUnit::fromString(text), {}};
    } catch (const std::exception& e) {
        return {nullptr, e.what()};
    }
}

constexpr std::size_t LabelColumns = 13;

void row(CReport& report, const std::string& label, const std::string& text) {
    report.line(padded(label, LabelColumns) + shown(text));
}

void explainText(const std::string& text, const CReading& reading, const CAlone& alone,
                 const CReadOptions& options, CReport& report) {
    const std::string indent(LabelColumns, ' ');
    if (reading) {
        row(report, "text", text);
        row(report, "accepted", nameOfUnit(reading.Unit));
        row(report, "mathematics", meaningOf(reading.Unit).toString());
        for (const std::string& note : reading.Notes) {
            row(report, "note", note);
        }
    } else {
        const CDiagnosis& refusal = *reading.Refusal;
        std::string marked = underlined(refusal.Text, refusal.Byte, refusal.Token.size(), indent);
        marked.replace(0, LabelColumns, padded("text", LabelColumns));
        marked.pop_back();
        report.line(isBlank(text) ? padded("text", LabelColumns) + "(none)" : marked);
        row(report, "refused", std::string(nameOf(refusal.Code)) + ": " + refusal.Sentence);
        const bool isCollision =
            refusal.Code == eRefusal::COLLISION || refusal.Code == eRefusal::DIMENSION_COLLISION;
        if (isCollision && !refusal.Readings.empty()) {
            row(report, "mathematics", refusal.Readings[0]);
        } else if (const auto leftToRight = fromLeftToRight(refusal, options)) {
            row(report, "mathematics",
                *leftToRight + ", from left to right, which is " +
                    meaningOf(readUnit(*leftToRight, options)).toString());
        } else {
            row(report, "mathematics", "nothing certain");
        }
        if (!isCollision) {
            for (std::size_t i = 0; i < refusal.Readings.size(); ++i) {
                row(report, i == 0 ? "write" : "  or", refusal.Readings[i]);
            }
        }
        for (std::size_t i = 0; i < refusal.Suggestions.size(); ++i) {
            row(report, i == 0 ? "known" : "", refusal.Suggestions[i]);
        }
    }
    if (!alone.Unit) {
        row(report, "library", "refuses it: " + alone.Refusal);
    } else if (alone.Unit == reading.Unit) {
        row(report, "library", "reads the same");
    } else {
        row(report, "library",
            "reads " + libraryText(alone.Unit) + ", which is " + meaningOf(alone.Unit).toString());
    }
}

void explainJson(const std::string& text, const CReading& reading, const CAlone& alone,
                 const CReadOptions& options, CReport& report) {
    CJsonObject json;
    json.text("text", text);
    if (reading) {
        json.text("unit", nameOfUnit(reading.Unit)).raw("meaning", jsonOf(meaningOf(reading.Unit)));
    } else {
        json.raw("error", jsonOf(*reading.Refusal));
        if (const auto leftToRight = fromLeftToRight(*reading.Refusal, options)) {
            json.text("leftToRight", *leftToRight);
        }
    }
    if (alone.Unit) {
        json.raw("library", CJsonObject()
                                .text("unit", libraryText(alone.Unit))
                                .raw("meaning", jsonOf(meaningOf(alone.Unit)))
                                .toString());
    } else {
        json.raw("library", CJsonObject().text("error", alone.Refusal).toString());
    }
    report.line(json.toString());
}

// list.

struct CListed {
    CUnitPtr Unit;
    std::vector<std::string> OtherNames;
};

// Every unit that can be written, by its text, with its other names.
std::map<std::string, CListed> namedUnits() {
    std::map<std::string, CListed> listed;
    for (const auto& [spelling, unit] : CUnitFormat::names()) {
        const std::string name = mensor::toStdString(spelling);
        const auto text = textOf(unit);
        if (!text) {
            continue;
        }
        CListed& entry = listed[*text];
        entry.Unit = unit;
        const CReading reading = tryReadUnit(name);
        if (name != *text && reading.Unit == unit) {
            entry.OtherNames.push_back(name);
        }
    }
    return listed;
}

void listPacks(CReport& report) {
    for (const ePack pack : allPacks()) {
        if (report.isJson()) {
            report.line(CJsonObject()
                            .text("pack", nameOf(pack))
                            .text("description", descriptionOf(pack))
                            .toString());
        } else {
            report.line(padded(nameOf(pack), 11) + descriptionOf(pack));
        }
    }
}

void listAll(CReport& report) {
    for (const auto& [text, entry] : namedUnits()) {
        const CMeaning meaning = meaningOf(entry.Unit);
        if (report.isJson()) {
            std::vector<std::string> others;
            for (const std::string& name : entry.OtherNames) {
                others.push_back(jsonText(name));
            }
            report.line(CJsonObject()
                            .text("unit", text)
                            .raw("meaning", jsonOf(meaning))
                            .raw("alsoRead", jsonArray(others))
                            .toString());
            continue;
        }
        std::string line = padded(text, 15) + " " + meaning.toString();
        for (std::size_t i = 0; i < entry.OtherNames.size(); ++i) {
            line += (i == 0 ? "   also " : ", ") + entry.OtherNames[i];
        }
        report.line(line);
    }
}

void listCompatible(const CTarget& target, CReport& report) {
    for (const CChoice& choice : choicesFor(target.Unit)) {
        if (report.isJson()) {
            report.line(CJsonObject()
                            .text("unit", choice.Text)
                            .number("size", choice.Factor)
                            .text("in", target.Text)
                            .toString());
        } else {
            report.line(padded(choice.Text, 15) + " " + shortest(choice.Factor) + " " +
                        target.Text);
        }
    }
}

}  // namespace

void convert(const CArguments& arguments, CReport& report) {
    std::vector<CTarget> targets;
    for (auto text = arguments.Operands.begin() + 1; text != arguments.Operands.end(); ++text) {
        if (auto target = readTarget(*text, arguments, report)) {
            targets.push_back(std::move(*target));
        }
    }
    if (report.refused() > 0) {
        return;
    }
    Converter converter(std::move(targets), arguments, report);
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
            std::cout.flush();  // whoever writes the lines may wait for the answer
        }
    }
    report.endProgress();
}

void explain(const CArguments& arguments, CReport& report) {
    const std::string& text = arguments.Operands[0];
    const CReading reading = tryReadUnit(text, arguments.Reading);
    const CAlone alone = readAlone(text);
    if (!reading) {
        report.countRefused();
    }
    (report.isJson() ? explainJson : explainText)(text, reading, alone, arguments.Reading, report);
}

void list(const CArguments& arguments, CReport& report) {
    if (arguments.Operands.empty()) {
        listAll(report);
    } else if (arguments.Operands[0] == "packs") {
        listPacks(report);
    } else if (const auto target = readTarget(arguments.Operands[1], arguments, report)) {
        listCompatible(*target, report);
    }
}

void audit(const CArguments& arguments, CReport& report) {
    const std::string& name = arguments.Operands[0];
    std::ifstream file;
    if (name != "-") {
        file.open(name);
        if (!file || file.peek() == std::ifstream::traits_type::eof()) {
            // A folder opens, but cannot be read; an empty file holds no unit, which is no fault.
            if (!file.is_open() || !file.eof()) {
                throw std::runtime_error("cannot read " + quoted(name));
            }
        }
    }
    CLines lines(name == "-" ? std::cin : file, name == "-" ? "the standard input" : quoted(name));
    std::size_t texts = 0;
    for (std::string line; lines.next(line);) {
        report.progress(lines.number(), name == "-" ? lines.bytes() : 0);
        if (isBlank(line) || line[line.find_first_not_of(" \t")] == '#') {
            continue;
        }
        ++texts;
        const CReading reading = tryReadUnit(line, arguments.Reading);
        if (reading) {
            continue;
        }
        if (report.isJson()) {
            report.countRefused();
            report.line(CJsonObject()
                            .text("file", name)
                            .count("line", lines.number())
                            .text("text", line)
                            .raw("error", jsonOf(*reading.Refusal))
                            .toString());
        } else {
            report.refuse(name + ":" + std::to_string(lines.number()) + ": ", *reading.Refusal);
        }
    }
    report.endProgress();
    if (report.isJson()) {
        report.line(
            CJsonObject().count("texts", texts).count("refused", report.refused()).toString());
    } else {
        report.line(std::to_string(texts) + " units, " + std::to_string(report.refused()) +
                    " refused");
    }
}
