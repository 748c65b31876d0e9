// Error_test.cpp: a copy of an error has the code and the message of the error.
#include "mensor_exact/Error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "mensor_exact/DefinitionFile.h"
#include "mensor_exact/Diagnosis.h"
#include "mensor_exact/Reading.h"

namespace mensor::exact {
namespace {

// Returns the error that `work` throws.
template <class Error, class Work>
Error thrownBy(const Work& work) {
    try {
        work();
    } catch (const Error& error) {
        return error;
    }
    throw std::logic_error("no error");
}

TEST(Error, CanBeCopiedAndAssigned) {
    const CError error(eError::CYCLE, "round and round");
    CError copy(eError::SYNTAX, "none");
    copy = error;
    EXPECT_EQ(copy.code(), eError::CYCLE);
    EXPECT_STREQ(copy.what(), "round and round");
    EXPECT_EQ(CError(copy).code(), eError::CYCLE);
}

TEST(Error, OfAReadingCanBeCopiedAndAssigned) {
    const auto error = thrownBy<CReadError>([] { read("xyzzy"); });
    auto copy = thrownBy<CReadError>([] { read("m/s/s"); });
    copy = error;
    EXPECT_EQ(copy.diagnosis().Code, eRefusal::UNKNOWN_NAME);
    EXPECT_EQ(copy.diagnosis().Token, "xyzzy");
    EXPECT_STREQ(copy.what(), error.what());
}

TEST(Error, OfADefinitionFileCanBeCopiedAndAssigned) {
    const auto error =
        thrownBy<CDefinitionError>([] { readDefinitions("qa = 3 m\nqb = 3 xyzzy"); });
    auto copy = thrownBy<CDefinitionError>([] { readDefinitions("q"); });
    copy = error;
    ASSERT_EQ(copy.findings().size(), 1U);
    EXPECT_EQ(copy.findings()[0].Line, 2U);
    EXPECT_STREQ(copy.what(), error.what());
}

TEST(Error, CodesHaveNames) {
    EXPECT_STREQ(nameOf(eRefusal::UNKNOWN_CODE), "UNKNOWN_CODE");
    EXPECT_STREQ(nameOf(eRefusal::LIMIT_REACHED), "LIMIT_REACHED");
    EXPECT_STREQ(nameOf(static_cast<eRefusal>(999)), "?") << "of a later version";
}

}  // namespace
}  // namespace mensor::exact
