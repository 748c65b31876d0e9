// Lines.h: reads lines of any length in bounded memory.
#ifndef MENSOR_TOOL_LINES_H
#define MENSOR_TOOL_LINES_H

#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <istream>
#include <stdexcept>
#include <string>
#include <utility>

/// Reads lines one by one, without their ends ("\n" or "\r\n"). Keeps only the
/// beginning of a very long line. The beginning is still too long, so the reader of units refuses it.
class CLines {
public:
    /// @param name  the name of the input in messages
    CLines(std::istream& input, std::string name) : m_Input(input), m_Name(std::move(name)) {}

    /// Reads the next line. Returns false if there is none.
    /// @throws std::runtime_error  "cannot read the standard input: it is closed", or another reason.
    bool next(std::string& line) {
        constexpr std::size_t Longest = 20000;  // more than 4096 code points of four bytes
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

    /// Returns whether more input can be read without waiting.
    bool isMoreAtHand() const { return m_Input.rdbuf()->in_avail() > 0; }

    std::size_t number() const { return m_Number; }  ///< the number of the last line, from 1
    std::size_t bytes() const { return m_Bytes; }    ///< the number of bytes read so far

private:
    int nextByte() {
        try {
            return m_Input.rdbuf()->sbumpc();
        } catch (const std::ios_base::failure&) {  // its message does not name the input
            throw std::runtime_error("cannot read " + m_Name + ": " + reason());
        }
    }

    // Only the standard input fails here: a file was opened and read once before.
    static const char* reason() {
        struct stat input {};
        const bool isOpen = fstat(STDIN_FILENO, &input) == 0;
        return !isOpen ? "it is closed" : S_ISDIR(input.st_mode) ? "it is a folder" : "it failed";
    }

    std::istream& m_Input;
    const std::string m_Name;
    std::size_t m_Number = 0;
    std::size_t m_Bytes = 0;
};

#endif  // MENSOR_TOOL_LINES_H
