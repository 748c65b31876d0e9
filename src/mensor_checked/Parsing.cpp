#include "mensor_checked/Parsing.h"

#include <cstdint>

#include "mensor/UnitFormat.h"
#include "mensor_checked/Names.h"
#include "mensor_exact/Parser.h"

namespace mensor::checked {

namespace {

// Finds names in the registry, and numbers the units that it has found from 1.
class CRegistryNames final : public exact::CResolver {
public:
    std::uint32_t find(std::string_view name) override {
        const CName* const known = knownName(name);
        if (known == nullptr && !isLateName(name)) {
            return None;
        }
        // take() makes the units that the library does not have yet, after the whole text has been parsed.
        m_Found.push_back(known != nullptr ? CFactor{known->Unit,
                                                     known->Unit,
                                                     {},
                                                     known->IsExact,
                                                     known->HasOffset,
                                                     known->Prefixed.has_value()}
                                           : CFactor{nullptr, nullptr, {}, true, false, false});
        return static_cast<std::uint32_t>(m_Found.size());
    }

    bool knows(std::string_view name) override { return knownName(name) != nullptr; }

    // The registry does not tell the labels of a program from those of the library.
    bool isOwn(std::string_view) override { return false; }

    void addNamesTo(exact::CNearestNames& nearest) override { checked::addNamesTo(nearest); }

    // Everyday spellings are no units that a program could register.
    bool offers(exact::ePack pack) override { return pack != exact::ePack::EVERYDAY; }

    // Checks names and form only. Whether the library has an object for the unit does not matter.
    exact::eFit fit(std::string_view text, std::size_t begin, exact::CRefusal& refusal) override {
        CRegistryNames names;
        exact::CNamedFactors factors;
        return exact::parse(text, begin, false, names, factors, refusal) ? exact::eFit::READ
                                                                         : exact::eFit::REFUSED;
    }

    void addWords(const exact::CRefusal&, std::vector<std::string>&) override {}

    std::string sumOf(const std::vector<exact::CNamedNumber>&) override { return {}; }

    // Returns the factors, with their exponents. m_Found has the same order.
    std::vector<CFactor> take(const exact::CNamedFactors& factors, std::string_view text) {
        for (const exact::CNamedFactor& factor : factors) {
            CFactor& found = m_Found[factor.Unit - 1];
            found.Name = factor.Name;
            found.Pow = factor.Pow;
            found.Root = factor.Root;
            if (!found.Unit) {
                found.Unit = found.Named = unitNamed(factor.Name.of(text));
            }
        }
        return std::move(m_Found);
    }

private:
    std::vector<CFactor> m_Found;
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

std::vector<CFactor> factorsOf(std::string_view text, const CReadOptions& options) {
    CRegistryNames names;
    exact::CNamedFactors factors;
    exact::CRefusal refusal;
    if (!exact::parse(text, 0, options.Dimensionless, names, factors, refusal)) {
        throw Refused{exact::diagnose(refusal, names)};
    }
    return names.take(factors, text);
}

}  // namespace mensor::checked
