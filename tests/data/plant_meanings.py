#!/usr/bin/env python3
"""Computes what the texts of plant_texts.tsv mean, without the library, and compares.

    tests/data/plant_meanings.py tests/data/plant_texts.tsv

The definitions below are written by hand, with exact fractions. The reader of texts is a second one, too. So a
wrong row of the table, or a wrong definition in the library, makes the two disagree. Rows with the code of a
refusal are counted, not judged.

Sources: SI brochure, 9th edition, tables 2 to 8; NIST SP 811 (2008), B.8; ISO 80000-3 and IEC 80000-13. The three
units that mensor rounds are marked. Their values are in the header NonSI.h.
"""
import re
import sys
from fractions import Fraction as F

PI = "π"  # counts as a base, so that its power stays exact


class Meaning:
    """x of a unit is (x·factor + offset) of the product of the bases with these exponents."""

    def __init__(self, exponents=(), factor=F(1), offset=F(0)):
        self.exponents = {b: F(e) for b, e in dict(exponents).items() if e}
        self.factor = F(factor)
        self.offset = F(offset)

    def __mul__(self, other):
        if not isinstance(other, Meaning):
            return Meaning(self.exponents, self.factor * F(other))
        exponents = dict(self.exponents)
        for b, e in other.exponents.items():
            exponents[b] = exponents.get(b, 0) + e
        return Meaning(exponents, self.factor * other.factor)

    def __pow__(self, n):
        n = F(n)
        if n.denominator != 1 and self.factor != 1:
            raise ValueError("a root of a number")
        factor = self.factor ** int(n) if n.denominator == 1 else F(1)
        return Meaning({b: e * n for b, e in self.exponents.items()}, factor)

    def __truediv__(self, other):
        return self * (other**-1 if isinstance(other, Meaning) else F(1) / F(other))

    def __eq__(self, other):
        return (self.exponents, self.factor, self.offset) == (
            other.exponents, other.factor, other.offset)

    def __repr__(self):
        return f"{self.factor} {self.exponents} + {self.offset}"


def scale(unit, zero):
    """A scale whose 0 is `zero` of the base units."""
    return Meaning(unit.exponents, unit.factor, zero)


m, kg, s, A, K, mol, cd, rad, sr, bit, RH = (
    Meaning({b: 1}) for b in ("m", "kg", "s", "A", "K", "mol", "cd", "rad", "sr", "bit", "%RH"))
pi, one = Meaning({PI: 1}), Meaning()
g = kg / 1000
N = kg * m / s**2
Pa, J = N / m**2, N * m
W = J / s
C, V = A * s, W / A
Wb, ohm = V * s, V / A
SI = {
    "m": m, "g": g, "s": s, "A": A, "K": K, "mol": mol, "cd": cd, "rad": rad, "sr": sr, "Hz": one / s,
    "N": N, "Pa": Pa, "J": J, "W": W, "C": C, "V": V, "F": C / V, "Ω": ohm, "S": A / V, "Wb": Wb,
    "T": Wb / m**2, "H": Wb / A, "lm": cd * sr, "lx": cd * sr / m**2, "Bq": one / s,
    "Gy": J / kg, "Sv": J / kg, "kat": mol / s, "l": m**3 / 1000, "bar": Pa * 100000,
}
PREFIXES = {"E": 18, "P": 15, "T": 12, "G": 9, "M": 6, "k": 3, "h": 2, "da": 1, "d": -1, "c": -2, "m": -3,
            "µ": -6, "u": -6, "n": -9, "p": -12, "f": -15}
WORDS = {
    "meter": m, "metre": m, "gram": g, "gramme": g, "second": s, "ampere": A, "amp": A, "kelvin": K, "mole": mol,
    "candela": cd, "radian": rad, "hertz": one / s, "newton": N, "pascal": Pa, "joule": J, "watt": W, "coulomb": C,
    "volt": V, "farad": C / V, "ohm": ohm, "siemens": A / V, "weber": Wb, "tesla": Wb / m**2, "henry": Wb / A,
    "lumen": cd * sr, "lux": cd * sr / m**2, "becquerel": one / s, "sievert": J / kg, "liter": m**3 / 1000,
    "litre": m**3 / 1000, "bit": bit, "byte": bit * 8, "tonne": kg * 1000, "gauss": Wb / m**2 / 10000,
    "baud": one / s,
}
WORD_PREFIXES = {"": 0, "kilo": 3, "mega": 6, "giga": 9, "centi": -2, "milli": -3, "micro": -6, "nano": -9}

