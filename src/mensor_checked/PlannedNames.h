// PlannedNames.h: names that a table of units defines, while their units are not made yet. For the companion's
// own use; not installed.
//
// The registry cannot remove the symbol of a base unit. So a table is read with planned names first. Its base
// units, and the units that need them, are made when the whole table can be read.
//
// The caller of every function holds the lock.
#ifndef MENSOR_CHECKED_PLANNEDNAMES_H
#define MENSOR_CHECKED_PLANNEDNAMES_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "mensor_checked/Meaning.h"
#include "mensor_exact/NearestNames.h"

namespace mensor::checked {

/// Names of a table. The reader knows them while the object exists. One object exists at a time.
class CPlannedNames {
public:
    struct CEntry {
        CMeaning Meaning;
        std::size_t Line;  ///< the line that defines the name
    };

    CPlannedNames();
    CPlannedNames(const CPlannedNames&) = delete;
    CPlannedNames& operator=(const CPlannedNames&) = delete;
    ~CPlannedNames();

    void add(const std::string& name, CEntry entry) { m_Entries.emplace(name, std::move(entry)); }
    bool empty() const { return m_Entries.empty(); }

    /// Returns the entry of this name, or null.
    const CEntry* find(std::string_view name) const;

    /// Returns the name of a planned base unit that would be the same object as the base unit `name`, because
    /// its symbol has the same hash code. Returns an empty text if there is none. `name` is not planned yet.
    std::string sameAs(const std::string& name) const;

    void forgetUses() { m_IsUsed = false; }

    /// Returns whether the reader has read one of the names since forgetUses().
    bool isUsed() const { return m_IsUsed; }

private:
    friend std::optional<CMeaning> plannedMeaning(std::string_view name);
    friend void addPlannedNamesTo(exact::CNearestNames& nearest);

    std::map<std::string, CEntry, std::less<>> m_Entries;
    bool m_IsUsed = false;
};

/// What a planned name means. None if it is not planned.
std::optional<CMeaning> plannedMeaning(std::string_view name);

/// Adds all planned names.
void addPlannedNamesTo(exact::CNearestNames& nearest);

}  // namespace mensor::checked

#endif  // MENSOR_CHECKED_PLANNEDNAMES_H
