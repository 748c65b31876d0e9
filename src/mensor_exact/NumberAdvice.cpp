#include "mensor_exact/NumberAdvice.h"

#include <charconv>
#include <cstdint>
#include <iterator>
#include <numeric>

#include "mensor_exact/Characters.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/Error.h"
#include "mensor_exact/sentences.h"

namespace mensor::exact {

namespace {

std::string shortest(double number) {
    char digits[32];
    return {digits, std::to_chars(digits, std::end(digits), number).ptr};
}

// Reads the pieces of a value, one after the other.
class CValueText {
public:
    explicit CValueText(std::string_view text) : m_Text(text), m_Cursor(text) {
        m_Cursor.skipBlanks();
    }

    bool isAtEnd() const { return m_Cursor.kind() == eKind::END; }
    std::string rest() const { return std::string(m_Text.substr(m_Cursor.position())); }

    // Reads a sign. Returns "-" or an empty text.
    std::string sign() {
        const bool isMinus = m_Cursor.kind() == eKind::MINUS;
        if (isMinus || m_Cursor.kind() == eKind::PLUS) {
            m_Cursor.advance();
        }
        return isMinus ? "-" : "";
    }

    // Reads digits. Returns an empty text if there are none.
    std::string digits(eKind kind = eKind::DIGIT) {
        std::string result;
        while (m_Cursor.kind() == kind && result.size() < Longest) {
            result += static_cast<char>('0' + m_Cursor.digit());
            m_Cursor.advance();
        }
        return result;
    }

    // Reads a decimal number: digits, and maybe a point and more digits.
    std::string decimal() {
        std::string result = digits();
        if (m_Cursor.kind() == eKind::POINT && m_Cursor.peek() == eKind::DIGIT) {
            m_Cursor.advance();
            result += "." + digits();
        }
        return result;
    }

    // Reads a name, or a sign of feet or inches.
    std::string_view name() {
        if (skipCharacter(U'\'') || skipCharacter(U'\u2019')) {
            return "ft";
        }
        if (skipCharacter(U'"') || skipCharacter(U'\u201D')) {
            return "in";
        }
        const std::size_t begin = m_Cursor.position();
        while (m_Cursor.kind() == eKind::NAME) {
            m_Cursor.advance();
        }
        return m_Text.substr(begin, m_Cursor.position() - begin);
    }

    bool skip(eKind kind) {
        if (m_Cursor.kind() != kind) {
            return false;
        }
        m_Cursor.advance();
        return true;
    }

    bool skipCharacter(char32_t c) {
        if (isAtEnd() || m_Cursor.character() != c) {
            return false;
        }
        m_Cursor.advance();
        return true;
    }

    bool skipBlanks() {
        const bool isBlank = m_Cursor.kind() == eKind::BLANK;
        m_Cursor.skipBlanks();
        return isBlank;
    }

private:
    static constexpr std::size_t Longest = 18;  // longer numbers get no correction

