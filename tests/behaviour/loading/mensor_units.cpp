// mensor_units: registers units and reads a text, with the library and with its companion, and
// prints each unit, its address and its names.
#include <iostream>

#include "mensor/BaseUnit.h"
#include "mensor/UnitFormat.h"
#include "mensor/io.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/making.h"
#include "support/Inside.h"
#include "support/invariants.h"

using namespace mensor;

extern "C" __attribute__((visibility("default"))) void printUnits();

void printUnits() {
    const CUnitPtr crate = CBaseUnit::getInstance("crate");
    CUnitFormat::label(crate * 12.0, "dozen");
    CUnitFormat::label(checked::affine(crate, 2.5, 100.0), "stock");
    std::cout << CUnit::fromString("dozen/h").get() << " "
              << CUnit::fromString("stock")->convertValueToUnit(3, crate) << " "
              << checked::readUnit("dozen m^-2").get() << "\n";
    for (const auto& [hash, unit] : CUnit::instances()) {
        std::cout << unit.get() << " " << hash << " " << Inside::id(unit) << " " << unit << "\n";
    }
    for (const auto& [name, unit] : CUnitFormat::names()) {
        std::cout << unit.get() << " " << name << "\n";
    }
    std::cout << test::brokenInvariant() << "\n";
}
