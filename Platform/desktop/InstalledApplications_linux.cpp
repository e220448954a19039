#include "Base/PathText.h"
#include "Base/SplitText.h"
#include "Platform/desktop/ExecLine.h"
#include "Platform/desktop/InstalledApplications.h"
#include "Platform/desktop/ProgramResolution.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/Folder.h"
#include "Platform/processes/ParallelLoop.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unordered_set>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view ending = ".desktop";
constexpr std::string_view ownId = "app.quorvel.Quorvel.desktop";

std::vector<std::string> currentDesktops() {
    const char* variable = std::getenv("XDG_CURRENT_DESKTOP");
    std::vector<std::string> desktops;
    for (std::string_view rest = variable == nullptr ? "" : variable; !rest.empty();) {
        desktops.emplace_back(takePart(rest, ':'));
    }
    return desktops;
}

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

// Looks for programs in several folders at a time: one that doesn't answer, such as that of a
// server that is gone, delays no other, and its programs count as missing.
class ProgramLookup {
public:
    explicit ProgramLookup(const std::set<std::string>& programs) {
        std::map<fs::path, std::vector<std::string>> folders; // none for what is in `PATH`
        for (const std::string& program : programs) {
            folders[fs::path(program).parent_path()].push_back(program);
        }
        std::vector<std::vector<std::string>> shares(std::min(folders.size(), maxThreads));
        std::size_t next = 0;
        for (auto& [folder, names] : folders) {
            auto& share = shares[next++ % shares.size()];
            share.insert(share.end(), names.begin(), names.end());
        }
        answers_->waitingFor = shares.size();
        for (std::vector<std::string>& share : shares) {
            std::thread(look, answers_, std::move(share)).detach();
        }
        std::unique_lock lock(answers_->guard);
        (void)answers_->changed.wait_for(lock, patience, [&] { return answers_->waitingFor == 0; });
        present_ = answers_->present;
    }

    [[nodiscard]] bool has(const std::string& program) const { return present_.contains(program); }

private:
    static constexpr std::size_t maxThreads = 32;
    static constexpr std::chrono::seconds patience{2};

    struct Answers {
        std::mutex guard{};
        std::condition_variable changed{};
        std::set<std::string> present{};
        std::size_t waitingFor = 0;
    };

    static void look(const std::shared_ptr<Answers>& answers,
                     const std::vector<std::string>& programs) {
        for (const std::string& program : programs) {
            if (findProgram(program)) {
                const std::lock_guard lock(answers->guard);
                answers->present.insert(program);
            }
        }
        const std::lock_guard lock(answers->guard);
        --answers->waitingFor;
        answers->changed.notify_one();
    }

    std::shared_ptr<Answers> answers_ = std::make_shared<Answers>(); // outlives what still waits
    std::set<std::string> present_{};
};

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
    const ProgramLookup programs(programsOf(candidates));
    for (std::size_t index = 0; index < candidates.size(); ++index) {
        auto& candidate = candidates[index];
        if (candidate && programs.has(candidate->program) &&
            (candidate->entry.tryExec.empty() || programs.has(candidate->entry.tryExec))) {
            const EntryFile& file = files.files()[index];
            found.push_back({file.id, file.path, std::move(candidate->entry)});
        }
    }
    return found;
}

} // namespace quorvel
