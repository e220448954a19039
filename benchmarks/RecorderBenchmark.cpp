// How much of a storm of new files the recorder sees, and what it costs the writer; a plain
// recursive watcher (inotifywait) is measured beside it.
#include "Platform/files/FileSystem.h"
#include "Platform/processes/Process.h"
#include "ProbeKit/FSEventProbe.h"
#include "benchmarks/Benchmarks.h"

#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <unordered_set>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;

constexpr int folderCount = 2000;
constexpr int filesInEach = 25;
constexpr int depth = 6;
constexpr int rounds = 3;

void makeFile(const std::string& path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0 || ::write(file, "x", 1) != 1) {
        throw std::runtime_error("could not write " + path);
    }
    ::close(file);
}

// Chains of nested folders, each filled with files as soon as it exists.
void makeStorm(const std::string& base) {
    std::string folder = base;
    for (int number = 0; number < folderCount; ++number) {
        if (number % depth == 0) {
            folder = base;
        }
        folder += "/" + std::to_string(number);
        ::mkdir(folder.c_str(), 0700);
        for (int file = 0; file < filesInEach; ++file) {
            makeFile(folder + "/f" + std::to_string(file));
        }
    }
}

std::size_t missing(const fs::path& base, const std::unordered_set<std::string>& seen) {
    std::size_t count = 0;
    for (const auto& item : fs::recursive_directory_iterator(base)) {
        count += seen.contains(item.path().native()) ? 0 : 1;
    }
    return count;
}

struct Recorded {
    double seconds = 0;
    std::size_t missing = 0;
    bool complete = true;
};

Recorded recordStorm(const fs::path& base) {
    createDirectories(base);
    FSEventProbe probe({base.string()});
    probe.start();
    Recorded result;
    result.seconds = secondsOf([&] { makeStorm(base.string()); });
    std::unordered_set<std::string> seen;
    for (const WriteEvent& event : probe.stopAndDrain()) {
        seen.insert(event.path);
    }
    result.missing = missing(base, seen);
    result.complete = probe.isComplete();
    fs::remove_all(base);
    return result;
}

double unwatchedStorm(const fs::path& base) {
    createDirectories(base);
    const double seconds = secondsOf([&] { makeStorm(base.string()); });
    fs::remove_all(base);
    return seconds;
}

std::string contents(const fs::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void waitUntil(const std::function<bool()>& holds) {
    while (!holds()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

// The number of paths that the other watcher missed, or std::nullopt if it is not installed.
std::optional<std::size_t> missedByOther(const fs::path& base, const fs::path& folder) {
    if (!isExecutableFile("/usr/bin/inotifywait")) {
        return std::nullopt;
    }
    createDirectories(base);
    const auto output = openForAppending(folder / "seen");
    const auto errors = openForAppending(folder / "errors");
    Process::Options options;
    options.executable = "/usr/bin/inotifywait";
    options.arguments = {"-r", "-m",       "-e",       "create", "-e",         "modify",
                         "-e", "moved_to", "--format", "%w%f",   base.string()};
    options.standardOutput = Process::ToFile{output->descriptor()};
    options.standardError = Process::ToFile{errors->descriptor()};
    Process other = Process::run(options);
    waitUntil([&] { return contents(folder / "errors").find("established") != std::string::npos; });
    makeStorm(base.string());
    // It has caught up when its output no longer grows.
    std::uintmax_t size = 0;
    do {
        size = fs::file_size(folder / "seen");
        std::this_thread::sleep_for(std::chrono::seconds(1));
    } while (fs::file_size(folder / "seen") != size);
    other.terminate();
    other.waitUntilExit();
    std::unordered_set<std::string> seen;
    std::istringstream lines(contents(folder / "seen"));
    for (std::string line; std::getline(lines, line);) {
        seen.insert(line.ends_with('/') ? line.substr(0, line.size() - 1) : line);
    }
    const std::size_t count = missing(base, seen);
    fs::remove_all(base);
    return count;
}

} // namespace

std::vector<Row> recorderRows(const fs::path& folder) {
    std::vector<double> watched;
    std::vector<double> unwatched;
    std::size_t lost = 0;
    bool complete = true;
    (void)unwatchedStorm(folder / "warm");
    for (int round = 0; round < rounds; ++round) {
        unwatched.push_back(unwatchedStorm(folder / ("u" + std::to_string(round))));
        const Recorded recorded = recordStorm(folder / ("w" + std::to_string(round)));
        watched.push_back(recorded.seconds);
        lost += recorded.missing;
        complete = complete && recorded.complete;
    }
    const auto other = missedByOther(folder / "other", folder);
    constexpr double milliseconds = 1000;
    const double cost = percentile(watched, 0.5);
    const double least = percentile(unwatched, 0.5);
    return {
        {"paths of 52,000 that are missing, beside inotifywait -r -m", static_cast<double>(lost),
         static_cast<double>(other.value_or(0)), "paths", complete ? "no overflow" : "overflow",
         other ? "0 paths" : "0 (no floor)", lost == 0},
        {"making 50,000 files in 2,000 folders, watched against not", cost * milliseconds,
         least * milliseconds, "ms", decimals(cost / least, "x"), "<= 1.30 x", cost <= 1.3 * least},
    };
}

} // namespace quorvel::benchmarks
