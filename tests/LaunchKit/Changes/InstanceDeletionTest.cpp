#include "LaunchKit/InstanceRegistry.h"

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Launching/WindowWord.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/files/PlatformError.h"
#include "Platform/homes/IsolatedEnvironment.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;

class InstanceDeletionTest : public ::testing::Test {
protected:
    InstanceDeletionTest() {
        write(home_ / "Documents/precious", "x");
        write(home_ / "QuorvelInstances/Work/data", "x");
    }

    [[nodiscard]] InstanceRecord recordWithHome(const std::string& instanceHome) const {
        InstanceConfig config = minimalConfig();
        config.instanceHome = instanceHome;
        return {makeWrapper(home_ / "Applications/Work.app", config), config};
    }

    static void removeWithData(const InstanceRecord& record) {
        InstanceRegistry().remove(record, true);
    }

    // The wrapper goes, everything else stays.
    void expectDataKept(const std::string& instanceHome) const {
        const InstanceRecord record = recordWithHome(instanceHome);
        auto before = treeOf(home_.path());
        std::erase_if(before, [](const auto& item) {
            return item.first.starts_with("Applications/Work.app");
        });
        removeWithData(record);
        EXPECT_EQ(treeOf(home_.path()), before) << instanceHome;
    }

    TemporaryFolder folder_;
    TemporaryHome home_;
};

TEST_F(InstanceDeletionTest, RemovesTheWrapperAndKeepsTheData) {
    const InstanceRecord record = recordWithHome("~/QuorvelInstances/Work");
    InstanceRegistry().remove(record, false);
    EXPECT_FALSE(fs::exists(record.bundleURL));
    EXPECT_TRUE(fs::exists(home_ / "QuorvelInstances/Work/data"));
}

TEST_F(InstanceDeletionTest, DeletesTheDataWhenAsked) {
    const InstanceRecord record = recordWithHome("~/QuorvelInstances/Work");
    removeWithData(record);
    EXPECT_FALSE(fs::exists(record.bundleURL));
    EXPECT_FALSE(fs::exists(home_ / "QuorvelInstances/Work"));
    EXPECT_TRUE(fs::exists(home_ / "QuorvelInstances"));
}

TEST_F(InstanceDeletionTest, DeletesTheDataOfAMissingWrapper) {
    const InstanceRecord record = recordWithHome("~/QuorvelInstances/Work");
    fs::remove_all(record.bundleURL);
    removeWithData(record);
    EXPECT_FALSE(fs::exists(home_ / "QuorvelInstances/Work"));
}

TEST_F(InstanceDeletionTest, SucceedsWithoutAnyData) {
    const InstanceRecord record = recordWithHome("~/QuorvelInstances/None");
    removeWithData(record);
    EXPECT_FALSE(fs::exists(record.bundleURL));
}

TEST_F(InstanceDeletionTest, ALateWithdrawalLeavesTheEntryOfANewCloneInThatPlace) {
    if (!hasMenu()) {
        GTEST_SKIP() << "this system has none";
    }
    const InstanceRecord record = recordWithHome("~/QuorvelInstances/Work");
    DesktopEntry entry{.type = "Application", .name = "Work", .exec = "/bin/true"};
    entry.cloneId = cloneIdentity(record.bundleURL);
    const std::string word = windowWord(entry.cloneId);
    publishMenuEntry({.word = word, .fileName = word + ".desktop", .entry = entry}, {});
    std::vector<std::function<void()>> late;
    const auto later = [&](std::function<void()> work) { late.push_back(std::move(work)); };
    InstanceRegistry().remove(record, false, later);
    ASSERT_EQ(late.size(), 1U);
    EXPECT_EQ(publishedMenuEntries().size(), 1U);
    makeWrapper(record.bundleURL, record.config);
    late.front()();
    EXPECT_EQ(publishedMenuEntries().size(), 1U);
    fs::remove_all(record.bundleURL);
    late.front()();
    EXPECT_EQ(publishedMenuEntries().size(), 0U);
}

