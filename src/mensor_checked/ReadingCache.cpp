#include "mensor_checked/ReadingCache.h"

#include <algorithm>

#include "mensor/UnitFormat.h"
#include "mensor_checked/Names.h"

namespace mensor::checked {

namespace {

constexpr std::size_t MostPassing = 1000;
constexpr std::size_t LongestPassing = 100;
constexpr std::size_t MostSound = 4000;

// Never destroyed, because threads and statics of clients may still read units while the process ends.
auto& caches = *new std::array<CReadingCache, 4>;

}  // namespace

CReadingCache& CReadingCache::instance(const CReadOptions& options) {
    return caches[(options.Differences ? 1U : 0U) + (options.Strict ? 2U : 0U)];
}

const CReadingCache::CEntry* CReadingCache::find(std::string_view text) {
    const auto found = m_Entries.find(text);
    if (found == m_Entries.end()) {
        return nullptr;
    }
    CEntry& entry = *found->second;
    if (entry.Unit->getDimension() != entry.Dimension) {
        return nullptr;
    }
    // Without AreExact the version is not enough. A new symbol does not change the version, but it may
    // give the text, as it is written, another meaning.
    const unsigned version = CUnitFormat::namesVersion();
    if (version != 0 && version == entry.Version && entry.AreExact) {
        return &entry;
    }
    // Notes quote the texts of units, and a new label changes those.
    if (!entry.Notes.empty() && (version == 0 || version != entry.Version)) {
        return nullptr;
    }
    const bool areSame = std::all_of(entry.Names.begin(), entry.Names.end(), [](const auto& name) {
        return unitRead(name.first) == name.second;
    });
    entry.Version = areSame ? version : 0;
    return areSame ? &entry : nullptr;
}

bool CReadingCache::isWorth(std::string_view text) {
    const std::size_t hash = std::hash<std::string_view>()(text);
    std::size_t& seen = m_Seen[hash % m_Seen.size()];
    const bool isAgain = seen == hash;
    seen = hash;
    return isAgain && text.size() <= LongestPassing;
}

void CReadingCache::store(CEntry entry) {
    const auto former = m_Entries.find(entry.Text);
    if (former != m_Entries.end()) {
        entry.IsKept = entry.IsKept || former->second->IsKept;
        m_Passing -= former->second->IsKept ? 0U : 1U;
        m_Entries.erase(former);
    }
    if (!entry.IsKept && ++m_Passing > MostPassing) {
        for (auto next = m_Entries.begin(); next != m_Entries.end();) {
            next = next->second->IsKept ? std::next(next) : m_Entries.erase(next);
        }
        m_Passing = 1;
    }
    entry.Version = CUnitFormat::namesVersion();
    auto kept = std::make_unique<CEntry>(std::move(entry));
    const std::string_view key = kept->Text;
    m_Entries.emplace(key, std::move(kept));
}

bool CReadingCache::isSound(const CUnitPtr& unit) const {
    const auto found = m_SoundUnits.find(unit);
    return found != m_SoundUnits.end() && found->second == unit->getDimension();
}

void CReadingCache::setSound(const CUnitPtr& unit) {
    if (m_SoundUnits.size() >= MostSound) {
        m_SoundUnits.clear();
    }
    m_SoundUnits[unit] = unit->getDimension();
}

}  // namespace mensor::checked
