#include "LaunchKit/InstanceRegistry.h"

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "Platform/files/FileLock.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <future>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
using ::testing::ElementsAre;
namespace fs = std::filesystem;

class InstanceRegistryTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    fs::path wrapper(const std::string& file, const std::string& name) const {
        return makeWrapper(at(file), minimalConfig(name));
    }

    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const InstanceRecord& record : InstanceRegistry({folder_.path()}).list()) {
            result.push_back(record.config.displayName);
        }
        return result;
    }

    TemporaryFolder folder_;
};

TEST_F(InstanceRegistryTest, LooksInTheUsersApplicationsUnlessTold) {
    const TemporaryHome home;
    EXPECT_THAT(InstanceRegistry().searchDirs(), ElementsAre(home / "Applications"));
    EXPECT_TRUE(InstanceRegistry().list().empty()) << "the folder is not even there";
    fs::create_directory(home / "Applications");
    EXPECT_TRUE(InstanceRegistry().list().empty());
    makeWrapper(home / "Applications/Work.app", minimalConfig());
    EXPECT_EQ(InstanceRegistry().list().size(), 1U);
}

TEST_F(InstanceRegistryTest, AnEmptyListOfFoldersStaysEmpty) {
    const InstanceRegistry registry(std::vector<fs::path>{});
    EXPECT_TRUE(registry.searchDirs().empty());
    EXPECT_TRUE(registry.list().empty());
}

TEST_F(InstanceRegistryTest, ListsOnlyClones) {
    wrapper("Work.app", "Work");
    makeAppBundle(at("Mail.app"));
    write(at("Notes.txt"), "text");
    write(at("File.app"), "no folder");
    const auto records = InstanceRegistry({folder_.path()}).list();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].bundleURL, at("Work.app"));
    EXPECT_EQ(records[0].id(), at("Work.app").string());
    EXPECT_EQ(records[0].config.displayName, "Work");
}

TEST_F(InstanceRegistryTest, TheExtensionCountsCaseForCase) {
    wrapper("Foo.APP", "upper");
    wrapper("Foo.app.bak", "backup");
    wrapper("Foo", "bare");
    wrapper(".hidden.app", "hidden");
    wrapper("a.b.app", "dots");
    wrapper("line\nbreak.app", "line");
    wrapper("no text \xFF.app", "bytes");
    EXPECT_THAT(names(), ElementsAre("bytes", "dots", "hidden", "line"));
}

TEST_F(InstanceRegistryTest, DoesNotLookDeeper) {
    wrapper("folder/Work.app", "Work");
    EXPECT_TRUE(names().empty());
}

TEST_F(InstanceRegistryTest, SortsByNameIgnoringCase) {
    wrapper("1.app", "beta");
    wrapper("2.app", "Alpha");
    wrapper("3.app", "alpha");
    wrapper("4.app", "Émile");
    wrapper("5.app", "Zed");
    const auto sorted = names();
    ASSERT_EQ(sorted.size(), 5U);
    EXPECT_THAT((std::vector<std::string>{sorted[0], sorted[1]}),
                ::testing::UnorderedElementsAre("Alpha", "alpha"));
    EXPECT_THAT((std::vector<std::string>{sorted.begin() + 2, sorted.end()}),
                ElementsAre("beta", "Émile", "Zed"));
}

TEST_F(InstanceRegistryTest, EqualNamesStayInTheOrderInWhichTheyWereFound) {
    for (const char* folder : {"c", "a", "b"}) {
        makeWrapper(at(folder) / "Same.app", minimalConfig(folder == "a"s ? "SAME" : "same"));
    }
    const auto records = InstanceRegistry({at("c"), at("a"), at("b")}).list();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].bundleURL, at("c/Same.app"));
    EXPECT_EQ(records[1].bundleURL, at("a/Same.app"));
    EXPECT_EQ(records[2].bundleURL, at("b/Same.app"));
}

