// Notes.h: what a reading or a conversion has to say beside its result.
//
//     const exact::CReading reading = exact::tryRead("pH");
//     for (const exact::CNote& note : reading.Notes) {
//         std::cerr << note.words("pH") << '\n';  // "pH" is the picohenry; the pH of a liquid has no unit
//     }
//     exact::noteOnMarks("3000", "rpm", rpm, perMinute);
//     // rad counts as 1 here: 3000 rpm = 314.1592653589793 rad/s; …
#ifndef MENSOR_EXACT_NOTES_H
#define MENSOR_EXACT_NOTES_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "mensor_exact/Meaning.h"
#include "mensor_exact/Refusal.h"
#include "mensor_exact/exact_export.h"

namespace mensor {
namespace exact {

/// A note on a piece of a text. It needs no memory.
struct MENSOR_EXACT_API CNote {
    const char* Sentence = "";  ///< constant; "{}" in it stands for the piece
    CSpan Token;
    bool IsUnusual = false;  ///< whether CReadOptions::Strict refuses the text for it

    /// The sentence, without a full stop. `text` is the text that was read.
    std::string words(std::string_view text) const;
};

/// The notes on one text, at most four: the first ones.
///
/// Class contract: caller serialises changes of one object; distinct objects any thread.
class CNotes {
public:
    bool empty() const noexcept { return m_Size == 0; }
    std::size_t size() const noexcept { return m_Size; }
    const CNote* begin() const noexcept { return m_Notes.data(); }
    const CNote* end() const noexcept { return m_Notes.data() + m_Size; }

    void add(const CNote& note) noexcept {
        if (m_Size < m_Notes.size()) {
            m_Notes[m_Size++] = note;
        }
    }

private:
    std::array<CNote, 4> m_Notes;
    std::size_t m_Size = 0;
};

/// What to say where a value is converted between units of different marks (radian, steradian, bit),
/// which count as 1 there; empty if the marks are the same. `number` and `unit` are the value as it is
/// written.
/// @throws CError  BAD_NUMBER, TOO_LARGE.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API std::string noteOnMarks(std::string_view number, std::string_view unit,
                                         const CMeaning& from, const CMeaning& to);

/// Refuses a conversion between units of different marks.
/// @throws CError  DIFFERENT_MARKS, with noteOnMarks of one unit in the message.
/// @par Threads  Any thread; takes no lock.
MENSOR_EXACT_API void requireSameMarks(const CMeaning& from, const CMeaning& to);

}  // namespace exact
}  // namespace mensor

#endif  // MENSOR_EXACT_NOTES_H
