#include "Platform/processes/ParallelLoop.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

namespace quorvel {
namespace {

std::size_t processors() {
    return std::max(1U, std::thread::hardware_concurrency());
}

void run(std::size_t count, std::size_t share, std::size_t threads,
         const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next{0};
    const auto takeShares = [&] {
        for (std::size_t start = next.fetch_add(share); start < count;
             start = next.fetch_add(share)) {
            for (std::size_t index = start; index < std::min(start + share, count); ++index) {
                work(index);
            }
        }
    };
    std::vector<std::thread> workers;
    try {
        while (workers.size() + 1 < std::min(threads, (count + share - 1) / share)) {
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

} // namespace

void forEachIndex(std::size_t count, std::size_t share,
                  const std::function<void(std::size_t)>& work) {
    run(count, share, processors(), work);
}

void forEachIndexWaiting(std::size_t count, const std::function<void(std::size_t)>& work) {
    run(count, 1, std::clamp<std::size_t>(processors() * 2, 4, 16), work);
}

} // namespace quorvel
