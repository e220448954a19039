#include "Platform/entries/MenuEntry.h"

namespace quorvel {

bool hasMenu() noexcept {
    return false;
}

bool noticesEntriesLate() {
    return false;
}

void publishMenuEntry(const MenuEntry& /*entry*/, const std::vector<MenuPicture>& /*pictures*/) {}

bool publishMenuEntry(const MenuEntry& /*entry*/, const std::vector<MenuPicture>& /*pictures*/,
                      const std::vector<PublishedEntry>& /*older*/) {
    return false;
}

void updateMenuTypes() {}

void withdrawMenuEntry(const std::string& /*cloneId*/, const std::string& /*word*/) {}

void removeMenuLeftovers() {}

void removeOldMenuPictures(const std::map<std::string, std::string>& /*named*/) {}

std::vector<PublishedEntry> publishedMenuEntries() {
    return {};
}

std::optional<PublishedEntry> publishedEntryOf(const std::string& /*cloneId*/) {
    return std::nullopt;
}

bool hasMenuPicture(const std::string& /*icon*/, int /*side*/) {
    return false;
}

} // namespace quorvel
