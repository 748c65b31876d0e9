#include "mensor/UnitRationalPower.h"

#include <utility>

namespace mensor {

CUnitRationalPower::CUnitRationalPower() : m_Pow(0), m_Root(0) {}

CUnitRationalPower::CUnitRationalPower(CUnitPtr unit, int pow, int root)
    : m_Unit(std::move(unit)), m_Pow(pow), m_Root(root) {}

CUnitPtr CUnitRationalPower::getUnit() const { return m_Unit; }
int CUnitRationalPower::getPow() const { return m_Pow; }
int CUnitRationalPower::getRoot() const { return m_Root; }
void CUnitRationalPower::setPow(int pow) { m_Pow = pow; }
void CUnitRationalPower::setRoot(int root) { m_Root = root; }

bool CUnitRationalPower::operator==(const CUnitRationalPower& other) const {
    return m_Unit == other.m_Unit && m_Pow == other.m_Pow && m_Root == other.m_Root;
}

}  // namespace mensor
