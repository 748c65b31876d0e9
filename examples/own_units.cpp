// own_units.cpp: defines a program's own units, by a table of text and by calls.
#include <iostream>

#include <mensor/mensor.h>
#include <mensor_checked/OwnUnits.h>
#include <mensor_checked/Reading.h>
#include <mensor_checked/Values.h>
#include <mensor_checked/making.h>

using namespace mensor;

int main() {
    checked::defineUnits(
        "ft = 0.3048 m\n"
        "mi = 5280 ft\n");
    std::cout << checked::readValue("26.2 mi").valueAs(checked::readUnit("km")) << " km\n";

    // Defines two units with function calls: an offset unit, and a base unit that the SI does not have.
    const CUnitPtr fahrenheit =
        checked::label(checked::affine(SI::Kelvin(), 5.0 / 9, 459.67 * 5 / 9), "°F");
    std::cout << CValueWithUnit(98.6, fahrenheit).convertTo(SI::Celsius()) << '\n';

    const CUnitPtr crate = checked::baseUnit("crate");
    const CUnitPtr rate = checked::quotient(crate, NonSI::Hour());
    std::cout << CValueWithUnit(120, rate) << " is "
              << CValueWithUnit(120, rate).valueAs(checked::readUnit("crate/min")) << " a minute\n";
}
