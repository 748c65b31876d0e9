// arrays.cpp: compiled with full vectorisation (see CMakeLists.txt). On x86-64 the loops exist twice,
// for the vectors that every such processor has and for those of AVX2, which are twice as wide; which
// one runs is asked of the processor. Each is one operation per element, so there is nothing to
// contract and the width cannot change a bit.
//
// Results too many for any cache are written past the caches. An ordinary store would first read the
// line that it is about to fill, which is a third of all traffic when memory is the limit.
#include "mensor/arrays.h"

#if defined(__x86_64__)
#include <emmintrin.h>

#include <cstdint>

#define MENSOR_WIDE __attribute__((target("avx2")))
#else
#define MENSOR_WIDE
#endif

namespace mensor {
namespace detail {

namespace {

// In place the two arrays are one, which the compiler must not be promised to differ: each form has its
// own loop.
#define MENSOR_LOOPS(name, attributes, operation)                                     \
    attributes void name(const double* __restrict values, double* __restrict results, \
                         std::size_t count, double c) {                               \
        for (std::size_t i = 0; i < count; ++i) {                                     \
            results[i] = values[i] operation c;                                       \
        }                                                                             \
    }                                                                                 \
    attributes void name(double* values, std::size_t count, double c) {               \
        for (std::size_t i = 0; i < count; ++i) {                                     \
            values[i] = values[i] operation c;                                        \
        }                                                                             \
    }

MENSOR_LOOPS(addLoop, , +)
MENSOR_LOOPS(multiplyLoop, , *)
MENSOR_LOOPS(addWideLoop, MENSOR_WIDE, +)
MENSOR_LOOPS(multiplyWideLoop, MENSOR_WIDE, *)

#undef MENSOR_LOOPS

#if defined(__x86_64__)

// 32 MB of results: what a cache might keep for whoever reads them next is written as usual.
constexpr std::size_t StreamedCount = 4'000'000;

// Two at a time, which is all that memory takes; such a store needs an address divisible by 16. The
// fence at the end orders these stores before whatever tells another thread that they are done.
#define MENSOR_STREAM(name, operation, pairwise)                                    \
    void name(const double* values, double* results, std::size_t count, double c) { \
        std::size_t i = 0;                                                          \
        if (reinterpret_cast<std::uintptr_t>(results) % 16 != 0) {                  \
            results[0] = values[0] operation c;                                     \
            i = 1;                                                                  \
        }                                                                           \
        const __m128d both = _mm_set1_pd(c);                                        \
        for (; i + 2 <= count; i += 2) {                                            \
            _mm_stream_pd(results + i, pairwise(_mm_loadu_pd(values + i), both));   \
        }                                                                           \
        if (i < count) {                                                            \
            results[i] = values[i] operation c;                                     \
        }                                                                           \
        _mm_sfence();                                                               \
    }

MENSOR_STREAM(addStream, +, _mm_add_pd)
MENSOR_STREAM(multiplyStream, *, _mm_mul_pd)

#undef MENSOR_STREAM

bool isWide() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2");
}

#else

bool isWide() { return false; }

#endif

}  // namespace

void addAll(const double* values, double* results, std::size_t count, double c) {
#if defined(__x86_64__)
    if (count >= StreamedCount && values != results) {
        addStream(values, results, count, c);
        return;
    }
#endif
    const bool wide = isWide();
    if (values == results) {
        wide ? addWideLoop(results, count, c) : addLoop(results, count, c);
    } else {
        wide ? addWideLoop(values, results, count, c) : addLoop(values, results, count, c);
    }
}

void multiplyAll(const double* values, double* results, std::size_t count, double c) {
#if defined(__x86_64__)
    if (count >= StreamedCount && values != results) {
        multiplyStream(values, results, count, c);
        return;
    }
#endif
    const bool wide = isWide();
    if (values == results) {
        wide ? multiplyWideLoop(results, count, c) : multiplyLoop(results, count, c);
    } else {
        wide ? multiplyWideLoop(values, results, count, c)
             : multiplyLoop(values, results, count, c);
    }
}

}  // namespace detail
}  // namespace mensor
