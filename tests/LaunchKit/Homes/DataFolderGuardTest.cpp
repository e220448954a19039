// Which data folders may be deleted with a clone, and chosen for a new one.
#include "LaunchKit/Homes/DataFolderGuard.h"

#include "LaunchKit/Changes/RequestCheck.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/AppBundles.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

class DataFolderGuardTest : public ::testing::Test {
protected:
    InstanceRecord cloneWithHome(const std::string& instanceHome,
                                 const std::string& name = "Work") const {
        InstanceConfig config = minimalConfig(name);
        config.instanceHome = instanceHome;
        return {makeWrapper(home_ / "Applications" / (name + ".app"), config), config};
    }

    // Why the deletion with data is refused; empty when it is not. What is refused changes nothing.
    [[nodiscard]] std::string refusal(const InstanceRecord& record) const {
        const auto before = treeOf(home_.path());
        try {
            InstanceRegistry().remove(record, true);
        } catch (const RefusedDeletion& refused) {
            EXPECT_EQ(treeOf(home_.path()), before);
            return refused.description();
        }
        return {};
    }

    static WrapperFactory::Request request(const std::optional<std::string>& instanceHome) {
        WrapperFactory::Request request;
        request.kind = ShortcutKind::web;
        request.displayName = "New";
        request.instanceHome = instanceHome;
        return request;
    }

    // Why a new clone with that data folder is refused; empty when it is not.
    static std::string refusalOfNew(const std::optional<std::string>& instanceHome,
                                    bool shared = false) {
        try {
            validateRequest(request(instanceHome), std::nullopt, {.sharedHome = shared});
        } catch (const InvalidRequest& refused) {
            return refused.what();
        }
        return {};
    }

    TemporaryFolder folder_;
    TemporaryHome home_;
};

TEST_F(DataFolderGuardTest, TheUsersFoldersAreSpared) {
    for (const char* name :
         {"Desktop", "Documents", "Downloads", "Library", "Movies", "Music", "Pictures", "Public",
          "Templates", "Videos", ".ssh", ".gnupg", ".config", ".local", ".cache", ".mozilla",
          ".var", "snap", "QuorvelInstances"}) {
        write(home_ / name / "precious", "x");
        const std::string home = "~/"s + name;
        const std::string reason = "is your folder “"s + name + "”";
        EXPECT_THAT(refusal(cloneWithHome(home)), HasSubstr(reason)) << name;
        EXPECT_THAT(refusalOfNew(home), HasSubstr(reason)) << name;
    }
    EXPECT_THAT(refusal(cloneWithHome("~/Applications")), HasSubstr("your folder “Applications”"));
    EXPECT_THAT(refusalOfNew("~/Applications"), HasSubstr("your folder “Applications”"));
}

TEST_F(DataFolderGuardTest, AFolderInOneOfThemMayGo) {
    for (const char* name : {"~/Documents/Work", "~/.config/work", "~/.local/share/work",
                             "~/QuorvelInstances/Work", "~/.work", "~/work", "~/Documents2"}) {
        EXPECT_EQ(refusalOfNew(name), "") << name;
        const InstanceRecord record = cloneWithHome(name);
        write(fs::path(record.config.resolvedHome()) / "data", "x");
        EXPECT_EQ(refusal(record), "") << name;
        EXPECT_FALSE(fs::exists(record.config.resolvedHome())) << name;
    }
}

TEST_F(DataFolderGuardTest, AFolderThatContainsOneOfThemIsSpared) {
    write(home_ / "mine/dokumente/precious", "x");
    write(home_ / ".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/mine/dokumente\"\n");
    EXPECT_THAT(refusal(cloneWithHome("~/mine")), HasSubstr("contains your folder “dokumente”"));
    EXPECT_THAT(refusal(cloneWithHome("~/mine/dokumente")), HasSubstr("is your folder"));
    EXPECT_THAT(refusalOfNew("~/mine"), HasSubstr("contains your folder “dokumente”"));
}

