#include "mensor_exact/Reading.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "mensor_exact/Error.h"
#include "mensor_exact/NearestNames.h"
#include "mensor_exact/NumberText.h"
#include "mensor_exact/OwnDefinitions.h"
#include "mensor_exact/Parser.h"
#include "mensor_exact/Spelling.h"
#include "mensor_exact/Table.h"
#include "mensor_exact/UnitsWriter.h"
#include "mensor_exact/sentences.h"

namespace mensor::exact {

namespace {

bool hasOffset(const CMeaning& meaning) { return !meaning.offset().isZero(); }

// What a name is: a row of the table times a power of ten, a definition of the program, or the number one.
struct CFound {
    CNamePlace Place;
    int Power = 0;  // of ten, for a word such as "kilometres"
    bool IsOne = false;

    explicit operator bool() const {
        return Place.Row != CTable::None || Place.Own != nullptr || IsOne;
    }

    bool hasOffset() const {
        return Place.Own != nullptr ? exact::hasOffset(Place.Own->second.Meaning)
                                    : !IsOne && CTable::hasOffset(Place.Row);
    }

    CMeaning meaning() const {
        if (Place.Own != nullptr || IsOne) {
            return IsOne ? CMeaning() : Place.Own->second.Meaning;
        }
        return Power == 0 ? CTable::meaning(Place.Row) : scaledByTens();
    }

private:
    [[gnu::cold]] CMeaning scaledByTens() const {
        return CTable::meaning(Place.Row).scaled(CFactor(CFraction(10)).power(Power));
    }
};

// Finds a name that the catalogue does not have in this spelling or in an equivalent one.
[[gnu::cold]] CFound findWord(std::string_view name, const CCatalogue& catalogue) {
    CFound found;
    found.IsOne = name == "One";
    if (!found.IsOne && catalogue.has(ePack::EVERYDAY)) {
        if (const std::optional<CWord> word = everydayWord(name)) {
            found.Place.Row = CTable::find(word->Symbol, CTable::AllPacks);
            found.Power = word->Power;
        }
    }
    return found;
}

// Finds a name in `catalogue`, in any spelling. "One" is the dimensionless unit. If `known` is not null,
// writes the catalogue's spelling into it, or an empty text if no definition can contain that spelling.
[[gnu::hot]] CFound find(std::string_view name, const CCatalogue& catalogue,
                         std::string* known = nullptr) {
    CFound found = lookUpSpellings(
        name, [&](std::string_view spelling) __attribute__((hot)) {
            CFound result{CCatalogueBuilder::place(catalogue, spelling)};
            // A program's own "Ml" may have another meaning than "ML", the megalitre.
            const bool isSmallLitre = name.back() == 'L' && spelling.back() == 'l';
            if (isSmallLitre && result.Place.Own != nullptr) {
                return CFound();
            }
            if (result && known != nullptr) {  // no definition can contain "bar(g)" or "in."
                *known = spelling.find_first_of("(.") == std::string_view::npos
                             ? spelling
                             : std::string_view();
            }
            return result;
        });
    if (!found) {
        found = findWord(name, catalogue);
        if (found && known != nullptr && !found.IsOne) {
            known->clear();
        }
    }
    return found;
}

// Returns the meaning of a name in `catalogue`, or nothing. `known` is set as by find().
[[gnu::cold]] std::optional<CMeaning> meaningOf(std::string_view name, const CCatalogue& catalogue,
                                                std::string* known = nullptr) {
    const CFound found = find(name, catalogue, known);
    return found ? std::optional(found.meaning()) : std::nullopt;
}

bool isOwn(std::string_view name, const CCatalogue& catalogue) {
    return catalogue.packOf(name) == ePack::OWN;
}

// A name of a prefix and an offset unit: "m°C".
struct CPrefixedScale {
    std::string_view Prefix;
    std::string_view Scale;
    CMeaning Meaning;  // the meaning of its differences
};

[[gnu::cold]] std::optional<CPrefixedScale> prefixedScale(std::string_view name,
                                                          const CCatalogue& catalogue) {
    for (const CPrefix& prefix : Prefixes) {
        const std::size_t length = prefix.Symbol.size();
        if (name.size() <= length || name.substr(0, length) != prefix.Symbol) {
            continue;
        }
        const std::string_view scale = name.substr(length);
        const std::optional<CMeaning> meaning = meaningOf(scale, catalogue);
        if (meaning && hasOffset(*meaning)) {
            const CFactor ten{CFraction(10)};
            return CPrefixedScale{prefix.Symbol, scale,
                                  meaning->difference().scaled(ten.power(prefix.Power))};
        }
    }
    return std::nullopt;
}

// Finds names in a catalogue.
class CCatalogueNames final : public CResolver {
public:
    /// The corrections should be compatible with `target`. It may be null.
    explicit CCatalogueNames(const CCatalogue& catalogue, const CMeaning* target = nullptr)
        : m_Catalogue(catalogue), m_Target(target) {}

