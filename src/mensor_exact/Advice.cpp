// Advice.cpp: finds corrections for a refused text. The reader must accept a correction before it is
// offered. If the reader refuses it for another fault, that fault is corrected, too.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mensor_exact/Characters.h"
#include "mensor_exact/Definitions.h"
#include "mensor_exact/NearestNames.h"
#include "mensor_exact/NumberAdvice.h"
#include "mensor_exact/NumberText.h"
#include "mensor_exact/Parser.h"
#include "mensor_exact/Refusal.h"
#include "mensor_exact/ShortText.h"
#include "mensor_exact/Spelling.h"
#include "mensor_exact/Table.h"
#include "mensor_exact/Traps.h"
#include "mensor_exact/concatenate.h"
#include "mensor_exact/sentences.h"
#include "mensor_exact/utf8.h"

namespace mensor::exact {

namespace {

constexpr std::uint32_t BuiltInPacks = 3;  // CATALOGUE and SI

// Returns the name in the table that differs from `name` in case only. Empty if there is none.
std::string_view inOtherCase(std::string_view name, std::uint32_t packs) {
    const auto small = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    };
    constexpr std::size_t Longest = 32;  // bytes; no name of the table is longer
    if (name.size() > Longest) {
        return {};
    }
    for (std::size_t row = 0; row < CTable::size(); ++row) {
        const std::string_view known = CTable::name(row);
        const bool isIn = (packs >> static_cast<unsigned>(CTable::pack(row)) & 1U) != 0;
        if (isIn && known.size() == name.size() &&
            std::equal(known.begin(), known.end(), name.begin(),
                       [&](char a, char b) { return small(a) == small(b); })) {
            return known;
        }
    }
    return {};
}

// A possible correction, not yet read.
struct CCandidate {
    std::string Text;
    std::size_t UnitBegin;
};

std::string joined(const std::vector<std::string>& factors) {
    std::string product;
    for (const std::string& factor : factors) {
        product += (product.empty() ? "" : "·") + factor;
    }
    return product;
}

// One factor of "a/b/c·d" after the first one.
struct CChained {
    bool Divides;
    std::string Text;
};

// Splits the rest of a chain of divisions and products into its factors, up to the end or a closing bracket.
class CChainReader {
public:
    CChainReader(std::string_view text, std::size_t begin, CResolver& resolver)
        : m_Text(text), m_Resolver(resolver), m_Cursor(text, begin) {}

    // Returns false if a piece of the chain is not a factor.
    bool read() {
        for (;;) {
            m_Cursor.skipBlanks();
            if (m_Cursor.kind() == eKind::END || m_Cursor.kind() == eKind::CLOSE) {
                return true;
            }
            CChained next{m_Cursor.kind() == eKind::SLASH, {}};
            if (next.Divides || m_Cursor.kind() == eKind::TIMES || m_Cursor.kind() == eKind::STAR ||
                m_Cursor.kind() == eKind::POINT) {
                m_Cursor.advance();
                m_Cursor.skipBlanks();
            }
            const std::size_t begin = m_Cursor.position();
            if (!factor()) {
                return false;
            }
            next.Text = m_Text.substr(begin, m_Cursor.position() - begin);
            m_End = m_Cursor.position();
            Chain.push_back(std::move(next));
        }
    }

    std::size_t end() const { return m_End; }

    std::vector<CChained> Chain;

private:
    bool factor() {
        while (m_Cursor.kind() == eKind::ROOT) {
            m_Cursor.advance();
            m_Cursor.skipBlanks();
        }
        if (m_Cursor.kind() == eKind::NAME) {
            name();
        } else if (m_Cursor.kind() == eKind::OPEN) {
            if (!brackets(eKind::OPEN, eKind::CLOSE)) {
                return false;
            }
        } else if (m_Cursor.kind() != eKind::OPEN_NAME ||
                   !brackets(eKind::OPEN_NAME, eKind::CLOSE_NAME)) {
            return false;
        }
        return exponent();
    }

    bool brackets(eKind open, eKind close) {
        int depth = 0;
        do {
            depth += m_Cursor.kind() == open ? 1 : m_Cursor.kind() == close ? -1 : 0;
            if (m_Cursor.kind() == eKind::END) {
                return false;
            }
            m_Cursor.advance();
        } while (depth > 0);
        return true;
    }

    bool exponent() {
        while (m_Cursor.kind() == eKind::RAISED_MINUS || m_Cursor.kind() == eKind::RAISED_PLUS ||
               m_Cursor.kind() == eKind::RAISED_DIGIT) {
            m_Cursor.advance();
        }
        CCursor ahead = m_Cursor;
        ahead.skipBlanks();
        const bool isStarred = ahead.kind() == eKind::STAR && ahead.peek() == eKind::STAR;
        if (!isStarred && ahead.kind() != eKind::CARET) {
            return true;
        }
        ahead.advance();
        if (isStarred) {
            ahead.advance();
        }
        ahead.skipBlanks();
        m_Cursor = ahead;
        if (m_Cursor.kind() == eKind::OPEN) {
            return brackets(eKind::OPEN, eKind::CLOSE);
        }
        while (m_Cursor.kind() == eKind::MINUS || m_Cursor.kind() == eKind::PLUS ||
               m_Cursor.kind() == eKind::DIGIT || m_Cursor.kind() == eKind::COLON ||
               (m_Cursor.kind() == eKind::POINT && m_Cursor.peek() == eKind::DIGIT)) {
            m_Cursor.advance();
        }
        return true;
    }

