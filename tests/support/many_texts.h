// many_texts.h: more texts than the cache of the library holds.
#ifndef MENSOR_TESTS_MANY_TEXTS_H
#define MENSOR_TESTS_MANY_TEXTS_H

#include <string>
#include <utility>
#include <vector>

#include "mensor/Unit.h"

namespace mensor::test {

/// More than a thousand short texts, each with its unit.
inline std::vector<std::pair<std::string, CUnitPtr>> manyTexts() {
    const char* const names[] = {"m",  "s",  "kg", "A",  "K",    "mol",
                                 "cd", "km", "ms", "Pa", "mbar", "h"};
    std::vector<std::pair<std::string, CUnitPtr>> texts;
    for (const char* left : names) {
        for (const char* right : names) {
            for (const char* power : {"", "2", "^3", "^1:2", "-1", "^5", "^6", "^7", "^8"}) {
                const std::string text = std::string(left) + "/" + right + power;
                texts.emplace_back(text, CUnit::fromString(text));
            }
        }
    }
    return texts;
}

}  // namespace mensor::test

#endif  // MENSOR_TESTS_MANY_TEXTS_H
