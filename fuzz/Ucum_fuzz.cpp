// Ucum_fuzz.cpp: a text is a code of UCUM exactly if the grammar accepts it. The code for the meaning
// of a code has that meaning again. A refusal has a position in the text. Reading the text in the other
// systems does not crash.
#include <cstddef>
#include <cstdint>
#include <string>

#include "Input.h"
#include "codes/UcumGrammar.h"
#include "mensor_codes/Codes.h"
#include "property.h"

using namespace mensor;
using codes::eSystem;

namespace {

void checkRefusal(const std::string& text, const codes::CRefusal& refusal) {
    fuzz::require(refusal.Token.Begin <= refusal.Token.End && refusal.Token.End <= text.size(),
                  text, "has a refusal with a place beyond its end");
    const exact::CDiagnosis diagnosis = codes::diagnose(refusal);
    fuzz::require(!diagnosis.message().empty() && !diagnosis.caret().empty(), text,
                  "has a refusal without words");
    fuzz::require(diagnosis.Code == refusal.Code, text, "has a diagnosis of another refusal");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = fuzz::shortText(data, size, 64);
    if (!input) {
        return 0;
    }
    const std::string& text = *input;
    const codes::CReading reading = codes::tryRead(eSystem::UCUM, text);
    fuzz::require(codes::isCode(eSystem::UCUM, text) == UcumGrammar::accepts(text), text,
                  "is read differently by the grammar");
    if (reading) {
        const codes::CMatch match = codes::codeFor(eSystem::UCUM, *reading.Meaning);
        fuzz::require(!match || codes::read(eSystem::UCUM, match.Code) == *reading.Meaning, text,
                      "has a meaning whose code means something else");
    }
    for (const eSystem system : codes::AllSystems) {
        const codes::CReading other = codes::tryRead(system, text);
        if (!other) {
            checkRefusal(text, other.Refusal);
        }
    }
    return 0;
}
