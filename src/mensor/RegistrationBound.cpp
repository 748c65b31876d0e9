#include "mensor/RegistrationBound.h"

#include <algorithm>

#include "mensor/Tables.h"

namespace mensor {

using detail::tables;

CTooManyUnits::CTooManyUnits()
    : std::length_error("A new unit would be one more than may be registered") {}
CTooManyUnits::~CTooManyUnits() = default;

CRegistrationBound::CRegistrationBound(std::size_t units)
    : m_Lock(tables().Mutex), m_Before(tables().Instances.size()), m_Outer(tables().MostInstances) {
    const std::size_t room = m_Outer > m_Before ? m_Outer - m_Before : 0;
    tables().MostInstances = m_Before + std::min(units, room);
}

CRegistrationBound::~CRegistrationBound() { tables().MostInstances = m_Outer; }

std::size_t CRegistrationBound::used() const { return tables().Instances.size() - m_Before; }

}  // namespace mensor
