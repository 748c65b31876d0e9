// pi.h: the first bits of π. Not installed.
#ifndef MENSOR_EXACT_PI_H
#define MENSOR_EXACT_PI_H

#include <cstdint>

namespace mensor::exact {

/// π·2^PiBits, rounded down, the highest word first.
constexpr int PiBits = 384;
constexpr std::uint64_t PiWords[] = {0x3,
                                     0x243F6A8885A308D3,
                                     0x13198A2E03707344,
                                     0xA4093822299F31D0,
                                     0x082EFA98EC4E6C89,
                                     0x452821E638D01377,
                                     0xBE5466CF34E90C6C};

}  // namespace mensor::exact

#endif  // MENSOR_EXACT_PI_H
