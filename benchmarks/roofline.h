// roofline.h: the fastest plain loop over an array that the compiler can make for this processor.
#ifndef MENSOR_BENCHMARKS_ROOFLINE_H
#define MENSOR_BENCHMARKS_ROOFLINE_H

#include <cstddef>

/// Computes y = x * a + b for all elements.
void scaleAndShift(const double* x, double* y, std::size_t count, double a, double b);

#endif  // MENSOR_BENCHMARKS_ROOFLINE_H
