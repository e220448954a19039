#include "tests/EndToEnd/AppTrial.h"

#include "LaunchKit/Targets/DesktopTarget.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <nlohmann/json.hpp>

#include <algorithm>
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

// The user's files that belong to clones.
bool belongsToAClone(const std::string& file) {
    return file.starts_with("home/QuorvelInstances") || file.starts_with("home/Applications");
}

// Folders that clones, entries and icons are in stay: they are the user's as soon as they exist.
bool isFile(const fs::path& path) {
    const fs::file_status status = fs::symlink_status(path);
    return fs::exists(status) && !fs::is_directory(status);
}

// The value of StartupWMClass in the entry that was published for the clone with that runner.
std::string wordOfEntry(const fs::path& applications, const std::string& runner) {
    for (const auto& entry : fs::directory_iterator(applications)) {
        const std::string text = "\n" + read(entry.path());
        constexpr std::string_view key = "\nStartupWMClass=";
        const std::size_t at = text.find(key);
        if (text.find("\nTryExec=" + runner + "\n") != std::string::npos &&
            at != std::string::npos) {
            const std::size_t begin = at + key.size();
            return text.substr(begin, text.find('\n', begin) - begin);
        }
    }
    return {};
}

} // namespace

AppTrial::AppTrial(OrdinarySession::DataFolders dataFolders, std::string entry)
    : session_(dataFolders),
      entry_(std::move(entry)) {
    // Where that user can reach them, wherever the build is.
    const fs::path installed = session_.folder() / "quorvel";
    fs::create_directories(installed / "bin");
    fs::copy_file(QUORVEL_CTL, installed / "bin/quorvelctl");
    fs::copy_file(runnerProgram(), installed / "bin/quorvel-runner");
    for (const auto& [variable, program] :
         {std::pair("QUORVEL_WINDOW_NAMES", fs::path(QUORVEL_WINDOW_NAMES_PROGRAM)),
          std::pair("QUORVEL_LINK_DOOR", fs::path(QUORVEL_LINK_DOOR_PROGRAM))}) {
        fs::copy_file(program, installed / "bin" / program.filename());
        session_.set(variable, installed / "bin" / program.filename());
    }
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

AppTrialReport AppTrial::run(const std::vector<std::string>& arguments) {
    arguments_ = arguments;
    try {
        findApplication();
        if (report_.name.empty()) {
            return report_;
        }
        const FileStates before = session_.userFiles();
        const std::string settingsBefore = settings();
        const std::set<std::string> sharedBefore = session_.sharedFiles();
        create(firstName, report_.first);
        create(secondName, report_.second);
        const FileStates created = session_.userFiles();
        open(firstName, report_.first);
        open(secondName, report_.second);

        report_.settingsChanged = settings() != settingsBefore;
        noteWritesSince(created);
        for (const std::string& file : session_.sharedFiles()) {
            if (!sharedBefore.contains(file)) {
                report_.shared.push_back(file);
            }
        }
        openOriginal();
        lookAround();
        // Programs write when they end, too, and what the original writes is not the clones'.
        endOriginal();
        const FileStates withoutOriginal = settledFiles();
        end(firstName, report_.first);
        end(secondName, report_.second);
        noteWritesSince(withoutOriginal);
        for (const char* name : {firstName, secondName}) {
            succeed({"delete", name, "--including-data", "--yes"});
        }
        noteLeftovers(before, created);
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

void AppTrial::create(const std::string& name, CopyReport& copy) const {
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
    copy.home =
        session_.home().string() + clone["config"]["instanceHome"].get<std::string>().substr(1);
    copy.runner = clone["bundleURL"].get<std::string>() + "/Contents/MacOS/runner";
    copy.word = wordOfEntry(session_.dataHome() / "applications", copy.runner);
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

// A copy that handed its work to another has ended, or has lost its window.
void AppTrial::lookAround() {
    const std::map<pid_t, SessionProcess> processes = session_.processes();
    const auto program = [&](const CopyReport& one) {
        return one.window && processes.contains(one.window->process)
                   ? processes.at(one.window->process).executable
                   : std::string();
    };
    for (CopyReport* copy : {&report_.first, &report_.second, &report_.original}) {
        copy->window = windowOf(copy->home);
        copy->runs = std::any_of(processes.begin(), processes.end(), [&](const auto& process) {
            // The session's own programs run in the original's home too.
            return homeOf(process.first, processes) == copy->home &&
                   (copy != &report_.original || process.second.executable == program(*copy) ||
                    process.second.executable == program(report_.first));
        });
    }
    originalProgram_ = program(report_.original);
    for (CopyReport* copy : {&report_.first, &report_.second}) {
        for (const auto& item : fs::recursive_directory_iterator(copy->home)) {
            copy->data.insert(item.path().lexically_relative(copy->home));
        }
    }
}

void AppTrial::endOriginal() {
    const auto originals = [&] {
        std::vector<std::string> numbers;
        const std::map<pid_t, SessionProcess> processes = session_.processes();
        for (const auto& [number, process] : processes) {
            if (report_.original.window && process.executable == originalProgram_ &&
                homeOf(number, processes) == report_.original.home) {
                numbers.push_back(std::to_string(number));
            }
        }
        return numbers;
    };
    for (const char* signal : {"TERM", "KILL"}) {
        std::vector<std::string> command{"/bin/kill", "-s", signal};
        const std::vector<std::string> numbers = originals();
        command.insert(command.end(), numbers.begin(), numbers.end());
        static_cast<void>(session_.run(command));
        if (waitUntil([&] { return originals().empty(); }, longestEnd)) {
            return;
        }
    }
}

// Services that the original used may write a little later.
FileStates AppTrial::settledFiles() const {
    FileStates files = session_.userFiles();
    const auto settled = [&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        const FileStates last = std::exchange(files, session_.userFiles());
        return last == files;
    };
    static_cast<void>(waitUntil(settled, longestEnd));
    return files;
}

void AppTrial::noteWritesSince(const FileStates& states) {
    for (const std::string& file : newFiles(states)) {
        if (!belongsToAClone(file)) {
            report_.writtenOutside.push_back(file);
        }
    }
}

// Where the original may write, only what was there before it started counts.
void AppTrial::noteLeftovers(const FileStates& before, const FileStates& created) {
    const fs::path user = session_.folder() / "user";
    const std::string data = session_.dataHome().lexically_relative(user);
    for (const std::string& file : newFiles(before)) {
        const bool isOurs = belongsToAClone(file) || file.starts_with(data + "/applications") ||
                            file.starts_with(data + "/icons") || created.contains(file);
        if (isOurs && isFile(user / file)) {
            report_.left.push_back(file);
        }
    }
}

void AppTrial::end(const std::string& name, const CopyReport& copy) {
    for (const auto& [number, process] : session_.processes()) {
        if (process.executable == copy.runner) {
            static_cast<void>(session_.run({"/bin/kill", std::to_string(number)}));
        }
    }
    const auto ended = [&] {
        const auto processes = session_.processes();
        return std::none_of(processes.begin(), processes.end(), [&](const auto& process) {
            return homeOf(process.first, processes) == copy.home;
        });
    };
    if (!waitUntil(ended, longestEnd)) {
        report_.left.push_back("a process of " + name);
    }
}

// A program that overwrites its environment, as Chromium does, has the home of its parent.
std::string AppTrial::homeOf(pid_t number, const std::map<pid_t, SessionProcess>& processes) const {
    for (auto process = processes.find(number); process != processes.end();
         process = processes.find(process->second.parent)) {
        for (const CopyReport* copy : {&report_.first, &report_.second}) {
            if (process->second.executable == copy->runner && process->first != number) {
                return copy->home;
            }
        }
        if (!process->second.home.empty()) {
            return process->second.home;
        }
    }
    return session_.home();
}

std::optional<SessionWindow> AppTrial::windowOf(const std::string& home) const {
    const std::map<pid_t, SessionProcess> processes = session_.processes();
    for (const SessionWindow& window : session_.windows()) {
        if (!window.isSecondary && processes.contains(window.process) &&
            homeOf(window.process, processes) == home) {
            return window;
        }
    }
    return std::nullopt;
}

std::string AppTrial::settings() const {
    const auto listed = session_.run({"/usr/bin/gsettings", "list-recursively"});
    if (listed.status != 0) {
        throw std::runtime_error("the settings can't be listed: " + listed.output);
    }
    return listed.output;
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
