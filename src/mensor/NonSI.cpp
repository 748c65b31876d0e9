// NonSI.cpp: each unit is a multiple of an SI unit or of another unit in this file. The factors of
// such a chain are multiplied step by step, and each product is rounded.
#include "mensor/NonSI.h"

#include "mensor/Kept.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/Tables.h"
#include "mensor/UnitFormat.h"

namespace mensor::NonSI {

using detail::CKept;

CUnitPtr Percent() {
    static const CKept<CUnitPtr> Percent(
        CUnitFormat::label(CProductUnit::one()->multiply(0.01), "%"));
    return *Percent;
}

// None and Psi are not built while the library is loaded. Building locks mutex(), and the
// initialisation of the static has a lock, too. mutex() is locked first, because a caller may hold
// it already: with the other order that caller and a thread that builds the unit would deadlock.
CUnitPtr None() {
    const detail::Lock lock(CUnit::mutex());
    static const CKept<CUnitPtr> None(CUnitFormat::label(CProductUnit::one()->multiply(1.0), ""));
    return *None;
}

CUnitPtr Revolution() {
    static const CKept<CUnitPtr> Revolution(
        CUnitFormat::label(SI::Radian()->multiply(2.0 * 3.14159265358979323846), "rev"));
    return *Revolution;
}

CUnitPtr DegreeAngle() {
    static const CKept<CUnitPtr> Degree_Angle(
        CUnitFormat::label(Revolution()->multiply(1.0 / 360.0), "°"));
    return *Degree_Angle;
}

CUnitPtr MinuteAngle() {
    static const CKept<CUnitPtr> Minute_Angle(
        CUnitFormat::label(DegreeAngle()->multiply(1.0 / 60.0), "′"));
    return *Minute_Angle;
}

CUnitPtr SecondAngle() {
    static const CKept<CUnitPtr> Second_Angle(
        CUnitFormat::label(MinuteAngle()->multiply(1.0 / 60.0), "″"));
    return *Second_Angle;
}

CUnitPtr CentiRadian() {
    static const CKept<CUnitPtr> CentriRadian(
        CUnitFormat::label(SI::Radian()->multiply(0.01), "centiradian"));
    return *CentriRadian;
}

CUnitPtr Grade() {
    static const CKept<CUnitPtr> Grade(CUnitFormat::label(Revolution()->multiply(0.0025), "grade"));
    return *Grade;
}

CUnitPtr Byte() {
    static const CKept<CUnitPtr> Byte(CUnitFormat::label(SI::Bit()->multiply(8.0), "byte"));
    return *Byte;
}

CUnitPtr Octet() {
    static const CKept<CUnitPtr> Octet(Byte());
    return *Octet;
}

CUnitPtr Atmosphere() {
    static const CKept<CUnitPtr> Atmosphere(
        CUnitFormat::label(SI::Pascal()->multiply(101325.0), "atm"));
    return *Atmosphere;
}

CUnitPtr Bar() {
    static const CKept<CUnitPtr> Bar(CUnitFormat::label(SI::Pascal()->multiply(100000.0), "bar"));
    return *Bar;
}

CUnitPtr Psi() {
    const detail::Lock lock(CUnit::mutex());
    static const CKept<CUnitPtr> psi(CUnitFormat::label(SI::Pascal()->multiply(6894.76), "psi"));
    return *psi;
}

CUnitPtr MilliBar() {
    static const CKept<CUnitPtr> Millibar(CUnitFormat::label(Bar()->multiply(0.001), "mbar"));
    return *Millibar;
}

CUnitPtr MillimeterOfMercury() {
    static const CKept<CUnitPtr> MilliMeter_Of_Mercury(
        CUnitFormat::label(SI::Pascal()->multiply(133.322), "mm_Hg"));
    return *MilliMeter_Of_Mercury;
}

CUnitPtr InchOfMercury() {
    static const CKept<CUnitPtr> Inch_Of_Mercury(
        CUnitFormat::label(SI::Pascal()->multiply(3386.388), "in_Hg"));
    return *Inch_Of_Mercury;
}

CUnitPtr Liter() {
    static const CKept<CUnitPtr> Liter(
        CUnitFormat::label(SI::Meter()->pow(3)->multiply(0.001), "l"));
    return *Liter;
}

CUnitPtr G() {
    static const CKept<CUnitPtr> G(CUnitFormat::label(
        SI::Meter()->divide(SI::Second()->pow(2))->multiply(STANDARD_GRAVITY), "grav"));
    return *G;
}

CUnitPtr Minute() {
    static const CKept<CUnitPtr> Minute(CUnitFormat::label(SI::Second()->multiply(60.0), "min"));
    return *Minute;
}

CUnitPtr Hour() {
    static const CKept<CUnitPtr> Hour(CUnitFormat::label(Minute()->multiply(60.0), "h"));
    return *Hour;
}

CUnitPtr Day() {
    static const CKept<CUnitPtr> Day(CUnitFormat::label(Hour()->multiply(24.0), "d"));
    return *Day;
}

CUnitPtr Week() {
    static const CKept<CUnitPtr> Week(CUnitFormat::label(Day()->multiply(7.0), "week"));
    return *Week;
}

CUnitPtr YearCalendar() {
    static const CKept<CUnitPtr> Year_Calendar(
        CUnitFormat::label(Day()->multiply(365.0), "year_calendar"));
    return *Year_Calendar;
}

CUnitPtr Year() {
    static const CKept<CUnitPtr> Year(
        CUnitFormat::label(SI::Second()->multiply(31556952.0), "year"));
    return *Year;
}

CUnitPtr Month() {
    static const CKept<CUnitPtr> Month(CUnitFormat::label(Year()->multiply(1.0 / 12.0), "month"));
    return *Month;
}

CUnitPtr Aeon() {
    static const CKept<CUnitPtr> Aeon(Year()->multiply(1e9));
    return *Aeon;
}

CUnitPtr DaySidereal() {
    static const CKept<CUnitPtr> Day_Sidereal(
        CUnitFormat::label(SI::Second()->multiply(86164.09), "day_sidereal"));
    return *Day_Sidereal;
}

CUnitPtr YearSidereal() {
    static const CKept<CUnitPtr> Year_Sidereal(
        CUnitFormat::label(SI::Second()->multiply(31558149.54), "year_sidereal"));
    return *Year_Sidereal;
}

}  // namespace mensor::NonSI
