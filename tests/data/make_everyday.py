#!/usr/bin/env python3
"""Writes everyday.tsv: expressions people use every day, each with its meaning.

    tests/data/make_everyday.py > tests/data/everyday.tsv

The meaning is computed here, from the definitions below and nothing else: exact fractions, the
factor rounded once at the end. So the file is an answer from outside the library.

Columns: the text; the exponents of the base units; the factor to them; the offset; the field.
Sources of the definitions: SI brochure, 9th edition; NIST SP 811; for the rest the header NonSI.h,
which says what this library calls a year, a grade or a mm_Hg.
"""
import math
import re
import sys
from fractions import Fraction

BASES = ["A", "K", "cd", "kg", "m", "mol", "s"]


class Meaning:
    def __init__(self, exponents=(), factor=Fraction(1), offset=Fraction(0)):
        self.exponents = {b: e for b, e in dict(exponents).items() if e}
        self.factor = factor
        self.offset = offset

    def __mul__(self, other):
        if not isinstance(other, Meaning):
            return Meaning(self.exponents, self.factor * other)
        exponents = dict(self.exponents)
        for base, e in other.exponents.items():
            exponents[base] = exponents.get(base, 0) + e
        return Meaning(exponents, self.factor * other.factor)

    def __truediv__(self, other):
        return self * other**-1

    def __pow__(self, n):
        n = Fraction(n)
        if n.denominator == 1:
            factor = self.factor ** int(n)
        elif self.factor == 1:
            factor = Fraction(1)
        else:
            factor = float(self.factor) ** float(n)
        return Meaning({b: e * n for b, e in self.exponents.items()}, factor)


def base(symbol):
    return Meaning({symbol: Fraction(1)})


UNITS = {b: base(b) for b in BASES}
UNITS.update(
    {name: Meaning() for name in ("rad", "sr", "bit")},
    g=base("kg") * Fraction(1, 1000),
)
u = UNITS
u["Hz"] = u["Bq"] = Meaning() / u["s"]
u["N"] = u["kg"] * u["m"] / u["s"] ** 2
u["J"] = u["N"] * u["m"]
u["W"] = u["J"] / u["s"]
u["Pa"] = u["N"] / u["m"] ** 2
u["C"] = u["A"] * u["s"]
u["V"] = u["W"] / u["A"]
u["F"] = u["C"] / u["V"]
u["Ω"] = u["V"] / u["A"]
u["S"] = u["A"] / u["V"]
u["Wb"] = u["V"] * u["s"]
u["T"] = u["Wb"] / u["m"] ** 2
u["H"] = u["Wb"] / u["A"]
u["lm"] = u["cd"]
u["lx"] = u["lm"] / u["m"] ** 2
u["Gy"] = u["Sv"] = u["J"] / u["kg"]
u["kat"] = u["mol"] / u["s"]

PREFIXES = {"Y": 24, "Z": 21, "E": 18, "P": 15, "T": 12, "G": 9, "M": 6, "k": 3, "h": 2, "da": 1,
            "d": -1, "c": -2, "m": -3, "µ": -6, "n": -9, "p": -12, "f": -15, "a": -18, "z": -21,
            "y": -24}
for name in ("A", "cd", "m", "mol", "s", "rad", "sr", "Hz", "N", "Pa", "J", "W", "C", "V", "F", "Ω",
             "S", "Wb", "T", "H", "lx", "Bq", "Gy", "Sv", "kat", "g"):
    for prefix, power in PREFIXES.items():
        u.setdefault(prefix + name, u[name] * Fraction(10) ** power)

u["l"] = u["m"] ** 3 * Fraction(1, 1000)
for prefix in ("d", "c", "m", "µ", "n", "p"):
    u[prefix + "l"] = u["l"] * Fraction(10) ** PREFIXES[prefix]
