#include "LaunchKit/InstanceRegistry.h"

#include "Platform/PlatformError.h"
#include "tests/support/AppBundles.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;

class InstanceDeletion : public ::testing::Test {
protected:
    InstanceDeletion() {
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

TEST_F(InstanceDeletion, TakesTheWrapperAndLeavesTheData) {
    const InstanceRecord record = recordWithHome("~/QuorvelInstances/Work");
    InstanceRegistry().remove(record, false);
    EXPECT_FALSE(fs::exists(record.bundleURL));
    EXPECT_TRUE(fs::exists(home_ / "QuorvelInstances/Work/data"));
}

TEST_F(InstanceDeletion, TakesTheDataWhenAsked) {
    const InstanceRecord record = recordWithHome("~/QuorvelInstances/Work");
    removeWithData(record);
    EXPECT_FALSE(fs::exists(record.bundleURL));
    EXPECT_FALSE(fs::exists(home_ / "QuorvelInstances/Work"));
    EXPECT_TRUE(fs::exists(home_ / "QuorvelInstances"));
}

TEST_F(InstanceDeletion, TakesTheDataOfAWrapperThatIsGoneAlready) {
    const InstanceRecord record = recordWithHome("~/QuorvelInstances/Work");
    fs::remove_all(record.bundleURL);
    removeWithData(record);
    EXPECT_FALSE(fs::exists(home_ / "QuorvelInstances/Work"));
}

TEST_F(InstanceDeletion, SucceedsWithoutAnyData) {
    const InstanceRecord record = recordWithHome("~/QuorvelInstances/None");
    removeWithData(record);
    EXPECT_FALSE(fs::exists(record.bundleURL));
}

TEST_F(InstanceDeletion, NeverTakesTheHomeHoweverItIsWritten) {
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

TEST_F(InstanceDeletion, NeverTakesTheHomeByARelativePath) {
    const fs::path before = fs::current_path();
    fs::current_path(home_.path());
    expectDataKept(".");
    expectDataKept("..");
    fs::current_path(before);
}

TEST_F(InstanceDeletion, TakesNothingWhereTheConfigurationNamesNothing) {
    expectDataKept("");
    expectDataKept(home_.path().string() + "/QuorvelInstances/Work\0x"s);
    expectDataKept("~\0"s);
    expectDataKept("~no-such-user-here");
}

TEST_F(InstanceDeletion, ADataFolderThatIsALinkLosesTheLinkAlone) {
    write(folder_ / "kept/file", "x");
    fs::create_directory_symlink(folder_ / "kept", home_ / "QuorvelInstances/Link");
    removeWithData(recordWithHome("~/QuorvelInstances/Link/"));
    EXPECT_FALSE(fs::is_symlink(home_ / "QuorvelInstances/Link"));
    EXPECT_EQ(read(folder_ / "kept/file"), "x");
}

TEST_F(InstanceDeletion, LinksInTheDataAreNotFollowed) {
    fs::create_directory_symlink(home_ / "Documents", home_ / "QuorvelInstances/Work/Documents");
    fs::create_directory_symlink(home_.path(), home_ / "QuorvelInstances/Work/home");
    removeWithData(recordWithHome("~/QuorvelInstances/Work"));
    EXPECT_FALSE(fs::exists(home_ / "QuorvelInstances/Work"));
    EXPECT_EQ(read(home_ / "Documents/precious"), "x");
}

TEST_F(InstanceDeletion, AWrapperThatIsALinkLosesTheLinkAlone) {
    const InstanceRecord record = recordWithHome("~/none");
    fs::create_directory_symlink(record.bundleURL, folder_ / "Link.app");
    InstanceRegistry().remove({folder_ / "Link.app", record.config}, false);
    InstanceRegistry().remove({folder_ / "Link.app/", record.config}, false);
    EXPECT_FALSE(fs::is_symlink(folder_ / "Link.app"));
    EXPECT_TRUE(fs::exists(record.bundleURL / "Contents/Resources/instance.json"));
}

TEST_F(InstanceDeletion, ADanglingLinkForAWrapperGoes) {
    fs::create_directory_symlink("nowhere", folder_ / "Link.app");
    InstanceRegistry().remove({folder_ / "Link.app", minimalConfig()}, false);
    EXPECT_FALSE(fs::is_symlink(folder_ / "Link.app"));
}

TEST_F(InstanceDeletion, WhenTheWrapperMayNotGoTheDataStays) {
    InstanceConfig config = minimalConfig();
    config.instanceHome = home_ / "QuorvelInstances/Work";
    const auto before = treeOf(home_.path());
    EXPECT_THROW(removeWithData({home_.path(), config}), PlatformError);
    EXPECT_EQ(treeOf(home_.path()), before);
}

TEST_F(InstanceDeletion, WhenTheWrapperCantGoTheDataStays) {
    EXPECT_TRUE(asOrdinaryUser(folder_.path(), [&] {
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

TEST_F(InstanceDeletion, DataThatCantGoIsNoError) {
    EXPECT_TRUE(asOrdinaryUser(folder_.path(), [&] {
        InstanceConfig config = minimalConfig();
        config.instanceHome = folder_ / "closed/data";
        write(folder_ / "closed/data/file", "x");
        makeWrapper(folder_ / "Work.app", config);
        fs::permissions(folder_ / "closed", fs::perms{0555});
        removeWithData({folder_ / "Work.app", config});
        return !fs::exists(folder_ / "Work.app") && fs::exists(folder_ / "closed/data");
    }));
}

} // namespace
} // namespace quorvel