    // Reads a name and the digits after it. The digits may be a part of the name, as in "mmH2O".
    void name() {
        const std::size_t begin = m_Cursor.position();
        while (m_Cursor.kind() == eKind::NAME) {
            m_Cursor.advance();
        }
        if (m_Cursor.kind() == eKind::MINUS && m_Cursor.peek() == eKind::DIGIT) {
            m_Cursor.advance();
        }
        while (m_Cursor.kind() == eKind::DIGIT) {
            m_Cursor.advance();
        }
        CCursor ahead = m_Cursor;
        while (ahead.kind() == eKind::NAME || ahead.kind() == eKind::DIGIT) {
            ahead.advance();
        }
        if (m_Resolver.knows(m_Text.substr(begin, ahead.position() - begin))) {
            m_Cursor = ahead;
        }
    }

    std::string_view m_Text;
    CResolver& m_Resolver;
    CCursor m_Cursor;
    std::size_t m_End = 0;
};

// Finds texts that a refused text may mean. It does not read them; the caller does.
class CCandidates {
public:
    CCandidates(const CRefusal& refusal, CResolver& resolver)
        : m_Refusal(refusal), m_Text(refusal.Text), m_Resolver(resolver) {}

    std::vector<CCandidate> find() {
        addValues();
        if (m_Found.empty()) {
            addWithoutPunctuation();
        }
        if (!m_Found.empty()) {
            return std::move(m_Found);
        }
        const CSpan token = m_Refusal.Token;
        const CSpan first = m_Refusal.Pieces[0];
        switch (m_Refusal.Readings) {
            case eReadings::NONE: addWithoutPoint(); break;
            case eReadings::VALUE: break;
            case eReadings::TIMES: replace({token.Begin, token.Begin}, "·"); break;
            case eReadings::ONE: replace({token.Begin, token.Begin}, "1"); break;
            case eReadings::FRACTION:
                replace({first.Begin, token.End}, "(" + slice(first) + "/" + slice(token) + ")");
                break;
            case eReadings::POWER: replace(first, "(" + slice(first) + ")"); break;
            case eReadings::CHAIN: addChain(); break;
            case eReadings::TRAP: addTrap(*m_Refusal.Trap); break;
            case eReadings::JOIN: addJoined(); break;
            case eReadings::CLOSE: replace({m_Text.size(), m_Text.size()}, ")"); break;
            case eReadings::REMOVE: addWithout(); break;
            case eReadings::DOT: addDots(); break;
            case eReadings::DIVISOR: addDivided(); break;
        }
        if (m_Refusal.Code == eRefusal::UNKNOWN_NAME && m_Refusal.Trap == nullptr) {
            addOtherSpelling();
        } else if (m_Refusal.Code == eRefusal::INEXACT_EXPONENT) {
            addSmallFraction();
        } else if (m_Refusal.Code == eRefusal::UNEXPECTED_CHARACTER) {
            addForCharacter(slice(token));
        }
        std::vector<std::string> words;
        m_Resolver.addWords(m_Refusal, words);
        for (const std::string& word : words) {
            if (!word.empty()) {
                replace(token, word);
            }
        }
        return std::move(m_Found);
    }

    // Corrects a further fault of a text that was already corrected: "kg/H" for "KG/H" is wrong,
    // too.
    std::vector<CCandidate> findNext() {
        std::vector<CCandidate> found = find();
        if (found.empty() && m_Refusal.Code == eRefusal::UNKNOWN_NAME &&
            m_Refusal.Trap == nullptr) {
            CNearestNames nearest(m_Refusal.token());
            m_Resolver.addNamesTo(nearest);
            for (const CNearestNames::CNear& near : nearest.best()) {
                if (near.Distance == 0 && !near.IsRare) {
                    replace(m_Refusal.Token, near.Name);
                }
            }
            found = std::move(m_Found);
        }
        return found;
    }

    // Finds the text without a remark at its end: "µS/cm @25°C", "mg/l as CaCO3", "m3/h (dry)".
    std::vector<CCandidate> withoutRemark() {
        if (!isOfUnit()) {
            return {};
        }
        const std::string_view unit = m_Text.substr(m_Refusal.UnitBegin);
        std::size_t end = unit.find('@');
        for (const std::string_view word : {" at ", " as ", " ("}) {
            const std::size_t place = unit.find(word);
            if (place != std::string_view::npos && (word != " (" || unit.back() == ')')) {
                end = std::min(end, place);
            }
        }
        if (end != std::string_view::npos && end > 0) {
            replace({m_Refusal.UnitBegin + end, m_Text.size()}, "");
        }
        return std::move(m_Found);
    }

    /// Returns a better reason than the refusal has, or null.
    const char* sentence() const { return m_Sentence; }

