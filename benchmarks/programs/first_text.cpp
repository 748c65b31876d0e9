// first_text.cpp: prints the nanoseconds that the exact library needs for the first text of a process. The text
// is the argument of the program, so that its memory has been used before, as that of a text that was read from
// somewhere. The clock has been read before, too.
#include <chrono>
#include <cstdio>

#include "mensor_exact/Reading.h"

int main(int, char** arguments) {
    std::chrono::steady_clock::now();
    const auto before = std::chrono::steady_clock::now();
    const bool isRead = static_cast<bool>(mensor::exact::tryRead(arguments[1]));
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - before;
    std::printf("%.17g\n", time.count());
    return isRead ? 0 : 1;
}
