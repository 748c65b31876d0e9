#include "mensor_exact/Refusal.h"

#include <utility>

#include "mensor_exact/Utf8.h"

namespace mensor {
namespace exact {

namespace {

std::string sentenceOf(const CRefusal& refusal) {
    std::string sentence = refusal.Sentence;
    const std::size_t place = sentence.find("{}");
    if (place != std::string::npos) {
        sentence.replace(place, 2, refusal.token());
    }
    return sentence;
}

// Cuts the text of a refusal into pieces and joins them anew.
class CReadingWriter {
public:
    explicit CReadingWriter(const CRefusal& refusal) : m_Refusal(refusal), m_Text(refusal.Text) {}

    std::vector<std::string> readings() const {
        const CSpan token = m_Refusal.Token;
        const CSpan first = m_Refusal.Pieces[0];
        switch (m_Refusal.Readings) {
            case eReadings::NONE: return {};
            case eReadings::TIMES: return {before(token.Begin) + "·" + from(token.Begin)};
            case eReadings::ONE: return {before(m_Refusal.UnitBegin) + "1" + from(token.Begin)};
            case eReadings::FRACTION:
                return {before(first.Begin) + "(" + slice(first) + "/" + slice(token) + ")" +
                        from(token.End)};
            case eReadings::POWER:
                return {before(first.Begin) + "(" + slice(first) + ")" + from(token.Begin)};
            case eReadings::DIVISION: return division();
            case eReadings::COMMA: return comma();
        }
        return {};
    }

    std::string replaced(std::string_view words) const {
        const CSpan token = m_Refusal.Token;
        return before(token.Begin).append(words) + from(token.End);
    }

private:
    std::vector<std::string> division() const {
        const auto [a, b, c] = m_Refusal.Pieces;
        const std::string begin = before(a.Begin);
        const std::string end = from(c.End);
        const std::string times = a.of(m_Text) == "1" ? slice(c) : slice(a) + "·" + slice(c);
        return {begin + slice(a) + "/(" + slice(b) + "·" + slice(c) + ")" + end,
                begin + times + "/" + slice(b) + end};
    }

    std::vector<std::string> comma() const {
        const CSpan token = m_Refusal.Token;
        const std::string number(m_Text.substr(0, token.Begin));
        const std::string rest = from(token.End);
        std::size_t digits = 0;
        while (digits < rest.size() && rest[digits] >= '0' && rest[digits] <= '9') {
            ++digits;
        }
        const bool isOnlyMark = number.find('.') == std::string::npos &&
                                rest.substr(digits, 1).find_first_of(",.") == std::string::npos;
        if (digits == 0 || !isOnlyMark) {
            return {};
        }
        std::vector<std::string> readings{number + "." + rest};
        if (digits == 3) {  // perhaps thousands
            readings.push_back(number + rest);
        }
        return readings;
    }

    // What stands before `end`, with a blank between the number and the unit.
    std::string before(std::size_t end) const {
        const std::size_t unit = m_Refusal.UnitBegin;
        std::string text(m_Text.substr(0, unit));
        if (unit > 0 && ((text.back() >= '0' && text.back() <= '9') || text.back() == '.')) {
            text += ' ';
        }
        return text.append(m_Text.substr(unit, end - unit));
    }

    std::string from(std::size_t begin) const { return std::string(m_Text.substr(begin)); }
    std::string slice(CSpan span) const { return std::string(span.of(m_Text)); }

    const CRefusal& m_Refusal;
    const std::string_view m_Text;
};

}  // namespace

std::size_t CRefusal::position() const noexcept {
    return countCodePoints(Text.substr(0, Token.Begin));
}

std::string CRefusal::replaced(std::string_view words) const {
    return CReadingWriter(*this).replaced(words);
}

CDiagnosis CRefusal::diagnosis() const {
    CDiagnosis result = diagnose(Code, Text, Token, sentenceOf(*this));
    result.Readings = CReadingWriter(*this).readings();
    return result;
}

CDiagnosis diagnose(eRefusal code, std::string_view text, CSpan token, std::string sentence) {
    CDiagnosis diagnosis;
    diagnosis.Code = code;
    diagnosis.Text = text;
    diagnosis.Position = countCodePoints(text.substr(0, token.Begin));
    diagnosis.Byte = token.Begin;
    diagnosis.Token = token.of(text);
    diagnosis.Sentence = std::move(sentence);
    return diagnosis;
}

}  // namespace exact
}  // namespace mensor
