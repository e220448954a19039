#include "LaunchKit/Changes/ChangeRecovery.h"

#include "Base/BundleLayout.h"
#include "Base/BundleName.h"
#include "Base/PathText.h"
#include "LaunchKit/Changes/ChangeJournal.h"
#include "LaunchKit/Copying/CopiedData.h"
#include "LaunchKit/Homes/HomeMove.h"
#include "LaunchKit/WrapperFactory.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/FileLock.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/MountBoundary.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/staging/StagedChange.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

bool isItem(const StagedChange& change, const std::string& name, const std::string& number) {
    const auto found = change.numberOf(name);
    return found && std::to_string(*found) == number;
}

// The clone has its new name as soon as its wrapper has been replaced.
void finishRenaming(StagedChange& change, const ChangeJournal& journal) {
    const bool isReplaced = isItem(change, journal.wrapper, journal.number);
    const bool isRenamed = isItem(change, journal.newWrapper, journal.number);
    if (!journal.home.empty()) {
        if (isReplaced || isRenamed) {
            completeHomeMove(journal.home, journal.newHome);
        } else {
            cancelHomeMove(journal.home, journal.newHome);
        }
    }
    // If something else has taken the new place, the clone stays where it is.
    if (isReplaced && !change.numberOf(journal.newWrapper)) {
        change.rename(journal.wrapper, journal.newWrapper);
    }
}

enum class DataPlace { home, trash, none, unknown };

// Not being able to see the data proves nothing: its drive may not be mounted.
DataPlace placeOfData(const ChangeJournal& journal, const fs::path& trash) {
    const fs::path home = journal.home;
    if (!trash.empty() && itemOrLinkExists(joinAsText(trash, home.filename().string()))) {
        return DataPlace::trash;
    }
    const FileHandle above(openFolderForNames(home.parent_path()));
    struct stat status {};
    if (above.descriptor() < 0 || ::fstat(above.descriptor(), &status) != 0) {
        return DataPlace::unknown;
    }
    const std::string device = std::to_string(status.st_dev);
    if (::fstatat(above.descriptor(), home.filename().c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
        return DataPlace::home;
    }
    return errno == ENOENT && device == journal.device ? DataPlace::none : DataPlace::unknown;
}

// Removes that hidden folder, from which the data is put back first if it is to stay, and empty
// ones, which a deletion may have left before it noted them. Others may hold what is not ours.
void removeTrash(const fs::path& home, const fs::path& trash, bool putsDataBack) {
    for (StagedChange& other : StagedChange::interruptedIn(home.parent_path())) {
        const auto entries = directoryEntries(other.path());
        if (other.path() == trash) {
            other.keep();
            if (putsDataBack) {
                other.restore(home.filename(), home.filename());
            }
            other.keep(false);
        } else if (!entries || !entries->empty()) {
            other.keep();
        }
    }
}

// The clone is deleted as soon as its data has left its place.
void finishDeletion(StagedChange& change, const ChangeJournal& journal) {
    const fs::path home = journal.home;
    const auto noted = ChangeJournal::trashOf(change);
    const fs::path trash = noted ? joinAsText(home.parent_path(), *noted) : fs::path();
    const DataPlace data = placeOfData(journal, trash);
    const bool isAway = change.holds(journal.wrapper);
    if (isAway && (data == DataPlace::home || data == DataPlace::unknown)) {
        change.restore(journal.wrapper, journal.wrapper);
    }
    if (data == DataPlace::unknown) {
        change.keep(); // leads to what is beside the data, or to the data itself
        return;
    }
    removeTrash(home, trash, data == DataPlace::trash && !isAway);
    // In the folder of clones itself, it is removed like any other hidden folder.
    if (noted && itemOrLinkExists(trash) && !isSameItem(home.parent_path(), change.folder())) {
        change.keep(); // leads to the rest of the data
        return;
    }
    ChangeJournal::forget(change);
}

std::vector<std::string> namesIn(const fs::path& folder) {
    return directoryEntries(folder).value_or(std::vector<std::string>());
}

// What was written when a configuration was to be replaced.
void removeUnfinishedConfigurations(const fs::path& folder) {
    for (const std::string& name : namesIn(folder)) {
        if (isAppBundleName(name)) {
            removeUnfinishedFiles(resourcesOf(joinAsText(folder, name)));
        }
    }
}

void finishIn(const fs::path& folder) {
    const std::vector<std::string> names = namesIn(folder);
    if (std::any_of(names.begin(), names.end(), StagedChange::isHiddenFolder)) {
        if (const auto lock = FileLock::tryTakeFolder(folder)) {
            finishInterruptedChanges(folder);
        }
    }
}

// A folder that can't be read must not stop the others.
template<typename Work>
void inEach(const std::vector<fs::path>& folders, const Work& work) noexcept {
    for (const fs::path& folder : folders) {
        try {
            work(folder);
        } catch (const std::exception&) {
            continue;
        }
    }
}

} // namespace

void finishInterruptedChanges(const fs::path& folder) noexcept {
    try {
        for (StagedChange& change : StagedChange::interruptedIn(folder)) {
            try {
                if (const auto journal = ChangeJournal::of(change)) {
                    journal->newWrapper.empty() ? finishDeletion(change, *journal)
                                                : finishRenaming(change, *journal);
                }
            } catch (const std::exception&) {
                change.keep();
            }
        }
    } catch (const std::exception&) {
        return; // the next call tries again
    }
}

void restoreClones(const std::vector<fs::path>& folders) noexcept {
    inEach(folders, finishIn);
}

void removeLeftovers(const std::vector<fs::path>& folders) noexcept {
    inEach(folders, removeUnfinishedConfigurations);
    CopiedData::removeUnfinished(
        withoutTrailingSlashes(UserPaths::expandTilde(WrapperFactory::defaultInstanceHome(""))));
}

void finishInterruptedChanges(const std::vector<fs::path>& folders) noexcept {
    restoreClones(folders);
    removeLeftovers(folders);
}

} // namespace quorvel
