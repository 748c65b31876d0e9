#!/usr/bin/env python3
"""Derives labels.tsv: every name the library knows after it was loaded, and what it stands for.

The answers come from the tables below (the units, their definitions, the order in which they are
registered) and from the rules of identity, written here once more in as few lines as possible, so
that the library is not measured against itself. Run it after a change of the catalogue:

    python3 tests/data/labels.py > tests/data/labels.tsv
"""
import math
import struct

PREFIXES = [("Y", 1e24), ("Z", 1e21), ("E", 1e18), ("P", 1e15), ("T", 1e12), ("G", 1e9),
            ("M", 1e6), ("k", 1e3), ("h", 1e2), ("da", 1e1), ("d", 1e-1), ("c", 1e-2), ("m", 1e-3),
            ("µ", 1e-6), ("n", 1e-9), ("p", 1e-12), ("f", 1e-15), ("a", 1e-18), ("z", 1e-21),
            ("y", 1e-24)]


def wrap(n):
    """n as a 32-bit signed integer."""
    return (n + 2**31) % 2**32 - 2**31


def float_bits(x):
    return struct.unpack("<i", struct.pack("<f", x))[0]


def string_hash(text):
    h = 0
    for i, c in enumerate(text):
        h = min(int(h + 31.0 ** (len(text) - 1 - i) * ord(c)), 2**31 - 1)
    return h


