// String_fuzz.cpp: compares the string class with a simple model that decodes the whole text at
// each operation. Both must count, index, cut and iterate the same code points and keep every byte.
// The bytes of the input are operations on three texts.
#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Input.h"
#include "mensor/utf8_string.h"
#include "property.h"
#include "support/outcome.h"

using namespace mensor;
using mensor::fuzz::require;

namespace {

struct Piece {
    std::string Bytes;
    char32_t CodePoint;
};

// The rule of utf8_string.h: as many bytes as the lead byte has leading ones.
std::vector<Piece> piecesOf(const std::string& bytes) {
    std::vector<Piece> pieces;
    for (std::size_t i = 0; i < bytes.size(); i += pieces.back().Bytes.size()) {
        const unsigned lead = static_cast<unsigned char>(bytes[i]);
        unsigned ones = 0;
        while (ones < 8 && (lead >> (7 - ones)) % 2 == 1) {
            ++ones;
        }
        if (ones < 2 || ones > 6 || i + ones > bytes.size()) {
            pieces.push_back({bytes.substr(i, 1), lead});
            continue;
        }
        char32_t codePoint = lead % (1U << (7 - ones));
        for (std::size_t next = i + 1; next < i + ones; ++next) {
            codePoint = codePoint * 64 + static_cast<unsigned char>(bytes[next]) % 64;
        }
        pieces.push_back({bytes.substr(i, ones), codePoint});
    }
    return pieces;
}

std::string encoded(char32_t c) {
    if (c > 0x7FFFFFFF) {
        return "\xEF\xBF\xBD";
    }
    if (c < 0x80) {
        return std::string(1, static_cast<char>(c));
    }
    std::string further;
    std::uint32_t room = 0x40;  // the smallest number that needs more bytes
    for (; further.empty() || c >= room; c >>= 6) {
        further.insert(further.begin(), static_cast<char>(0x80 | (c & 0x3F)));
        room = 0x40U >> further.size();
    }
    const unsigned marks = 0x7F80U >> further.size() & 0xFFU;
    return static_cast<char>(marks | c) + further;
}

std::string joined(const std::vector<Piece>& pieces, std::size_t from, std::size_t count) {
    std::string bytes;
    for (std::size_t i = from; i < pieces.size() && i - from < count; ++i) {
        bytes += pieces[i].Bytes;
    }
    return bytes;
}

void compare(const utf8_string& text, const std::string& bytes) {
    require(std::string(text.data(), text.size()) == bytes, bytes, "has other bytes");
    require(text.cpp_str() == bytes && text.c_str()[bytes.size()] == 0, bytes, "has other bytes");
    require(text.empty() == bytes.empty(), bytes, "has a wrong empty()");
    const std::vector<Piece> pieces = piecesOf(bytes);
    require(text.length() == pieces.size(), bytes, "has a wrong length");
    std::size_t index = 0;
    for (const char32_t c : text) {
        require(index < pieces.size() && c == pieces[index].CodePoint, bytes,
                "gives a wrong code point to an iterator");
        require(text[index] == c && text.at(index) == c, bytes,
                "gives a wrong code point to an index");
        ++index;
    }
    require(index == pieces.size(), bytes, "ends before its last code point");
    require(text[index] == 0 && *text.end() == 0, bytes, "is not 0 at its end");
    const auto end = text.end();
    require(++text.end() == end, bytes, "has an iterator that passes the end");
}

void checkPastTheEnd(const utf8_string& text) {
    const std::size_t length = text.length();
    require(outcomeOf([&] { text.at(length); }) == "std::out_of_range: utf8_string::at: index " +
                                                       std::to_string(length) + " in a text of " +
                                                       std::to_string(length) + " code points",
            text.cpp_str(), "accepts an index beyond its end");
}

void compareOrder(const utf8_string& a, const utf8_string& b, const std::string& x,
                  const std::string& y) {
    const int order = x.compare(y);
    require((a == b) == (order == 0) && (a != b) == (order != 0) && (a < b) == (order < 0) &&
                (a > b) == (order > 0) && (a <= b) == (order <= 0) && (a >= b) == (order >= 0),
            x + "|" + y, "do not compare as their bytes do");
    require(order != 0 || std::hash<utf8_string>()(a) == std::hash<utf8_string>()(b), x,
            "has another hash code than an equal text");
    std::ostringstream stream, expected;
    stream.width(7);
    expected.width(7);
    stream << a;
    expected << x;
    require(stream.str() == expected.str(), x, "is written wrongly to a stream");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t LongestInput = 128;
    constexpr std::size_t LongestText = 64;
    fuzz::CInput input(data, size < LongestInput ? size : LongestInput);
    std::array<utf8_string, 3> texts;
    std::array<std::string, 3> models;
    while (!input.empty()) {
        const std::uint8_t choice = input.byte();
        const std::size_t i = choice % 3;
        const std::size_t j = choice / 3 % 3;
        utf8_string& text = texts[i];
        std::string& model = models[i];
        switch (choice / 9 % 12) {
            case 0: text = utf8_string(model = input.text(15)); break;
            case 1:
                model = input.text(15);
                text = utf8_string(model.c_str());
                model = model.c_str();
                break;
            case 2: {
                const std::string bytes = input.text(15);
                text += utf8_string(bytes);
                model += bytes;
                break;
            }
            case 3: {
                const std::string bytes = input.text(15);
                text += bytes.c_str();
                model += bytes.c_str();
                break;
            }
            case 4:
                text.append(texts[j]);
                model += std::string(models[j]);
                break;
            case 5: {
                const char32_t c = input.word();
                text += c;
                model += encoded(c);
                break;
            }
            case 6: {
                const char32_t c = input.byte();
                text = texts[j] + c;
                model = models[j] + encoded(c);
                break;
            }
            case 7: {
                const std::size_t from = input.below(20), count = input.below(20);
                text = texts[j].substr(from, count);
                model = joined(piecesOf(models[j]), from, count);
                break;
            }
            case 8: {
                const std::size_t from = input.below(20);
                text = texts[j].substr(from);
                model = joined(piecesOf(models[j]), from, models[j].size());
                break;
            }
            case 9: {
                const std::size_t count = input.below(20);
                const char32_t c = input.word();
                text = utf8_string(count, c);
                model.clear();
                for (std::size_t n = 0; n < count; ++n) {
                    model += encoded(c);
                }
                break;
            }
            case 10:
                text = texts[j] + texts[(j + 1) % 3];
                model = models[j] + models[(j + 1) % 3];
                break;
            default:
                // A text in shortest form is the concatenation of its code points.
                utf8_string copy;
                std::string shortest;
                for (const char32_t c : texts[j]) {
                    copy.push_back(c);
                    shortest += encoded(c);
                }
                text = copy;
                model = shortest;
        }
        if (model.size() > LongestText) {
            text = utf8_string();
            model.clear();
        }
        compare(text, model);
        compareOrder(text, texts[j], model, models[j]);
    }
    checkPastTheEnd(texts[0]);
    return 0;
}