TEST_F(DataFolderGuardTest, TheyAreSparedHoweverTheyAreWritten) {
    write(home_ / "Documents/precious", "x");
    fs::create_directories(home_ / "sub");
    fs::create_directory_symlink(home_.path(), folder_ / "link");
    const std::string through = (folder_ / "link/Documents").string();
    for (const std::string& written : {"~/Documents/"s, "~/./Documents"s, "~/Documents/."s,
                                       "~/sub/../Documents"s, "~//Documents//"s, through}) {
        EXPECT_THAT(refusal(cloneWithHome(written)), HasSubstr("is your folder")) << written;
        EXPECT_THAT(refusalOfNew(written), HasSubstr("is your folder")) << written;
    }
}

TEST_F(DataFolderGuardTest, TheUsersHomeIsRefusedForANewClone) {
    EXPECT_THAT(refusalOfNew("~"), HasSubstr("is your home"));
    EXPECT_THAT(refusalOfNew("/"), HasSubstr("contains your home"));
    EXPECT_EQ(refusalOfNew("~", true), "");
}

TEST_F(DataFolderGuardTest, AnotherClonesDataIsSpared) {
    cloneWithHome("~/data/Play", "Play");
    write(home_ / "data/Play/save", "x");
    fs::create_directory_symlink(home_ / "data", home_ / "alias");
    for (const char* shared : {"~/data/Play", "~/alias/Play", "~/data/./Play/"}) {
        EXPECT_THAT(refusal(cloneWithHome(shared)), HasSubstr("is the data folder of “Play”"));
        EXPECT_THAT(refusalOfNew(shared), HasSubstr("is the data folder of “Play”"));
        EXPECT_EQ(refusalOfNew(shared, true), "") << "said to be meant";
    }
    EXPECT_THAT(refusal(cloneWithHome("~/data")), HasSubstr("contains the data folder of “Play”"));
    EXPECT_THAT(refusalOfNew("~/data"), HasSubstr("contains the data folder of “Play”"));
    EXPECT_EQ(refusal(cloneWithHome("~/data/Play2")), "");
}

TEST_F(DataFolderGuardTest, AFolderInAnotherClonesDataIsSpared) {
    cloneWithHome("~/data/Play", "Play");
    write(home_ / "data/Play/saves/Work/save", "x");
    fs::create_directory_symlink(home_ / "data/Play", home_ / "alias");
    for (const char* inside : {"~/data/Play/saves", "~/data/Play/saves/Work", "~/alias/saves"}) {
        EXPECT_THAT(refusalOfNew(inside), HasSubstr("is inside the data folder of “Play”"))
            << inside;
        EXPECT_EQ(refusalOfNew(inside, true), "") << "said to be meant";
        EXPECT_THAT(refusal(cloneWithHome(inside)),
                    HasSubstr("is inside the data folder of “Play”"));
    }
    EXPECT_THAT(refusalOfNew("~/data/Play/new"), HasSubstr("is inside the data folder of “Play”"));
}

TEST_F(DataFolderGuardTest, AFolderInsideASharedOneMayBeRemoved) {
    for (const char* shared : {"~", "/", "~/Documents", "~/QuorvelInstances"}) {
        cloneWithHome(shared, "Play");
        for (const char* own : {"~/Documents/Work", "~/QuorvelInstances/Work"}) {
            write(home_ / std::string_view(own).substr(2) / "data", "x");
            EXPECT_EQ(refusalOfNew(own), "") << own << " in " << shared;
            EXPECT_EQ(refusal(cloneWithHome(own)), "") << own << " in " << shared;
        }
    }
}

TEST_F(DataFolderGuardTest, AnotherClonesDataIsSparedWhereItIsReachedByALink) {
    write(home_ / "data/Work/save", "x");
    fs::create_directory_symlink(home_ / "data/Work", home_ / "link");
    cloneWithHome("~/link", "Play");
    EXPECT_THAT(refusal(cloneWithHome("~/data/Work")), HasSubstr("is the data folder of “Play”"));
}

