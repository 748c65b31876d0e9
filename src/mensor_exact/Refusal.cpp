#include "mensor_exact/Refusal.h"

#include <utility>

#include "mensor_exact/Traps.h"
#include "mensor_exact/concatenate.h"
#include "mensor_exact/utf8.h"

namespace mensor::exact {

std::size_t CRefusal::position() const noexcept {
    return countCodePoints(Text.substr(0, Token.Begin));
}

std::string CRefusal::replaced(std::string_view words) const {
    std::string text(Text.substr(0, Token.Begin));
    return text.append(words).append(Text.substr(Token.End));
}

CDiagnosis CRefusal::diagnosis() const {
    const bool isOfTrap = Trap != nullptr && *Sentence == '\0';
    return diagnose(Code, Text, Token, withText(isOfTrap ? Trap->sentence() : Sentence, token()));
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

}  // namespace mensor::exact
