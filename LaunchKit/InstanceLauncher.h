#pragma once

#include "Base/CloneLayout.h"
#include "Base/Error.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/CloneOptions.h"
#include "LaunchKit/Homes/SharedUserFolders.h"
#include "Platform/files/FileHandle.h"
#include "Platform/processes/Process.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

struct InstanceConfig;

/// The details of one start of an app.
struct StartDetails {
    /// A descriptor that the app inherits and keeps open while it runs, see `Process`; -1: none.
    int kept = -1;
    std::string identity{}; ///< the clone's `cloneIdentity`
    /// The following are for apps that are started by a desktop entry.
    std::string windowWord{}; ///< see `windowWord`; empty: its windows have none
    std::string action{};     ///< the id of an action to start; empty: the entry's own command
    bool onlyFocuses = false; ///< the running app is only brought to the front
};

/// Starts a clone's target with its isolation applied, and prepares its data folder. Stateless; any
/// thread.
class InstanceLauncher : public SharedUserFolders {
public:
    class LaunchError : public Error {
    public:
        enum class Case { badBundle, unsupported };

        /// The app can't be read.
        [[nodiscard]] static LaunchError badBundle(const std::filesystem::path& url);
        /// The configuration has no target, or the app can't be isolated.
        [[nodiscard]] static LaunchError unsupported(const std::string& message);

        [[nodiscard]] Case kind() const noexcept { return case_; }
        /// The app's path, or the message.
        [[nodiscard]] const std::string& payload() const noexcept { return payload_; }

    private:
        LaunchError(Case kind, const std::string& text, std::string payload)
            : Error(text),
              case_(kind),
              payload_(std::move(payload)) {}

        Case case_;
        std::string payload_;
    };

    /// Launches the clone's target and returns its process. For an `app` clone, `documents` are
    /// appended unchanged to the configured arguments, or passed as the app's desktop entry says;
    /// other kinds ignore them, and the details too. Throws `LaunchError`, or `PlatformError` if
    /// the process can't be started.
    [[nodiscard]] Process launch(const InstanceConfig& config,
                                 const std::vector<std::string>& documents = {},
                                 const StartDetails& details = {}) const;

    /// Sets up the folders that an `app` clone shares, then returns its app. Throws
    /// `LaunchError::badBundle` if that can't be read.
    [[nodiscard]] static AppBundle targetOf(const InstanceConfig& config);

    /// Launches that app for the clone, as above.
    [[nodiscard]] Process launch(const AppBundle& target, const InstanceConfig& config,
                                 const std::vector<std::string>& documents = {},
                                 const StartDetails& details = {}) const;

    /// Launches an application with `home` (already expanded) as its home. Creates `home` if it is
    /// missing, and the folder inside it that follows an argument "-profile". The options' strategy
    /// and environment are used unchanged; the environment overrides what the launcher sets, and
    /// that overrides what a desktop entry sets. Throws as above.
    [[nodiscard]] Process launch(const AppBundle& app, const std::string& home,
                                 const CloneOptions& options,
                                 const std::vector<std::string>& extraArgs,
                                 const std::vector<std::string>& documents = {},
                                 const StartDetails& details = {}) const;

    /// The same with only these options: the home shares no folders, and links open inside it.
    [[nodiscard]] Process launch(const AppBundle& app, const std::string& home, Strategy strategy,
                                 const std::vector<std::string>& extraArgs,
                                 const std::map<std::string, std::string>& environment) const;

    /// Reads the app at `appURL` first. Throws `LaunchError::badBundle` if it can't be read.
    [[nodiscard]] Process launch(const std::filesystem::path& appURL, const std::string& home,
                                 const CloneOptions& options,
                                 const std::vector<std::string>& extraArgs,
                                 const std::vector<std::string>& documents = {},
                                 const StartDetails& details = {}) const;

    /// Links the user's keychains into `home`. Never fails.
    static void ensureKeychainAccess(const std::string& home);

    /// Makes the links that the home of an app clone needs before its wrapper is opened; does
    /// nothing for other kinds. Never fails.
    static void prepareHome(const InstanceConfig& config);

    /// Returns the clone's log in `home`, opened for appending; `std::nullopt` if it can't be
    /// opened.
    [[nodiscard]] static std::optional<FileHandle> instanceLogHandle(const std::string& home);
};

} // namespace quorvel
