// The program that runs in the debugger. It is stopped in stop().
#include <mensor/NonSI.h>
#include <mensor/SI.h>
#include <mensor/UnitFormat.h>
#include <mensor/ValueWithUnit.h>

using namespace mensor;

namespace {

[[gnu::noinline]] void stop(const CUnitPtr& argument, const CUnit& object,
                            const CValueWithUnit& value, const CConverter& converter) {
    asm volatile("" : : "r"(&argument), "r"(&object), "r"(&value), "r"(&converter) : "memory");
}

}  // namespace

int main() {
    const CUnitPtr metre = SI::Meter();
    const CUnitPtr newton = SI::Newton();
    const CUnitPtr kilometre = CUnit::fromString("km");
    const CUnitPtr celsius = SI::Celsius();
    const CUnitPtr speed = kilometre / NonSI::Hour();
    const CUnitPtr flow = CUnit::fromString("kg/(s·m^4·K²)");
    const CUnitPtr mile = metre * 1609.344;
    const CUnitPtr perMile = (SI::Second() ^ 2) / mile;
    const CUnitPtr root = (metre ^ 3)->root(2);
    const CUnitPtr one = metre / metre;
    const CUnitPtr none;
    const CUnitPtr own = CUnitFormat::label(metre * 0.3048, "ft′");

    const CConverterPtr toMetre = kilometre->getConverterTo(metre);
    const CConverterPtr toKelvin = celsius->getConverterTo(SI::Kelvin());
    const CConverterPtr chain = toMetre->concatenate(toMetre)->concatenate(toKelvin->inverse());
    const CConverterPtr same = metre->getConverterTo(metre);
    const CConverterPtr missing;

    const CValueWithUnit distance = CValueWithUnit::fromString("2.5 km");
    const CValueWithUnit third(1.0 / 3, speed);
    const string_t text = "m²·µs";
    const CUnitRationalPower power(SI::Second(), -2, 1);

    stop(kilometre, *celsius, distance, *chain);
}
