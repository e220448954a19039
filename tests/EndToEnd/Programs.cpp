#include "tests/EndToEnd/Programs.h"

#include "Platform/files/FileReading.h"
#include "tests/support/Waiting.h"

#include <charconv>
#include <csignal>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <unistd.h>

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t outputLimit = std::size_t{1} << 20U;

// Every process of the throw-away home's clones, including those with another parent.
std::vector<pid_t> processesBelow(const fs::path& folder) {
    return processesWhose([&](const std::string& commandLine) {
        return commandLine.find(folder.string()) != std::string::npos;
    });
}

} // namespace

QuorvelctlInAHome::QuorvelctlInAHome() : environment(currentEnvironment()) {
    environment["HOME"] = home.path().string();
    environment["CFFIXED_USER_HOME"] = home.path().string();
    for (const char* leading : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "DISPLAY",
                                "WAYLAND_DISPLAY", "XDG_CURRENT_DESKTOP"}) {
        environment.erase(leading);
    }
}

QuorvelctlInAHome::~QuorvelctlInAHome() {
    for (const int signal : {SIGTERM, SIGKILL}) {
        for (const pid_t pid : processesBelow(home.path())) {
            ::kill(pid, signal);
        }
        if (waitUntil([&] { return processesBelow(home.path()).empty(); },
                      std::chrono::seconds(10))) {
            break;
        }
    }
}

std::string QuorvelctlInAHome::outcomeOf(const std::vector<std::string>& arguments) {
    // By way of a shell, so that the exit status and both streams come back at once.
    Process::Options options;
    options.executable = "/bin/sh";
    options.arguments = {"-c", R"("$0" "$@" 2>&1 || echo "FAILED $?")", program.string()};
    options.arguments.insert(options.arguments.end(), arguments.begin(), arguments.end());
    options.environment = environment;
    return Process::capture(options, outputLimit);
}

std::string QuorvelctlInAHome::run(const std::vector<std::string>& arguments) {
    std::string output = outcomeOf(arguments);
    if (output.find("FAILED ") != std::string::npos) {
        throw std::runtime_error("quorvelctl " + arguments.front() + ": " + output);
    }
    return output;
}

nlohmann::json QuorvelctlInAHome::json(std::vector<std::string> arguments) {
    arguments.emplace_back("--json");
    return nlohmann::json::parse(run(arguments));
}

bool QuorvelctlInAHome::isListedAsRunning(const std::string& name) {
    for (const nlohmann::json& clone : json({"list"})) {
        if (clone["config"]["displayName"] == name) {
            return clone["running"];
        }
    }
    return false;
}

fs::path QuorvelctlInAHome::data(const std::string& name) const {
    return home.path() / "QuorvelInstances" / name;
}

std::string QuorvelctlInAHome::log(const std::string& name) const {
    return read(data(name) / "quorvel-instance.log");
}

std::vector<pid_t> processesWhose(const std::function<bool(const std::string&)>& matches) {
    std::vector<pid_t> found;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        pid_t pid = 0;
        const auto result = std::from_chars(name.data(), name.data() + name.size(), pid);
        if (result.ptr != name.data() + name.size() || pid == ::getpid()) {
            continue;
        }
        // It may have ended just then.
        const auto commandLine = readFile(entry.path() / "cmdline", outputLimit);
        if (commandLine && matches(*commandLine)) {
            found.push_back(pid);
        }
    }
    return found;
}

std::optional<pid_t> runnerOf(const fs::path& wrapper) {
    const std::string executable = (wrapper / "Contents/MacOS/runner").string();
    const auto found = processesWhose(
        [&](const std::string& commandLine) { return commandLine.starts_with(executable); });
    return found.empty() ? std::nullopt : std::optional(found.front());
}

} // namespace quorvel::testing
