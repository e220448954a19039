#include "Platform/entries/EntryFolders.h"

#include "Base/PathText.h"
#include "Platform/entries/BoundedLookup_linux.h"
#include "Platform/entries/KeyFile_linux.h"
#include "Platform/files/FileReading.h"
#include "Platform/homes/XdgFolders_linux.h"

#include <algorithm>
#include <set>

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

bool hasBusService(const std::string& name) {
    if (name.empty() || name.find('/') != std::string::npos) {
        return false;
    }
    std::set<std::string> files;
    for (const fs::path& folder : xdgDataFolders()) {
        files.insert(joinAsText(folder, "dbus-1/services/" + name + ".service"));
    }
    const auto isService = [name](const std::string& file) {
        constexpr std::size_t limit = 65536;
        const auto text = readFile(file, limit);
        const auto service = text ? KeyFile::parse(*text, {}) : std::nullopt;
        return service && service->text("D-BUS Service", "Name") == name;
    };
    return !presentAmong(files, isService).empty();
}

} // namespace quorvel
