# mensor_gdb.py: shows units, converters and values of mensor in gdb.
#
#     (gdb) print distance
#     $1 = 2.5 km
#     (gdb) print unit
#     $2 = km (transformed unit, system unit m)
#     (gdb) print converter
#     $3 = *1000 -> +273.15
#
# gdb loads it automatically with the installed library (see "info auto-load"). "source mensor_gdb.py" loads
# it by hand, before or after the program is started. "print/r" shows the members.
#
# It reads memory and calls no function. So it works on a core file, and on a process that stopped anywhere.
# It needs no debug information: the library's table mensor::debugLayout has the offsets of the members. It
# knows how libstdc++ lays out std::string, vector, map and shared_ptr.
import re
import struct
from fractions import Fraction

import gdb
import gdb.types

KINDS = {
    "mensor::CBaseUnit": "base unit",
    "mensor::CAlternateUnit": "alternate unit",
    "mensor::CTransformedUnit": "transformed unit",
    "mensor::CProductUnit": "product unit",
}
SHORTEST = "the fewest digits that read back as the same number"
MOST_STEPS = 8  # mensor/io.h writes as many
MOST_BYTES = 4096  # longer texts are cut, because the memory may be corrupt


class Memory:
    """Reads words, numbers and texts of the stopped process. All are little endian."""

    def __init__(self):
        self.word_size = gdb.lookup_type("void").pointer().sizeof

    def bytes(self, address, size):
        return bytes(gdb.selected_inferior().read_memory(address, size))

    def word(self, address):
        return int.from_bytes(self.bytes(address, self.word_size), "little")

    def int(self, address):
        return struct.unpack("<i", self.bytes(address, 4))[0]

    def double(self, address):
        return struct.unpack("<d", self.bytes(address, 8))[0]

    def text(self, string):
        """Returns the text of a std::string. The library's own string consists of one."""
        size = min(self.word(string + self.word_size), MOST_BYTES)
        return self.bytes(self.word(string), size).decode("utf-8", "replace")

    def class_of(self, thing):
        """Returns the name of the class of an object with virtual functions."""
        type_info = self.word(self.word(thing) - self.word_size)
        name = self.word(type_info + self.word_size)
        mangled = b""
        while b"\0" not in mangled and len(mangled) < MOST_BYTES:
            mangled += self.bytes(name + len(mangled), 1)
        mangled = mangled.rstrip(b"\0").lstrip(b"*").decode()
        return gdb.execute("demangle -- _ZTI" + mangled, to_string=True).strip().replace(
            "typeinfo for ", "")


class Layout:
    """The fields of mensor::debugLayout."""

    FIELDS = ("tables", "tables_unit_label", "unit_symbol", "transformed_system_unit",
              "transformed_to_system", "product_elements", "product_system_unit", "power_size",
              "power_unit", "power_pow", "power_root", "compound_first", "compound_second",
              "add_offset", "multiply_factor", "value_number", "value_unit")

    VERSION = 1  # the first word of the table

    def __init__(self, memory):
        address = int(gdb.parse_and_eval("(unsigned long)&'mensor::debugLayout'"))
        version = memory.word(address)
        if version != self.VERSION:
            raise gdb.error("the library's debug layout is version %d, the printers know version %d"
                            % (version, self.VERSION))
        for index, field in enumerate(self.FIELDS, start=1):
            setattr(self, field, memory.word(address + index * memory.word_size))


