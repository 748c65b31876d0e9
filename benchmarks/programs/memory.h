// memory.h: prints the memory that the process uses.
#ifndef MENSOR_BENCHMARKS_MEMORY_H
#define MENSOR_BENCHMARKS_MEMORY_H

#include <malloc.h>

#include <cstdio>

/// Prints "<bytes of heap in use> <bytes resident>". The second number counts all mappings of the
/// process.
inline void printMemory() {
    const struct mallinfo2 heap = mallinfo2();  // before this function allocates memory
    unsigned long resident = 0;
    if (std::FILE* const maps = std::fopen("/proc/self/smaps", "r")) {
        char line[512];
        while (std::fgets(line, sizeof line, maps)) {
            unsigned long kilobytes = 0;
            if (std::sscanf(line, "Rss: %lu kB", &kilobytes) == 1) {
                resident += kilobytes * 1024;
            }
        }
        std::fclose(maps);
    }
    std::printf("%zu %lu\n", heap.uordblks + heap.hblkhd, resident);
}

#endif  // MENSOR_BENCHMARKS_MEMORY_H
