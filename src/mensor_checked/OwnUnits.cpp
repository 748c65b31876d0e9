#include "mensor_checked/OwnUnits.h"

#include <charconv>
#include <cmath>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include "mensor_checked/Lock.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/NewUnit.h"
#include "mensor_checked/Parsing.h"
#include "mensor_checked/UnitReader.h"
#include "mensor_checked/Verify.h"
#include "mensor_checked/Words.h"
#include "mensor_exact/Parser.h"
#include "mensor_exact/Utf8.h"

namespace mensor {
namespace checked {

namespace {

using exact::countCodePoints;
using exact::LongestText;

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

// A piece of `text` without the blanks at its ends.
CSpan trimmed(std::string_view text, CSpan span) {
    while (span.Begin < span.End && isBlank(text[span.Begin])) {
        ++span.Begin;
    }
    while (span.Begin < span.End && isBlank(text[span.End - 1])) {
        --span.End;
    }
    return span;
}

std::size_t beginOfComment(std::string_view line) {
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '#' && (at == 0 || isBlank(line[at - 1]))) {
            return at;
        }
    }
    return line.size();
}

// A line whose unit or name is refused for a unit in its way.
struct CObstacle {
    CDiagnosis Diagnosis;
    CUnitPtr InTheWay;
};

class CLineReader {
public:
    explicit CLineReader(std::string_view line)
        : m_Line(line), m_Definition(trimmed(line, {0, beginOfComment(line)})) {}

    bool isEmpty() const { return m_Definition.Begin == m_Definition.End; }

    // Defines the unit of this line; gives its name.
    // @throws Refused, CObstacle
    std::string define(CNaming& naming) const {
        if (m_Line.size() > LongestText && countCodePoints(m_Line) > LongestText) {
            refuse(eRefusal::TOO_LONG, {0, 0},
                   "a line of more than 4096 characters is no definition");
        }
        const std::size_t equals = m_Line.find('=', m_Definition.Begin);
        if (equals >= m_Definition.End) {
            refuse(eRefusal::MISSING_OPERATOR, m_Definition,
                   "a definition is \"symbol = factor unit [offset]\"");
        }
        const CSpan symbol = trimmed(m_Line, {m_Definition.Begin, equals});
        requireName(symbol);
        CSpan rest = trimmed(m_Line, {equals + 1, m_Definition.End});
        const double factor = takeFactor(rest);
        const double offset = takeOffset(rest);
        const CUnitPtr unit = readUnit(rest);
        return make(naming, symbol, {slice(symbol), factor, unit, offset});
    }

private:
    void requireName(CSpan symbol) const {
        if (symbol.Begin == symbol.End) {
            refuse(eRefusal::EMPTY, symbol, "the symbol is missing");
        }
        if (!isName(slice(symbol))) {
            refuse(eRefusal::UNEXPECTED_CHARACTER, symbol,
                   quoted(slice(symbol)) + " is no name that a unit can be read by");
        }
    }

    // A decimal or a quotient of two, which `begin` is moved behind; none if there is none.
    std::optional<double> number(std::size_t& begin, std::size_t end) const {
        const auto decimal = [&]() -> std::optional<double> {
            const std::string_view rest = m_Line.substr(begin, end - begin);
            std::size_t sign = !rest.empty() && rest[0] == '-' ? 1U : 0U;
            sign += rest.size() > sign && rest[sign] == '.' ? 1U : 0U;
            if (rest.size() <= sign || !isDigit(rest[sign])) {
                return std::nullopt;
            }
            double x = 0.0;
            const auto [stop, error] = std::from_chars(rest.data(), rest.data() + rest.size(), x);
            const CSpan span{begin, begin + static_cast<std::size_t>(stop - rest.data())};
            if (error != std::errc()) {
                refuse(eRefusal::NUMBER_RANGE, span, "no double is that large or that small");
            }
            begin = span.End;
            return x;
        };
        const std::size_t first = begin;
        const std::optional<double> numerator = decimal();
        const bool isQuotient = numerator && begin + 1 < end && m_Line[begin] == '/' &&
                                (isDigit(m_Line[begin + 1]) || m_Line[begin + 1] == '.');
        if (!isQuotient) {
            return numerator;
        }
        ++begin;
        const double quotient = *numerator / decimal().value_or(0.0);
        if (!std::isfinite(quotient)) {
            refuse(eRefusal::NUMBER_RANGE, {first, begin}, "this quotient is no number");
        }
        return quotient;
    }

    double takeFactor(CSpan& rest) const {
        const std::size_t begin = rest.Begin;
        const std::optional<double> factor = number(rest.Begin, rest.End);
        if (!factor) {
            refuse(eRefusal::NO_NUMBER, {begin, begin + (begin < rest.End ? 1U : 0U)},
                   "behind \"=\" comes a number");
        }
        if (rest.Begin < rest.End && m_Line[rest.Begin] == ',') {
            refuse(eRefusal::DECIMAL_COMMA, {rest.Begin, rest.Begin + 1},
                   "a comma stands in this number; the decimal sign is a point");
        }
        if (!std::isnormal(*factor)) {
            refuse(eRefusal::FACTOR_RANGE, {begin, rest.Begin}, "no unit has such a size");
        }
        rest = trimmed(m_Line, rest);
        return *factor;
    }

