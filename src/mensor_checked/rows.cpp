// rows.cpp: a unit with a symbol is found by its symbol. A scaled or shifted unit has no symbol, and a
// client may have moved its label. It is found by the hash code that the unit of a row has, because the
// library makes one object for each hash code.
#include "mensor_checked/rows.h"

#include <string>
#include <unordered_map>

#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor/mensor_math.h"
#include "mensor_checked/Rounding.h"
#include "mensor_exact/Definitions.h"

namespace mensor::checked {

namespace {

using exact::CCatalogue;
using exact::CDefinition;

// Returns the meaning of the name if the unit has a symbol of its own, such as the metre, the newton or the
// radian.
std::optional<CMeaning> meaningOfSymbol(std::string_view name) {
    if (CCatalogue::builtIn().packOf(name) != exact::ePack::CATALOGUE) {
        return std::nullopt;
    }
    std::optional<CMeaning> meaning = CCatalogue::builtIn().meaning(name);
    if (!meaning->factor().isOne() || !meaning->offset().isZero()) {
        meaning.reset();
    }
    return meaning;
}

// Returns the system unit of the unit with this definition, as the library has it.
CUnitPtr systemUnitOf(std::string_view definition) {
    const std::string_view name = unitUnder(definition);
    const CUnitPtr metre = CUnit::searchSymbol("m");
    if (name.empty()) {
        return CProductUnit::one();
    }
    if (name == "m³") {
        return metre->pow(3);
    }
    if (name == "m/s²") {
        return metre->divide(CUnit::searchSymbol("s")->pow(2));
    }
    return meaningOfSymbol(name) ? CUnit::searchSymbol(std::string(name))
                                 : systemUnitOf(CCatalogue::builtIn().find(name)->Text);
}

class CRows {
public:
    CRows() {
        for (const CDefinition& definition : CCatalogue::builtIn().definitions()) {
            if (!meaningOfSymbol(definition.Name)) {
                add(definition);
            }
        }
    }

    // Never destroyed, because threads and statics of clients may still read units while the process ends.
    static CRows& instance() {
        static CRows& Rows = *new CRows;
        return Rows;
    }

    std::optional<CMeaning> find(CUnit& unit) const {
        const auto ofPack = m_OfPacks.find(&unit);
        if (ofPack != m_OfPacks.end()) {
            return ofPack->second;
        }
        const auto named = m_Names.find(unit.hashCode());
        if (named == m_Names.end() || CUnit::searchHashCode(unit.hashCode()).get() != &unit) {
            return std::nullopt;
        }
        CMeaning row = *CCatalogue::builtIn().meaning(named->second);
        // A client may have registered another unit with this hash code before the first call of
        // NonSI::Psi().
        return convertsAs(unit, row) ? std::optional<CMeaning>(std::move(row)) : std::nullopt;
    }

    void set(const CUnitPtr& unit, const CMeaning& row) {
        m_OfPacks.insert_or_assign(unit.get(), row);
    }

private:
    void add(const CDefinition& definition) {
        const double slope = CCatalogue::builtIn().meaning(definition.Name)->factor().toDouble();
        const auto hash = static_cast<unsigned>(systemUnitOf(definition.Text)->hashCode()) +
                          static_cast<unsigned>(floatToIntBits(static_cast<float>(slope)));
        m_Names.emplace(static_cast<int>(hash), definition.Name);
    }

    std::unordered_map<int, std::string_view> m_Names;  // by the hash codes of their units
    std::unordered_map<const CUnit*, CMeaning> m_OfPacks;
};

std::optional<CMeaning> rowOfSymbol(CUnit& unit) {
    const string_t symbol = unit.getSymbol();
    std::optional<CMeaning> meaning =
        meaningOfSymbol(std::string_view(symbol.data(), symbol.size()));
    if (meaning && CUnit::searchSymbol(symbol).get() != &unit) {
        meaning.reset();
    }
    return meaning;
}

}  // namespace

std::optional<CMeaning> rowOf(CUnit& unit) {
    return dynamic_cast<CTransformedUnit*>(&unit) != nullptr ? CRows::instance().find(unit)
                                                             : rowOfSymbol(unit);
}

void setRow(const CUnitPtr& unit, const CMeaning& row) { CRows::instance().set(unit, row); }

std::string_view unitUnder(std::string_view definition) {
    const std::string_view text = definition.substr(0, definition.find(','));
    const bool hasNumber = (text[0] >= '0' && text[0] <= '9') || text.substr(0, 2) == "π";
    const std::size_t space = text.find(' ');
    return !hasNumber ? text : space == std::string_view::npos ? "" : text.substr(space + 1);
}

}  // namespace mensor::checked
