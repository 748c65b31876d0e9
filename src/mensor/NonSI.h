// NonSI.h: units outside the SI that are accepted for use with it or common in practice.
//
//     NonSI::Hour()->getConverterTo(SI::Second())->convert(1.5);   // 5400
//     CUnit::fromString("psi");                                    // unknown until NonSI::Psi()
//
// Each accessor builds and labels its unit once and then returns the same object. All units except
// Psi and None are built while the library is loaded. If building throws, the accessor throws and
// the next call tries again. The factors of the pressures are short decimals on purpose.
//
// Threads: any thread. Psi and None lock CUnit::mutex(); the others take no lock.
#ifndef MENSOR_NONSI_H
#define MENSOR_NONSI_H

#include "mensor/Unit.h"
#include "mensor/mensor_export.h"

namespace mensor::NonSI {

/// Standard acceleration of free fall in metres per second squared. Source: 3rd CGPM, 1901.
constexpr double STANDARD_GRAVITY = 9.80665;

MENSOR_API CUnitPtr Percent();  ///< percent, labelled %: 0.01
MENSOR_API CUnitPtr
None();  ///< the dimensionless unit times 1, with the empty label; not built at load
MENSOR_API CUnitPtr Revolution();   ///< revolution, labelled rev: 2π rad
MENSOR_API CUnitPtr DegreeAngle();  ///< degree, labelled °: 1/360 rev
MENSOR_API CUnitPtr MinuteAngle();  ///< minute of arc, labelled ′ (U+2032): 1/60 °
MENSOR_API CUnitPtr SecondAngle();  ///< second of arc, labelled ″ (U+2033): 1/60 ′
MENSOR_API CUnitPtr CentiRadian();  ///< labelled centiradian: 0.01 rad
MENSOR_API CUnitPtr Grade();        ///< gon, labelled grade: 0.0025 rev
MENSOR_API CUnitPtr Byte();         ///< byte, labelled byte: 8 bit
MENSOR_API CUnitPtr Octet();        ///< the byte itself
MENSOR_API CUnitPtr Atmosphere();   ///< standard atmosphere, labelled atm: 101325 Pa
MENSOR_API CUnitPtr Bar();          ///< bar, labelled bar: 100000 Pa
MENSOR_API CUnitPtr Psi();  ///< pound-force per square inch, psi: 6894.76 Pa; not built at load
MENSOR_API CUnitPtr MilliBar();             ///< millibar, labelled mbar: 0.001 bar
MENSOR_API CUnitPtr MillimeterOfMercury();  ///< millimetre of mercury, labelled mm_Hg: 133.322 Pa
MENSOR_API CUnitPtr InchOfMercury();        ///< inch of mercury, labelled in_Hg: 3386.388 Pa
MENSOR_API CUnitPtr Liter();                ///< litre, labelled l: 0.001 m³
MENSOR_API CUnitPtr G();             ///< standard gravity, labelled grav: STANDARD_GRAVITY m/s²
MENSOR_API CUnitPtr Minute();        ///< minute, labelled min: 60 s
MENSOR_API CUnitPtr Hour();          ///< hour, labelled h: 60 min
MENSOR_API CUnitPtr Day();           ///< day, labelled d: 24 h
MENSOR_API CUnitPtr Week();          ///< week, labelled week: 7 d
MENSOR_API CUnitPtr YearCalendar();  ///< calendar year, labelled year_calendar: 365 d
MENSOR_API CUnitPtr Year();  ///< mean Gregorian year, labelled year: 31556952 s, that is 365.2425 d
MENSOR_API CUnitPtr Month();         ///< labelled month: a twelfth of a year
MENSOR_API CUnitPtr Aeon();          ///< 10⁹ years; no label
MENSOR_API CUnitPtr DaySidereal();   ///< sidereal day, labelled day_sidereal: 86164.09 s
MENSOR_API CUnitPtr YearSidereal();  ///< sidereal year, labelled year_sidereal: 31558149.54 s

}  // namespace mensor::NonSI

#endif  // MENSOR_NONSI_H
