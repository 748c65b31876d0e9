#include "mensor_checked/Parsing.h"

#include <cstdint>
#include <utility>

#include "mensor_checked/Names.h"
#include "mensor_checked/PlannedNames.h"
#include "mensor_checked/Rounding.h"
#include "mensor_checked/everyday_names.h"
#include "mensor_checked/words.h"
#include "mensor_exact/Definitions.h"
#include "mensor_exact/Parser.h"

namespace mensor::checked {

namespace {

// Returns the names of all packs. US and IMPERIAL have no name that is a trap.
const exact::CCatalogue& allPackNames() {
    static const exact::CCatalogue& All = *new exact::CCatalogue(exact::CCatalogue::builtIn()
                                                                     .with(exact::ePack::CUSTOMARY)
                                                                     .with(exact::ePack::SCIENCE)
                                                                     .with(exact::ePack::OFFSETS)
                                                                     .with(exact::ePack::COUNTING)
                                                                     .with(exact::ePack::EVERYDAY));
    return All;
}

// Returns the meaning of a name that is not in the registry: of one that a table plans, or of the pack EVERYDAY.
std::optional<CMeaning> meaningWithoutUnit(std::string_view name) {
    std::optional<CMeaning> planned = plannedMeaning(name);
    return planned ? planned : everydayMeaning(name);
}

std::optional<CMeaning> meaningOfName(std::string_view name) {
    const CName* const known = knownName(name);
    return known != nullptr ? tryMeaningOf(known->Unit) : meaningWithoutUnit(name);
}

// Finds names in the registry and in the pack EVERYDAY, and numbers the units that it has found from 1.
class CRegistryNames final : public exact::CResolver {
public:
    std::uint32_t find(std::string_view name) override {
        CNamedUnit factor{nullptr, nullptr, {}, true, false, false, std::nullopt};
        if (const CName* const known = knownName(name)) {
            factor.Unit = factor.Named = known->Unit;
            factor.IsExact = known->IsExact;
            factor.HasOffset = known->HasOffset;
            factor.IsPrefixed = known->Prefixed.has_value();
        } else if (!isLateName(name)) {
            factor.Everyday = meaningWithoutUnit(name);
            if (!factor.Everyday) {
                return None;
            }
            factor.IsExact = false;
            factor.HasOffset = !factor.Everyday->offset().isZero();
        }
        m_Found.push_back(std::move(factor));
        return static_cast<std::uint32_t>(m_Found.size());
    }

    bool knows(std::string_view name) override {
        return knownName(name) != nullptr || meaningWithoutUnit(name).has_value();
    }

    // The registry does not record which labels the program added. A name is the program's own if
    // its meaning differs from that in the table.
    bool isOwn(std::string_view name) override {
        const CName* const known = knownName(name);
        if (known == nullptr) {
            return plannedMeaning(name).has_value();
        }
        const std::optional<CMeaning> row = allPackNames().meaning(name);
        return !row || !means(known->Unit, *row);
    }

    void addNamesTo(exact::CNearestNames& nearest) override {
        checked::addNamesTo(nearest);
        addPlannedNamesTo(nearest);
    }

    bool offers(exact::ePack) override { return true; }

    // Checks names, form and offsets only. Whether the library has an object for the unit does not matter.
    exact::eFit fit(std::string_view text, std::size_t begin, exact::CRefusal& refusal) override {
        CRegistryNames names;
        exact::CNamedFactors factors;
        if (!exact::parse(text, begin, false, names, factors, refusal)) {
            return exact::eFit::REFUSED;
        }
        for (const exact::CNamedFactor& factor : factors) {
            if (!factors.isOneName() && names.m_Found[factor.Unit - 1].HasOffset) {
                refusal = {eRefusal::OFFSET_IN_PRODUCT, text, factor.Name, "",
                           exact::eReadings::NONE,      {},   begin,       nullptr};
                return exact::eFit::REFUSED;
            }
        }
        return exact::eFit::READ;
    }

    void addWords(const exact::CRefusal& refusal, std::vector<std::string>& words) override {
        const CName* const known =
            refusal.Code == eRefusal::OFFSET_IN_PRODUCT ? knownName(refusal.token()) : nullptr;
        const CUnitPtr difference = known != nullptr ? differenceOf(known->Unit) : nullptr;
        if (difference && difference != known->Unit) {
            words.push_back(difference->toStdString());
        }
    }

    std::string sumOf(const std::vector<exact::CNamedNumber>& values) override {
        return exact::sumOf(values, meaningOfName);
    }

    // Returns the factors, with their exponents. m_Found has the same order.
    std::vector<CNamedUnit> take(const exact::CNamedFactors& factors, std::string_view text,
                                 bool makesUnits) {
        for (const exact::CNamedFactor& factor : factors) {
            CNamedUnit& found = m_Found[factor.Unit - 1];
            found.Name = factor.Name;
            found.Pow = factor.Pow;
            found.Root = factor.Root;
            const std::string_view name = factor.Name.of(text);
            if (!found.Everyday && !found.Unit) {  // made when the whole text has been parsed
                found.Unit = found.Named = unitNamed(name);
            } else if (found.Everyday && makesUnits) {
                found.Unit = found.Named = makeEveryday(text, factor.Name);
            }
        }
        return std::move(m_Found);
    }

private:
    static CUnitPtr makeEveryday(std::string_view text, CSpan name) {
        std::string fault;
        CUnitPtr unit = everydayUnit(name.of(text), fault);
        if (!unit) {
            throw Refused{diagnose(eRefusal::COLLISION, text, name,
                                   quoted(std::string(name.of(text))) +
                                       " cannot be made: " + fault +
                                       "; its values convert by checked::readMeaning and "
                                       "checked::converter")};
        }
        return unit;
    }

    std::vector<CNamedUnit> m_Found;
};

}  // namespace

CDiagnosis diagnosisOf(const exact::CRefusal& refusal) {
    CRegistryNames names;
    return exact::diagnose(refusal, names);
}

std::optional<CDiagnosis> formFault(std::string_view text, std::size_t begin,
                                    const CReadOptions& options) {
    CRegistryNames names;
    exact::CNamedFactors factors;
    exact::CRefusal refusal;
    if (exact::parse(text, begin, options.Dimensionless, names, factors, refusal)) {
        return std::nullopt;
    }
    return diagnosisOf(refusal);
}

CParsed parsed(std::string_view text, const CReadOptions& options, bool makesUnits) {
    CRegistryNames names;
    exact::CNamedFactors factors;
    exact::CRefusal refusal;
    exact::CNotes notes;
    if (!exact::parse(text, 0, options.Dimensionless, names, factors, refusal) ||
        !exact::takeNotes(text, 0, factors, names, options.Strict, notes, refusal)) {
        throw Refused{exact::diagnose(refusal, names)};
    }
    CParsed result;
    for (const exact::CNote& note : notes) {
        result.Notes.push_back(note.words(text));
    }
    result.Factors = names.take(factors, text, makesUnits);
    return result;
}

}  // namespace mensor::checked
