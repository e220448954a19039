#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace quorvel {

/// The folders of an application in which its parts are looked for. Either may be unknown.
struct ApplicationFolders {
    std::optional<std::filesystem::path> resources{};   ///< of a bundle, its resources
    std::optional<std::filesystem::path> executables{}; ///< of a bundle, its executables

    /// Returns those of this program. Outside a bundle these are the executable's folder and
    /// ../libexec/quorvel beside it; both are absent if the executable is unknown.
    [[nodiscard]] static ApplicationFolders current();
};

/// Finds the runner that is copied into wrappers.
namespace RunnerLocator {

inline constexpr std::string_view runnerName = "quorvel-runner";

/// Returns the paths where the runner may be, best first: the application's resources and
/// executables, then the debug and the release build below the current folder.
[[nodiscard]] std::vector<std::filesystem::path> candidates(const ApplicationFolders& folders);

/// Returns the first candidate that is an executable file; `std::nullopt` if none is.
[[nodiscard]] std::optional<std::filesystem::path> locate(const ApplicationFolders& folders);

} // namespace RunnerLocator
} // namespace quorvel
