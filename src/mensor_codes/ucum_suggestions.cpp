#include "mensor_codes/ucum_suggestions.h"

#include <algorithm>
#include <cstddef>

#include "mensor_codes/UcumAtoms.h"
#include "mensor_codes/ucum_reader.h"
#include "mensor_exact/NearestNames.h"

namespace mensor::codes {

namespace {

constexpr std::size_t Most = 5;
constexpr std::size_t Longest = 32;  // bytes; no suggested code is that long

struct CConfused {
    std::string_view Text;
    std::string_view Code;
};

constexpr CConfused Confused[] = {
#define MENSOR_CONFUSED(text, code) {text, code},
#include "mensor_codes/ucum_confused.def"
#undef MENSOR_CONFUSED
};

struct CSpelling {
    std::string_view Text;
    std::string_view Code;
};

// The codes of UCUM for signs that UCUM does not have.
constexpr CSpelling Spellings[] = {
    {"µ", "u"}, {"μ", "u"}, {"Ω", "Ohm"}, {"\u2126", "Ohm"}, {"Å", "Ao"}, {"·", "."}, {"×", "."},
    {"*", "."}, {"^", ""},  {"⁻", "-"},   {"⁰", "0"},        {"¹", "1"},  {"²", "2"}, {"³", "3"},
    {"⁴", "4"}, {"⁵", "5"}, {"⁶", "6"},   {"⁷", "7"},        {"⁸", "8"},  {"⁹", "9"}};

// Replaces the token by a full stop. Returns false if a "/" precedes it: "W/m²·K" may mean W/(m2.K).
bool mendProduct(std::string& text, exact::CSpan token) {
    if (text.find('/') < token.Begin) {
        return false;
    }
    text.replace(token.Begin, token.End - token.Begin, ".");
    return true;
}

// Corrects the refused place in `text`. Returns false if no correction is known.
bool mend(std::string& text, const CRefusal& refusal) {
    const exact::CSpan token = refusal.Token;
    const std::string_view refused = token.of(refusal.Text);
    if (refusal.Code == exact::eRefusal::MISSING_OPERATOR && refused != "{") {
        return mendProduct(text, {token.Begin, token.Begin});
    }
    if (refusal.Code != exact::eRefusal::UNEXPECTED_CHARACTER) {
        return false;
    }
    if (refused == " " && (token.Begin == 0 || token.End == text.size())) {
        text.erase(token.Begin, 1);
        return true;
    }
    if (refused == "^" && text.find_first_of("+-0123456789", token.End) != token.End) {
        return false;  // no exponent follows
    }
    if (text.compare(token.Begin, 3, "°C") == 0) {
        text.replace(token.Begin, 3, "Cel");
        return true;
    }
    for (const CSpelling& spelling : Spellings) {
        if (spelling.Text != refused) {
            continue;
        }
        if (spelling.Code == ".") {
            return mendProduct(text, token);
        }
        text.replace(token.Begin, refused.size(), spelling.Code);
        return true;
    }
    return false;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isEqualIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return lower(x) == lower(y); });
}

// Returns "in" for "[in_i]" and "IU" for "[IU]".
std::string_view bareName(std::string_view atom) {
    if (atom.size() < 3 || atom.front() != '[' || atom.back() != ']') {
        return atom;
    }
    atom = atom.substr(1, atom.size() - 2);
    return atom.find('\'') == std::string_view::npos ? atom.substr(0, atom.find('_')) : atom;
}

class CSuggestions {
public:
    explicit CSuggestions(std::string_view unknown) : m_Unknown(unknown) {}

    std::vector<std::string> find() {
        if (m_Unknown.empty() || m_Unknown.size() > Longest) {
            return {};
        }
        addConfused();
        addAtoms();
        addPrefixed();
        if (m_Found.empty()) {
            addProducts();
        }
        if (m_Found.empty()) {
            addNearest();
        }
        return m_Found;
    }

private:
    void add(std::string code) {
        if (m_Found.size() < Most && code != m_Unknown &&
            std::find(m_Found.begin(), m_Found.end(), code) == m_Found.end()) {
            m_Found.push_back(std::move(code));
        }
    }

    void addConfused() {
        for (const CConfused& confused : Confused) {
            if (confused.Text == m_Unknown) {
                add(std::string(confused.Code));
            }
        }
        for (const CConfused& confused : Confused) {
            if (confused.Text.size() > 2 && isEqualIgnoringCase(confused.Text, m_Unknown)) {
                add(std::string(confused.Code));
            }
        }
    }

    void addAtoms() {
        for (std::size_t row = 0; row < CUcumAtoms::size(); ++row) {
            const std::string_view atom = CUcumAtoms::codeOf(row);
            if (isEqualIgnoringCase(bareName(atom), bareName(m_Unknown))) {
                add(std::string(atom));
            }
        }
    }

    void addPrefixed() {
        for (const CUcumPrefix& prefix : UcumPrefixes) {
            const std::size_t length = prefix.Symbol.size();
            if (!isEqualIgnoringCase(m_Unknown.substr(0, length), prefix.Symbol)) {
                continue;
            }
            const std::string_view rest = m_Unknown.substr(length);
            for (std::size_t row = 0; row < CUcumAtoms::size(); ++row) {
                const std::string_view atom = CUcumAtoms::codeOf(row);
                if (CUcumAtoms::takesPrefixes(row) &&
                    (isEqualIgnoringCase(atom, rest) || bareName(atom) == rest)) {
                    add(std::string(prefix.Symbol).append(atom));
                }
            }
        }
    }

    // Suggests "kW.h" for "kWh".
    void addProducts() {
        for (std::size_t length = m_Unknown.size() - 1; length > 0; --length) {
            const std::string_view first = m_Unknown.substr(0, length);
            const std::string_view second = m_Unknown.substr(length);
            CUcumUnit unit;
            if (findUcumUnit(first, unit) == eUcumUnit::FOUND &&
                findUcumUnit(second, unit) == eUcumUnit::FOUND) {
                add(std::string(first).append(".").append(second));
            }
        }
    }

    void addNearest() {
        exact::CNearestNames nearest(m_Unknown);
        for (std::size_t row = 0; row < CUcumAtoms::size(); ++row) {
            nearest.add(CUcumAtoms::codeOf(row));
        }
        for (const exact::CNearestNames::CNear& near : nearest.best()) {
            add(near.Name);
        }
    }

    const std::string_view m_Unknown;
    std::vector<std::string> m_Found;
};

}  // namespace

std::vector<std::string> ucumSuggestions(std::string_view unknown) {
    return CSuggestions(unknown).find();
}

std::vector<std::string> ucumReadings(const CRefusal& refusal) {
    constexpr int MostChanges = 16;
    std::string text(refusal.Text.substr(0, Longest + 1));
    if (text.size() > Longest) {
        return {};
    }
    for (int changes = 0; changes < MostChanges; ++changes) {
        const CReading reading = readUcum(refusal.System, text);
        if (reading) {
            return {text};
        }
        // The refusal holds views of the text, which mend() changes.
        if (const std::string before = text; !mend(
                text, {reading.Refusal.Code, refusal.System, before, reading.Refusal.Token, {}})) {
            return {};
        }
    }
    return {};
}

}  // namespace mensor::codes