    // Splits the unknown name into two known names, as "N·m" for "Nm".
    std::vector<CCandidate> split() {
        constexpr std::size_t Longest = 16;  // longer names are hardly two names without a dot
        const std::string_view name = m_Refusal.token();
        for (std::size_t at = 1; at < name.size() && name.size() <= Longest; ++at) {
            const bool isBoundary = (static_cast<unsigned char>(name[at]) & 0xC0U) != 0x80U;
            const bool isDoubled = name[at] == name[at - 1];  // more likely a typing error
            if (isBoundary && !isDoubled && isPiece(name.substr(0, at)) &&
                isPiece(name.substr(at))) {
                replace(m_Refusal.Token,
                        std::string(name.substr(0, at)).append("·").append(name.substr(at)));
            }
        }
        return std::move(m_Found);
    }

private:
    // Returns true for a name that people write next to another without a dot: a symbol, not a word.
    bool isPiece(std::string_view piece) {
        constexpr std::uint32_t Everyday = std::uint32_t{1}
                                           << static_cast<unsigned>(ePack::EVERYDAY);
        const bool isSpelling = CTable::find(piece, Everyday) != CTable::None &&
                                CTable::find(piece, ~Everyday) == CTable::None;
        const CTrap* const note = findNote(piece);
        return piece != "One" && !isSpelling && !everydayWord(piece) &&
               (note == nullptr || note->Place == ePlace::TOLD) && !hasRarePrefix(piece) &&
               m_Resolver.knows(piece);
    }

    void addValues() {
        if (m_Refusal.UnitBegin == 0 && m_Refusal.Readings != eReadings::VALUE) {
            return;
        }
        CValuesMeant meant = valuesMeant(m_Text, m_Resolver);
        m_Sentence = meant.Sentence;
        for (std::string& value : meant.Values) {
            CNumberText number;
            CRefusal refusal;
            if (findNumber(value, true, number, refusal)) {
                m_Found.push_back({std::move(value), number.UnitBegin});
            }
        }
    }

    // Adds both readings of "a/b/c" and of longer chains: a/(b·c), as people often mean it, and (a/b)/c, by
    // the rules of mathematics.
    void addChain() {
        const CSpan left = m_Refusal.Pieces[0];
        CChainReader reader(m_Text, left.End, m_Resolver);
        if (!reader.read()) {
            return;
        }
        std::vector<std::string> all;
        std::vector<std::string> above;
        std::vector<std::string> below;
        const std::string first = slice(left);
        if (first != "1") {
            above.push_back(first);
        }
        for (const CChained& factor : reader.Chain) {
            all.push_back(factor.Text);
            (factor.Divides ? below : above).push_back(factor.Text);
        }
        const CSpan span{left.Begin, reader.end()};
        replace(span, first + "/(" + joined(all) + ")");
        const auto quotient = [](const std::vector<std::string>& a,
                                 const std::vector<std::string>& b) {
            return (a.empty() ? "1" : joined(a)) + "/" +
                   (b.size() > 1 ? "(" + joined(b) + ")" : joined(b));
        };
        if (below.size() < all.size()) {
            replace(span, quotient(above, below));
        } else if (all.size() == 2) {  // perhaps a/(b/c)
            above.push_back(all[1]);
            replace(span, quotient(above, {all[0]}));
        }
    }

    void addTrap(const CTrap& trap) {
        for (const std::string_view words : {trap.first(), trap.second()}) {
            if (words.empty()) {
                continue;
            }
            std::string text(words);
            const bool isValue = m_Refusal.UnitBegin > 0;
            if (text == "1" && addWithoutDivisor()) {
                continue;
            }
            const bool isAlone = m_Refusal.Token.Begin == m_Refusal.UnitBegin &&
                                 m_Refusal.Token.End == m_Text.size();
            if (text == "1" && (isAlone ? isValue : isFactor())) {
                text = "One";  // "5 1" are two numbers, and "h·1" is no product
            }
            text = withText(std::move(text), slice(m_Refusal.Pieces[0]));
            CSpan token = m_Refusal.Token;
            const eKind next = CCursor(m_Text, token.End).kind();
            if (text.back() == ')' && (next == eKind::DIGIT || next == eKind::MINUS)) {
                text += '^';  // digits are an exponent only after a name
            }
            if (isRaised(text)) {
                while (token.Begin > m_Refusal.UnitBegin && m_Text[token.Begin - 1] == ' ') {
                    --token.Begin;
                }
            }
            replace(token, text);
        }
    }

    // Returns true if the token is a factor of a product, but not its first one.
    bool isFactor() const {
        const std::size_t before = m_Text.substr(0, m_Refusal.Token.Begin).find_last_not_of(" \t");
        return before != std::string_view::npos && before >= m_Refusal.UnitBegin &&
               m_Refusal.Token.Begin > m_Refusal.UnitBegin && m_Text[before] != '(';
    }

