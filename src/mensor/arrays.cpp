// arrays.cpp: compiled with full vectorisation (see CMakeLists.txt). On x86-64 the loops exist twice,
// for the vectors that every such processor has and for those of AVX2, which are twice as wide; which
// one runs is asked of the processor. Each is one operation per element, so there is nothing to
// contract and the width cannot change a bit.
#include "mensor/arrays.h"

#if defined(__x86_64__)
#define MENSOR_WIDE __attribute__((target("avx2")))
#else
#define MENSOR_WIDE
#endif

namespace mensor {
namespace detail {

namespace {

// In place the two arrays are one, which the compiler must not be promised to differ: each form has its
// own loop.
#define MENSOR_LOOPS(name, attributes, operation)                                              \
    attributes void name(const double* __restrict values, double* __restrict results,          \
                         std::size_t count, double c) {                                        \
        for (std::size_t i = 0; i < count; ++i) {                                              \
            results[i] = values[i] operation c;                                                \
        }                                                                                      \
    }                                                                                          \
    attributes void name(double* values, std::size_t count, double c) {                        \
        for (std::size_t i = 0; i < count; ++i) {                                              \
            values[i] = values[i] operation c;                                                 \
        }                                                                                      \
    }

MENSOR_LOOPS(addLoop, , +)
MENSOR_LOOPS(multiplyLoop, , *)
MENSOR_LOOPS(addWideLoop, MENSOR_WIDE, +)
MENSOR_LOOPS(multiplyWideLoop, MENSOR_WIDE, *)

#undef MENSOR_LOOPS

bool isWide() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

}  // namespace

void addAll(const double* values, double* results, std::size_t count, double c) {
    const bool wide = isWide();
    if (values == results) {
        wide ? addWideLoop(results, count, c) : addLoop(results, count, c);
    } else {
        wide ? addWideLoop(values, results, count, c) : addLoop(values, results, count, c);
    }
}

void multiplyAll(const double* values, double* results, std::size_t count, double c) {
    const bool wide = isWide();
    if (values == results) {
        wide ? multiplyWideLoop(results, count, c) : multiplyLoop(results, count, c);
    } else {
        wide ? multiplyWideLoop(values, results, count, c) : multiplyLoop(values, results, count, c);
    }
}

}  // namespace detail
}  // namespace mensor
