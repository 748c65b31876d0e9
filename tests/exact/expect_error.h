// expect_error.h: tests the code and the message of an error of the exact library.
#ifndef MENSOR_TESTS_EXPECT_ERROR_H
#define MENSOR_TESTS_EXPECT_ERROR_H

#include <gtest/gtest.h>

#include <string>

#include "mensor_exact/Error.h"

namespace mensor::exact {

/// Expects that `work` throws CError with this code, and with this message if one is given.
template <class Work>
void expectError(eError code, const Work& work, const std::string& message = "") {
    try {
        work();
        ADD_FAILURE() << "no error: " << message;
    } catch (const CError& error) {
        EXPECT_EQ(error.code(), code) << error.what();
        if (!message.empty()) {
            EXPECT_EQ(error.what(), message);
        }
    }
}

}  // namespace mensor::exact

#endif  // MENSOR_TESTS_EXPECT_ERROR_H
