#include "LaunchKit/Changes/ClonesLock.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "Presentation/SystemWords.h"
#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"
#include "tests/support/UnprivilegedUser.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <thread>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
namespace fs = std::filesystem;

// In this system's words.
const std::string goesOn = inSystemWords(
    "Deletion", "It goes on until you quit it, perhaps under the original’s icon in the Dock.");

class DeleteCommandTest : public ::testing::Test {
protected:
    fs::path addClone(const std::string& instanceHome = "~/QuorvelInstances/Work") const {
        InstanceConfig config = minimalConfig("Work");
        config.instanceHome = instanceHome;
        return makeWrapper(harness.home / "Applications/Work.app", config);
    }

    // A whole clone, made by the command, whose configuration is then damaged.
    fs::path addDamagedClone() {
        const auto made = harness.run({"create", "--kind", "web", "--url", "https://a.test",
                                       "--name", "Work", "--runner", runnerProgram().string()});
        EXPECT_EQ(made.status, 0) << made.errors;
        fs::path wrapper = harness.home / "Applications/Work.app";
        write(wrapper / "Contents/Resources/instance.json", "{\"displayName\": }");
        return wrapper;
    }

    CommandLineHarness harness{};
    fs::path data = harness.home / "QuorvelInstances/Work";
};

TEST_F(DeleteCommandTest, AsksWithTheFolderThatIsMeant) {
    addClone("~/alias/./Work");
    fs::create_directories(harness.home / "real/Work");
    fs::create_directory_symlink(harness.home / "real", harness.home / "alias");
    harness.inputIsTerminal = true;
    EXPECT_THAT(harness.run({"delete", "Work", "--including-data"}).errors,
                StartsWith("Delete “Work” and everything in " +
                           (harness.home / "real/Work").string() + "? [y/N] "));
    fs::remove(harness.home / "real/Work");
    fs::create_directory_symlink(harness.home / "real", harness.home / "real/Work");
    EXPECT_THAT(harness.run({"delete", "Work", "--including-data"}).errors,
                StartsWith("Delete “Work” and the symbolic link " +
                           (harness.home / "real/Work").string() + "? [y/N] "));
}

TEST_F(DeleteCommandTest, WarnsInTheQuestionWhenTheCloneRuns) {
    const fs::path wrapper = addClone();
    write(data / "file", "x");
    harness.workspace.running = {{"app.quorvel.instance.test", wrapper, 1}};
    harness.inputIsTerminal = true;
    harness.typed = "n\n";
    EXPECT_THAT(harness.run({"delete", "Work", "--including-data"}).errors,
                HasSubstr("“Work” is running. It would lose what it has open"));
    EXPECT_THAT(harness.run({"delete", "Work"}).errors,
                StartsWith("Delete “Work”? “Work” is running. " + goesOn + " [y/N] "));
    harness.workspace.running.clear();
    EXPECT_THAT(harness.run({"delete", "Work", "--including-data"}).errors,
                Not(HasSubstr("is running")));
    EXPECT_TRUE(fs::exists(data / "file"));
}