    // Adds "kg" for "kg/pcs". Returns false if the token is not a divisor.
    bool addWithoutDivisor() {
        const std::size_t begin = m_Refusal.Token.Begin;
        const std::string_view before = m_Text.substr(0, begin);
        const std::size_t slash = before.find_last_not_of(" \t");
        if (slash == std::string_view::npos || slash <= m_Refusal.UnitBegin ||
            before[slash] != '/') {
            return false;
        }
        replace({slash, m_Refusal.Token.End}, "");
        return true;
    }

    static bool isRaised(const std::string& text) {
        return CCursor(text).kind() == eKind::RAISED_DIGIT;
    }

    void addJoined() {
        const std::string_view token = m_Refusal.token();
        if (m_Refusal.Code == eRefusal::STRAY_NUMBER && token != "2" && token != "3") {
            return;
        }
        std::size_t end = m_Refusal.Token.Begin;
        while (end > m_Refusal.UnitBegin && (m_Text[end - 1] == ' ' || m_Text[end - 1] == '\t')) {
            --end;
        }
        if (end < m_Refusal.Token.Begin && end > m_Refusal.UnitBegin) {
            replace({end, m_Refusal.Token.Begin}, "");
        }
    }

    // Adds the text without the token, or without all invisible characters.
    void addWithout() {
        if (m_Refusal.Code != eRefusal::UNEXPECTED_CHARACTER) {
            replace(m_Refusal.Token, "");
            return;
        }
        std::string unit;
        std::size_t length = 0;
        for (std::size_t at = m_Refusal.UnitBegin; at < m_Text.size(); at += length) {
            if (!isInvisible(decode(m_Text.substr(at), length))) {
                unit += m_Text.substr(at, length);
            }
        }
        replace({m_Refusal.UnitBegin, m_Text.size()}, unit);
    }

    // Adds the text with a dot for each hyphen: "hr·ft2·F/BTU" for "hr-ft2-F/BTU".
    void addDots() {
        std::string unit(m_Text.substr(m_Refusal.Token.Begin));
        for (std::size_t at = unit.find('-'); at != std::string::npos;
             at = unit.find('-', at + 1)) {
            const eKind next = CCursor(unit, at + 1).kind();
            if (next == eKind::NAME || next == eKind::OPEN_NAME || next == eKind::OPEN) {
                unit.replace(at, 1, "·");
            }
        }
        replace({m_Refusal.Token.Begin, m_Text.size()}, unit);
    }

    // Adds "0.05 l/km" for "5 l/100km", and "mg/d" for "mg/24h".
    void addDivided() {
        CCursor ahead(m_Text, m_Refusal.Token.End);
        ahead.skipBlanks();
        const std::size_t begin = ahead.position();
        while (ahead.kind() == eKind::NAME) {
            ahead.advance();
        }
        const std::string_view name = m_Text.substr(begin, ahead.position() - begin);
        const std::string_view divisor = m_Refusal.token();
        const bool isDay = divisor == "24" && (name == "h" || name == "hr" || name == "hrs" ||
                                               name == "hour" || name == "hours");
        if (isDay) {
            replace({m_Refusal.Token.Begin, ahead.position()}, "d");
            return;
        }
        constexpr std::size_t Longest = 18;  // longer numbers get no correction
        CNumberText number;
        CRefusal refusal;
        const std::size_t slash = m_Text.rfind('/', m_Refusal.Token.Begin);
        if (m_Refusal.UnitBegin == 0 || slash <= m_Refusal.UnitBegin ||
            m_Text.substr(m_Refusal.UnitBegin, slash - m_Refusal.UnitBegin) == "1" ||
            divisor.size() > Longest || !findNumber(m_Text, false, number, refusal) ||
            number.Size.End - number.Size.Begin > Longest ||
            number.Size.of(m_Text).find_first_not_of("0123456789.") != std::string_view::npos) {
            return;
        }
        const CFraction by = CFraction::ofText(divisor);
        if (by.isZero()) {
            return;
        }
        const std::string size = (CFraction::ofText(number.Size.of(m_Text)) / by).toString();
        if (size.find_first_not_of("0123456789.") != std::string::npos) {
            return;  // no short decimal
        }
        std::string text = (number.IsNegative ? "-" : "") + size + " ";
        const std::size_t unit = text.size();
        text.append(m_Text.substr(m_Refusal.UnitBegin, m_Refusal.Token.Begin - m_Refusal.UnitBegin))
            .append(m_Text.substr(begin));
        m_Found.push_back({std::move(text), unit});
    }

    // Adds the text without the point of an abbreviation: "rev/min" for "rev./min".
    void addWithoutPoint() {
        const std::size_t at = m_Refusal.Token.Begin;
        if (m_Refusal.Code == eRefusal::MISSING_UNIT && at > m_Refusal.UnitBegin &&
            m_Text[at - 1] == '.') {
            replace({at - 1, at}, "");
        }
    }

    // Returns true if the unit is refused, not the number of a value.
    bool isOfUnit() const {
        return m_Refusal.Code < eRefusal::NO_NUMBER || m_Refusal.Code == eRefusal::MISLEADING;
    }

