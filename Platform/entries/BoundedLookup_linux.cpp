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
constexpr std::chrono::seconds patience{2};

using Files = std::vector<std::string>;

// Outlives the caller as long as a thread waits for an answer.
struct Answers {
    std::function<bool(const std::string&)> isPresent{};
    std::mutex guard{};
    std::condition_variable changed{};
    std::set<std::string> present{};
    std::size_t waitingFor = 0;
};

void look(const std::shared_ptr<Answers>& answers, const Files& files) {
    for (const std::string& file : files) {
        if (answers->isPresent(file)) {
            const std::lock_guard lock(answers->guard);
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

} // namespace

std::set<std::string> presentAmong(const std::set<std::string>& files,
                                   const std::function<bool(const std::string&)>& isPresent) {
    std::vector<Files> shares = sharesOf(files);
    const auto answers = std::make_shared<Answers>();
    answers->isPresent = isPresent;
    answers->waitingFor = shares.size();
    for (Files& share : shares) {
        startLooking(answers, std::move(share));
    }
    std::unique_lock lock(answers->guard);
    (void)answers->changed.wait_for(lock, patience, [&] { return answers->waitingFor == 0; });
    return answers->present;
}

} // namespace quorvel
