// unit_reader.cpp: parses a text, checks it, and then asks the library for the unit.
//
// The library returns its one object for the product of the text's factors. If the object has the same
// elements as the text, it means what the text means. If not, another unit has the same hash code. The
// dimension of the object may collide in the same way. So the first time, the conversion to the
// dimension is compared with the meaning of the text, too.
#include "mensor_checked/unit_reader.h"

#include <cmath>
#include <new>
#include <utility>

#include "mensor/ProductUnit.h"
#include "mensor/RegistrationBound.h"
#include "mensor_checked/Elements.h"
#include "mensor_checked/Faults.h"
#include "mensor_checked/Meaning.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Parsing.h"
#include "mensor_checked/ReadingCache.h"
#include "mensor_checked/Rounding.h"
#include "mensor_checked/words.h"
#include "mensor_exact/Error.h"

namespace mensor::checked {

namespace {

using exact::CExponent;

// Added to refusals of units that have a meaning but no object.
constexpr const char* OtherWay =
    "; its values convert by checked::readMeaning and checked::converter";

class CReader {
public:
    /// With `makesUnits` the units of all names are made, as read() needs them.
    CReader(std::string_view text, const CReadOptions& options, bool makesUnits)
        : m_Text(text), m_Options(options) {
        CParsed parsed = checked::parsed(text, options, makesUnits);
        m_Factors = std::move(parsed.Factors);
        m_Notes = std::move(parsed.Notes);
    }

    CReading read(bool isKept) {
        meaning();
        requireRange();
        // A single name gives its own unit, also if that unit is a power.
        const CUnitPtr unit = isAlone() ? m_Factors[0].Unit : product();
        CReadingCache& cache = CReadingCache::instance(m_Options);
        if (!cache.isSound(unit)) {
            checkConversion(unit);
            cache.setSound(unit);
        }
        if (isKept || cache.isWorth(m_Text)) {
            store(unit, isKept);
        }
        return {unit, std::nullopt, std::move(m_Notes)};
    }

    const CMeaning& meaning() {
        checkScales();
        return m_Meaning = calculate();
    }

    std::vector<std::string> notes() { return std::move(m_Notes); }

private:
    bool isAlone() const {
        return m_Factors.size() == 1 && m_Factors[0].Pow == 1 && m_Factors[0].Root == 1;
    }

    // An offset unit keeps its offset only if it is the whole text. In a product only its differences
    // make sense.
    void checkScales() {
        const bool isAlone = this->isAlone();
        for (CNamedUnit& factor : m_Factors) {
            if (factor.HasOffset && !isAlone) {
                takeDifference(factor, nameOf(factor));
            } else if (factor.IsPrefixed) {
                const std::string name = nameOf(factor);
                checkPrefixedOffset(factor, name, *prefixedOffset(name, factor.Unit));
            }
        }
    }

    void takeDifference(CNamedUnit& factor, const std::string& name) {
        const CUnitPtr difference = factor.Unit ? differenceOf(factor.Unit) : nullptr;
        if (!m_Options.Differences || (factor.Unit && !difference)) {
            CDiagnosis diagnosis = diagnose(
                eRefusal::OFFSET_IN_PRODUCT, m_Text, factor.Name,
                quoted(name) + " is a scale with its own zero and cannot be part of a product; " +
                    wordsOnDifference(factor, difference));
            if (difference && difference != factor.Unit) {
                addReadings(replaced(factor.Name, difference->toStdString()), diagnosis);
            }
            throw Refused{std::move(diagnosis)};
        }
        factor.Unit = difference;
        if (factor.Everyday) {
            factor.Everyday = factor.Everyday->difference();
        }
        m_Notes.push_back(
            quoted(name) + " is read as a difference, " +
            inWords(factor.Everyday ? *factor.Everyday : meaningOf(difference).difference()));
    }

    // A name of the pack EVERYDAY has no unit if only the meaning is asked for.
    static std::string wordsOnDifference(const CNamedUnit& factor, const CUnitPtr& difference) {
        return difference == factor.Unit
                   ? "the option Differences (--differences) reads it as a difference"
               : !difference ? "there is no unit for its differences"
                             : "for differences write " + describe(difference);
    }

    // Adds `text` to the corrections. If the reader refuses it, adds the corrections of `text`.
    void addReadings(const std::string& text, CDiagnosis& diagnosis) const {
        try {
            CReader(text, m_Options, false).checkScales();
            diagnosis.Readings.push_back(text);
        } catch (const Refused& refused) {
            const std::vector<std::string>& readings = refused.Diagnosis.Readings;
            diagnosis.Readings.insert(diagnosis.Readings.end(), readings.begin(), readings.end());
        }
    }

