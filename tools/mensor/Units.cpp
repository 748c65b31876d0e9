#include "Units.h"

#include <fstream>
#include <stdexcept>
#include <utility>

#include <mensor_exact/DefinitionFile.h>
#include <mensor_exact/Error.h>

#include "Display.h"
#include "Registry.h"

namespace {

using mensor::exact::CError, mensor::exact::ePack;

std::string contentsOf(const std::string& name) {
    std::ifstream file(name);
    std::string text;
    for (std::string line; std::getline(file, line);) {
        text += line + '\n';
    }
    if (!file.is_open() || file.bad()) {
        throw std::runtime_error(cannotRead(name));
    }
    return text;
}

std::string placeOf(const std::string& file, std::size_t line) {
    return file + ":" + std::to_string(line) + ": ";
}

}  // namespace

CUnits::CUnits(const CArguments& arguments, CReport& report) : m_Packs(arguments.Packs) {
    addPacks(report);
    for (const std::string& file : arguments.UnitFiles) {
        addFile(file, report);
    }
}

void CUnits::addPacks(CReport& report) {
    for (const ePack pack : m_Packs) {
        try {
            if (pack == ePack::US || pack == ePack::IMPERIAL) {
                m_Catalogue = m_Catalogue.with(ePack::CUSTOMARY);
            }
            m_Catalogue = m_Catalogue.with(pack);
        } catch (const CError& error) {
            report.refuse("", "the pack " + quoted(nameOf(pack)) + " is refused: " + error.what());
        }
    }
}

void CUnits::addFile(const std::string& name, CReport& report) {
    m_Files.push_back({name, contentsOf(name)});
    auto file = mensor::exact::tryReadDefinitions(m_Files.back().Text, m_Catalogue, name);
    for (const auto& finding : file.Findings) {
        report.refuse(placeOf(name, finding.Line), finding.Refusal);
    }
    for (const auto& taken : file.Taken) {
        report.note(
            placeOf(name, taken.Line),
            quoted(taken.Name) + " has a new meaning; before, it was " + quoted(taken.Before));
    }
    m_Catalogue = std::move(file.Catalogue);
}

bool CUnits::registerAll(CReport* report) const {
    bool isGood = true;
    registry().addPack(ePack::EVERYDAY);
    for (const ePack pack : m_Packs) {
        registry().addPack(pack);
    }
    for (const CFile& file : m_Files) {
        for (const auto& finding : registry().addDefinitions(file.Text)) {
            isGood = false;
            if (report != nullptr) {
                report->refuse(placeOf(file.Name, finding.Line), finding.Refusal);
            }
        }
    }
    return isGood;
}