TEST_F(DataFolderGuardTest, AFolderThatIsToBeMadeIsComparedByItsPath) {
    cloneWithHome("~/data/Play", "Play");
    EXPECT_THAT(refusalOfNew("~/data/Play/"), HasSubstr("is the data folder of “Play”"));
    EXPECT_THAT(refusalOfNew("~/data"), HasSubstr("contains the data folder of “Play”"));
    EXPECT_EQ(refusalOfNew("~/data/Playing"), "");
    EXPECT_THAT(refusalOfNew("~/Movies"), HasSubstr("is your folder “Movies”"));
}

TEST_F(DataFolderGuardTest, TwoClonesOfOneNameInTwoFoldersAreNoticed) {
    InstanceConfig config = minimalConfig("New");
    makeWrapper(home_ / "Applications/New.app", config);
    WrapperFactory::Request second = request(std::nullopt);
    second.outputDir = home_ / "Elsewhere";
    EXPECT_THROW(validateRequest(second), SharedHome);
    EXPECT_NO_THROW(validateRequest(request(std::nullopt), std::nullopt, {.existingClone = true}))
        << "the clone itself is replaced";
    // The first is found only because it is beside the wrapper.
    fs::remove_all(home_ / "Applications/New.app");
    config.instanceHome = "~/QuorvelInstances/New";
    makeWrapper(home_ / "Elsewhere/Other.app", config);
    EXPECT_THROW(validateRequest(second), SharedHome);
    EXPECT_NO_THROW(validateRequest(request(std::nullopt)));
}

TEST_F(DataFolderGuardTest, DataInTheCloneItselfOrAroundItIsRefused) {
    const std::string inside = "~/Applications/Work.app/Contents/data";
    write(home_ / "Applications/Work.app/Contents/data/file", "x");
    EXPECT_THAT(refusal(cloneWithHome(inside)), HasSubstr("is inside the clone itself"));
    EXPECT_THAT(refusal(cloneWithHome("~/Applications/Work.app")),
                HasSubstr("is inside the clone itself"));
    EXPECT_THAT(refusalOfNew("~/Applications/New.app/data", true),
                HasSubstr("is inside the clone itself"));
    InstanceConfig config = minimalConfig();
    config.instanceHome = (home_ / "around").string();
    EXPECT_THAT(refusal({makeWrapper(home_ / "around/apps/Work.app", config), config}),
                HasSubstr("contains the clone itself"));
}

TEST_F(DataFolderGuardTest, WhatALinkLeadsToIsSpared) {
    write(home_ / "target/sub/precious", "x");
    fs::create_directory_symlink(home_ / "target", home_ / "link");
    for (const char* written : {"~/link/.", "~/link/./", "~/link/sub/..", "~/link/sub/../."}) {
        EXPECT_THAT(refusal(cloneWithHome(written)), HasSubstr("is what a symbolic link leads to"))
            << written;
    }
    EXPECT_EQ(refusal(cloneWithHome("~/link/sub")), "") << "only the way leads through the link";
    EXPECT_FALSE(fs::exists(home_ / "target/sub"));
}

TEST_F(DataFolderGuardTest, APathThroughAFolderThatIsMissingIsNotPlain) {
    write(home_ / "b/precious", "x");
    const std::string reason = refusal(cloneWithHome("~/missing/../b"));
    EXPECT_THAT(reason, HasSubstr("is not written as a plain path"));
    EXPECT_THAT(reason, Not(HasSubstr("link")));
    EXPECT_EQ(read(home_ / "b/precious"), "x");
}

