#include "mensor_codes/UcumAtoms.h"

#include "mensor_codes/CodeTable.h"

namespace mensor::codes {

namespace {

#define MENSOR_TABLE "mensor_codes/ucum.def"
#include "mensor_codes/table.def"

constexpr bool TakesPrefixes[] = {
#define MENSOR_CODE(code, definition, symbol, name, source, same, note) false,
#define MENSOR_METRIC(code, definition, symbol, name, source, same, note) true,
#define MENSOR_REFUSED(code, symbol, name, reason, note) false,
#define MENSOR_REFUSED_METRIC(code, symbol, name, reason, note) true,
#include "mensor_codes/ucum.def"
#undef MENSOR_CODE
#undef MENSOR_METRIC
#undef MENSOR_REFUSED
#undef MENSOR_REFUSED_METRIC
};

// Returns the prefix of `length` characters at the beginning of `symbol`, or null.
const CUcumPrefix* findPrefix(std::string_view symbol, std::size_t length) {
    for (const CUcumPrefix& prefix : UcumPrefixes) {
        if (prefix.Symbol.size() == length && symbol.substr(0, length) == prefix.Symbol) {
            return &prefix;
        }
    }
    return nullptr;
}

}  // namespace

std::size_t CUcumAtoms::size() { return sizeof Lengths / sizeof Lengths[0]; }
std::size_t CUcumAtoms::find(std::string_view code) { return CTable::find(code); }
std::string_view CUcumAtoms::codeOf(std::size_t row) { return CTable::codeOf(row); }
CCode CUcumAtoms::code(std::size_t row) { return CTable::code(row); }
bool CUcumAtoms::takesPrefixes(std::size_t row) { return TakesPrefixes[row]; }
bool CUcumAtoms::isRefused(std::size_t row) { return CTable::isRefused(row); }
std::string_view CUcumAtoms::reason(std::size_t row) { return CTable::reason(row); }
exact::CSmallMeaning CUcumAtoms::meaning(std::size_t row) { return CTable::smallMeaning(row); }
bool CUcumAtoms::isSynonym(std::size_t row) { return Lengths[row].SameAs > 0; }

eUcumUnit findUcumUnit(std::string_view symbol, CUcumUnit& unit) {
    unit.Prefix = nullptr;
    unit.Atom = CUcumAtoms::find(symbol);
    if (unit.Atom != CUcumAtoms::None) {
        return eUcumUnit::FOUND;
    }
    bool isPrefixed = false;
    for (std::size_t length = 1; length <= 2 && length < symbol.size(); ++length) {
        const CUcumPrefix* const prefix = findPrefix(symbol, length);
        if (prefix == nullptr) {
            continue;
        }
        const std::size_t atom = CUcumAtoms::find(symbol.substr(length));
        if (atom == CUcumAtoms::None) {
            continue;
        }
        isPrefixed = true;
        if (CUcumAtoms::takesPrefixes(atom)) {
            unit = {atom, prefix};
            return eUcumUnit::FOUND;
        }
    }
    return isPrefixed ? eUcumUnit::TAKES_NO_PREFIX : eUcumUnit::UNKNOWN;
}

}  // namespace mensor::codes
