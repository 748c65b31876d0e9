#include "mensor_exact/concatenate.h"

#include <algorithm>
#include <cstddef>

namespace mensor::exact {

std::string concatenate(std::initializer_list<std::string_view> texts) {
    std::size_t size = 0;
    for (const std::string_view text : texts) {
        size += text.size();
    }
    std::string result;
    result.reserve(size);
    for (const std::string_view text : texts) {
        result += text;
    }
    return result;
}

std::string withText(std::string sentence, std::string_view text) {
    const std::size_t place = sentence.find("{}");
    if (place != std::string::npos) {
        sentence.replace(place, 2, text);
    }
    return sentence;
}

std::string quoted(std::string_view text) {
    constexpr std::size_t Shown = 60;
    std::size_t end = std::min(text.size(), Shown);
    while (end > 0 && end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;  // cut between two characters
    }
    return concatenate({"\"", text.substr(0, end), end < text.size() ? "...\"" : "\""});
}

}  // namespace mensor::exact
