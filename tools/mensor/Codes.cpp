#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <mensor_codes/Codes.h>
#include <mensor_exact/Reading.h>

#include "Commands.h"
#include "Display.h"

namespace {

using namespace mensor::exact;
using mensor::codes::CCode, mensor::codes::CMatch, mensor::codes::eSystem;

constexpr std::size_t LabelColumns = 15;

// Returns whether the refusal is about the number of a value.
bool isOfNumbers(eRefusal code) {
    return code == eRefusal::MALFORMED_TEXT || code == eRefusal::TOO_LONG ||
           (code >= eRefusal::NO_NUMBER && code <= eRefusal::NUMBER_RANGE);
}

// Returns what the unit of the command line means. If it is refused, reports it and returns none.
std::optional<CMeaning> meaningOf(const CArguments& arguments, const CUnits& units,
                                  CReport& report) {
    const std::string& text = arguments.Operands[0];
    std::optional<CMeaning> meaning;
    CDiagnosis refusal;
    if (arguments.From) {
        const auto reading = mensor::codes::tryRead(*arguments.From, text);
        meaning = reading.Meaning;
        if (!reading) {
            refusal = mensor::codes::diagnose(reading.Refusal);
        }
    } else {
        const CReading reading = tryRead(text, units.catalogue(), arguments.Reading);
        meaning = reading.Meaning;
        if (!reading) {
            refusal = diagnose(reading.Refusal, units.catalogue());
        }
    }
    if (!meaning && report.isJson()) {
        report.countRefused();
        report.line(CJsonObject().text("unit", text).raw("error", jsonOf(refusal)).toString());
    } else if (!meaning) {
        report.refuse("", refusal);
    }
    return meaning;
}

// Returns the codes, such as "MQH, also 4X", or a sentence if there is none.
std::string sentenceOf(eSystem system, const CMatch& match) {
    std::string text = match.toString(system);
    for (std::size_t i = 0; i < match.Synonyms.size(); ++i) {
        text += (i == 0 ? ", also " : ", ") + match.Synonyms[i];
    }
    return text;
}

std::string jsonOf(eSystem system, const CMatch& match) {
    CJsonObject json;
    json.text("system", mensor::codes::shortNameOf(system));
    if (match) {
        json.text("code", match.Code);
    } else if (!match.Nearest.empty()) {
        json.text("nearest", match.Nearest).number("deviation", match.Deviation);
    }
    if (!match.Synonyms.empty()) {
        std::vector<std::string> synonyms;
        for (const std::string& synonym : match.Synonyms) {
            synonyms.push_back(jsonText(synonym));
        }
        json.raw("synonyms", jsonArray(synonyms));
    }
    return json.toString();
}

std::vector<eSystem> systemsAskedFor(const CArguments& arguments) {
    if (arguments.To) {
        return {*arguments.To};
    }
    return {std::begin(mensor::codes::AllSystems), std::end(mensor::codes::AllSystems)};
}

void tellCodes(const CArguments& arguments, const CMeaning& meaning, CReport& report) {
    for (const eSystem system : systemsAskedFor(arguments)) {
        const CMatch match = mensor::codes::codeFor(system, meaning);
        report.line(padded(mensor::codes::nameOf(system), LabelColumns) +
                    shown(sentenceOf(system, match)));
    }
}

std::string codesAsJson(const CArguments& arguments, const CMeaning& meaning) {
    std::vector<std::string> codes;
    for (const eSystem system : systemsAskedFor(arguments)) {
        codes.push_back(jsonOf(system, mensor::codes::codeFor(system, meaning)));
    }
    return jsonArray(codes);
}

}  // namespace

CValueReading readCodedValue(const std::string& text, eSystem system,
                             std::optional<CDiagnosis>& refusal) {
    const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
    const std::size_t end = std::min(text.find_first_of(" \t", begin), text.size());
    const std::size_t code = std::min(text.find_first_not_of(" \t", end), text.size());
    const std::size_t last = text.find_last_not_of(" \t") + 1;

    CReadOptions options;
    options.Dimensionless = true;
    CValueReading value =
        tryReadValue(std::string_view(text).substr(0, end), CCatalogue::builtIn(), options);
    const bool isNumber = value && value.Unit.Begin == value.Unit.End;
    if (!value && isOfNumbers(value.Refusal.Code)) {
        refusal = diagnose(value.Refusal);
        refusal->Text = text;
    } else if (!isNumber || code == text.size()) {
        refusal = diagnose(eRefusal::MISSING_UNIT, text, {end, end},
                           "a value is a number, a blank and a code");
    } else {
        const std::string_view unit = std::string_view(text).substr(code, last - code);
        const auto reading = mensor::codes::tryRead(system, unit);
        if (reading) {
            value.Value->Unit = *reading.Meaning;
            value.Unit = {code, last};
            return value;
        }
        const CDiagnosis ofCode = mensor::codes::diagnose(reading.Refusal);
        refusal = diagnose(ofCode.Code, text,
                           {code + ofCode.Byte, code + ofCode.Byte + ofCode.Token.size()},
                           ofCode.Sentence);
        refusal->Readings = ofCode.Readings;
        refusal->Suggestions = ofCode.Suggestions;
    }
    value.Value.reset();
    return value;
}

void code(const CArguments& arguments, const CUnits& units, CReport& report) {
    const std::optional<CMeaning> meaning = meaningOf(arguments, units, report);
    if (!meaning) {
        return;
    }
    if (report.isJson()) {
        report.line(CJsonObject()
                        .text("unit", arguments.Operands[0])
                        .raw("meaning", jsonOf(*meaning))
                        .raw("codes", codesAsJson(arguments, *meaning))
                        .toString());
    } else {
        tellCodes(arguments, *meaning, report);
    }
}

void explainCode(const CArguments& arguments, CReport& report) {
    const std::string& text = arguments.Operands[0];
    const eSystem system = *arguments.From;
    const auto reading = mensor::codes::tryRead(system, text);
    const std::optional<CCode> row = mensor::codes::find(system, text);
    if (!reading) {
        const CDiagnosis refusal = mensor::codes::diagnose(reading.Refusal);
        if (report.isJson()) {
            report.countRefused();
            report.line(CJsonObject().text("code", text).raw("error", jsonOf(refusal)).toString());
        } else {
            report.refuse("", refusal);
        }
        return;
    }
    if (report.isJson()) {
        CJsonObject json;
        json.text("code", text).text("system", mensor::codes::shortNameOf(system));
        if (row) {
            json.text("name", row->Name).text("definition", row->Definition);
            json.text("source", row->Source);
        }
        report.line(json.raw("meaning", jsonOf(*reading.Meaning))
                        .raw("codes", codesAsJson(arguments, *reading.Meaning))
                        .toString());
        return;
    }
    const auto tell = [&report](const char* label, std::string_view what) {
        if (!what.empty()) {
            report.line(padded(label, LabelColumns) + shown(what));
        }
    };
    tell("code", text);
    tell("system", mensor::codes::nameOf(system));
    if (row) {
        tell("name", row->Name);
        tell("definition", row->Definition);
        tell("source", row->Source);
        tell("note", row->Note);
    }
    const std::string kind = reading.Meaning->kind();
    const bool hasKind = kind != reading.Meaning->unitsText();
    tell("meaning", reading.Meaning->toString() + (hasKind ? ", " + kind : ""));
    tellCodes(arguments, *reading.Meaning, report);
}
