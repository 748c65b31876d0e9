// Definitions.h: catalogues of units, each with its definition and the source of the definition.
//
//     const CCatalogue catalogue = CCatalogue::builtIn().with(ePack::CUSTOMARY);
//     catalogue.find("in")->Text;                        // "25.4 mm"
//     catalogue.meaning("in")->toString();               // "0.0254 m"
//     catalogue.evaluate("lbf/in²").kind();              // "pressure"
//     catalogue.with({{"smoot", "67 in"}}).meaning("smoot")->toString();  // "1.7018 m"
//
// A definition is a product of numbers and units, with an optional offset:
//
//     definition = product [ ", offset " number ]
//     product    = factor { ( " " | "·" | "/" ) ( factor | group ) }     a group only after "/"
//     group      = "(" factor { ( " " | "·" | "/" ) factor } ")"
//     factor     = ( number | "π" | name ) [ exponent ]                 "2π" needs no sign between
//     exponent   = raised digits | "^" [ "-" ] digits | "^(" [ "-" ] digits [ "/" digits ] ")"
//     number     = a decimal, as CFraction::ofText reads it; after "offset" also a quotient of two
//
// A slash divides by the next factor or group only: "5/9 K" is 5/9 of a kelvin, and "J/kg/K" is
// "J/(kg·K)". "5/9 K, offset 459.67" means that the value x in this unit is (x + 459.67)·5/9 in
// kelvins.
#ifndef MENSOR_EXACT_DEFINITIONS_H
#define MENSOR_EXACT_DEFINITIONS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mensor_exact/Meaning.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

struct COwnDefinitions;  // OwnDefinitions.h, not installed

/// The set of units to which a definition belongs.
enum class ePack : std::uint8_t {
    CATALOGUE,  ///< the units that libmensor knows after it is loaded, and psi; in every catalogue
    SI,         ///< spellings of the SI that libmensor lacks; in every catalogue
    CUSTOMARY,  ///< US customary and imperial units; the names have a country where the units differ
    US,         ///< "gal", "ton" and their like, with the meanings of the United States
    IMPERIAL,   ///< the same names, with the meanings of the United Kingdom
    SCIENCE,    ///< units of energy and science
    OFFSETS,    ///< offset units: °F and gauge pressures
    COUNTING,   ///< parts, bytes and rates
    EVERYDAY,   ///< everyday spellings of other units: degC, kOhm, barg, Nm, litres
    OWN,        ///< definitions of the program, added by CCatalogue::with
};

/// Returns the name of a pack for people and command lines: "customary".
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API const char* nameOf(ePack pack) noexcept;

/// Returns a few words about the units of a pack.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API const char* descriptionOf(ePack pack) noexcept;

/// Returns the packs that CCatalogue::with accepts, in the order of the enumerators.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::vector<ePack> allPacks();

/// Returns the one of allPacks() with this name, or nothing.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::optional<ePack> packNamed(std::string_view name) noexcept;

/// One name and its definition, in UTF-8. A name from a catalogue is valid while the library is loaded, a name of
/// the pack OWN as long as a catalogue has it. The other texts are copies.
struct CDefinition {
    std::string_view Name;
    std::string Text{};     ///< the definition; empty for a base unit or a mark
    std::string English{};  ///< the name of the unit in English
    std::string Source{};   ///< the document that has the definition
    ePack Pack = ePack::OWN;
    /// For CCatalogue::with: allows a name that a built-in unit has. The built-in unit then loses
    /// the name.
    bool TakesAway = false;
};

struct CNamePlace;  // OwnDefinitions.h, not installed

/// Names and their meanings. A catalogue is immutable: `with` returns a changed copy. Copies are cheap.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread. Any number of
/// threads may share an object that does not change.
class MENSOR_EXACT_API CCatalogue {
public:
    static CCatalogue builtIn() noexcept { return {}; }  ///< CATALOGUE and SI

    /// Returns this catalogue and the names of a pack. A name that several packs have is listed once.
    /// @throws CError  NAME_TAKEN: the program has defined a name of the pack, or the catalogue has US and
    ///                 gets IMPERIAL, or the reverse; OPTIONS: the pack is OWN.
    CCatalogue with(ePack pack) const;

    /// Returns whether the catalogue has the pack. Always true for CATALOGUE and SI, and false for
    /// OWN.
    bool has(ePack pack) const noexcept;

    /// Returns this catalogue and further definitions, which may use each other in any order. An empty
    /// text defines a base unit with a dimension of its own. Texts are copied, and the pack is set to
    /// OWN. A name of the program replaces the same name of the pack EVERYDAY.
    ///
    /// With TakesAway, the name may be that of a built-in unit, but not of a base unit or a mark. Units
    /// that are defined by that built-in unit keep their meanings.
    /// @throws CError  SYNTAX, BAD_NUMBER, UNKNOWN_NAME, NAME_TAKEN, CYCLE, and what evaluate() throws.
    CCatalogue with(const std::vector<CDefinition>& definitions) const;

    /// Returns a copy of the definition of the name, spelled exactly so, or nothing.
    std::optional<CDefinition> find(std::string_view name) const;

    /// Returns the pack of the name, or nothing. Copies no text, so it is much faster than find().
    std::optional<ePack> packOf(std::string_view name) const noexcept;

    /// Returns the meaning of the name, or nothing.
    std::optional<CMeaning> meaning(std::string_view name) const;

    /// Returns the meaning of a definition. The grammar is at the top of this file.
    /// @throws CError  SYNTAX, BAD_NUMBER, UNKNOWN_NAME, DIVISION_BY_ZERO, NOT_POSITIVE,
    ///                 OFFSET_IN_PRODUCT, OFFSET_NOT_RATIONAL, EXPONENT_RANGE, TOO_LARGE.
    CMeaning evaluate(std::string_view definition) const;

    /// Returns all definitions: the built-in ones in the order of the table, then the program's, sorted.
    std::vector<CDefinition> definitions() const;

    /// Calls `visit` for each name, in the order of definitions(), until it returns false.
    void forEachName(const std::function<bool(std::string_view name, ePack pack)>& visit) const;

private:
    friend class CCatalogueBuilder;

    CCatalogue() noexcept = default;

    bool takesAway(std::string_view name) const noexcept;
    CNamePlace place(std::string_view name) const noexcept;

    std::uint32_t m_Packs = 3;  // one bit for each pack: CATALOGUE and SI
    std::shared_ptr<const COwnDefinitions> m_Own;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DEFINITIONS_H
