// everyday.cpp: the tables of docs/everyday.md, from those of the library.
//
//     everyday spellings | words | traps | notes | refusals
#include <cstring>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/Definitions.h"
#include "mensor_exact/Reading.h"
#include "mensor_exact/Traps.h"

using namespace mensor::exact;

namespace {

CCatalogue everything() {
    return CCatalogue::builtIn()
        .with(ePack::CUSTOMARY)
        .with(ePack::SCIENCE)
        .with(ePack::OFFSETS)
        .with(ePack::COUNTING)
        .with(ePack::EVERYDAY);
}

// Doxygen takes a back quote before these characters for something else.
std::string code(std::string_view text) {
    const bool isPlain = text.find_first_of("%'\"") == std::string_view::npos;
    return isPlain ? "`" + std::string(text) + "`" : "<code>" + std::string(text) + "</code>";
}

std::string withName(std::string_view sentence, std::string_view name) {
    std::string text(sentence);
    const std::size_t place = text.find("{}");
    if (place != std::string::npos) {
        text.replace(place, 2, name);
    }
    return text;
}

void spellings() {
    std::cout << "| Written | Means | Called | Nobody can mean anything else, since |\n"
                 "|---|---|---|---|\n";
    const CCatalogue catalogue = CCatalogue::builtIn().with(ePack::EVERYDAY);
    for (const CDefinition& definition : catalogue.definitions()) {
        if (definition.Pack == ePack::EVERYDAY) {
            std::cout << "| " << code(definition.Name) << " | "
                      << (definition.Text.empty() ? "a dimension of its own"
                                                  : code(definition.Text))
                      << " | " << definition.English << " | " << definition.Source << " |\n";
        }
    }
}

void words() {
    std::cout << "| Word | Plural | Is | Prefixes |\n|---|---|---|---|\n";
#define MENSOR_WORD(singular, plural, symbol, prefixes)                                            \
    std::cout << "| " << code(singular) << " | " << code(plural) << " | " << code(symbol) << " | " \
              << ((prefixes) ? "yes" : "no") << " |\n";
#include "mensor_exact/spellings.def"
}

// A text that has the trap in it.
std::string exampleOf(const CTrap& trap) {
    const std::string text(trap.text());
    switch (trap.Place) {
        case ePlace::DEGREE: return "20° " + text;
        case ePlace::PRESSURE: return "5 bar " + text;
        case ePlace::ELECTRIC: return "230 V " + text;
        case ePlace::MASS: return "50 mg " + text + "/l";
        case ePlace::PERCENT: return "50 % " + text;
        case ePlace::MASS_BELOW: return "4 J/(kg " + text + ")";
        case ePlace::CUBED: return "5 " + text + "³/h";
        case ePlace::POWER: return "5 " + text + "²";
        case ePlace::QUOTIENT: return "5 " + std::string(trap.behind()) + "/" + text;
        default: return "5 " + text;
    }
}

void refused(bool isUnknown) {
    std::cout << "| Written | Code | Because |\n|---|---|---|\n";
    const CCatalogue catalogue = everything();
    for (const CTrap* trap = trapsBegin(); trap != trapsEnd(); ++trap) {
        const bool isNote = trap->Place == ePlace::UNUSUAL || trap->Place == ePlace::TOLD;
        if (isNote || (trap->Place == ePlace::UNKNOWN) != isUnknown) {
            continue;
        }
        const std::string text = exampleOf(*trap);
        const CValueReading reading = tryReadValue(text, catalogue);
        if (reading) {
            std::cerr << text << " is read\n";
            std::exit(1);
        }
        const CDiagnosis diagnosis = diagnose(reading.Refusal, catalogue);
        std::cout << "| " << code(text) << " | " << nameOf(diagnosis.Code) << " | "
                  << diagnosis.message() << " |\n";
    }
}

void notes() {
    std::cout << "| Written | Note | With `Strict` |\n|---|---|---|\n";
    for (const CTrap* trap = trapsBegin(); trap != trapsEnd(); ++trap) {
        if (trap->Place == ePlace::UNUSUAL || trap->Place == ePlace::TOLD) {
            std::cout << "| " << code(trap->text()) << " | "
                      << withName(trap->Sentence, trap->text()) << " | "
                      << (trap->Place == ePlace::UNUSUAL ? "refused" : "read") << " |\n";
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view what = argc == 2 ? argv[1] : "";
    if (what == "spellings") {
        spellings();
    } else if (what == "words") {
        words();
    } else if (what == "traps") {
        refused(false);
    } else if (what == "notes") {
        notes();
    } else if (what == "refusals") {
        refused(true);
    } else {
        std::cerr << "usage: everyday spellings | words | traps | notes | refusals\n";
        return 2;
    }
}
