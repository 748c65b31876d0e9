#!/usr/bin/env python3
"""Checks certificates of conversions. Reads one JSON object from each line of the standard input and computes the
conversion again from the definitions in it. A quantity is ((base, root, power), units), that is
base^(1/root)·π^power in units with these exponents."""
import json, math, re, sys
from fractions import Fraction

RAISED = str.maketrans("⁰¹²³⁴⁵⁶⁷⁸⁹⁻", "0123456789-")
FACTOR = re.compile(r"""[ ·]*(?P<slash>/?)\ *(?:(?P<number>\d[\d.]*(?:e-?\d+)?) | (?P<pi>π)
    | \((?P<group>(?:[^()]|\^\([^()]*\))*)\) | (?P<name>[^-\d ·/()^,⁰¹²³⁴⁵⁶⁷⁸⁹⁻][^ ·/()^,⁰¹²³⁴⁵⁶⁷⁸⁹⁻]*))
    (?:\^(?P<whole>-?\d+) | \^\((?P<power>-?\d+/\d+)\) | (?P<raised>[⁰¹²³⁴⁵⁶⁷⁸⁹⁻]+))?\ *""", re.X)

def number(base, power=0):
    return (Fraction(base), 1, Fraction(power)), {}

def times(a, b, e):  # a·b^e
    ((x, m, p), units), ((y, n, q), others), e = a, b, Fraction(e)
    root = math.lcm(m, n * e.denominator)
    sums = {u: units.get(u, 0) + e * others.get(u, 0) for u in {**units, **others}}
    return ((x ** (root // m) * y ** int(root * e / n), root, p + q * e),
            {u: k for u, k in sums.items() if k})

def evaluate(text, definitions, used):  # the quantity, and its zero in base units
    text, _, offset = text.partition(", offset ")
    product, zero, at = number(1), 0, 0
    while at < len(text):
        factor = FACTOR.match(text, at)
        at, name = factor.end(), factor["name"]
        if name:
            used.add(name)
            inner, zero = evaluate(definitions[name], definitions, used) if definitions[name] else (
                (number(1)[0], {name: 1}), 0)
            assert not zero or name == text, "an offset in a product"
        elif factor["group"]:
            inner = evaluate(factor["group"], definitions, used)[0]
        else:
            inner = number(factor["number"] or 1, 1 if factor["pi"] else 0)
        power = factor["whole"] or factor["power"] or (factor["raised"] or "1").translate(RAISED)
        product = times(product, inner, Fraction(power) * (-1 if factor["slash"] else 1))
    top, _, bottom = (offset or "0").partition("/")
    return product, zero + product[0][0] * Fraction(top) / Fraction(bottom or 1)

def agrees(exact, is_negative, given):  # returns whether a number of the certificate and its text have this value
    base, root = Fraction(int(given["numerator"]), int(given["denominator"])), given["root"]
    text = evaluate(given["text"].lstrip("-"), {}, set())[0][0]
    return all(base ** x[1] == x[0] ** root and Fraction(given["pi"]) == x[2] for x in (exact, text)
               ) and is_negative == given["negative"] == given["text"].startswith("-")

def is_right(given):
    definitions, used = {row["name"]: row["definition"] for row in given["definitions"]}, set()
    (a, zero), (b, other) = (evaluate(given[end], definitions, used) for end in ("from", "to"))
    (factor, marks), units = times(a, b, -1), evaluate(given["units"], definitions, used)[0][1]
    offset = (times(number(abs(zero - other)), b, -1) if zero != other else number(0))[0]
    return (used == set(definitions) and given["keepsMarks"] != bool(marks)
            and set(marks) <= {"bit", "rad", "sr"} and units == b[1]
            and agrees(factor, False, given["factor"]) and agrees(offset, zero < other, given["offset"]))

certificates = sys.stdin.readlines()
wrong = [line for line in certificates if not is_right(json.loads(line))]
sys.exit("wrong: " + wrong[0]) if wrong else print(len(certificates), "certificates are right")