# Times, lengths, masses, forces.
minute, hour, day = s * 60, s * 3600, s * 86400
year = s * 31556952  # the mean Gregorian year: 146097 d in 400 years
inch = m * F("0.0254")
foot, yard, mile = inch * 12, inch * 36, inch * 63360
nautical = m * 1852
pound = kg * F("0.45359237")
grav = m / s**2 * F("9.80665")
kgf, lbf = kg * grav, pound * grav
gallon = inch**3 * 231
imperial = m**3 * F("0.00454609")
barrel = gallon * 42
litre = m**3 / 1000
# Pressures. Columns: mercury of 13595.1 kg/m³, water of 1000 kg/m³.
atm = Pa * 101325
psi = Pa * F("6894.76")  # rounded by mensor
pound_per_square_inch = lbf / inch**2
mmHg, inHg = Pa * F("133.322387415"), Pa * F("3386.388640341")
mmH2O, inH2O, ftH2O = Pa * F("9.80665"), Pa * F("249.08891"), Pa * F("2989.06692")
technical = kgf / (m / 100) ** 2
# Energies.
BTU = J * F("1055.05585262")
kcal = J * 4184
horsepower = foot * lbf / s * 550
refrigeration = BTU / hour * 12000
byte = bit * 8
degree = pi * rad / 180
turn = pi * rad * 2
celsius = scale(K, F("273.15"))
fahrenheit = scale(K * F(5, 9), F("459.67") * F(5, 9))
roentgen = C / kg * F("0.000258")


def gauge(unit):
    return scale(unit, 101325)


