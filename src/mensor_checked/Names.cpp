#include "mensor_checked/Names.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "mensor/ProductUnit.h"
#include "mensor/TransformedUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Utf8.h"

namespace mensor {
namespace checked {

namespace {

CUnitPtr lookUp(std::string_view name) { return CUnitFormat::unitFor(std::string(name)); }

std::string_view bytes(const string_t& text) { return {text.data(), text.size()}; }

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// The same characters as the library spells them. These pairs look alike in every font, and Unicode
// calls them equivalent; letters that merely resemble each other are left alone.
std::string respelled(std::string_view name) {
    struct Spelling {
        std::string_view Theirs;
        std::string_view Ours;
    };
    constexpr Spelling Spellings[] = {
        {"\xCE\xBC", "\xC2\xB5"},      // U+03BC Greek mu: the micro sign
        {"\xCE\xA9", "\xE2\x84\xA6"},  // U+03A9 Greek omega: the ohm sign
        {"\xE2\x84\x83", "°C"},        // U+2103 degree Celsius
        {"\xE2\x84\x89", "°F"},        // U+2109 degree Fahrenheit
        {"\xE2\x84\xAA", "K"},         // U+212A kelvin sign
        {"\xE2\x84\xAB", "\xC3\x85"},  // U+212B angstrom sign
    };
    std::string result;
    while (!name.empty()) {
        std::size_t length = 1;
        std::string_view piece = name.substr(0, length);
        for (const Spelling& spelling : Spellings) {
            if (startsWith(name, spelling.Theirs)) {
                length = spelling.Theirs.size();
                piece = spelling.Ours;
                break;
            }
        }
        result += piece;
        name.remove_prefix(length);
    }
    return result;
}

// Whether `name` is the litre's "L", alone or behind a prefix.
bool isLitre(std::string_view name) {
    if (name.empty() || name.back() != 'L') {
        return false;
    }
    name.remove_suffix(1);
    return name.empty() || std::any_of(prefixes().begin(), prefixes().end(),
                                       [&](const CPrefix& p) { return bytes(p.Symbol) == name; });
}

std::u32string codePoints(std::string_view text) {
    std::u32string result;
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size(); at += length) {
        result += decode(text.substr(at), length);
    }
    return result;
}

std::u32string lowered(std::u32string text) {
    for (char32_t& c : text) {
        c += c >= U'A' && c <= U'Z' ? U'a' - U'A' : 0;
    }
    return text;
}

// The number of insertions, deletions, replacements and swaps of neighbours from `a` to `b`.
std::size_t editDistance(const std::u32string& a, const std::u32string& b) {
    std::vector<std::size_t> before(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        last[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min(
                {last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0U : 1U)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        std::swap(before, last);
        std::swap(last, row);
    }
    return last[b.size()];
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

CName makeName(std::string_view name) {
    CName known{unitNamed(name), lookUp(name) != nullptr, false, std::nullopt};
    if (known.Unit) {
        known.HasOffset = hasOffset(known.Unit);
        known.Prefixed = prefixedOffset(name, known.Unit);
    }
    return known;
}

// Never destroyed: threads and the statics of clients may still read units while the process ends. Names that the library does not know, or not by this spelling, are not
// kept: a new symbol may make them known, and does not change the version.
std::unordered_map<std::string, CName>& keptNames = *new std::unordered_map<std::string, CName>;
unsigned versionOfNames = 0;
CName& passingName = *new CName;

}  // namespace

CUnitPtr unitNamed(std::string_view name) {
    CUnitPtr unit = lookUp(name);
    if (unit) {
        return unit;
    }
    std::string ours = isAscii(name) ? std::string(name) : respelled(name);
    if (ours != name && (unit = lookUp(ours))) {
        return unit;
    }
    if (isLitre(ours)) {
        ours.back() = 'l';
        return lookUp(ours);
    }
    return name == "One" ? CProductUnit::one() : nullptr;
}

bool hasOffset(const CUnitPtr& unit) {
    const auto* transformed = dynamic_cast<CTransformedUnit*>(unit.get());
    return transformed != nullptr && transformed->toSystem()->convert(0.0) != 0.0;
}

std::optional<CPrefixedOffset> prefixedOffset(std::string_view name, const CUnitPtr& unit) {
    if (dynamic_cast<CTransformedUnit*>(unit.get()) == nullptr) {
        return std::nullopt;
    }
    const std::string ours = respelled(name);
    for (const CPrefix& prefix : prefixes()) {
        const std::string_view symbol = bytes(prefix.Symbol);
        if (!startsWith(ours, symbol) || ours.size() == symbol.size()) {
            continue;
        }
        const std::string rest = ours.substr(symbol.size());
        const CUnitPtr scale = lookUp(rest);
        if (scale && hasOffset(scale) && !hasOffset(unit) &&
            scale->getSystemUnit() == unit->getSystemUnit()) {
            return CPrefixedOffset{std::string(symbol), rest};
        }
    }
    return std::nullopt;
}

const CName* knownName(std::string_view name) {
    const unsigned version = CUnitFormat::namesVersion();
    if (version == 0 || version != versionOfNames) {
        keptNames.clear();
        versionOfNames = version;
    }
    std::string key(name);
    const auto found = keptNames.find(key);
    if (found != keptNames.end()) {
        return &found->second;
    }
    passingName = makeName(name);
    if (!passingName.Unit) {
        return nullptr;
    }
    return passingName.IsExact ? &keptNames.emplace(std::move(key), passingName).first->second
                               : &passingName;
}

std::vector<std::string> nearestNames(std::string_view name) {
    constexpr std::size_t LongestName = 24;
    constexpr std::size_t Most = 5;
    const std::u32string letters = codePoints(name);
    if (letters.size() > LongestName) {
        return {};
    }
    // A name of one letter is one edit away from every other: only its case tells anything.
    const std::size_t farthest = letters.size() < 2 ? 0 : letters.size() < 5 ? 1 : 2;
    struct Candidate {
        std::size_t Distance;       // whatever the case
        std::size_t ExactDistance;  // with it
        std::string Name;
    };
    std::vector<Candidate> found;
    for (const auto& [label, unit] : CUnitFormat::names()) {
        const std::string_view known = bytes(label);
        const std::u32string others = codePoints(known);
        if (known.empty() || others.size() > letters.size() + farthest ||
            letters.size() > others.size() + farthest) {
            continue;
        }
        const std::size_t distance = editDistance(lowered(letters), lowered(others));
        if (distance <= farthest && !prefixedOffset(known, unit)) {
            found.push_back({distance, editDistance(letters, others), std::string(known)});
        }
    }
    const auto inOrder = [](const Candidate& a, const Candidate& b) {
        return std::tie(a.Distance, a.ExactDistance, a.Name) <
               std::tie(b.Distance, b.ExactDistance, b.Name);
    };
    std::sort(found.begin(), found.end(), inOrder);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < found.size() && i < Most; ++i) {
        names.push_back(found[i].Name);
    }
    return names;
}

std::vector<std::string> namesOf(const CUnitPtr& unit) {
    std::vector<std::string> names;
    for (const auto& [name, named] : CUnitFormat::names()) {
        if (named == unit && !name.empty()) {
            names.push_back(mensor::toStdString(name));
        }
    }
    return names;
}

}  // namespace checked
}  // namespace mensor
