#include "Platform/entries/EntryFolders.h"

#include "Base/PathText.h"
#include "Platform/homes/XdgFolders_linux.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;

std::vector<fs::path> applicationEntryFolders() {
    std::vector<fs::path> folders = xdgDataFolders();
    for (fs::path& folder : folders) {
        folder = joinAsText(folder, "applications");
    }
    return folders;
}

std::string desktopFileId(const fs::path& file) {
    for (const fs::path& folder : applicationEntryFolders()) {
        const std::string start = folder.native() + "/";
        if (file.native().starts_with(start)) {
            std::string id = file.native().substr(start.size());
            std::replace(id.begin(), id.end(), '/', '-');
            return id;
        }
    }
    return lastPathComponent(file);
}

} // namespace quorvel