TEST_F(InstanceDeletionTest, RemovesTheTemporaryFolderUnlessTheCloneRuns) {
    const std::string data = (home_ / "QuorvelInstances/Work").string();
    for (const bool includingData : {false, true}) {
        const InstanceRecord record = recordWithHome("~/QuorvelInstances/Work");
        fs::create_directories(data);
        const Environment isolated = isolatedEnvironment(data, currentEnvironment());
        if (!isolated.contains("TMPDIR")) {
            GTEST_SKIP() << "this system has none";
        }
        const fs::path temporary = isolated.at("TMPDIR");
        std::optional<FileLock> running = FileLock::tryTake(fs::path(data) / homeLockName);
        InstanceRegistry().remove(record, includingData);
        EXPECT_TRUE(fs::exists(temporary)) << "its sockets are in it";
        running.reset();
        InstanceRegistry().remove(recordWithHome("~/QuorvelInstances/Work"), includingData);
        EXPECT_FALSE(fs::exists(temporary));
    }
}

TEST_F(InstanceDeletionTest, NeverDeletesTheHomeHoweverItIsSpelled) {
    fs::create_directory_symlink(home_.path(), folder_ / "link");
    fs::create_directory_symlink(home_.path().parent_path(), folder_ / "middle");
    const std::string home = home_.path();
    for (const std::string& written :
         {"~"s, "~/"s, "~//"s, "~/."s, "~/Documents/.."s, "~/Documents/../"s, "~/.."s, "/"s, home,
          home + "/", home + "/../" + home_.path().filename().string(),
          home_.path().parent_path().string(), (folder_ / "link").string(),
          (folder_ / "link").string() + "/",
          (folder_ / "middle" / home_.path().filename()).string()}) {
        expectDataKept(written);
    }
}

TEST_F(InstanceDeletionTest, NeverDeletesTheHomeByARelativePath) {
    const fs::path before = fs::current_path();
    fs::current_path(home_.path());
    expectDataKept(".");
    expectDataKept("..");
    fs::current_path(before);
}

TEST_F(InstanceDeletionTest, ARelativeDataFolderStays) {
    const fs::path before = fs::current_path();
    fs::current_path(home_.path());
    expectDataKept("QuorvelInstances/Work");
    expectDataKept("./QuorvelInstances/Work");
    fs::current_path(before);
}

TEST_F(InstanceDeletionTest, DeletesNoDataIfTheConfigurationNamesNone) {
    expectDataKept("");
    expectDataKept(home_.path().string() + "/QuorvelInstances/Work\0x"s);
    expectDataKept("~\0"s);
    expectDataKept("~no-such-user-here");
}

TEST_F(InstanceDeletionTest, ADataFolderThatIsALinkLosesTheLinkAlone) {
    write(folder_ / "kept/file", "x");
    fs::create_directory_symlink(folder_ / "kept", home_ / "QuorvelInstances/Link");
    removeWithData(recordWithHome("~/QuorvelInstances/Link/"));
    EXPECT_FALSE(fs::is_symlink(home_ / "QuorvelInstances/Link"));
    EXPECT_EQ(read(folder_ / "kept/file"), "x");
}

TEST_F(InstanceDeletionTest, LinksInTheDataAreNotFollowed) {
    fs::create_directory_symlink(home_ / "Documents", home_ / "QuorvelInstances/Work/Documents");
    fs::create_directory_symlink(home_.path(), home_ / "QuorvelInstances/Work/home");
    removeWithData(recordWithHome("~/QuorvelInstances/Work"));
    EXPECT_FALSE(fs::exists(home_ / "QuorvelInstances/Work"));
    EXPECT_EQ(read(home_ / "Documents/precious"), "x");
}

TEST_F(InstanceDeletionTest, AWrapperThatIsALinkLosesTheLinkAlone) {
    const InstanceRecord record = recordWithHome("~/none");
    fs::create_directory_symlink(record.bundleURL, folder_ / "Link.app");
    InstanceRegistry().remove({folder_ / "Link.app", record.config}, false);
    InstanceRegistry().remove({folder_ / "Link.app/", record.config}, false);
    EXPECT_FALSE(fs::is_symlink(folder_ / "Link.app"));
    EXPECT_TRUE(fs::exists(record.bundleURL / "Contents/Resources/instance.json"));
}

TEST_F(InstanceDeletionTest, ADanglingLinkForAWrapperGoes) {
    fs::create_directory_symlink("nowhere", folder_ / "Link.app");
    InstanceRegistry().remove({folder_ / "Link.app", minimalConfig()}, false);
    EXPECT_FALSE(fs::is_symlink(folder_ / "Link.app"));
}

