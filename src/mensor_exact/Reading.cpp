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
#include "mensor_exact/UnitsWriter.h"

namespace mensor {
namespace exact {

namespace {

bool hasOffset(const CMeaning& meaning) { return !meaning.offset().isZero(); }

// What a name means in `catalogue`, in any spelling; "One" is the dimensionless unit. Tells the
// catalogue's spelling if it is asked for.
std::optional<CMeaning> meaningOf(std::string_view name, const CCatalogue& catalogue,
                                  std::string* known = nullptr) {
    std::optional<CMeaning> meaning =
        lookUpSpellings(name, [&](std::string_view spelling) -> std::optional<CMeaning> {
            // A program's own "Ml" need not be the megalitre.
            const bool isSmallLitre = name.back() == 'L' && spelling.back() == 'l';
            const bool isAnother = isSmallLitre && catalogue.find(spelling) &&
                                   catalogue.find(spelling)->Pack == ePack::OWN;
            std::optional<CMeaning> found =
                isAnother ? std::optional<CMeaning>() : catalogue.meaning(spelling);
            if (found && known != nullptr) {
                *known = spelling;
            }
            return found;
        });
    if (!meaning && name == "One") {
        meaning.emplace();
    }
    return meaning;
}

// A name that is a prefix and a scale with a zero of its own, as "m°C".
struct CPrefixedScale {
    std::string_view Prefix;
    std::string_view Scale;
    CMeaning Meaning;  // of its differences
};

std::optional<CPrefixedScale> prefixedScale(std::string_view name, const CCatalogue& catalogue) {
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

// Finds names in a catalogue. Numbers what it finds from 2 on: even numbers, and odd ones for the
// differences of a scale behind a prefix.
class CCatalogueNames final : public CResolver {
public:
    explicit CCatalogueNames(const CCatalogue& catalogue) : m_Catalogue(catalogue) {}

    std::uint32_t find(std::string_view name) override {
        std::optional<CMeaning> meaning = meaningOf(name, m_Catalogue);
        const bool isPlain = meaning.has_value();
        if (!isPlain) {
            std::optional<CPrefixedScale> scale = prefixedScale(name, m_Catalogue);
            if (!scale) {
                return None;
            }
            meaning = std::move(scale->Meaning);
        }
        if (m_Count < m_Few.size()) {
            m_Few[m_Count] = std::move(meaning);
        } else {
            m_Many.push_back(*std::move(meaning));
        }
        ++m_Count;
        return static_cast<std::uint32_t>(2 * m_Count + (isPlain ? 0 : 1));
    }

    void addNamesTo(CNearestNames& nearest) override {
        m_Catalogue.forEach([&](const CDefinition& definition) {
            nearest.add(definition.Name);
            return true;
        });
    }

    static bool isPrefixedScale(const CNamedFactor& factor) { return factor.Unit % 2 != 0; }

    CMeaning& meaning(const CNamedFactor& factor) {
        const std::size_t place = factor.Unit / 2 - 1;
        return place < m_Few.size() ? *m_Few[place] : m_Many[place - m_Few.size()];
    }

private:
    const CCatalogue& m_Catalogue;
    std::array<std::optional<CMeaning>, 6> m_Few;  // needs no memory beside the object
    std::vector<CMeaning> m_Many;
    std::size_t m_Count = 0;
};

// Reads the unit that begins at the byte `begin` of a text.
class CUnitReader {
public:
    CUnitReader(std::string_view text, std::size_t begin, const CCatalogue& catalogue,
                const CReadOptions& options)
        : m_Text(text), m_Begin(begin), m_Catalogue(catalogue), m_Options(options) {}

    CReading read() {
        CReading result;
        CCatalogueNames names(m_Catalogue);
        CNamedFactors factors;
        if (!parse(m_Text, m_Begin, m_Options.Dimensionless, names, factors, result.Refusal)) {
            return result;
        }
        const bool isAlone = factors.isOneName();
        for (const CNamedFactor& factor : factors) {
            CMeaning& unit = names.meaning(factor);
            if (CCatalogueNames::isPrefixedScale(factor)) {
                if (!takePrefixedScale(factor.Name, isAlone, result)) {
                    return result;
                }
            } else if (!isAlone && hasOffset(unit)) {
                if (!takeDifference(factor.Name, unit, result)) {
                    return result;
                }
            }
        }
        if (isAlone) {
            result.Meaning = std::move(names.meaning(factors[0]));
        } else {
            multiply(factors, names, result);
        }
        return result;
    }

private:
    // "W/m°C" may be meant as W/(m·K), so the prefix is refused where it is a unit, too.
    bool takePrefixedScale(CSpan name, bool isAlone, CReading& result) const {
        const std::string_view prefix = prefixedScale(name.of(m_Text), m_Catalogue)->Prefix;
        const bool isAmbiguous = !isAlone && meaningOf(prefix, m_Catalogue);
        if (m_Options.Differences && !isAmbiguous) {
            result.HasDifference = true;
            return true;
        }
        const CSpan unit{name.Begin, name.Begin + (isAmbiguous ? prefix.size() : 0)};
        result.Refusal = {eRefusal::PREFIXED_OFFSET,
                          m_Text,
                          name,
                          "\"{}\" is a prefix before a scale with a zero of its own",
                          eReadings::NONE,
                          {unit},
                          m_Begin};
        return false;
    }

    bool takeDifference(CSpan name, CMeaning& unit, CReading& result) const {
        if (!m_Options.Differences) {
            refuse(eRefusal::OFFSET_IN_PRODUCT, name,
                   "\"{}\" counts from a zero of its own and has no place in a product", result);
            return false;
        }
        unit = unit.difference();
        result.HasDifference = true;
        return true;
    }

    void multiply(const CNamedFactors& factors, CCatalogueNames& names, CReading& result) const {
        CMeaning product;
        for (const CNamedFactor& factor : factors) {
            try {
                product.multiplyBy(names.meaning(factor), {factor.Pow, factor.Root});
            } catch (const CError& error) {
                if (error.code() == eError::EXPONENT_RANGE) {
                    refuse(eRefusal::EXPONENT_RANGE, factor.Name,
                           "here the exponents of \"{}\" come together to one beyond 99", result);
                } else {
                    refuse(eRefusal::FACTOR_RANGE, {m_Begin, m_Text.size()},
                           "the exact factor of this unit needs more than 16384 bits", result);
                }
                return;
            }
        }
        result.Meaning = std::move(product);
    }

    void refuse(eRefusal code, CSpan token, const char* sentence, CReading& result) const {
        result.Refusal = {code, m_Text, token, sentence, eReadings::NONE, {}, m_Begin};
    }

    const std::string_view m_Text;
    const std::size_t m_Begin;
    const CCatalogue& m_Catalogue;
    const CReadOptions& m_Options;
};

// The first name of the catalogue with this meaning, empty if there is none.
std::string_view nameOf(const CMeaning& meaning, const CCatalogue& catalogue) {
    std::string_view name;
    catalogue.forEach([&](const CDefinition& definition) {
        name = catalogue.meaning(definition.Name) == meaning ? definition.Name : name;
        return name.empty();
    });
    return name;
}

// The catalogue's name for what `name` is as a factor of a product, or alone. Empty: it has none.
std::string namedInProduct(std::string_view name, bool isAlone, const CCatalogue& catalogue) {
    std::string known(name);
    const std::optional<CMeaning> meaning = meaningOf(name, catalogue, &known);
    if (!meaning) {
        return std::string(nameOf(prefixedScale(name, catalogue)->Meaning, catalogue));
    }
    return isAlone || !hasOffset(*meaning) ? known
                                           : std::string(nameOf(meaning->difference(), catalogue));
}

void tellDifference(const CRefusal& refusal, const CCatalogue& catalogue, CDiagnosis& diagnosis) {
    const std::optional<CMeaning> scale = meaningOf(refusal.token(), catalogue);
    if (!scale) {
        return;
    }
    const CMeaning difference = scale->difference();
    const std::string_view name = nameOf(difference, catalogue);
    diagnosis.Sentence += "; of its differences the unit is \"" +
                          (name.empty() ? difference.toString() : std::string(name)) + "\"";
    if (!name.empty()) {
        diagnosis.Readings = {refusal.replaced(name)};
    }
}

void tellPrefixedScale(const CRefusal& refusal, const CCatalogue& catalogue,
                       CDiagnosis& diagnosis) {
    const std::optional<CPrefixedScale> scale = prefixedScale(refusal.token(), catalogue);
    if (!scale) {
        return;
    }
    const std::string_view prefix = refusal.Pieces[0].of(refusal.Text);  // if it is a unit, too
    const std::string_view unprefixed =
        nameOf(meaningOf(scale->Scale, catalogue)->difference(), catalogue);
    if (!prefix.empty() && !unprefixed.empty()) {
        diagnosis.Readings.push_back(
            refusal.replaced("(" + std::string(prefix) + "·" + std::string(unprefixed) + ")"));
    }
    const std::string_view name = nameOf(scale->Meaning, catalogue);
    if (!name.empty()) {
        diagnosis.Readings.push_back(refusal.replaced(name));
    }
}

}  // namespace

CReading tryRead(std::string_view text, const CCatalogue& catalogue, const CReadOptions& options) {
    return CUnitReader(text, 0, catalogue, options).read();
}

CMeaning read(std::string_view text, const CCatalogue& catalogue, const CReadOptions& options) {
    CReading reading = tryRead(text, catalogue, options);
    if (!reading) {
        throw CReadError(diagnose(reading.Refusal, catalogue));
    }
    return *std::move(reading.Meaning);
}

std::string notationOf(std::string_view text, const CCatalogue& catalogue,
                       const CReadOptions& options) {
    const CReading reading = tryRead(text, catalogue, options);
    if (!reading) {
        throw CReadError(diagnose(reading.Refusal, catalogue));
    }
    CCatalogueNames names(catalogue);
    CNamedFactors factors;
    CRefusal refusal;
    parse(text, 0, true, names, factors, refusal);  // as it was before
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

CDiagnosis diagnose(const CRefusal& refusal, const CCatalogue& catalogue) {
    CCatalogueNames names(catalogue);
    CDiagnosis diagnosis = diagnose(refusal, names);
    if (refusal.Code == eRefusal::OFFSET_IN_PRODUCT) {
        tellDifference(refusal, catalogue, diagnosis);
    } else if (refusal.Code == eRefusal::PREFIXED_OFFSET) {
        tellPrefixedScale(refusal, catalogue, diagnosis);
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
                          "this number is too long or too large",
                          eReadings::NONE,
                          {},
                          0};
        return result;
    }
    CReading unit = CUnitReader(text, number.UnitBegin, catalogue, options).read();
    result.HasDifference = unit.HasDifference;
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

}  // namespace exact
}  // namespace mensor
