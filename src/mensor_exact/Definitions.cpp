#include "mensor_exact/Definitions.h"

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "mensor_exact/Characters.h"
#include "mensor_exact/DefinitionReader.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/OwnDefinitions.h"
#include "mensor_exact/Table.h"
#include "mensor_exact/concatenate.h"
#include "mensor_exact/utf8.h"

namespace mensor::exact {

namespace {

constexpr std::uint32_t bitOf(ePack pack) {
    return std::uint32_t{1} << static_cast<unsigned>(pack);
}

struct CPackRow {
    ePack Pack;
    const char* Name;
    const char* Description;
};

constexpr CPackRow Packs[] = {
    {ePack::SI, "si",
     "spellings of the SI that the library lacks: hPa, mK, klm, mL, Greek letters"},
    {ePack::CUSTOMARY, "customary", "US customary, imperial and older technical units"},
    {ePack::US, "us", "customary; gal, qt, pt, fl_oz and ton as in the United States"},
    {ePack::IMPERIAL, "imperial", "customary; gal, qt, pt, fl_oz and ton as in the United Kingdom"},
    {ePack::SCIENCE, "science", "energy, physics, astronomy, chemistry"},
    {ePack::OFFSETS, "offsets", "the degree Fahrenheit and gauge pressures"},
    {ePack::COUNTING, "counting", "parts, revolutions, counts, binary multiples of the byte"},
    {ePack::EVERYDAY, "everyday",
     "what people write for units that have other names: degC, kOhm, barg, Nm, litres"},
};

[[noreturn]] void throwSyntax(std::string_view text) {
    throw CError(eError::SYNTAX, concatenate({quoted(text), " is not a definition"}));
}

[[noreturn]] void throwFault(eTerm fault, std::string_view text) {
    switch (fault) {
        case eTerm::RANGE:
            throw CError(eError::EXPONENT_RANGE,
                         concatenate({"an exponent beyond 99 in ", quoted(text)}));
        case eTerm::ZERO_ROOT:
            throw CError(eError::DIVISION_BY_ZERO,
                         concatenate({"an exponent with the denominator zero in ", quoted(text)}));
        default: throwSyntax(text);
    }
}

[[noreturn]] void throwTaken(std::string_view name) {
    throw CError(eError::NAME_TAKEN, concatenate({"the catalogue has ", quoted(name), " already"}));
}

CFraction offsetOf(std::string_view text) {
    const std::size_t slash = text.find('/');
    const CFraction offset = CFraction::ofText(text.substr(0, slash));
    return slash == std::string_view::npos ? offset
                                           : offset / CFraction::ofText(text.substr(slash + 1));
}

// Returns whether definitions can use `text` as a name: one visible word without an exponent.
bool isName(std::string_view text) {
    CDefinitionReader reader(text);
    const CTerm term = reader.next();
    if (term.Kind != eTerm::NAME || term.Text != text || reader.next().Kind != eTerm::END) {
        return false;
    }
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size(); at += length) {
        if (isInvisible(decode(text.substr(at), length))) {
            return false;
        }
    }
    return true;
}

// Multiplies the factors of a definition.
class CProduct {
public:
    void multiplyBy(const CTerm& term) {
        const CFactor factor = term.Kind == eTerm::PI ? CFactor::pi() : number(term.Text);
        m_Meaning = m_Meaning.scaled(factor.power(CExponent(term.Numerator, term.Denominator)));
        m_HasNumber = m_HasNumber || !factor.isOne();
        requireNoOffset();
    }

    void multiplyBy(const CMeaning& unit, const CTerm& term) {
        const CExponent exponent(term.Numerator, term.Denominator);
        if (m_Units == 0 && !m_HasNumber) {
            m_Meaning = unit.power(exponent);  // an offset unit alone is allowed
        } else {
            m_Meaning = m_Meaning * unit.power(exponent);
        }
        ++m_Units;
    }

    CMeaning shiftedBy(const CFraction& offset) const { return m_Meaning.shifted(offset); }
    const CMeaning& meaning() const { return m_Meaning; }

private:
    static CFactor number(std::string_view text) {
        const CFraction value = CFraction::ofText(text);
        return CFactor(value);
    }

    void requireNoOffset() const {
        if (m_HasNumber && !m_Meaning.offset().isZero()) {
            throw CError(
                eError::OFFSET_IN_PRODUCT,
                concatenate({"a unit with an offset, ", m_Meaning.toString(), ", in a product"}));
        }
    }