    /// Returns the number of the factor that find() has found, which is 2 or more, or
    /// PrefixedScale.
    [[gnu::hot]] std::uint32_t find(std::string_view name) override {
        const CFound found = exact::find(name, m_Catalogue);
        if (!found) {
            return prefixedScale(name, m_Catalogue) ? PrefixedScale : None;
        }
        if (m_Count < m_Few.size()) {
            m_Few[m_Count] = found;
        } else {
            m_Many.push_back(found);
        }
        return First + m_Count++;
    }

    bool knows(std::string_view name) override { return bool(exact::find(name, m_Catalogue)); }

    bool isOwn(std::string_view name) override { return exact::isOwn(name, m_Catalogue); }

    [[gnu::cold]] void addNamesTo(CNearestNames& nearest) override {
        for (std::size_t row = 0; row < CTable::size(); ++row) {
            const std::string_view name = CTable::name(row);
            // The catalogue may have this name from another pack or from the program.
            if (m_Catalogue.has(CTable::pack(row)) && nearest.mayBeNear(name) &&
                CCatalogueBuilder::place(m_Catalogue, name).Row == row) {
                nearest.add(name);
            }
        }
        if (const COwnDefinitions* const own = CCatalogueBuilder::own(m_Catalogue)) {
            for (const auto& [name, entry] : own->Entries) {
                nearest.add(name);
            }
        }
    }

    bool offers(ePack) override { return true; }

    eFit fit(std::string_view text, std::size_t begin, CRefusal& refusal) override;
    void addWords(const CRefusal& refusal, std::vector<std::string>& words) override;
    std::string sumOf(const std::vector<CNamedNumber>& values) override;

    /// Returns whether the factor is the difference of an offset unit with a prefix.
    static bool isPrefixedScale(const CNamedFactor& factor) { return factor.Unit == PrefixedScale; }

    /// What find() has found for any other factor.
    const CFound& found(const CNamedFactor& factor) const {
        const std::size_t place = factor.Unit - First;
        return place < m_Few.size() ? m_Few[place] : m_Many[place - m_Few.size()];
    }

private:
    static constexpr std::uint32_t PrefixedScale = 1;
    static constexpr std::uint32_t First = 2;

    const CCatalogue& m_Catalogue;
    const CMeaning* m_Target;
    std::array<CFound, 6> m_Few;  // stored in the object
    std::vector<CFound> m_Many;
    std::uint32_t m_Count = 0;
};

// Reads the unit that begins at the byte `begin` of a text.
class CUnitReader {
public:
    CUnitReader(std::string_view text, std::size_t begin, const CCatalogue& catalogue,
                const CReadOptions& options)
        : m_Text(text), m_Begin(begin), m_Catalogue(catalogue), m_Options(options) {}

    [[gnu::hot]] CReading read() {
        CReading result;
        CCatalogueNames names(m_Catalogue);
        CNamedFactors factors;
        if (!parse(m_Text, m_Begin, m_Options.Dimensionless, names, factors, result.Refusal)) {
            return result;
        }
        if (!takeNotes(m_Text, m_Begin, factors, names, m_Options.Strict, result.Notes,
                       result.Refusal)) {
            return result;
        }
        if (factors.isOneName()) {
            readAlone(factors[0], names, result);
        } else {
            multiply(factors, names, result);
        }
        return result;
    }

private:
    // Refuses a prefix that is also a unit: people may mean W/(m·K) by "W/m°C".
    bool takePrefixedScale(CSpan name, bool isAlone, CReading& result) const {
        const std::string_view prefix = prefixedScale(name.of(m_Text), m_Catalogue)->Prefix;
        const bool isAmbiguous = !isAlone && find(prefix, m_Catalogue);
        if (m_Options.Differences && !isAmbiguous) {
            result.HasDifference = true;
            return true;
        }
        const CSpan unit{name.Begin, name.Begin + (isAmbiguous ? prefix.size() : 0)};
        result.Refusal = {eRefusal::PREFIXED_OFFSET, m_Text, name,    sentences::PREFIXED_SCALE,
                          eReadings::NONE,           {unit}, m_Begin, nullptr};
        return false;
    }

