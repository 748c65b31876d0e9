#include "mensor_exact/DefinitionLine.h"

#include <algorithm>
#include <string>
#include <utility>

#include "mensor_exact/Characters.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/Parser.h"
#include "mensor_exact/Reading.h"
#include "mensor_exact/concatenate.h"
#include "mensor_exact/utf8.h"

namespace mensor::exact {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Returns `span` without the blanks at its ends.
CSpan trimmed(std::string_view text, CSpan span) {
    while (span.Begin < span.End && isBlank(text[span.Begin])) {
        ++span.Begin;
    }
    while (span.Begin < span.End && isBlank(text[span.End - 1])) {
        --span.End;
    }
    return span;
}

// Returns the line without its comment.
CSpan definitionIn(std::string_view line) {
    std::size_t end = 0;
    while (end < line.size() && (line[end] != '#' || (end > 0 && !isBlank(line[end - 1])))) {
        ++end;
    }
    return trimmed(line, {0, end});
}

// Thrown for a refused line.
struct Refused {
    CDiagnosis Diagnosis;
};

// Reads one line from its beginning to its end. All functions throw Refused.
class CLineReader {
public:
    CLineReader(std::string_view line, CDefinitionLine& result)
        : m_Line(line), m_Result(result), m_Definition(definitionIn(line)) {}

    void read() {
        if (m_Line.size() > LongestText && countCodePoints(m_Line) > LongestText) {
            refuse(eRefusal::TOO_LONG, {0, 0}, "a line cannot have more than 4096 characters");
        }
        const std::size_t equals = m_Line.find('=', m_Definition.Begin);
        if (equals >= m_Definition.End) {
            refuse(eRefusal::MISSING_OPERATOR, m_Definition,
                   "a definition is \"name = number unit\"");
        }
        readName(trimmed(m_Line, {m_Definition.Begin, equals}));
        const CSpan rest = trimmed(m_Line, {equals + 1, m_Definition.End});
        if (!isBaseUnit(rest)) {
            readSize(rest);
        }
    }

private:
    void readName(CSpan name) {
        std::size_t word = name.Begin;
        if (skipWord("replace", word, name.End)) {
            m_Result.TakesAway = true;
            name.Begin = word;
        }
        if (name.Begin == name.End) {
            refuse(eRefusal::EMPTY, name, "the name is missing");
        }
        if (!isName(name.of(m_Line))) {
            refuse(eRefusal::UNEXPECTED_CHARACTER, name,
                   quoted(name.of(m_Line)) + " cannot be the name of a unit");
        }
        m_Result.Name = name;
    }

    bool isBaseUnit(CSpan rest) const {
        return skipWord("base", rest.Begin, rest.End) && rest.of(m_Line) == "unit";
    }

    void readSize(CSpan rest) {
        const std::size_t begin = rest.Begin;
        if (!beginsDecimal(begin + (charAt(begin) == '-' ? 1U : 0U))) {
            refuseNoNumber(rest);
        }
        CLineValue size;
        size.Number = number(rest);
        if (size.Number.isZero() || size.Number.isNegative()) {
            refuse(eRefusal::FACTOR_RANGE, {begin, rest.Begin},
                   "the size of a unit must be above zero");
        }
        const std::size_t comma = std::min(m_Line.find(',', rest.Begin), rest.End);
        size.NumberText = {begin, rest.Begin};
        size.Unit = trimmed(m_Line, {rest.Begin, comma});
        if (comma < rest.End) {
            readZero(comma, rest.End);
        } else {
            requireNoNumber(size.Unit);
        }
        requireUnit(size);
        m_Result.Size = std::move(size);
    }

    void readZero(std::size_t comma, std::size_t end) {
        CSpan rest = trimmed(m_Line, {comma + 1, end});
        if (!skipWord("zero", rest.Begin, rest.End) || !skipWord("at", rest.Begin, rest.End)) {
            refuse(eRefusal::UNEXPECTED_CHARACTER, {comma, comma + 1},
                   "\"zero at\" and a value must follow the comma");
        }
        CLineValue zero;
        const std::size_t begin = rest.Begin;
        const eKind sign = CCursor(m_Line, rest.Begin).kind();
        if (beginsDecimal(rest.Begin)) {
            CDiagnosis diagnosis =
                exact::diagnose(eRefusal::NO_NUMBER, m_Line, {rest.Begin, rest.Begin + 1},
                                "the number after \"zero at\" must have a sign");
            diagnosis.Readings = {before(rest.Begin) + "+" + from(rest.Begin)};
            throw Refused{std::move(diagnosis)};
        }
        if (rest.Begin == rest.End || (sign != eKind::PLUS && sign != eKind::MINUS)) {
            refuse(eRefusal::NO_NUMBER, {rest.Begin, rest.Begin},
                   "a number with a sign must follow \"zero at\"");
        }
        CCursor cursor(m_Line, rest.Begin);
        cursor.advance();
        rest = trimmed(m_Line, {cursor.position(), rest.End});
        if (!beginsDecimal(rest.Begin)) {
            refuse(eRefusal::NO_NUMBER, {rest.Begin, rest.Begin}, "a number must follow the sign");
        }
        zero.Number = number(rest);
        if (sign == eKind::MINUS) {
            zero.Number = -zero.Number;
        }
        zero.NumberText = {begin, rest.Begin};
        zero.Unit = trimmed(m_Line, rest);
        requireUnit(zero);
        m_Result.Zero = std::move(zero);
    }

