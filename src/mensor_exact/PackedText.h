// PackedText.h: constant texts in half the room. Not installed.
//
// The compiler packs the texts: a frequent part of a text, a row of fragments.def, becomes one byte. The texts stay
// readable in the tables that have them. The choice of fragments changes the size, but no text.
#ifndef MENSOR_EXACT_PACKEDTEXT_H
#define MENSOR_EXACT_PACKEDTEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mensor::exact {

/// A packed text consists of these bytes. A zero ends it.
///
///     1 to 31, 128 to 255    a fragment
///     127                    the next byte stands for itself
///     all others             stand for themselves
namespace packing {

// NOLINTNEXTLINE(bugprone-macro-parentheses): the rows are a list.
#define MENSOR_FRAGMENT(text) text,
inline constexpr std::string_view Fragments[] = {
#include "mensor_exact/fragments.def"
};

inline constexpr std::size_t FragmentCount = sizeof Fragments / sizeof Fragments[0];
inline constexpr unsigned char Escape = 0x7F;
inline constexpr std::size_t LowCodes = 31;

static_assert(FragmentCount <= LowCodes + 128, "there is no code for more fragments");

constexpr bool isPlain(unsigned char byte) { return byte >= 0x20 && byte < Escape; }

constexpr unsigned char codeOf(std::size_t fragment) {
    return static_cast<unsigned char>(fragment < LowCodes ? fragment + 1
                                                          : fragment - LowCodes + 0x80);
}

constexpr std::size_t fragmentOf(unsigned char code) {
    return code < 0x20 ? code - std::size_t{1} : code - std::size_t{0x80} + LowCodes;
}

// The fragments with the same hash of their first two bytes, as lists.
struct CLists {
    static constexpr std::size_t Count = 512;
    std::uint8_t First[Count] = {};         // a fragment plus 1; 0: none
    std::uint8_t Next[FragmentCount] = {};  // likewise

    static constexpr std::size_t listOf(std::string_view text) {
        return (static_cast<unsigned char>(text[0]) * std::size_t{31} +
                static_cast<unsigned char>(text[1])) %
               Count;
    }
};

constexpr CLists makeLists() {
    CLists lists;
    for (std::size_t i = 0; i < FragmentCount; ++i) {
        const std::size_t list = CLists::listOf(Fragments[i]);
        lists.Next[i] = lists.First[list];
        lists.First[list] = static_cast<std::uint8_t>(i + 1);
    }
    return lists;
}

inline constexpr CLists Lists = makeLists();

constexpr bool begins(std::string_view text, std::string_view fragment) {
    if (fragment.size() > text.size()) {
        return false;
    }
    for (std::size_t i = 0; i < fragment.size(); ++i) {
        if (text[i] != fragment[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace packing

/// Packs a text into as few bytes as the fragments allow, with the zero at the end. Calls `write` for each byte.
/// Only for constant expressions and tests: a text of more than 512 bytes would be written behind the end of an
/// array.
template <class Write>
constexpr void packText(std::string_view text, const Write& write) {
    using namespace packing;
    constexpr std::size_t Longest = 512;   // a longer text does not compile
    std::size_t sizes[Longest + 1] = {};   // for each place the bytes from there to the end
    std::uint8_t fragments[Longest] = {};  // for each place the fragment to take there, plus 1
    for (std::size_t i = text.size(); i-- > 0;) {
        sizes[i] = sizes[i + 1] + (isPlain(static_cast<unsigned char>(text[i])) ? 1 : 2);
        if (i + 1 == text.size()) {
            continue;
        }
        const std::string_view rest = text.substr(i);
        for (std::size_t next = Lists.First[CLists::listOf(rest)]; next != 0;
             next = Lists.Next[next - 1]) {
            const std::string_view fragment = Fragments[next - 1];
            if (begins(rest, fragment) && sizes[i + fragment.size()] + 1 < sizes[i]) {
                sizes[i] = sizes[i + fragment.size()] + 1;
                fragments[i] = static_cast<std::uint8_t>(next);
            }
        }
    }
    for (std::size_t i = 0; i < text.size();) {
        if (fragments[i] != 0) {
            const std::size_t fragment = fragments[i] - std::size_t{1};
            write(codeOf(fragment));
            i += Fragments[fragment].size();
            continue;
        }
        const auto byte = static_cast<unsigned char>(text[i++]);
        if (!isPlain(byte)) {
            write(Escape);
        }
        write(byte);
    }
    write('\0');
}

/// Texts, one after the other.
template <std::size_t Room, std::size_t Count>
struct CTexts {
    char Bytes[Room] = {};
    std::uint16_t Starts[Count] = {};  ///< for each text where it begins
};

/// Texts that the compiler is still writing.
template <std::size_t Count>
struct CWrittenTexts : CTexts<65535, Count> {
    std::size_t Size = 0;  ///< the number of bytes
};

/// Writes `Count` texts. `writeText(i, write)` calls `write` for each byte of a text.
template <std::size_t Count, class WriteText>
constexpr CWrittenTexts<Count> writeTexts(const WriteText& writeText) {
    CWrittenTexts<Count> texts;
    for (std::size_t i = 0; i < Count; ++i) {
        texts.Starts[i] = static_cast<std::uint16_t>(texts.Size);
        writeText(i, [&texts](unsigned char byte) {
            texts.Bytes[texts.Size++] = static_cast<char>(byte);
        });
    }
    return texts;
}

/// Returns the texts in no more room than they need.
template <std::size_t Size, std::size_t Count>
constexpr CTexts<Size, Count> shrunk(const CWrittenTexts<Count>& written) {
    CTexts<Size, Count> texts;
    for (std::size_t i = 0; i < Size; ++i) {
        texts.Bytes[i] = written.Bytes[i];
    }
    for (std::size_t i = 0; i < Count; ++i) {
        texts.Starts[i] = written.Starts[i];
    }
    return texts;
}

/// Returns the text that packText() has packed. A zero ends `text`.
std::string unpacked(const char* text);

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_PACKEDTEXT_H
