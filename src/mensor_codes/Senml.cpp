#include "mensor_codes/TableSystem.h"

namespace mensor::codes {

namespace {

#define MENSOR_TABLE "mensor_codes/senml.def"
#include "mensor_codes/table.def"

constexpr CTableSystem<CTable, eSystem::SENML> System("SenML", "{} is no code of SenML");

}  // namespace

const CSystem& senml() { return System; }

}  // namespace mensor::codes