    // Adds the text without punctuation marks at its end: "5 m.".
    void addWithoutPunctuation() {
        const std::size_t end = m_Text.find_last_not_of(" \t.,;:!?");
        const bool isFaultThere = m_Refusal.Token.End > end || m_Refusal.Token.Begin > end;
        if (!isOfUnit() || m_Refusal.Trap != nullptr || end == std::string_view::npos ||
            end < m_Refusal.UnitBegin || !isFaultThere ||
            m_Text.find_first_of(".,;:!?", end) == std::string_view::npos) {
            return;
        }
        replace({end + 1, m_Text.size()}, "");
    }

    void addForCharacter(const std::string& character) {
        if (character == "<" || character == "&") {
            addWithoutMarkup();
        } else if (character == "\"") {
            replace(m_Refusal.Token, "in");  // also "\"Hg"
            replace(m_Refusal.Token, "″");
        } else if (character == "'") {
            replace(m_Refusal.Token, "ft");
            replace(m_Refusal.Token, "′");
        }
    }

    struct CEntity {
        CShortText<8> Name;
        CShortText<3> Sign;
    };
    static constexpr CEntity Entities[] = {
        {"&deg;", "°"},        {"&#176;", "°"},      {"&micro;", "\u00B5"}, {"&#181;", "\u00B5"},
        {"&mu;", "\u00B5"},    {"&sup2;", "²"},      {"&#178;", "²"},       {"&sup3;", "³"},
        {"&#179;", "³"},       {"&middot;", "·"},    {"&#183;", "·"},       {"&times;", "·"},
        {"&Omega;", "\u2126"}, {"&#937;", "\u2126"}, {"&#8486;", "\u2126"}, {"&permil;", "‰"},
        {"&nbsp;", " "},       {"&#160;", " "},      {"&Aring;", "Å"},      {"&radic;", "√"},
    };

    // Adds the text without HTML: "m<sup>2</sup>", "m&sup2;".
    void addWithoutMarkup() {
        constexpr std::string_view Open = "<sup>";
        constexpr std::string_view Close = "</sup>";
        std::string unit(m_Text.substr(m_Refusal.UnitBegin));
        for (std::size_t at = unit.find(Open); at != std::string::npos; at = unit.find(Open)) {
            unit.replace(at, Open.size(), "^");
        }
        for (std::size_t at = unit.find(Close); at != std::string::npos; at = unit.find(Close)) {
            unit.erase(at, Close.size());
        }
        for (const CEntity& row : Entities) {
            const std::string_view entity = row.Name;
            const std::string_view sign = row.Sign;
            for (std::size_t at = unit.find(entity); at != std::string::npos;
                 at = unit.find(entity)) {
                unit.replace(at, entity.size(), sign);
            }
        }
        replace({m_Refusal.UnitBegin, m_Text.size()}, unit);
    }

    // Adds the fraction that a decimal exponent rounds: ^(1/3) for "^0.333".
    void addSmallFraction() {
        const std::string token = slice(m_Refusal.Token);
        const std::size_t digits = token.find_first_of("0123456789");
        const std::size_t point = token.find('.');
        if (point == std::string::npos || digits > point || token.size() > point + 16) {
            return;
        }
        double exponent = 0.0;
        std::from_chars(token.data() + digits, token.data() + token.size(), exponent);
        if (exponent > LargestExponent) {
            return;
        }
        double half = 0.5;  // half a unit of the last decimal place
        for (std::size_t at = point + 1; at < token.size() && token[at] >= '0' && token[at] <= '9';
             ++at) {
            half /= 10;
        }
        constexpr int LargestDenominator = 12;
        for (int root = 2; root <= LargestDenominator; ++root) {
            const int pow = static_cast<int>(std::lround(exponent * root));
            const double difference = exponent - static_cast<double>(pow) / root;
            if (pow > 0 && std::abs(difference) <= 2 * half) {
                const bool isNegative = token.find('-') != std::string::npos;
                replace(m_Refusal.Token, "^(" + std::string(isNegative ? "-" : "") +
                                             std::to_string(pow) + "/" + std::to_string(root) +
                                             ")");
                return;
            }
        }
    }

    // Adds the unit of the pack EVERYDAY for the name, or for the name in small letters: "WATT".
    void addOtherSpelling() {
        constexpr std::size_t Longest = 40;  // bytes; a longer name has no correction here
        const std::string_view name = m_Refusal.token();
        if (name.size() > Longest) {
            return;
        }
        if (name.size() > 2 && name.front() == '[' && name.back() == ']') {  // "5 [m]"
            replace(m_Refusal.Token, std::string(name.substr(1, name.size() - 2)));
            return;
        }
        if (name.size() > 1 && (name.front() == '%' || name.back() == '%')) {  // "%THD"
            replace(m_Refusal.Token, "%");
            return;
        }
        const std::size_t slash = name.find_first_of("\\|");  // "m\\s"
        if (slash != std::string_view::npos) {
            replace({m_Refusal.Token.Begin + slash, m_Refusal.Token.Begin + slash + 1}, "/");
            return;
        }
        if (name.size() > 1 && name[0] == 'u') {  // "uf"
            const std::string_view micro =
                inOtherCase(std::string("\u00B5").append(name.substr(1)), BuiltInPacks);
            if (!micro.empty()) {
                replace(m_Refusal.Token, std::string(micro));
                return;
            }
        }
        const std::size_t row =
            CTable::find(name, std::uint32_t{1} << static_cast<unsigned>(ePack::EVERYDAY));
        if (row != CTable::None) {
            const std::string text = CTable::text(row);
            if (!text.empty() && (text[0] < '0' || text[0] > '9')) {
                replace(m_Refusal.Token, text);
            }
            return;
        }
        std::optional<CWord> word = everydayWord(name);
        std::string small(name);  // the word may refer to it
        constexpr std::size_t Shortest = 3;
        if (!word && name.size() >= Shortest) {
            for (char& c : small) {
                c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
            }
            word = everydayWord(small);
        }
        if (word) {
            replace(m_Refusal.Token, word->text());
        }
    }