    // The number at the end behind a blank, with its sign; 0 if there is none.
    double takeOffset(CSpan& rest) const {
        std::size_t word = rest.End;
        while (word > rest.Begin && !isBlank(m_Line[word - 1])) {
            --word;
        }
        if (word == rest.Begin) {
            return 0.0;
        }
        std::size_t begin = word;
        double sign = 1.0;
        if (begin < rest.End && m_Line[begin] == '+') {
            ++begin;
        }
        const std::optional<double> offset = number(begin, rest.End);
        if (!offset || begin != rest.End) {
            return 0.0;
        }
        rest = trimmed(m_Line, {rest.Begin, word});
        const std::size_t last = rest.End - 1;
        const bool hasSign = rest.Begin < last && isBlank(m_Line[last - 1]) &&
                             (m_Line[last] == '+' || m_Line[last] == '-');
        if (hasSign) {
            sign = m_Line[last] == '-' ? -1.0 : 1.0;
            rest = trimmed(m_Line, {rest.Begin, last});
        }
        return sign * *offset;
    }

    CUnitPtr readUnit(CSpan span) const {
        CReading reading = read(m_Line.substr(span.Begin, span.End - span.Begin), {}, false);
        if (reading.Refusal) {
            CDiagnosis& diagnosis = *reading.Refusal;
            diagnosis.Text = m_Line;
            diagnosis.Position += countCodePoints(m_Line.substr(0, span.Begin));
            diagnosis.Byte += span.Begin;
            throw Refused{std::move(diagnosis)};
        }
        return reading.Unit;
    }

    std::string make(CNaming& naming, CSpan symbol, const CDefinition& definition) const {
        try {
            naming.define(definition);
        } catch (const CIdentityError& e) {
            throw CObstacle{diagnose(eRefusal::COLLISION, m_Line, symbol, e.what()), e.inTheWay()};
        } catch (const CReadError& e) {  // the new unit's own text
            refuse(e.diagnosis().Code, symbol, e.what());
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& e) {
            refuse(eRefusal::REFUSED_BY_LIBRARY, symbol, e.what());
        }
        return definition.Symbol;
    }

    [[noreturn]] void refuse(eRefusal code, CSpan span, const std::string& sentence) const {
        throw Refused{diagnose(code, m_Line, span, sentence)};
    }

    std::string slice(CSpan span) const {
        return std::string(m_Line.substr(span.Begin, span.End - span.Begin));
    }

    const std::string_view m_Line;
    const CSpan m_Definition;
};

std::string firstOf(const std::vector<CLineFinding>& findings) {
    std::string message = "no line is refused";
    if (!findings.empty()) {
        message = "line " + std::to_string(findings[0].Line) + ": " + findings[0].Refusal.message();
    }
    if (findings.size() > 1) {
        message += " (and " + std::to_string(findings.size() - 1) + " more)";
    }
    return message;
}

}  // namespace

CDefinitions tryDefineUnits(std::string_view table) {
    constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
    if (table.substr(0, ByteOrderMark.size()) == ByteOrderMark) {
        table.remove_prefix(ByteOrderMark.size());
    }
    const Lock lock;
    CNaming naming;
    CDefinitions result;
    for (std::size_t number = 1; !table.empty(); ++number) {
        const std::size_t end = table.find('\n');
        std::string_view line = table.substr(0, end);
        table.remove_prefix(end == std::string_view::npos ? table.size() : end + 1);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        const CLineReader reader(line);
        if (reader.isEmpty()) {
            continue;
        }
        try {
            result.Names.push_back(reader.define(naming));
        } catch (Refused& refused) {
            result.Findings.push_back({number, std::move(refused.Diagnosis), nullptr});
        } catch (CObstacle& obstacle) {
            result.Findings.push_back({number, std::move(obstacle.Diagnosis), obstacle.InTheWay});
        }
    }
    if (result) {
        naming.keep();
    } else {
        result.Names.clear();
    }
    return result;
}

std::vector<std::string> defineUnits(std::string_view table) {
    CDefinitions result = tryDefineUnits(table);
    if (!result) {
        throw CDefinitionError(std::move(result.Findings));
    }
    return std::move(result.Names);
}

CDefinitionError::CDefinitionError(std::vector<CLineFinding> findings)
    : std::invalid_argument(firstOf(findings)), m_Findings(std::move(findings)) {}
CDefinitionError::CDefinitionError(const CDefinitionError&) = default;
CDefinitionError& CDefinitionError::operator=(const CDefinitionError&) = default;
CDefinitionError::~CDefinitionError() = default;

const std::vector<CLineFinding>& CDefinitionError::findings() const noexcept { return m_Findings; }

}  // namespace checked
}  // namespace mensor
