// Everyday.h: the texts of data/everyday.tsv, about a thousand units in everyday use, and what they
// mean.
#ifndef MENSOR_TESTS_EVERYDAY_H
#define MENSOR_TESTS_EVERYDAY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/Mathematics.h"

namespace mensor::test {

/// A text and what it means.
struct Expression {
    std::string Text;
    Quantity Meaning;  ///< as in the file
    std::string Field;
};

/// All texts, in the order of the file.
inline const std::vector<Expression>& everyday() {
    static const std::vector<Expression> Expressions = [] {
        std::vector<Expression> expressions;
        std::ifstream file(MENSOR_TEST_DATA "/everyday.tsv");
        for (std::string line; std::getline(file, line);) {
            if (line.empty() || line[0] == '#') {
                continue;
            }
            std::array<std::string, 5> column;
            std::istringstream in(line);
            for (std::string& text : column) {
                std::getline(in, text, '\t');
            }
            Expression expression{column[0], {}, column[4]};
            std::istringstream exponents(column[1]);
            for (std::string item; exponents >> item;) {
                const auto colon = item.find(':');
                const auto slash = item.find('/');
                expression.Meaning.Exponents[item.substr(0, colon)] =
                    Fraction(std::stoll(item.substr(colon + 1)),
                             slash == std::string::npos ? 1 : std::stoll(item.substr(slash + 1)));
            }
            expression.Meaning.Factor = std::stod(column[2]);
            expression.Meaning.Offset = std::stod(column[3]);
            expressions.push_back(std::move(expression));
        }
        return expressions;
    }();
    return Expressions;
}

/// The numbers below `size` in a random order that depends only on `seed`.
inline std::vector<std::size_t> order(std::uint32_t seed, std::size_t size) {
    std::vector<std::size_t> indices(size);
    for (std::size_t i = 0; i < size; ++i) {
        indices[i] = i;
    }
    std::uint32_t state = seed;
    for (std::size_t i = size - 1; i > 0; --i) {
        for (int rounds = 0; rounds < 3; ++rounds) {
            state = state * 1664525U + 1013904223U;
        }
        std::swap(indices[i], indices[(state >> 8) % (i + 1)]);
    }
    return indices;
}

}  // namespace mensor::test

#endif  // MENSOR_TESTS_EVERYDAY_H
