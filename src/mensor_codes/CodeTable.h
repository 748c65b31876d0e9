// CodeTable.h: a table of codes and their meanings as constant data. For the library's own use; not
// installed.
//
// A table is a file of rows (unece.def, senml.def, ucum.def). table.def makes the constants Texts and Lengths
// from it.
//
// The compiler evaluates the definitions and stores each different factor and product of base units once.
// Loading the library does no work, and no table ever changes.
#ifndef MENSOR_CODES_CODETABLE_H
#define MENSOR_CODES_CODETABLE_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "mensor_codes/Codes.h"
#include "mensor_codes/Evaluation.h"
#include "mensor_codes/Sources.h"
#include "mensor_exact/Fraction.h"

namespace mensor::codes {

/// The lengths of the texts of one row. A text of more than 255 bytes does not compile.
struct CCodeLengths {
    std::uint8_t Code;
    std::uint8_t Definition;  // 0 if the code is refused
    std::uint8_t Symbol;
    std::uint8_t Name;
    std::uint8_t SameAs;
    std::uint8_t Note;
    eSource Source;
    bool IsDeprecated;
};

namespace stored {

template <class T, std::size_t N>
struct CArray {
    T Elements[N] = {};
    constexpr T& operator[](std::size_t i) { return Elements[i]; }
    constexpr const T& operator[](std::size_t i) const { return Elements[i]; }
};

template <const CCodeLengths* Lengths, std::size_t Rows>
constexpr CArray<std::uint32_t, Rows> makeStarts() {
    CArray<std::uint32_t, Rows> starts;
    std::uint32_t start = 0;
    for (std::size_t row = 0; row < Rows; ++row) {
        const CCodeLengths& lengths = Lengths[row];
        starts[row] = start;
        start += std::uint32_t{lengths.Code} + lengths.Definition + lengths.Symbol + lengths.Name +
                 lengths.SameAs + lengths.Note;
    }
    return starts;
}

// A fraction times a power of π: a factor, or an offset, which has no π.
struct CStoredNumber {
    std::uint64_t Numerator = 0;
    std::uint64_t Denominator = 1;
    std::int16_t Twos = 0;
    std::int16_t Fives = 0;
    std::int8_t Pi = 0;
    bool Negative = false;

    constexpr CStoredNumber() = default;
    constexpr CStoredNumber(const exact::CSmallFraction& fraction, std::int8_t pi)
        : Numerator(fraction.Numerator),
          Denominator(fraction.Denominator),
          Twos(static_cast<std::int16_t>(fraction.Twos)),
          Fives(static_cast<std::int16_t>(fraction.Fives)),
          Pi(pi),
          Negative(fraction.Negative) {}

    constexpr exact::CSmallFraction fraction() const {
        exact::CSmallFraction result;
        result.Numerator = Numerator;
        result.Denominator = Denominator;
        result.Twos = Twos;
        result.Fives = Fives;
        result.Negative = Negative;
        return result;
    }
    constexpr std::size_t hash() const {
        return static_cast<std::size_t>((Numerator * 31 + Denominator) * 31 +
                                        static_cast<std::uint64_t>(Twos * 7 + Fives + Pi + 100000));
    }
    friend constexpr bool operator==(const CStoredNumber& a, const CStoredNumber& b) {
        return a.Numerator == b.Numerator && a.Denominator == b.Denominator && a.Twos == b.Twos &&
               a.Fives == b.Fives && a.Pi == b.Pi && a.Negative == b.Negative;
    }
};

// A product of base units, with at most one unit of units.def.
struct CUnits {
    std::int8_t Halves[exact::CSmallMeaning::Slots] = {};
    std::uint8_t Own = 0;  // its place in units::OwnNames
    std::int8_t OwnHalves = 0;

    constexpr CUnits() = default;
    constexpr explicit CUnits(const exact::CSmallMeaning& meaning)
        : Own(units::ownPlace(meaning.Own)), OwnHalves(meaning.OwnHalves) {
        for (std::size_t slot = 0; slot < exact::CSmallMeaning::Slots; ++slot) {
            Halves[slot] = meaning.Halves[slot];
        }
    }

    constexpr std::size_t hash() const {
        std::size_t hash = Own * std::size_t{7} + static_cast<std::size_t>(OwnHalves + 100);
        for (const std::int8_t halves : Halves) {
            hash = hash * 31 + static_cast<std::size_t>(halves + 100);
        }
        return hash;
    }
    friend constexpr bool operator==(const CUnits& a, const CUnits& b) {
        for (std::size_t slot = 0; slot < exact::CSmallMeaning::Slots; ++slot) {
            if (a.Halves[slot] != b.Halves[slot]) {
                return false;
            }
        }
        return a.Own == b.Own && a.OwnHalves == b.OwnHalves;
    }
};

// A list of values without repetitions. Each value has a number.
template <class T, std::size_t Most>
struct CDistinct {
    static constexpr std::size_t Places = 4 * Most;
    T Elements[Most] = {};
    std::uint16_t Place[Places] = {};  // the number of the element plus 1; 0 if the place is free
    std::size_t Count = 0;