    void readAlone(const CNamedFactor& factor, const CCatalogueNames& names,
                   CReading& result) const {
        if (!CCatalogueNames::isPrefixedScale(factor)) {
            result.Meaning.emplace(names.found(factor).meaning());
        } else if (takePrefixedScale(factor.Name, true, result)) {
            result.Meaning = prefixedScale(factor.Name.of(m_Text), m_Catalogue)->Meaning;
        }
    }

    // Returns what a factor of a product means.
    [[gnu::hot]] CMeaning meaningInProduct(const CNamedFactor& factor,
                                           const CCatalogueNames& names) const {
        if (CCatalogueNames::isPrefixedScale(factor)) {
            return prefixedScale(factor.Name.of(m_Text), m_Catalogue)->Meaning;
        }
        const CFound& found = names.found(factor);
        return found.hasOffset() ? found.meaning().difference() : found.meaning();
    }

    // Returns false and refuses the text if a factor is an offset unit, unless its difference is meant.
    bool takeDifferences(const CNamedFactors& factors, const CCatalogueNames& names,
                         CReading& result) const {
        for (const CNamedFactor& factor : factors) {
            if (CCatalogueNames::isPrefixedScale(factor)) {
                if (!takePrefixedScale(factor.Name, false, result)) {
                    return false;
                }
            } else if (names.found(factor).hasOffset()) {
                if (!m_Options.Differences) {
                    refuse(eRefusal::OFFSET_IN_PRODUCT, factor.Name, sentences::SCALE_IN_PRODUCT,
                           result);
                    return false;
                }
                result.HasDifference = true;
            }
        }
        return true;
    }

    void multiply(const CNamedFactors& factors, const CCatalogueNames& names,
                  CReading& result) const {
        if (!takeDifferences(factors, names, result)) {
            return;
        }
        if (factors.empty()) {
            result.Meaning.emplace();
        }
        for (const CNamedFactor& factor : factors) {
            try {
                if (!result.Meaning && factor.Pow == 1 && factor.Root == 1) {
                    result.Meaning.emplace(meaningInProduct(factor, names));
                    continue;
                }
                if (!result.Meaning) {
                    result.Meaning.emplace();
                }
                result.Meaning->multiplyBy(meaningInProduct(factor, names),
                                           {factor.Pow, factor.Root});
            } catch (const CError& error) {
                result.Meaning.reset();
                refuseProduct(error.code(), factor, result);
                return;
            }
        }
    }

    [[gnu::cold]] void refuseProduct(eError code, const CNamedFactor& factor,
                                     CReading& result) const {
        if (code == eError::EXPONENT_RANGE) {
            refuse(eRefusal::EXPONENT_RANGE, factor.Name, sentences::EXPONENTS_ADD_UP, result);
        } else {
            refuse(eRefusal::FACTOR_RANGE, {m_Begin, m_Text.size()}, sentences::FACTOR_TOO_LONG,
                   result);
        }
    }

    void refuse(eRefusal code, CSpan token, const char* sentence, CReading& result) const {
        result.Refusal = {code, m_Text, token, sentence, eReadings::NONE, {}, m_Begin, nullptr};
    }

