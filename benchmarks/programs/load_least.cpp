// load_least.cpp: does only the work that any library must do to have the units of mensor in memory
// when it is loaded. It makes as many objects of the same sizes, enters them in maps under their names,
// and frees them at exit. It computes nothing: no names, no comparisons of units, no chains of
// converters.
#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "programs/memory.h"

namespace {

constexpr int Units = 652;
constexpr int Maps = 4;  // unit to label and back, unit to number, unit to dimension

struct CStep {
    virtual ~CStep() = default;
    std::array<std::size_t, 3> Fields = {1, 2, 3};
};

struct CEntry {
    virtual ~CEntry() = default;
    std::array<std::size_t, 23> Fields = {1, 2, 3};
    std::shared_ptr<CStep> Steps[2];  // the unit's converter and its inverse
};

struct CTables {
    std::vector<std::shared_ptr<CEntry>> All;
    std::map<std::string, std::shared_ptr<CEntry>> ByName;
    std::map<const CEntry*, std::string> Others[Maps - 1];

    CTables() {
        for (int i = 0; i < Units; ++i) {
            auto entry = std::make_shared<CEntry>();
            for (std::shared_ptr<CStep>& step : entry->Steps) {
                step = std::make_shared<CStep>();
            }
            const std::string name = "u" + std::to_string(i);
            ByName.emplace(name, entry);
            for (auto& other : Others) {
                other.emplace(entry.get(), name);
            }
            All.push_back(std::move(entry));
        }
    }
};

const CTables tables;

}  // namespace

int main(int argc, char**) {
    if (argc > 1) {
        printMemory();
    }
    return tables.All.size() == Units ? 0 : 1;
}
