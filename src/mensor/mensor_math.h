// mensor_math.h: the two functions on numbers that decide the identity of units.
#ifndef MENSOR_MENSOR_MATH_H
#define MENSOR_MENSOR_MATH_H

#include "mensor/mensor_export.h"

namespace mensor {

/// The IEEE 754 bits of `f` as a signed integer; every NaN gives 0x7FC00000.
///
/// The two zeros differ: +0 gives 0, -0 gives the smallest `int`.
/// @par Threads  Any thread; takes no lock.
MENSOR_API int floatToIntBits(float f);

/// The greatest common divisor by Euclid's algorithm with the truncating remainder.
///
/// The sign is that of the last divisor that is not zero: (4, -6) gives -2, (-4, 6) gives 2. (0, 0)
/// gives 0.
/// @par Threads  Any thread; takes no lock.
MENSOR_API int greatestCommonDivisor(int a, int b);

}  // namespace mensor

#endif  // MENSOR_MENSOR_MATH_H
