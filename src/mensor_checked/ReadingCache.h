// ReadingCache.h: the cache of texts that were read and of units that were checked. For the companion's
// own use; not installed.
//
// An entry is valid while each name in its text still denotes the same unit. Labels can move, so this is
// checked. Usually one comparison is enough, because the library numbers the states of its names
// (CUnitFormat::namesVersion). Otherwise each name is looked up again. The dimension of the unit must be
// the same, too, because a client may map a base unit onto another one.
//
// The caller of every function holds the lock.
#ifndef MENSOR_CHECKED_READINGCACHE_H
#define MENSOR_CHECKED_READINGCACHE_H

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "mensor/Unit.h"
#include "mensor_checked/Reading.h"

namespace mensor::checked {

class CReadingCache {
public:
    /// Returns the cache of the process for these options. There is one for each pair of Differences and
    /// Strict. The other options do not change which unit a text gives.
    static CReadingCache& instance(const CReadOptions& options);

    struct CEntry {
        std::string Text;
        std::vector<std::pair<std::string, CUnitPtr>>
            Names;      ///< each name as written, and its unit
        bool AreExact;  ///< the library knows all names as spelled
        CUnitPtr Unit;
        CUnitPtr Dimension;
        std::vector<std::string> Notes;
        bool IsKept;           ///< the entry stays for good
        unsigned Version = 0;  ///< CUnitFormat::namesVersion() when the names were last compared
    };

    /// Returns the entry of `text`, or none if there is none or it is no longer valid.
    const CEntry* find(std::string_view text);

    /// Returns whether `text` is worth an entry: it has at most 100 bytes, and this function was called
    /// with it not long ago. Most texts are read only once.
    bool isWorth(std::string_view text);

    /// Adds an entry. The cache drops entries if more than 1000 of them are not kept for good.
    void store(CEntry entry);

    /// Returns whether setSound() was called for `unit` and the dimension has stayed the same since.
    /// A sound unit is one that the library converts as its meaning says.
    bool isSound(const CUnitPtr& unit) const;
    void setSound(const CUnitPtr& unit);

private:
    // Each key is a view of the text of its entry.
    std::unordered_map<std::string_view, std::unique_ptr<CEntry>> m_Entries;
    std::size_t m_Passing = 0;                  // the number of entries that are not kept for good
    std::array<std::size_t, 1024> m_Seen = {};  // hashes of texts, indexed by their last bits
    std::unordered_map<CUnitPtr, CUnitPtr> m_SoundUnits;  // a checked unit and its dimension
};

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_READINGCACHE_H
