// sizes.cpp: prints the sizes and alignments of the classes that clients can create, derive from or copy.
#include <mensor/AddConverter.h>
#include <mensor/AlternateUnit.h>
#include <mensor/BaseUnit.h>
#include <mensor/Converter.h>
#include <mensor/DerivedUnit.h>
#include <mensor/MultiplyConverter.h>
#include <mensor/ProductUnit.h>
#include <mensor/TransformedUnit.h>
#include <mensor/Unit.h>
#include <mensor/UnitFormat.h>
#include <mensor/UnitRationalPower.h>
#include <mensor/UnitRegistry.h>
#include <mensor/ValueWithUnit.h>
#include <mensor/mensor_global.h>

#include <cstdio>

#define SHOW(type) std::printf("%-20s %3zu, aligned to %zu\n", #type, sizeof(type), alignof(type))

using namespace mensor;

int main() {
    SHOW(CAddConverter);
    SHOW(CASCIIUnitFormat);
    SHOW(CAlternateUnit);
    SHOW(CBaseUnit);
    SHOW(CCompound);
    SHOW(CConverter);
    SHOW(CDerivedUnit);
    SHOW(CIdentity);
    SHOW(CMultiplyConverter);
    SHOW(CPrefix);
    SHOW(CProductUnit);
    SHOW(CStandardUnitFormat);
    SHOW(CTransformedUnit);
    SHOW(CUnit);
    SHOW(CUnitFormat);
    SHOW(CUnitRationalPower);
    SHOW(CUnitRegistry);
    SHOW(CValueWithUnit);
    SHOW(Convert);
    SHOW(ePrefix);
    SHOW(string_t);
    SHOW(string_t::const_iterator);
}
