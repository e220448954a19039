#pragma once

#include "Base/Error.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/CloneOptions.h"
#include "Platform/files/FileHandle.h"
#include "Platform/processes/Process.h"

#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

struct InstanceConfig;

/// Starts the target of a clone with its isolation applied, and keeps its data folder in order.
/// Stateless; any thread.
class InstanceLauncher {
public:
    class LaunchError : public Error {
    public:
        enum class Case { badBundle, unsupported };

        /// The bundle at `url` can't be read.
        [[nodiscard]] static LaunchError badBundle(const std::filesystem::path& url);
        /// What is to be launched can't be, for the reason in `message`.
        [[nodiscard]] static LaunchError unsupported(const std::string& message);

        [[nodiscard]] Case kind() const noexcept { return case_; }
        /// The bundle's path, or the message.
        [[nodiscard]] const std::string& payload() const noexcept { return payload_; }

    private:
        LaunchError(Case kind, const std::string& prefix, std::string payload)
            : Error(prefix + payload),
              case_(kind),
              payload_(std::move(payload)) {}

        Case case_;
        std::string payload_;
    };

    /// Launches what the configuration describes. `documents` follow the configured arguments of an
    /// `app` clone, as they are; the other kinds take none. The descriptor `kept` (-1: none) is
    /// one that an app keeps open for as long as it lives, see `Process`; others don't get it.
    /// Throws `LaunchError`, or `PlatformError` when the process can't be started.
    [[nodiscard]] Process launch(const InstanceConfig& config,
                                 const std::vector<std::string>& documents = {},
                                 int kept = -1) const;

    /// Launches an application under `home` (already expanded), which is created where needed, and
    /// so is a folder below it that an argument "-profile" names. The options' strategy and
    /// environment apply as they are; the environment wins over what the launcher sets. Throws as
    /// above.
    [[nodiscard]] Process launch(const AppBundle& app, const std::string& home,
                                 const CloneOptions& options,
                                 const std::vector<std::string>& extraArgs, int kept = -1) const;

    /// The same for a bundle that is still to be read.
    [[nodiscard]] Process launch(const std::filesystem::path& appURL, const std::string& home,
                                 const CloneOptions& options,
                                 const std::vector<std::string>& extraArgs, int kept = -1) const;

    /// Links the user's keychains into `home`. Never fails.
    static void ensureKeychainAccess(const std::string& home);

    /// What the home of an app clone needs before its wrapper is opened; nothing for other kinds.
    /// Never fails.
    static void prepareHome(const InstanceConfig& config);

    /// The clone's log in `home`, opened for appending; nothing when that can't be done.
    [[nodiscard]] static std::optional<FileHandle> instanceLogHandle(const std::string& home);

    // Shared user folders: how a clone uses the user's own instead of private ones.

    static constexpr std::array<std::string_view, 3> sharedUserFolders{"Downloads", "Documents",
                                                                       "Desktop"};

    /// Makes `link` a symbolic link to `target` where nothing is lost by it: `target` exists, and
    /// at `link` is nothing, an empty folder or a plain file. Never fails.
    static void linkIfSafe(const std::string& link, const std::string& target);

    /// Links the user's own folders into `home`.
    static void ensureSharedUserFolders(const std::string& home);

    /// Whether one of the three in `home` is there and is no link.
    [[nodiscard]] static bool needsSharedFolderMigration(const std::string& home);

    /// An item that a migration had to leave.
    struct UnmovedItem {
        std::string path{};
        std::string reason{}; ///< a sentence that names the item

        bool operator==(const UnmovedItem&) const = default;
    };

    struct Migration {
        std::map<std::string, int> moved{}; ///< entries, for each folder that was there
        std::vector<UnmovedItem> unmoved{};
    };

    /// Moves what the three folders in `home` hold into the user's own, under new names where a
    /// name is taken, and links those that are empty then. Never fails; what can't be moved stays
    /// and is told. Finishes what an earlier call was cut off at.
    [[nodiscard]] static Migration migrateSharedUserFolders(const std::string& home);
    [[nodiscard]] static Migration migrateSharedUserFolders(const std::string& home,
                                                            const std::string& realHome);
};

inline constexpr std::string_view instanceLogName = "quorvel-instance.log";

} // namespace quorvel
