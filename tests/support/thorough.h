// thorough.h: tells whether the tests that try very many cases try all of them. They do if
// MENSOR_TESTS_THOROUGH is in the environment, as "scripts/test --all" sets it. Otherwise they try
// a sample.
#ifndef MENSOR_TESTS_THOROUGH_H
#define MENSOR_TESTS_THOROUGH_H

#include <cstdlib>

namespace mensor::test {

inline bool isThorough() {
    static const bool is = std::getenv("MENSOR_TESTS_THOROUGH") != nullptr;
    return is;
}

/// True if a case takes many times as long as natively: under an emulator or a sanitizer.
#if defined(__arm__) || defined(MENSOR_TESTS_SANITIZED)
constexpr bool IsSlow = true;
#else
constexpr bool IsSlow = false;
#endif

/// How many cases a test tries: all of them natively and if it is to be thorough, otherwise some.
template <class Count>
Count casesOf(Count all, Count some) {
    return IsSlow && !isThorough() ? some : all;
}

}  // namespace mensor::test

#endif  // MENSOR_TESTS_THOROUGH_H
