#include "mensor_exact/Loops.h"

namespace mensor::exact {

namespace {

const CLoops* const Plain[] = {&PlainLoops, nullptr};

#if defined(__x86_64__)
const CLoops* const Avx2[] = {&Avx2Loops, &PlainLoops, nullptr};
const CLoops* const Avx512[] = {&Avx512Loops, &Avx2Loops, &PlainLoops, nullptr};
#endif

}  // namespace

const CLoops* const* availableLoops() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
        return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
                       __builtin_cpu_supports("avx512vl")
                   ? Avx512
                   : Avx2;
    }
#endif
    return Plain;
}

}  // namespace mensor::exact