TEST_F(DeleteCommandTest, WarnsOnStandardErrorWhenItCannotAsk) {
    const fs::path wrapper = addClone();
    write(data / "file", "x");
    harness.workspace.running = {{"app.quorvel.instance.test", wrapper, 1}};
    const auto result = harness.run({"delete", "Work", "--including-data", "--yes", "--json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.json()["deletedData"], true);
    EXPECT_THAT(result.errors, StartsWith("“Work” is running. "));
    addClone();
    EXPECT_EQ(harness.run({"delete", "Work", "--yes"}).errors,
              "“Work” is running. " + goesOn + "\n");
    addClone();
    harness.workspace.running.clear();
    EXPECT_EQ(harness.run({"delete", "Work", "--yes"}).errors, "");
}

TEST_F(DeleteCommandTest, WarnsWhenTheDataIsLockedThoughNoCloneIsSeenRunning) {
    addClone();
    write(data / "file", "x");
    harness.inputIsTerminal = true;
    harness.typed = "n\n";
    const std::vector<std::string> words{"delete", "Work", "--including-data"};
    EXPECT_THAT(harness.run(words).errors, Not(HasSubstr("running")));
    EXPECT_FALSE(fs::exists(data / homeLockName)) << "asking makes no lock";
    std::optional<FileLock> lock = FileLock::tryTake(data / homeLockName);
    ASSERT_TRUE(lock);
    EXPECT_THAT(harness.run(words).errors, HasSubstr("“Work” is running"));
    lock.reset();
    EXPECT_THAT(harness.run(words).errors, Not(HasSubstr("running")))
        << "a lock that no process holds";
    lock = FileLock::tryTake(data / homeLockName);
    const auto result = harness.run({"delete", "Work", "--including-data", "--yes"});
    EXPECT_THAT(result.errors, StartsWith("“Work” is running"));
    EXPECT_EQ(result.status, 0);
}

TEST_F(DeleteCommandTest, SaysInTheQuestionThatFoldersThatAreNotDataAreKept) {
    harness.inputIsTerminal = true;
    harness.workspace.running = {{"app.quorvel.instance.test", "/", 1}};
    const std::vector<std::string> words{"delete", "Work", "--including-data"};
    addClone("~");
    EXPECT_THAT(harness.run(words).errors,
                StartsWith("Delete “Work”? Its data folder " + harness.home.path().string() +
                           " is kept. “Work” is running. " + goesOn + " [y/N] "));
    harness.workspace.running.clear();
    addClone("relative/folder");
    EXPECT_THAT(harness.run(words).errors,
                StartsWith("Delete “Work”? Its data folder relative/folder is kept. [y/N] "));
    addClone("");
    EXPECT_THAT(harness.run(words).errors, StartsWith("Delete “Work”? [y/N] "));
}

TEST_F(DeleteCommandTest, FindsACloneByItsNameInAWorkingFolderThatIsGone) {
    const fs::path wrapper = addClone();
    const fs::path before = fs::current_path();
    fs::create_directory(harness.home / "gone");
    fs::current_path(harness.home / "gone");
    fs::remove(harness.home / "gone");
    const auto result = harness.run({"delete", "Work", "--yes"});
    fs::current_path(before);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_FALSE(fs::exists(wrapper));
}

TEST_F(DeleteCommandTest, ACloneThatLostItsConfigurationAloneIsDeletedByItsPath) {
    const fs::path wrapper = addDamagedClone();
    fs::remove(wrapper / "Contents/Resources/instance.json");
    const auto result = harness.run({"delete", wrapper.string(), "--yes"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_FALSE(fs::exists(wrapper));
}

TEST_F(DeleteCommandTest, SaysSoWhenOnlyAPartOfTheDataIsGone) {
    const TemporaryFolder folder;
    EXPECT_TRUE(asUnprivilegedUser(folder.path(), [&] {
        InstanceConfig config = minimalConfig("Work");
        config.instanceHome = (folder / "data").string();
        const fs::path wrapper = makeWrapper(folder / "Work.app", config);
        write(folder / "data/gone", "x");
        write(folder / "data/closed/stays", "x");
        fs::permissions(folder / "data/closed", fs::perms{0555});
        const auto result =
            harness.run({"delete", wrapper.string(), "--including-data", "--yes", "--json"});
        return result.status == 1 && result.json()["deletedData"] == "partly" &&
               result.errors.find("1 item removed, 3 items left. “stays” couldn’t be removed") !=
                   std::string::npos &&
               !fs::exists(wrapper);
    }));
}

TEST_F(DeleteCommandTest, SaysSoIfNoDataCouldBeRemoved) {
    const TemporaryFolder folder;
    EXPECT_TRUE(asUnprivilegedUser(folder.path(), [&] {
        InstanceConfig config = minimalConfig("Work");
        config.instanceHome = (folder / "closed/data").string();
        const fs::path wrapper = makeWrapper(folder / "Work.app", config);
        write(folder / "closed/data/file", "x");
        fs::permissions(folder / "closed", fs::perms{0555});
        const auto result =
            harness.run({"delete", wrapper.string(), "--including-data", "--yes", "--json"});
        return result.status == 1 && result.json()["deletedData"] == false &&
               result.errors.find(" was not. ") != std::string::npos &&
               read(folder / "closed/data/file") == "x" && !fs::exists(wrapper);
    }));
}

TEST_F(DeleteCommandTest, RefusesAFolderThatIsNotTheClonesAlone) {
    const fs::path wrapper = addClone("~/Documents");
    write(harness.home / "Documents/precious", "x");
    const auto result = harness.run({"delete", "Work", "--including-data", "--yes", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "The data folder " + (harness.home / "Documents").string() +
                                 " is your folder “Documents”, so nothing was deleted.\n");
    EXPECT_TRUE(fs::exists(wrapper));
    EXPECT_EQ(read(harness.home / "Documents/precious"), "x");
}

TEST_F(DeleteCommandTest, ADamagedCloneIsDeletedByItsPathAfterAQuestion) {
    const fs::path wrapper = addDamagedClone();
    write(data / "file", "x");
    EXPECT_EQ(harness.run({"delete", "Work", "--yes"}).status, 1) << "it has no name any more";
    EXPECT_EQ(harness.run({"delete", wrapper.string()}).status, 2);
    harness.inputIsTerminal = true;
    const auto asked = harness.run({"delete", wrapper.string()});
    EXPECT_EQ(asked.status, 1);
    EXPECT_THAT(asked.errors, HasSubstr("can’t be read, so its data folder is not known"));
    EXPECT_TRUE(fs::exists(wrapper / "Contents/MacOS/runner"));
    harness.typed = "y\n";
    EXPECT_EQ(harness.run({"delete", wrapper.string(), "--json"}).json(),
              nlohmann::json({{"bundleURL", wrapper.string()}, {"deletedData", false}}));
    EXPECT_FALSE(fs::exists(wrapper));
    EXPECT_TRUE(fs::exists(data / "file"));
}

TEST_F(DeleteCommandTest, ADamagedCloneIsFoundByItsNameInTheWorkingFolder) {
    const fs::path wrapper = addDamagedClone();
    InstanceConfig config = minimalConfig("Work.app");
    const fs::path named = makeWrapper(harness.home / "Applications/Other.app", config);
    const fs::path before = fs::current_path();
    fs::current_path(wrapper.parent_path());
    EXPECT_EQ(harness.run({"delete", "Work.app", "--yes"}).status, 0);
    EXPECT_FALSE(fs::exists(named)) << "a name comes first";
    EXPECT_TRUE(fs::exists(wrapper));
    const auto deleted = harness.run({"delete", "Work.app", "--yes"});
    fs::current_path(before);
    EXPECT_EQ(deleted.status, 0) << deleted.errors;
    EXPECT_FALSE(fs::exists(wrapper));
}

TEST_F(DeleteCommandTest, ACloneThatReplacesADamagedOneWhileTheQuestionIsOpenStays) {
    const fs::path wrapper = addDamagedClone();
    harness.inputIsTerminal = true;
    harness.typed = "y\n";
    harness.whileAsked = [&] {
        const auto made =
            harness.run({"create", "--kind", "web", "--url", "https://new.test", "--name", "Work",
                         "--runner", runnerProgram().string(), "--replace"});
        EXPECT_EQ(made.status, 0) << made.errors;
    };
    const auto refused = harness.run({"delete", wrapper.string()});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("is no longer the one that was listed"));
    const auto clone = InstanceRegistry().record(wrapper);
    ASSERT_TRUE(clone);
    EXPECT_EQ(clone->config.url, "https://new.test");
}

TEST_F(DeleteCommandTest, ADamagedCloneThatTookThePlaceOfAnotherWhileTheQuestionIsOpenStays) {
    const fs::path wrapper = addDamagedClone();
    harness.inputIsTerminal = true;
    harness.typed = "y\n";
    harness.whileAsked = [&] {
        fs::rename(wrapper, harness.home / "before");
        fs::copy(harness.home / "before", wrapper, fs::copy_options::recursive);
    };
    EXPECT_THAT(harness.run({"delete", wrapper.string()}).errors,
                HasSubstr("is no longer the one that was listed"));
    EXPECT_TRUE(fs::exists(wrapper / "Contents/MacOS/runner"));
}

TEST_F(DeleteCommandTest, DeletingADamagedCloneWaitsForAnotherChangeInItsFolder) {
    const fs::path wrapper = addDamagedClone();
    harness.inputIsTerminal = true;
    harness.typed = "y\n";
    std::thread change;
    harness.whileAsked = [&] {
        change = std::thread([&, lock = lockClones(wrapper.parent_path())]() mutable {
            EXPECT_FALSE(
                waitUntil([&] { return !fs::exists(wrapper); }, std::chrono::milliseconds(100)));
            lock.reset();
        });
    };
    EXPECT_EQ(harness.run({"delete", wrapper.string()}).status, 0);
    change.join();
    EXPECT_FALSE(fs::exists(wrapper));
}

TEST_F(DeleteCommandTest, TheDataOfADamagedCloneIsNotGuessed) {
    const fs::path wrapper = addDamagedClone();
    const auto result = harness.run({"delete", wrapper.string(), "--including-data", "--yes"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("without --including-data"));
    EXPECT_TRUE(fs::exists(wrapper));
    EXPECT_EQ(harness.run({"delete", wrapper.string(), "--yes"}).status, 0);
    EXPECT_FALSE(fs::exists(wrapper));
}

TEST_F(DeleteCommandTest, ADamagedCloneIsReplacedAfterAQuestion) {
    const fs::path wrapper = addDamagedClone();
    const std::vector<std::string> create{"create", "--kind",         "web",
                                          "--url",  "https://a.test", "--name",
                                          "Work",   "--runner",       runnerProgram().string()};
    const auto refused = harness.run(create);
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("delete it first"));
    EXPECT_THAT(refused.errors, EndsWith(" With --replace, it is replaced.\n"));
    harness.inputIsTerminal = true;
    harness.typed = "n\n";
    EXPECT_THAT(harness.run(create).errors, HasSubstr("Replace it? [y/N] "));
    EXPECT_FALSE(InstanceRegistry().record(wrapper));
    harness.typed = "y\n";
    EXPECT_EQ(harness.run(create).status, 0);
    EXPECT_TRUE(InstanceRegistry().record(wrapper));
}

TEST_F(DeleteCommandTest, ADamagedCloneIsReplacedWithoutAQuestionWhenAsked) {
    const fs::path wrapper = addDamagedClone();
    write(data / "file", "mine");
    const CommandResult result =
        harness.run({"create", "--kind", "web", "--url", "https://a.test", "--name", "Work",
                     "--runner", runnerProgram().string(), "--replace"});
    EXPECT_EQ(result.errors, "");
    EXPECT_TRUE(InstanceRegistry().record(wrapper));
    EXPECT_EQ(read(data / "file"), "mine");
}

TEST_F(DeleteCommandTest, CreateAcceptsASharedHomeOnlyWhenAsked) {
    addClone("~/QuorvelInstances/Shared");
    const auto create = [&](std::vector<std::string> more) {
        std::vector<std::string> words{"create",
                                       "--kind",
                                       "web",
                                       "--url",
                                       "https://a.test",
                                       "--name",
                                       "Other",
                                       "--runner",
                                       runnerProgram().string(),
                                       "--home",
                                       "~/QuorvelInstances/Shared"};
        words.insert(words.end(), more.begin(), more.end());
        return harness.run(words);
    };
    const auto refused = create({});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("is the data folder of “Work”"));
    EXPECT_THAT(refused.errors, EndsWith("With --shared-home, it is used anyway.\n"));
    EXPECT_FALSE(fs::exists(harness.home / "Applications/Other.app"));
    EXPECT_EQ(create({"--shared-home"}).status, 0);
    EXPECT_TRUE(fs::exists(harness.home / "Applications/Other.app"));
}

} // namespace
} // namespace quorvel