    std::string_view m_Text;
    CCursor m_Cursor;
};

// Corrects "2,5 km" and "1,234.5 m".
void addComma(std::string_view value, std::vector<std::string>& meant) {
    CValueText text(value);
    const std::string sign = text.sign();
    const std::string whole = text.digits();
    if (whole.empty() || !text.skipCharacter(U',')) {
        return;
    }
    std::string groups = text.digits();
    const bool isOneGroup = groups.size() == 3;
    if (groups.empty()) {
        return;
    }
    if (!text.skipCharacter(U',')) {
        const std::string fraction = text.skip(eKind::POINT) ? "." + text.digits() : "";
        if (fraction.empty()) {
            meant.push_back(sign + whole + "." + groups + text.rest());
        }
        if (isOneGroup && whole.size() <= 3) {
            meant.push_back(sign + whole + groups + fraction + text.rest());
        }
        return;
    }
    do {  // "1,234,567 m"
        const std::string group = text.digits();
        if (group.size() != 3 || !isOneGroup) {
            return;
        }
        groups += group;
    } while (text.skipCharacter(U','));
    const std::string fraction = text.skip(eKind::POINT) ? "." + text.digits() : "";
    meant.push_back(sign + whole + groups + fraction + text.rest());
}

// Corrects "1.000.000 m" and "1.234,5 m".
void addPoints(std::string_view value, std::vector<std::string>& meant) {
    CValueText text(value);
    std::string number = text.sign();
    number += text.digits();
    int groups = 0;
    while (text.skip(eKind::POINT)) {
        const std::string group = text.digits();
        if (group.size() != 3) {
            return;
        }
        number += group;
        ++groups;
    }
    const bool hasComma = text.skipCharacter(U',');
    const std::string fraction = hasComma ? text.digits() : "";
    if (groups == 0 || (groups == 1 && !hasComma) || (hasComma && fraction.empty())) {
        return;
    }
    meant.push_back(number + (hasComma ? "." + fraction : "") + text.rest());
}

// Corrects "1 000 m" and "1'000 m".
void addGroups(std::string_view value, std::vector<std::string>& meant) {
    CValueText text(value);
    std::string number = text.sign();
    number += text.digits();
    int groups = 0;
    for (;;) {
        CValueText ahead = text;
        if (!ahead.skipCharacter(U'\'') && !ahead.skipCharacter(U'\u2019') &&
            !ahead.skipCharacter(U'_') && !ahead.skip(eKind::BLANK)) {
            break;
        }
        const std::string group = ahead.digits();
        if (group.size() != 3) {
            break;
        }
        number += group;
        text = ahead;
        ++groups;
    }
    if (groups > 0) {
        if (text.skip(eKind::POINT)) {
            number += "." + text.digits();
        }
        meant.push_back(number + text.rest());
    }
}

// Corrects "1/2 in", "1 1/2 in", "1-1/2 in" and "1 / 2 in".
void addFraction(std::string_view value, std::vector<std::string>& meant) {
    CValueText text(value);
    const std::string sign = text.sign();
    std::string whole = "0";
    std::string numerator = text.digits();
    CValueText ahead = text;
    if (ahead.skipBlanks() || ahead.skip(eKind::MINUS)) {
        const std::string second = ahead.digits();
        if (!second.empty()) {
            whole = numerator;
            numerator = second;
            text = ahead;
        }
    }
    text.skipBlanks();
    if (numerator.empty() || !text.skip(eKind::SLASH)) {
        return;
    }
    text.skipBlanks();
    const std::string denominator = text.digits();
    constexpr std::size_t Most = 9;  // digits
    if (denominator.empty() || denominator.size() > Most || numerator.size() > Most ||
        whole.size() > Most) {
        return;
    }
    const auto n = std::stoll(numerator);
    const auto d = std::stoll(denominator);
    if (d == 0) {
        return;
    }
    std::int64_t left = d / std::gcd(n, d);
    for (const int prime : {2, 5}) {
        while (left % prime == 0) {
            left /= prime;
        }
    }
    if (left == 1) {  // otherwise no decimal is equal to the fraction
        meant.push_back(
            sign + shortest(std::stod(whole) + static_cast<double>(n) / static_cast<double>(d)) +
            text.rest());
    }
}

// Corrects "10^3 m", "2×10³ m" and "2 x 10^-3 m".
void addPowerOfTen(std::string_view value, std::vector<std::string>& meant) {
    CValueText text(value);
    std::string number = text.sign();
    std::string mantissa = text.decimal();
    if (mantissa != "10") {
        text.skipBlanks();
        if (mantissa.empty() || !(text.skip(eKind::TIMES) || text.skip(eKind::STAR) ||
                                  text.skipCharacter(U'x') || text.skipCharacter(U'X'))) {
            return;
        }
        text.skipBlanks();
        if (text.digits() != "10") {
            return;
        }
        number += mantissa;
    } else {
        number += "1";
    }
    std::string power;
    if (text.skip(eKind::CARET) || (text.skip(eKind::STAR) && text.skip(eKind::STAR))) {
        const bool isBracketed = text.skip(eKind::OPEN);
        power = text.sign();
        const std::string digits = text.digits();
        if (digits.empty() || (isBracketed && !text.skip(eKind::CLOSE))) {
            return;
        }
        power += digits;
    } else {
        power = text.skip(eKind::RAISED_MINUS) ? "-" : "";
        const std::string digits = text.digits(eKind::RAISED_DIGIT);
        if (digits.empty()) {
            return;
        }
        power += digits;
    }
    meant.push_back(number + "e" + power + text.rest());
}

// Corrects "1 h 30 min" and "5 ft 6 in".
void addSum(std::string_view value, CResolver& resolver, std::vector<std::string>& meant) {
    constexpr std::size_t Most = 4;
    CValueText text(value);
    const std::string sign = text.sign();
    std::vector<std::string> numbers;
    std::vector<CNamedNumber> values;
    while (!text.isAtEnd()) {
        numbers.push_back(text.decimal());
        text.skipBlanks();
        const std::string_view name = text.name();
        text.skipBlanks();
        if (numbers.back().empty() || name.empty() || numbers.size() > Most ||
            !resolver.knows(name)) {
            return;
        }
        values.push_back({{}, name});
    }
    if (values.size() < 2) {
        return;
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i].Number = numbers[i];
    }
    const std::string sum = resolver.sumOf(values);
    if (!sum.empty()) {
        meant.push_back(sign + sum);
    }
}

}  // namespace

std::string sumOf(const std::vector<CNamedNumber>& values,
                  const std::function<std::optional<CMeaning>(std::string_view)>& meaningOf) {
    const std::string_view unit = values.back().Name;
    const std::optional<CMeaning> last = meaningOf(unit);
    CFraction sum;
    for (const CNamedNumber& value : values) {
        const std::optional<CMeaning> meaning = meaningOf(value.Name);
        if (!meaning || !last || !meaning->offset().isZero() || !meaning->isCompatibleWith(*last)) {
            return {};
        }
        try {
            const std::optional<CFraction> size =
                CConversion(*meaning, *last).convert(CFraction::ofText(value.Number));
            if (!size) {
                return {};
            }
            sum = sum + *size;
        } catch (const CError&) {  // a number is too long
            return {};
        }
    }
    return shortest(sum.toDouble()).append(" ").append(unit);
}

CValuesMeant valuesMeant(std::string_view text, CResolver& resolver) {
    CValuesMeant meant;
    const auto isFound = [&meant](const char* sentence) {
        meant.Sentence = sentence;
        return !meant.Values.empty();
    };
    addComma(text, meant.Values);
    if (isFound(nullptr)) {
        return meant;
    }
    addPoints(text, meant.Values);
    if (isFound(sentences::OTHER_MARKS)) {
        return meant;
    }
    addGroups(text, meant.Values);
    if (isFound(sentences::BLANKS_IN_NUMBER)) {
        return meant;
    }
    addFraction(text, meant.Values);
    if (isFound(sentences::FRACTION)) {
        return meant;
    }
    addPowerOfTen(text, meant.Values);
    if (isFound(sentences::POWER_OF_TEN)) {
        return meant;
    }
    addSum(text, resolver, meant.Values);
    if (!isFound(sentences::ONE_NUMBER)) {
        meant.Sentence = nullptr;
    }
    return meant;
}

}  // namespace mensor::exact
