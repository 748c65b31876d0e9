// CommaLocale.h: a locale with a decimal comma. The build of the tests compiles it, so none needs
// to be installed.
#ifndef MENSOR_TESTS_COMMALOCALE_H
#define MENSOR_TESTS_COMMALOCALE_H

#include <clocale>
#include <cstdlib>
#include <locale>

namespace mensor::test {

inline constexpr char CommaLocaleName[] = "de_DE.UTF-8";

/// Makes the locale known to the C library.
inline void provideCommaLocale() { setenv("LOCPATH", MENSOR_TEST_LOCALES, 1); }

/// While the object exists, the locale of the process, for C and for C++, has a decimal comma and points between
/// groups of digits. @throws std::runtime_error  the locale does not exist.
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
