// typical_texts.h: fifty typical texts of units that mensor and UDUNITS-2 read alike. The benchmarks and
// tests/budget use the same texts.
#ifndef MENSOR_BENCHMARKS_TYPICAL_TEXTS_H
#define MENSOR_BENCHMARKS_TYPICAL_TEXTS_H

constexpr const char* TypicalTexts[] = {
    "m",        "km",    "mm",  "cm",       "µm",         "s",    "ms",    "min",   "h",
    "d",        "kg",    "g",   "mg",       "K",          "°C",   "A",     "mA",    "V",
    "mV",       "kV",    "W",   "kW",       "MW",         "kW*h", "J",     "kJ",    "N",
    "kN",       "Pa",    "MPa", "kPa",      "bar",        "mbar", "Hz",    "kHz",   "MHz",
    "lx",       "mol",   "m/s", "km/h",     "m/s^2",      "m^2",  "m^3/h", "l/min", "kg/m^3",
    "kg·m²/s²", "W/m^2", "N*m", "J/(kg*K)", "mol/(m^3*s)"};

#endif  // MENSOR_BENCHMARKS_TYPICAL_TEXTS_H