    void checkPrefixedOffset(const CNamedUnit& factor, const std::string& name,
                             const CPrefixedOffset& prefixed) {
        const std::string size = meaningInWords(factor.Unit);
        const bool isAmbiguous =
            !isAlone() && unitNamed(prefixed.Prefix);  // in "W/m°C", "m" may be the metre or milli
        if (m_Options.Differences && !isAmbiguous) {
            m_Notes.push_back(quoted(name) + " is read as a difference, " + size);
            return;
        }
        CDiagnosis diagnosis = diagnose(eRefusal::PREFIXED_OFFSET, m_Text, factor.Name,
                                        quoted(name) + " would be read without the zero of " +
                                            quoted(prefixed.Name) + ", as " + size);
        const CUnitPtr difference = differenceOf(unitNamed(prefixed.Name));
        if (isAmbiguous && difference) {
            addReadings(replaced(factor.Name,
                                 "(" + prefixed.Prefix + "·" + difference->toStdString() + ")"),
                        diagnosis);
        }
        for (const std::string& other : namesOf(factor.Unit)) {
            if (!prefixedOffset(other, factor.Unit)) {
                addReadings(replaced(factor.Name, other), diagnosis);
            }
        }
        throw Refused{std::move(diagnosis)};
    }

    // Returns what the text means, from its factors alone.
    CMeaning calculate() const {
        CMeaning product;
        for (const CNamedUnit& factor : m_Factors) {
            try {
                const CMeaning unit = factor.Everyday ? *factor.Everyday : meaningOf(factor.Unit);
                if (isAlone()) {
                    return unit;
                }
                product = product * unit.difference().power(CExponent(factor.Pow, factor.Root));
            } catch (const exact::CError& error) {
                refuseMeaning(factor, error);
            }
        }
        return product;
    }

    [[noreturn]] void refuseMeaning(const CNamedUnit& factor, const exact::CError& error) const {
        if (error.code() == exact::eError::EXPONENT_RANGE) {
            refuse(eRefusal::EXPONENT_RANGE, factor.Name,
                   "the exponents of " + quoted(nameOf(factor)) + " add up to more than 99");
        }
        refuse(eRefusal::FACTOR_RANGE, isAlone() ? factor.Name : whole(),
               std::string("the size of this unit cannot be computed: ") + error.what());
    }

    void requireRange() const {
        if (!std::isnormal(m_Meaning.factor().toDouble())) {
            refuse(eRefusal::FACTOR_RANGE, whole(),
                   "the size of this unit is beyond the range of double");
        }
    }

    CUnitPtr product() {
        std::vector<CElement> elements;
        for (const CNamedUnit& factor : m_Factors) {
            try {
                multiplyInto(elements, factor.Unit, CExponent(factor.Pow, factor.Root));
            } catch (const exact::CError& error) {
                refuseMeaning(factor, error);
            }
        }
        CUnitPtr unit = build(elements);
        checkIdentity(unit, elements);
        return unit;
    }

    // Builds the product of all elements in one step. The library's parser multiplies them one by one,
    // and an intermediate product may have the hash code of another unit: 1/V and s/m are one unit, so
    // "mV/V" would become mV·s/m.
    static CUnitPtr build(const std::vector<CElement>& elements) {
        std::vector<CUnitRationalPower> factors;
        factors.reserve(elements.size());
        for (const CElement& element : elements) {
            if (!element.Exponent.isZero()) {
                factors.emplace_back(element.Unit, element.Exponent.numerator(),
                                     element.Exponent.denominator());
            }
        }
        return CProductUnit::getInstance(factors, {});
    }

    void store(const CUnitPtr& unit, bool isKept) const {
        if (m_Factors.empty()) {
            return;  // an option decides whether "" is a unit, so the cache must not answer
        }
        CReadingCache::CEntry entry{std::string(m_Text),  {},      true,  unit,
                                    unit->getDimension(), m_Notes, isKept};
        for (const CNamedUnit& factor : m_Factors) {
            entry.Names.emplace_back(nameOf(factor), factor.Named);
            entry.AreExact = entry.AreExact && factor.IsExact;
        }
        CReadingCache::instance(m_Options).store(std::move(entry));
    }

