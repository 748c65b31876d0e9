// threads.h: threads that start at once, and a thread with a small stack.
#ifndef MENSOR_TESTS_THREADS_H
#define MENSOR_TESTS_THREADS_H

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

namespace mensor {

/// Runs `work(thread, round)` in `count` threads for each of `rounds` rounds, and returns when all
/// are done. No thread begins a round before all threads have ended the previous one.
inline void race(int count, int rounds, const std::function<void(int, int)>& work) {
    std::atomic<int> arrivals{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < count; ++thread) {
        threads.emplace_back([&, thread] {
            for (int round = 0; round < rounds; ++round) {
                ++arrivals;
                while (arrivals < count * (round + 1)) {
                    std::this_thread::yield();
                }
                work(thread, round);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Runs `work(0)` ... `work(count - 1)` at the same time, one thread each.
inline void race(int count, const std::function<void(int)>& work) {
    race(count, 1, [&work](int thread, int) { work(thread); });
}

/// Runs `work` in a thread that has no more than `bytes` of stack.
inline void runWithStack(std::size_t bytes, std::function<void()> work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
    pthread_t thread;
    const auto run = [](void* argument) -> void* {
        (*static_cast<std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    ASSERT_EQ(pthread_attr_destroy(&attributes), 0);
}

}  // namespace mensor

#endif  // MENSOR_TESTS_THREADS_H
