// Memory.h: texts that have been read before, and units that have been found sound. For the
// companion's own use; not installed.
//
// A reading counts only while every name in it still denotes the unit that it denoted then: labels
// move. The library numbers the states of its names (CUnitFormat::namesVersion), so mostly one
// comparison tells; where it does not, each name is looked up again. And the unit must still have the
// dimension that was checked, since a base unit may be mapped onto another one.
//
// The caller of every function holds the lock.
#ifndef MENSOR_CHECKED_MEMORY_H
#define MENSOR_CHECKED_MEMORY_H

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Reading.h"

namespace mensor {
namespace checked {

class CMemory {
public:
    /// The memory of the process, one for each way to read scales in products: what a text gives
    /// depends on no other option.
    static CMemory& instance(const CReadOptions& options);

    struct CEntry {
        std::string Text;
        std::vector<std::pair<std::string, CUnitPtr>> Names;  ///< each as written, and its unit
        bool AreExact;  ///< whether the library knows all names by this spelling
        CUnitPtr Unit;
        CUnitPtr Dimension;
        std::vector<std::string> Notes;
        bool IsKept;
        unsigned Version = 0;  ///< of the names when they were last compared
    };

    /// The reading of `text`, none if it is not known or no longer stands.
    const CEntry* find(std::string_view text);

    /// Whether a reading of `text` is worth remembering: it is not longer than 100 bytes and was
    /// asked about not long ago. Texts may come from anywhere, and most never again.
    bool isWorth(std::string_view text);

    /// Keeps a reading, for good if it says so. Of the others at most 1000.
    void remember(CEntry entry);

    /// Whether the library is known to convert `unit` by its meaning.
    bool isSound(const CUnitPtr& unit) const;
    void setSound(const CUnitPtr& unit);

private:
    // The keys are the entries' texts.
    std::unordered_map<std::string_view, std::unique_ptr<CEntry>> m_Entries;
    std::size_t m_Passing = 0;  // entries that are not kept
    std::array<std::size_t, 1024> m_Seen =
        {};  // hashes of texts, each in the slot of its last bits
    std::unordered_map<CUnitPtr, CUnitPtr> m_SoundUnits;  // each with the dimension it had
};

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_MEMORY_H
