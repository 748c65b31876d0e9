// UnitRegistry.cpp: builds the catalogue and its labels while the library is loaded.
//
// Initialised last of all sources (see CMakeLists.txt), because it uses the others. The order of
// the lists decides the ids of the units and their labels: if a unit gets two labels, such as "hPa"
// and "mbar" or "mK" and "m°C", the later one stays.
#include "mensor/UnitRegistry.h"

#include <exception>
#include <iostream>

#include "mensor/FailureReport.h"
#include "mensor/NonSI.h"
#include "mensor/SI.h"
#include "mensor/UnitFormat.h"

namespace mensor {

namespace {

const int NumberOfPrefixes = 20;

const char* const PREFIXES[NumberOfPrefixes] = {"Y", "Z", "E", "P", "T", "G", "M", "k", "h", "da",
                                                "d", "c", "m", "µ", "n", "p", "f", "a", "z", "y"};

const double FACTORS[NumberOfPrefixes] = {1e24, 1e21,  1e18,  1e15,  1e12,  1e9,   1e6,
                                          1000, 100,   10,    0.1,   0.01,  0.001, 1e-6,
                                          1e-9, 1e-12, 1e-15, 1e-18, 1e-21, 1e-24};

}  // namespace

// Labels the multiple of `unit` for each prefix with the prefix and the symbol.
static void labelPrefixedUnit(CUnitPtr unit) {
    for (int i = 0; i < NumberOfPrefixes; ++i) {
        CUnitFormat::label(unit->multiply(FACTORS[i]), string_t(PREFIXES[i]) + unit->getSymbol());
    }
}

// The gram has a label but no symbol, and 1000 g is the base unit "kg".
static void labelPrefixedGRAM() {
    const string_t label = CUnitFormat::labelFor(SI::Gram());
    for (int i = 0; i < NumberOfPrefixes; ++i) {
        if (FACTORS[i] == 1000.0) {
            continue;
        }
        CUnitFormat::label(SI::Gram()->multiply(FACTORS[i]), string_t(PREFIXES[i]) + label);
    }
}

// The hash code ignores offsets, so these units are the prefixed kelvins, and the labels replace
// theirs: "mK" becomes "m°C".
static void labelPrefixedCelsius() {
    const string_t label = CUnitFormat::labelFor(SI::Celsius());
    for (int i = 0; i < NumberOfPrefixes; ++i) {
        CUnitFormat::label(SI::Celsius()->multiply(FACTORS[i]), string_t(PREFIXES[i]) + label);
    }
}

static void labelLiterPrefixes() {
    CUnitFormat::label(NonSI::Liter()->multiply(1e-12), "pl");
    CUnitFormat::label(NonSI::Liter()->multiply(1e-9), "nl");
    CUnitFormat::label(NonSI::Liter()->multiply(1e-6), "µl");
    CUnitFormat::label(NonSI::Liter()->multiply(0.001), "ml");
    CUnitFormat::label(NonSI::Liter()->multiply(0.01), "cl");
    CUnitFormat::label(NonSI::Liter()->multiply(0.1), "dl");
}

// The two functions below are in namespace mensor itself, so that the log names them "void
// mensor::registerSiUnits()". The siemens is in the list twice and the lumen is missing. Programs
// rely on the labels that follow from this.
static void registerSiUnits() {
    try {
        labelPrefixedUnit(SI::Ampere());
        labelPrefixedUnit(SI::Candela());
        labelPrefixedUnit(SI::Kelvin());
        labelPrefixedUnit(SI::Meter());
        labelPrefixedUnit(SI::Mole());
        labelPrefixedUnit(SI::Second());
        labelPrefixedUnit(SI::Radian());
        labelPrefixedUnit(SI::Steradian());
        labelPrefixedUnit(SI::Hertz());
        labelPrefixedUnit(SI::Newton());
        labelPrefixedUnit(SI::Pascal());
        labelPrefixedUnit(SI::Joule());
        labelPrefixedUnit(SI::Watt());
        labelPrefixedUnit(SI::Coulomb());
        labelPrefixedUnit(SI::Volt());
        labelPrefixedUnit(SI::Farad());
        labelPrefixedUnit(SI::Ohm());
        labelPrefixedUnit(SI::Siemens());
        labelPrefixedUnit(SI::Weber());
        labelPrefixedUnit(SI::Tesla());
        labelPrefixedUnit(SI::Henry());
        labelPrefixedUnit(SI::Siemens());
        labelPrefixedUnit(SI::Lux());
        labelPrefixedUnit(SI::Becquerel());
        labelPrefixedUnit(SI::Gray());
        labelPrefixedUnit(SI::Sievert());
        labelPrefixedUnit(SI::Katal());
        labelPrefixedGRAM();
        labelPrefixedCelsius();
    } catch (const std::exception& e) {
        std::cerr << "registerSiUnits() exception" << std::endl;
        detail::reportFailure({"Exception: ", e.what(), __FILE__, __LINE__, __PRETTY_FUNCTION__});
    } catch (...) {
        std::cerr << "registerSiUnits() exception" << std::endl;
        detail::reportFailure({"Unknown Exception: ", "", __FILE__, __LINE__, __PRETTY_FUNCTION__});
    }
}

// Each accessor labels its unit. Psi and None are built by the first call of a client.
static void registerNonSiUnits() {
    try {
        NonSI::Percent();
        NonSI::G();
        NonSI::Grade();
        NonSI::Byte();
        NonSI::Octet();
        NonSI::Minute();
        NonSI::Hour();
        NonSI::Day();
        NonSI::Week();
        NonSI::Year();
        NonSI::Month();
        NonSI::DaySidereal();
        NonSI::YearSidereal();
        NonSI::YearCalendar();
        NonSI::Aeon();
        NonSI::MillimeterOfMercury();
        NonSI::InchOfMercury();
        labelLiterPrefixes();
        NonSI::Atmosphere();
        NonSI::Bar();
        NonSI::MilliBar();
        NonSI::Revolution();
        NonSI::DegreeAngle();
        NonSI::MinuteAngle();
        NonSI::SecondAngle();
        NonSI::CentiRadian();
    } catch (const std::exception& e) {
        detail::reportFailure({"Exception: ", e.what(), __FILE__, __LINE__, __PRETTY_FUNCTION__});
    } catch (...) {
        detail::reportFailure({"Unknown Exception: ", "", __FILE__, __LINE__, __PRETTY_FUNCTION__});
    }
}

CUnitRegistry::CUnitRegistry() {
    registerSiUnits();
    registerNonSiUnits();
}

// Hides the class of the same name from here on: there is one object.
static const CUnitRegistry CUnitRegistry;

}  // namespace mensor
