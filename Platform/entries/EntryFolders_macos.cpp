#include "Platform/entries/EntryFolders.h"

#include "Base/PathText.h"

namespace quorvel {

std::vector<std::filesystem::path> applicationEntryFolders() {
    return {};
}

std::string desktopFileId(const std::filesystem::path& file) {
    return lastPathComponent(file);
}

bool hasBusService(const std::string& /*name*/) {
    return false;
}

} // namespace quorvel
