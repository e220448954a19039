#include "LaunchKit/Icons/DecodingMemory.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace quorvel {
namespace {

std::mutex guard;
std::condition_variable givenBack;
std::size_t taken = 0;

} // namespace

DecodingMemory::DecodingMemory(std::size_t bytes) : bytes_(std::min(bytes, all)) {
    std::unique_lock lock(guard);
    givenBack.wait(lock, [this] { return bytes_ <= all - taken; });
    taken += bytes_;
}

DecodingMemory::~DecodingMemory() {
    {
        const std::lock_guard lock(guard);
        taken -= bytes_;
    }
    givenBack.notify_all();
}

} // namespace quorvel