u["%"] = Meaning() * Fraction(1, 100)
u["min"] = u["s"] * 60
u["h"] = u["s"] * 3600
u["d"] = u["s"] * 86400
u["week"] = u["d"] * 7
u["year"] = u["s"] * 31556952
u["month"] = u["year"] * Fraction(1, 12)
u["bar"] = u["Pa"] * 100000
u["mbar"] = u["Pa"] * 100
u["atm"] = u["Pa"] * 101325
u["mm_Hg"] = u["Pa"] * Fraction("133.322")
u["in_Hg"] = u["Pa"] * Fraction("3386.388")
u["grav"] = u["m"] / u["s"] ** 2 * Fraction("9.80665")
u["byte"] = Meaning() * 8
u["rev"] = Meaning() * Fraction(2 * math.pi)
u["°"] = u["rev"] * Fraction(1, 360)
u["′"] = u["°"] * Fraction(1, 60)
u["″"] = u["′"] * Fraction(1, 60)
u["grade"] = u["rev"] * Fraction(1, 400)
u["°C"] = Meaning({"K": 1}, Fraction(1), Fraction("273.15"))

SUPERSCRIPTS = str.maketrans("⁰¹²³⁴⁵⁶⁷⁸⁹⁻", "0123456789-")
# Characters that Unicode has twice, and the litre's other symbol.
OTHERS = {"\N{GREEK SMALL LETTER MU}": "\N{MICRO SIGN}", "\N{GREEK CAPITAL LETTER OMEGA}": "\N{OHM SIGN}",
          "L": "l"}


def meaning(text):
    """Rewrites the text as a Python expression of units, and has Python compute it."""
    out = re.sub("[⁰¹²³⁴⁵⁶⁷⁸⁹⁻]+", lambda m: "^(" + m[0].translate(SUPERSCRIPTS) + ")", text)
    out = out.replace("**", "^")
    out = re.sub(r"([^\W\d])(-?\d+)", r"\1^(\2)", out)  # kg.m-3
    tokens = re.findall(r"\^\([^)]*\)|\^-?[\d.]+|\s+|[()/·*.√]|1|[^\s()/·*.√^\d]+", out)
    assert "".join(tokens) == out, tokens
    python = ""
    for token in tokens:
        if token.isspace() or token in "·*.":
            python += "*"
        elif token in "()/√":
            python += token
        elif token == "1":
            python += "Meaning()"
        elif token.startswith("^"):
            python += f"**Fraction('{token[1:].strip('()')}')"
        else:
            name = "".join(OTHERS.get(c, c) for c in token)
            python += f"u['{name}']"
    python = re.sub(r"√(u\['[^']*'\]|\((?:[^()]|\([^()]*\))*\))", r"(\1**Fraction(1, 2))", python)
    return eval(python)


