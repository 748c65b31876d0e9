// Units.h: the catalogue of units of one run.
#ifndef MENSOR_TOOL_UNITS_H
#define MENSOR_TOOL_UNITS_H

#include <string>
#include <vector>

#include <mensor_exact/Definitions.h>

#include "Arguments.h"
#include "Report.h"

/// The catalogue of one run: the built-in one, everyday spellings, the packs and the files of the command
/// line.
class CUnits {
public:
    /// Reports refused lines and packs.
    /// @throws std::runtime_error  "cannot read "units.txt": there is no such file".
    CUnits(const CArguments& arguments, CReport& report);

    const mensor::exact::CCatalogue& catalogue() const { return m_Catalogue; }

    /// Registers the same units in the library's registry. If there is a report, reports refused units.
    /// Returns whether all units were accepted.
    /// @throws std::runtime_error  the registry cannot be loaded.
    bool registerAll(CReport* report) const;

private:
    struct CFile {
        std::string Name;
        std::string Text;
    };

    void addPacks(CReport& report);
    void addFile(const std::string& name, CReport& report);

    mensor::exact::CCatalogue m_Catalogue =
        mensor::exact::CCatalogue::builtIn().with(mensor::exact::ePack::EVERYDAY);
    const std::vector<mensor::exact::ePack> m_Packs;
    std::vector<CFile> m_Files;
};

#endif  // MENSOR_TOOL_UNITS_H
