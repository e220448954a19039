#include "Platform/desktop/Workspace.h"

#include "Base/BundleLayout.h"
#include "Base/BundleName.h"
#include "Platform/desktop/FileManager_linux.h"
#include "Platform/desktop/MenuEntry.h"
#include "Platform/desktop/OsRelease_linux.h"
#include "Platform/desktop/ProcessTable_linux.h"
#include "Platform/desktop/StartWatch_linux.h"
#include "Platform/desktop/WindowActivation_linux.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/PropertyListFile.h"
#include "Platform/processes/Process.h"
#include "Platform/processes/ProcessFamily.h"
#include "Platform/processes/ProcessStat_linux.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <future>
#include <mutex>
#include <thread>
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
FileHandle lockBundle(const std::filesystem::path& bundle) {
    constexpr std::chrono::milliseconds limit{2000};
    constexpr std::chrono::milliseconds nap{5};
    FileHandle folder(::open(bundle.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (::flock(folder.descriptor(), LOCK_EX | LOCK_NB) != 0 &&
           (errno == EWOULDBLOCK || errno == EINTR) &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(nap);
    }
    return folder;
}

// The window of an application that was started this recently comes to the front by itself.
constexpr double startsWithin = 10; // seconds

bool hasJustStarted(pid_t process) {
    timespec now{};
    const auto stat = processStat(process);
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return stat &&
           static_cast<double>(now.tv_sec) - static_cast<double>(stat->started) /
                                                 static_cast<double>(::sysconf(_SC_CLK_TCK)) <
               startsWithin;
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

class LinuxWorkspace final : public Workspace {
public:
    // Starting a process is quick enough for the calling thread. Its report, and its end, are
    // waited for in the background.
    void openApplication(const std::filesystem::path& bundle, bool activates,
                         Completion completion) override {
        std::optional<PlatformError> error;
        try {
            const FileHandle lock = lockBundle(bundle);
            const std::optional<pid_t> running = runningProcess(bundle);
            if (running && activates) {
                activate(*running, bundle, std::move(completion));
                return;
            }
            if (!running) {
                StartedProgram program = startProgram(executableIn(bundle));
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
    void activate(pid_t process, const std::filesystem::path& bundle, Completion completion) {
        const std::lock_guard guard(mutex_);
        std::erase_if(activations_, [](const std::future<void>& activation) {
            return activation.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        });
        activations_.push_back(
            std::async(std::launch::async, [process, bundle, completion = std::move(completion)] {
                const auto failure = bringToFront(ownerOf(process, bundle));
                completion(failure && !hasJustStarted(process)
                               ? std::optional(activationError(*failure, bundle))
                               : std::nullopt);
            }));
    }

    ProcessTable processes_;
    StartWatch starts_;
    std::mutex mutex_{};
    std::vector<std::future<void>> activations_{}; ///< their destructors wait
};

} // namespace

std::unique_ptr<Workspace> makeSystemWorkspace() {
    return std::make_unique<LinuxWorkspace>();
}

} // namespace quorvel
