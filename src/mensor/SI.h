// SI.h: the units of the International System and its prefixes.
//
//     SI::Newton()->getConverterTo(SI::Kilogram() * SI::Meter() / (SI::Second() ^ 2));
//     SI::Kilo(SI::Meter());   // the kilometre, labelled "km" since the library was loaded
//
// Each accessor builds its unit once and then returns the same object. All units are built while
// the library is loaded. If building throws, the accessor throws and the next call tries again.
// Definitions: SI brochure, 9th edition.
//
// Threads: any thread. The accessors take no lock after loading. The prefixes lock what
// CUnit::multiply(double) locks.
#ifndef MENSOR_SI_H
#define MENSOR_SI_H

#include "mensor/BaseUnit.h"
#include "mensor/Unit.h"
#include "mensor/mensor_export.h"

namespace mensor::SI {

MENSOR_API CBaseUnitPtr Ampere();    ///< ampere, A: electric current
MENSOR_API CBaseUnitPtr Candela();   ///< candela, cd: luminous intensity
MENSOR_API CBaseUnitPtr Kelvin();    ///< kelvin, K: thermodynamic temperature
MENSOR_API CBaseUnitPtr Kilogram();  ///< kilogram, kg: mass
MENSOR_API CBaseUnitPtr Meter();     ///< metre, m: length
MENSOR_API CBaseUnitPtr Mole();      ///< mole, mol: amount of substance
MENSOR_API CBaseUnitPtr Second();    ///< second, s: time

MENSOR_API CUnitPtr Radian();     ///< radian, rad: plane angle, dimensionless
MENSOR_API CUnitPtr Steradian();  ///< steradian, sr: solid angle, dimensionless
MENSOR_API CUnitPtr Bit();        ///< bit, bit: information, dimensionless
MENSOR_API CUnitPtr Hertz();      ///< hertz, Hz = 1/s: frequency
MENSOR_API CUnitPtr Becquerel();  ///< becquerel, Bq = 1/s: activity; not the same unit as the hertz
MENSOR_API CUnitPtr Gram();       ///< gram, labelled g = 0.001 kg
MENSOR_API CUnitPtr Newton();     ///< newton, N = m·kg/s²: force
MENSOR_API CUnitPtr Joule();      ///< joule, J = N·m: energy
MENSOR_API CUnitPtr Watt();       ///< watt, W = J/s: power
MENSOR_API CUnitPtr Volt();       ///< volt, V = W/A: electric potential difference
MENSOR_API CUnitPtr Ohm();        ///< ohm, Ω (U+2126) = V/A: electric resistance
MENSOR_API CUnitPtr Weber();      ///< weber, Wb = V·s: magnetic flux
MENSOR_API CUnitPtr Henry();      ///< henry, H = Wb/A: inductance
MENSOR_API CUnitPtr Gray();       ///< gray, Gy = J/kg: absorbed dose
MENSOR_API CUnitPtr
Sievert();  ///< sievert, Sv = J/kg: dose equivalent; not the same unit as the gray
MENSOR_API CUnitPtr Pascal();   ///< pascal, Pa = N/m²: pressure
MENSOR_API CUnitPtr Coulomb();  ///< coulomb, C = s·A: electric charge
MENSOR_API CUnitPtr Farad();    ///< farad, F = C/V: capacitance
MENSOR_API CUnitPtr Siemens();  ///< siemens, S = A/V: electric conductance
MENSOR_API CUnitPtr Tesla();    ///< tesla, T = Wb/m²: magnetic flux density
MENSOR_API CUnitPtr Celsius();  ///< degree Celsius, labelled °C: t/°C = T/K - 273.15
MENSOR_API CUnitPtr Lumen();    ///< lumen, lm = cd·sr: luminous flux
MENSOR_API CUnitPtr Lux();      ///< lux, lx = lm/m²: illuminance
MENSOR_API CUnitPtr Katal();    ///< katal, kat = mol/s: catalytic activity

// Each prefix multiplies `unit`, which must not be empty, by its factor. It does not label the
// result.

MENSOR_API CUnitPtr Yotta(CUnitPtr unit);  ///< `unit->multiply(1e24)`
MENSOR_API CUnitPtr Zetta(CUnitPtr unit);  ///< `unit->multiply(1e21)`
MENSOR_API CUnitPtr Exa(CUnitPtr unit);    ///< `unit->multiply(1e18)`
MENSOR_API CUnitPtr Peta(CUnitPtr unit);   ///< `unit->multiply(1e15)`
MENSOR_API CUnitPtr Tera(CUnitPtr unit);   ///< `unit->multiply(1e12)`
MENSOR_API CUnitPtr Giga(CUnitPtr unit);   ///< `unit->multiply(1e9)`
MENSOR_API CUnitPtr Mega(CUnitPtr unit);   ///< `unit->multiply(1e6)`
MENSOR_API CUnitPtr Kilo(CUnitPtr unit);   ///< `unit->multiply(1000)`
MENSOR_API CUnitPtr Hecto(CUnitPtr unit);  ///< `unit->multiply(100)`
MENSOR_API CUnitPtr Deka(CUnitPtr unit);   ///< `unit->multiply(10)`
MENSOR_API CUnitPtr Deci(CUnitPtr unit);   ///< `unit->multiply(0.1)`
MENSOR_API CUnitPtr Centi(CUnitPtr unit);  ///< `unit->multiply(0.01)`
MENSOR_API CUnitPtr Milli(CUnitPtr unit);  ///< `unit->multiply(0.001)`
MENSOR_API CUnitPtr Micro(CUnitPtr unit);  ///< `unit->multiply(1e-6)`
MENSOR_API CUnitPtr Nano(CUnitPtr unit);   ///< `unit->multiply(1e-9)`
MENSOR_API CUnitPtr Pico(CUnitPtr unit);   ///< `unit->multiply(1e-12)`
MENSOR_API CUnitPtr Femto(CUnitPtr unit);  ///< `unit->multiply(1e-15)`
MENSOR_API CUnitPtr Atto(CUnitPtr unit);   ///< `unit->multiply(1e-18)`
MENSOR_API CUnitPtr Zepto(CUnitPtr unit);  ///< `unit->multiply(1e-21)`
MENSOR_API CUnitPtr Yocto(CUnitPtr unit);  ///< `unit->multiply(1e-24)`

}  // namespace mensor::SI

#endif  // MENSOR_SI_H
