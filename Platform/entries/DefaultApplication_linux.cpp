#include "Base/PathText.h"
#include "Platform/entries/DefaultApplication.h"
#include "Platform/entries/EntryFolders.h"
#include "Platform/entries/ExecLine.h"
#include "Platform/entries/MimeAppsList.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/XdgFolders_linux.h"
#include "Platform/programs/ProgramResolution.h"

#include <cstdlib>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t maxListSize = std::size_t{1} << 20U;

// The folders of the lists, the most important first.
std::vector<fs::path> listFolders() {
    std::vector<fs::path> folders = xdgConfigFolders();
    const std::vector<fs::path> entries = applicationEntryFolders();
    folders.insert(folders.end(), entries.begin(), entries.end());
    return folders;
}

// An id's hyphens may each be a subfolder: "kde-app.desktop" is "kde/app.desktop" too.
std::optional<fs::path> entryFileBelow(const fs::path& folder, std::string id) {
    for (int depth = 0; depth <= maxEntryDepth; ++depth) {
        const fs::path file = joinAsText(folder, id);
        if (itemExists(file)) {
            return file;
        }
        const std::size_t hyphen = id.find('-');
        if (hyphen == std::string::npos) {
            break;
        }
        id[hyphen] = '/';
    }
    return std::nullopt;
}

bool canBeStarted(const DesktopEntry& entry) {
    return entry.type == "Application" && !entry.hidden &&
           (entry.tryExec.empty() || findProgram(entry.tryExec)) &&
           findProgram(ExecLine::parse(entry.exec).program);
}

// The first file of that id counts, even if it says that the application was removed.
std::optional<InstalledApplication> installedApplication(const std::string& id) {
    if (id.find('/') != std::string::npos || id.find("..") != std::string::npos ||
        !id.ends_with(".desktop")) {
        return std::nullopt;
    }
    for (const fs::path& folder : applicationEntryFolders()) {
        const auto file = entryFileBelow(folder, id);
        if (!file) {
            continue;
        }
        try {
            InstalledApplication found{id, *file, readDesktopEntry(*file)};
            return canBeStarted(found.entry) ? std::optional(std::move(found)) : std::nullopt;
        } catch (const Error&) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace

bool linksStayInsideClones() noexcept {
    return true;
}

std::optional<InstalledApplication> defaultApplication(const std::string& mimeType) {
    const char* desktops = std::getenv("XDG_CURRENT_DESKTOP");
    const std::vector<std::string> names = mimeAppsListNames(desktops == nullptr ? "" : desktops);
    for (const fs::path& folder : listFolders()) {
        for (const std::string& name : names) {
            const auto list = readFile(joinAsText(folder, name).native(), maxListSize);
            for (const std::string& id : defaultHandlersIn(list.value_or(""), mimeType)) {
                if (auto found = installedApplication(id)) {
                    return found;
                }
            }
        }
    }
    return std::nullopt;
}

} // namespace quorvel
