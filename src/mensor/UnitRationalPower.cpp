#include "mensor/UnitRationalPower.h"

namespace mensor {

bool CUnitRationalPower::operator==(const CUnitRationalPower& other) const {
    return m_Unit == other.m_Unit && m_Pow == other.m_Pow && m_Root == other.m_Root;
}

}  // namespace mensor
