#include "mensor_exact/Spelling.h"

namespace mensor {
namespace exact {

namespace {

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

}  // namespace

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

}  // namespace exact
}  // namespace mensor
