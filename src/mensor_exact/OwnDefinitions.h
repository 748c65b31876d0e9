// OwnDefinitions.h: what a program has added to a catalogue. For the library's own use; not installed.
#ifndef MENSOR_EXACT_OWNDEFINITIONS_H
#define MENSOR_EXACT_OWNDEFINITIONS_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "mensor_exact/Definitions.h"

namespace mensor::exact {

/// A program's definitions.
struct COwnDefinitions {
    struct CEntry {
        std::string Text;
        std::string English;
        std::string Source;
        CMeaning Meaning;
    };

    static CDefinition definition(const std::pair<const std::string, CEntry>& named) {
        const CEntry& entry = named.second;
        return {named.first, entry.Text, entry.English, entry.Source, ePack::OWN};
    }

    /// Adds an entry. Definitions that use a name which it takes away are written in base units from
    /// then on: they keep their meaning.
    void add(std::string_view name, CEntry entry, bool takesAway);

    std::map<std::string, CEntry, std::less<>> Entries;
    bool TakesAway = false;  ///< whether a name may be one of the built-in ones, too
};

/// A catalogue that grows name by name.
class CCatalogueBuilder {
public:
    explicit CCatalogueBuilder(const CCatalogue& catalogue);

    /// What a program has added to a catalogue, null if nothing.
    static const COwnDefinitions* own(const CCatalogue& catalogue) { return catalogue.m_Own.get(); }

    /// What is there so far. It changes with every name that is added.
    const CCatalogue& catalogue() const { return m_Catalogue; }

    /// @param takesAway  whether the catalogue has this name, which then means something else.
    void add(std::string_view name, COwnDefinitions::CEntry entry, bool takesAway) {
        m_Own->add(name, std::move(entry), takesAway);
    }

private:
    std::shared_ptr<COwnDefinitions> m_Own;
    CCatalogue m_Catalogue;
};

/// Whether the definition `text` uses `name`.
bool uses(std::string_view text, std::string_view name);

/// A definition of this meaning by base units alone: "1000 m", "π/180 rad", "K, offset 273.15".
std::string definitionOf(const CMeaning& meaning);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_OWNDEFINITIONS_H
