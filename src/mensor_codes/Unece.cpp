#include "mensor_codes/TableSystem.h"

namespace mensor::codes {

namespace {

#define MENSOR_TABLE "mensor_codes/unece.def"
#include "mensor_codes/table.def"

constexpr CTableSystem<CTable, eSystem::UNECE> System("UN/CEFACT", "{} is no code of UN/CEFACT");

}  // namespace

const CSystem& unece() { return System; }

}  // namespace mensor::codes
