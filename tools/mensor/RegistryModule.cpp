// The module registry.so, through which the command mensor calls the library and its companion.
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include <mensor/NonSI.h>
#include <mensor/Unit.h>
#include <mensor_checked/Meaning.h>
#include <mensor_checked/OwnUnits.h>
#include <mensor_checked/Packs.h>
#include <mensor_checked/Reading.h>

#include "Registry.h"

namespace {

using mensor::CUnit, mensor::CUnitPtr;
using mensor::exact::CDiagnosis, mensor::exact::CReadOptions, mensor::exact::ePack;

// Returns the text of a unit. A scaled unit without a label has none, so its meaning is returned instead.
std::string textOf(const CUnitPtr& unit, const std::optional<mensor::exact::CMeaning>& meaning) {
    try {
        return unit->toStdString();
    } catch (const std::exception&) {
        return meaning ? meaning->toString() : "a unit without an exact meaning";
    }
}

class CLibraryRegistry final : public CRegistry {
public:
    // The library registers the psi only on this call.
    CLibraryRegistry() { mensor::NonSI::Psi(); }

    std::optional<std::string> addPack(ePack pack) override {
        try {
            mensor::checked::registerPack(*mensor::checked::packNamed(nameOf(pack)));
        } catch (const mensor::checked::CIdentityError& error) {
            return error.what();
        }
        return std::nullopt;
    }

    std::vector<mensor::exact::CLineFinding> addDefinitions(const std::string& text) override {
        std::vector<mensor::exact::CLineFinding> findings;
        for (const auto& finding : mensor::checked::tryDefineUnits(text).Findings) {
            findings.push_back({finding.Line, finding.Refusal});
        }
        return findings;
    }

    std::optional<CDiagnosis> refusalOf(const std::string& text,
                                        const CReadOptions& options) override {
        return mensor::checked::tryReadUnit(text, options).Refusal;
    }

    CLibraryAnswer ask(const std::string& text, const CReadOptions& options) override {
        const mensor::checked::CReading reading = mensor::checked::tryReadUnit(text, options);
        CLibraryAnswer answer;
        answer.Checked = reading.Refusal;
        try {
            const CUnitPtr unit = CUnit::fromString(text);
            answer.Meaning = mensor::checked::tryMeaningOf(unit);
            answer.Unit = textOf(unit, answer.Meaning);
            answer.IsSame = unit == reading.Unit;
        } catch (const std::exception& e) {
            answer.Refusal = e.what();
        }
        return answer;
    }
};

}  // namespace

extern "C" CRegistry* mensorToolRegistry();
extern "C" __attribute__((visibility("default"))) CRegistry* mensorToolRegistry() {
    static CLibraryRegistry Instance;
    return &Instance;
}
