// arrays.h: the two operations of converters over whole arrays. For the library's own use; not
// installed.
#ifndef MENSOR_ARRAYS_H
#define MENSOR_ARRAYS_H

#include <cstddef>

namespace mensor {
namespace detail {

// results[i] = values[i] + c and values[i] * c for `count` values, with the very bits of the scalar
// operations. `values` and `results` are the same array or do not overlap; `c` is not NaN, since of two
// NaNs a processor keeps the one that happens to be its first operand.
void addAll(const double* values, double* results, std::size_t count, double c);
void multiplyAll(const double* values, double* results, std::size_t count, double c);

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_ARRAYS_H