    CMeaning m_Meaning;
    bool m_HasNumber = false;  // other than one
    int m_Units = 0;
};

template <class Resolve>
CMeaning evaluateBy(std::string_view text, const Resolve& resolve) {
    CProduct product;
    CDefinitionReader reader(text);
    while (true) {
        const CTerm term = reader.next();
        switch (term.Kind) {
            case eTerm::NUMBER:
                if (term.Numerator < 0 && CFraction::ofText(term.Text).isZero()) {
                    throw CError(eError::DIVISION_BY_ZERO,
                                 concatenate({"a division by zero in ", quoted(text)}));
                }
                product.multiplyBy(term);
                break;
            case eTerm::PI: product.multiplyBy(term); break;
            case eTerm::NAME: product.multiplyBy(resolve(term.Text), term); break;
            case eTerm::OFFSET: return product.shiftedBy(offsetOf(term.Text));
            case eTerm::END: return product.meaning();
            default: throwFault(term.Kind, text);
        }
    }
}

// Adds definitions to a catalogue, each after the ones that it uses.
class CAdder {
public:
    explicit CAdder(const CCatalogue& catalogue) : m_Catalogue(catalogue), m_Result(catalogue) {}

    CCatalogue add(const std::vector<CDefinition>& definitions) {
        for (const CDefinition& definition : definitions) {
            if (!isName(definition.Name)) {
                throw CError(eError::SYNTAX,
                             concatenate({quoted(definition.Name), " cannot be a name"}));
            }
            const std::optional<CDefinition> there = m_Catalogue.find(definition.Name);
            const bool isFree =
                !there || there->Pack == ePack::EVERYDAY ||
                (definition.TakesAway && there->Pack != ePack::OWN && !there->Text.empty());
            if (!isFree ||
                !m_Rows
                     .emplace(definition.Name, CRow{definition, {}, eState::NEW, there.has_value()})
                     .second) {
                throwTaken(definition.Name);
            }
        }
        for (auto& [name, row] : m_Rows) {
            resolve(row);
        }
        for (auto& [name, row] : m_Rows) {
            const CDefinition& own = row.Definition;
            m_Result.add(name, {own.Text, own.English, own.Source, std::move(row.Meaning)},
                         row.TakesAway);
        }
        return m_Result.catalogue();
    }

private:
    enum class eState { NEW, WAITING, DONE };

    struct CRow {
        CDefinition Definition;
        CMeaning Meaning;
        eState State;
        bool TakesAway;  // a built-in unit has the name, too
    };

    CRow* find(std::string_view name) {
        const auto place = m_Rows.find(name);
        return place != m_Rows.end() ? &place->second : nullptr;
    }

    // Computes the rows that `first` needs, then `first`. Not recursive, since a chain of definitions
    // may be long.
    void resolve(CRow& first) {
        std::vector<CRow*> waiting{&first};
        while (!waiting.empty()) {
            CRow& row = *waiting.back();
            if (row.State == eState::DONE) {
                waiting.pop_back();
                continue;
            }
            const bool isSecondVisit = row.State == eState::WAITING;
            row.State = eState::WAITING;
            if (!isSecondVisit && pushNeeded(row, waiting)) {
                continue;
            }
            row.Meaning = meaningOf(row.Definition);
            row.State = eState::DONE;
            waiting.pop_back();
        }
    }

    // Adds the rows that `row` needs and that are not computed yet. Returns whether there are any.
    bool pushNeeded(const CRow& row, std::vector<CRow*>& waiting) {
        const std::size_t before = waiting.size();
        CDefinitionReader reader(row.Definition.Text);
        for (CTerm term = reader.next(); term.isFactor(); term = reader.next()) {
            CRow* const needed = term.Kind == eTerm::NAME ? find(term.Text) : nullptr;
            if (needed == nullptr || needed->State == eState::DONE) {
                continue;
            }
            if (needed->State == eState::WAITING) {
                throw CError(eError::CYCLE,
                             concatenate({"the definition of ", quoted(needed->Definition.Name),
                                          " leads back to itself"}));
            }
            waiting.push_back(needed);
        }
        return waiting.size() > before;
    }

    CMeaning meaningOf(const CDefinition& definition) {
        if (definition.Text.empty()) {
            return CMeaning::base(definition.Name);
        }
        return evaluateBy(definition.Text, [this](std::string_view name) {
            if (const CRow* const row = find(name)) {
                return row->Meaning;
            }
            return m_Catalogue.evaluate(name);
        });
    }

    const CCatalogue& m_Catalogue;
    std::map<std::string_view, CRow> m_Rows;
    CCatalogueBuilder m_Result;
};

}  // namespace

const char* nameOf(ePack pack) noexcept {
    for (const CPackRow& row : Packs) {
        if (row.Pack == pack) {
            return row.Name;
        }
    }
    return pack == ePack::CATALOGUE ? "catalogue" : "own";
}

