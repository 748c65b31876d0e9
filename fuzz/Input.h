// Input.h: gives the input of a fuzzer as one text, or its bytes one by one as choices. After the
// last byte it gives zeros.
//
//     fuzz::CInput input(data, size);
//     while (!input.empty()) {
//         switch (input.below(3)) {
//             case 0: label(pool[input.below(pool.size())], input.text(3)); break;
#ifndef MENSOR_FUZZ_INPUT_H
#define MENSOR_FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

namespace mensor::fuzz {

/// Returns the input as one text, or none if it is longer than `longest`. A longer text would find
/// nothing new, and the units that it registers would fill the memory of the process.
inline std::optional<std::string> shortText(const std::uint8_t* data, std::size_t size,
                                            std::size_t longest) {
    return size <= longest ? std::optional<std::string>(std::in_place, data, data + size)
                           : std::nullopt;
}

class CInput {
public:
    CInput(const std::uint8_t* data, std::size_t size) : m_Position(data), m_End(data + size) {}

    bool empty() const { return m_Position == m_End; }

    std::uint8_t byte() { return empty() ? std::uint8_t{0} : *m_Position++; }

    /// Returns a number from 0 to `count` - 1. `count` is at most 256.
    std::size_t below(std::size_t count) { return byte() % count; }

    std::uint32_t word() {
        std::uint32_t result = 0;
        for (int i = 0; i < 4; ++i) {
            result = result << 8 | byte();
        }
        return result;
    }

    /// Returns any double, made from the next eight bytes.
    double real() {
        const std::uint64_t high = word();
        const std::uint64_t bits = high << 32 | word();
        double result = 0.0;
        std::memcpy(&result, &bits, sizeof result);
        return result;
    }

    /// Returns a text of at most `longest` bytes. The next byte of the input is its length.
    std::string text(std::size_t longest) {
        const auto left = static_cast<std::size_t>(m_End - m_Position);
        const std::size_t length = std::min(below(longest + 1), left > 0 ? left - 1 : 0);
        const std::string result(m_Position, m_Position + length);
        m_Position += length;
        return result;
    }

private:
    const std::uint8_t* m_Position;
    const std::uint8_t* m_End;
};

}  // namespace mensor::fuzz

#endif  // MENSOR_FUZZ_INPUT_H
