#include "mensor/mensor_math.h"

#include <cstdint>
#include <cstring>

namespace mensor {

int floatToIntBits(float f) {
    static_assert(sizeof(float) == sizeof(std::int32_t), "IEEE 754 single precision");
    if (f != f) {
        return 0x7FC00000;
    }
    std::int32_t bits;
    std::memcpy(&bits, &f, sizeof bits);
    return bits;
}

int greatestCommonDivisor(int a, int b) {
    while (b != 0) {
        // The smallest int divided by -1 overflows, but its remainder is 0.
        const int r = b == -1 ? 0 : a % b;
        a = b;
        b = r;
    }
    return a;
}

}  // namespace mensor
