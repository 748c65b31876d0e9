// Evaluation.h: lets the compiler evaluate the definitions of codes. For the library's own use; not
// installed.
//
//     constexpr exact::CSmallMeaning meaning = evaluated("kg/(m·s)");
#ifndef MENSOR_CODES_EVALUATION_H
#define MENSOR_CODES_EVALUATION_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "mensor_exact/ConstantTable.h"
#include "mensor_exact/NameIndex.h"
#include "mensor_exact/SmallMeaning.h"

namespace mensor::codes {

/// Finds a unit of mensor_exact/definitions.def. Returns false if there is none with this name. The packs US
/// and IMPERIAL are left out, because they use the same names for different units.
constexpr bool exactUnit(std::string_view name, exact::CSmallMeaning& result) {
    namespace table = exact::table;
    const std::size_t found = table::findRow(
        name, ~(table::bitOf(exact::ePack::US) | table::bitOf(exact::ePack::IMPERIAL)));
    if (found == table::None) {
        return false;
    }
    const table::CRow& row = table::Meanings.Row[found];
    result = exact::CSmallMeaning();
    result.Factor = row.Factor;
    result.Pi = row.Pi;
    result.Offset = table::Meanings.Offsets[row.Offset];
    for (std::size_t slot = 0; slot < exact::SlotCount; ++slot) {
        result.Halves[slot] = static_cast<std::int8_t>(2 * row.Exponents[slot]);
    }
    return true;
}

/// Evaluates a definition. unitOf(name, meaning) finds units and returns false for unknown names. Returns
/// false if the text is malformed or 64 bits are not enough.
template <class UnitOf>
constexpr bool evaluate(std::string_view definition, const UnitOf& unitOf,
                        exact::CSmallMeaning& result) {
    using exact::eTerm;
    result = exact::CSmallMeaning();
    exact::CDefinitionReader reader(definition);
    std::size_t terms = 0;
    for (exact::CTerm term = reader.next(); term.Kind != eTerm::END;
         term = reader.next(), ++terms) {
        if (term.Denominator > 2) {
            return false;
        }
        const int halves = 2 * term.Numerator / term.Denominator;
        exact::CSmallMeaning factor;
        switch (term.Kind) {
            case eTerm::NUMBER:
                if (!exact::readSmall(term.Text, factor.Factor) || factor.Factor.isZero() ||
                    factor.Factor.Negative) {
                    return false;
                }
                break;
            case eTerm::PI: factor.Pi = 1; break;
            case eTerm::NAME:
                if (!unitOf(term.Text, factor)) {
                    return false;
                }
                break;
            case eTerm::OFFSET: {
                exact::CSmallFraction offset;
                if (result.Pi != 0 || !exact::table::readOffset(term.Text, offset) ||
                    !offset.multiply(result.Factor)) {
                    return false;
                }
                result.Offset = offset;
                return true;
            }
            default: return false;
        }
        if (terms == 0 && halves == 2) {
            result = factor;  // a single unit keeps its offset
        } else if (!result.multiply(factor, halves)) {
            return false;
        }
    }
    return true;
}

/// The rows of units.def.
namespace units {

struct CUnit {
    std::string_view Name;
    std::string_view Definition;  // empty for a dimension of its own
};

inline constexpr CUnit Texts[] = {
#define MENSOR_OWN(name, english, source) {name, {}},
#define MENSOR_UNIT(name, definition, english, source) {name, definition},
#include "mensor_codes/units.def"
#undef MENSOR_OWN
#undef MENSOR_UNIT
};

inline constexpr std::size_t Count = sizeof Texts / sizeof Texts[0];

inline constexpr exact::CNameIndex<Count> Index([](std::size_t row) { return Texts[row].Name; });

struct CMeanings {
    exact::CSmallMeaning Row[Count];
    std::size_t Bad = Count;  ///< the first row that cannot be evaluated; Count if there is none
};

constexpr bool find(const CMeanings& all, std::string_view name, exact::CSmallMeaning& result) {
    const std::size_t row = Index.find(name, [name](std::size_t candidate) {
        return exact::isEqual(Texts[candidate].Name, name);
    });
    if (row == Index.None) {
        return exactUnit(name, result);
    }
    result = all.Row[row];
    return !result.Factor.isZero();  // zero if the row has not been computed yet
}

constexpr CMeanings makeMeanings() {
    CMeanings all{};
    for (exact::CSmallMeaning& row : all.Row) {
        row.Factor = exact::CSmallFraction();
    }
    const auto unitOf = [&all](std::string_view name, exact::CSmallMeaning& result) {
        return find(all, name, result);
    };
    for (std::size_t row = 0; row < Count && all.Bad == Count; ++row) {
        exact::CSmallMeaning meaning = exact::CSmallMeaning::own(Texts[row].Name);
        if (!Texts[row].Definition.empty() && !evaluate(Texts[row].Definition, unitOf, meaning)) {
            all.Bad = row;
        }
        all.Row[row] = meaning;
    }
    return all;
}

inline constexpr CMeanings Meanings = makeMeanings();

static_assert(
    Meanings.Bad == Count,
    "a definition in units.def is malformed, uses a name that is not above it, or needs more "
    "than 64 bits");

/// The names of the dimensions in units.def. Constants without pointers need no work when the
/// library is loaded.
struct COwnName {
    char Text[24];
};

inline constexpr COwnName OwnNames[] = {
#define MENSOR_OWN(name, english, source) {name},
#define MENSOR_UNIT(name, definition, english, source)
#include "mensor_codes/units.def"
#undef MENSOR_OWN
#undef MENSOR_UNIT
};

/// Returns the index of a dimension in OwnNames; 0 for an empty name.
constexpr std::uint8_t ownPlace(std::string_view name) {
    std::uint8_t place = 0;
    for (const COwnName& own : OwnNames) {
        if (exact::isEqual(own.Text, name)) {
            return place;
        }
        ++place;
    }
    return 0;
}

}  // namespace units

/// Evaluates a definition of the tables, with the units of units.def and of the exact library.
constexpr bool evaluate(std::string_view definition, exact::CSmallMeaning& result) {
    return evaluate(
        definition,
        [](std::string_view name, exact::CSmallMeaning& unit) {
            return units::find(units::Meanings, name, unit);
        },
        result);
}

}  // namespace mensor::codes

#endif  // MENSOR_CODES_EVALUATION_H
