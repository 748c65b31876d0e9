// Thorough.h: whether the tests that try very many cases are to try all that they can, as
// "scripts/test --all" asks for with MENSOR_TESTS_THOROUGH in the environment. Otherwise they try a
// sample.
#ifndef MENSOR_TESTS_THOROUGH_H
#define MENSOR_TESTS_THOROUGH_H

#include <cstdlib>

namespace mensor::test {

inline bool isThorough() {
    static const bool is = std::getenv("MENSOR_TESTS_THOROUGH") != nullptr;
    return is;
}

/// Where a case takes many times as long as natively: under an emulator or a sanitizer.
#if defined(__arm__) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IsSlow = true;
#else
constexpr bool IsSlow = false;
#endif

}  // namespace mensor::test

#endif  // MENSOR_TESTS_THOROUGH_H
