// first_text.cpp: prints the nanoseconds that the exact library needs for the first text of a process.
#include <chrono>
#include <cstdio>

#include "mensor_exact/Reading.h"

int main() {
    const auto before = std::chrono::steady_clock::now();
    const bool isRead = static_cast<bool>(mensor::exact::tryRead("kg·m²/s²"));
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - before;
    std::printf("%.17g\n", time.count());
    return isRead ? 0 : 1;
}
