// ConstantTable.h: the meanings of the rows of definitions.def, computed by the compiler. For mensor's
// own libraries; not installed.
//
//     constexpr std::size_t row = table::findRow("in", ~std::uint32_t{0});
//     table::Meanings.Row[row].Factor;  // 0.0254
//
// Table.cpp packs it into the table of the exact library. Constant tables of other libraries look up the
// names in their definitions here.
#ifndef MENSOR_EXACT_CONSTANTTABLE_H
#define MENSOR_EXACT_CONSTANTTABLE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mensor_exact/DefinitionReader.h"
#include "mensor_exact/Definitions.h"
#include "mensor_exact/NameIndex.h"
#include "mensor_exact/SmallFraction.h"
#include "mensor_exact/slots.h"

namespace mensor::exact::table {

// All texts except the sources, in one array. Pointers to separate texts would have to be relocated at
// load.
inline constexpr char Texts[] =
#define MENSOR_BASE(set, name, english, source) name english
#define MENSOR_MARK(set, name, english, source) name english
#define MENSOR_UNIT(set, name, definition, english, source) name definition english
#include "mensor_exact/definitions.def"
#define MENSOR_SPELLING(text, definition, english, why) text definition english
#include "mensor_exact/spellings.def"
    ;

struct CLengths {
    ePack Pack;
    std::uint8_t Name;
    std::uint8_t Definition;
    std::uint8_t English;
};

// A text of more than 255 bytes does not compile, since braces do not allow narrowing.
// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are literals, and the array's initialiser a list.
inline constexpr CLengths Lengths[] = {
#define MENSOR_BASE(set, name, english, source) \
    {ePack::set, sizeof name - 1, 0, sizeof english - 1},
#define MENSOR_MARK(set, name, english, source) \
    {ePack::set, sizeof name - 1, 0, sizeof english - 1},
#define MENSOR_UNIT(set, name, definition, english, source) \
    {ePack::set, sizeof name - 1, sizeof definition - 1, sizeof english - 1},
#include "mensor_exact/definitions.def"
#define MENSOR_SPELLING(text, definition, english, why) \
    {ePack::EVERYDAY, sizeof text - 1, sizeof definition - 1, sizeof english - 1},
#include "mensor_exact/spellings.def"
};
// NOLINTEND(bugprone-macro-parentheses)

inline constexpr std::size_t Rows = sizeof Lengths / sizeof Lengths[0];

template <class T, std::size_t N>
struct CArray {  // std::array cannot be changed in a constant expression of C++17 through data()
    T Elements[N] = {};
    constexpr T& operator[](std::size_t i) { return Elements[i]; }
    constexpr const T& operator[](std::size_t i) const { return Elements[i]; }
};

static_assert(sizeof Texts <= 65536, "the starts of the texts have 16 bits");

constexpr CArray<std::uint16_t, Rows> makeStarts() {
    CArray<std::uint16_t, Rows> starts;
    std::size_t start = 0;
    for (std::size_t row = 0; row < Rows; ++row) {
        const CLengths& lengths = Lengths[row];
        starts[row] = static_cast<std::uint16_t>(start);
        start += std::size_t{lengths.Name} + lengths.Definition + lengths.English;
    }
    return starts;
}

inline constexpr CArray<std::uint16_t, Rows> Starts = makeStarts();

constexpr std::string_view nameOf(std::size_t row) {
    return {Texts + Starts[row], Lengths[row].Name};
}

constexpr std::string_view definitionOf(std::size_t row) {
    return {Texts + Starts[row] + Lengths[row].Name, Lengths[row].Definition};
}

constexpr std::string_view englishOf(std::size_t row) {
    return {Texts + Starts[row] + Lengths[row].Name + Lengths[row].Definition,
            Lengths[row].English};
}

constexpr std::uint32_t bitOf(ePack pack) {
    return std::uint32_t{1} << static_cast<unsigned>(pack);
}

inline constexpr std::size_t None = static_cast<std::size_t>(-1);

inline constexpr CNameIndex<Rows> Index(nameOf);

constexpr std::size_t findRow(std::string_view name, std::uint32_t packs) {
    return Index.find(name, [name, packs](std::size_t row) {
        return (packs & bitOf(Lengths[row].Pack)) != 0 && isEqual(nameOf(row), name);
    });
}

// The meanings of the rows.

inline constexpr std::size_t MostOffsets = 32;

struct CRow {
    CSmallFraction Factor;  // without the power of π
    std::int8_t Exponents[SlotCount];
    std::int8_t Pi;
    std::uint8_t Offset;  // the index in Offsets; 0: no offset
    std::uint16_t Own;    // the row of a dimension that is not of the SI, plus 1; 0: none
    bool IsDone;
};

struct CMeanings {
    CArray<CRow, Rows> Row;
    CArray<CSmallFraction, MostOffsets> Offsets;  // the first is zero
    std::size_t OffsetCount = 1;
    bool IsGood = true;
};

constexpr bool readOffset(std::string_view text, CSmallFraction& offset) {
    std::size_t slash = 0;
    while (slash < text.size() && text[slash] != '/') {
        ++slash;
    }
    CSmallFraction denominator(1);
    if (!readSmall(text.substr(0, slash), offset)) {
        return false;
    }
    if (slash < text.size() &&
        (!readSmall(text.substr(slash + 1), denominator) || denominator.isZero())) {
        return false;
    }
    return offset.multiply(denominator.inverse());
}

constexpr bool evaluateRow(CMeanings& all, std::size_t row, std::size_t depth);

// Adds number·times to an exponent. Returns false if the result is out of range.
constexpr bool addTo(std::int8_t& exponent, int number, int times) {
    const int sum = exponent + number * times;
    exponent = static_cast<std::int8_t>(sum);
    return sum >= -CExponent::Largest && sum <= CExponent::Largest;
}

// Multiplies `product` by one factor of its definition. Returns false if the result does not fit.
constexpr bool multiplyBy(CMeanings& all, CRow& product, const CTerm& term, std::uint32_t packs,
                          std::size_t depth) {
    if (term.Denominator != 1) {
        return false;  // a root, which no row has
    }
    if (term.Kind == eTerm::PI) {
        return addTo(product.Pi, 1, term.Numerator);
    }
    CSmallFraction factor;
    const int size = term.Numerator < 0 ? -term.Numerator : term.Numerator;
    if (term.Kind == eTerm::NUMBER) {
        if (!readSmall(term.Text, factor) || factor.isZero() || factor.Negative) {
            return false;
        }
    } else {
        const std::size_t other = findRow(term.Text, packs);
        if (other == None || !evaluateRow(all, other, depth + 1)) {
            return false;
        }
        const CRow& unit = all.Row[other];
        if (unit.Offset != 0 || unit.Own != 0) {
            return false;
        }
        factor = unit.Factor;
        if (!addTo(product.Pi, unit.Pi, term.Numerator)) {
            return false;
        }
        for (std::size_t slot = 0; slot < SlotCount; ++slot) {
            if (!addTo(product.Exponents[slot], unit.Exponents[slot], term.Numerator)) {
                return false;
            }
        }
    }
    return factor.raise(size) &&
           product.Factor.multiply(term.Numerator < 0 ? factor.inverse() : factor);
}

// Computes one row and the rows that it needs. Returns false if the definition is wrong or the meaning
// does not fit.
constexpr bool evaluateRow(CMeanings& all, std::size_t row, std::size_t depth) {
    constexpr std::size_t Deepest = 30;  // a chain of definitions that is longer must be a cycle
    if (all.Row[row].IsDone) {
        return true;
    }
    if (depth > Deepest) {
        return false;
    }
    CRow result{};
    result.Factor = CSmallFraction(1);
    result.IsDone = true;
    if (Lengths[row].Definition == 0) {
        const std::size_t slot = slotOf(nameOf(row));
        if (slot != SlotCount) {
            result.Exponents[slot] = 1;
        } else if (Lengths[row].Pack == ePack::EVERYDAY) {
            result.Own = static_cast<std::uint16_t>(row + 1);
        } else {
            return false;
        }
        all.Row[row] = result;
        return true;
    }
    // The name may be in two packs. Definitions use such a name only within their own pack.
    const std::uint32_t packs =
        ~(bitOf(ePack::US) | bitOf(ePack::IMPERIAL)) | bitOf(Lengths[row].Pack);
    const std::size_t same = findRow(definitionOf(row), packs);
    if (same != None) {  // another name of a unit, which may be an offset unit
        if (!evaluateRow(all, same, depth + 1)) {
            return false;
        }
        all.Row[row] = all.Row[same];
        return true;
    }
    CDefinitionReader reader(definitionOf(row));
    for (CTerm term = reader.next(); term.Kind != eTerm::END; term = reader.next()) {
        if (term.Kind == eTerm::OFFSET) {
            CSmallFraction offset;
            if (!readOffset(term.Text, offset) || result.Pi != 0 ||
                !offset.multiply(result.Factor) || all.OffsetCount == MostOffsets) {
                return false;
            }
            result.Offset = static_cast<std::uint8_t>(all.OffsetCount);
            all.Offsets[all.OffsetCount++] = offset;
            break;
        }
        const bool isFactor =
            term.Kind == eTerm::NUMBER || term.Kind == eTerm::PI || term.Kind == eTerm::NAME;
        if (!isFactor || !multiplyBy(all, result, term, packs, depth)) {
            return false;
        }
    }
    all.Row[row] = result;
    return true;
}

// Computes the rows of one part of the table.
constexpr CMeanings makePart(const CMeanings& before, std::size_t part, std::size_t parts) {
    CMeanings all = before;
    for (std::size_t row = Rows * part / parts; row < Rows * (part + 1) / parts; ++row) {
        all.IsGood = all.IsGood && evaluateRow(all, row, 0);
    }
    return all;
}

constexpr CMeanings makeNothing() {
    CMeanings all{};
    all.Offsets[0] = CSmallFraction(0);
    return all;
}

// Computed in parts, since clang limits one constant to a million steps. All rows together need two
// million.
inline constexpr CMeanings FirstPart = makePart(makeNothing(), 0, 5);
inline constexpr CMeanings SecondPart = makePart(FirstPart, 1, 5);
inline constexpr CMeanings ThirdPart = makePart(SecondPart, 2, 5);
inline constexpr CMeanings FourthPart = makePart(ThirdPart, 3, 5);
inline constexpr CMeanings Meanings = makePart(FourthPart, 4, 5);

static_assert(Meanings.IsGood,
              "a row of definitions.def is malformed, leads back to itself, or needs a root, more "
              "than 64 bits or a unit with an offset");

}  // namespace mensor::exact::table

#endif  // MENSOR_EXACT_CONSTANTTABLE_H
