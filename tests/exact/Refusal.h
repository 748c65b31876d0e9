// Refusal.h: what the exact library refuses, as code and sentence.
#ifndef MENSOR_TESTS_REFUSAL_H
#define MENSOR_TESTS_REFUSAL_H

#include <gtest/gtest.h>

#include <string>

#include "mensor_exact/Error.h"

namespace mensor::exact {

/// Expects that `work` throws CError with this code, and with this sentence if one is given.
template <class Work>
void expectRefusal(eError code, const Work& work, const std::string& sentence = "") {
    try {
        work();
        ADD_FAILURE() << "not refused: " << sentence;
    } catch (const CError& error) {
        EXPECT_EQ(error.code(), code) << error.what();
        if (!sentence.empty()) {
            EXPECT_EQ(error.what(), sentence);
        }
    }
}

}  // namespace mensor::exact

#endif  // MENSOR_TESTS_REFUSAL_H
