#include "mensor_checked/PlannedNames.h"

#include "mensor/mensor_global.h"

namespace mensor::checked {

namespace {

CPlannedNames* current = nullptr;

}  // namespace

CPlannedNames::CPlannedNames() { current = this; }
CPlannedNames::~CPlannedNames() { current = nullptr; }

const CPlannedNames::CEntry* CPlannedNames::find(std::string_view name) const {
    const auto found = m_Entries.find(name);
    return found == m_Entries.end() ? nullptr : &found->second;
}

std::string CPlannedNames::sameAs(const std::string& name) const {
    const int hash = hashFromString(string_t(name.c_str()));
    for (const auto& [other, entry] : m_Entries) {
        if (entry.Meaning == CMeaning::base(other) &&
            hashFromString(string_t(other.c_str())) == hash) {
            return other;
        }
    }
    return {};
}

std::optional<CMeaning> plannedMeaning(std::string_view name) {
    const CPlannedNames::CEntry* const entry = current == nullptr ? nullptr : current->find(name);
    if (entry == nullptr) {
        return std::nullopt;
    }
    current->m_IsUsed = true;
    return entry->Meaning;
}

void addPlannedNamesTo(exact::CNearestNames& nearest) {
    if (current == nullptr) {
        return;
    }
    for (const auto& [name, entry] : current->m_Entries) {
        nearest.add(name);
    }
}

}  // namespace mensor::checked
