#include "Platform/desktop/ExecLine.h"
#include "Platform/desktop/InstalledApplications.h"
#include "Platform/desktop/ProgramResolution.h"
#include "Platform/desktop/XdgFolders_linux.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/Folder.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <sys/stat.h>
#include <unordered_set>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view ending = ".desktop";

std::vector<std::string> currentDesktops() {
    const char* variable = std::getenv("XDG_CURRENT_DESKTOP");
    std::vector<std::string> desktops;
    for (std::string_view rest = variable == nullptr ? "" : variable; !rest.empty();) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        desktops.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return desktops;
}

class Scan {
public:
    void addFolder(const fs::path& folder) {
        filesLeft_ = maxEntryFiles;
        visited_.clear();
        addBelow(folder, "", 0);
    }

    std::vector<InstalledApplication> finish() { return std::move(found_); }

private:
    // `prefix` is what the ids of the folder's entries begin with: "kde-" in "kde".
    void addBelow(const fs::path& path, const std::string& prefix, int depth) {
        auto folder = Folder::open(path);
        struct stat status {};
        if (!folder || ::fstat(folder->descriptor(), &status) != 0 ||
            !visited_.emplace(status.st_dev, status.st_ino).second) {
            return;
        }
        std::vector<std::string> others;
        for (const std::string& name : folder->entries()) {
            if (name.ends_with(ending)) {
                addFile(*folder, name, prefix + name);
            } else if (depth < maxEntryDepth) {
                others.push_back(name);
            }
        }
        for (const std::string& name : others) {
            if (filesLeft_ > 0) {
                addBelow(joinAsText(path, name), prefix + name + "-", depth + 1);
            }
        }
    }

    void addFile(const Folder& folder, const std::string& name, const std::string& id) {
        if (filesLeft_ == 0) {
            return;
        }
        --filesLeft_;
        if (!ids_.insert(id).second || id == "app.quorvel.Quorvel.desktop" ||
            !folder.read(name, maxDesktopEntrySize, bytes_)) {
            return;
        }
        try {
            DesktopEntry entry = parseDesktopEntry(bytes_, languages_);
            if (isWanted(entry)) {
                found_.push_back({id, joinAsText(folder.path(), name), std::move(entry)});
            }
        } catch (const Error&) {
            // One that can't be read or started is no application.
        }
    }

    bool isWanted(const DesktopEntry& entry) {
        return entry.type == "Application" && !entry.name.empty() && !entry.hidden &&
               !entry.noDisplay && !entry.terminal && entry.cloneId.empty() &&
               entry.isShownIn(desktops_) && (entry.tryExec.empty() || isProgram(entry.tryExec)) &&
               isProgram(ExecLine::parse(entry.exec).program);
    }

    // Many entries name the same program.
    bool isProgram(const std::string& program) {
        const auto [known, isNew] = programs_.try_emplace(program, false);
        if (isNew) {
            known->second = findProgram(program).has_value();
        }
        return known->second;
    }

    const std::vector<std::string> languages_ = desktopEntryLanguages();
    const std::vector<std::string> desktops_ = currentDesktops();
    std::vector<InstalledApplication> found_{};
    std::unordered_set<std::string> ids_{};
    std::map<std::string, bool> programs_{};
    std::set<std::pair<dev_t, ino_t>> visited_{};
    std::string bytes_{};
    std::size_t filesLeft_ = 0;
};

} // namespace

std::vector<fs::path> applicationEntryFolders() {
    std::vector<fs::path> folders = xdgDataFolders();
    for (fs::path& folder : folders) {
        folder = joinAsText(folder, "applications");
    }
    return folders;
}

std::vector<InstalledApplication> installedApplications(const std::vector<fs::path>& folders) {
    Scan scan;
    for (const fs::path& folder : folders) {
        scan.addFolder(folder);
    }
    return scan.finish();
}

} // namespace quorvel
