#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// How a clone uses the user's own folders instead of private ones. Stateless; any thread.
struct SharedUserFolders {
    static constexpr std::array<std::string_view, 3> sharedUserFolders{"Downloads", "Documents",
                                                                       "Desktop"};

    /// Makes `link` a symbolic link to `target`, if that exists and if there is nothing at `link`
    /// or only an empty folder or a plain file, which is removed. Never fails.
    static void linkIfSafe(const std::string& link, const std::string& target);

    /// Links the user's own folders into `home`. Never fails.
    static void ensureSharedUserFolders(const std::string& home);

    /// Returns whether one of the three exists in `home` and is not a link.
    [[nodiscard]] static bool needsSharedFolderMigration(const std::string& home);

    /// An item that a migration could not move.
    struct UnmovedItem {
        std::string path{};
        std::string reason{}; ///< a sentence that names the item

        bool operator==(const UnmovedItem&) const = default;
    };

    struct Migration {
        std::map<std::string, int> moved{}; ///< the number of entries, for each folder that existed
        std::vector<UnmovedItem> unmoved{};
    };

    /// Moves the contents of the three folders in `home` to the user's own folders, under new names
    /// where a name is taken, and replaces those that are empty then by links. Never fails; what
    /// can't be moved stays and is reported. Completes an earlier call that was interrupted.
    [[nodiscard]] static Migration migrateSharedUserFolders(const std::string& home);
    [[nodiscard]] static Migration migrateSharedUserFolders(const std::string& home,
                                                            const std::string& realHome);
};

} // namespace quorvel
