#include "Platform/desktop/Workspace.h"

#include "Base/BundleLayout.h"
#include "Base/BundleName.h"
#include "Platform/desktop/FileManager_linux.h"
#include "Platform/desktop/OsRelease_linux.h"
#include "Platform/desktop/ProcessTable_linux.h"
#include "Platform/desktop/StartWatch_linux.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/files/FileLock.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/PropertyListFile.h"
#include "Platform/processes/FocusRequest.h"
#include "Platform/processes/Process.h"
#include "Platform/processes/ProcessFamily.h"
#include "Platform/processes/ProcessStat_linux.h"
#include "Platform/windows/WindowActivation_linux.h"

#include <cstdio>
#include <sys/utsname.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <mutex>
#include <system_error>
#include <vector>

namespace quorvel {
namespace {

std::filesystem::path executableIn(const std::filesystem::path& bundle) {
    const auto dictionary = readPropertyList(infoPlistOf(bundle), {"CFBundleExecutable"});
    if (!dictionary) {
        throw PlatformError(std::make_error_code(std::errc::no_such_file_or_directory), bundle,
                            "opened");
    }
    return executableOf(bundle, PropertyList::stringFor(*dictionary, "CFBundleExecutable")
                                    .value_or(bundleFallbackName(bundle)));
}

// Serializes concurrent opens of a bundle, also by other programs, so that only one of them starts
// it. No open takes longer than the limit: a lock that is held longer is not an open in progress.
std::optional<FileLock> lockBundle(const std::filesystem::path& bundle) {
    constexpr std::chrono::seconds limit{2};
    try {
        return FileLock::takeFolder(bundle, limit);
    } catch (const PlatformError&) {
        return std::nullopt; // the file system has no locks, or what is opened next says why
    }
}

// The window of an application that was started this recently comes to the front by itself.
constexpr std::chrono::seconds startsWithin{10};

bool hasJustStarted(pid_t process) {
    const auto stat = processStat(process);
    return stat && ageOf(*stat) < startsWithin;
}

// Returns the class by which the desktop matches a clone's windows to its menu entry; empty for any
// other application.
std::string windowClassOf(const std::filesystem::path& bundle) {
    std::error_code code;
    const std::string clone = std::filesystem::canonical(bundle, code).string();
    const auto published = code ? std::nullopt : publishedEntryOf(clone);
    return published ? published->entry.startupWmClass : std::string();
}

// Every process of the application in the bundle, whose topmost one this is.
WindowOwner ownerOf(pid_t topmost, const std::filesystem::path& bundle) {
    WindowOwner owner{.processes = {topmost}, .windowClass = windowClassOf(bundle)};
    for (const ProcessIdentity& process : cloneProcesses(topmost)) {
        owner.processes.insert(process.pid);
    }
    return owner;
}

// A window that is to come to the front.
struct Activation {
    pid_t process;
    std::filesystem::path bundle;
    std::string token;
};

// Lets a window come to the front that the started program shows, or asks another to show.
Environment variablesWith(const std::string& token) {
    return token.empty()
               ? Environment{}
               : Environment{{"XDG_ACTIVATION_TOKEN", token}, {"DESKTOP_STARTUP_ID", token}};
}

// The clone itself may know how to use the token. A second start passes it on to one that is
// running.
bool bringsItselfToFront(const Activation& activation) {
    if (activation.token.empty()) {
        return false;
    }
    Environment variables = variablesWith(activation.token);
    variables.emplace(focusVariable, "1");
    try {
        return startAndWait(executableIn(activation.bundle), variables);
    } catch (const PlatformError&) {
        return false;
    }
}

std::optional<PlatformError> failureOf(const Activation& activation) {
    const auto failure = bringToFront(ownerOf(activation.process, activation.bundle));
    if (!failure || hasJustStarted(activation.process) ||
        (*failure == ActivationFailure::notAllowed && bringsItselfToFront(activation))) {
        return std::nullopt;
    }
    return activationError(*failure, activation.bundle);
}

class LinuxWorkspace final : public Workspace {
public:
    explicit LinuxWorkspace(ActivationTokenSource tokens) : tokens_(std::move(tokens)) {}

    // Starting a process is quick enough for the calling thread. Its report, and its end, are
    // waited for in the background.
    void openApplication(const std::filesystem::path& bundle, bool activates,
                         Completion completion) override {
        std::optional<PlatformError> error;
        try {
            const std::string token = activates && tokens_ ? tokens_() : std::string();
            const std::optional<FileLock> lock = lockBundle(bundle);
            const std::optional<pid_t> running = runningProcess(bundle);
            if (running && activates) {
                activate({*running, bundle, token}, completion);
                return;
            }
            if (!running) {
                StartedProgram program = startProgram(executableIn(bundle), variablesWith(token));
                awaitCommandLine(program.process.identifier());
                starts_.watch(std::move(program), bundle, std::move(completion));
                return;
            }
        } catch (const PlatformError& failure) {
            error = failure;
        }
        completion(std::move(error));
    }

    void reveal(const std::filesystem::path& item) override { showInFileManager(item); }

    RunningApplications runningApplications() override {
        return RunningApplications(processes_.applications());
    }

    OperatingSystemVersion operatingSystemVersion() const override {
        utsname names{};
        OperatingSystemVersion version;
        if (::uname(&names) == 0) {
            // NOLINTNEXTLINE(cert-err34-c): zeros if the release has no numbers.
            (void)std::sscanf(names.release, "%d.%d", &version.major, &version.minor);
        }
        version.distribution = distribution();
        if (version.distribution.empty()) {
            version.distribution =
                "Linux " + std::to_string(version.major) + "." + std::to_string(version.minor);
        }
        return version;
    }

private:
    std::optional<pid_t> runningProcess(const std::filesystem::path& bundle) {
        std::error_code code;
        const std::filesystem::path resolved = std::filesystem::canonical(bundle, code);
        const auto running = processes_.applications();
        const auto found =
            std::find_if(running.begin(), running.end(), [&](const auto& application) {
                return application.bundleURL == resolved;
            });
        return code || found == running.end() ? std::nullopt : std::optional(found->pid);
    }

    // In the background: a window manager takes its time.
    void activate(const Activation& activation, const Completion& completion) {
        try {
            const std::lock_guard guard(mutex_);
            std::erase_if(activations_, [](const std::future<void>& earlier) {
                return earlier.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
            });
            activations_.push_back(std::async(std::launch::async, [activation, completion] {
                completion(failureOf(activation));
            }));
            return;
        } catch (const std::system_error&) {
            // Without a thread, the caller has to wait.
        }
        completion(failureOf(activation));
    }

    ActivationTokenSource tokens_;
    ProcessTable processes_;
    StartWatch starts_;
    std::mutex mutex_{};
    std::vector<std::future<void>> activations_{}; ///< their destructors wait
};

} // namespace

std::unique_ptr<Workspace> makeSystemWorkspace(ActivationTokenSource tokens) {
    return std::make_unique<LinuxWorkspace>(std::move(tokens));
}

} // namespace quorvel
