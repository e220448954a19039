#include "tests/EndToEnd/AppTrial.h"

#include "LaunchKit/DesktopTarget.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <thread>
#include <utility>

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

constexpr auto longestStart = std::chrono::seconds(90); // of a large program on a busy machine
constexpr auto longestEnd = std::chrono::seconds(30);
constexpr auto firstName = "First";
constexpr auto secondName = "Second";

// Ends the processes of the program $0.
constexpr auto endProgram = R"sh(
for process in /proc/[0-9]*; do
  [ "$(readlink "$process/exe")" != "$0" ] || kill "${process#/proc/}"
done)sh";

// The user's files that belong to clones.
bool belongsToAClone(const std::string& file) {
    return file.starts_with("home/QuorvelInstances") || file.starts_with("home/Applications");
}

bool isEmptyFolder(const fs::path& path) {
    return fs::is_directory(fs::symlink_status(path)) && fs::is_empty(path);
}

} // namespace

AppTrial::AppTrial(OrdinarySession::DataFolders dataFolders, std::string entry,
                   std::vector<std::string> arguments)
    : session_(dataFolders),
      entry_(std::move(entry)),
      arguments_(std::move(arguments)) {
    // Where that user can reach them, wherever the build is.
    const fs::path installed = session_.folder() / "quorvel";
    fs::create_directories(installed / "bin");
    fs::copy_file(QUORVEL_CTL, installed / "bin/quorvelctl");
    fs::copy_file(runnerProgram(), installed / "bin/quorvel-runner");
    fs::copy(fs::path(QUORVEL_CTL).parent_path() / "../share", installed / "share",
             fs::copy_options::recursive);
}

Outcome AppTrial::quorvelctl(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), session_.folder() / "quorvel/bin/quorvelctl");
    return session_.run(std::move(arguments));
}

std::string AppTrial::succeed(std::vector<std::string> arguments) const {
    const std::string command = arguments.front();
    Outcome outcome = quorvelctl(std::move(arguments));
    if (outcome.status != 0) {
        throw std::runtime_error("quorvelctl " + command + ": " + outcome.output);
    }
    return std::move(outcome.output);
}

AppTrialReport AppTrial::run() {
    try {
        findApplication();
        if (report_.name.empty()) {
            return report_;
        }
        const FileStates before = session_.userFiles();
        const std::string settingsBefore = settings();
        const std::set<std::string> sharedBefore = session_.sharedFiles();
        report_.first.home = create(firstName);
        report_.second.home = create(secondName);
        const FileStates created = session_.userFiles();
        open(firstName, report_.first);
        open(secondName, report_.second);

        report_.settingsChanged = settings() != settingsBefore;
        for (const std::string& file : newFiles(created)) {
            if (!belongsToAClone(file)) {
                report_.writtenOutside.push_back(file);
            }
        }
        for (const std::string& file : session_.sharedFiles()) {
            if (!sharedBefore.contains(file)) {
                report_.shared.push_back(file);
            }
        }
        openOriginal();
        lookAround();
        remove(firstName, report_.first);
        remove(secondName, report_.second);
        for (const auto& [file, state] : created) {
            const fs::path path = session_.folder() / "user" / file;
            // The folders that clones are in are the user's as soon as they exist.
            if (!before.contains(file) && fs::exists(fs::symlink_status(path)) &&
                !isEmptyFolder(path)) {
                report_.left.push_back(file);
            }
        }
    } catch (const std::runtime_error& error) {
        report_.error = error.what();
    }
    return report_;
}

void AppTrial::findApplication() {
    for (const nlohmann::json& app : nlohmann::json::parse(succeed({"apps", "--json"}))) {
        if (app["bundleId"] == entry_) {
            report_.name = app["name"];
            entryFile_ = app["url"].get<std::string>();
        }
    }
}

std::string AppTrial::create(const std::string& name) const {
    std::vector<std::string> command{"create", "--target", entry_, "--name",
                                     name,     "--label",  name,   "--json"};
    nlohmann::json clone = nlohmann::json::parse(succeed(command));
    if (!arguments_.empty()) {
        command.emplace_back("--replace");
        std::vector<std::string> all = clone["config"]["extraArgs"];
        all.insert(all.end(), arguments_.begin(), arguments_.end());
        for (const std::string& argument : all) {
            command.push_back("--extra-arg=" + argument);
        }
        clone = nlohmann::json::parse(succeed(command));
    }
    // The home begins with "~".
    return session_.home().string() + clone["config"]["instanceHome"].get<std::string>().substr(1);
}

void AppTrial::open(const std::string& name, CopyReport& copy) {
    succeed({"open", name});
    awaitWindow(copy);
}

void AppTrial::awaitWindow(CopyReport& copy) const {
    const auto deadline = std::chrono::steady_clock::now() + longestStart;
    while (!(copy.window = windowOf(copy.home)) && std::chrono::steady_clock::now() < deadline) {
        // Each look starts a dozen processes, which take time from the one that is awaited.
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
}

void AppTrial::openOriginal() {
    const DesktopTarget target = DesktopTarget::readEntry(entryFile_);
    std::vector<std::string> command{target.program.launcher.string()};
    for (const std::string& argument : target.arguments(arguments_, {})) {
        command.push_back(argument);
    }
    session_.start(std::move(command));
    CopyReport& copy = report_.original;
    copy.home = session_.home();
    awaitWindow(copy);
}

// A copy that handed its work to another has ended by now, or has lost its window.
void AppTrial::lookAround() {
    for (CopyReport* copy : {&report_.first, &report_.second, &report_.original}) {
        copy->window = windowOf(copy->home);
    }
    for (CopyReport* copy : {&report_.first, &report_.second}) {
        for (const auto& item : fs::recursive_directory_iterator(copy->home)) {
            copy->data.insert(item.path().lexically_relative(copy->home));
        }
    }
}

void AppTrial::remove(const std::string& name, const CopyReport& copy) {
    const fs::path runner =
        session_.home() / ("Applications/" + name + ".app") / "Contents/MacOS/runner";
    static_cast<void>(session_.run({"/bin/sh", "-c", endProgram, runner.string()}));
    const auto ended = [&] {
        for (const auto& [process, home] : session_.processes()) {
            if (home == copy.home) {
                return false;
            }
        }
        return true;
    };
    if (!waitUntil(ended, longestEnd)) {
        report_.left.push_back("a process of " + name);
    }
    succeed({"delete", name, "--including-data", "--yes"});
}

std::optional<SessionWindow> AppTrial::windowOf(const std::string& home) const {
    const std::map<pid_t, std::string> homes = session_.processes();
    for (const SessionWindow& window : session_.windows()) {
        const auto process = homes.find(window.process);
        if (process != homes.end() && process->second == home && !window.isDialog) {
            return window;
        }
    }
    return std::nullopt;
}

std::string AppTrial::settings() const {
    return session_.run({"/usr/bin/gsettings", "list-recursively"}).output;
}

std::vector<std::string> AppTrial::newFiles(const FileStates& before) const {
    std::vector<std::string> files;
    for (const auto& [file, state] : session_.userFiles()) {
        const auto known = before.find(file);
        if (known == before.end() || known->second != state) {
            files.push_back(file);
        }
    }
    return files;
}

} // namespace quorvel::testing
