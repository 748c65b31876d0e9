// Definitions.h: what each name means, with its definition as its source has it.
//
//     const CCatalogue catalogue = CCatalogue::builtIn().with(ePack::CUSTOMARY);
//     catalogue.find("in")->Text;                        // "25.4 mm"
//     catalogue.meaning("in")->toString();               // "0.0254 m"
//     catalogue.evaluate("lbf/in²").kind();              // "pressure"
//     catalogue.with({{"smoot", "67 in"}}).meaning("smoot")->toString();  // "1.7018 m"
//
// A definition is a product of numbers and units, and perhaps an offset:
//
//     definition = product [ ", offset " number ]
//     product    = factor { ( " " | "·" | "/" ) ( factor | group ) }     a group only behind "/"
//     group      = "(" factor { ( " " | "·" | "/" ) factor } ")"
//     factor     = ( number | "π" | name ) [ exponent ]                 "2π" needs nothing between
//     exponent   = raised digits | "^" [ "-" ] digits | "^(" [ "-" ] digits [ "/" digits ] ")"
//     number     = decimal, as CFraction::ofText; behind "offset" also with "/" and a second one
//
// A stroke divides by the factor or group behind it and no more: "5/9 K" is 5/9 of a kelvin, "J/kg/K"
// and "J/(kg·K)" are the same. "5/9 K, offset 459.67" means that x of the unit are (x + 459.67)·5/9 K.
#ifndef MENSOR_EXACT_DEFINITIONS_H
#define MENSOR_EXACT_DEFINITIONS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "mensor_exact/Meaning.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

struct COwnDefinitions;  // inside the library

/// Where a definition comes from.
enum class ePack : std::uint8_t {
    CATALOGUE,  ///< what libmensor knows after it is loaded, and psi; always there
    SI,         ///< spellings of the SI that libmensor lacks; always there
    CUSTOMARY,  ///< US customary and imperial units, whose names say which where they differ
    US,         ///< the names without a country as the United States have them
    IMPERIAL,   ///< the names without a country as the United Kingdom had them
    SCIENCE,    ///< energy and science
    OFFSETS,    ///< scales with a zero of their own
    COUNTING,   ///< parts, bytes and rates
    EVERYDAY,   ///< what people write for units that have other names: degC, kOhm, barg, Nm, litres
    OWN,        ///< of the program, by CCatalogue::with
};

/// The name of a pack for people and command lines: "customary".
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API const char* nameOf(ePack pack) noexcept;

/// What is in a pack, in a few words.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API const char* descriptionOf(ePack pack) noexcept;

/// The packs that CCatalogue::with takes, in the order of their numbers.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::vector<ePack> allPacks();

/// The one of these with this name, none if there is none.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::optional<ePack> packNamed(std::string_view name) noexcept;

/// One name. The texts are UTF-8; they live as long as the library, or with the pack OWN as long as a
/// catalogue that has them.
struct CDefinition {
    std::string_view Name;
    std::string_view Text{};     ///< empty: a base unit, or a mark
    std::string_view English{};  ///< what the unit is called
    std::string_view Source{};   ///< where the definition is from
    ePack Pack = ePack::OWN;
    /// In CCatalogue::with: whether the name is taken away from a built-in unit.
    bool TakesAway = false;
};

/// Names and what they mean. Immutable: packs and definitions are added to copies. A copy costs next to
/// nothing.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread. Any number of
/// threads may share one that nobody changes.
class MENSOR_EXACT_API CCatalogue {
public:
    static CCatalogue builtIn() noexcept { return {}; }  ///< CATALOGUE and SI

    /// This catalogue and the names of a pack. A name that another pack has with the same meaning is
    /// there once.
    /// @throws CError  NAME_TAKEN: of US and IMPERIAL only one can be there; OPTIONS: the pack is OWN.
    CCatalogue with(ePack pack) const;

    /// Whether the pack was added. Always true of CATALOGUE and SI, and false of OWN.
    bool has(ePack pack) const noexcept;

    /// This catalogue and further definitions, which may use each other in any order. An empty text
    /// makes a dimension with the name of the unit. Texts are copied; the pack is always OWN. A
    /// program's own name takes the place of a spelling of the pack EVERYDAY.
    ///
    /// A name that is taken away from a built-in unit no longer finds that unit. What rests on that unit
    /// keeps its meaning. The names of base units and marks cannot be taken away.
    /// @throws CError  SYNTAX, BAD_NUMBER, UNKNOWN_NAME, NAME_TAKEN, CYCLE, and whatever evaluate()
    ///                 throws.
    CCatalogue with(const std::vector<CDefinition>& definitions) const;

    /// What has this name, exactly as it is written.
    std::optional<CDefinition> find(std::string_view name) const noexcept;

    /// What this name means.
    std::optional<CMeaning> meaning(std::string_view name) const;

    /// What a definition means; the grammar is above.
    /// @throws CError  SYNTAX, BAD_NUMBER, UNKNOWN_NAME, DIVISION_BY_ZERO, NOT_POSITIVE,
    ///                 OFFSET_IN_PRODUCT, OFFSET_NOT_RATIONAL, EXPONENT_RANGE, TOO_LARGE.
    CMeaning evaluate(std::string_view definition) const;

    /// All of them: the built-in ones in the order of the table, then one's own, sorted.
    std::vector<CDefinition> definitions() const;

    /// Calls `visit` for each of them, in the same order, until it returns false.
    void forEach(const std::function<bool(const CDefinition&)>& visit) const;

private:
    friend class CCatalogueBuilder;

    CCatalogue() noexcept = default;

    bool takesAway(std::string_view name) const noexcept;
    std::optional<CDefinition> findOwn(std::string_view name) const noexcept;

    std::uint32_t m_Packs = 3;  // a bit for each
    std::shared_ptr<const COwnDefinitions> m_Own;
};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_DEFINITIONS_H
