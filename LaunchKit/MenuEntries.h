#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// The clones' entries in the user's menu. Where there is no such menu, nothing happens.
namespace quorvel {

struct InstanceRecord;
struct MenuEntry;

/// Returns the clone's entry. Throws `Error` if it can't be started from a menu, such as from a
/// path with a line break.
[[nodiscard]] MenuEntry menuEntryOf(const InstanceRecord& record);

/// Publishes the clone's entry and icon, in place of older ones. `drawing` is an SVG file that
/// shows the same as the clone's icon. Throws `Error`, whose text says why not.
void publishInMenu(const InstanceRecord& record,
                   const std::optional<std::filesystem::path>& drawing);

/// The same with the drawing of the application, if the clone's icon is still made from it.
void publishInMenu(const InstanceRecord& record);

/// Removes what was published for the clone with this `cloneIdentity`. Throws `PlatformError`.
void withdrawFromMenu(const std::string& identity);

/// What `repairMenu` did.
struct MenuRepair {
    std::size_t published = 0;
    std::size_t withdrawn = 0;
    std::vector<std::string> problems{}; ///< one for each clone that could not be repaired
};

/// Publishes the entries that are missing or lead to something else, and withdraws those of clones
/// that no longer exist. An entry that the user edited stays as it is, as long as it starts the
/// clone. Clones that are not among `records` keep theirs. Never throws.
MenuRepair repairMenu(const std::vector<InstanceRecord>& records);

} // namespace quorvel
