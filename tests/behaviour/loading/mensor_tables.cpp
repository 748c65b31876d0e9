// mensor_tables: prints what the process knows, and whether the tables hold together.
//
//     label  LABEL          one per label, in the order of the table
//     fault  WHAT           what should not be
//     units  COUNT
//
// Then it calls all accessors, prints what each unit reads back as, and converts a little; each
// line begins with "works".
#include <iostream>

#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"

using namespace mensor;

extern "C" __attribute__((visibility("default"))) void printTables();

void printTables() {
    for (const auto& [label, unit] : CUnitFormat::labelUnitMap()) {
        std::cout << "label\t" << label << "\n";
        const auto back = CUnitFormat::unitLabelMap().find(unit);
        if (back == CUnitFormat::unitLabelMap().end() || !(back->second == label)) {
            std::cout << "fault\tthe unit of the label " << label << " has another label\n";
        }
    }
    if (CUnitFormat::unitLabelMap().size() != CUnitFormat::labelUnitMap().size()) {
        std::cout << "fault\ta unit has a label that is not in the other table\n";
    }
    for (const auto& [symbol, unit] : CUnit::symbols()) {
        if (!(unit->getSymbol() == symbol) || CUnit::instances().count(unit->hashCode()) == 0 ||
            CUnit::instances().at(unit->hashCode()) != unit) {
            std::cout << "fault\tthe symbol " << symbol << " names a unit that is not canonical\n";
        }
    }
    for (const auto& [hash, unit] : CUnit::instances()) {
        if (unit->hashCode() != hash) {
            std::cout << "fault\tunit under a key that is not its hash\n";
        }
    }
    std::cout << "units\t" << CUnit::instances().size() << "\n";

    // What failed is built at the next call.
    // clang-format off
    const CUnitPtr units[] = {
        SI::Ampere(), SI::Candela(), SI::Kelvin(), SI::Kilogram(), SI::Meter(), SI::Mole(),
        SI::Second(), SI::Radian(), SI::Steradian(), SI::Bit(), SI::Hertz(), SI::Becquerel(),
        SI::Gram(), SI::Newton(), SI::Joule(), SI::Watt(), SI::Volt(), SI::Ohm(), SI::Weber(),
        SI::Henry(), SI::Gray(), SI::Sievert(), SI::Pascal(), SI::Coulomb(), SI::Farad(),
        SI::Siemens(), SI::Tesla(), SI::Celsius(), SI::Lumen(), SI::Lux(), SI::Katal(),
        NonSI::Percent(), NonSI::Revolution(), NonSI::DegreeAngle(), NonSI::MinuteAngle(),
        NonSI::SecondAngle(), NonSI::CentiRadian(), NonSI::Grade(), NonSI::Byte(), NonSI::Octet(),
        NonSI::Atmosphere(), NonSI::Bar(), NonSI::Psi(), NonSI::MilliBar(),
        NonSI::MillimeterOfMercury(), NonSI::InchOfMercury(), NonSI::Liter(), NonSI::G(),
        NonSI::Minute(), NonSI::Hour(), NonSI::Day(), NonSI::Week(), NonSI::YearCalendar(),
        NonSI::Year(), NonSI::Month(), NonSI::DaySidereal(), NonSI::YearSidereal()};
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
