// trap_example.h: a value with the trap of a row of traps.def or refusals.def.
#ifndef MENSOR_TESTS_TRAP_EXAMPLE_H
#define MENSOR_TESTS_TRAP_EXAMPLE_H

#include <string>

#include "mensor_exact/TrapRows.h"

namespace mensor::test {

/// Returns a value in which the row's text is a trap or gets its note: "5 bar g", "50 mg N/l".
inline std::string exampleOf(const exact::CTrapRow& trap) {
    using exact::ePlace;
    const std::string text(trap.Text);
    const std::string behind(trap.Behind);
    const bool isPower = !behind.empty() && (behind.back() == '3' || behind.back() == '\xB3');
    switch (trap.Place) {
        case ePlace::DEGREE: return "20° " + text;
        case ePlace::PRESSURE: return "5 bar " + text;
        case ePlace::ELECTRIC: return "230 V " + text;
        case ePlace::MASS:
        case ePlace::MASS_PER: return "50 mg " + text + "/l";
        case ePlace::PERCENT: return "50 % " + text;
        case ePlace::APART: return "5 " + behind + (isPower ? "" : " ") + text;
        case ePlace::MASS_BELOW: return "4 J/(kg " + text + ")";
        case ePlace::TECHNICAL: return "5 kg/cm² " + text;
        case ePlace::NOTE: return "5 mm/s " + text;
        case ePlace::HEAT: return "4 kJ/(kg·" + text + ")";
        case ePlace::CUBED: return "5 " + text + "³/h";
        case ePlace::POWER: return "5 " + text + "²";
        case ePlace::QUOTIENT:
        case ePlace::SHAPE: return "5 " + behind + "/" + text;
        case ePlace::UNUSUAL:
        case ePlace::TOLD:
        case ePlace::UNKNOWN: break;
    }
    return "5 " + text;
}

}  // namespace mensor::test

#endif  // MENSOR_TESTS_TRAP_EXAMPLE_H
