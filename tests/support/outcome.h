// outcome.h: the outcome of a call as a text.
//
//     EXPECT_EQ(outcomeOf([] { CUnit::fromString("xyz"); }),
//               "std::invalid_argument: Label: xyz not recognized");
//     EXPECT_EQ(outcomeOf([] { CUnit::fromString("m"); }), "returned");
#ifndef MENSOR_TESTS_OUTCOME_H
#define MENSOR_TESTS_OUTCOME_H

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <typeinfo>

namespace mensor {

/// "returned", or the class of the exception (not a base class) and its message.
template <class Action>
std::string outcomeOf(Action action) {
    try {
        action();
    } catch (const std::exception& thrown) {
        int status = 0;
        const std::unique_ptr<char, decltype(&std::free)> name(
            abi::__cxa_demangle(typeid(thrown).name(), nullptr, nullptr, &status), &std::free);
        return std::string(name.get()) + ": " + thrown.what();
    }
    return "returned";
}

}  // namespace mensor

#endif  // MENSOR_TESTS_OUTCOME_H
