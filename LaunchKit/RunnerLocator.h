#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace quorvel {

/// The folders of the running application in which its parts are looked for. Either may be unknown.
struct ApplicationFolders {
    std::optional<std::filesystem::path> resources{};   ///< Contents/Resources of a bundle
    std::optional<std::filesystem::path> executables{}; ///< Contents/MacOS of a bundle

    /// This program's own. Outside a bundle the executable's folder, and ../libexec/quorvel, serve.
    [[nodiscard]] static ApplicationFolders ofThisProgram();
};

/// Finds the runner that is copied into wrappers.
namespace RunnerLocator {

inline constexpr std::string_view runnerName = "quorvel-runner";

/// The places where the runner may be, best first: the application's resources and executables,
/// then the debug and the release build below the current folder.
[[nodiscard]] std::vector<std::filesystem::path> candidates(const ApplicationFolders& folders);

/// The first candidate that is an executable file.
[[nodiscard]] std::optional<std::filesystem::path> locate(const ApplicationFolders& folders);

} // namespace RunnerLocator
} // namespace quorvel
