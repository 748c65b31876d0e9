#include "mensor/DerivedUnit.h"

namespace mensor {

CDerivedUnit::CDerivedUnit(const string_t& symbol) : CUnit(symbol) {}
CDerivedUnit::~CDerivedUnit() = default;

}  // namespace mensor