NAMES = {
    # temperatures and angles
    "°C degC ºC ℃ celsius Celsius": celsius,
    "°F degF ℉": fahrenheit,
    "°K degK": K,
    "° deg degree degrees": degree,
    "gon": degree * F(9, 10),
    "arcmin": degree / 60,
    "Grad": rad * 10**9,
    "rev turn turns": turn,
    "rpm RPM": turn / minute,
    "rps": turn / s,
    # times
    "sec secs": s,
    "msec": s / 1000,
    "usec": s / 10**6,
    "min mins minute minutes Minute": minute,
    "h hr hrs hour hours Hours": hour,
    "d day days Days": day,
    "week weeks": day * 7,
    "month months": year / 12,
    "year yr yrs years": year,
    # lengths, areas, volumes
    "in in. inch inches": inch,
    "ft feet foot": foot,
    "yd yard": yard,
    "mi mile miles": mile,
    "mph": mile / hour,
    "kn knots knot": nautical / hour,
    "kph kmph": m * 1000 / hour,
    "fpm FPM": foot / minute,
    "ips": inch / s,
    "thou": inch / 1000,
    "Å": m / 10**10,
    "ha": m**2 * 10000,
    "acre": foot**2 * 43560,
    "L ltr": litre,
    "mL": litre / 1000,
    "dL": litre / 10,
    "fL": litre / 10**15,
    "cc": (m / 100) ** 3,
    "gal": gallon,
    "bbl barrels": barrel,
    "lph LPH": litre / hour,
    "lpm LPM": litre / minute,
    "lps LPS": litre / s,
    "lmh LMH": litre / (m**2 * hour),
    "CMH": m**3 / hour,
    "CMM": m**3 / minute,
    "gpm GPM USGPM": gallon / minute,
    "gph GPH": gallon / hour,
    "igpm": imperial / minute,
    "MGD mgd": gallon * 10**6 / day,
    "BPD bpd": barrel / day,
    "CFM cfm": foot**3 / minute,
    "cfh CFH": foot**3 / hour,
    "cfs cusec cusecs": foot**3 / s,
    "cumec cumecs": m**3 / s,
    "CCF": foot**3 * 100,
    "Mcf": foot**3 * 1000,
    "MMcf": foot**3 * 10**6,
    "Bcf": foot**3 * 10**9,
    "Tcf": foot**3 * 10**12,
    "kgal": gallon * 1000,
    "Mgal": gallon * 10**6,
    # masses
    "lb lbs lbm": pound,
    "klb": pound * 1000,
    "mcg": g / 10**6,
    "Da amu": kg * F("1.66053906660e-27"),  # CODATA 2018
    "kDa": kg * F("1.66053906660e-24"),
    "oz": pound / 16,
    "gr grains": pound / 7000,
    "st": pound * 14,
    "t": kg * 1000,
    "ton": pound * 2000,
    "kgs": kg,
    "gsm": g / m**2,
    "tex": kg / 10**6 / m,
    "dtex": kg / 10**7 / m,
    "den": g / (m * 9000),
    "lbmol": mol * F("453.59237"),
    # forces and pressures
    "kgf kp": kgf,
    "gf": kgf / 1000,
    "tf": kgf * 1000,
    "ozf": lbf / 16,
    "kip kips": lbf * 1000,
    "pdl": pound * foot / s**2,
    "slug": lbf * s**2 / foot,
    "lbf": lbf,
    "dyn dyne": N / 10**5,
    "psi psia psid": psi,
    "psig": gauge(pound_per_square_inch),
    "ksi": psi * 1000,
    "psf": lbf / foot**2,
    "bara bar(a)": Pa * 10**5,
    "barg barG bar(g) bar_g": gauge(Pa * 10**5),
    "mbarg": gauge(Pa * 100),
    "kPaa": Pa * 1000,
    "kPag kPa(g)": gauge(Pa * 1000),
    "MPag": gauge(Pa * 10**6),
    "atm": atm,
    "at ata": technical,
    "Torr torr": atm / 760,
    "mTorr": atm / 760000,
    "mmHg mmHg(a)": mmHg,
    "inHg": inHg,
    "µmHg umHg": mmHg / 1000,
    "mmH2O mmWC mmwc mmWG mmWS mmCE": mmH2O,
    "cmH2O": mmH2O * 10,
    "mH2O mWC mwc mCE mWS": mmH2O * 1000,
    "inH2O inWC iwc": inH2O,
    # electricity
    "O": None,  # a part of H2O
    "Ohm": ohm,
    "kohm kOhm": ohm * 1000,
    "Mohm MOhm megohm": ohm * 10**6,
    "mho": A / V,
    "µmho umho": A / V / 10**6,
    "VA VAr VAR var": V * A,
    "kVA kVAr kVAR kvar": V * A * 1000,
    "MVA MVAr Mvar": V * A * 10**6,
    "Wh": W * hour,
    "mWh": W * hour / 1000,
    "kWh kWhr kilowatthour": W * 1000 * hour,
    "MWh": W * 10**6 * hour,
    "GWh": W * 10**9 * hour,
    "Mvarh": V * A * 10**6 * hour,
    "mAmps": A / 1000,
    "Ah Ahr": A * hour,
    "mAh mAhr": A * hour / 1000,
    "kVArh kvarh": V * A * 1000 * hour,
    "G": Wb / m**2 / 10**4,
    "Gs": s * 10**9,
    # names run together
    "Ωm": ohm * m,
    "Ws": W * s,
    "As": A * s,
    "Vs": V * s,
    "Nm": N * m,
    "kNm": N * m * 1000,
    "Pas": Pa * s,
    "mPas": Pa * s / 1000,
    # energies
    "BTU Btu": BTU,
    "MMBtu MMBTU": BTU * 10**6,
    "kBtu kBTU": BTU * 1000,
    "BTUH": BTU / hour,
    "MBH kBtuh": BTU * 1000 / hour,
    "MMBTUH": BTU * 10**6 / hour,
    "TR RT": refrigeration,
    "kcal": kcal,
    "cal": kcal / 1000,
    "Mcal": kcal * 1000,
    "Gcal": kcal * 10**6,
    "hp": horsepower,
    # viscosity, radiation
    "cP centipoise": Pa * s / 1000,
    "St": (m / 100) ** 2 / s,
    "cSt": (m / 100) ** 2 / s / 100,
    "Ci": one / s * 37 * 10**9,
    "rem": J / kg / 100,
    "mrem": J / kg / 100000,
    "mR": roentgen / 1000,
    "µR uR": roentgen / 10**6,
    "pCi": one / s * F("0.037"),
    "katal": mol / s,
    "klux": cd * sr / m**2 * 1000,
    # parts, data, humidity
    "One": one,
    "%": one / 100,
    "percent": one / 100,
    "‰": one / 1000,
    "ppm ppmv ppmV ppm(v)": one / 10**6,
    "ppb ppbV": one / 10**9,
    "pptv": one / 10**12,
    "%RH": RH,
    "bit": bit,
    "bps": bit / s,
    "kbps": bit * 1000 / s,
    "Mbps": bit * 10**6 / s,
    "kbit": bit * 1000,
    "Mbit": bit * 10**6,
    "Mibit": bit * 2**20,
    "Kibps": bit * 2**10 / s,
    "byte B": byte,
    "kB kByte": byte * 1000,
    "MB MByte MBytes": byte * 10**6,
    "GB GByte": byte * 10**9,
    "MiB": byte * 2**20,
    "kBps": byte * 1000 / s,
    "MBps": byte * 10**6 / s,
    "Bd": one / s,
    "cps": one / s,
}


