#include "mensor_exact/Notes.h"

namespace mensor::exact {

std::string CNote::words(std::string_view text) const {
    std::string sentence = Sentence;
    const std::size_t place = sentence.find("{}");
    if (place != std::string::npos) {
        sentence.replace(place, 2, Token.of(text));
    }
    return sentence;
}

}  // namespace mensor::exact
