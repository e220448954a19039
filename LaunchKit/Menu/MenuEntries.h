#pragma once

#include "Platform/entries/MenuEntry.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// The clones' entries in the user's menu. Where there is no such menu, nothing happens.
namespace quorvel {

struct InstanceRecord;

/// The entries that are published for clones, as they were when this was made. Reading them takes
/// longer the more clones there are, so a caller that changes many clones reads them once. When it
/// is destroyed, desktops are told what the entries open that were published with it.
class PublishedMenu {
public:
    PublishedMenu();
    PublishedMenu(const PublishedMenu&) = delete;
    PublishedMenu& operator=(const PublishedMenu&) = delete;
    ~PublishedMenu();

    using Entries = std::multimap<std::string, PublishedEntry>;

    /// By the clones' `cloneIdentity`.
    [[nodiscard]] const Entries& entries() const { return entries_; }

    /// Returns the entries of one clone; there should be one.
    [[nodiscard]] std::vector<PublishedEntry> of(const std::string& identity) const;

    /// Publishes the entry in place of the clone's older ones. Throws as `publishMenuEntry` does.
    void publish(const MenuEntry& entry, const std::vector<MenuPicture>& pictures);

private:
    Entries entries_{};
    bool haveTypesChanged_ = false;
};

/// Returns the clone's entry. Throws `Error` if it can't be started from a menu, such as from a
/// path with a line break.
[[nodiscard]] MenuEntry menuEntryOf(const InstanceRecord& record);

/// Publishes the clone's entry and icon, in place of older ones. `drawing` is an SVG file that
/// shows the same as the clone's icon, if there is one. Throws `Error`.
void publishInMenu(const InstanceRecord& record,
                   const std::optional<std::filesystem::path>& drawing);

/// The same for a caller that has read the menu already.
void publishInMenu(const InstanceRecord& record,
                   const std::optional<std::filesystem::path>& drawing, PublishedMenu& published);

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
