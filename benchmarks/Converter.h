// Converter.h: the least converters that are chosen at run time. They are in a library of their own, as the
// converters of mensor and UDUNITS-2 are.
#ifndef MENSOR_BENCHMARKS_CONVERTER_H
#define MENSOR_BENCHMARKS_CONVERTER_H

#include <memory>

struct Converter {
    virtual ~Converter() = default;
    virtual double convert(double x) const = 0;
};

/// Returns x·factor.
std::unique_ptr<Converter> makeMultiply(double factor);

/// Returns x·head + x·tail: a product and a fused multiply-add. A correctly rounded result needs at least
/// these for most factors. Returns null if the processor has no fused multiply-add.
std::unique_ptr<Converter> makeFused(double head, double tail);

#endif  // MENSOR_BENCHMARKS_CONVERTER_H