TEST_F(DataFolderGuardTest, AnotherUsersHomeIsSpared) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give folders to another user";
    }
    write(folder_ / "mallory/data/precious", "x");
    write(folder_ / "passwd", "root:x:0:0::/root:/bin/sh\n"
                              "everywhere:x:4243:4243::/:/bin/sh\n"
                              "mallory:x:4242:4242::" +
                                  (folder_ / "mallory").string() + ":/bin/sh\n");
    ASSERT_EQ(::chown((folder_ / "mallory").c_str(), 4242, 4242), 0);
    const auto problem = inPrivateMounts([&]() -> std::string {
        bindMount(folder_ / "passwd", "/etc/passwd");
        for (const std::string& path : {(folder_ / "mallory/data").string(),
                                        (folder_ / "mallory").string(), folder_.path().string()}) {
            const std::string expected = "inside the home of the user “mallory”";
            // Asked first, since the clone that is made then has the folder, too.
            const std::string ofNew = refusalOfNew(path);
            const InstanceRecord record = cloneWithHome(path);
            const std::string ofDeletion = refusal(record);
            fs::remove_all(record.bundleURL);
            for (const std::string& text : {ofNew, ofDeletion}) {
                if (path != folder_.path() && text.find(expected) == std::string::npos) {
                    return path + ": " + text;
                }
                if (text.empty()) {
                    return path + " was taken";
                }
            }
        }
        write(folder_ / "own/data", "x");
        return refusal(cloneWithHome((folder_ / "own").string()));
    });
    if (!problem) {
        GTEST_SKIP() << "the kernel lets this user mount nothing";
    }
    EXPECT_EQ(*problem, "");
}

TEST_F(DataFolderGuardTest, WithoutItsDataTheCloneMayAlwaysGo) {
    write(home_ / "Documents/precious", "x");
    const InstanceRecord record = cloneWithHome("~/Documents");
    InstanceRegistry().remove(record, false);
    EXPECT_FALSE(fs::exists(record.bundleURL));
    EXPECT_EQ(read(home_ / "Documents/precious"), "x");
}

TEST_F(DataFolderGuardTest, AMountInTheDataOrInTheWrapperIsRefusedAndNothingChanges) {
    const InstanceRecord record = cloneWithHome("~/QuorvelInstances/Work");
    write(home_ / "QuorvelInstances/Work/a/data", "x");
    write(record.bundleURL / "Contents/MacOS/runner", "x");
    write(home_ / "Documents/precious", "x");
    for (const fs::path& point :
         {home_ / "QuorvelInstances/Work/a/mounted", record.bundleURL / "Contents/mounted"}) {
        fs::create_directories(point);
        const auto problem = inPrivateMounts([&]() -> std::string {
            bindMount(home_ / "Documents", point);
            const auto before = treeOf(home_.path());
            try {
                InstanceRegistry().remove(record, true);
                return "removed";
            } catch (const PlatformError&) {
                return treeOf(home_.path()) == before ? "" : "something is gone";
            }
        });
        if (!problem) {
            GTEST_SKIP() << "the kernel lets this user mount nothing";
        }
        EXPECT_EQ(*problem, "") << point;
        fs::remove(point);
    }
}

TEST_F(DataFolderGuardTest, ResolvesTheFolderExceptForALinkAtItsEnd) {
    fs::create_directories(home_ / "real/Work");
    fs::create_directory_symlink(home_ / "real", home_ / "way");
    fs::create_directory_symlink(home_ / "real/Work", home_ / "link");
    const auto resolved = [&](const std::string& written) {
        InstanceConfig config = minimalConfig();
        config.instanceHome = written;
        return dataFolderOf(config).path;
    };
    EXPECT_EQ(resolved("~/way/Work/"), home_ / "real/Work");
    EXPECT_EQ(resolved("~/way/./Work/../Work"), home_ / "real/Work");
    EXPECT_EQ(resolved("~/link"), home_ / "link");
    EXPECT_EQ(resolved("/"), "/");
    EXPECT_EQ(resolved("relative"), "");
}

} // namespace
} // namespace quorvel