class Mensor:
    """Reads the library's objects; all arguments are addresses."""

    def __init__(self):
        self.memory = Memory()
        self.layout = Layout(self.memory)

    def label(self, unit):
        """Returns the label of a unit, or an empty text. It searches the map from units to labels."""
        memory, word_size = self.memory, self.memory.word_size
        tables = memory.word(self.layout.tables)
        if tables == 0:
            return ""
        # A map has its comparison and the header of the tree. A node has its colour, parent, left, right,
        # the key (a shared pointer) and the label.
        header = tables + self.layout.tables_unit_label + word_size
        node = memory.word(header + word_size)
        while node != 0:
            key = memory.word(node + 4 * word_size)
            if key == unit:
                return memory.text(node + 6 * word_size)
            node = memory.word(node + (2 if unit < key else 3) * word_size)
        return ""

    def name(self, unit):
        return self.label(unit) or self.memory.text(unit + self.layout.unit_symbol)

    def factors(self, product):
        elements = product + self.layout.product_elements
        begin, end = self.memory.word(elements), self.memory.word(elements + self.memory.word_size)
        return [self.power(at) for at in range(begin, end, self.layout.power_size)]

    def power(self, power):
        layout, memory = self.layout, self.memory
        return (memory.word(power + layout.power_unit), memory.int(power + layout.power_pow),
                memory.int(power + layout.power_root))

    @staticmethod
    def raised(text, pow, root):
        if root != 1:
            return "%s^%d:%d" % (text, pow, root)
        return text + ({1: "", 2: "²", 3: "³"}.get(pow, "^%d" % pow))

    def product_text(self, factors):
        """Returns a product in the standard notation."""
        if not all(self.name(unit) for unit, _, _ in factors):
            return "·".join(self.raised(self.text(unit), pow, root)
                            for unit, pow, root in factors)
        above = "·".join(self.raised(self.name(unit), pow, root)
                         for unit, pow, root in factors if pow >= 0)
        below = [self.raised(self.name(unit), -pow, root)
                 for unit, pow, root in factors if pow < 0]
        if not below:
            return above
        return (above or "1") + ("/(%s)" if len(below) > 1 else "/%s") % "·".join(below)

    def text(self, unit):
        """Returns the text of a unit. A unit without a text is in brackets, as mensor/io.h writes it."""
        if unit == 0:
            return "[no unit]"
        name = self.name(unit)
        if name:
            return name
        kind = self.memory.class_of(unit)
        if kind == "mensor::CProductUnit":
            return self.product_text(self.factors(unit))
        if kind == "mensor::CTransformedUnit":
            steps = self.steps(self.memory.word(unit + self.layout.transformed_to_system), "%g")
            return "[%s%s]" % (self.text(self.system_unit(unit)), "".join(steps))
        return "[unit without text]"

    def system_unit(self, unit):
        """Returns the system unit. For a product whose system unit is not computed yet, returns 0."""
        kind = self.memory.class_of(unit)
        if kind in ("mensor::CBaseUnit", "mensor::CAlternateUnit"):
            return unit
        if kind == "mensor::CTransformedUnit":
            return self.memory.word(unit + self.layout.transformed_system_unit)
        if kind == "mensor::CProductUnit":
            return self.memory.word(unit + self.layout.product_system_unit)
        return 0

    def system_powers(self, unit):
        """Returns the system units that a unit consists of, with their exponents."""
        unit = self.system_unit(unit) or unit
        if self.memory.class_of(unit) != "mensor::CProductUnit":
            return {unit: Fraction(1)}
        powers = {}
        for factor, pow, root in self.factors(unit):
            for base, exponent in self.system_powers(factor).items():
                powers[base] = powers.get(base, 0) + exponent * Fraction(pow, root)
        return {base: exponent for base, exponent in powers.items() if exponent != 0}

    def system_text(self, unit):
        """Returns the text of the system unit. The library computes that of a product on first use."""
        known = self.system_unit(unit)
        if known != 0:
            return self.text(known)
        powers = self.system_powers(unit)
        if not powers or unit in powers:
            return self.text(unit)
        return self.product_text([(base, exponent.numerator, exponent.denominator)
                                  for base, exponent in powers.items()])

    def unit(self, unit):
        if unit == 0:
            return self.text(unit)
        name = self.memory.class_of(unit)
        return "%s (%s, system unit %s)" % (self.text(unit), KINDS.get(name, name),
                                            self.system_text(unit))

    def steps(self, converter, number=SHORTEST):
        """Returns the steps of a converter in the order in which they are applied."""
        layout, memory = self.layout, self.memory
        steps, ahead = [], [converter]
        while ahead:
            step = ahead.pop()
            kind = memory.class_of(step)
            if kind == "mensor::CCompound":
                ahead += [memory.word(step + layout.compound_second),
                          memory.word(step + layout.compound_first)]
                continue
            if kind == "mensor::CIdentity":
                continue
            if len(steps) == MOST_STEPS:
                steps.append("...")
                break
            if kind == "mensor::CMultiplyConverter":
                steps.append("*" + shown(memory.double(step + layout.multiply_factor), number))
            elif kind == "mensor::CAddConverter":
                text = shown(memory.double(step + layout.add_offset), number)
                steps.append(text if text.startswith("-") else "+" + text)
            else:
                steps.append("(?)" if number != SHORTEST else "(%s)" % kind)
        return steps

    def converter(self, converter):
        if converter == 0:
            return "no converter"
        return " -> ".join(self.steps(converter)) or "identity"

    def value(self, value):
        number = self.memory.double(value + self.layout.value_number)
        unit = self.memory.word(value + self.layout.value_unit)
        return "%s %s" % (shown(number, SHORTEST), self.text(unit))