const char* descriptionOf(ePack pack) noexcept {
    for (const CPackRow& row : Packs) {
        if (row.Pack == pack) {
            return row.Description;
        }
    }
    return pack == ePack::CATALOGUE ? "what the library knows after it is loaded, and psi"
                                    : "definitions of the program";
}

std::vector<ePack> allPacks() {
    std::vector<ePack> packs;
    for (const CPackRow& row : Packs) {
        packs.push_back(row.Pack);
    }
    return packs;
}

std::optional<ePack> packNamed(std::string_view name) noexcept {
    for (const CPackRow& row : Packs) {
        if (row.Name == name) {
            return row.Pack;
        }
    }
    return std::nullopt;
}

bool CCatalogue::has(ePack pack) const noexcept { return (m_Packs & bitOf(pack)) != 0; }

CCatalogue CCatalogue::with(ePack pack) const {
    if (pack == ePack::OWN) {
        throw CError(eError::OPTIONS, "the definitions of a program are not a pack");
    }
    CCatalogue result = *this;
    if (has(pack)) {
        return result;
    }
    for (std::size_t row = 0; row < CTable::size(); ++row) {
        if (CTable::pack(row) != pack || pack == ePack::EVERYDAY) {
            continue;
        }
        const std::string_view name = CTable::name(row);
        if (packOf(name).value_or(ePack::EVERYDAY) != ePack::EVERYDAY) {
            throwTaken(name);
        }
    }
    result.m_Packs |= bitOf(pack);
    return result;
}

CCatalogue CCatalogue::with(const std::vector<CDefinition>& definitions) const {
    return CAdder(*this).add(definitions);
}

[[gnu::hot]] CNamePlace CCatalogue::place(std::string_view name) const noexcept {
    const std::size_t row = CTable::find(name, m_Packs);
    if (m_Own == nullptr || (row != CTable::None && !takesAway(name))) {
        return {row, nullptr};
    }
    const auto own = m_Own->Entries.find(name);
    return {CTable::None, own != m_Own->Entries.end() ? &*own : nullptr};
}

std::optional<CDefinition> CCatalogue::find(std::string_view name) const {
    const CNamePlace found = place(name);
    if (found.Own != nullptr) {
        return COwnDefinitions::definition(*found.Own);
    }
    return found.Row != CTable::None ? std::optional(CTable::definition(found.Row)) : std::nullopt;
}

std::optional<ePack> CCatalogue::packOf(std::string_view name) const noexcept {
    const CNamePlace found = place(name);
    if (found.Own != nullptr) {
        return ePack::OWN;
    }
    return found.Row != CTable::None ? std::optional(CTable::pack(found.Row)) : std::nullopt;
}

std::optional<CMeaning> CCatalogue::meaning(std::string_view name) const {
    const CNamePlace found = place(name);
    if (found.Own != nullptr) {
        return found.Own->second.Meaning;
    }
    return found.Row != CTable::None ? std::optional(CTable::meaning(found.Row)) : std::nullopt;
}

// Returns whether the program has defined this name although a built-in unit may have it, too.
bool CCatalogue::takesAway(std::string_view name) const noexcept {
    return m_Own != nullptr && (m_Own->TakesAway || has(ePack::EVERYDAY)) &&
           m_Own->Entries.find(name) != m_Own->Entries.end();
}

CMeaning CCatalogue::evaluate(std::string_view definition) const {
    return evaluateBy(definition, [this](std::string_view name) {
        std::optional<CMeaning> result = meaning(name);
        if (!result) {
            throw CError(eError::UNKNOWN_NAME,
                         concatenate({"no unit has the name ", quoted(name)}));
        }
        return *std::move(result);
    });
}

std::vector<CDefinition> CCatalogue::definitions() const {
    std::vector<CDefinition> result;
    forEachName([&](std::string_view name, ePack) {
        result.push_back(*find(name));
        return true;
    });
    return result;
}

void CCatalogue::forEachName(const std::function<bool(std::string_view, ePack)>& visit) const {
    for (std::size_t row = 0; row < CTable::size(); ++row) {
        const std::string_view name = CTable::name(row);
        const ePack pack = CTable::pack(row);
        if (!has(pack) || takesAway(name)) {
            continue;
        }
        if (pack == ePack::EVERYDAY && CTable::find(name, m_Packs) != row) {
            continue;  // another pack has this name, too
        }
        if (!visit(name, pack)) {
            return;
        }
    }
    if (m_Own == nullptr) {
        return;
    }
    for (const auto& own : m_Own->Entries) {
        if (!visit(own.first, ePack::OWN)) {
            return;
        }
    }
}

}  // namespace mensor::exact
