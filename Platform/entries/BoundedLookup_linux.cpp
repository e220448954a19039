#include "Platform/entries/BoundedLookup_linux.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t maxThreads = 32;

using Files = std::vector<std::string>;

// Outlives the caller as long as a thread waits for an answer.
struct Answers {
    std::function<bool(const std::string&)> isPresent{};
    std::mutex guard{};
    std::condition_variable changed{};
    std::set<std::string> present{};
    std::size_t given = 0;
    std::size_t waitingFor = 0; ///< threads
};

void look(const std::shared_ptr<Answers>& answers, const Files& files) {
    for (const std::string& file : files) {
        const bool isPresent = answers->isPresent(file);
        const std::lock_guard lock(answers->guard);
        ++answers->given;
        if (isPresent) {
            answers->present.insert(file);
        }
    }
    const std::lock_guard lock(answers->guard);
    --answers->waitingFor;
    answers->changed.notify_one();
}

// What the other threads find is not lost because the system refuses one.
void startLooking(const std::shared_ptr<Answers>& answers, Files files) {
    try {
        std::thread(look, answers, std::move(files)).detach();
    } catch (const std::system_error&) {
        const std::lock_guard lock(answers->guard);
        --answers->waitingFor;
    }
}

// The files of one folder stay together.
std::vector<Files> sharesOf(const std::set<std::string>& files) {
    std::map<fs::path, Files> folders;
    for (const std::string& file : files) {
        folders[fs::path(file).parent_path()].push_back(file);
    }
    std::vector<Files> shares(std::min(folders.size(), maxThreads));
    std::size_t next = 0;
    for (auto& [folder, names] : folders) {
        Files& share = shares[next++ % shares.size()];
        share.insert(share.end(), names.begin(), names.end());
    }
    return shares;
}

std::shared_ptr<Answers> startLookingAt(std::vector<Files> shares, const PresenceCheck& isPresent) {
    auto answers = std::make_shared<Answers>();
    answers->isPresent = isPresent;
    answers->waitingFor = shares.size();
    for (Files& share : shares) {
        startLooking(answers, std::move(share));
    }
    return answers;
}

// Returns whether all have answered.
bool isDoneWithin(std::chrono::milliseconds patience, Answers& answers,
                  std::unique_lock<std::mutex>& lock) {
    return answers.changed.wait_for(lock, patience, [&] { return answers.waitingFor == 0; });
}

} // namespace

std::set<std::string> presentAmong(const std::set<std::string>& files,
                                   const PresenceCheck& isPresent) {
    const auto answers = startLookingAt(sharesOf(files), isPresent);
    std::unique_lock lock(answers->guard);
    (void)isDoneWithin(std::chrono::seconds(2), *answers, lock);
    return answers->present;
}

std::set<std::string> presentInLists(std::vector<std::vector<std::string>> lists,
                                     const PresenceCheck& isPresent,
                                     std::chrono::milliseconds patience) {
    const auto answers = startLookingAt(std::move(lists), isPresent);
    std::unique_lock lock(answers->guard);
    std::size_t before = 0;
    do {
        before = answers->given;
    } while (!isDoneWithin(patience, *answers, lock) && answers->given != before);
    return answers->present;
}

} // namespace quorvel
