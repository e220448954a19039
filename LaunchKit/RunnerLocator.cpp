#include "LaunchKit/RunnerLocator.h"

#include "Platform/files/FileSystem.h"
#include "Platform/processes/MainExecutable.h"

namespace quorvel {
namespace fs = std::filesystem;

ApplicationFolders ApplicationFolders::ofThisProgram() {
    const fs::path executable = mainExecutable();
    if (executable.empty()) {
        return {};
    }
    const fs::path folder = executable.parent_path();
    const bool inBundle =
        folder.filename() == "MacOS" && folder.parent_path().filename() == "Contents";
    return {folder.parent_path() / (inBundle ? "Resources" : "libexec/quorvel"), folder};
}

namespace RunnerLocator {

std::vector<fs::path> candidates(const ApplicationFolders& folders) {
    std::vector<fs::path> places;
    for (const auto& folder : {folders.resources, folders.executables}) {
        if (folder) {
            places.push_back(*folder / runnerName);
        }
    }
    std::error_code code;
    const fs::path current = fs::current_path(code);
    if (!code) {
        for (const char* configuration : {"debug", "release"}) {
            places.push_back(current / ".build" / configuration / runnerName);
        }
    }
    return places;
}

std::optional<fs::path> locate(const ApplicationFolders& folders) {
    for (fs::path& place : candidates(folders)) {
        if (isExecutableFile(place)) {
            return std::move(place);
        }
    }
    return std::nullopt;
}

} // namespace RunnerLocator
} // namespace quorvel
