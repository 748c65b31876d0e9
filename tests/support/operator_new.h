// operator_new.h: an operator new that counts and can fail. It replaces that of the program, and so
// that of every library that the program loads. Include it in one source of a program.
//
//     beforeAllocation = [](long number) {
//         if (number == 3) throw std::bad_alloc();
//     };
//     allocations = 0;
//     ...                              // the third allocation of this thread fails
//     beforeAllocation = nullptr;
#ifndef MENSOR_TESTS_OPERATOR_NEW_H
#define MENSOR_TESTS_OPERATOR_NEW_H

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace mensor {

/// The blocks from operator new that have not been deleted.
inline std::atomic<long> liveBlocks{0};
inline std::atomic<long> liveBytes{0};  ///< in these blocks
inline std::atomic<long> peakBytes{0};  ///< the maximum of liveBytes since it was set

/// Called at each allocation of this thread with its number, counted from 1. May throw. Must not
/// allocate.
inline thread_local void (*beforeAllocation)(long number) = nullptr;
inline thread_local long allocations = 0;  ///< counted while beforeAllocation is set

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

// Not inlined, because the compiler would warn about a mismatch if it inlined only one of the pair.
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
// Algorithms of the standard library ask for temporary memory in this way.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return mensor::allocate(size);
    } catch (...) {
        return nullptr;
    }
}
void operator delete(void* memory) noexcept { mensor::release(memory); }
void operator delete[](void* memory) noexcept { mensor::release(memory); }
void operator delete(void* memory, std::size_t) noexcept { mensor::release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { mensor::release(memory); }

// The memory resources of the standard library call this with the alignment of malloc.
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

#endif  // MENSOR_TESTS_OPERATOR_NEW_H
