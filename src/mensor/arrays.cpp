// arrays.cpp: compiled with full vectorisation (see CMakeLists.txt). On x86-64 each loop is
// compiled three times: with SSE2, which every such processor has, with AVX2 and with AVX-512. The
// processor decides at run time which one runs. Each loop does one operation per value, so no
// operations can be contracted, and the width of the vectors does not change a bit.
//
// Results that fit in no cache of the processor are written with streaming stores. An ordinary
// store first reads the cache line that it fills, which is a third of all traffic when memory is
// the limit.
#include "mensor/arrays.h"

#include <algorithm>
#include <cstdint>
#include <functional>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace mensor::detail {

namespace {

// The pragma says that the iterations are independent. They are, even if both arrays are the same:
// each result depends only on the value at its own index.
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

// Begins the vectors at a cache line of the results, because a store across two lines costs as much
// as two.
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

// Stores two values at a time; memory is not faster with wider stores. A streaming store needs an
// address divisible by 16. The fence orders these stores before later stores, so that another
// thread that sees a later store also sees the results.
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
    // 32 MB of results. Fewer may stay in a cache, where the next reader finds them.
    constexpr std::size_t StreamedCount = 4'000'000;
    __builtin_cpu_init();
    if (count >= StreamedCount && values != results) {
        stream<Operation>(values, results, count, c);
    } else if (__builtin_cpu_supports("avx512vbmi2")) {
        // The first processors with AVX-512 lower their clock for it. They have no VBMI2.
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

}  // namespace mensor::detail
