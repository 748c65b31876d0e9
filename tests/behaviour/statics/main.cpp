// statics_client: uses the library in the constructor and the destructor of a static object of
// another source, in functions that run at exit, and in main(). FIRST_USE in the environment says
// which is first: before_main, in_main or after_main. Objects that the library creates on first use
// must outlive all of them.
#include <cstdlib>
#include <iostream>
#include <string>

#include <mensor/BaseUnit.h>
#include <mensor/NonSI.h>
#include <mensor/SI.h>
#include <mensor/UnitFormat.h>
#include <mensor/ValueWithUnit.h>
#include <mensor/io.h>
#include <mensor_checked/Packs.h>
#include <mensor_checked/Reading.h>
#include <mensor_checked/Values.h>

#include "use.h"

using namespace mensor;

namespace {

void require(bool isRight, const char* what) {
    if (!isRight) {
        std::cerr << "wrong: " << what << std::endl;
        std::_Exit(1);
    }
}

}  // namespace

void useEverything() {
    const CUnitPtr speed = CUnit::fromString("km/h");
    require(speed->convertValueToUnit(90, SI::Meter() / SI::Second()) == 25, "conversion");
    require(CStandardUnitFormat::instance()->format(speed, "") == string_t("km/h"),
            "standard notation");
    require(CASCIIUnitFormat::instance()->format(speed, "") == string_t("km h^-1"),
            "ASCII notation");
    const CUnitPtr psi = NonSI::Psi();
    require(CUnit::fromString("psi") == psi, "psi");
    require(NonSI::None() != nullptr, "none");
    const CUnitPtr crate = CBaseUnit::getInstance("crate");
    CUnitFormat::label(crate * 12.0, "dozen");
    require(CValueWithUnit::fromString("2 dozen").valueAs(crate) == 24, "value");
    require(checked::readUnit("W/(m^2 K)") == checked::readUnit("W/(m^2 K)"), "checked unit");
    require(!checked::tryReadUnit("W/m/K"), "checked refusal");
    require(checked::writeValue(0.1, speed) == "0.1 km/h", "checked text");
    require(!checked::allPacks().empty() && !checked::refusedUnits().empty(), "packs");
    checked::registerPack(checked::ePack::COUNTING);
    require(CUnit::fromString("rpm") != nullptr, "unit of a pack");
}

bool isFirst(const char* moment) {
    const char* const first = std::getenv("FIRST_USE");
    return first != nullptr && std::string(first) == moment;
}

int main() {
    std::atexit(useEverything);
    if (isFirst("in_main")) {
        useEverything();
    }
    return 0;
}