TEST_F(InstanceDeletionTest, WhenTheWrapperMayNotGoTheDataStays) {
    InstanceConfig config = minimalConfig();
    config.instanceHome = home_ / "QuorvelInstances/Work";
    const auto before = treeOf(home_.path());
    EXPECT_THROW(removeWithData({home_.path(), config}), PlatformError);
    EXPECT_EQ(treeOf(home_.path()), before);
}

TEST_F(InstanceDeletionTest, WhenTheWrapperCantGoTheDataStays) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        InstanceConfig config = minimalConfig();
        config.instanceHome = folder_ / "data";
        write(folder_ / "data/file", "x");
        makeWrapper(folder_ / "closed/Work.app", config);
        fs::permissions(folder_ / "closed", fs::perms{0555});
        fs::permissions(folder_ / "closed/Work.app", fs::perms{0555});
        try {
            removeWithData({folder_ / "closed/Work.app", config});
        } catch (const PlatformError& error) {
            return error.code() == std::errc::permission_denied &&
                   read(folder_ / "data/file") == "x";
        }
        return false;
    }));
}

TEST_F(InstanceDeletionTest, WhenAPartOfTheWrapperCantGoTheDataStays) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        InstanceConfig config = minimalConfig();
        config.instanceHome = folder_ / "data";
        write(folder_ / "data/file", "x");
        makeWrapper(folder_ / "Work.app", config);
        write(folder_ / "Work.app/Contents/MacOS/runner", "x");
        const auto isKept = [&](const char* closed, unsigned permissions) {
            fs::permissions(folder_ / closed, fs::perms{permissions});
            bool failed = false;
            try {
                removeWithData({folder_ / "Work.app", config});
            } catch (const PlatformError& error) {
                failed = error.code() == std::errc::permission_denied;
            }
            fs::permissions(folder_ / closed, fs::perms{0755});
            return failed && read(folder_ / "data/file") == "x";
        };
        return isKept("Work.app/Contents/MacOS", 0555) &&
               isKept("Work.app/Contents/Resources", 0555) && isKept("Work.app/Contents", 0300) &&
               isKept("Work.app", 0);
    }));
}

TEST_F(InstanceDeletionTest, ReportsWhatHappenedToTheData) {
    using Case = DeletedData::Case;
    const InstanceRegistry registry;
    EXPECT_EQ(registry.remove(recordWithHome("~/QuorvelInstances/Work"), false).outcome,
              Case::untouched);
    EXPECT_EQ(registry.remove(recordWithHome("~/QuorvelInstances/None"), true).outcome,
              Case::untouched);
    const DeletedData spared = registry.remove(recordWithHome("~"), true);
    EXPECT_EQ(spared.outcome, Case::spared);
    EXPECT_FALSE(spared.isFailure());
    const DeletedData removed = registry.remove(recordWithHome("~/QuorvelInstances/Work"), true);
    EXPECT_EQ(removed.outcome, Case::removed);
    EXPECT_EQ(removed.removedItems, 2U);
    EXPECT_EQ(removed.folder, home_ / "QuorvelInstances/Work");
    EXPECT_EQ(removed.description(), "");
}

TEST_F(InstanceDeletionTest, ReportsEveryUnusableDataFolderAsSpared) {
    const fs::path before = fs::current_path();
    fs::current_path(home_.path());
    for (const std::string& written :
         {"QuorvelInstances/Work"s, ""s, home_.path().string() + "/QuorvelInstances/Work\0x"s,
          home_.path().parent_path().string()}) {
        const DeletedData data = InstanceRegistry().remove(recordWithHome(written), true);
        EXPECT_EQ(data.outcome, DeletedData::Case::spared) << written;
        EXPECT_FALSE(data.isFailure()) << written;
    }
    fs::current_path(before);
}

TEST_F(InstanceDeletionTest, ReportsHowMuchOfTheDataIsLeftAndWhy) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        InstanceConfig config = minimalConfig();
        config.instanceHome = folder_ / "data";
        for (int number = 0; number < 300; ++number) {
            write(folder_ / "data" / std::to_string(number), "x");
        }
        write(folder_ / "data/closed/stays", "x");
        fs::permissions(folder_ / "data/closed", fs::perms{0555});
        const DeletedData data =
            InstanceRegistry().remove({makeWrapper(folder_ / "Work.app", config), config}, true);
        return data.outcome == DeletedData::Case::partly && data.removedItems == 300 &&
               data.remainingItems == 3 && data.isFailure() &&
               data.description().ends_with("300 items removed, 3 items left. “stays” couldn’t be "
                                            "removed: permission denied");
    }));
}

