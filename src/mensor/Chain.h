// Chain.h: walks over chains of compound converters. Not installed.
//
// A chain may be of any length, so no function here may need a stack that grows with it. Recursion,
// which is fast, visits the first levels of a chain. A list holds the levels below.
#ifndef MENSOR_CHAIN_H
#define MENSOR_CHAIN_H

#include "mensor/Converter.h"
#include "mensor/exact_class.h"

namespace mensor::detail {

struct Chain {
    static constexpr int RecursionLevels = 16;

    // Returns the compound, or null if the converter is of another class. A client's class derived
    // from CCompound counts as another class: it may convert in its own way.
    static const CCompound* asCompound(const CConverter& converter) {
        return isExactly<CCompound>(converter) ? static_cast<const CCompound*>(&converter)
                                               : nullptr;
    }

    // The second step. Inverts it first if the compound was made by throughInverse().
    static const CConverterPtr& second(const CCompound& compound);

    // toInvert->inverse()->concatenate(first), for the converter to a unit, which ends with the
    // inverse of the converter from that unit. If all steps are of the library's own classes, they
    // are inverted when the second step is first asked for. A client cannot see the difference.
    static CConverterPtr throughInverse(const CConverterPtr& first, const CConverterPtr& toInvert);

    // The value of a chain that has no plan.
    static double convert(const CCompound& chain, double x);

    // The slope of `converter` at `x`. Sets `x` to its value there, unless it is the last step. The
    // slopes are multiplied in the order of the nesting, because the order decides the last bits.
    static double slope(const CConverter& converter, double& x, bool isLast,
                        int levels = RecursionLevels);

    // The inverse, with the same nesting.
    static CConverterPtr inverse(const CConverterPtr& converter, int levels = RecursionLevels);

private:
    template <class T>
    struct Allocator;

    static void invertSecond(const CCompound& compound);
    static double slopeByList(const CCompound& chain, double& x, bool isLast);
    static CConverterPtr inverseByList(CConverter& chain);
};

}  // namespace mensor::detail

#endif  // MENSOR_CHAIN_H
