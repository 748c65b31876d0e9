// memory.h: prints what the process uses by now, when its program was started with "memory".
#ifndef MENSOR_BENCHMARKS_MEMORY_H
#define MENSOR_BENCHMARKS_MEMORY_H

#include <malloc.h>

#include <cstdio>

/// Prints "<bytes of heap in use> <bytes resident>", the latter over all mappings of the process.
inline void printMemory() {
    const struct mallinfo2 heap = mallinfo2();  // before this function uses any itself
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
