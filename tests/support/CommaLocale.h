// CommaLocale.h: a locale with a decimal comma, which the tests' build compiles: none needs to be
// installed.
#ifndef MENSOR_TESTS_COMMALOCALE_H
#define MENSOR_TESTS_COMMALOCALE_H

#include <clocale>
#include <cstdlib>
#include <locale>

namespace mensor::test {

inline constexpr char CommaLocaleName[] = "de_DE.UTF-8";

/// Makes it known to the C library. Another name stays as unknown as it was.
inline void provideCommaLocale() { setenv("LOCPATH", MENSOR_TEST_LOCALES, 1); }

/// While it lives, the locale of the process, for C and for C++, has a decimal comma, and points between
/// thousands. @throws std::runtime_error  the locale is not there.
class CCommaLocale {
public:
    CCommaLocale() {
        provideCommaLocale();
        std::locale::global(std::locale(CommaLocaleName));
    }
    ~CCommaLocale() { std::locale::global(std::locale::classic()); }
    CCommaLocale(const CCommaLocale&) = delete;
    CCommaLocale& operator=(const CCommaLocale&) = delete;
};

}  // namespace mensor::test

#endif  // MENSOR_TESTS_COMMALOCALE_H
