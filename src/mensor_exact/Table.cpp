#include "mensor_exact/Table.h"

#include <cstring>

#include "mensor_exact/ConstantTable.h"
#include "mensor_exact/PackedText.h"

namespace mensor::exact {

using namespace table;

namespace {

// In ConstantTable.h each row has a meaning of 48 bytes and plain texts. Most rows have parts in common: a prefix
// changes only powers of 2 and 5. So this file stores each distinct part once, and packs the texts.

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

constexpr bool hasSameFactor(std::size_t row, std::size_t other) {
    return Meanings.Row[row].Factor == Meanings.Row[other].Factor;
}

constexpr CColumn FactorColumn = makeColumn(hasSameFactor);

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

// The index of its quotient, and the powers of 2 and 5.
struct CPackedFactor {
    std::uint8_t Quotient;
    std::int8_t Twos;
    std::int8_t Fives;
};

constexpr auto makeFactors() {
    CArray<CPackedFactor, FactorColumn.Size> factors;
    for (std::size_t i = 0; i < FactorColumn.Size; ++i) {
        const std::size_t row = FactorColumn.FirstRow[i];
        const CSmallFraction& factor = Meanings.Row[row].Factor;
        factors[i] = {QuotientColumn.Place[row], static_cast<std::int8_t>(factor.Twos),
                      static_cast<std::int8_t>(factor.Fives)};
    }
    return factors;
}

constexpr auto Factors = makeFactors();

// The base units of a meaning, the power of π in its factor, and the offset.
struct CBaseUnits {
    std::int8_t Exponents[SlotCount];
    std::int8_t Pi;
    std::uint8_t Offset;  // as in CRow
    std::uint16_t Own;    // as in CRow
};

constexpr bool hasSameBaseUnits(std::size_t row, std::size_t other) {
    const CRow& a = Meanings.Row[row];
    const CRow& b = Meanings.Row[other];
    for (std::size_t slot = 0; slot < SlotCount; ++slot) {
        if (a.Exponents[slot] != b.Exponents[slot]) {
            return false;
        }
    }
    return a.Pi == b.Pi && a.Offset == b.Offset && a.Own == b.Own;
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
        baseUnits[i].Offset = row.Offset;
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

constexpr auto WrittenSources = writeTexts<SourceColumn.Size>([](std::size_t i, const auto& write) {
    packText(RowSources[SourceColumn.FirstRow[i]], write);
});

constexpr auto Sources = shrunk<WrittenSources.Size>(WrittenSources);

// For each row the name, and packed the definition and the name in English. Their starts are in the rows.
constexpr auto WrittenTexts = writeTexts<Rows>([](std::size_t row, const auto& write) {
    for (const char c : nameOf(row)) {
        write(static_cast<unsigned char>(c));
    }
    packText(definitionOf(row), write);
    packText(englishOf(row), write);
});

struct CRowTexts {
    char Bytes[WrittenTexts.Size] = {};
};

constexpr CRowTexts makeRowTexts() {
    CRowTexts texts;
    for (std::size_t i = 0; i < WrittenTexts.Size; ++i) {
        texts.Bytes[i] = WrittenTexts.Bytes[i];
    }
    return texts;
}

constexpr CRowTexts RowTexts = makeRowTexts();

constexpr auto makeOffsets() {
    CArray<CSmallFraction, Meanings.OffsetCount> offsets;
    for (std::size_t i = 0; i < Meanings.OffsetCount; ++i) {
        offsets[i] = Meanings.Offsets[i];
    }
    return offsets;
}

constexpr auto Offsets = makeOffsets();

// One row: where its texts begin, and the indices of its parts.
struct CPackedRow {
    std::uint16_t Start;
    std::uint8_t NameAndPack;  // 16 times the number of bytes of the name, plus the pack
    std::uint8_t Factor;
    std::uint8_t BaseUnits;
    std::uint8_t Source;

    constexpr std::size_t nameSize() const { return NameAndPack / 16; }
    constexpr ePack pack() const { return static_cast<ePack>(NameAndPack % 16); }
};

constexpr auto makePackedRows() {
    static_assert(static_cast<int>(ePack::OWN) < 16);
    CArray<CPackedRow, Rows> packed;
    for (std::size_t row = 0; row < Rows; ++row) {
        packed[row] = {WrittenTexts.Starts[row],
                       static_cast<std::uint8_t>(nameOf(row).size() * 16 +
                                                 static_cast<std::size_t>(Lengths[row].Pack)),
                       FactorColumn.Place[row], BaseUnitsColumn.Place[row],
                       SourceColumn.Place[row]};
    }
    return packed;
}

constexpr auto PackedRows = makePackedRows();

constexpr std::string_view packedName(std::size_t row) {
    return {RowTexts.Bytes + PackedRows[row].Start, PackedRows[row].nameSize()};
}

constexpr bool areNamesKept() {
    for (std::size_t row = 0; row < Rows; ++row) {
        if (!isEqual(packedName(row), nameOf(row)) || PackedRows[row].pack() != Lengths[row].Pack) {
            return false;
        }
    }
    return true;
}

static_assert(areNamesKept(), "a name has more than 15 bytes");

constexpr CSmallFraction factorOf(std::size_t row) {
    const CPackedFactor& data = Factors[PackedRows[row].Factor];
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

const char* packedText(std::size_t row) {
    return RowTexts.Bytes + PackedRows[row].Start + PackedRows[row].nameSize();
}

}  // namespace

std::size_t CTable::size() noexcept { return Rows; }

CDefinition CTable::definition(std::size_t row) {
    const char* const text = packedText(row);
    return {name(row), unpacked(text), unpacked(text + std::strlen(text) + 1),
            unpacked(Sources.Bytes + Sources.Starts[PackedRows[row].Source]), pack(row)};
}

std::string CTable::text(std::size_t row) { return unpacked(packedText(row)); }
std::string_view CTable::name(std::size_t row) noexcept { return packedName(row); }
ePack CTable::pack(std::size_t row) noexcept { return PackedRows[row].pack(); }

[[gnu::hot]] CMeaning CTable::meaning(std::size_t row) {
    const CBaseUnits& units = BaseUnits[PackedRows[row].BaseUnits];
    if (units.Own != 0) {
        return CMeaning::base(name(units.Own - std::size_t{1}));
    }
    CMeaning result(factorOf(row), static_cast<int>(units.Pi), Offsets[units.Offset]);
    for (std::size_t slot = 0; slot < SlotCount; ++slot) {
        if (units.Exponents[slot] != 0) {
            result.m_Exponents[slot] = static_cast<int>(units.Exponents[slot]);
        }
    }
    return result;
}

[[gnu::hot]] bool CTable::hasOffset(std::size_t row) noexcept {
    return BaseUnits[PackedRows[row].BaseUnits].Offset != 0;
}

[[gnu::hot]] std::size_t CTable::find(std::string_view name, std::uint32_t packs) noexcept {
    constexpr std::size_t Longest = 15;  // bytes; no name is longer
    if (name.size() > Longest) {
        return None;
    }
    return Index.find(name, [name, packs](std::size_t row) {
        return (packs & bitOf(PackedRows[row].pack())) != 0 && isEqual(packedName(row), name);
    });
}

}  // namespace mensor::exact
