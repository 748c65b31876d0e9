// OperatorNew.h: an operator new that counts and can fail. It takes the place of the program's, and
// so of that of every library the program loads. Included by one source of a program.
//
//     beforeAllocation = [](long number) {
//         if (number == 3) throw std::bad_alloc();
//     };
//     allocations = 0;
//     ...                              // the third allocation of this thread fails
//     beforeAllocation = nullptr;
#ifndef MENSOR_TESTS_OPERATORNEW_H
#define MENSOR_TESTS_OPERATORNEW_H

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace mensor {

/// The blocks that operator new has given and operator delete has not taken back.
inline std::atomic<long> liveBlocks{0};
inline std::atomic<long> liveBytes{0};  ///< in these blocks
inline std::atomic<long> peakBytes{0};  ///< the most that these have been since it was set

/// Called at each allocation of this thread with its number, counted from 1; may throw. Must not
/// allocate.
inline thread_local void (*beforeAllocation)(long number) = nullptr;
inline thread_local long allocations = 0;  ///< while there is such a function

inline void* allocate(std::size_t size) {
    if (beforeAllocation != nullptr) {
        beforeAllocation(++allocations);
    }
    void* const memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    ++liveBlocks;
    const long live = liveBytes += static_cast<long>(malloc_usable_size(memory));
    if (live > peakBytes) {
        peakBytes = live;
    }
    return memory;
}

// Not inlined, lest the compiler see only half of the pair and warn of a mismatch.
[[gnu::noinline]] inline void release(void* memory) {
    if (memory != nullptr) {
        --liveBlocks;
        liveBytes -= static_cast<long>(malloc_usable_size(memory));
        std::free(memory);
    }
}

}  // namespace mensor

void* operator new(std::size_t size) { return mensor::allocate(size); }
void* operator new[](std::size_t size) { return mensor::allocate(size); }
void operator delete(void* memory) noexcept { mensor::release(memory); }
void operator delete[](void* memory) noexcept { mensor::release(memory); }
void operator delete(void* memory, std::size_t) noexcept { mensor::release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { mensor::release(memory); }

// The memory resources of the standard library come here with the alignment that malloc gives.
void* operator new(std::size_t size, std::align_val_t alignment) {
    if (static_cast<std::size_t>(alignment) > alignof(std::max_align_t)) {
        throw std::bad_alloc();
    }
    return mensor::allocate(size);
}
void operator delete(void* memory, std::align_val_t) noexcept { mensor::release(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    mensor::release(memory);
}

#endif  // MENSOR_TESTS_OPERATORNEW_H
