#include "mensor_exact/Refusal.h"

#include <utility>

#include "mensor_exact/utf8.h"

namespace mensor::exact {

namespace {

std::string sentenceOf(const CRefusal& refusal) {
    std::string sentence = refusal.Sentence;
    const std::size_t place = sentence.find("{}");
    if (place != std::string::npos) {
        sentence.replace(place, 2, refusal.token());
    }
    return sentence;
}

}  // namespace

std::size_t CRefusal::position() const noexcept {
    return countCodePoints(Text.substr(0, Token.Begin));
}

std::string CRefusal::replaced(std::string_view words) const {
    std::string text(Text.substr(0, Token.Begin));
    return text.append(words).append(Text.substr(Token.End));
}

CDiagnosis CRefusal::diagnosis() const { return diagnose(Code, Text, Token, sentenceOf(*this)); }

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

}  // namespace mensor::exact
