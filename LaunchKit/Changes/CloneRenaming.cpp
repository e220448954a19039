#include "LaunchKit/Changes/CloneRenaming.h"

#include "Base/PathText.h"
#include "LaunchKit/Changes/ChangeJournal.h"
#include "LaunchKit/Changes/CloneRevision.h"
#include "LaunchKit/Changes/RequestCheck.h"
#include "LaunchKit/Homes/DataFolderGuard.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/Homes/HomeMove.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/Launching/WindowWord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/WrapperFactory.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/ItemRelation.h"
#include "Platform/files/PlatformError.h"
#include "Platform/homes/UserPaths.h"

#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// The clone's data folder, which is to get another name.
struct HomeRename {
    fs::path from{};
    fs::path to{};
    std::optional<FileLock> lock{}; ///< so that nothing starts in it meanwhile
};

// Throws if the data can't be moved for this clone alone.
std::optional<HomeRename> homeRename(const CloneRevision& clone, const CloneRenaming& renaming) {
    const InstanceConfig& config = clone.old().settings().config;
    const DataFolder data = dataFolderOf(config);
    if (!renaming.movesData || data.isNone || !itemOrLinkExists(data.path)) {
        return std::nullopt;
    }
    const std::string subject = "The data folder " + data.path.string() + " ";
    if (data.isBehindLink || isSymbolicLink(data.path)) {
        throw Error(subject + "is behind a symbolic link, so it can’t be moved.");
    }
    const DataFolderGuard guard(InstanceRegistry(), clone.wrapper());
    if (const auto reason = guard.objection(ComparedItem(data.path))) {
        throw Error(subject + *reason + ", so it can’t be moved.");
    }
    fs::path to = joinAsText(data.path.parent_path(), renaming.name);
    if (to == data.path) {
        return std::nullopt;
    }
    if (itemOrLinkExists(to)) {
        throw PlatformError(std::make_error_code(std::errc::file_exists), to, "created");
    }
    requireUnusedHome(config);
    return HomeRename{data.path, std::move(to), lockHome(config)};
}

// Keeps the spelling of the folder that contains it, such as "~/QuorvelInstances", if it has one.
std::string renamedHome(const std::string& home, const fs::path& to) {
    const std::string above = fs::path(withoutTrailingSlashes(home)).parent_path().string();
    return isSameItem(UserPaths::expandTilde(above), to.parent_path())
               ? joinAsText(above, to.filename().string())
               : to.string();
}

// Warns of the clones that find this one by its old path, however they spell it.
void warnOfLinks(ChangedClone& changed, const fs::path& old, const std::string& identity) {
    for (const InstanceRecord& other : InstanceRegistry().list()) {
        const fs::path links = UserPaths::expandTilde(other.config.links.value_or(""));
        if (links.is_absolute() && cloneIdentity(links) == identity) {
            changed.warnings.push_back("“" + other.config.displayName +
                                       "” opens its links in this clone by its old path " +
                                       old.string() + "; choose it again there.");
        }
    }
}

void withdrawOldEntry(ChangedClone& changed, const std::string& identity) {
    try {
        withdrawFromMenu(identity);
    } catch (const std::exception& error) {
        changed.warnings.push_back("The entry of the old name couldn’t be removed from the menu: " +
                                   std::string(error.what()));
    }
}

// The renaming of a clone, step by step. Each step leaves one clone, whose data is where its
// configuration says; `ChangeRecovery` does what remains.
class Renaming {
public:
    Renaming(const CloneRevision& clone, const CloneRenaming& renaming)
        : clone_(clone),
          oldName_(clone.wrapper().filename()),
          newName_(wrapperPath(clone.wrapper().parent_path(), renaming.name).filename()),
          change_(clone.wrapper().parent_path()),
          home_(homeRename(clone, renaming)) {
        changes_.settings = clone.old().settings();
        InstanceConfig& config = changes_.settings.config;
        config.displayName = renaming.name;
        if (home_) {
            config.instanceHome = renamedHome(config.instanceHome, home_->to);
        }
    }

    std::vector<std::string> run() {
        std::vector<std::string> kept = clone_.old().stage(change_, newName_, changes_);
        keepJournal();
        try {
            makeSteps();
        } catch (const PlatformError&) {
            takeBack();
            throw;
        }
        if (home_ && itemOrLinkExists(home_->from)) {
            change_.keep(); // something is left to do for the next start
        } else {
            ChangeJournal::forget(change_);
        }
        return kept;
    }

private:
    void keepJournal() {
        const auto identity = identityOf(change_.path() / newName_);
        ChangeJournal journal{.wrapper = oldName_, .newWrapper = newName_};
        journal.number = std::to_string(identity ? identity->inode : 0);
        if (home_) {
            journal.home = home_->from;
            journal.newHome = home_->to;
        }
        journal.keepWith(change_);
    }

    void makeSteps() {
        if (home_) {
            prepareHomeMove(home_->from, home_->to);
        }
        change_.publish(newName_, oldName_);
        isPublished_ = true;
        if (newName_ != oldName_) {
            change_.rename(oldName_, newName_);
            isRenamed_ = true;
        }
        if (home_) {
            completeHomeMove(home_->from, home_->to);
        }
    }

    // If that fails, too, the journal stays, and the next start completes the renaming.
    void takeBack() {
        try {
            if (isRenamed_) {
                change_.rename(newName_, oldName_);
            }
            if (isPublished_) {
                change_.publish(newName_, oldName_);
            }
            if (home_) {
                cancelHomeMove(home_->from, home_->to);
            }
        } catch (const PlatformError&) {
            change_.keep();
            throw;
        }
    }

    const CloneRevision& clone_;
    std::string oldName_;
    std::string newName_;
    StagedChange change_;
    std::optional<HomeRename> home_;
    WrapperRevision::Changes changes_{};
    bool isPublished_ = false;
    bool isRenamed_ = false;
};

} // namespace

ChangedClone renameClone(const fs::path& wrapper, const CloneRenaming& renaming) {
    const CloneRevision clone(wrapper);
    CloneRenaming wanted = renaming;
    wanted.name = validatedCloneName(renaming.name);
    if (wanted.name.empty()) {
        throw WrapperFactory::FactoryError::emptyName();
    }
    const fs::path place = wrapperPath(clone.wrapper().parent_path(), wanted.name);
    const bool isElsewhere = !isSameItem(place, clone.wrapper());
    if (isElsewhere) {
        requireReplaceable(place, {});
    }
    const InstanceConfig& old = clone.old().settings().config;
    if (old.displayName == wanted.name && place == clone.wrapper() && !wanted.movesData) {
        return {.record = {clone.wrapper(), old}};
    }
    keepCopiedData(old);
    const std::string identity = cloneIdentity(clone.wrapper());
    std::vector<std::string> kept = Renaming(clone, wanted).run();
    ChangedClone changed = published(place, std::move(kept));
    if (changed.record.config.instanceHome != old.instanceHome) {
        removeUnusedTemporaryFolder(old); // it is named after the home
    }
    if (isElsewhere) {
        withdrawOldEntry(changed, identity);
        warnOfLinks(changed, clone.wrapper(), identity);
    }
    return changed;
}

} // namespace quorvel
