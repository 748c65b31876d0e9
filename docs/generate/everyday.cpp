// everyday.cpp: the tables of docs/everyday.md, from those of the library.
//
//     everyday spellings | words | traps | notes | refusals | forms
#include <cstring>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/Definitions.h"
#include "mensor_exact/Reading.h"
#include "mensor_exact/TrapRows.h"
#include "support/trap_example.h"

using namespace mensor::exact;
using mensor::test::exampleOf;

namespace {

CCatalogue everything() {
    return CCatalogue::builtIn()
        .with(ePack::CUSTOMARY)
        .with(ePack::SCIENCE)
        .with(ePack::OFFSETS)
        .with(ePack::COUNTING)
        .with(ePack::EVERYDAY);
}

// Doxygen would take a back quote before these characters for something else.
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

bool isNote(const CTrapRow& trap) {
    return trap.Place == ePlace::UNUSUAL || trap.Place == ePlace::TOLD ||
           trap.Place == ePlace::SHAPE;
}

// Returns whether two rows differ in their text alone.
bool areAlike(const CTrapRow& a, const CTrapRow& b) {
    return a.Place == b.Place && a.Sentence == b.Sentence && a.First == b.First &&
           a.Second == b.Second;
}

// Writes rows that differ in their text alone as one row, with the message of the first.
void refused(bool isUnknown) {
    std::cout << "| Written | Code | Because |\n|---|---|---|\n";
    const CCatalogue catalogue = everything();
    for (const CTrapRow* trap = std::begin(TrapRows); trap != std::end(TrapRows);) {
        if (isNote(*trap) || (trap->Place == ePlace::UNKNOWN) != isUnknown) {
            ++trap;
            continue;
        }
        const std::string text = exampleOf(*trap);
        const CValueReading reading = tryReadValue(text, catalogue);
        if (reading) {
            std::cerr << text << " is read\n";
            std::exit(1);
        }
        const CDiagnosis diagnosis = diagnose(reading.Refusal, catalogue);
        std::cout << "| " << code(text);
        const CTrapRow* const first = trap;
        for (++trap; trap != std::end(TrapRows) && areAlike(*first, *trap); ++trap) {
            std::cout << ", " << code(exampleOf(*trap));
        }
        std::cout << " | " << nameOf(diagnosis.Code) << " | " << diagnosis.message() << " |\n";
    }
}

void notes() {
    std::cout << "| Written | Note | With `Strict` |\n|---|---|---|\n";
    for (const CTrapRow& trap : TrapRows) {
        if (!isNote(trap)) {
            continue;
        }
        std::string text(trap.Text);
        if (trap.Place == ePlace::SHAPE) {
            text.insert(0, std::string(trap.Behind) + "/");
        }
        std::cout << "| " << code(text) << " | " << withName(trap.Sentence, text) << " | "
                  << (trap.Place == ePlace::TOLD ? "read" : "refused") << " |\n";
    }
}

void forms() {
    std::cout << "| Written | Code | Because |\n|---|---|---|\n";
    const CCatalogue catalogue = everything();
    for (const char* const text : {
#define MENSOR_FORM(text, code, sentence, first, second) text,
#include "mensor_exact/refusals.def"
         }) {
        const CDiagnosis diagnosis = diagnose(tryReadValue(text, catalogue).Refusal, catalogue);
        std::string shown;
        for (const char c : std::string(text)) {  // escapes the characters that a table cannot show
            shown += c == '\n' ? "⟨U+000A⟩" : c == '\xFF' ? "⟨byte FF⟩" : std::string(1, c);
        }
        const std::size_t invisible = shown.find("\u200B");
        if (invisible != std::string::npos) {
            shown.replace(invisible, 3, "⟨U+200B⟩");
        }
        std::cout << "| " << code(shown) << " | " << nameOf(diagnosis.Code) << " | "
                  << diagnosis.message() << " |\n";
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
    } else if (what == "forms") {
        forms();
    } else {
        std::cerr << "usage: everyday spellings | words | traps | notes | refusals | forms\n";
        return 2;
    }
}
