// property.h: how a fuzzer reports a broken property, and the properties that all fuzzers check.
#ifndef MENSOR_FUZZ_PROPERTY_H
#define MENSOR_FUZZ_PROPERTY_H

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "support/invariants.h"

namespace mensor::fuzz {

/// Reports that `about` breaks a property, and ends the process.
[[noreturn]] inline void fail(const std::string& about, const std::string& property) {
    std::fprintf(stderr, "\"");
    for (const char c : about) {
        const auto byte = static_cast<unsigned char>(c);
        std::fprintf(stderr, byte < 0x20 || byte > 0x7E ? "\\x%02X" : "%c", byte);
    }
    std::fprintf(stderr, "\": %s\n", property.c_str());
    std::abort();
}

inline void require(bool holds, const std::string& about, const char* property) {
    if (!holds) {
        fail(about, property);
    }
}

/// Returns whether the caches of the library are off, because its tables have been handed out.
inline bool areCachesOff() { return CUnitFormat::namesVersion() == 0; }

/// Checks the invariants of the tables. Call it after each input. It does the work only at some of
/// the calls.
///
/// Reading the tables switches the caches of the library off. So after the first inputs of a
/// process it checks only the names: the first inputs test the caches, the later ones the tables.
/// The intervals between two checks grow with the tables, since checking a table takes time in
/// proportion to its size.
inline void checkTables() {
    constexpr std::size_t InputsWithCaches = 4000;
    static std::size_t inputs = 0;
    static std::size_t next = 1;
    if (++inputs < next) {
        return;
    }
    const bool isByName = inputs < InputsWithCaches && !areCachesOff();
    const std::string broken = isByName ? test::brokenName() : test::brokenInvariant();
    if (!broken.empty()) {
        fail("the inputs so far", broken);
    }
    const std::size_t often = isByName ? 100 : CUnit::instances().size() / 8;
    next = inputs + 1 + std::min(inputs / 16, often);
}

}  // namespace mensor::fuzz

#endif  // MENSOR_FUZZ_PROPERTY_H
