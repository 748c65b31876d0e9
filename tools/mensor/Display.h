// Display.h: text on a terminal, and as JSON.
#ifndef MENSOR_TOOL_DISPLAY_H
#define MENSOR_TOOL_DISPLAY_H

#include <cstddef>
#include <string>
#include <string_view>

/// `text` without anything that would move the cursor or is no UTF-8: "?" for it, a blank for a tab.
std::string shown(std::string_view text);

/// The columns that a terminal takes for `text`: none for combining characters, two for East Asian
/// wide ones, whatever the locale.
std::size_t columnsOf(std::string_view text);

/// `text` in quotation marks, for messages.
std::string quoted(std::string_view text);

/// Whether there is nothing but blanks.
bool isBlank(std::string_view line);

/// `text`, filled with blanks to `columns`.
std::string padded(const std::string& text, std::size_t columns);

/// Two lines behind `indent`, each ended: `text` and carets under the `length` bytes from `byte`. A
/// long text is cut around them.
std::string underlined(std::string_view text, std::size_t byte, std::size_t length,
                       const std::string& indent);

/// The shortest digits that read back as the same double.
std::string shortest(double number);

/// `text` in double quotes as JSON has it; bytes that are not UTF-8 become U+FFFD.
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

/// The items, each JSON already, as an array.
template <class Items>
std::string jsonArray(const Items& items) {
    std::string array;
    for (const auto& item : items) {
        array += (array.empty() ? "" : ",") + item;
    }
    return "[" + array + "]";
}

#endif  // MENSOR_TOOL_DISPLAY_H
