#include "Platform/desktop/ParallelLoop.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

namespace quorvel {

void forEachIndex(std::size_t count, const std::function<void(std::size_t)>& work) {
    constexpr std::size_t share = 16; // taken at once, since one alone is soon done
    std::atomic<std::size_t> next{0};
    const auto takeShares = [&] {
        for (std::size_t start = next.fetch_add(share); start < count;
             start = next.fetch_add(share)) {
            for (std::size_t index = start; index < std::min(start + share, count); ++index) {
                work(index);
            }
        }
    };
    const std::size_t useful = std::min<std::size_t>(
        std::max(1U, std::thread::hardware_concurrency()), (count + share - 1) / share);
    std::vector<std::thread> workers;
    try {
        while (workers.size() + 1 < useful) {
            workers.emplace_back(takeShares);
        }
    } catch (const std::system_error&) {
        // The threads that could be started are enough.
    }
    takeShares();
    for (std::thread& worker : workers) {
        worker.join();
    }
}

} // namespace quorvel
