#include "mensor/mensor_global.h"

#include <cmath>
#include <limits>

#include "mensor/Kept.h"
#include "mensor/utf8.h"

namespace mensor {

namespace {

const detail::CKept<std::vector<CPrefix>> Prefixes(std::vector<CPrefix>{
    {"Y", 1e24}, {"Z", 1e21},  {"E", 1e18},  {"P", 1e15},  {"T", 1e12},  {"G", 1e9},   {"M", 1e6},
    {"k", 1000}, {"h", 100},   {"da", 10},   {"d", 0.1},   {"c", 0.01},  {"m", 0.001}, {"µ", 1e-6},
    {"n", 1e-9}, {"p", 1e-12}, {"f", 1e-15}, {"a", 1e-18}, {"z", 1e-21}, {"y", 1e-24},
});

// Rounds toward zero. Returns the largest int for a larger number and 0 for NaN. A plain conversion
// of a double that does not fit differs between processors. A sum of code points is never negative,
// so there is no lower bound.
int saturate(double x) {
    constexpr double Largest = std::numeric_limits<int>::max();
    if (x != x) {
        return 0;
    }
    if (x >= Largest) {
        return std::numeric_limits<int>::max();
    }
    return static_cast<int>(x);
}

}  // namespace

const std::vector<CPrefix>& prefixes() { return *Prefixes; }

const CPrefix& prefix(ePrefix p) { return (*Prefixes)[static_cast<std::size_t>(p)]; }

std::string toStdString(const string_t& s) { return std::string(s.data(), s.size()); }

int hashFromString(const string_t& s) {
    const char* const begin = s.data();
    const char* const end = begin + s.size();
    int places = 0;
    for (const char* position = begin; position != end; ++places) {
        detail::decodeUtf8(position, end);
    }
    int h = 0;
    for (const char* position = begin; position != end;) {
        --places;
        const double c = detail::decodeUtf8(position, end);
        h = saturate(static_cast<double>(h) + std::pow(31.0, places) * c);
    }
    return h;
}

}  // namespace mensor
