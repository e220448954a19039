#include "LaunchKit/RunnerLocator.h"

#include "Base/BundleLayout.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/MainExecutable.h"

namespace quorvel {
namespace fs = std::filesystem;

ApplicationFolders ApplicationFolders::current() {
    const fs::path executable = mainExecutable();
    if (executable.empty()) {
        return {};
    }
    const fs::path folder = executable.parent_path();
    const fs::path bundle = folder.parent_path().parent_path();
    const bool inBundle = folder == executablesOf(bundle);
    return {inBundle ? fs::path(resourcesOf(bundle)) : folder.parent_path() / "libexec/quorvel",
            folder};
}

namespace RunnerLocator {

std::vector<fs::path> candidates(const ApplicationFolders& folders) {
    std::vector<fs::path> paths;
    for (const auto& folder : {folders.resources, folders.executables}) {
        if (folder) {
            paths.push_back(*folder / runnerName);
        }
    }
    std::error_code code;
    const fs::path current = fs::current_path(code);
    if (!code) {
        for (const char* configuration : {"debug", "release"}) {
            paths.push_back(current / ".build" / configuration / runnerName);
        }
    }
    return paths;
}

std::optional<fs::path> locate(const ApplicationFolders& folders) {
    for (fs::path& path : candidates(folders)) {
        if (isExecutableFile(path)) {
            return std::move(path);
        }
    }
    return std::nullopt;
}

} // namespace RunnerLocator
} // namespace quorvel
