#include "mensor_codes/OpcUa.h"

#include "mensor_codes/System.h"

namespace mensor::codes {

namespace {

constexpr const char* Unknown = "{} is no unit id of OPC UA";

bool isOfCode(unsigned char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z'); }

// Returns the number in a text of digits without leading zeros; 0 for any other text or too many digits.
std::int32_t numberOf(std::string_view text) {
    constexpr std::size_t MostDigits = 8;  // enough for three characters
    if (text.empty() || text.size() > MostDigits || text[0] == '0') {
        return 0;
    }
    std::int32_t number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            return 0;
        }
        number = number * 10 + (c - '0');
    }
    return number;
}

// The codes of UN/CEFACT, written as unit ids.
class COpcUa final : public CSystem {
public:
    const char* name() const override { return "OPC UA"; }

    CReading tryRead(std::string_view text) const override {
        const std::string code = codeOfUnitId(numberOf(text));
        CReading reading = unece().tryRead(code);
        if (!reading) {  // the message must name the text instead of the code
            const bool isKnown = reading.Refusal.Code == exact::eRefusal::NO_MEANING;
            reading.Refusal =
                text.empty() ? refusalOf(eSystem::OPCUA, text, exact::eRefusal::EMPTY,
                                         "an empty text is no unit id")
                : isKnown    ? refusalOf(eSystem::OPCUA, text, exact::eRefusal::NO_MEANING,
                                         reading.Refusal.Sentence)
                          : refusalOf(eSystem::OPCUA, text, exact::eRefusal::UNKNOWN_CODE, Unknown);
        }
        return reading;
    }

    std::optional<CCode> find(std::string_view text) const override {
        const std::optional<CCode> code = unece().find(codeOfUnitId(numberOf(text)));
        if (!code) {
            return std::nullopt;
        }
        return withUnitId(*code);
    }

    void forEach(const std::function<void(const CCode&)>& visit) const override {
        unece().forEach([&visit](const CCode& code) { visit(withUnitId(code)); });
    }

    CMatch codeFor(const exact::CMeaning& meaning) const override {
        CMatch match = unece().codeFor(meaning);
        match.Code = idText(match.Code);
        match.Nearest = idText(match.Nearest);
        for (std::string& synonym : match.Synonyms) {
            synonym = idText(synonym);
        }
        return match;
    }

private:
    static std::string idText(std::string_view code) {
        const std::optional<std::int32_t> id = unitIdOf(code);
        return id ? std::to_string(*id) : std::string();
    }

    static CCode withUnitId(CCode code) {
        code.Code = idText(code.Code);
        code.SameAs = idText(code.SameAs);
        return code;
    }
};

constexpr COpcUa System;

}  // namespace

const CSystem& opcUa() { return System; }

std::optional<std::int32_t> unitIdOf(std::string_view code) {
    constexpr std::size_t Most = 3;
    if (code.empty() || code.size() > Most) {
        return std::nullopt;
    }
    std::int32_t id = 0;
    for (const char c : code) {
        if (!isOfCode(static_cast<unsigned char>(c))) {
            return std::nullopt;
        }
        id = id * 256 + static_cast<unsigned char>(c);
    }
    return id;
}

std::string codeOfUnitId(std::int32_t unitId) {
    constexpr std::int32_t Largest = 0xFFFFFF;
    if (unitId <= 0 || unitId > Largest) {
        return {};
    }
    std::string code;
    for (int shift = 16; shift >= 0; shift -= 8) {
        const auto c = static_cast<unsigned char>((unitId >> shift) & 0xFF);
        if (c == 0 && code.empty()) {
            continue;  // the code has fewer characters
        }
        if (!isOfCode(c)) {
            return {};
        }
        code += static_cast<char>(c);
    }
    return code;
}

CEUInformation opcUaUnit(std::string_view code) {
    const std::optional<CCode> row = find(eSystem::UNECE, code);
    if (!row) {
        throw exact::CReadError(diagnose(unece().tryRead(code).Refusal));
    }
    CEUInformation unit;
    unit.NamespaceUri = OpcUaNamespace;
    unit.UnitId = unitIdOf(code).value_or(-1);
    unit.DisplayName = row->Symbol.empty() ? row->Name : row->Symbol;
    unit.Description = row->Name;
    return unit;
}

exact::CMeaning readOpcUa(const CEUInformation& unit) {
    if (unit.NamespaceUri != OpcUaNamespace) {
        throw exact::CReadError(
            diagnose(refusalOf(eSystem::OPCUA, unit.NamespaceUri, exact::eRefusal::UNKNOWN_CODE,
                               "unit ids of the namespace {} are no codes of UN/CEFACT")));
    }
    return read(eSystem::OPCUA, std::to_string(unit.UnitId));
}

}  // namespace mensor::codes
