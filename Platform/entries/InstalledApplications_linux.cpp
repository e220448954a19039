#include "Base/PathText.h"
#include "Platform/entries/BoundedLookup_linux.h"
#include "Platform/entries/CurrentDesktops_linux.h"
#include "Platform/entries/ExecLine.h"
#include "Platform/entries/InstalledApplications.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/Folder.h"
#include "Platform/processes/ParallelLoop.h"
#include "Platform/programs/ProgramResolution.h"

#include <set>
#include <sys/stat.h>
#include <unordered_set>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view ending = ".desktop";
constexpr std::string_view ownId = "app.quorvel.Quorvel.desktop";

struct EntryFile {
    std::string id{};
    std::string path{};
};

// The files of all ids, of each the first.
class EntryFiles {
public:
    void addFolder(const fs::path& folder) {
        filesLeft_ = maxEntryFiles;
        visited_.clear();
        addBelow(folder, "", 0);
    }

    [[nodiscard]] const std::vector<EntryFile>& files() const { return files_; }

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
                addFile(path.native() + "/" + name, prefix + name);
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

    void addFile(std::string path, const std::string& id) {
        if (filesLeft_ == 0) {
            return;
        }
        --filesLeft_;
        if (ids_.insert(id).second) {
            files_.push_back({id, std::move(path)});
        }
    }

    std::vector<EntryFile> files_{};
    std::unordered_set<std::string> ids_{};
    std::set<std::pair<dev_t, ino_t>> visited_{};
    std::size_t filesLeft_ = 0;
};

struct Candidate {
    DesktopEntry entry{};
    std::string program{};
};

// Decided without looking for the entry's programs.
bool isWanted(const DesktopEntry& entry, const std::vector<std::string>& desktops) {
    return entry.type == "Application" && !entry.name.empty() && !entry.hidden &&
           !entry.noDisplay && !entry.terminal && entry.cloneId.empty() &&
           entry.isShownIn(desktops);
}

std::optional<Candidate> candidateIn(const EntryFile& file,
                                     const std::vector<std::string>& languages,
                                     const std::vector<std::string>& desktops) {
    const auto bytes = file.id == ownId ? std::nullopt : readFile(file.path, maxDesktopEntrySize);
    if (!bytes) {
        return std::nullopt;
    }
    try {
        Candidate candidate{parseDesktopEntry(*bytes, languages)};
        if (!isWanted(candidate.entry, desktops)) {
            return std::nullopt;
        }
        candidate.program = ExecLine::parse(candidate.entry.exec).program;
        return candidate;
    } catch (const Error&) {
        return std::nullopt; // one that can't be read or started is not an application
    }
}

std::set<std::string> programsOf(const std::vector<std::optional<Candidate>>& candidates) {
    std::set<std::string> programs;
    for (const auto& candidate : candidates) {
        if (candidate) {
            programs.insert(candidate->program);
            if (!candidate->entry.tryExec.empty()) {
                programs.insert(candidate->entry.tryExec);
            }
        }
    }
    return programs;
}

} // namespace

std::vector<InstalledApplication> installedApplications(const std::vector<fs::path>& folders) {
    EntryFiles files;
    for (const fs::path& folder : folders) {
        files.addFolder(folder);
    }
    const std::vector<std::string> languages = desktopEntryLanguages();
    const std::vector<std::string> desktops = currentDesktops();
    std::vector<std::optional<Candidate>> candidates(files.files().size());
    constexpr std::size_t share = 16; // one alone is soon done
    forEachIndex(candidates.size(), share, [&](std::size_t index) {
        candidates[index] = candidateIn(files.files()[index], languages, desktops);
    });
    std::vector<InstalledApplication> found;
    found.reserve(candidates.size());
    const std::set<std::string> programs =
        presentAmong(programsOf(candidates),
                     [](const std::string& program) { return findProgram(program).has_value(); });
    for (std::size_t index = 0; index < candidates.size(); ++index) {
        auto& candidate = candidates[index];
        if (candidate && programs.contains(candidate->program) &&
            (candidate->entry.tryExec.empty() || programs.contains(candidate->entry.tryExec))) {
            const EntryFile& file = files.files()[index];
            found.push_back({file.id, file.path, std::move(candidate->entry)});
        }
    }
    return found;
}

} // namespace quorvel
