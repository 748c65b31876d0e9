// arrays.cpp: compiled with full vectorisation (see CMakeLists.txt). On x86-64 the loop exists three
// times, for the vectors that every such processor has, for those of AVX2 and for those of AVX-512.
// Which one runs is asked of the processor. Each does one operation per value, so there is nothing to
// contract, and the width of the vectors cannot change a bit.
//
// Results too many for any cache are written past the caches. An ordinary store would first read the
// line that it is about to fill, which is a third of all traffic when memory is the limit.
#include "mensor/arrays.h"

#include <algorithm>
#include <cstdint>
#include <functional>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace mensor {
namespace detail {

namespace {

// The pragma tells the compiler that the values may be computed side by side. That holds for two arrays
// and for one that is changed in place, since each result depends on the value in its own place alone.
template <class Operation>
[[gnu::always_inline]] inline void loop(const double* values, double* results, std::size_t count,
                                        double c) {
#pragma omp simd
    for (std::size_t i = 0; i < count; ++i) {
        results[i] = Operation()(values[i], c);
    }
}

template <class Operation>
void run(const double* values, double* results, std::size_t count, double c) {
    loop<Operation>(values, results, count, c);
}

#if defined(__x86_64__)

// Begins at a cache line of the results: a vector that lies across two lines takes two stores.
template <class Operation>
[[gnu::always_inline]] inline void loopByLines(const double* values, double* results,
                                               std::size_t count, double c) {
    constexpr std::size_t Line = 64;
    const std::size_t past = reinterpret_cast<std::uintptr_t>(results) % Line;
    const std::size_t first = std::min(count, (Line - past) % Line / sizeof(double));
    loop<Operation>(values, results, first, c);
    loop<Operation>(values + first, results + first, count - first, c);
}

template <class Operation>
[[gnu::target("avx2")]] void runAvx2(const double* values, double* results, std::size_t count,
                                     double c) {
    loopByLines<Operation>(values, results, count, c);
}

template <class Operation>
[[gnu::target("avx512f")]] void runAvx512(const double* values, double* results, std::size_t count,
                                          double c) {
    loopByLines<Operation>(values, results, count, c);
}

// Two at a time, which is all that memory takes; such a store needs an address divisible by 16. The
// fence at the end orders these stores before whatever tells another thread that they are done.
template <class Operation>
void stream(const double* values, double* results, std::size_t count, double c) {
    const Operation operation;
    std::size_t i = 0;
    if (reinterpret_cast<std::uintptr_t>(results) % 16 != 0) {
        results[0] = operation(values[0], c);
        i = 1;
    }
    const __m128d both = _mm_set1_pd(c);
    for (; i + 2 <= count; i += 2) {
        _mm_stream_pd(results + i, operation(_mm_loadu_pd(values + i), both));
    }
    if (i < count) {
        results[i] = operation(values[i], c);
    }
    _mm_sfence();
}

template <class Operation>
void forEach(const double* values, double* results, std::size_t count, double c) {
    // 32 MB of results: what a cache might keep for whoever reads them next is written as usual.
    constexpr std::size_t StreamedCount = 4'000'000;
    __builtin_cpu_init();
    if (count >= StreamedCount && values != results) {
        stream<Operation>(values, results, count, c);
    } else if (__builtin_cpu_supports("avx512vbmi2")) {
        // The first processors with AVX-512 have no VBMI2. They lower their clock for such vectors.
        runAvx512<Operation>(values, results, count, c);
    } else if (__builtin_cpu_supports("avx2")) {
        runAvx2<Operation>(values, results, count, c);
    } else {
        run<Operation>(values, results, count, c);
    }
}

#else

template <class Operation>
void forEach(const double* values, double* results, std::size_t count, double c) {
    run<Operation>(values, results, count, c);
}

#endif

}  // namespace

void addAll(const double* values, double* results, std::size_t count, double c) {
    forEach<std::plus<>>(values, results, count, c);
}

void multiplyAll(const double* values, double* results, std::size_t count, double c) {
    forEach<std::multiplies<>>(values, results, count, c);
}

}  // namespace detail
}  // namespace mensor