TEST_F(InstanceRegistryTest, AWrapperReachedTwiceIsListedTwice) {
    wrapper("Work.app", "Work");
    EXPECT_EQ(InstanceRegistry({folder_.path(), folder_.path()}).list().size(), 2U);
}

TEST_F(InstanceRegistryTest, FoldersThatCantBeReadAreLeftOut) {
    wrapper("Work.app", "Work");
    write(at("file"), "");
    ::mkfifo(at("fifo").c_str(), 0600);
    const InstanceRegistry registry({at("none"), at("file"), at("fifo"), folder_.path()});
    EXPECT_EQ(registry.list().size(), 1U);
}

TEST_F(InstanceRegistryTest, DamagedWrappersAreNotListed) {
    const auto damaged = [&](const std::string& name) {
        fs::path file = at(name) / "Contents/Resources/instance.json";
        fs::create_directories(file.parent_path());
        return file;
    };
    ::mkfifo(damaged("fifo.app").c_str(), 0600);
    fs::create_directory(damaged("folder.app"));
    fs::create_symlink("instance.json", damaged("loop.app"));
    write(damaged("text.app"), "\xFF\xFE");
    write(damaged("deep.app"), std::string(100'000, '['));
    write(damaged("huge.app"), minimalConfig().json());
    fs::resize_file(damaged("huge.app"), std::uintmax_t{100} << 20U);
    fs::create_directory_symlink("itself.app", at("itself.app"));
    wrapper("Work.app", "Work");
    EXPECT_THAT(names(), ElementsAre("Work"));
}

TEST_F(InstanceRegistryTest, ARecordIsReadFromAnyFolder) {
    wrapper("Odd.folder", "Odd");
    const auto record = InstanceRegistry().record(at("Odd.folder"));
    ASSERT_TRUE(record);
    EXPECT_EQ(record->config.displayName, "Odd");
    EXPECT_FALSE(InstanceRegistry().record(at("none.app")));
}

TEST_F(InstanceRegistryTest, ARecordsIdentityIsItsBundle) {
    const InstanceRecord one{"/A/Work.app", minimalConfig("one")};
    const InstanceRecord other{"/A/Work.app", minimalConfig("other")};
    EXPECT_EQ(one, other);
    EXPECT_EQ(std::hash<InstanceRecord>{}(one), std::hash<InstanceRecord>{}(other));
    EXPECT_NE(one, (InstanceRecord{"/B/Work.app", one.config}));
}

TEST_F(InstanceRegistryTest, RecordsOfDifferentBundlesHashDifferently) {
    const std::hash<InstanceRecord> hash;
    const InstanceConfig config = minimalConfig();
    EXPECT_EQ(hash({"/A/Work.app", config}), fs::hash_value("/A/Work.app"));
    EXPECT_NE(hash({"/A/Work.app", config}), hash({"/B/Work.app", config}));
    EXPECT_NE(hash({"/A/Work.app", config}), hash({"/A/Play.app", config}));
}

TEST_F(InstanceRegistryTest, ARecordHasAnIconWhenThereIsOne) {
    const InstanceRecord record{wrapper("Work.app", "Work"), minimalConfig()};
    EXPECT_EQ(record.iconURL(), std::nullopt);
    write(at("Work.app/Contents/Resources/AppIcon.icns"), "icon");
    EXPECT_EQ(record.iconURL(), at("Work.app/Contents/Resources/AppIcon.icns"));
}

TEST_F(InstanceRegistryTest, UpdatingRewritesTheConfigurationAlone) {
    const fs::path bundle = wrapper("Work.app", "Work");
    write(bundle / "Contents/Info.plist", "untouched");
    const InstanceRegistry registry({folder_.path()});
    const InstanceRecord record = registry.list().at(0);
    registry.update(record, [](InstanceConfig& config) { config.displayName = "Play"; });
    EXPECT_EQ(record.config.displayName, "Work");
    InstanceConfig expected = record.config;
    expected.displayName = "Play";
    EXPECT_EQ(read(bundle / "Contents/Resources/instance.json"), expected.json());
    EXPECT_EQ(read(bundle / "Contents/Info.plist"), "untouched");
    EXPECT_THAT(names(), ElementsAre("Play"));
}

TEST_F(InstanceRegistryTest, UpdatingAWrapperThatIsGoneMakesNothing) {
    const InstanceRecord record{at("Gone.app"), minimalConfig()};
    InstanceRegistry().update(record, [](InstanceConfig& config) { config.url = "x"; });
    EXPECT_FALSE(fs::exists(at("Gone.app")));
}

TEST_F(InstanceRegistryTest, UpdatingToTextThatCantBeWrittenChangesNothing) {
    const fs::path bundle = wrapper("Work.app", "Work");
    const std::string before = read(bundle / "Contents/Resources/instance.json");
    InstanceRegistry().update({bundle, minimalConfig()},
                              [](InstanceConfig& config) { config.displayName = "\xFF"; });
    EXPECT_EQ(read(bundle / "Contents/Resources/instance.json"), before);
}

TEST_F(InstanceRegistryTest, UpdatingAFifoNeitherBlocksNorReplacesIt) {
    const fs::path bundle = wrapper("Work.app", "Work");
    const fs::path file = bundle / "Contents/Resources/instance.json";
    fs::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    InstanceRegistry().update({bundle, minimalConfig()}, [](InstanceConfig&) {});
    EXPECT_TRUE(fs::is_fifo(file));
}

TEST_F(InstanceRegistryTest, SharingKeepsWhatAnotherProgramChangedMeanwhile) {
    InstanceConfig config = minimalConfig();
    config.shareUserFolders = false;
    const InstanceRecord listed{makeWrapper(at("Work.app"), config), config};
    config.displayName = "Renamed";
    makeWrapper(at("Work.app"), config);
    const InstanceRegistry registry({folder_.path()});
    registry.shareUserFolders(listed);
    const auto now = registry.record(listed.bundleURL);
    EXPECT_TRUE(now->config.shareUserFolders);
    EXPECT_EQ(now->config.displayName, "Renamed");
    registry.shareUserFolders(listed);
}

TEST_F(InstanceRegistryTest, SharingWaitsForAChangeThatIsGoingOn) {
    InstanceConfig config = minimalConfig();
    config.shareUserFolders = false;
    const InstanceRecord listed{makeWrapper(at("Work.app"), config), config};
    auto lock = FileLock::tryTakeFolder(folder_.path());
    auto sharing =
        std::async(std::launch::async, [&] { InstanceRegistry().shareUserFolders(listed); });
    EXPECT_EQ(sharing.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    config.displayName = "Renamed";
    makeWrapper(at("Work.app"), config);
    lock.reset();
    sharing.get();
    const auto now = InstanceRegistry().record(listed.bundleURL);
    EXPECT_TRUE(now->config.shareUserFolders);
    EXPECT_EQ(now->config.displayName, "Renamed");
}

TEST_F(InstanceRegistryTest, SharingFailsForACloneThatIsGoneOrCantBeChanged) {
    InstanceConfig config = minimalConfig();
    config.shareUserFolders = false;
    const InstanceRecord gone{at("Work.app"), config};
    EXPECT_THROW(InstanceRegistry().shareUserFolders(gone), std::runtime_error);
    EXPECT_FALSE(fs::exists(gone.bundleURL));
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        makeWrapper(gone.bundleURL, config);
        fs::permissions(gone.bundleURL / "Contents/Resources/instance.json", fs::perms{0444});
        try {
            InstanceRegistry().shareUserFolders(gone);
        } catch (const std::runtime_error& error) {
            return std::string_view(error.what()).ends_with("folder sharing is still off.");
        }
        return false;
    }));
}

} // namespace
} // namespace quorvel