def shown(number, how):
    return re.sub(r"\.0$", "", repr(number)) if how == SHORTEST else how % number


class Printer:
    def __init__(self, show, address):
        self.show, self.address = show, address

    def to_string(self):
        try:
            return self.show(Mensor(), self.address)
        except gdb.error as error:
            return "<%s>" % error

    @staticmethod
    def display_hint():
        return None


def address_of(value):
    return None if value.address is None else int(value.address)


def pointee_of(value):
    return int(value["_M_ptr"])


UNIT = r"mensor::C(|Base|Derived|Alternate|Transformed|Product)Unit"
CONVERTER = r"mensor::C(Converter|Identity|Compound|AddConverter|MultiplyConverter)"
POINTER = r"std::shared_ptr<(%s)( const)?>$"
SHOWN = [
    (re.compile(POINTER % UNIT), pointee_of, Mensor.unit),
    (re.compile(POINTER % CONVERTER), pointee_of, Mensor.converter),
    (re.compile(UNIT + "$"), address_of, Mensor.unit),
    (re.compile(CONVERTER + "$"), address_of, Mensor.converter),
    (re.compile(r"mensor::CUnitRationalPower$"), address_of,
     lambda mensor, power: mensor.raised(mensor.text(mensor.power(power)[0]),
                                         *mensor.power(power)[1:])),
    (re.compile(r"mensor::CValueWithUnit$"), address_of, Mensor.value),
    (re.compile(r"mensor::utf8_string$"), address_of,
     lambda mensor, string: '"%s"' % mensor.memory.text(string)),
]


def mensor_printers(value):
    """Returns the printer for a value, or None. gdb calls this."""
    name = gdb.types.get_basic_type(value.type).name
    if name is None or "mensor::" not in name:
        return None
    if value.type.strip_typedefs().code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
        value = value.referenced_value()
    for pattern, locate, show in SHOWN:
        if pattern.match(name):
            address = locate(value)
            return None if address is None else Printer(show, address)
    return None


def register(objfile):
    """Puts the printers before all others of an object file."""
    if mensor_printers not in objfile.pretty_printers:
        objfile.pretty_printers.insert(0, mensor_printers)


if gdb.current_objfile() is not None:
    register(gdb.current_objfile())  # loaded with the library
else:
    # Loaded by hand. gdb searches the object files in turn, and that of the C++ library has a printer for
    # std::shared_ptr. So each object file gets these printers, including those that are loaded later.
    for present in gdb.objfiles():
        register(present)
    gdb.events.new_objfile.connect(lambda event: register(event.new_objfile))
