// Memory.h: texts that have been read before. For the companion's own use; not installed.
//
// An entry counts only while every name in it still denotes the unit that it denoted then, and the
// unit still has the dimension that was checked: labels move, and a base unit may be mapped onto
// another one. Both are asked of the library's tables each time. So remembering saves the algebra and
// the checks, never the question what a name means; and since nothing but CUnit::mutex() is locked on
// the way, it is what keeps a warm reader off the units' own locks.
//
// The caller of every function holds the lock.
#ifndef MENSOR_CHECKED_MEMORY_H
#define MENSOR_CHECKED_MEMORY_H

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
        CUnitPtr Unit;
        CUnitPtr Dimension;
        std::vector<std::string> Notes;
        bool IsKept;
    };

    /// The reading of `text`, none if it is not known or no longer stands.
    const CEntry* find(std::string_view text) const;

    /// Keeps a reading, for good if it says so. Of the others at most 1000, none longer than 100
    /// bytes: the texts may come from anywhere.
    void remember(CEntry entry);

private:
    // The keys are the entries' texts.
    std::unordered_map<std::string_view, std::unique_ptr<const CEntry>> m_Entries;
    std::size_t m_Passing = 0;  // entries that are not kept
};

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_MEMORY_H