    const std::string_view m_Text;
    const std::size_t m_Begin;
    const CCatalogue& m_Catalogue;
    const CReadOptions& m_Options;
};

// Returns the first name of the catalogue with this meaning. Empty if there is none.
[[gnu::cold]] std::string_view nameOf(const CMeaning& meaning, const CCatalogue& catalogue) {
    std::string_view name;
    catalogue.forEachName([&](std::string_view known, ePack) {
        name = catalogue.meaning(known) == meaning ? known : name;
        return name.empty();
    });
    return name;
}

// Returns the catalogue's name for the meaning that `name` has alone or in a product. Empty if there is none.
[[gnu::cold]] std::string namedInProduct(std::string_view name, bool isAlone,
                                         const CCatalogue& catalogue) {
    std::string known(name);
    const std::optional<CMeaning> meaning = meaningOf(name, catalogue, &known);
    if (!meaning) {
        return std::string(nameOf(prefixedScale(name, catalogue)->Meaning, catalogue));
    }
    return isAlone || !hasOffset(*meaning) ? known
                                           : std::string(nameOf(meaning->difference(), catalogue));
}

// Returns the name of the differences of an offset unit. Empty if there is none.
[[gnu::cold]] std::string_view differenceName(const CMeaning& scale, const CCatalogue& catalogue) {
    return nameOf(scale.difference(), catalogue);
}

// Adds "; for differences write ..." to the sentence about an offset unit in a product.
[[gnu::cold]] void tellDifference(const CRefusal& refusal, const CCatalogue& catalogue,
                                  CDiagnosis& diagnosis) {
    const std::optional<CMeaning> scale = meaningOf(refusal.token(), catalogue);
    if (!scale) {
        return;
    }
    const std::string_view name = differenceName(*scale, catalogue);
    if (!name.empty()) {
        diagnosis.Sentence += "; for differences write \"" + std::string(name) + "\"";
    } else {
        diagnosis.Sentence += "; its differences are " + scale->difference().toString() +
                              ", as the option Differences (--differences) reads them";
    }
}

eFit CCatalogueNames::fit(std::string_view text, std::size_t begin, CRefusal& refusal) {
    const CReadOptions options;
    CReading reading = CUnitReader(text, begin, m_Catalogue, options).read();
    if (!reading) {
        refusal = reading.Refusal;
        return eFit::REFUSED;
    }
    if (m_Target != nullptr && reading.Meaning->isCompatibleWith(*m_Target)) {
        return eFit::TARGET;
    }
    return reading.Meaning->hasNamedKind() ? eFit::KIND : eFit::READ;
}

[[gnu::cold]] void CCatalogueNames::addWords(const CRefusal& refusal,
                                             std::vector<std::string>& words) {
    if (refusal.Code == eRefusal::OFFSET_IN_PRODUCT) {
        const std::optional<CMeaning> scale = meaningOf(refusal.token(), m_Catalogue);
        if (scale) {
            words.emplace_back(differenceName(*scale, m_Catalogue));
        }
        return;
    }
    if (refusal.Code != eRefusal::PREFIXED_OFFSET) {
        return;
    }
    const std::optional<CPrefixedScale> scale = prefixedScale(refusal.token(), m_Catalogue);
    if (!scale) {
        return;
    }
    const std::string_view prefix = refusal.Pieces[0].of(refusal.Text);  // empty if it is no unit
    const std::string_view unprefixed =
        differenceName(*meaningOf(scale->Scale, m_Catalogue), m_Catalogue);
    if (!prefix.empty() && !unprefixed.empty()) {
        words.push_back("(" + std::string(prefix) + "·" + std::string(unprefixed) + ")");
    }
    words.emplace_back(nameOf(scale->Meaning, m_Catalogue));
}

CCatalogue withPack(const CCatalogue& catalogue, const std::string& name) {
    const ePack pack = *packNamed(name);
    const bool isOfCountry = pack == ePack::US || pack == ePack::IMPERIAL;
    return (isOfCountry ? catalogue.with(ePack::CUSTOMARY) : catalogue).with(pack);
}

// Reads the text with the missing packs, and adds to the diagnosis what is still missing.
[[gnu::cold]] void readWithPacks(const CRefusal& refusal, const CCatalogue& catalogue,
                                 const CMeaning* target, CDiagnosis& diagnosis) {
    constexpr std::size_t MostPacks = 3;
    const CReadOptions options;
    std::string pack = diagnosis.Packs[0];
    CCatalogue extended = catalogue;
    for (std::size_t packs = 0; packs < MostPacks; ++packs) {
        try {
            extended = withPack(extended, pack);
        } catch (const CError&) {  // a name of the pack is already the program's own
            return;
        }
        const CReading reading =
            CUnitReader(refusal.Text, refusal.UnitBegin, extended, options).read();
        if (reading) {
            return;
        }
        CCatalogueNames names(extended, target);
        CDiagnosis next = diagnose(reading.Refusal, names);
        if (next.Packs.empty()) {
            diagnosis.WithPacks = std::move(next.Readings);
            for (const std::string& name : next.Suggestions) {
                diagnosis.WithPacks.push_back(reading.Refusal.replaced(name));
            }
            return;
        }
        diagnosis.Sentence += "; " + next.Sentence;
        pack = next.Packs[0];
        diagnosis.MorePacks.push_back(pack);
    }
}

[[gnu::cold]] std::string CCatalogueNames::sumOf(const std::vector<CNamedNumber>& values) {
    return exact::sumOf(values,
                        [this](std::string_view name) { return meaningOf(name, m_Catalogue); });
}

}  // namespace

[[gnu::hot]] CReading tryRead(std::string_view text, const CCatalogue& catalogue,
                              const CReadOptions& options) {
    return CUnitReader(text, 0, catalogue, options).read();
}

[[gnu::hot]] CMeaning read(std::string_view text, const CCatalogue& catalogue,
                           const CReadOptions& options) {
    CReading reading = tryRead(text, catalogue, options);
    if (!reading) {
        throw CReadError(diagnose(reading.Refusal, catalogue));
    }
    return *std::move(reading.Meaning);
}

[[gnu::cold]] std::string notationOf(std::string_view text, const CCatalogue& catalogue,
                                     const CReadOptions& options) {
    const CReading reading = tryRead(text, catalogue, options);
    if (!reading) {
        throw CReadError(diagnose(reading.Refusal, catalogue));
    }
    CCatalogueNames names(catalogue);
    CNamedFactors factors;
    CRefusal refusal;
    parse(text, 0, true, names, factors, refusal);  // it was accepted before
    CUnitsWriter writer;
    for (const CNamedFactor& factor : factors) {
        const std::string name =
            namedInProduct(factor.Name.of(text), factors.isOneName(), catalogue);
        if (name.empty()) {
            return definitionOf(*reading.Meaning);
        }
        if (name != "One") {
            writer.add(name, CExponent(factor.Pow, factor.Root));
        }
    }
    return writer.text();
}

[[gnu::cold]] CDiagnosis diagnose(const CRefusal& refusal, const CCatalogue& catalogue,
                                  const CMeaning* target) {
    CCatalogueNames names(catalogue, target);
    CDiagnosis diagnosis = diagnose(refusal, names);
    if (refusal.Code == eRefusal::OFFSET_IN_PRODUCT) {
        tellDifference(refusal, catalogue, diagnosis);
    }
    if (diagnosis.Readings.empty() && !diagnosis.Packs.empty()) {
        readWithPacks(refusal, catalogue, target, diagnosis);
    }
    return diagnosis;
}

CValueReading tryReadValue(std::string_view text, const CCatalogue& catalogue,
                           const CReadOptions& options) {
    CValueReading result;
    CNumberText number;
    if (!findNumber(text, false, number, result.Refusal)) {
        return result;
    }
    CFraction size;
    try {
        size = CFraction::ofText(number.Size.of(text));
    } catch (const CError&) {
        result.Refusal = {eRefusal::NUMBER_RANGE,
                          text,
                          number.Whole,
                          sentences::NUMBER_TOO_LONG,
                          eReadings::NONE,
                          {},
                          0,
                          nullptr};
        return result;
    }
    CReading unit = CUnitReader(text, number.UnitBegin, catalogue, options).read();
    result.HasDifference = unit.HasDifference;
    result.Notes = unit.Notes;
    result.Unit = {number.UnitBegin, text.size()};
    if (unit) {
        result.Value =
            CValue{number.IsNegative ? -size : std::move(size), *std::move(unit.Meaning)};
    } else {
        result.Refusal = unit.Refusal;
    }
    return result;
}

CValue readValue(std::string_view text, const CCatalogue& catalogue, const CReadOptions& options) {
    CValueReading reading = tryReadValue(text, catalogue, options);
    if (!reading) {
        throw CReadError(diagnose(reading.Refusal, catalogue));
    }
    return *std::move(reading.Value);
}

}  // namespace mensor::exact
