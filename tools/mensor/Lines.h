// Lines.h: the lines of a text, of whatever length, in bounded memory.
#ifndef MENSOR_TOOL_LINES_H
#define MENSOR_TOOL_LINES_H

#include <cstddef>
#include <istream>
#include <stdexcept>
#include <string>
#include <utility>

/// Reads lines one by one. A line loses its end ("\n" or "\r\n"); of a line beyond any use only the
/// beginning is kept, which the reader of units refuses for its length.
class CLines {
public:
    /// `name` is what messages call the input.
    CLines(std::istream& input, std::string name) : m_Input(input), m_Name(std::move(name)) {}

    /// Whether there was one more line.
    /// @throws std::runtime_error  "cannot read the standard input": it is a folder, closed, or fails.
    bool next(std::string& line) {
        constexpr std::size_t Longest = 20000;  // 4096 code points of four bytes, and some more
        line.clear();
        int byte = nextByte();
        if (byte == std::char_traits<char>::eof()) {
            return false;
        }
        for (; byte != '\n' && byte != std::char_traits<char>::eof(); byte = nextByte()) {
            ++m_Bytes;
            if (line.size() < Longest) {
                line += static_cast<char>(byte);
            }
        }
        ++m_Bytes;
        ++m_Number;
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        return true;
    }

    /// Whether more is there without waiting.
    bool isMoreAtHand() const { return m_Input.rdbuf()->in_avail() > 0; }

    std::size_t number() const { return m_Number; }  ///< of the last line, from 1
    std::size_t bytes() const { return m_Bytes; }    ///< read so far

private:
    int nextByte() {
        try {
            return m_Input.rdbuf()->sbumpc();
        } catch (const std::ios_base::failure&) {  // the standard library's words for it are long
            throw std::runtime_error("cannot read " + m_Name);
        }
    }

    std::istream& m_Input;
    const std::string m_Name;
    std::size_t m_Number = 0;
    std::size_t m_Bytes = 0;
};

#endif  // MENSOR_TOOL_LINES_H
