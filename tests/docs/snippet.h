// snippet.h: runs one of the snippets that snippets.awk took from a page, the one whose line is named
// on the command line. What it prints is compared by check_page.sh; the results that the page shows
// in comments are compared here.
#ifndef MENSOR_TESTS_SNIPPET_H
#define MENSOR_TESTS_SNIPPET_H

#include <charconv>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <type_traits>

// What a snippet takes for granted; others it includes itself, and a whole program includes all.
#include <mensor/NonSI.h>
#include <mensor/SI.h>
#include <mensor/UnitFormat.h>
#include <mensor/ValueWithUnit.h>
#include <mensor/io.h>

#include "support/Outcome.h"

namespace mensor_docs {

struct Snippet {
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
void gives(int line, const std::string& shown, const Result& result) {
    compare(line, shown, text(result));
}

template <class Action>
void throws(int line, const std::string& shown, Action action) {
    compare(line, shown, mensor::outcomeOf(action));
}

}  // namespace mensor_docs

int main(int argc, char** argv) {
    const int line = argc == 2 ? std::atoi(argv[1]) : -1;
    for (const mensor_docs::Snippet* snippet = mensor_docs::SNIPPETS; snippet->Run; ++snippet) {
        if (snippet->Line == line) {
            snippet->Run();
            return mensor_docs::failures == 0 ? 0 : 1;
        }
    }
    std::cerr << "no snippet begins at line " << line << '\n';
    return 2;
}

#endif  // MENSOR_TESTS_SNIPPET_H