    // Products that differ only in where the prefixes are have the same identity: N·mm may come as mN·m.
    // Such a unit is accepted, with a note.
    void checkIdentity(const CUnitPtr& unit, const std::vector<CElement>& elements) {
        std::vector<CElement> given;
        try {
            multiplyInto(given, unit, 1);
        } catch (const exact::CError&) {  // exponents that no text has
            refuseCollision(unit, std::nullopt);
        }
        if (haveSameElements(given, elements)) {
            return;
        }
        const std::optional<CMeaning> other = tryMeaningOf(unit);
        if (!other || !areSame(*other, m_Meaning, unit) ||
            !haveSameElements(systemElements(given), systemElements(elements))) {
            refuseCollision(unit, other);
        }
        m_Notes.push_back(quoted(slice(whole())) + " is the same object as " + describe(unit) +
                          " here, and is written so");
    }

    [[noreturn]] void refuseCollision(const CUnitPtr& unit,
                                      const std::optional<CMeaning>& other) const {
        std::string sentence =
            quoted(slice(whole())) + " is the same object as " + describe(unit) + " here";
        sentence += other == m_Meaning ? ", which means the same but is another unit"
                                       : ": it would mean " + meaningInWords(unit) +
                                             " in place of " + inWords(m_Meaning);
        refuseObject(eRefusal::COLLISION, std::move(sentence),
                     other ? other->toString() : meaningInWords(unit));
    }

    // Throws Refused unless the library converts the unit by its meaning.
    void checkConversion(const CUnitPtr& unit) const {
        const auto fault = faultOf(unit, m_Meaning);
        if (!fault) {
            return;
        }
        if (!fault->Dimension) {
            refuse(eRefusal::FACTOR_RANGE, whole(),
                   "the library would convert " + quoted(slice(whole())) + " as " +
                       quoted(fault->Known) + " in place of " + inWords(m_Meaning) + OtherWay);
        }
        refuseObject(eRefusal::DIMENSION_COLLISION,
                     "the dimension of " + quoted(slice(whole())) + " is the same object as " +
                         describe(fault->Dimension) + " here: it would count as " +
                         quoted(fault->Known) + " in place of " + inWords(m_Meaning),
                     fault->Known);
    }

    [[noreturn]] void refuseObject(eRefusal code, std::string sentence,
                                   const std::string& other) const {
        CDiagnosis diagnosis = diagnose(code, m_Text, whole(), std::move(sentence) + OtherWay);
        diagnosis.Readings = {m_Meaning.toString(), other};
        throw Refused{std::move(diagnosis)};
    }

    [[noreturn]] void refuse(eRefusal code, CSpan span, const std::string& sentence) const {
        throw Refused{diagnose(code, m_Text, span, sentence)};
    }

    CSpan whole() const { return {0, m_Text.size()}; }

    std::string slice(CSpan span) const {
        return std::string(m_Text.substr(span.Begin, span.End - span.Begin));
    }

    std::string nameOf(const CNamedUnit& factor) const { return slice(factor.Name); }

    // Returns the text with `words` in place of `span`.
    std::string replaced(CSpan span, const std::string& words) const {
        return slice({0, span.Begin}) + words + slice({span.End, m_Text.size()});
    }

    const std::string_view m_Text;
    const CReadOptions& m_Options;
    std::vector<CNamedUnit> m_Factors;
    std::vector<std::string> m_Notes;
    CMeaning m_Meaning;
};

}  // namespace

// Returns what `read` returns, or the refusal that it throws. The caller holds the lock.
template <class Outcome, class Read>
Outcome readOrRefuse(std::string_view text, Read read) {
    Outcome outcome;
    try {
        return read();
    } catch (Refused& refused) {
        outcome.Refusal = std::move(refused.Diagnosis);
    } catch (const CTooManyUnits&) {
        outcome.Refusal = diagnose(eRefusal::LIMIT_REACHED, text, {0, text.size()},
                                   "this unit is new, and no more units may be registered");
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {
        outcome.Refusal = diagnose(eRefusal::REFUSED_BY_LIBRARY, text, {0, text.size()},
                                   std::string("the library refuses this unit: ") + e.what());
    }
    return outcome;
}

CReading read(std::string_view text, const CReadOptions& options, bool isKept) {
    if (!isKept) {
        if (const CReadingCache::CEntry* known = CReadingCache::instance(options).find(text)) {
            return {known->Unit, std::nullopt, known->Notes};
        }
    }
    return readOrRefuse<CReading>(text, [&] { return CReader(text, options, true).read(isKept); });
}

CMeaningReading readForMeaning(std::string_view text, const CReadOptions& options) {
    return readOrRefuse<CMeaningReading>(text, [&] {
        CReader reader(text, options, false);
        CMeaning meaning = reader.meaning();
        return CMeaningReading{std::move(meaning), std::nullopt, reader.notes()};
    });
}

}  // namespace mensor::checked