    void requireUnit(const CLineValue& value) {
        if (value.Unit.Begin == value.Unit.End) {
            CDiagnosis diagnosis =
                exact::diagnose(eRefusal::EMPTY, m_Line, value.Unit, "the unit is missing");
            diagnosis.Readings = {before(value.Unit.End) + " One" + from(value.Unit.End)};
            throw Refused{std::move(diagnosis)};
        }
    }

    // Numbers.

    bool beginsDecimal(std::size_t at) const {
        return isDigit(charAt(at + (charAt(at) == '.' ? 1U : 0U)));
    }

    // Reads a decimal, or a quotient of two decimals, at the beginning of `rest`. Removes it from `rest`.
    CFraction number(CSpan& rest) {
        const std::size_t begin = rest.Begin;
        const CQuotientText text = quotient(rest);
        try {
            const CFraction above = CFraction::ofText(text.Above.of(m_Line));
            return text.Below.End == 0 ? above : above / CFraction::ofText(text.Below.of(m_Line));
        } catch (const CError& error) {
            refuse(eRefusal::NUMBER_RANGE, {begin, rest.Begin},
                   error.code() == eError::DIVISION_BY_ZERO
                       ? "the denominator is zero"
                       : "this number is too long or too large");
        }
    }

    struct CQuotientText {
        CSpan Above;
        CSpan Below;  // the denominator; empty if there is none
    };

    CQuotientText quotient(CSpan& rest) {
        CQuotientText result;
        result.Above = decimal(rest);
        if (charAt(rest.Begin) == '/' && beginsDecimal(rest.Begin + 1)) {
            ++rest.Begin;
            result.Below = decimal(rest);
        }
        return result;
    }

    CSpan decimal(CSpan& rest) {
        std::size_t end = rest.Begin;
        end += charAt(end) == '-' ? 1U : 0U;
        skipDigits(end);
        if (charAt(end) == '.') {
            ++end;
            skipDigits(end);
        }
        if ((charAt(end) | 0x20) == 'e') {
            std::size_t exponent =
                end + (charAt(end + 1) == '-' || charAt(end + 1) == '+' ? 2U : 1U);
            if (isDigit(charAt(exponent))) {
                skipDigits(exponent);
                end = exponent;
            }
        }
        const CSpan span{rest.Begin, end};
        if (charAt(end) == ',' && isDigit(charAt(end + 1))) {
            refuseComma(span);
        }
        rest.Begin = end;
        return span;
    }

    void refuseComma(CSpan number) {
        CDiagnosis diagnosis =
            exact::diagnose(eRefusal::DECIMAL_COMMA, m_Line, {number.End, number.End + 1},
                            "there is a comma in this number; the decimal sign is a point");
        diagnosis.Readings = {before(number.End) + "." + from(number.End + 1)};
        std::size_t end = number.End + 1;
        skipDigits(end);
        constexpr std::size_t Group = 3;
        if (end - number.End - 1 == Group) {  // the comma may separate thousands
            diagnosis.Readings.push_back(before(number.End) + from(number.End + 1));
        }
        throw Refused{std::move(diagnosis)};
    }

    [[noreturn]] void refuseNoNumber(CSpan rest) {
        CDiagnosis diagnosis =
            exact::diagnose(eRefusal::NO_NUMBER, m_Line,
                            {rest.Begin, rest.Begin + (rest.Begin < rest.End ? 1U : 0U)},
                            "a number or \"base unit\" must follow \"=\"");
        if (rest.Begin < rest.End) {
            diagnosis.Readings = {before(rest.Begin) + "1 " + from(rest.Begin)};
        }
        throw Refused{std::move(diagnosis)};
    }

