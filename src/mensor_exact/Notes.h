// Notes.h: remarks on the result of a reading.
//
//     const exact::CReading reading = exact::tryRead("pH");
//     for (const exact::CNote& note : reading.Notes) {
//         std::cerr << note.words("pH") << '\n';  // "pH" is the picohenry; the pH of a liquid has no unit
//     }
#ifndef MENSOR_EXACT_NOTES_H
#define MENSOR_EXACT_NOTES_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "mensor_exact/Refusal.h"
#include "mensor_exact/exact_export.h"

namespace mensor::exact {

/// A note on a piece of a text. It allocates no memory.
struct MENSOR_EXACT_API CNote {
    const CTrap* Trap = nullptr;  ///< has the sentence; null in a note that was never set
    CSpan Token;
    bool IsUnusual = false;  ///< true if CReadOptions::Strict refuses the text

    /// Returns the sentence, without a full stop. `text` is the text that was read.
    std::string words(std::string_view text) const;
};

/// The first four notes on a text.
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

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_NOTES_H
