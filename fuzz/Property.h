// Property.h: how a fuzzer tells what it found, and what every one of them asks after its inputs.
#ifndef MENSOR_FUZZ_PROPERTY_H
#define MENSOR_FUZZ_PROPERTY_H

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "support/Invariants.h"

namespace mensor {
namespace fuzz {

/// Tells that `about` breaks a property, and ends the process.
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

/// Whether the library answers from its tables alone, since they have been handed out.
inline bool isWithoutMemory() { return CUnitFormat::namesVersion() == 0; }

/// The tables hold together. To be called after each input; it looks often enough.
///
/// Looking into the tables ends what the library remembers beside them, so in the first inputs of a
/// process only the names are looked at: those inputs try the remembering, the later ones the tables.
/// The intervals grow with the tables, or looking would soon be all that is done.
inline void checkTables() {
    constexpr std::size_t RememberedInputs = 4000;
    static std::size_t inputs = 0;
    static std::size_t next = 1;
    if (++inputs < next) {
        return;
    }
    const bool isByName = inputs < RememberedInputs && !isWithoutMemory();
    const std::string broken = isByName ? test::brokenName() : test::brokenInvariant();
    if (!broken.empty()) {
        fail("the inputs so far", broken);
    }
    const std::size_t often = isByName ? 100 : CUnit::instances().size() / 8;
    next = inputs + 1 + std::min(inputs / 16, often);
}

}  // namespace fuzz
}  // namespace mensor

#endif  // MENSOR_FUZZ_PROPERTY_H
