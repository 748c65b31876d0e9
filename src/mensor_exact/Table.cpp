#include "mensor_exact/Table.h"

#include "mensor_exact/ConstantTable.h"
#include "mensor_exact/NearestNames.h"

namespace mensor::exact {

using namespace table;

namespace {

// In ConstantTable.h each row has a meaning of 48 bytes and the text of its source. Most rows have
// parts in common: a prefix changes only powers of 2 and 5. So this file stores each distinct part
// once.

// A column with few distinct values: for each row the index of its value.
struct CColumn {
    CArray<std::uint8_t, Rows> Place;
    CArray<std::uint16_t, 256> FirstRow;  // the first row with the value of this index
    std::size_t Size = 0;
};

// Makes a column. isSame(row, other) returns true if two rows have the same value. More than 256 values
// are a compile error.
template <class IsSame>
constexpr CColumn makeColumn(const IsSame& isSame) {
    CColumn column;
    for (std::size_t row = 0; row < Rows; ++row) {
        // The search begins at the value of the row before, which is usually the same.
        std::size_t place = row == 0 ? 0 : column.Place[row - 1];
        if (row == 0 || !isSame(row, row - 1)) {
            place = 0;
            while (place < column.Size && !isSame(row, column.FirstRow[place])) {
                ++place;
            }
        }
        if (place == column.Size) {
            column.FirstRow[place] = static_cast<std::uint16_t>(row);
            ++column.Size;
        }
        column.Place[row] = static_cast<std::uint8_t>(place);
    }
    return column;
}

// The factor without its powers of 2 and 5.
struct CQuotient {
    std::uint64_t Numerator;
    std::uint64_t Denominator;
};

constexpr bool hasSameQuotient(std::size_t row, std::size_t other) {
    const CSmallFraction& a = Meanings.Row[row].Factor;
    const CSmallFraction& b = Meanings.Row[other].Factor;
    return a.Numerator == b.Numerator && a.Denominator == b.Denominator;
}

constexpr CColumn QuotientColumn = makeColumn(hasSameQuotient);

constexpr auto makeQuotients() {
    CArray<CQuotient, QuotientColumn.Size> quotients;
    for (std::size_t i = 0; i < QuotientColumn.Size; ++i) {
        const CSmallFraction& factor = Meanings.Row[QuotientColumn.FirstRow[i]].Factor;
        quotients[i] = {factor.Numerator, factor.Denominator};
    }
    return quotients;
}

constexpr auto Quotients = makeQuotients();

// The base units of a meaning, and the power of π in its factor.
struct CBaseUnits {
    std::int8_t Exponents[SlotCount];
    std::int8_t Pi;
    std::uint16_t Own;  // as in CRow
};

constexpr bool hasSameBaseUnits(std::size_t row, std::size_t other) {
    const CRow& a = Meanings.Row[row];
    const CRow& b = Meanings.Row[other];
    for (std::size_t slot = 0; slot < SlotCount; ++slot) {
        if (a.Exponents[slot] != b.Exponents[slot]) {
            return false;
        }
    }
    return a.Pi == b.Pi && a.Own == b.Own;
}

constexpr CColumn BaseUnitsColumn = makeColumn(hasSameBaseUnits);

constexpr auto makeBaseUnits() {
    CArray<CBaseUnits, BaseUnitsColumn.Size> baseUnits;
    for (std::size_t i = 0; i < BaseUnitsColumn.Size; ++i) {
        const CRow& row = Meanings.Row[BaseUnitsColumn.FirstRow[i]];
        for (std::size_t slot = 0; slot < SlotCount; ++slot) {
            baseUnits[i].Exponents[slot] = row.Exponents[slot];
        }
        baseUnits[i].Pi = row.Pi;
        baseUnits[i].Own = row.Own;
    }
    return baseUnits;
}

constexpr auto BaseUnits = makeBaseUnits();

// Only the compiler reads this array of pointers.
constexpr std::string_view RowSources[] = {
#define MENSOR_BASE(set, name, english, source) source,
#define MENSOR_MARK(set, name, english, source) source,
#define MENSOR_UNIT(set, name, definition, english, source) source,
#include "mensor_exact/definitions.def"
#define MENSOR_SPELLING(text, definition, english, why) why,
#include "mensor_exact/spellings.def"
};

constexpr bool hasSameSource(std::size_t row, std::size_t other) {
    return isEqual(RowSources[row], RowSources[other]);
}

constexpr CColumn SourceColumn = makeColumn(hasSameSource);

constexpr auto makeSourceStarts() {
    CArray<std::uint16_t, SourceColumn.Size + 1> starts;
    std::size_t start = 0;
    for (std::size_t i = 0; i < SourceColumn.Size; ++i) {
        start += RowSources[SourceColumn.FirstRow[i]].size();
        starts[i + 1] = static_cast<std::uint16_t>(start);
    }
    return starts;
}

constexpr auto SourceStarts = makeSourceStarts();

constexpr auto makeSources() {
    CArray<char, SourceStarts[SourceColumn.Size]> sources;
    std::size_t end = 0;
    for (std::size_t i = 0; i < SourceColumn.Size; ++i) {
        for (const char c : RowSources[SourceColumn.FirstRow[i]]) {
            sources[end++] = c;
        }
    }
    return sources;
}

constexpr auto Sources = makeSources();

constexpr auto makeOffsets() {
    CArray<CSmallFraction, Meanings.OffsetCount> offsets;
    for (std::size_t i = 0; i < Meanings.OffsetCount; ++i) {
        offsets[i] = Meanings.Offsets[i];
    }
    return offsets;
}

constexpr auto Offsets = makeOffsets();

// One row: the indices of its parts, and the powers of 2 and 5.
struct CPackedRow {
    std::uint8_t Quotient;
    std::int8_t Twos;
    std::int8_t Fives;
    std::uint8_t BaseUnits;
    std::uint8_t Offset;
    std::uint8_t Source;
};

constexpr auto makePackedRows() {
    CArray<CPackedRow, Rows> packed;
    for (std::size_t row = 0; row < Rows; ++row) {
        const CRow& data = Meanings.Row[row];
        packed[row] = {QuotientColumn.Place[row],
                       static_cast<std::int8_t>(data.Factor.Twos),
                       static_cast<std::int8_t>(data.Factor.Fives),
                       BaseUnitsColumn.Place[row],
                       data.Offset,
                       SourceColumn.Place[row]};
    }
    return packed;
}

constexpr auto PackedRows = makePackedRows();

constexpr CSmallFraction factorOf(std::size_t row) {
    const CPackedRow& data = PackedRows[row];
    CSmallFraction factor;
    factor.Numerator = Quotients[data.Quotient].Numerator;
    factor.Denominator = Quotients[data.Quotient].Denominator;
    factor.Twos = data.Twos;
    factor.Fives = data.Fives;
    return factor;
}

constexpr bool areFactorsKept() {
    for (std::size_t row = 0; row < Rows; ++row) {
        if (!(factorOf(row) == Meanings.Row[row].Factor)) {
            return false;
        }
    }
    return true;
}

static_assert(areFactorsKept(), "a factor is negative, or has a power of 2 or 5 beyond 127");

constexpr auto makeLetters() {
    CArray<std::uint32_t, Rows> letters;
    for (std::size_t row = 0; row < Rows; ++row) {
        letters[row] = letterSet(nameOf(row));
    }
    return letters;
}

constexpr auto Letters = makeLetters();

}  // namespace

std::size_t CTable::size() noexcept { return Rows; }

CDefinition CTable::definition(std::size_t row) noexcept {
    const std::string_view name = nameOf(row);
    const std::string_view text = definitionOf(row);
    const std::string_view english(text.data() + text.size(), Lengths[row].English);
    const std::size_t source = PackedRows[row].Source;
    const std::size_t start = SourceStarts[source];
    return {name,
            text,
            english,
            {Sources.Elements + start, SourceStarts[source + 1] - start},
            Lengths[row].Pack};
}

std::string_view CTable::name(std::size_t row) noexcept { return nameOf(row); }
ePack CTable::pack(std::size_t row) noexcept { return Lengths[row].Pack; }
std::uint32_t CTable::letters(std::size_t row) noexcept { return Letters[row]; }

[[gnu::hot]] CMeaning CTable::meaning(std::size_t row) {
    const CPackedRow& data = PackedRows[row];
    const CBaseUnits& units = BaseUnits[data.BaseUnits];
    if (units.Own != 0) {
        return CMeaning::base(nameOf(units.Own - std::size_t{1}));
    }
    CMeaning result(factorOf(row), static_cast<int>(units.Pi), Offsets[data.Offset]);
    for (std::size_t slot = 0; slot < SlotCount; ++slot) {
        if (units.Exponents[slot] != 0) {
            result.m_Exponents[slot] = static_cast<int>(units.Exponents[slot]);
        }
    }
    return result;
}

[[gnu::hot]] bool CTable::hasOffset(std::size_t row) noexcept {
    return PackedRows[row].Offset != 0;
}

[[gnu::hot]] std::size_t CTable::find(std::string_view name, std::uint32_t packs) noexcept {
    constexpr std::size_t Longest = 32;  // bytes; no name is longer
    if (name.size() > Longest) {
        return None;
    }
    return findRow(name, packs);
}

}  // namespace mensor::exact