    constexpr std::uint16_t numberOf(const T& value) {
        std::size_t place = value.hash() % Places;
        for (; Place[place] != 0; place = (place + 1) % Places) {
            if (Elements[Place[place] - 1] == value) {
                return static_cast<std::uint16_t>(Place[place] - 1);
            }
        }
        Elements[Count] = value;
        Place[place] = static_cast<std::uint16_t>(++Count);
        return static_cast<std::uint16_t>(Count - 1);
    }
};

struct CRow {
    std::uint16_t Factor;  // each member is an index into the list of its name
    std::uint16_t Units;
    std::uint16_t Offset;
};

template <std::size_t Rows>
struct CEvaluated {
    CRow Row[Rows] = {};
    CDistinct<CStoredNumber, Rows + 1> Factors;
    CDistinct<CUnits, Rows + 1> Units;
    CDistinct<CStoredNumber, Rows + 1> Offsets;
    std::size_t Bad = Rows;  // the first row that cannot be evaluated; Rows if there is none
};

template <const char* Texts, const CCodeLengths* Lengths, std::size_t Rows>
constexpr CEvaluated<Rows> makeEvaluated() {
    CEvaluated<Rows> all{};
    // Each list gets an element, because an array cannot be empty.
    all.Factors.numberOf(CStoredNumber(exact::CSmallFraction(1), 0));
    all.Units.numberOf(CUnits());
    all.Offsets.numberOf(CStoredNumber(exact::CSmallFraction(), 0));
    const auto starts = makeStarts<Lengths, Rows>();
    for (std::size_t row = 0; row < Rows; ++row) {
        const CCodeLengths& lengths = Lengths[row];
        if (lengths.Definition == 0) {
            continue;
        }
        const std::string_view definition(Texts + starts[row] + lengths.Code, lengths.Definition);
        exact::CSmallMeaning meaning;
        if (!evaluate(definition, meaning)) {
            all.Bad = row;
            return all;
        }
        all.Row[row].Factor = all.Factors.numberOf(CStoredNumber(meaning.Factor, meaning.Pi));
        all.Row[row].Units = all.Units.numberOf(CUnits(meaning));
        all.Row[row].Offset = all.Offsets.numberOf(CStoredNumber(meaning.Offset, 0));
    }
    return all;
}

template <std::size_t RowCount, std::size_t FactorCount, std::size_t UnitsCount,
          std::size_t OffsetCount>
struct CMeanings {
    CRow Row[RowCount];
    CStoredNumber Factors[FactorCount];
    CUnits Units[UnitsCount];
    CStoredNumber Offsets[OffsetCount];
};

template <class T>
constexpr void copy(const T* from, std::size_t count, T* to) {
    for (std::size_t i = 0; i < count; ++i) {
        to[i] = from[i];
    }
}

// Fails to compile if a definition is malformed, uses an unknown name or needs more than 64 bits. The
// message of the compiler shows the number of the row, counted from 0.
template <std::size_t Row, std::size_t Rows>
struct CBadRow {
    static_assert(Row == Rows, "the definition in the row with this number cannot be evaluated");
    static constexpr bool IsGood = true;
};

template <const char* Texts, const CCodeLengths* Lengths, std::size_t Rows>
constexpr auto makeMeanings() {
    constexpr CEvaluated<Rows> All = makeEvaluated<Texts, Lengths, Rows>();
    static_assert(CBadRow<All.Bad, Rows>::IsGood);
    CMeanings<Rows, All.Factors.Count, All.Units.Count, All.Offsets.Count> result{};
    copy(All.Row, Rows, result.Row);
    copy(All.Factors.Elements, All.Factors.Count, result.Factors);
    copy(All.Units.Elements, All.Units.Count, result.Units);
    copy(All.Offsets.Elements, All.Offsets.Count, result.Offsets);
    return result;
}

template <const char* Texts, const CCodeLengths* Lengths, std::size_t Rows>
inline constexpr auto Meanings = makeMeanings<Texts, Lengths, Rows>();

template <const CCodeLengths* Lengths, std::size_t Rows>
inline constexpr auto Starts = makeStarts<Lengths, Rows>();

template <const char* Texts, const CCodeLengths* Lengths, std::size_t Rows>
inline constexpr exact::CNameIndex<Rows> Index([](std::size_t row) {
    return std::string_view(Texts + Starts<Lengths, Rows>[row], Lengths[row].Code);
});

}  // namespace stored

/// Returns near/asked - 1.
inline double deviation(const exact::CFactor& near, const exact::CFactor& asked) {
    const exact::CFactor ratio = near / asked;
    return ratio.isRational() ? (ratio.radicand() - exact::CFraction(1)).toDouble()
                              : ratio.toDouble() - 1.0;
}

/// A table of codes. `Texts` has the texts of all rows in sequence; those of a row are in the order of
/// CCodeLengths.
template <const char* Texts, const CCodeLengths* Lengths, std::size_t Rows>
class CCodeTable {
public:
    static constexpr std::size_t None = static_cast<std::size_t>(-1);

