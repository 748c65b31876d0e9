#include "mensor_checked/Values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

#include "mensor/ProductUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor_checked/Checks.h"
#include "mensor_checked/Factors.h"
#include "mensor_checked/Names.h"
#include "mensor_checked/Reader.h"
#include "mensor_exact/Characters.h"
#include "mensor_exact/Parser.h"

namespace mensor {
namespace checked {

namespace {

using exact::CCursor;
using exact::countCodePoints;
using exact::eKind;
using exact::LongestText;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Whether `text` begins with `word`, in whatever case, and the word ends there.
bool beginsWithWord(std::string_view text, std::string_view word) {
    const auto sameLetter = [](char a, char b) { return (a | 0x20) == b; };
    if (text.size() < word.size() ||
        !std::equal(word.begin(), word.end(), text.begin(),
                    [&](char w, char t) { return sameLetter(t, w); })) {
        return false;
    }
    const eKind next = CCursor(text.substr(word.size())).kind();
    return next == eKind::END || next == eKind::BLANK;
}

class CValueReader {
public:
    CValueReader(std::string_view text, const CReadOptions& options)
        : m_Text(text), m_Options(options) {}

    // @throws Refused
    CValueReading read() {
        if (m_Text.size() > LongestText && countCodePoints(m_Text) > LongestText) {
            refuse(eRefusal::TOO_LONG, {0, 0}, "a text of more than 4096 characters is no value");
        }
        CCursor cursor(m_Text);
        cursor.skipBlanks();
        m_Begin = cursor.position();
        const bool isNegative = cursor.kind() == eKind::MINUS;
        if (isNegative) {
            cursor.advance();
        }
        m_End = cursor.position();
        const double size = number();
        CValueReading value;
        value.Value = isNegative ? -size : size;
        unit(value);
        return value;
    }

private:
    // The number without its sign, at m_End, which it moves behind the number.
    double number() {
        const std::string_view rest = m_Text.substr(m_End);
        if (rest.size() > 1 && rest[0] == '0' && (rest[1] | 0x20) == 'x') {
            refuse(eRefusal::HEXADECIMAL, {m_Begin, m_End + 2}, "numbers are decimal");
        }
        const bool isNumber =
            !rest.empty() &&
            (isDigit(rest[0]) || (rest[0] == '.' && rest.size() > 1 && isDigit(rest[1])));
        if (!isNumber) {
            return word(rest);
        }
        double x = 0.0;
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), x);
        const auto digits = rest.substr(0, static_cast<std::size_t>(end - rest.data()));
        m_End += digits.size();
        const auto mantissa = digits.substr(0, digits.find_first_of("eE"));
        const bool isZero = mantissa.find_first_of("123456789") == std::string_view::npos;
        if (error == std::errc::result_out_of_range || std::isinf(x) || (x == 0.0 && !isZero)) {
            refuse(eRefusal::NUMBER_RANGE, {m_Begin, m_End},
                   "no double is that large or that small");
        }
        if (m_End < m_Text.size() && m_Text[m_End] == ',') {
            refuseComma();
        }
        return x;
    }

    double word(std::string_view rest) {
        const bool isNaN = beginsWithWord(rest, "nan");
        for (const std::string_view name : {"nan", "infinity", "inf"}) {
            if (!beginsWithWord(rest, name)) {
                continue;
            }
            m_End += name.size();
            if (!m_Options.NotFinite) {
                refuse(eRefusal::NOT_FINITE, {m_Begin, m_End}, "a value is a finite number");
            }
            return isNaN ? std::numeric_limits<double>::quiet_NaN()
                         : std::numeric_limits<double>::infinity();
        }
        CCursor cursor(m_Text.substr(m_End));
        std::string sentence = "a value begins with a number";
        if (cursor.kind() == eKind::PLUS) {
            sentence += ", which has no plus sign";
        }
        const bool isAtEnd = cursor.kind() == eKind::END;
        if (!isAtEnd) {
            cursor.advance();
        }
        refuse(eRefusal::NO_NUMBER, {m_Begin, m_End + cursor.position()}, sentence);
    }

    [[noreturn]] void refuseComma() const {
        CDiagnosis diagnosis =
            diagnose(eRefusal::DECIMAL_COMMA, m_Text, {m_End, m_End + 1},
                     "a comma stands in this number; the decimal sign is a point");
        const std::string before(m_Text.substr(0, m_End));
        const std::string after(m_Text.substr(m_End + 1));
        std::size_t digits = 0;
        while (digits < after.size() && isDigit(after[digits])) {
            ++digits;
        }
        if (digits > 0 && before.find('.') == std::string::npos &&
            after.substr(digits, 1).find_first_of(",.") == std::string::npos) {
            diagnosis.Readings = {before + "." + after};
            if (digits == 3) {  // perhaps thousands
                diagnosis.Readings.push_back(before + after);
            }
        }
        throw Refused{std::move(diagnosis)};
    }

