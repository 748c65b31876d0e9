// Inside.h: gives tests access to the protected members of CUnit. Needs no GoogleTest.
//
//     Inside::id(SI::Ampere());                      // 2
//     Inside::powLookUp(SI::Meter()).size();
#ifndef MENSOR_TESTS_INSIDE_H
#define MENSOR_TESTS_INSIDE_H

#include <mutex>
#include <vector>

#include "mensor/Unit.h"
#include "mensor/mensor_global.h"

namespace mensor {

/// Never created; its functions are static.
struct Inside : CUnit {
    static std::vector<CUnitPtr>& multiplyLookUp(const CUnitPtr& unit) {
        return (*unit).*(&Inside::m_MultiplyLookUp);
    }
    static std::vector<CUnitPtr>& divideLookUp(const CUnitPtr& unit) {
        return (*unit).*(&Inside::m_DivideLookUp);
    }
    static std::vector<CUnitPtr>& rootLookUp(const CUnitPtr& unit) {
        return (*unit).*(&Inside::m_RootLookUp);
    }
    static std::vector<CUnitPtr>& powLookUp(const CUnitPtr& unit) {
        return (*unit).*(&Inside::m_PowLookUp);
    }
    static std::recursive_mutex& lookupMutex(const CUnitPtr& unit) {
        return (*unit).*(&Inside::m_LookupVectorMutex);
    }
    static const string_t& symbol(const CUnitPtr& unit) { return (*unit).*(&Inside::m_Symbol); }
    static int id(const CUnitPtr& unit) { return (*unit).*(&Inside::m_Id); }
    static int& hashCode(const CUnitPtr& unit) { return (*unit).*(&Inside::m_HashCode); }
    static CUnitPtr canonical(const CUnitPtr& unit) { return getInstance(unit); }
};

}  // namespace mensor

#endif  // MENSOR_TESTS_INSIDE_H
