// Snippet.h: compares the results in the comments of a page with those of its snippets.
// snippets.awk includes it after the snippets, so that they see only their own includes.
// check_page.sh compares the output of snippets.
#ifndef MENSOR_TESTS_SNIPPET_H
#define MENSOR_TESTS_SNIPPET_H

#include <charconv>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <type_traits>

#include <mensor/io.h>

#include "support/outcome.h"

namespace mensor_docs {

struct Snippet {
    const char* Page;  // null in the last row
    int Line;
    void (*Run)();
};
extern const Snippet SNIPPETS[];

inline int failures = 0;

inline void compare(int line, const std::string& shown, const std::string& given) {
    if (shown != given) {
        std::cout << "line " << line << " shows " << shown << ", but it is " << given << '\n';
        ++failures;
    }
}

template <class Result>
std::string text(const Result& result) {
    if constexpr (std::is_same_v<Result, bool>) {
        return result ? "true" : "false";
    } else if constexpr (std::is_arithmetic_v<Result>) {
        char digits[32];
        return std::string(digits, std::to_chars(digits, std::end(digits), result).ptr);
    } else {
        std::ostringstream stream;
        stream << result;
        return '"' + stream.str() + '"';
    }
}

template <class Result>
void gives(int line, const char* shown, const Result& result) {
    compare(line, shown, text(result));
}

template <class Action>
void throws(int line, const char* shown, Action action) {
    compare(line, shown, mensor::outcomeOf(action));
}

}  // namespace mensor_docs

#endif  // MENSOR_TESTS_SNIPPET_H
