#include "mensor_codes/Codes.h"

#include <cmath>
#include <cstdio>
#include <utility>

#include "mensor_codes/System.h"

namespace mensor::codes {

namespace {

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

// Returns "UCUM", "UCUM and SenML" or "UCUM, SenML and OpenTelemetry".
std::string listed(const std::vector<const char*>& names) {
    std::string list;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) {
            list += i + 1 < names.size() ? ", " : " and ";
        }
        list += names[i];
    }
    return list;
}

// Returns the names of the other systems that have the code.
std::vector<const char*> othersWith(const CRefusal& refusal) {
    std::vector<const char*> names;
    for (const eSystem system : AllSystems) {
        if (system != refusal.System && isCode(system, refusal.Text)) {
            names.push_back(nameOf(system));
        }
    }
    return names;
}

// Returns '"DZP" (dozen pack) has no exact meaning: how much is in one must be agreed'. Every such code has a name.
std::string meaningless(const CCode& code, const std::string& reason) {
    std::string sentence =
        quoted(code.Code) + " (" + std::string(code.Name) + ") has no exact meaning: " + reason;
    if (!code.Note.empty()) {
        sentence += "; " + std::string(code.Note);
    }
    return sentence;
}

// Returns whether the table has the code and refuses it.
bool isRefused(const std::optional<CCode>& code) { return code && code->Definition.empty(); }

}  // namespace

const char* shortNameOf(eSystem system) {
    switch (system) {
        case eSystem::UNECE: return "unece";
        case eSystem::OPCUA: return "opcua";
        case eSystem::UCUM: return "ucum";
        case eSystem::SENML: return "senml";
        case eSystem::OPENTELEMETRY: return "opentelemetry";
    }
    return "";
}

std::optional<eSystem> systemNamed(std::string_view shortName) {
    for (const eSystem system : AllSystems) {
        if (shortName == shortNameOf(system)) {
            return system;
        }
    }
    return std::nullopt;
}

const char* nameOf(eSystem system) { return systemOf(system).name(); }

exact::CMeaning read(eSystem system, std::string_view code) {
    CReading reading = tryRead(system, code);
    if (!reading) {
        throw exact::CReadError(diagnose(reading.Refusal));
    }
    return *std::move(reading.Meaning);
}

CReading tryRead(eSystem system, std::string_view code) { return systemOf(system).tryRead(code); }

bool isCode(eSystem system, std::string_view text) {
    const CReading reading = tryRead(system, text);
    return reading || reading.Refusal.Code == exact::eRefusal::NO_MEANING;
}

exact::CDiagnosis diagnose(const CRefusal& refusal) {
    const std::string_view token = refusal.Token.of(refusal.Text);
    std::string sentence(refusal.Sentence);
    const std::optional<CCode> code = find(refusal.System, token);
    if (refusal.Code == exact::eRefusal::NO_MEANING && isRefused(code)) {
        sentence = meaningless(*code, sentence);
    } else {
        const std::size_t place = sentence.find("{}");
        if (place != std::string::npos) {
            sentence.replace(place, 2, quoted(token));
        }
    }
    if (refusal.Code != exact::eRefusal::NO_MEANING) {
        const std::vector<const char*> others = othersWith(refusal);
        if (!others.empty()) {
            sentence += "; it is a valid code of " + listed(others);
        }
    }
    exact::CDiagnosis diagnosis =
        exact::diagnose(refusal.Code, refusal.Text, refusal.Token, std::move(sentence));
    if (refusal.Code == exact::eRefusal::UNKNOWN_CODE) {
        diagnosis.Suggestions = systemOf(refusal.System).suggestions(token);
    } else if (refusal.Code != exact::eRefusal::NO_MEANING) {
        diagnosis.Readings = systemOf(refusal.System).readings(refusal);
    }
    return diagnosis;
}

std::optional<CCode> find(eSystem system, std::string_view code) {
    return systemOf(system).find(code);
}

std::vector<CCode> all(eSystem system) {
    std::vector<CCode> codes;
    systemOf(system).forEach([&codes](const CCode& code) { codes.push_back(code); });
    return codes;
}

std::string CMatch::toString(eSystem system) const {
    if (!Code.empty()) {
        return Code;
    }
    std::string text = std::string("no code of ") + codes::nameOf(system) + " means exactly this";
    constexpr double Most = 0.1;  // the largest relative error of a nearest code
    if (!Nearest.empty() && std::fabs(Deviation) <= Most) {
        char size[32];
        std::snprintf(size, sizeof size, "%.2g", 100 * std::fabs(Deviation));
        text += "; the nearest is " + Nearest + ", which is " + size + " % " +
                (Deviation < 0 ? "smaller" : "larger");
    }
    return text;
}

CMatch codeFor(eSystem system, const exact::CMeaning& meaning) {
    return systemOf(system).codeFor(meaning);
}

}  // namespace mensor::codes
