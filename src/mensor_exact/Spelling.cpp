#include "mensor_exact/Spelling.h"

#include <array>
#include <cstdint>
#include <iterator>

#include "mensor_exact/NearestNames.h"
#include "mensor_exact/Table.h"

namespace mensor::exact {

namespace {

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// The texts of all words, one after the other.
constexpr char WordTexts[] =
#define MENSOR_WORD(singular, plural, symbol, prefixes) singular plural symbol
#include "mensor_exact/spellings.def"
    ;

struct CWordSizes {
    std::uint8_t Singular;
    std::uint8_t Plural;
    std::uint8_t Symbol;
    bool HasPrefixes;
};

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are literals, and the rows are lists.
constexpr CWordSizes WordSizes[] = {
#define MENSOR_WORD(singular, plural, symbol, prefixes) \
    {sizeof(singular) - 1, sizeof(plural) - 1, sizeof(symbol) - 1, prefixes},
#include "mensor_exact/spellings.def"
};
// NOLINTEND(bugprone-macro-parentheses)

struct CWordRow {
    std::string_view Singular;
    std::string_view Plural;
    std::string_view Symbol;
    bool HasPrefixes;
};

// Returns the first row for which `isRight` returns true, or nothing.
template <class IsRight>
std::optional<CWordRow> findWord(const IsRight& isRight) {
    const char* text = WordTexts;
    for (const CWordSizes& sizes : WordSizes) {
        const char* const plural = text + sizes.Singular;
        const char* const symbol = plural + sizes.Plural;
        const CWordRow row{{text, sizes.Singular},
                           {plural, sizes.Plural},
                           {symbol, sizes.Symbol},
                           sizes.HasPrefixes};
        if (isRight(row)) {
            return row;
        }
        text = symbol + sizes.Symbol;
    }
    return std::nullopt;
}

// The names of the prefixes, in the order of their symbols.
constexpr CShortText<5> PrefixNames[] = {
    "yotta", "zetta", "exa",   "peta",  "tera", "giga", "mega",  "kilo", "hecto", "deca",
    "deci",  "centi", "milli", "micro", "nano", "pico", "femto", "atto", "zepto", "yocto",
};
static_assert(std::size(PrefixNames) == std::size(Prefixes));

// Returns the row of a word without a prefix, or nothing.
std::optional<CWordRow> plainWord(std::string_view name) {
    return findWord(
        [name](const CWordRow& word) { return name == word.Singular || name == word.Plural; });
}

bool isSmall(char c) { return c >= 'a' && c <= 'z'; }

// Reads "um" as "\u00B5m". Only for symbols of the built-in catalogue: "ux" may mean something else than a
// program's own "µx".
std::optional<CWord> micro(std::string_view name) {
    constexpr std::uint32_t BuiltIn = 3;  // CATALOGUE and SI
    const std::string_view stem = name.substr(1);
    if (stem.empty() || CTable::find(std::string("\u00B5").append(stem), BuiltIn) == CTable::None) {
        return std::nullopt;
    }
    return CWord{"\u00B5", stem, -6};
}

}  // namespace

std::optional<CWord> everydayWord(std::string_view name) {
    constexpr std::size_t Longest = 24;
    if (name.size() < 2 || name.size() > Longest) {
        return std::nullopt;
    }
    if (name[0] == 'u') {
        if (auto word = micro(name)) {
            return word;
        }
    }
    std::array<char, Longest> letters{};
    letters[0] = static_cast<char>(name[0] | 0x20);  // a word may begin with a capital letter
    std::copy(name.begin() + 1, name.end(), letters.begin() + 1);
    const std::string_view word(letters.data(), name.size());
    if (!std::all_of(word.begin(), word.end(), isSmall)) {
        return std::nullopt;
    }
    if (const std::optional<CWordRow> row = plainWord(word)) {
        return CWord{{}, row->Symbol, 0};
    }
    for (std::size_t i = 0; i < std::size(PrefixNames); ++i) {
        if (!startsWith(word, PrefixNames[i])) {
            continue;
        }
        const std::optional<CWordRow> row = plainWord(word.substr(PrefixNames[i].size()));
        if (row && row->HasPrefixes) {
            return CWord{Prefixes[i].Symbol, row->Symbol, Prefixes[i].Power};
        }
    }
    return std::nullopt;
}

void addEverydayWordsTo(CNearestNames& nearest, std::string_view unknown) {
    const auto addAll = [&nearest](const std::string& prefix) {
        findWord([&](const CWordRow& word) {
            if (prefix.empty() || word.HasPrefixes) {
                nearest.add(prefix + std::string(word.Singular));
                if (word.Plural != word.Singular) {
                    nearest.add(prefix + std::string(word.Plural));
                }
            }
            return false;
        });
    };
    addAll({});
    for (const std::string_view prefix : PrefixNames) {
        if (startsWith(unknown, prefix)) {
            addAll(std::string(prefix));
        }
    }
}

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

bool isCapitalLitre(std::string_view name) {
    if (name.empty() || name.back() != 'L') {
        return false;
    }
    name.remove_suffix(1);
    return name.empty() || std::any_of(std::begin(Prefixes), std::end(Prefixes),
                                       [&](const CPrefix& p) { return p.Symbol == name; });
}

}  // namespace mensor::exact