    void unit(CValueReading& value) const {
        CCursor cursor(m_Text.substr(m_End));
        cursor.skipBlanks();
        const std::size_t begin = m_End + cursor.position();
        const std::string_view text = m_Text.substr(begin);
        if (isBareOne(text)) {
            refuse(eRefusal::STRAY_NUMBER, {begin, begin + 1},
                   "two numbers stand here; the dimensionless unit is \"One\"");
        }
        CReading reading = checked::read(text, m_Options, false);
        if (reading.Refusal) {
            throw Refused{ofWhole(std::move(*reading.Refusal), begin)};
        }
        value.Unit = std::move(reading.Unit);
        value.Notes = std::move(reading.Notes);
    }

    // Alone "1" is a unit; behind a number it is rather a slip of the pen.
    static bool isBareOne(std::string_view text) {
        CCursor cursor(text);
        if (cursor.kind() != eKind::DIGIT) {
            return false;
        }
        cursor.advance();
        cursor.skipBlanks();
        return cursor.kind() == eKind::END;
    }

    // The diagnosis of the unit that begins at `begin` as one of the whole text.
    CDiagnosis ofWhole(CDiagnosis diagnosis, std::size_t begin) const {
        diagnosis.Text = m_Text;
        diagnosis.Position += countCodePoints(m_Text.substr(0, begin));
        diagnosis.Byte += begin;
        const bool isCollision = diagnosis.Code == eRefusal::COLLISION ||
                                 diagnosis.Code == eRefusal::DIMENSION_COLLISION;
        if (!isCollision) {
            const std::string before =
                std::string(m_Text.substr(0, begin)) + (begin == m_End ? " " : "");
            for (std::string& reading : diagnosis.Readings) {
                reading.insert(0, before);
            }
        }
        return diagnosis;
    }

    [[noreturn]] void refuse(eRefusal code, CSpan span, const std::string& sentence) const {
        throw Refused{diagnose(code, m_Text, span, sentence)};
    }

    const std::string_view m_Text;
    const CReadOptions& m_Options;
    std::size_t m_Begin = 0;  // of the number with its sign
    std::size_t m_End = 0;    // of what has been read of it
};

std::optional<std::string> ifReadBack(std::string text, const CUnitPtr& unit) {
    return read(text, {}, false).Unit == unit ? std::optional<std::string>(std::move(text))
                                              : std::nullopt;
}

}  // namespace

CValueReading tryReadValue(std::string_view text, const CReadOptions& options) {
    const Lock lock;
    try {
        return CValueReader(text, options).read();
    } catch (Refused& refused) {
        CValueReading value;
        value.Refusal = std::move(refused.Diagnosis);
        return value;
    }
}

CValueWithUnit readValue(std::string_view text, const CReadOptions& options) {
    CValueReading value = tryReadValue(text, options);
    if (value.Refusal) {
        throw CReadError(std::move(*value.Refusal));
    }
    return {value.Value, value.Unit};
}

CWriteError::CWriteError(const std::string& message) : std::invalid_argument(message) {}
CWriteError::~CWriteError() = default;

std::optional<std::string> textOf(const CUnitPtr& unit) {
    requireUnit(unit, "textOf");
    const Lock lock;
    for (const CUnitFormatPtr& format :
         {CStandardUnitFormat::instance(), CASCIIUnitFormat::instance()}) {
        std::string text;
        try {
            text = mensor::toStdString(format->format(unit, string_t()));
        } catch (const std::invalid_argument&) {
            continue;  // neither label nor symbol nor product
        }
        if (auto readable = ifReadBack(std::move(text), unit)) {
            return readable;
        }
    }
    for (const std::string& name : namesOf(unit)) {
        if (auto readable = ifReadBack(name, unit)) {
            return readable;
        }
    }
    return std::nullopt;
}

std::string writeValue(double value, const CUnitPtr& unit, const CReadOptions& options) {
    requireUnit(unit, "writeValue");
    if (!std::isfinite(value) && !options.NotFinite) {
        throw CWriteError("the value " + shortest(value) + " is not finite");
    }
    const std::optional<std::string> text = textOf(unit);
    if (!text) {
        throw CWriteError("the unit " + describe(unit) +
                          " has no text that reads back as the same");
    }
    return (std::isnan(value) ? "nan" : shortest(value)) + " " + *text;
}

std::string writeValue(const CValueWithUnit& value, const CReadOptions& options) {
    return writeValue(value.value(), value.unit(), options);
}

}  // namespace checked
}  // namespace mensor