def table():
    names = {}
    for stem, unit in SI.items():
        names[stem] = unit
        for prefix, power in PREFIXES.items():
            names[prefix + stem] = unit * F(10) ** power
    for word, unit in WORDS.items():
        for prefix, power in WORD_PREFIXES.items():
            for name in (prefix + word, (prefix + word).capitalize()):
                names[name] = names[name + "s"] = unit * F(10) ** power
    for spellings, unit in NAMES.items():
        for name in spellings.split():
            if unit is not None:
                names[name] = unit
    return names


TABLE = table()
RAISED = str.maketrans("⁰¹²³⁴⁵⁶⁷⁸⁹⁻", "0123456789-")
SAME = str.maketrans({"\N{GREEK SMALL LETTER MU}": "\N{MICRO SIGN}", "\N{OHM SIGN}": "Ω"})
LONGEST = max(map(len, TABLE))


class Reader:
    """Reads a unit by its names from the left: the longest name that the table has."""

    def __init__(self, text):
        self.text = text.translate(SAME)
        self.at = 0

    def read(self):
        meaning = self.quotient()
        if self.at < len(self.text):
            raise ValueError(f"unread: {self.text[self.at:]}")
        return meaning

    def match(self, pattern):
        found = re.compile(pattern).match(self.text, self.at)
        if found:
            self.at = found.end()
        return found

    def quotient(self):
        meaning = self.product()
        if self.match(r"\s*/\s*"):
            meaning = meaning / self.power()
        self.match(r"\s*")
        return meaning

    def product(self):
        meaning = self.power()
        while self.match(r"\s*[·*.](?!\*)\s*|\s+(?![/)]|$)"):
            meaning = meaning * self.power()
        return meaning

    def power(self):
        if self.match("√"):
            return self.power() ** F(1, 2)
        if self.match(r"\("):
            meaning = self.quotient()
            if not self.match(r"\)"):
                raise ValueError("no closing bracket")
        elif self.match(r"1(?![0-9])"):
            meaning = one
        else:
            meaning = self.name()
        found = self.match(r"[⁰¹²³⁴⁵⁶⁷⁸⁹⁻]+")
        if found:
            return meaning ** int(found[0].translate(RAISED))
        found = (self.match(r"(?:\^|\*\*)\((-?\d+(?:/\d+)?)\)") or
                 self.match(r"(?:\^|\*\*)(-?\d+(?:\.\d+)?)") or self.match(r"(-?\d+)"))
        return meaning ** F(found[1]) if found else meaning

    def name(self):
        for length in range(min(LONGEST, len(self.text) - self.at), 0, -1):
            name = self.text[self.at:self.at + length]
            after = self.text[self.at + length:self.at + length + 1]
            if name in TABLE and not (after.isalpha() and name[-1].isalpha()):
                self.at += length
                return TABLE[name]
        raise ValueError(f"unknown: {self.text[self.at:]}")


def number_and_unit(text):
    found = re.match(r"\s*([-+−]?\d*\.?\d+(?:[eE][-+]?\d+)?)\s*(.*?)\s*$", text)
    return F(found[1].replace("−", "-")), found[2]


def expected(column):
    """Reads a meaning as the table writes it: "5/9 K + 45967/180", "0.005·π rad", "m/s"."""
    column, _, offset = column.partition(" + ")
    first, _, rest = column.partition(" ")
    factor, unit = (first, rest) if re.fullmatch(r"[0-9./eπ·-]+", first) else ("1", column)
    meaning = Reader(unit).read() if unit else one
    above, _, below = factor.partition("/")
    for text, sign in ((above, 1), (below, -1)):
        if PI in text:
            meaning = meaning * pi**sign
            text = text.replace(PI, "").strip("·")
        meaning = meaning * (F(text) if text else F(1)) ** sign
    return scale(meaning, F(offset)) if offset else meaning


def main():
    judged = refused = 0
    faults = []
    for line in open(sys.argv[1], encoding="utf-8"):
        if line.startswith("#"):
            continue
        kind, text, column, _ = line.rstrip("\n").split("\t")
        if re.fullmatch("[A-Z_]{5,}", column):
            refused += 1
            continue
        judged += 1
        try:
            if kind == "value":
                number, unit = number_and_unit(text)
                value, _, meant = column.partition(" × ")
                if number != F(value):
                    faults.append(f"{text}: the number is {number}, not {value}")
            else:
                unit, meant = text, column
            ours, theirs = Reader(unit).read(), expected(meant)
            if ours != theirs:
                faults.append(f"{text}: means {ours}, not {theirs}")
        except (ValueError, TypeError) as error:
            faults.append(f"{text}: {error}")
    for fault in faults:
        print(fault)
    print(f"{judged} meanings, {refused} refusals, {len(faults)} faults")
    return 1 if faults or judged < 500 else 0


if __name__ == "__main__":
    sys.exit(main())
