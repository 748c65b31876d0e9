#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <mensor_exact/Choosing.h>
#include <mensor_exact/Conversion.h>
#include <mensor_exact/Definitions.h>

#include "Commands.h"
#include "Display.h"

namespace {

using namespace mensor::exact;

struct CListed {
    CMeaning Meaning;
    std::vector<std::string> OtherNames;
};

// Returns all units by their first names. Names with the same meaning and the same English name, such as ml
// and mL, belong to one unit.
std::map<std::string, CListed> namedUnits(const CCatalogue& catalogue) {
    std::map<std::string, CListed> listed;
    std::map<std::string, std::string> firstNames;  // by English name
    for (const CDefinition& definition : catalogue.definitions()) {
        const std::string name(definition.Name);
        CMeaning meaning = *catalogue.meaning(name);
        if (!definition.English.empty()) {
            const auto [first, isNew] = firstNames.emplace(definition.English, definition.Name);
            if (!isNew && listed.at(first->second).Meaning == meaning) {
                listed.at(first->second).OtherNames.push_back(name);
                continue;
            }
        }
        listed.emplace(name, CListed{std::move(meaning), {}});
    }
    return listed;
}

void listPacks(CReport& report) {
    for (const ePack pack : allPacks()) {
        if (report.isJson()) {
            report.line(CJsonObject()
                            .text("pack", nameOf(pack))
                            .text("description", descriptionOf(pack))
                            .toString());
        } else {
            report.line(padded(nameOf(pack), 11) + descriptionOf(pack));
        }
    }
}

void listAll(const CCatalogue& catalogue, CReport& report) {
    for (const auto& [name, entry] : namedUnits(catalogue)) {
        if (report.isJson()) {
            std::vector<std::string> others;
            for (const std::string& other : entry.OtherNames) {
                others.push_back(jsonText(other));
            }
            report.line(CJsonObject()
                            .text("unit", name)
                            .raw("meaning", jsonOf(entry.Meaning))
                            .raw("alsoRead", jsonArray(others))
                            .toString());
            continue;
        }
        std::string line = padded(name, 15) + " " + entry.Meaning.toString();
        for (std::size_t i = 0; i < entry.OtherNames.size(); ++i) {
            line += (i == 0 ? "   also " : ", ") + entry.OtherNames[i];
        }
        report.line(line);
    }
}

void listCompatible(const CTarget& target, const CCatalogue& catalogue, CReport& report) {
    for (const CChoice& choice : choicesFor(target.Meaning, catalogue)) {
        const std::string size =
            CConversion::ofDifferences(choice.Meaning, target.Meaning).convertText("1");
        const std::string name(choice.Name);
        if (report.isJson()) {
            report.line(CJsonObject()
                            .text("unit", name)
                            .raw("size", size)
                            .text("in", target.Text)
                            .toString());
        } else {
            report.line(padded(name, 15) + " " + size + " " + target.Text);
        }
    }
}

}  // namespace

void list(const CArguments& arguments, const CUnits& units, CReport& report) {
    if (arguments.Operands.empty()) {
        listAll(units.catalogue(), report);
    } else if (arguments.Operands[0] == "packs") {
        listPacks(report);
    } else if (const auto target = readTarget(arguments.Operands[1], arguments, units, report)) {
        listCompatible(*target, units.catalogue(), report);
    }
}
