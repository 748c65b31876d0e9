// Codes_fuzz.cpp: a text is a code of a table exactly if the table has a row for it. The meaning of a
// code gives that code, or the code that its row names. A refusal has a position in the text. Each
// number is the unit id of at most one code.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "Input.h"
#include "mensor_codes/Codes.h"
#include "mensor_codes/OpcUa.h"
#include "property.h"

using namespace mensor;
using codes::eSystem;
using exact::eRefusal;

namespace {

void checkTable(eSystem system, const std::string& text) {
    const codes::CReading reading = codes::tryRead(system, text);
    const std::optional<codes::CCode> row = codes::find(system, text);
    if (reading) {
        fuzz::require(row && !row->Definition.empty(), text, "is accepted without a row");
        const codes::CMatch match = codes::codeFor(system, *reading.Meaning);
        fuzz::require(match.Code == (row->SameAs.empty() ? row->Code : row->SameAs), text,
                      "has a meaning that gives another code");
        return;
    }
    const bool isRefused = reading.Refusal.Code == eRefusal::NO_MEANING;
    fuzz::require(isRefused == row.has_value(), text,
                  "is refused for having no meaning although no row refuses it, or the reverse");
    fuzz::require(!isRefused || row->Definition.empty(), text,
                  "is refused for having no meaning, but has a definition");
    fuzz::require(reading.Refusal.Token.End <= text.size(), text,
                  "has a refusal with a place beyond its end");
    fuzz::require(!codes::diagnose(reading.Refusal).message().empty(), text,
                  "has a refusal without words");
}

void checkId(const std::string& text) {
    std::int32_t id = 0;
    std::memcpy(&id, text.data(), text.size() < sizeof id ? text.size() : sizeof id);
    const std::string code = codes::codeOfUnitId(id);
    fuzz::require(code.empty() || codes::unitIdOf(code) == id, text, "has a code with another id");
    const std::optional<std::int32_t> own = codes::unitIdOf(text);
    fuzz::require(!own || codes::codeOfUnitId(*own) == text, text, "has an id with another code");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = fuzz::shortText(data, size, 16);
    if (!input) {
        return 0;
    }
    for (const eSystem system : {eSystem::UNECE, eSystem::OPCUA, eSystem::SENML}) {
        checkTable(system, *input);
    }
    checkId(*input);
    return 0;
}
