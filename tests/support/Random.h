// Random.h: random numbers that are the same in every run.
#ifndef MENSOR_TESTS_RANDOM_H
#define MENSOR_TESTS_RANDOM_H

#include <cstddef>
#include <cstdint>

namespace mensor::test {

/// A linear congruential generator with a fixed seed.
class CRandom {
public:
    /// Returns a number below `end`.
    std::size_t operator()(std::size_t end) {
        m_State = m_State * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::size_t>(m_State >> 33) % end;
    }

private:
    std::uint64_t m_State = 1;
};

}  // namespace mensor::test

#endif  // MENSOR_TESTS_RANDOM_H