TEST_F(InstanceDeletionTest, AnotherCloneInTheRecordsPlaceStaysWithAllData) {
    const InstanceRecord listed = recordWithHome("~/QuorvelInstances/Work");
    const auto expectStale = [&](const std::function<void(InstanceConfig&)>& change) {
        InstanceConfig newer = listed.config;
        change(newer);
        makeWrapper(listed.bundleURL, newer);
        const auto before = treeOf(home_.path());
        for (const bool withData : {false, true}) {
            EXPECT_THROW(InstanceRegistry().remove(listed, withData), RefusedDeletion);
        }
        EXPECT_EQ(treeOf(home_.path()), before);
    };
    expectStale([](InstanceConfig& config) { config.instanceHome = "~/QuorvelInstances/Newer"; });
    expectStale([](InstanceConfig& config) { config.bundleId = "another"; });
    expectStale([](InstanceConfig& config) { config.targetAppPath = "/Applications/Other.app"; });
    expectStale([](InstanceConfig& config) { config.kind = ShortcutKind::web; });
    expectStale([](InstanceConfig& config) { config.url = "https://other.test"; });
    expectStale([](InstanceConfig& config) { config.openPath = "/other"; });
    expectStale([](InstanceConfig& config) { config.commandPath = "/other"; });
}

TEST_F(InstanceDeletionTest, AnAppInTheRecordsPlaceStaysWithAllData) {
    const InstanceRecord listed = recordWithHome("~/QuorvelInstances/Work");
    fs::remove_all(listed.bundleURL);
    makeAppBundle(listed.bundleURL);
    const auto before = treeOf(home_.path());
    for (const bool withData : {false, true}) {
        EXPECT_THROW(InstanceRegistry().remove(listed, withData), RefusedDeletion);
    }
    EXPECT_EQ(treeOf(home_.path()), before);
}

TEST_F(InstanceDeletionTest, ACloneThatWasDamagedMeanwhileGoes) {
    const InstanceRecord listed = recordWithHome("~/QuorvelInstances/Work");
    write(listed.bundleURL / "Contents/MacOS/runner", "x");
    write(listed.bundleURL / "Contents/Resources/instance.json", "{");
    InstanceRegistry().remove(listed, false);
    EXPECT_FALSE(fs::exists(listed.bundleURL));
}

TEST_F(InstanceDeletionTest, ACloneWhoseSettingsChangedMeanwhileIsStillTheSame) {
    const InstanceRecord listed = recordWithHome("~/QuorvelInstances/Work");
    InstanceConfig changed = listed.config;
    changed.shareUserFolders = !changed.shareUserFolders;
    changed.extraArgs = {"--new"};
    makeWrapper(listed.bundleURL, changed);
    removeWithData(listed);
    EXPECT_FALSE(fs::exists(listed.bundleURL));
    EXPECT_FALSE(fs::exists(home_ / "QuorvelInstances/Work"));
}

TEST_F(InstanceDeletionTest, AnAliasOfACloneThatIsListedSparesItsData) {
    const InstanceRecord record = recordWithHome("~/QuorvelInstances/Work");
    fs::create_directory_symlink(record.bundleURL, home_ / "Applications/Alias.app");
    EXPECT_THROW(removeWithData({home_ / "Applications/Alias.app", record.config}),
                 RefusedDeletion);
    EXPECT_EQ(read(home_ / "QuorvelInstances/Work/data"), "x");
}

TEST_F(InstanceDeletionTest, DataThatCantBeRemovedIsNotAnError) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        InstanceConfig config = minimalConfig();
        config.instanceHome = folder_ / "closed/data";
        write(folder_ / "closed/data/file", "x");
        makeWrapper(folder_ / "Work.app", config);
        fs::permissions(folder_ / "closed", fs::perms{0555});
        const DeletedData data = InstanceRegistry().remove({folder_ / "Work.app", config}, true);
        return !fs::exists(folder_ / "Work.app") && read(folder_ / "closed/data/file") == "x" &&
               data.outcome == DeletedData::Case::kept && data.isFailure();
    }));
}

} // namespace
} // namespace quorvel
