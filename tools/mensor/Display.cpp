#include "Display.h"

#include <charconv>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <vector>

#include "mensor_exact/utf8.h"

namespace {

using mensor::exact::decode;
using mensor::exact::NotUtf8;

struct CRange {
    char32_t First;
    char32_t Last;
};

template <std::size_t N>
bool isIn(char32_t c, const CRange (&ranges)[N]) {
    for (const CRange& range : ranges) {
        if (c >= range.First && c <= range.Last) {
            return true;
        }
    }
    return false;
}

// Blocks of Unicode 15 with nonspacing marks, and with East Asian Width W and F.
constexpr CRange Marks[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A},
    {0x064B, 0x065F}, {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF},
    {0x1DC0, 0x1DFF}, {0x200B, 0x200F}, {0x2060, 0x2064}, {0x20D0, 0x20FF},
    {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}, {0xE0100, 0xE01EF}};
constexpr CRange Wide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},  {0xA960, 0xA97C}, {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},  {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F},
    {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};
// Characters that break the line or change its direction.
constexpr CRange Controls[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x200E, 0x200F},
                               {0x2028, 0x202E}, {0x2066, 0x2069}, {NotUtf8, NotUtf8}};

struct CGlyph {
    std::string Shown;
    std::size_t Columns;
    std::size_t Byte;  // the index of its first byte in the text
};

std::vector<CGlyph> glyphsOf(std::string_view text) {
    std::vector<CGlyph> glyphs;
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size(); at += length) {
        const char32_t c = decode(text.substr(at), length);
        if (c == '\t') {
            glyphs.push_back({" ", 1, at});
        } else if (isIn(c, Controls)) {
            glyphs.push_back({"?", 1, at});
        } else {
            const std::size_t columns = isIn(c, Marks) ? 0 : isIn(c, Wide) ? 2 : 1;
            glyphs.push_back({std::string(text.substr(at, length)), columns, at});
        }
    }
    return glyphs;
}

}  // namespace

std::string shown(std::string_view text) {
    std::string line;
    for (const CGlyph& glyph : glyphsOf(text)) {
        line += glyph.Shown;
    }
    return line;
}

std::size_t columnsOf(std::string_view text) {
    std::size_t columns = 0;
    for (const CGlyph& glyph : glyphsOf(text)) {
        columns += glyph.Columns;
    }
    return columns;
}

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string cannotRead(const std::string& file) {
    std::error_code error;
    const auto type = std::filesystem::status(file, error).type();
    const bool isMissing = type == std::filesystem::file_type::not_found;
    const bool isFolder = type == std::filesystem::file_type::directory;
    return "cannot read " + ::quoted(file) + ": " +
           (isMissing  ? "there is no such file"
            : isFolder ? "it is a folder"
                       : "you have no permission to read it");
}

bool isBlank(std::string_view line) {
    return line.find_first_not_of(" \t") == std::string_view::npos;
}

std::string padded(const std::string& text, std::size_t columns) {
    const std::size_t own = columnsOf(text);
    return own < columns ? text + std::string(columns - own, ' ') : text;
}

std::string underlined(std::string_view text, std::size_t byte, std::size_t length,
                       const std::string& indent) {
    constexpr std::size_t Before = 40;  // columns that are shown before the place
    constexpr std::size_t After = 32;   // columns that are shown from the beginning of the place
    std::string line;
    std::string marks;
    const std::size_t place = columnsOf(text.substr(0, byte));
    std::size_t column = 0;
    bool isCut = false;
    for (const CGlyph& glyph : glyphsOf(text)) {
        const bool isBefore = column + Before < place;
        const bool isAfter = column >= place + After;
        column += glyph.Columns;
        if (isBefore || isAfter) {
            isCut = isCut || isAfter;
            if (isBefore && line.empty()) {
                line = "…";
                marks = " ";
            }
            continue;
        }
        line += glyph.Shown;
        const bool isMarked = glyph.Byte >= byte && glyph.Byte < byte + length;
        marks.append(glyph.Columns, isMarked ? '^' : ' ');
    }
    if (isCut) {
        line += "…";
    }
    if (length == 0) {
        marks += '^';
    }
    marks.erase(marks.find_last_not_of(' ') + 1);
    return indent + line + "\n" + indent + marks + "\n";
}

std::string shortest(double number) {
    char digits[32];
    return {digits, std::to_chars(digits, std::end(digits), number).ptr};
}

std::string jsonText(std::string_view text) {
    constexpr char Hexadecimal[] = "0123456789abcdef";
    std::string json = "\"";
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size(); at += length) {
        const char32_t c = decode(text.substr(at), length);
        if (c == NotUtf8) {
            json += "\\ufffd";
        } else if (c == '"' || c == '\\') {
            json += '\\';
            json += static_cast<char>(c);
        } else if (c < 0x20 || c == 0x7F) {
            json += "\\u00";
            json += Hexadecimal[c >> 4];
            json += Hexadecimal[c & 15];
        } else {
            json += text.substr(at, length);
        }
    }
    return json + "\"";
}