    // Adds the text with `words` in place of `span`.
    void replace(CSpan span, const std::string& words) {
        std::string text(m_Text.substr(0, span.Begin));
        text.append(words).append(m_Text.substr(span.End));
        std::size_t begin = m_Refusal.UnitBegin;
        text.resize(std::max(begin, text.find_last_not_of(" \t") + 1));
        if (begin > 0 && ((text[begin - 1] >= '0' && text[begin - 1] <= '9') ||
                          text[begin - 1] == '.')) {  // put a blank between the number and the unit
            text.insert(begin, 1, ' ');
            ++begin;
        }
        m_Found.push_back({std::move(text), begin});
    }

    std::string slice(CSpan span) const { return std::string(span.of(m_Text)); }

    const CRefusal& m_Refusal;
    const std::string_view m_Text;
    CResolver& m_Resolver;
    std::vector<CCandidate> m_Found;
    const char* m_Sentence = nullptr;
};

bool contains(const std::vector<std::string>& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

class CAdviser {
public:
    CAdviser(const CRefusal& refusal, CResolver& resolver)
        : m_Refusal(refusal), m_Resolver(resolver), m_Diagnosis(refusal.diagnosis()) {}

    CDiagnosis diagnose() {
        if (m_Refusal.Code == eRefusal::TOO_LONG || m_Refusal.Code == eRefusal::MALFORMED_TEXT) {
            return std::move(m_Diagnosis);
        }
        CCandidates candidates(m_Refusal, m_Resolver);
        tryAll(candidates.find(), Deepest);
        if (candidates.sentence() != nullptr) {
            m_Diagnosis.Sentence = candidates.sentence();
        } else if (isRange()) {
            m_Diagnosis.Sentence = sentences::RANGE;
        }
        if (m_Refusal.Code == eRefusal::UNKNOWN_NAME && candidates.sentence() == nullptr) {
            if (m_Refusal.Trap == nullptr && addPacks(m_Refusal.token())) {
                m_Diagnosis.Sentence = m_PackSentence;
            } else if (m_Diagnosis.Readings.empty() && m_Refusal.Trap == nullptr) {
                addNames();
            }
        }
        if (isNothingOffered()) {
            tryAll(CCandidates(m_Refusal, m_Resolver).withoutRemark(), 0);
            if (!m_Diagnosis.Readings.empty()) {
                m_Diagnosis.Sentence = sentences::REMARK;
            }
        }
        const bool isOfTwoUnits =
            m_Refusal.Trap != nullptr && m_Refusal.Trap->Place == ePlace::UNKNOWN;
        if (!m_Missing.empty() && (isNothingOffered() || isOfTwoUnits)) {
            addPacks(m_Missing);
            m_Diagnosis.Sentence += "; " + m_PackSentence;
        }
        return std::move(m_Diagnosis);
    }

private:
    bool isNothingOffered() const {
        return m_Diagnosis.Readings.empty() && m_Diagnosis.Suggestions.empty() &&
               m_Diagnosis.Packs.empty();
    }

    static constexpr int Deepest = 4;      // most corrections of one text
    static constexpr int MostTrials = 40;  // most texts read for one refusal
    static constexpr std::size_t MostOffers = 3;

    void tryAll(const std::vector<CCandidate>& candidates, int depth) {
        for (const CCandidate& candidate : candidates) {
            tryOne(candidate, depth);
        }
    }

    // Offers the candidate if the reader accepts it. Otherwise tries to correct the candidate.
    void tryOne(const CCandidate& candidate, int depth) {
        std::vector<std::string>& readings = m_Diagnosis.Readings;
        // "5 1" has two numbers, though "1" alone is a unit.
        const bool isTwoNumbers =
            candidate.UnitBegin > 0 &&
            std::string_view(candidate.Text).substr(candidate.UnitBegin) == "1";
        if (isTwoNumbers || ++m_Trials > MostTrials || readings.size() == MostOffers) {
            return;
        }
        CRefusal refusal;
        if (m_Resolver.fit(candidate.Text, candidate.UnitBegin, refusal) != eFit::REFUSED) {
            if (!contains(readings, candidate.Text)) {
                readings.push_back(candidate.Text);
            }
            return;
        }
        if (refusal.Code == eRefusal::UNKNOWN_NAME && m_Missing.empty() &&
            isInPack(refusal.token())) {
            m_Missing = refusal.token();
        }
        if (depth > 0) {
            tryAll(CCandidates(refusal, m_Resolver).findNext(), depth - 1);
        }
    }

    static constexpr ePack Packs[] = {ePack::CUSTOMARY, ePack::US,      ePack::IMPERIAL,
                                      ePack::SCIENCE,   ePack::OFFSETS, ePack::COUNTING,
                                      ePack::EVERYDAY};

    static bool isIn(ePack pack, std::string_view name) {
        const std::uint32_t bit = std::uint32_t{1} << static_cast<unsigned>(pack);
        return CTable::find(name, bit) != CTable::None ||
               (pack == ePack::EVERYDAY && everydayWord(name));
    }

    bool isInPack(std::string_view name) const {
        return std::any_of(std::begin(Packs), std::end(Packs),
                           [&](ePack pack) { return m_Resolver.offers(pack) && isIn(pack, name); });
    }

    // Adds the packs that have the name. Returns false if no pack has it.
    bool addPacks(std::string_view name) {
        std::string list;
        for (const ePack pack : Packs) {
            if (m_Resolver.offers(pack) && isIn(pack, name)) {
                m_Diagnosis.Packs.emplace_back(nameOf(pack));
                list += (list.empty() ? "" : " and ") + m_Diagnosis.Packs.back();
            }
        }
        m_PackSentence = "\"" + std::string(name) + "\" is in the pack" +
                         (m_Diagnosis.Packs.size() > 1 ? "s " : " ") + list;
        return !m_Diagnosis.Packs.empty();
    }

    // Returns true for a range: "4-20 mA", "4...20 mA".
    bool isRange() const {
        const std::size_t begin = m_Refusal.UnitBegin;
        if (begin == 0) {
            return false;
        }
        CCursor cursor(m_Refusal.Text, begin);
        const bool hasSign = cursor.kind() == eKind::MINUS ||
                             (cursor.kind() == eKind::POINT &&
                              (m_Refusal.Text[begin - 1] == '.' || cursor.peek() == eKind::POINT));
        while (cursor.kind() == eKind::MINUS || cursor.kind() == eKind::POINT) {
            cursor.advance();
        }
        cursor.skipBlanks();
        return hasSign && cursor.kind() == eKind::DIGIT;
    }

    // Returns the name of a pack that differs from `name` in case only: "hp" for "Hp". Empty if there is none.
    std::string_view inOtherCaseOfPacks(std::string_view name) const {
        const std::string_view known = inOtherCase(name, CTable::AllPacks);
        return !known.empty() && isInPack(known) && !m_Resolver.knows(known) ? known
                                                                             : std::string_view();
    }

    struct COffer {
        CNearestNames::CNear Near;
        eFit Fit;
    };

    // Adds similar names, or the name split into two.
    void addNames() {
        const std::string_view name = m_Refusal.token();
        CNearestNames nearest(name);
        m_Resolver.addNamesTo(nearest);
        if (m_Resolver.knows("metre")) {
            addEverydayWordsTo(nearest, name);
        }
        const std::vector<CNearestNames::CNear>& found = nearest.best();
        const bool isOtherCase = !found.empty() && found[0].Distance == 0 && !found[0].IsRare;
        const std::string_view ofPack = isOtherCase ? std::string_view() : inOtherCaseOfPacks(name);
        if (isSplitFirst(isOtherCase || !ofPack.empty())) {
            tryAll(CCandidates(m_Refusal, m_Resolver).split(), Deepest);
            if (!m_Diagnosis.Readings.empty()) {
                return;
            }
        }
        if (!ofPack.empty()) {
            addPacks(ofPack);
            m_Diagnosis.Sentence += "; " + m_PackSentence;
            return;
        }
        std::vector<COffer> offers;
        std::vector<std::string> inRightCase;  // these are refused: the text has another fault, too
        bool hasRightCase = false;
        for (const CNearestNames::CNear& near : found) {
            if (isGuess(near)) {
                continue;
            }
            CRefusal refusal;
            const eFit fit =
                m_Resolver.fit(m_Refusal.replaced(near.Name), m_Refusal.UnitBegin, refusal);
            if (fit != eFit::REFUSED) {
                offers.push_back({near, fit});
                hasRightCase = hasRightCase || (near.Distance == 0 && !near.IsRare);
            } else if (near.Distance == 0 && !near.IsRare &&
                       (!hasRightCase || refusal.Trap != nullptr)) {
                inRightCase.push_back(near.Name);
            }
        }
        for (const std::string& known : inRightCase) {
            tryOne({m_Refusal.replaced(known), m_Refusal.UnitBegin}, Deepest);
        }
        if (offers.empty() && inRightCase.empty()) {
            for (const CNearestNames::CNear& near : found) {
                if (!isGuess(near)) {
                    tryOne({m_Refusal.replaced(near.Name), m_Refusal.UnitBegin}, Deepest);
                }
            }
        }
        if (!m_Diagnosis.Readings.empty()) {
            return;
        }
        offer(offers);
        if (m_Diagnosis.Suggestions.empty() && m_Diagnosis.Readings.empty()) {
            addNearestOfPacks();
        }
    }

    // Adds the pack with the most similar name. Called if the resolver knows no similar name.
    void addNearestOfPacks() {
        CNearestNames nearest(m_Refusal.token());
        for (std::size_t row = 0; row < CTable::size(); ++row) {
            const ePack pack = CTable::pack(row);
            const std::string_view name = CTable::name(row);
            if (pack != ePack::CATALOGUE && pack != ePack::SI && nearest.mayBeNear(name) &&
                m_Resolver.offers(pack)) {
                nearest.add(name);
            }
        }
        const std::vector<CNearestNames::CNear>& found = nearest.best();
        constexpr std::size_t Shortest = 3;  // all names of two letters are similar
        // In a short name, another letter is hardly a typing error.
        const bool isOtherLetter =
            !found.empty() && found[0].Name.size() == m_Refusal.token().size() && isGuess(found[0]);
        if (countCodePoints(m_Refusal.token()) >= Shortest && !found.empty() && !isOtherLetter &&
            found[0].Distance <= 1 && !m_Resolver.knows(found[0].Name) && addPacks(found[0].Name)) {
            m_Diagnosis.Sentence += "; " + m_PackSentence;
        }
    }

    // Returns true if a split name is more likely than one in other case. "Nm" is more likely N·m than nm. But
    // "Kg" is more likely kg than K·g, "KWh" more likely kWh, and "FT" more likely ft.
    bool isSplitFirst(bool isOtherCase) const {
        const std::string_view name = m_Refusal.token();
        const bool hasSmall =
            std::any_of(name.begin(), name.end(), [](char c) { return c >= 'a' && c <= 'z'; });
        return !isOtherCase || (name.size() == 2 && name[0] != 'K' && hasSmall);
    }

    // Returns a score; a lower score is better. A name is better if the whole text then measures a quantity
    // that has a name. That counts more than a slightly greater similarity, and more than a prefix in common
    // use.
    std::size_t scoreOf(const COffer& offer) const {
        const bool isWhole = m_Refusal.Token.Begin == m_Refusal.UnitBegin &&
                             m_Refusal.Token.End == m_Refusal.Text.size();
        constexpr std::size_t Step = 2;
        constexpr std::size_t Penalty = 3;
        constexpr std::size_t Other = 100;  // for a kind that the caller did not ask for
        return Step * offer.Near.Distance + (!isWhole && offer.Fit == eFit::READ ? Penalty : 0) +
               (offer.Near.IsRare ? Penalty : 0) + (offer.Fit == eFit::TARGET ? 0 : Other);
    }

    // Returns true if the similarity is an accident. People rarely mistype the first letter. In short names
    // only a swapped, a doubled or a forgotten letter counts as a typing error.
    bool isGuess(const CNearestNames::CNear& near) const {
        if (near.Distance == 0) {
            return false;
        }
        const std::string name = small(m_Refusal.token());
        const std::string known = small(near.Name);
        const std::size_t size = countCodePoints(name);
        const bool isSwapped = name.size() == known.size() &&
                               std::is_permutation(name.begin(), name.end(), known.begin());
        if (near.IsRare || (known[0] != name[0] && !isSwapped)) {
            return true;
        }
        constexpr std::size_t Short = 3;
        constexpr std::size_t Long = 7;
        if (size > Short) {
            return near.Distance > 1 && size < Long;
        }
        const bool isForgotten = size == Short && known.size() == name.size() + 1;
        return !isSwapped && !isDoubled(name, known) && !isForgotten;
    }

    static std::string small(std::string_view text) {
        std::string result(text);
        for (char& c : result) {
            c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
        }
        return result;
    }

    // Returns true if `name` is `known` with one letter twice.
    static bool isDoubled(const std::string& name, const std::string& known) {
        for (std::size_t at = 1; at < name.size(); ++at) {
            if (name[at] == name[at - 1] && name.substr(0, at) + name.substr(at + 1) == known) {
                return true;
            }
        }
        return false;
    }

    void offer(std::vector<COffer>& offers) {
        if (offers.empty()) {
            return;
        }
        auto best = scoreOf(offers.front());
        for (const COffer& offer : offers) {
            best = std::min(best, scoreOf(offer));
        }
        for (const COffer& offer : offers) {
            const bool isAsGood =
                scoreOf(offer) == best && (offer.Near.Distance == 0 || !offer.Near.IsRare);
            if (isAsGood && m_Diagnosis.Suggestions.size() < MostOffers) {
                m_Diagnosis.Suggestions.push_back(offer.Near.Name);
            }
        }
    }

    const CRefusal& m_Refusal;
    CResolver& m_Resolver;
    CDiagnosis m_Diagnosis;
    std::string m_Missing;       // a name that a pack has and the resolver does not know
    std::string m_PackSentence;  // names the packs that have it
    int m_Trials = 0;
};

}  // namespace

CDiagnosis diagnose(const CRefusal& refusal, CResolver& resolver) {
    return CAdviser(refusal, resolver).diagnose();
}

}  // namespace mensor::exact
