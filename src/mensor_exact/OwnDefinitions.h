// OwnDefinitions.h: the definitions that a program has added to a catalogue. Not installed.
#ifndef MENSOR_EXACT_OWNDEFINITIONS_H
#define MENSOR_EXACT_OWNDEFINITIONS_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "mensor_exact/Definitions.h"
#include "mensor_exact/Table.h"

namespace mensor::exact {

/// The definitions of a program.
struct COwnDefinitions {
    struct CEntry {
        std::string Text;
        std::string English;
        std::string Source;
        CMeaning Meaning;
    };

    using CNamed = std::pair<const std::string, CEntry>;

    static CDefinition definition(const CNamed& named) {
        const CEntry& entry = named.second;
        return {named.first, entry.Text, entry.English, entry.Source, ePack::OWN};
    }

    /// Adds an entry. With `takesAway`, definitions that use the name so far are written again in base
    /// units, so they keep their meaning.
    void add(std::string_view name, CEntry entry, bool takesAway);

    std::map<std::string, CEntry, std::less<>> Entries;
    bool TakesAway = false;  ///< whether a built-in unit may have one of the names, too
};

/// Where a catalogue has a name: in a row of the table, in an entry of the program, or nowhere.
struct CNamePlace {
    std::size_t Row = CTable::None;
    const COwnDefinitions::CNamed* Own = nullptr;
};

/// Builds a catalogue name by name.
class CCatalogueBuilder {
public:
    explicit CCatalogueBuilder(const CCatalogue& catalogue);

    /// Returns the definitions that a program has added to a catalogue, or null if there are none.
    static const COwnDefinitions* own(const CCatalogue& catalogue) { return catalogue.m_Own.get(); }

    /// Returns where a catalogue has a name, spelled exactly so.
    static CNamePlace place(const CCatalogue& catalogue, std::string_view name) noexcept {
        return catalogue.place(name);
    }

    /// Returns the catalogue so far. add() changes it.
    const CCatalogue& catalogue() const { return m_Catalogue; }

    /// Adds a definition. With `takesAway` the name may have another meaning in the catalogue so far.
    void add(std::string_view name, COwnDefinitions::CEntry entry, bool takesAway) {
        m_Own->add(name, std::move(entry), takesAway);
    }

private:
    std::shared_ptr<COwnDefinitions> m_Own;
    CCatalogue m_Catalogue;
};

/// Returns whether the definition `text` uses `name`.
bool uses(std::string_view text, std::string_view name);

/// Returns a definition of this meaning in base units: "1000 m", "π/180 rad", "K, offset 273.15".
std::string definitionOf(const CMeaning& meaning);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_OWNDEFINITIONS_H
