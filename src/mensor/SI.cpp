// SI.cpp: do not change the order of the operands. It decides the order of the factors in the
// products that are built here, and so their text.
#include "mensor/SI.h"

#include "mensor/Kept.h"
#include "mensor/ProductUnit.h"
#include "mensor/UnitFormat.h"

namespace mensor::SI {

using detail::CKept;

CBaseUnitPtr Ampere() {
    static const CKept<CBaseUnitPtr> Ampere(CBaseUnit::getInstance("A"));
    return *Ampere;
}

CBaseUnitPtr Candela() {
    static const CKept<CBaseUnitPtr> Candela(CBaseUnit::getInstance("cd"));
    return *Candela;
}

CBaseUnitPtr Kelvin() {
    static const CKept<CBaseUnitPtr> Kelvin(CBaseUnit::getInstance("K"));
    return *Kelvin;
}

CBaseUnitPtr Kilogram() {
    static const CKept<CBaseUnitPtr> Kilogram(CBaseUnit::getInstance("kg"));
    return *Kilogram;
}

CBaseUnitPtr Meter() {
    static const CKept<CBaseUnitPtr> Meter(CBaseUnit::getInstance("m"));
    return *Meter;
}

CBaseUnitPtr Mole() {
    static const CKept<CBaseUnitPtr> Mole(CBaseUnit::getInstance("mol"));
    return *Mole;
}

CBaseUnitPtr Second() {
    static const CKept<CBaseUnitPtr> Second(CBaseUnit::getInstance("s"));
    return *Second;
}

CUnitPtr Radian() {
    static const CKept<CUnitPtr> Rad(CProductUnit::one()->alternate("rad"));
    return *Rad;
}

CUnitPtr Steradian() {
    static const CKept<CUnitPtr> Steradian(CProductUnit::one()->alternate("sr"));
    return *Steradian;
}

CUnitPtr Bit() {
    static const CKept<CUnitPtr> Bit(CProductUnit::one()->alternate("bit"));
    return *Bit;
}

CUnitPtr Hertz() {
    static const CKept<CUnitPtr> Hertz(CProductUnit::one()->divide(Second())->alternate("Hz"));
    return *Hertz;
}

CUnitPtr Becquerel() {
    static const CKept<CUnitPtr> Becquerel(CProductUnit::one()->divide(Second())->alternate("Bq"));
    return *Becquerel;
}

CUnitPtr Gram() {
    static const CKept<CUnitPtr> Gram(CUnitFormat::label(Kilogram()->multiply(0.001), "g"));
    return *Gram;
}

CUnitPtr Newton() {
    static const CKept<CUnitPtr> Newton(
        Meter()->multiply(Kilogram())->divide(Second()->pow(2))->alternate("N"));
    return *Newton;
}

CUnitPtr Joule() {
    static const CKept<CUnitPtr> Joule(Newton()->multiply(Meter())->alternate("J"));
    return *Joule;
}

CUnitPtr Watt() {
    static const CKept<CUnitPtr> Watt(Joule()->divide(Second())->alternate("W"));
    return *Watt;
}

CUnitPtr Volt() {
    static const CKept<CUnitPtr> Volt(Watt()->divide(Ampere())->alternate("V"));
    return *Volt;
}

CUnitPtr Ohm() {
    // The ohm sign, U+2126, not the Greek letter.
    static const CKept<CUnitPtr> Ohm(Volt()->divide(Ampere())->alternate("Ω"));
    return *Ohm;
}

CUnitPtr Weber() {
    static const CKept<CUnitPtr> Weber(Volt()->multiply(Second())->alternate("Wb"));
    return *Weber;
}

CUnitPtr Henry() {
    static const CKept<CUnitPtr> Henry(Weber()->divide(Ampere())->alternate("H"));
    return *Henry;
}

CUnitPtr Gray() {
    static const CKept<CUnitPtr> Gray(Joule()->divide(Kilogram())->alternate("Gy"));
    return *Gray;
}

CUnitPtr Sievert() {
    static const CKept<CUnitPtr> Sievert(Joule()->divide(Kilogram())->alternate("Sv"));
    return *Sievert;
}

CUnitPtr Pascal() {
    static const CKept<CUnitPtr> Pascal(Newton()->divide(Meter()->pow(2))->alternate("Pa"));
    return *Pascal;
}

CUnitPtr Coulomb() {
    static const CKept<CUnitPtr> Coulomb(Second()->multiply(Ampere())->alternate("C"));
    return *Coulomb;
}

CUnitPtr Farad() {
    static const CKept<CUnitPtr> Farad(Coulomb()->divide(Volt())->alternate("F"));
    return *Farad;
}

CUnitPtr Siemens() {
    static const CKept<CUnitPtr> Siemens(Ampere()->divide(Volt())->alternate("S"));
    return *Siemens;
}

CUnitPtr Tesla() {
    static const CKept<CUnitPtr> Tesla(Weber()->divide(Meter()->pow(2))->alternate("T"));
    return *Tesla;
}

CUnitPtr Celsius() {
    static const CKept<CUnitPtr> Celsius(CUnitFormat::label(Kelvin()->add(273.15), "°C"));
    return *Celsius;
}

CUnitPtr Lumen() {
    static const CKept<CUnitPtr> Lumen(Candela()->multiply(Steradian())->alternate("lm"));
    return *Lumen;
}

CUnitPtr Lux() {
    static const CKept<CUnitPtr> Lux(Lumen()->divide(Meter()->pow(2))->alternate("lx"));
    return *Lux;
}

CUnitPtr Katal() {
    static const CKept<CUnitPtr> Katal(Mole()->divide(Second())->alternate("kat"));
    return *Katal;
}

CUnitPtr Yotta(CUnitPtr unit) { return unit->multiply(1e24); }
CUnitPtr Zetta(CUnitPtr unit) { return unit->multiply(1e21); }
CUnitPtr Exa(CUnitPtr unit) { return unit->multiply(1e18); }
CUnitPtr Peta(CUnitPtr unit) { return unit->multiply(1e15); }
CUnitPtr Tera(CUnitPtr unit) { return unit->multiply(1e12); }
CUnitPtr Giga(CUnitPtr unit) { return unit->multiply(1e9); }
CUnitPtr Mega(CUnitPtr unit) { return unit->multiply(1e6); }
CUnitPtr Kilo(CUnitPtr unit) { return unit->multiply(1000); }
CUnitPtr Hecto(CUnitPtr unit) { return unit->multiply(100); }
CUnitPtr Deka(CUnitPtr unit) { return unit->multiply(10); }
CUnitPtr Deci(CUnitPtr unit) { return unit->multiply(0.1); }
CUnitPtr Centi(CUnitPtr unit) { return unit->multiply(0.01); }
CUnitPtr Milli(CUnitPtr unit) { return unit->multiply(0.001); }
CUnitPtr Micro(CUnitPtr unit) { return unit->multiply(1e-6); }
CUnitPtr Nano(CUnitPtr unit) { return unit->multiply(1e-9); }
CUnitPtr Pico(CUnitPtr unit) { return unit->multiply(1e-12); }
CUnitPtr Femto(CUnitPtr unit) { return unit->multiply(1e-15); }
CUnitPtr Atto(CUnitPtr unit) { return unit->multiply(1e-18); }
CUnitPtr Zepto(CUnitPtr unit) { return unit->multiply(1e-21); }
CUnitPtr Yocto(CUnitPtr unit) { return unit->multiply(1e-24); }

}  // namespace mensor::SI