    static std::size_t find(std::string_view code) {
        return stored::Index<Texts, Lengths, Rows>.find(
            code, [code](std::size_t row) { return codeOf(row) == code; });
    }

    static bool isRefused(std::size_t row) { return Lengths[row].Definition == 0; }

    /// Returns why a code is refused.
    static std::string_view reason(std::size_t row) { return textOf(Lengths[row].Source); }

    static exact::CSmallMeaning smallMeaning(std::size_t row) {
        constexpr const auto& All = stored::Meanings<Texts, Lengths, Rows>;
        const stored::CRow& numbers = All.Row[row];
        const stored::CStoredNumber& factor = All.Factors[numbers.Factor];
        const stored::CUnits& units = All.Units[numbers.Units];
        exact::CSmallMeaning result;
        result.Factor = factor.fraction();
        result.Pi = factor.Pi;
        if (numbers.Offset != 0) {
            result.Offset = All.Offsets[numbers.Offset].fraction();
        }
        for (std::size_t slot = 0; slot < exact::CSmallMeaning::Slots; ++slot) {
            result.Halves[slot] = units.Halves[slot];
        }
        if (units.OwnHalves != 0) {
            result.OwnHalves = units.OwnHalves;
            result.Own = units::OwnNames[units.Own].Text;
        }
        return result;
    }

    static exact::CMeaning meaning(std::size_t row) { return exact::CMeaning(smallMeaning(row)); }

    static std::string_view codeOf(std::size_t row) {
        return {Texts + stored::Starts<Lengths, Rows>[row], Lengths[row].Code};
    }

    static CCode code(std::size_t row) {
        const CCodeLengths& lengths = Lengths[row];
        const char* at = Texts + stored::Starts<Lengths, Rows>[row];
        const auto next = [&at](std::size_t length) {
            const std::string_view text(at, length);
            at += length;
            return text;
        };
        CCode result;
        result.Code = next(lengths.Code);
        result.Definition = next(lengths.Definition);
        result.Symbol = next(lengths.Symbol);
        result.Name = next(lengths.Name);
        result.SameAs = next(lengths.SameAs);
        result.Note = next(lengths.Note);
        result.Source = textOf(lengths.Source);
        result.IsDeprecated = lengths.IsDeprecated;
        return result;
    }

    static void forEach(const std::function<void(const CCode&)>& visit) {
        for (std::size_t row = 0; row < Rows; ++row) {
            visit(code(row));
        }
    }

    /// Does the work of codes::codeFor().
    static CMatch codeFor(const exact::CMeaning& meaning) {
        exact::CSmallMeaning small;
        const bool isSmall = meaning.toSmall(small);
        const double size = meaning.factor().toDouble();
        CMatch result;
        std::size_t nearest = None;
        double least = 0;
        for (std::size_t row = 0; row < Rows; ++row) {
            if (isRefused(row) || (isSmall && !smallMeaning(row).hasUnitsOf(small))) {
                continue;
            }
            const exact::CMeaning other = CCodeTable::meaning(row);
            if (!other.isCompatibleWith(meaning) || !other.hasMarksOf(meaning)) {
                continue;
            }
            if (other == meaning) {
                if (Lengths[row].SameAs == 0) {
                    result.Code = codeOf(row);
                } else {
                    result.Synonyms.emplace_back(codeOf(row));
                }
            } else if (other.offset().isZero() && meaning.offset().isZero() &&
                       Lengths[row].SameAs == 0) {
                const double distance = std::fabs(std::log(other.factor().toDouble() / size));
                if (nearest == None || distance < least) {
                    nearest = row;
                    least = distance;
                }
            }
        }
        if (result.Code.empty() && nearest != None) {
            result.Nearest = codeOf(nearest);
            result.Deviation = deviation(CCodeTable::meaning(nearest).factor(), meaning.factor());
        }
        return result;
    }
};

}  // namespace mensor::codes

#endif  // MENSOR_CODES_CODETABLE_H
