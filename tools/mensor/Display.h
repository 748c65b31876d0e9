// Display.h: prepares text for a terminal and for JSON.
#ifndef MENSOR_TOOL_DISPLAY_H
#define MENSOR_TOOL_DISPLAY_H

#include <cstddef>
#include <string>
#include <string_view>

/// Returns `text` in a form that is safe for a terminal: "?" replaces control characters and bytes that are
/// not UTF-8, a blank replaces a tab.
std::string shown(std::string_view text);

/// Returns the number of terminal columns of `text`: none for combining characters, two for East Asian wide
/// characters. The locale does not matter.
std::size_t columnsOf(std::string_view text);

/// Returns `text` in quotation marks.
std::string quoted(std::string_view text);

/// Returns "cannot read "units.txt": there is no such file", or another reason.
std::string cannotRead(const std::string& file);

/// Returns whether the line has only blanks and tabs.
bool isBlank(std::string_view line);

/// Returns `text`, filled with blanks to `columns`.
std::string padded(const std::string& text, std::size_t columns);

/// Returns two lines that begin with `indent`: `text`, and carets under the `length` bytes from `byte`. For
/// a long text, shows only the part around that place.
std::string underlined(std::string_view text, std::size_t byte, std::size_t length,
                       const std::string& indent);

/// Returns the shortest digits that read back as the same double.
std::string shortest(double number);

/// Returns `text` as a string of JSON, in quotes. Bytes that are not UTF-8 become U+FFFD.
std::string jsonText(std::string_view text);

/// The fields of one JSON object.
class CJsonObject {
public:
    CJsonObject& text(const char* name, std::string_view value) {
        return raw(name, jsonText(value));
    }
    CJsonObject& number(const char* name, double value) { return raw(name, shortest(value)); }
    CJsonObject& count(const char* name, std::size_t value) {
        return raw(name, std::to_string(value));
    }
    CJsonObject& raw(const char* name, const std::string& json) {
        m_Fields += (m_Fields.empty() ? "" : ",") + jsonText(name) + ":" + json;
        return *this;
    }
    std::string toString() const { return "{" + m_Fields + "}"; }

private:
    std::string m_Fields;
};

/// Returns an array of items that are JSON already.
template <class Items>
std::string jsonArray(const Items& items) {
    std::string array;
    for (const auto& item : items) {
        array += (array.empty() ? "" : ",") + item;
    }
    return "[" + array + "]";
}

#endif  // MENSOR_TOOL_DISPLAY_H
