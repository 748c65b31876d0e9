// arrays.h: the two operations of converters on whole arrays. Not installed.
#ifndef MENSOR_ARRAYS_H
#define MENSOR_ARRAYS_H

#include <cstddef>

namespace mensor::detail {

// results[i] = values[i] + c and results[i] = values[i] * c for `count` values, with the same bits
// as the scalar operations. `values` and `results` are the same array or do not overlap. `c` is not
// NaN: the result of two NaNs is the first operand, and the compiler may swap the operands.
void addAll(const double* values, double* results, std::size_t count, double c);
void multiplyAll(const double* values, double* results, std::size_t count, double c);

}  // namespace mensor::detail

#endif  // MENSOR_ARRAYS_H
