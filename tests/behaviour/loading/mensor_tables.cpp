// mensor_tables: prints the labels of the process, and whether the invariants of the tables hold.
//
//     labels  LABEL LABEL ...  in the order of the table
//     fault   WHAT             what is wrong with the tables
//     units   COUNT
//
// Then it calls all accessors, prints the text of each unit that reads back, and converts a little.
// Each line begins with "works".
#include <iostream>

#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"
#include "mensor/io.h"
#include "support/invariants.h"

using namespace mensor;

extern "C" __attribute__((visibility("default"))) void printTables();

void printTables() {
    std::cout << "labels\t";
    for (const auto& [label, unit] : CUnitFormat::labelUnitMap()) {
        std::cout << label << ' ';
    }
    std::cout << "\n";
    const std::string broken = test::brokenInvariant();
    if (!broken.empty()) {
        std::cout << "fault\t" << broken << "\n";
    }
    std::cout << "units\t" << CUnit::instances().size() << "\n";

    // A unit whose building failed is built at the next call. clang-format off
    const CUnitPtr units[] = {SI::Ampere(),
                              SI::Candela(),
                              SI::Kelvin(),
                              SI::Kilogram(),
                              SI::Meter(),
                              SI::Mole(),
                              SI::Second(),
                              SI::Radian(),
                              SI::Steradian(),
                              SI::Bit(),
                              SI::Hertz(),
                              SI::Becquerel(),
                              SI::Gram(),
                              SI::Newton(),
                              SI::Joule(),
                              SI::Watt(),
                              SI::Volt(),
                              SI::Ohm(),
                              SI::Weber(),
                              SI::Henry(),
                              SI::Gray(),
                              SI::Sievert(),
                              SI::Pascal(),
                              SI::Coulomb(),
                              SI::Farad(),
                              SI::Siemens(),
                              SI::Tesla(),
                              SI::Celsius(),
                              SI::Lumen(),
                              SI::Lux(),
                              SI::Katal(),
                              NonSI::Percent(),
                              NonSI::Revolution(),
                              NonSI::DegreeAngle(),
                              NonSI::MinuteAngle(),
                              NonSI::SecondAngle(),
                              NonSI::CentiRadian(),
                              NonSI::Grade(),
                              NonSI::Byte(),
                              NonSI::Octet(),
                              NonSI::Atmosphere(),
                              NonSI::Bar(),
                              NonSI::Psi(),
                              NonSI::MilliBar(),
                              NonSI::MillimeterOfMercury(),
                              NonSI::InchOfMercury(),
                              NonSI::Liter(),
                              NonSI::G(),
                              NonSI::Minute(),
                              NonSI::Hour(),
                              NonSI::Day(),
                              NonSI::Week(),
                              NonSI::YearCalendar(),
                              NonSI::Year(),
                              NonSI::Month(),
                              NonSI::DaySidereal(),
                              NonSI::YearSidereal()};
    // clang-format on
    std::cout << "works\t";
    for (const CUnitPtr& unit : units) {
        std::cout << (CUnit::fromString(unit->toString()) == unit ? unit->toString() : "?") << " ";
    }
    std::cout << "\n";
    std::cout << "works\t"
              << SI::Kilo(SI::Joule())->convertValueToUnit(1, SI::Newton() * SI::Meter()) << " "
              << NonSI::Hour()->convertValueToUnit(1, SI::Second()) << "\n";
}