    // Refuses a number after the unit: people may mean an exponent or a zero.
    void requireNoNumber(CSpan unit) {
        std::size_t word = unit.End;
        while (word > unit.Begin && !isBlank(m_Line[word - 1])) {
            --word;
        }
        if (word == unit.Begin) {
            return;
        }
        std::size_t digits = word + (m_Line[word] == '+' || m_Line[word] == '-' ? 1U : 0U);
        if (!isNumber({digits, unit.End})) {
            return;
        }
        CSpan rest = trimmed(m_Line, {unit.Begin, word});
        bool isMinus = m_Line[word] == '-';
        const std::size_t last = rest.End - 1;
        const bool isSignApart = digits == word && rest.Begin < last && isBlank(m_Line[last - 1]) &&
                                 (m_Line[last] == '+' || m_Line[last] == '-');
        if (isSignApart) {
            isMinus = m_Line[last] == '-';
            word = last;
            rest = trimmed(m_Line, {rest.Begin, last});
        }
        const std::string number(CSpan{digits, unit.End}.of(m_Line));
        const std::string sign = isMinus ? "-" : "+";
        const std::string begin = before(rest.End);
        const std::string end = from(unit.End);
        CDiagnosis diagnosis = exact::diagnose(
            eRefusal::STRAY_NUMBER, m_Line, {word, unit.End},
            "a number after a unit may be an exponent or a zero; write a zero after \", zero at\"");
        diagnosis.Readings = {
            concatenate({begin, ", zero at ", sign, number, " ", rest.of(m_Line), end})};
        const bool isWhole = std::all_of(number.begin(), number.end(), isDigit);
        if (isWhole && !isSignApart) {
            diagnosis.Readings.push_back(
                concatenate({begin, "^", isMinus ? "-" : "", number, end}));
        }
        throw Refused{std::move(diagnosis)};
    }

    bool isNumber(CSpan span) {
        if (!beginsDecimal(span.Begin)) {
            return false;
        }
        quotient(span);
        return span.Begin == span.End;
    }

    // Pieces of the line.

    // Skips `word` and the blank after it, and returns true. Returns false if another text is next.
    // At the end of the line no blank is needed.
    bool skipWord(std::string_view word, std::size_t& at, std::size_t end) const {
        const std::size_t behind = at + word.size();
        if (behind > end || m_Line.substr(at, word.size()) != word ||
            (behind < end && !isBlank(m_Line[behind]))) {
            return false;
        }
        at = trimmed(m_Line, {behind, end}).Begin;
        return true;
    }

    void skipDigits(std::size_t& position) const {
        while (isDigit(charAt(position))) {
            ++position;
        }
    }

    char charAt(std::size_t position) const {
        return position < m_Definition.End ? m_Line[position] : '\0';
    }

    // Returns the definition before `end`, without the comment.
    std::string before(std::size_t end) const {
        return std::string(CSpan{m_Definition.Begin, end}.of(m_Line));
    }
    std::string from(std::size_t begin) const {
        return std::string(CSpan{begin, m_Definition.End}.of(m_Line));
    }

    [[noreturn]] void refuse(eRefusal code, CSpan span, std::string sentence) const {
        throw Refused{exact::diagnose(code, m_Line, span, std::move(sentence))};
    }

    const std::string_view m_Line;
    CDefinitionLine& m_Result;
    const CSpan m_Definition;
};

}  // namespace

CDefinitionLines::CDefinitionLines(std::string_view text) : m_Rest(text) {
    constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, ByteOrderMark.size()) == ByteOrderMark) {
        m_Rest.remove_prefix(ByteOrderMark.size());
    }
}

bool CDefinitionLines::next() {
    while (!m_Rest.empty()) {
        const std::size_t end = m_Rest.find('\n');
        m_Line = m_Rest.substr(0, end);
        m_Rest.remove_prefix(end == std::string_view::npos ? m_Rest.size() : end + 1);
        ++m_Number;
        if (!m_Line.empty() && m_Line.back() == '\r') {
            m_Line.remove_suffix(1);
        }
        const CSpan definition = definitionIn(m_Line);
        if (definition.Begin < definition.End) {
            return true;
        }
    }
    return false;
}

std::optional<CDiagnosis> takeApart(std::string_view line, CDefinitionLine& result) {
    try {
        result = {};
        CLineReader(line, result).read();
        return std::nullopt;
    } catch (Refused& refused) {
        return std::move(refused.Diagnosis);
    }
}

CDiagnosis inLine(CDiagnosis diagnosis, std::string_view line, CSpan part) {
    const CSpan all = definitionIn(line);
    diagnosis.Text = line;
    diagnosis.Position += countCodePoints(line.substr(0, part.Begin));
    diagnosis.Byte += part.Begin;
    std::string before(CSpan{all.Begin, part.Begin}.of(line));
    if (!before.empty() && !isBlank(before.back())) {
        before += ' ';  // "3/s" is not "31/s"
    }
    for (std::string& reading : diagnosis.Readings) {
        reading = concatenate({before, reading, CSpan{part.End, all.End}.of(line)});
    }
    return diagnosis;
}

void keepReadings(CDiagnosis& diagnosis, const std::function<bool(std::string_view)>& isAccepted) {
    auto& readings = diagnosis.Readings;
    readings.erase(std::remove_if(readings.begin(), readings.end(),
                                  [&](const std::string& line) { return !isAccepted(line); }),
                   readings.end());
}

}  // namespace mensor::exact
