#include "LaunchKit/ChangeRecovery.h"

#include "Base/BundleLayout.h"
#include "Base/BundleName.h"
#include "Base/PathText.h"
#include "LaunchKit/ChangeJournal.h"
#include "LaunchKit/CopiedData.h"
#include "LaunchKit/HomeMove.h"
#include "LaunchKit/WrapperFactory.h"
#include "Platform/files/FileLock.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/StagedChange.h"
#include "Platform/files/UserPaths.h"

#include <algorithm>
#include <exception>
#include <string>

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

// The clone is deleted as soon as its data has left its place.
void finishDeletion(StagedChange& change, const ChangeJournal& journal) {
    const auto home = identityOf(fs::path(journal.home));
    const bool isDataThere = home && std::to_string(home->inode) == journal.number;
    if (isDataThere && change.holds(journal.wrapper)) {
        change.restore(journal.wrapper, journal.wrapper);
    }
    ChangeJournal::forget(change);
    (void)StagedChange::interruptedIn(fs::path(journal.home).parent_path());
}

// What was written when a configuration was to be replaced.
void removeUnfinishedConfigurations(const fs::path& folder, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        if (isAppBundleName(name)) {
            removeUnfinishedFiles(resourcesOf(joinAsText(folder, name)));
        }
    }
}

void finishIn(const fs::path& folder) {
    const auto names = directoryEntries(folder).value_or(std::vector<std::string>());
    if (std::any_of(names.begin(), names.end(), StagedChange::isHiddenFolder)) {
        if (const auto lock = FileLock::tryTakeFolder(folder)) {
            finishInterruptedChanges(folder);
        }
    }
    removeUnfinishedConfigurations(folder, names);
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

void finishInterruptedChanges(const std::vector<fs::path>& folders) noexcept {
    for (const fs::path& folder : folders) {
        try {
            finishIn(folder);
        } catch (const std::exception&) {
            continue;
        }
    }
    // Now that every clone is at its place.
    CopiedData::removeUnfinished(
        withoutTrailingSlashes(UserPaths::expandTilde(WrapperFactory::defaultInstanceHome(""))));
}

} // namespace quorvel