class Unit:
    """One unit: base, alternate, product or transformed; the others' fields stay empty."""

    def __init__(self, symbol="", factors=(), expansion=None, system=None, steps=()):
        self.symbol, self.factors, self.expansion = symbol, list(factors), expansion
        self.system, self.steps = system, list(steps)  # steps: ("*", x) or ("+", x), in the order of the conversion
        self.hash = self.id = 0
        self.products, self.quotients = {}, {}

    def is_product(self):
        return not self.system and (bool(self.factors) or self is ONE)

    def elements(self):
        return self.factors if self.is_product() else [(self, 1, 1)]

    def slope(self):
        """As nested compounds take it: the last step's factor first, 1 for an offset."""
        result = 1.0
        for kind, x in reversed(self.steps):
            result *= x if kind == "*" else 1.0
        return result

    def at(self, value):
        for kind, x in self.steps:
            value = value * x if kind == "*" else value + x
        return value

    def compute_hash(self):
        if self.system:
            return wrap(self.system.hash + float_bits(self.slope()))
        if self.factors:
            return wrap(sum(u.hash * (3 * p - 2 * r) for u, p, r in self.factors))
        return string_hash(self.symbol)

    def system_unit(self):
        return self.system or (fold(self, Unit.system_unit) if self.is_product() else self)

    def base_units(self):
        return self.expansion or (fold(self, Unit.base_units) if self.is_product() else self)

    def context_dimension(self):
        if self.system or self.expansion:
            return (self.system or self.expansion).context_dimension()
        return fold(self, Unit.context_dimension) if self.is_product() else self

    # The algebra.

    def multiply(self, that):
        if that.id not in self.products:
            self.products[that.id] = product(self.elements(), that.elements())
        return self.products[that.id]

    def divide(self, that):
        if that.id not in self.quotients:
            self.quotients[that.id] = product(self.elements(),
                                              [(u, -p, r) for u, p, r in that.elements()])
        return self.quotients[that.id]

    def pow(self, n):
        if n < 0:
            return ONE.divide(self.pow(-n))
        powers = [(u, p * n // math.gcd(p * n, r), r // math.gcd(p * n, r))
                  for u, p, r in self.elements()]
        return ONE if n == 0 else self if n == 1 else product(powers, [])

    def scaled(self, x):
        return self.transformed(("*", x))

    def transformed(self, step):
        system = self.system_unit()
        if self is not system:
            dimension(self), dimension(system)
        return canonical(Unit(system=system, steps=[step] + self.steps))

    def alternate(self, symbol):
        return canonical(Unit(symbol, expansion=self.base_units()))


def fold(unit, part):
    result = ONE
    for u, p, r in unit.factors:
        assert r == 1  # the catalogue has no roots
        result = result.multiply(part(u).pow(p))
    return result


def product(left, right):
    rest, result = list(right), []
    for u, p, r in left:
        match = next((e for e in right if e[0] is u), None)
        if match:
            rest.remove(match)
            p, r = p * match[2] + match[1] * r, r * match[2]
        if p:
            result.append((u, p // math.gcd(p, r), r // math.gcd(p, r)))
    result += rest
    if not result:
        return ONE
    if len(result) == 1 and result[0][1] == result[0][2]:
        return result[0][0]
    return canonical(Unit(factors=result))


# The names of the process.

ONE = Unit("One")
instances, symbols, labels, names, dimensions = {0: ONE}, {}, {}, {}, {}


def canonical(unit):
    unit.hash = unit.compute_hash()
    if unit.hash in instances:
        return instances[unit.hash]
    if unit.system:  # asking for its symbol computes its converter
        dimension(unit), dimension(unit.system)
    elif unit.symbol:
        assert unit.symbol not in symbols
        symbols[unit.symbol] = unit
    instances[unit.hash] = unit
    unit.id = len(instances)
    return unit


def dimension(unit):
    if unit not in dimensions:
        dimensions[unit] = unit.context_dimension()
    return dimensions[unit]


def label(unit, text):
    assert text not in symbols and labels.get(text, unit) is unit
    if unit in names:
        del labels[names[unit]]
    labels[text], names[unit] = unit, text
    return unit


def text(unit):
    if names.get(unit) or unit.symbol:
        return names.get(unit) or unit.symbol
    sup = lambda p: {1: "", 2: "²", 3: "³"}.get(p, "^%d" % p)
    over = "·".join(text(u) + sup(p) for u, p, r in unit.factors if p > 0)
    under = [text(u) + sup(-p) for u, p, r in unit.factors if p < 0]
    if not under:
        return over
    return (over or "1") + "/" + ("(%s)" if len(under) > 1 else "%s") % "·".join(under)


# The catalogue. Each accessor builds its unit at its first call.

def once(build):
    made = []

    def accessor():
        if not made:
            made.append(build())
        return made[0]
    return accessor


def base(symbol):
    return once(lambda: canonical(Unit(symbol)))


def alternate(symbol, parent):
    return once(lambda: parent().alternate(symbol))


def scaled(text_, parent, x):
    if text_ is None:
        return once(lambda: parent().scaled(x))
    return once(lambda: label(parent().scaled(x), text_))


A, cd, K, kg, m, mol, s = map(base, ("A", "cd", "K", "kg", "m", "mol", "s"))
rad, sr, bit = (alternate(x, lambda: ONE) for x in ("rad", "sr", "bit"))
Hz, Bq = (alternate(x, lambda: ONE.divide(s())) for x in ("Hz", "Bq"))
g = scaled("g", kg, 0.001)
N = alternate("N", lambda: m().multiply(kg()).divide(s().pow(2)))
J = alternate("J", lambda: N().multiply(m()))
W = alternate("W", lambda: J().divide(s()))
V = alternate("V", lambda: W().divide(A()))
ohm = alternate("\u2126", lambda: V().divide(A()))
Wb = alternate("Wb", lambda: V().multiply(s()))
H = alternate("H", lambda: Wb().divide(A()))
Gy, Sv = (alternate(x, lambda: J().divide(kg())) for x in ("Gy", "Sv"))
Pa = alternate("Pa", lambda: N().divide(m().pow(2)))
C = alternate("C", lambda: s().multiply(A()))
F = alternate("F", lambda: C().divide(V()))
S = alternate("S", lambda: A().divide(V()))
T = alternate("T", lambda: Wb().divide(m().pow(2)))
celsius = once(lambda: label(K().transformed(("+", 273.15)), "\u00b0C"))
lm = alternate("lm", lambda: cd().multiply(sr()))
lx = alternate("lx", lambda: lm().divide(m().pow(2)))
kat = alternate("kat", lambda: mol().divide(s()))

percent = scaled("%", lambda: ONE, 0.01)
revolution = scaled("rev", rad, 2 * math.pi)
degree = scaled("\u00b0", revolution, 1 / 360)
arcminute = scaled("\u2032", degree, 1 / 60)
arcsecond = scaled("\u2033", arcminute, 1 / 60)
centiradian = scaled("centiradian", rad, 0.01)
grade = scaled("grade", revolution, 0.0025)
byte = scaled("byte", bit, 8.0)
atmosphere = scaled("atm", Pa, 101325.0)
bar = scaled("bar", Pa, 100000.0)
millibar = scaled("mbar", bar, 0.001)
mm_hg = scaled("mm_Hg", Pa, 133.322)
in_hg = scaled("in_Hg", Pa, 3386.388)
liter = scaled("l", lambda: m().pow(3), 0.001)
gravity = scaled("grav", lambda: m().divide(s().pow(2)), 9.80665)
minute = scaled("min", s, 60.0)
hour = scaled("h", minute, 60.0)
day = scaled("d", hour, 24.0)
week = scaled("week", day, 7.0)
year_calendar = scaled("year_calendar", day, 365.0)
year = scaled("year", s, 31556952.0)
month = scaled("month", year, 1 / 12)
aeon = scaled(None, year, 1e9)
day_sidereal = scaled("day_sidereal", s, 86164.09)
year_sidereal = scaled("year_sidereal", s, 31558149.54)


def load():
    for unit in (A, cd, K, m, mol, s, rad, sr, Hz, N, Pa, J, W, C, V, F, ohm, S, Wb, T, H, S, lx,
                 Bq, Gy, Sv, kat):
        for prefix, x in PREFIXES:
            label(unit().scaled(x), prefix + unit().symbol)
    for unit in (g, celsius):
        own = names[unit()]
        for prefix, x in PREFIXES:
            if unit is celsius or x != 1000.0:
                label(unit().scaled(x), prefix + own)
    for unit in (percent, gravity, grade, byte, minute, hour, day, week, year, month, day_sidereal,
                 year_sidereal, year_calendar, aeon, mm_hg, in_hg):
        unit()
    for prefix, x in (("p", 1e-12), ("n", 1e-9), ("µ", 1e-6), ("m", 1e-3), ("c", 1e-2), ("d", 1e-1)):
        label(liter().scaled(x), prefix + "l")
    for unit in (atmosphere, bar, millibar, revolution, degree, arcminute, arcsecond, centiradian):
        unit()


def bits(x):
    return "%016X" % struct.unpack("<Q", struct.pack("<d", x))[0]


def main():
    load()
    print("# Made by labels.py: every name that is known after load, in order of registration.")
    print("# The system unit is in the standard notation; bits are those of a double, in hex.")
    print("# name\tid\tsystem unit\tsteps to it\tbits of the slope at 0\tbits of 1 in the system unit")
    for name, unit in sorted(list(symbols.items()) + list(labels.items()), key=lambda e: e[1].id):
        steps = " ".join(kind + repr(x) for kind, x in unit.steps)
        print("\t".join((name, str(unit.id), text(unit.system or unit), steps,
                         bits(unit.slope()), bits(unit.at(1.0)))))


if __name__ == "__main__":
    main()
