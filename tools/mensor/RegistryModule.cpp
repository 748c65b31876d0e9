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

class CLibraryRegistry final : public CRegistry {
public:
    // The library registers the psi only on this call.
    CLibraryRegistry() { mensor::NonSI::Psi(); }

    void addPack(ePack pack) override {
        mensor::checked::registerPack(*mensor::checked::packNamed(nameOf(pack)));
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
            answer.Unit = unit->toStdString();
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
