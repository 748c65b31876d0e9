// first_text.cpp: prints how many nanoseconds the exact library takes to read a process's first text.
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
