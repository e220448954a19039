#include "LaunchKit/Icons/DecodingMemory.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace quorvel {
namespace {

// Returns the largest number of threads that held that much at the same time.
int mostAtOnce(std::size_t bytes) {
    std::atomic<int> holding = 0;
    std::atomic<int> most = 0;
    std::vector<std::thread> threads;
    threads.reserve(12);
    for (int number = 0; number < 12; ++number) {
        threads.emplace_back([&] {
            const DecodingMemory memory(bytes);
            const int now = ++holding;
            for (int seen = most; seen < now && !most.compare_exchange_weak(seen, now);) {
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            --holding;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return most;
}

TEST(DecodingMemoryTest, IsSharedByAllThreads) {
    EXPECT_LE(mostAtOnce(DecodingMemory::all / 2), 2);
    EXPECT_EQ(mostAtOnce(DecodingMemory::all / 2 + 1), 1);
}

TEST(DecodingMemoryTest, AllowsAShareLargerThanTheTotal) {
    EXPECT_EQ(mostAtOnce(DecodingMemory::all * 10), 1);
}

TEST(DecodingMemoryTest, SmallSharesDontWait) {
    EXPECT_GT(mostAtOnce(1000), 1);
}

} // namespace
} // namespace quorvel