FIELDS = {}
FIELDS["physics"] = """
m; km; cm; mm; µm; nm; pm; fm; dm
m²; km²; cm²; mm²; µm²; m³; cm³; mm³; dm³; km³
s; ms; µs; ns; ps; fs; min; h; d; week; month; year
kg; g; mg; µg; ng; Mg
m/s; km/h; km/s; cm/s; mm/s; m/min; µm/s; mm/min; m/h; km/min; nm/s
m/s²; mm/s²; cm/s²; km/s²; m/s³; grav; m·s⁻²; m s^-2; km/(h·s)
rad; mrad; µrad; °; ′; ″; rev; grade; sr; msr
rad/s; rad/s²; mrad/s; °/s; rev/min; rev/s; °/h; 1/s; 1/min; 1/h; 1/d; 1/year; rad/m; °/mm
Hz; kHz; MHz; GHz; THz; mHz; PHz; Hz/s; MHz/µs
1/m; 1/cm; 1/mm; 1/nm; 1/m²; 1/cm²; 1/m³; 1/cm³; cm⁻¹; m⁻³; cm^-3
N; kN; MN; mN; µN; nN; pN; N·m; kN·m; mN·m; N·cm; N·mm; N·s; N/m; N/mm; mN/m; kN/m; N/mm²; N/m²; kN/m²; N/m³; MN/m²
N·m/rad; N·m/°; N·m·s; N·m·s/rad; N·s/m; N·s/m²; kN·s/m
J; kJ; MJ; GJ; mJ; µJ; nJ; J·s; J/m; J/m²; J/m³; J/kg; J/K; J/(kg·K); J/mol; J/(mol·K); kJ/mol; kJ/kg; MJ/kg; J/cm²; mJ/cm²; MJ/m³
W; kW; MW; GW; mW; µW; nW; pW; TW; W/m; W/m²; W/m³; W/cm²; mW/cm²; kW/m²; W/sr; W/(m²·sr); W/(sr·m²·nm); W/Hz; W/(m²·Hz); W/(m²·nm)
W/K; W/(m·K); W/(m²·K); W/(cm·K); W/(m²·K⁴); kW/(m²·K); W/kg; mW/mm²
Pa; kPa; MPa; GPa; mPa; µPa; TPa; bar; mbar; atm; Pa·s; mPa·s; Pa/m; kPa/m; Pa·m; Pa·m³; Pa·m³/s; MPa/s; 1/Pa; 1/bar; Pa⁻¹; MPa·√m; MPa·m^(1/2)
kg/m; kg/m²; kg/m³; g/cm³; g/m²; g/mol; kg/mol; kg·m; kg·m²; g·cm²; kg·m/s; kg·m²/s; kg/s; g/s; kg/(m·s); kg/(m²·s); m³/kg; cm³/g; m²/kg; cm²/g; kg·m²·s⁻²; kg·m^2/s^2; kg*m**2/s**2
m²/s; mm²/s; cm²/s; m³/s; m³/s²; m³/(kg·s²); m²·K/W; K·m/W; m²/V; m²/(V·s); cm²/(V·s)
K; °C; 1/K; K/m; K/s; K/min; K/W; K/km; K⁻¹; W·K⁻¹; K·m; m/K; µm/(m·K); 1/K²; V²/K²
mol; mmol; µmol; nmol; kmol; mol/m³; mol/kg; mol/s; mol/(m²·s); mol·K; 1/mol; mol⁻¹; m³/mol; m²/mol; kat; mol/m²
cd; mcd; cd/m²; kcd; lm; lm/W; lm/m²; lx; lx·s; klx; lm·s; cd/W; lm/sr; mlx; lx·h
C; A; T; mT; µT; nT; Wb; Wb/m²; T·m; T/m; A/m; A/m²; A·m²; J/T; C·m; C/m²; C/m³; V/m; T·m²; N/(A·m); N/A²; H/m; F/m; C²/(N·m²); N·m²/C²; kV/cm; V·s; V·s/m²; T²·m³; C/kg
Bq; kBq; MBq; GBq; Bq/kg; Bq/m³; Bq/m²; Bq/l; Gy; Sv
m/√s; m^0.5; √m; 1/√m; s⁻¹; kg^(1/2)·m^(3/2)/s; m·s^(-1/2); √(m/s²)
(m/s)²; (m/s)/K; (kg·m)/s; m/(s/kg); (N·m)/(rad·s)
"""
FIELDS["process"] = """
m³/h; m³/d; m³/min; l/s; l/min; l/h; ml/min; ml/h; dl/min; cl/s; l/d; m³/year; µl/min; µl/s; nl/min
kg/h; kg/min; kg/d; g/h; g/min; Mg/h; Mg/d; mg/s; mg/min; mg/h; kg/week; Mg/year; kg/year; g/d
bar/min; mbar/s; bar/h; kPa/s; Pa/s; mbar·l/s; bar·l; Pa·l/s; bar·m³; mbar/m; bar/m; bar/km; kPa/min; MPa/min
kg/l; g/l; mg/l; µg/l; g/ml; mg/ml; kg/dm³; g/dm³; mg/m³; µg/m³; g/m³; mg/dm³; mol/l; mmol/l; µmol/l; mol/dm³; kmol/m³; ng/l; mg/kg; µg/kg; g/kg; g/g; mg/g; ml/l; µl/l; ml/m³; l/m³; m³/m³; l/l; %; %/K; %/h; %/min; %/s; 1/%
kJ/h; MJ/h; GJ/d; kW/K; kJ/(kg·K); kJ/K; kJ/m³; kJ/(m³·K); MJ/h²; kW·h; W·h; MW·h; GW·h; kW·h/m²; kW·h/d; kW·h/year; kW·h/kg; kW·h/m³; kW·h/(m²·year); W·h/kg; W·h/l; kW/m³; W/l; W/g; W/ml; mW/g; J/g; J/(g·K); kJ/l
l/(min·m²); l/(m²·h); m³/(m²·h); m³/(m²·d); kg/(m²·h); kg/(m³·d); g/(m²·d); mol/(l·s); mol/(m³·s); mol/(kg·s); mol/h; mmol/h; mol/(m²·s·Pa); kmol/h; mol/(l·min); mol/min; l/(bar·h); m³/(h·bar); l/(m²·h·bar); kg/(h·m²·bar); l²/(mol²·s); l/(mol·s); m³/(mol·s); l/mol; kPa·l/(mol·K); J·mol⁻¹·K⁻¹
Pa·s/m; Pa·s/m³; kPa·s/l; 1/(s·Pa); m³/(s·Pa); m²/(s·Pa); s/m; s/m²; h/m; min/km; s/l; s/m³; s/mm; d/km
m³/(h·m); m/d; mm/d; mm/h; mm/year; cm/h; m/year; km/d; km/l; l/km; m²/m³; m³/m²; m²/g; m²/l; 1/l; 1/ml; 1/dl; 1/µl; 1/m⁴; m⁴; cm⁴; mm⁴; m⁶
kg·m⁻³; kg.m-3; mol.l-1; N.m; W.m-2.K-1; kg m^-3; mg l^-1; J kg^-1 K^-1; kg/m2; kg/m3; m3/h; g/cm3; m2; cm3; m3; N/mm2; W/m2; m/s2
; g/km; g/m; mg/m; g/(kW·h); kg/(kW·h); l/(kW·h); g/J; mg/J; kg/GJ; kg/MJ; kN; kN·m²; N·m²; kg·m²/s²; kPa·m²; kPa·m³; MPa·m³; mbar·m³
mm_Hg; in_Hg; mm_Hg/s; mm_Hg·l; atm·m³; atm·l; atm·m³/mol; l·atm/(mol·K); l·bar/(mol·K); bar·cm³/(mol·K); in_Hg/min; mol/(l·atm); mol/(m³·Pa); mol/(kg·bar); Pa·m³/mol
rev/h; rev/d; rev/km; km/rev; mm/rev; ml/rev; l/rev; cm³/rev; m/rev; N·m/rev; 1/week; 1/month
"""
FIELDS["electronics"] = """
V; mV; µV; nV; kV; MV; A; mA; µA; nA; pA; kA; fA; Ω; mΩ; µΩ; kΩ; MΩ; GΩ; TΩ; F; mF; µF; nF; pF; fF; H; mH; µH; nH; pH; S; mS; µS; nS; pS; C; mC; µC; nC; pC; Wb; mWb; µWb
V/A; V/m; kV/m; V/mm; kV/mm; MV/m; V/µm; mV/K; µV/K; V/K; V/s; V/µs; kV/µs; mV/s; V/ms; V/ns; V²; V²/Hz; V/√Hz; nV/√Hz; µV/√Hz; A/√Hz; pA/√Hz; fA/√Hz; V/Hz; mV/A; V/W; V/lx; V/T; mV/mT; mV/Pa; V/Pa; mV/V; µV/V; V/V; V·s; V·A; kV·A; MV·A; mV·m
A/V; mA/V; µA/V; A/m²; A/cm²; mA/cm²; A/mm²; µA/mm²; A/s; A/µs; mA/µs; kA/µs; A·s; A·h; mA·h; mA·s; A²·s; A²; A/W; mA/W; µA/lm; A/K; nA/K; pA/V; A/A; A·h/kg; mA·h/g; A/m; kA/m; A·V⁻¹; A/lx
Ω·m; Ω·cm; µΩ·cm; Ω·mm²/m; mΩ·m; Ω/m; Ω/km; mΩ/m; Ω/K; mΩ/K; Ω·F; kΩ·pF; Ω/V; kΩ/V; Ω·m²; Ω·cm²; mΩ·cm²; V·A⁻¹; Ω·s; Ω⁻¹
S/m; S/cm; mS/cm; µS/cm; mS/m; S/m²; S·m²; S·cm²/mol; S·m²/mol; S/V; mS/mm; nS/pF; pS/µm²
F/m; pF/m; nF/km; F/m²; µF/cm²; fF/µm²; pF/cm; F/V; F/g; F/cm³; pF/K; F/kg
H/m; nH/mm; µH/m; mH/km; H·A; H·A²; H/Ω; H/s; nH/cm; µH·A²; H/A; Wb/A; Wb·m; H⁻¹; 1/H
W/A; W/V; W/m; W·s; mW·s; W/µm; W/mm; mW/Hz; fW/√Hz; W/√Hz; pW/√Hz; mW/K; µW/K; µW/cm²; µW/MHz; mW/MHz; nW/MHz; K/kW; mW·h; µW·s
bit; bit/s; byte; byte/s; bit/(s·Hz); bit/m²; bit/mm²; bit/Hz; bit/byte; J/bit; pJ/bit; byte/min; 1/bit; bit²; s/byte; s/bit; byte/h; nJ/byte; V/bit; µV/bit; °/bit; W/bit
C/V; C/m; C/kg; C/s; nC/m²; µC/cm²; pC/N; pC/Pa; pC/g; C/mol; nC/V; fC/µm²; pC/m; C·V; C/N; C·V/m; C/g; C/cm²
T/A; mT/A; T/s; T·s; V·m; V·m²; V/(T·m); m³/C; cm³/C; m²/Wb; A·m; A/Wb; T·m/A; T/m²; mT/m; mT/cm; mT·m
Hz/V; kHz/V; MHz/V; GHz/V; Hz/Hz; Hz/K; kHz/K; rad/V; rad·s; s/rad; ps/m; ns/m; ps/km; ps/(nm·km); ps²/km; fs/mm; ps/√km; µs/km; ms/s; ns/K; ps/K; ps/V; s²; 1/Hz; Hz²; rad²/Hz; √Hz; Hz^(1/2); 1/√Hz; 1/Ω; 1/V; 1/A; 1/A²; 1/C; 1/F; 1/T; 1/W; 1/J
A/m2; V.s; A.h; mΩ·mm²; kΩ; kΩ·m; μF; μm; μV/√Hz; A·√s; A/√Pa; V·√s; nT/√Hz; fT/√Hz; m/(s·√Hz); m/√Hz; pm/√Hz; m/(s²·√Hz); rad/√Hz; µrad/√Hz; °/√h; grav/√Hz; 1/(V·s); F·Ω; J/(m²·K); V⁻¹·s⁻¹; cm²·V⁻¹·s⁻¹
"""
FIELDS["medicine"] = """
mg; µg; ng; pg; fg; mg/kg; µg/kg; ng/kg; mg/d; µg/d; g/d; mg/h; µg/h; µg/min; ng/min; mg/(kg·d); mg/(kg·h); µg/(kg·min); µg/(kg·h); ng/(kg·min); mg/(m²·d); mg/m²; g/m²; µg/m²; mg/week; mg/(kg·week); mg/min; mg/(kg·min)
mg/dl; g/dl; µg/dl; ng/dl; pg/ml; ng/ml; µg/ml; mg/ml; g/l; mg/l; µg/l; ng/l; pg/l; pg/dl; fg/ml; mmol/l; µmol/l; nmol/l; pmol/l; mol/l; fmol/l; mmol/mol; µmol/mol; nmol/ml; mmol/kg; µmol/g; mmol/d; µmol/min; µmol/d; µmol/(min·l); nmol/(min·mg); µmol/(min·mg); µmol/kg; nmol/mg; nmol/g; nmol/(l·s); nmol/h; mmol/h; mmol/m²
kat/l; µkat/l; nkat/l; nkat; µkat; kat/kg; kat/m³; mkat/l; nkat/g; µkat/g; pkat/mg
ml/min; ml/h; l/min; ml/(min·kg); ml/(kg·h); ml/kg; ml/d; ml/(kg·d); ml/(min·m²); l/(min·m²); ml/(min·g); ml/s; l/d; µl/h; µl/(min·g); ml/m²; l/m²; ml/dl; ml/ml; ml/g; ml/week; nl/h; dl/g; l/kg; mL; mL/min; mL/h; mg/mL; L/min; mg/dL; mmol/L; µg/L; g/dL; µL; ng/mL; L; mL/(min·kg); mL/kg; pg/mL; µmol/L
mm_Hg; mm_Hg/s; mm_Hg·s; mm_Hg·min/l; mm_Hg/ml; mm_Hg·ml; ml/mm_Hg; kPa·s/l; l/kPa; ml/kPa; ml/mbar; l/mbar; mbar·s/l; kPa·min/l; Pa·s/cm³; N·s/m⁵; kPa·l; ml/(min·mm_Hg); mm_Hg·s/ml; mmol/(min·kPa); ml/(s·Pa); l/(s·kPa); mbar·l; ml·mm_Hg
1/min; 1/d; 1/h; 1/l; 1/µl; 1/ml; 1/mm³; 1/nl; 1/pl; 1/(min·m²); 1/kg; 1/g; 1/mg; 1/dl; 1/cm³; 1/(ml·min); 1/week; 1/mol; 1/year; 1/month
Gy; mGy; cGy; µGy; Gy/min; mGy/s; mGy/h; Gy/s; Gy/h; cGy/min; Gy·cm²; mGy·cm; µGy·m²; mGy·m²; Sv; mSv; µSv; nSv; Sv/h; mSv/h; µSv/h; nSv/h; mSv/year; Sv/s; mSv/d; Sv/Bq; µSv/Bq; mSv/MBq; mGy/MBq; mGy/(MBq·h); Gy/(GBq·h); Gy·kg; mSv/(mGy·cm); Sv/(Gy·cm); µSv/(h·GBq); mGy/mA; mGy/(mA·s); MBq; GBq; kBq; kBq/ml; MBq/kg; MBq/ml; GBq/ml; Bq/ml; MBq/h; Bq/g; MBq·h; GBq·s; Bq·s; Bq/cm²; Bq/(m²·s); Bq/(kg·s); MBq/mg; MBq/min; GBq/µmol; GBq/mmol
kg/m²; m²; cm²; cm; mm; kg; g; °C; °; K; mV; mV/s; mV/mm; mm/mV; mm/s; µV; µV/s; mA; mA·s; mA/cm²; nA; µA; mV·s; mV·ms; ms; s; kV; kV·mA; kV·mA·s; J/cm²; W/cm²; mW/cm²; W/kg; J/kg; kJ/d; kJ/kg; kJ/(kg·d); MJ/d; kJ/g; kJ/l; kJ/ml; W/m²; kJ/(d·kg); J/ml; kJ/min; MHz; kHz; Hz; Hz/cm; cm/s; cm/s²; m/s; mm/h; cm²/s; mm²/s; mm²/ms; µm²/ms; s/mm²; ms/µm²; l/(s·kPa); mPa·s; mN/m; N/cm²; mN/mm; N/cm; kPa; Pa/s; lx; lx·h; cd/m²; lm; T; mT; mT/(m·ms); mT/m; T/m; T/(m·s); T/s; mT/ms; rad/s; °/s; 1/(s·mmol); l/(mmol·s); 1/(mmol·s); l/(mol·cm); l·mol⁻¹·cm⁻¹; 1/(mol·m); nm; µm; µm²; µm³; pl; nl; pl/s; pA; pA/pF; nS; pS; mS/cm²; µF/cm²; MΩ; MΩ/cm; kΩ; Ω·cm; Ω·cm²; mmol/(l·d); mol/m³; mol/(m³·s); g/mol; kg/mol; %; %/h; mg/g; mg/mmol; µg/mg; g/mmol; mg/mol; µg/g; ng/g; pg/mg; ng/mg; µg/cm²; ng/cm²; mg/cm²; mg/cm³; g/cm²; g/cm³; g/ml; kg/l; ng/h; pg/h; pg/s
"""


def number(x):
    return repr(float(x))


def main():
    seen = set()
    print("# Written by make_everyday.py. text, exponents of the base units, factor, offset, field")
    for field, texts in FIELDS.items():
        for text in re.split(r"[;\n]", texts):
            text = text.strip()
            if not text or text in seen:
                continue
            seen.add(text)
            try:
                m = meaning(text)
            except Exception as error:
                sys.exit(f"{text}: {error}")
            exponents = " ".join(
                f"{b}:{m.exponents[b]}" for b in BASES if m.exponents.get(b))
            print(text, exponents, number(m.factor), number(m.offset), field, sep="\t")


main()
