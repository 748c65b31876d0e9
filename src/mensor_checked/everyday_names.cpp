#include "mensor_checked/everyday_names.h"

#include <unordered_map>
#include <utility>

#include "mensor_checked/unit_reader.h"
#include "mensor_exact/Definitions.h"
#include "mensor_exact/Spelling.h"

namespace mensor::checked {

namespace {

// Never destroyed: threads and the statics of clients may still read units while the process ends.
struct CEverydayNames {
    MakeUnit Make = nullptr;
    exact::CCatalogue Catalogue = exact::CCatalogue::builtIn().with(exact::ePack::EVERYDAY);
    std::unordered_map<std::string, CUnitPtr> Units;
    std::unordered_map<const CUnit*, std::string> NamesOfUnits;
};

CEverydayNames* everydayNames = nullptr;

// Returns the name in units that the registry may know: "kΩ" for "kOhm". `name` is one of the pack.
std::string plainText(std::string_view name) {
    const std::optional<exact::CDefinition> row = everydayNames->Catalogue.find(name);
    if (row && row->Pack == exact::ePack::EVERYDAY) {
        return row->Text;
    }
    return exact::everydayWord(name)->text();
}

CUnitPtr make(std::string_view name, std::string& fault) {
    const CMeaning meaning = *everydayMeaning(name);
    const std::string text = plainText(name);
    const bool hasNumber = text.empty() || (text[0] >= '0' && text[0] <= '9');
    const CUnitPtr unit = hasNumber ? nullptr : read(text, {}, false).Unit;
    const std::optional<CMeaning> found = unit ? tryMeaningOf(unit) : std::nullopt;
    return found && *found == meaning ? unit : everydayNames->Make(meaning, fault);
}

}  // namespace

void readEverydayNames(MakeUnit make) {
    if (everydayNames == nullptr) {
        everydayNames = new CEverydayNames;
        everydayNames->Make = make;
    }
}

std::optional<CMeaning> everydayMeaning(std::string_view name) {
    if (everydayNames == nullptr) {
        return std::nullopt;
    }
    const exact::CCatalogue& catalogue = everydayNames->Catalogue;
    const std::optional<exact::ePack> pack = catalogue.packOf(name);
    if (pack == exact::ePack::EVERYDAY) {
        return catalogue.meaning(name);
    }
    return exact::everydayWord(name) && !pack ? exact::tryRead(name, catalogue).Meaning
                                              : std::nullopt;
}

CUnitPtr everydayUnit(std::string_view name, std::string& fault) {
    const auto known = everydayNames->Units.find(std::string(name));
    if (known != everydayNames->Units.end()) {
        return known->second;
    }
    CUnitPtr unit = make(name, fault);
    if (!unit) {
        return unit;
    }
    everydayNames->Units.emplace(name, unit);
    everydayNames->NamesOfUnits.emplace(unit.get(), name);
    return unit;
}

std::string everydayNameOf(const CUnitPtr& unit) {
    if (everydayNames == nullptr) {
        return {};
    }
    const auto known = everydayNames->NamesOfUnits.find(unit.get());
    return known == everydayNames->NamesOfUnits.end() ? std::string() : known->second;
}

void addEverydayNamesTo(exact::CNearestNames& nearest) {
    if (everydayNames == nullptr) {
        return;
    }
    everydayNames->Catalogue.forEachName([&](std::string_view name, exact::ePack pack) {
        if (pack == exact::ePack::EVERYDAY) {
            nearest.add(name);
        }
        return true;
    });
}

}  // namespace mensor::checked
