#include "mensor_exact/Diagnosis.h"

#include <string_view>
#include <utility>

#include "mensor_exact/utf8.h"

namespace mensor::exact {

namespace {

std::string quotedList(const std::vector<std::string>& items) {
    std::string list;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) {
            list += i + 1 < items.size() ? ", " : " or ";
        }
        list += "\"" + items[i] + "\"";
    }
    return list;
}

// Returns true if nothing is known about an unknown name.
bool isOnlyUnknown(const CDiagnosis& diagnosis) {
    return diagnosis.Code == eRefusal::UNKNOWN_NAME && diagnosis.Readings.empty() &&
           diagnosis.Suggestions.empty() && diagnosis.Packs.empty() &&
           diagnosis.Sentence == "no unit has the name " + quotedList({diagnosis.Token});
}

std::string inCapitals(std::string text) {
    for (char& c : text) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return text;
}

}  // namespace

const char* nameOf(eRefusal code) {
    switch (code) {
        case eRefusal::EMPTY: return "EMPTY";
        case eRefusal::TOO_LONG: return "TOO_LONG";
        case eRefusal::TOO_DEEP: return "TOO_DEEP";
        case eRefusal::MALFORMED_TEXT: return "MALFORMED_TEXT";
        case eRefusal::UNEXPECTED_CHARACTER: return "UNEXPECTED_CHARACTER";
        case eRefusal::UNKNOWN_NAME: return "UNKNOWN_NAME";
        case eRefusal::STRAY_NUMBER: return "STRAY_NUMBER";
        case eRefusal::MISSING_UNIT: return "MISSING_UNIT";
        case eRefusal::MISSING_OPERATOR: return "MISSING_OPERATOR";
        case eRefusal::SECOND_DIVISION: return "SECOND_DIVISION";
        case eRefusal::PRODUCT_AFTER_DIVISION: return "PRODUCT_AFTER_DIVISION";
        case eRefusal::OPEN_BRACKET: return "OPEN_BRACKET";
        case eRefusal::STRAY_BRACKET: return "STRAY_BRACKET";
        case eRefusal::MALFORMED_EXPONENT: return "MALFORMED_EXPONENT";
        case eRefusal::INEXACT_EXPONENT: return "INEXACT_EXPONENT";
        case eRefusal::EXPONENT_RANGE: return "EXPONENT_RANGE";
        case eRefusal::SECOND_EXPONENT: return "SECOND_EXPONENT";
        case eRefusal::OFFSET_IN_PRODUCT: return "OFFSET_IN_PRODUCT";
        case eRefusal::PREFIXED_OFFSET: return "PREFIXED_OFFSET";
        case eRefusal::COLLISION: return "COLLISION";
        case eRefusal::DIMENSION_COLLISION: return "DIMENSION_COLLISION";
        case eRefusal::FACTOR_RANGE: return "FACTOR_RANGE";
        case eRefusal::REFUSED_BY_LIBRARY: return "REFUSED_BY_LIBRARY";
        case eRefusal::NO_NUMBER: return "NO_NUMBER";
        case eRefusal::DECIMAL_COMMA: return "DECIMAL_COMMA";
        case eRefusal::HEXADECIMAL: return "HEXADECIMAL";
        case eRefusal::NOT_FINITE: return "NOT_FINITE";
        case eRefusal::NUMBER_RANGE: return "NUMBER_RANGE";
        case eRefusal::UNKNOWN_CODE: return "UNKNOWN_CODE";
        case eRefusal::NO_MEANING: return "NO_MEANING";
        case eRefusal::NAME_TAKEN: return "NAME_TAKEN";
        case eRefusal::DIFFERENT_DIMENSIONS: return "DIFFERENT_DIMENSIONS";
        case eRefusal::MISLEADING: return "MISLEADING";
        case eRefusal::LIMIT_REACHED: return "LIMIT_REACHED";
    }
    return "?";
}

std::string CDiagnosis::message() const {
    std::string message = Sentence;
    if (isOnlyUnknown(*this)) {
        message += " (mensor list shows all names; a definition adds one)";
    }
    const bool isCollision = Code == eRefusal::COLLISION || Code == eRefusal::DIMENSION_COLLISION;
    if (!Readings.empty() && !isCollision) {  // the sentence of a collision names both meanings
        message += " (write " + quotedList(Readings) + ")";
    }
    if (!Suggestions.empty()) {
        message += " (did you mean " + quotedList(Suggestions) + "?)";
    }
    if (!Packs.empty()) {
        std::string names = Packs[0];
        std::string enumerators = "ePack::" + inCapitals(Packs[0]);
        for (const std::string& pack : MorePacks) {
            names += "," + pack;
            enumerators += " and ePack::" + inCapitals(pack);
        }
        message += " (type --pack " + names + ", or ask for " + enumerators;
        if (!WithPacks.empty()) {
            message += "; then write " + quotedList(WithPacks);
        }
        message += ")";
    }
    return message;
}

std::string CDiagnosis::caret() const {
    std::string line;
    std::string marks(Position, ' ');
    const std::size_t end = Byte + Token.size();
    std::size_t length = 0;
    for (std::size_t at = 0; at < Text.size(); at += length) {
        const char32_t c = decode(std::string_view(Text).substr(at), length);
        const bool breaksLine =
            c == NotUtf8 || c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
        line += breaksLine ? "?" : Text.substr(at, length);
        if (at >= Byte && at < end) {
            marks += '^';
        }
    }
    if (Token.empty()) {
        marks += '^';
    }
    return line + "\n" + marks + "\n";
}

CReadError::CReadError(CDiagnosis diagnosis)
    : std::invalid_argument(diagnosis.message()), m_Diagnosis(std::move(diagnosis)) {}
CReadError::CReadError(const CReadError&) = default;
CReadError& CReadError::operator=(const CReadError&) = default;
CReadError::~CReadError() = default;

const CDiagnosis& CReadError::diagnosis() const noexcept { return m_Diagnosis; }

}  // namespace mensor::exact
