// names.cpp: parses two texts of the same length under callgrind for each "<KIND> <NUMBER OF NAMES>". One
// has different names, so the product has a factor for each name. The other repeats one name, so the
// product has one factor.
#include <cstddef>
#include <string>
#include <vector>

#include <valgrind/callgrind.h>

#include "mensor/UnitFormat.h"

using namespace mensor;

namespace {

// All names that can be read unchanged, in the order of the table.
std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const auto& [name, unit] : CUnitFormat::names()) {
        bool isRead = !name.empty();
        for (const char_t c : name) {
            isRead = isRead && CUnitFormat::isUnitIdentifierPart(c);
        }
        if (isRead) {
            names.push_back(mensor::toStdString(name));
        }
    }
    return names;
}

void count(const std::string& kind, std::size_t number, const std::string& text) {
    const std::string name = kind + ' ' + std::to_string(number);
    const string_t read(text);
    CALLGRIND_ZERO_STATS;
    CUnit::fromString(read);
    CALLGRIND_DUMP_STATS_AT(name.c_str());
}

// `number` names from the whole table. Another `first` gives other names.
void countBoth(std::size_t first, std::size_t number, const std::string& repeated) {
    static const std::vector<std::string> all = names();
    std::string different, same;
    for (std::size_t i = 0; i < number; ++i) {
        different += all[(first + i * all.size() / number) % all.size()] + '*';
    }
    while (same.size() < different.size()) {
        same += repeated + '*';
    }
    count("different", number, different);
    count("same", number, same);
}

}  // namespace

int main() {
    countBoth(0, 10, "cd");
    countBoth(1, 30, "mol");
    countBoth(2, 100, "lx");
    countBoth(3, names().size(), "kat");
    return 0;
}
