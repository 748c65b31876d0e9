#include "mensor_exact/Choosing.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "mensor_exact/Spelling.h"

namespace mensor::exact {

namespace {

CFactor powerOfTen(int power) { return CFactor(CFraction(10)).power(power); }

// Returns true if the prefix is a power of 1000 and the catalogue has that multiple of `root` under the
// prefixed name.
bool isPrefixedForm(const CPrefix& prefix, std::string_view root, const CMeaning& rootMeaning,
                    const CCatalogue& catalogue) {
    if (prefix.Power % 3 != 0) {
        return false;
    }
    const std::optional<CMeaning> meaning =
        catalogue.meaning(std::string(prefix.Symbol).append(root));
    return meaning && *meaning == rootMeaning.scaled(powerOfTen(prefix.Power));
}

// A name, split into its prefix and the rest.
struct CPrefixedName {
    std::string_view Root;
    int Power = 0;  // the prefix's exponent of ten
};

CPrefixedName takeApart(std::string_view name, const CMeaning& meaning,
                        const CCatalogue& catalogue) {
    for (const CPrefix& prefix : Prefixes) {
        const std::size_t length = prefix.Symbol.size();
        if (name.size() <= length || name.substr(0, length) != prefix.Symbol) {
            continue;
        }
        const std::optional<CMeaning> root = catalogue.meaning(name.substr(length));
        if (root && meaning == root->scaled(powerOfTen(prefix.Power))) {
            return {name.substr(length), prefix.Power};
        }
    }
    return {name, 0};
}

bool isAtLeastOne(const CFraction& size) { return !(size - CFraction(1)).isNegative(); }

}  // namespace

std::vector<CChoice> choicesFor(const CMeaning& meaning, const CCatalogue& catalogue) {
    std::set<std::pair<double, std::string_view>> found;
    catalogue.forEachName([&](std::string_view name, ePack pack) {
        const bool isOtherSpelling =
            pack == ePack::EVERYDAY ||
            (pack == ePack::SI && (respelled(name) != name || isCapitalLitre(name)));
        if (isOtherSpelling) {
            return true;
        }
        const std::optional<CMeaning> other = catalogue.meaning(name);
        if (other->isCompatibleWith(meaning)) {
            found.emplace(other->factor().toDouble(), name);
        }
        return true;
    });
    std::vector<CChoice> choices;
    choices.reserve(found.size());
    for (const auto& [size, name] : found) {
        choices.push_back(CChoice{name, *catalogue.meaning(name)});
    }
    return choices;
}

std::string readableUnit(const CFraction& value, std::string_view unit,
                         const CCatalogue& catalogue) {
    const std::optional<CMeaning> meaning = catalogue.meaning(unit);
    if (!meaning || value.isZero() || !meaning->offset().isZero()) {
        return std::string(unit);
    }
    const CPrefixedName name = takeApart(unit, *meaning, catalogue);
    const CMeaning root = *catalogue.meaning(name.Root);
    const CFraction size = (value.isNegative() ? -value : value) * CFraction(10).power(name.Power);
    const auto isForm = [&](const CPrefix& prefix) {
        return isPrefixedForm(prefix, name.Root, root, catalogue);
    };
    if (std::none_of(std::begin(Prefixes), std::end(Prefixes), isForm)) {
        return std::string(unit);
    }
    std::string smallest;
    const auto suits = [&](std::string_view prefix, int power) {
        smallest = std::string(prefix).append(name.Root);
        return isAtLeastOne(size / CFraction(10).power(power));
    };
    bool isRootTried = false;
    for (const CPrefix& prefix : Prefixes) {  // the largest prefix first
        if (!isRootTried && prefix.Power < 0) {
            isRootTried = true;
            if (suits("", 0)) {
                return smallest;
            }
        }
        if (isForm(prefix) && suits(prefix.Symbol, prefix.Power)) {
            return smallest;
        }
    }
    return smallest;
}

}  // namespace mensor::exact
