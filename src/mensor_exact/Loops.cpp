#include "mensor_exact/Loops.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace mensor::exact {

namespace {

const CLoops* const Plain[] = {&PlainLoops, nullptr};

#if defined(__x86_64__)
const CLoops* const Avx2[] = {&Avx2Loops, &PlainLoops, nullptr};
const CLoops* const Avx512[] = {&Avx512Loops, &Avx2Loops, &PlainLoops, nullptr};

bool hasAll(unsigned bits, unsigned wanted) { return (bits & wanted) == wanted; }

// Asks the processor for the few features that matter. __builtin_cpu_supports() would ask for all
// features, and do so whenever the library is loaded.
const CLoops* const* askProcessor() {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || !hasAll(c, bit_OSXSAVE | bit_FMA)) {
        return Plain;
    }
    // The registers of the vectors that the operating system saves for each thread.
    constexpr unsigned Ymm = 0x06;
    constexpr unsigned Zmm = 0xE6;
    unsigned saved = 0;
    __asm__("xgetbv" : "=a"(saved), "=d"(d) : "c"(0));
    if (!hasAll(saved, Ymm) || __get_cpuid_count(7, 0, &a, &b, &c, &d) == 0 ||
        !hasAll(b, bit_AVX2)) {
        return Plain;
    }
    return hasAll(saved, Zmm) && hasAll(b, bit_AVX512F | bit_AVX512DQ | bit_AVX512VL) ? Avx512
                                                                                      : Avx2;
}
#endif

}  // namespace

const CLoops* const* availableLoops() {
#if defined(__x86_64__)
    static const CLoops* const* const Best = askProcessor();
    return Best;
#else
    return Plain;
#endif
}

}  // namespace mensor::exact
