#include "tests/CommandLine/CommandLineHarness.h"

#include "LaunchKit/Changes/ChangeJournal.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/files/ItemIdentity.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace fs = std::filesystem;
using Words = std::vector<std::string>;

class ChangeCommandsTest : public ::testing::Test {
protected:
    ChangeCommandsTest() {
        EXPECT_EQ(make({"--kind", "command", "--name", "Work", "--command", "/bin/true", "--arg=a",
                        "--env", "A=1", "--env", "B=2"})
                      .status,
                  0);
    }

    CommandResult make(Words words) {
        words.insert(words.begin(), {"create", "--runner", runnerProgram().string()});
        return harness.run(words);
    }
    nlohmann::json edited(Words words) {
        words.insert(words.begin(), {"edit", "Work", "--json"});
        const CommandResult result = harness.run(words);
        EXPECT_EQ(result.status, 0) << result.errors;
        return result.status == 0 ? result.json() : nlohmann::json();
    }
    nlohmann::json configAfter(const Words& words) { return edited(words)["config"]; }
    [[nodiscard]] fs::path wrapper(const std::string& name = "Work") const {
        return harness.home / ("Applications/" + name + ".app");
    }

    CommandLineHarness harness;
};

TEST_F(ChangeCommandsTest, EditChangesWhatIsGivenAndPrintsThePath) {
    const CommandResult result = harness.run({"edit", "Work", "--arg", "b", "--arg=--c"});
    EXPECT_EQ(result.output, wrapper().string() + "\n");
    EXPECT_EQ(result.errors, "");
    const auto config = configAfter({});
    EXPECT_EQ(config["commandArgs"], (nlohmann::json{"b", "--c"}));
    EXPECT_EQ(config["commandPath"], "/bin/true");
    EXPECT_EQ(config["environment"].size(), 2U);
}

TEST_F(ChangeCommandsTest, EditSetsAndRemovesEntries) {
    EXPECT_EQ(configAfter({"--env", "A=9", "--unset-env", "B", "--env", "C="})["environment"],
              (nlohmann::json{{"A", "9"}, {"C", ""}}));
    EXPECT_EQ(configAfter({"--plist", "K=1", "--plist", "L=2"})["infoPlistOverrides"].size(), 2U);
    EXPECT_EQ(configAfter({"--unset-plist", "K"})["infoPlistOverrides"],
              (nlohmann::json{{"L", "2"}}));
    EXPECT_THAT(configAfter({"--no-args"})["commandArgs"], IsEmpty());
    EXPECT_EQ(configAfter({"--workdir", "/tmp"})["workingDirectory"], "/tmp");
    EXPECT_FALSE(configAfter({"--workdir", ""}).contains("workingDirectory"));
    EXPECT_EQ(configAfter({"--strategy", "wrapper-identity"})["strategy"], "wrapper-identity");
    EXPECT_EQ(configAfter({"--extra-arg=-x"})["extraArgs"], (nlohmann::json{"-x"}));
    EXPECT_THAT(configAfter({"--no-extra-args"})["extraArgs"], IsEmpty());
}

TEST_F(ChangeCommandsTest, EverySwitchIsTurnedOnAndOffAlone) {
    for (const CloneSwitch& each : cloneSwitches) {
        const std::string key(each.key);
        const auto before = configAfter({});
        auto on = configAfter({each.flag});
        EXPECT_EQ(on[key], !each.defaultValue()) << each.flag;
        on[key] = before[key];
        EXPECT_EQ(on, before) << each.flag;
        EXPECT_EQ(configAfter({"--no-" + std::string(each.flag).substr(2)}), before) << each.flag;
    }
}

TEST_F(ChangeCommandsTest, EditChangesTheLabelPartByPart) {
    EXPECT_EQ(harness.run({"edit", "Work", "--label-color", "#000000"}).status, 2);
    EXPECT_EQ(configAfter({"--label", "W"})["iconLabel"]["colorHex"], "#FFFFFF");
    const auto label = configAfter({"--label-color", "#112233", "--label-position", "top"});
    EXPECT_EQ(label["iconLabel"],
              (nlohmann::json{{"text", "W"}, {"colorHex", "#112233"}, {"position", "top"}}));
    EXPECT_FALSE(configAfter({"--label", ""}).contains("iconLabel"));
}

TEST_F(ChangeCommandsTest, EditHidesTheIconAndShowsItAgain) {
    const auto list = [&] { return read(wrapper() / "Contents/Info.plist"); };
    (void)edited({"--hide-icon"});
    EXPECT_THAT(list(), HasSubstr("LSUIElement"));
    (void)edited({"--no-hide-icon"});
    EXPECT_THAT(list(), ::testing::Not(HasSubstr("LSUIElement")));
}

TEST_F(ChangeCommandsTest, EditChoosesWhatOpensLinks) {
    EXPECT_EQ(configAfter({"--links", "inside"})["links"], "inside");
    (void)make({"--kind", "web", "--name", "Web", "--url", "https://a.test"});
    EXPECT_EQ(configAfter({"--links", "Web"})["links"], wrapper("Web").string());
    EXPECT_FALSE(configAfter({"--links", "default"}).contains("links"));
    EXPECT_EQ(harness.run({"edit", "Work", "--links", "None"}).status, 1);
}

TEST_F(ChangeCommandsTest, EditRefusesWhatIsNotForThisCloneOrNotForEditing) {
    const auto before = treeOf(wrapper());
    for (const Words& words :
         {Words{"--url", "https://a.test"}, Words{"--open", "/tmp"}, Words{"--command", ""},
          Words{"--env", "no pair"}, Words{"--default-extra-args"}, Words{"--home", "/tmp"},
          Words{"--name", "x"}, Words{"--bundle-id", "x"}, Words{"--kind", "web"}}) {
        Words all{"edit", "Work"};
        all.insert(all.end(), words.begin(), words.end());
        EXPECT_EQ(harness.run(all).status, 2) << words.front();
    }
    EXPECT_EQ(harness.run({"edit", "None", "--arg", "x"}).status, 1);
    EXPECT_TRUE(treeOf(wrapper()) == before);
    (void)make({"--kind", "web", "--name", "Web", "--url", "https://a.test"});
    const auto site = treeOf(wrapper("Web"));
    for (const Words& words :
         {Words{"--command", "/bin/true"}, Words{"--arg", "x"}, Words{"--no-args"},
          Words{"--workdir", "/tmp"}, Words{"--workdir", ""}}) {
        Words all{"edit", "Web"};
        all.insert(all.end(), words.begin(), words.end());
        EXPECT_EQ(harness.run(all).status, 2) << words.front();
    }
    EXPECT_TRUE(treeOf(wrapper("Web")) == site);
}

TEST_F(ChangeCommandsTest, AnEmptyRunnerIsNotTakenForAFile) {
    const auto before = treeOf(harness.home.path());
    for (const Words& words :
         {Words{"create", "--kind", "web", "--name", "Web", "--url", "https://a.test"},
          Words{"duplicate", "Work", "Play"}, Words{"edit", "Work"}, Words{"refresh", "--all"},
          Words{"list", "--stale"}}) {
        Words all = words;
        all.insert(all.end(), {"--runner", ""});
        const CommandResult refused = harness.run(all);
        EXPECT_EQ(refused.status, 2) << words.front();
        EXPECT_THAT(refused.errors, HasSubstr("--runner must not be empty")) << words.front();
    }
    EXPECT_TRUE(treeOf(harness.home.path()) == before);
}

TEST_F(ChangeCommandsTest, ChangesOfARunningCloneSayWhenTheyTakeEffect) {
    const auto lock =
        lockHome(*InstanceConfig::read((wrapper() / "Contents/Resources/instance.json").string()));
    EXPECT_THAT(harness.run({"edit", "Work", "--arg", "b"}).errors,
                HasSubstr("“Work” is running. The change takes effect at its next start."));
    EXPECT_EQ(harness.run({"edit", "Work"}).errors, "") << "nothing changed";
}

TEST_F(ChangeCommandsTest, RenameMovesTheClone) {
    const CommandResult result = harness.run({"rename", "Work", "Office"});
    EXPECT_EQ(result.output, wrapper("Office").string() + "\n") << result.errors;
    EXPECT_EQ(harness.run({"show", "Work"}).status, 1);
    EXPECT_EQ(harness.run({"rename", "Office"}).status, 2);
    EXPECT_EQ(harness.run({"rename", "None", "Other"}).status, 1);
    write(harness.home / "QuorvelInstances/Work/file", "data");
    const CommandResult moved = harness.run({"rename", "Office", "Home", "--move-data", "--json"});
    EXPECT_EQ(moved.json()["config"]["instanceHome"], "~/QuorvelInstances/Home");
    EXPECT_EQ(read(harness.home / "QuorvelInstances/Home/file"), "data");
}

TEST_F(ChangeCommandsTest, RefreshNeedsClonesOrAll) {
    EXPECT_EQ(harness.run({"refresh"}).status, 2);
    EXPECT_EQ(harness.run({"refresh", "--all", "Work"}).status, 2);
    EXPECT_EQ(harness.run({"refresh", "None"}).status, 1);
}

TEST_F(ChangeCommandsTest, RefreshPrintsWhatChangedAndGoesOnAfterAFailure) {
    (void)make({"--kind", "web", "--name", "Broken", "--url", "https://a.test"});
    for (const char* name : {"Work", "Broken"}) {
        write(wrapper(name) / "Contents/MacOS/runner", "an older one");
    }
    // The data inside the wrapper is one reason why a clone can't be changed.
    InstanceConfig config = minimalConfig("Broken");
    config.instanceHome = wrapper("Broken") / "data";
    write(wrapper("Broken") / "Contents/Resources/instance.json", config.json());
    const Words refresh{"refresh", "--all", "--runner", runnerProgram().string()};
    const CommandResult result = harness.run(refresh);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, wrapper().string() + "\n");
    EXPECT_THAT(result.errors, HasSubstr("1 of 2 clones couldn’t be refreshed."));
    EXPECT_TRUE(read(wrapper() / "Contents/MacOS/runner") == read(runnerProgram()));
}

// Output during which the user presses Ctrl-C.
class InterruptedOutput : public std::stringbuf {
    int sync() override { return std::raise(SIGINT); }
};

TEST_F(ChangeCommandsTest, AnInterruptedRefreshEndsAfterACloneAndTellsDesktopsOnce) {
    if (!hasMenu()) {
        GTEST_SKIP() << "this system has no menu";
    }
    const DesktopApps apps;
    apps.addProgram("app", helperProgram());
    const fs::path entry = apps.addEntry("app", "app", "MimeType=text/x-quorvel;\n");
    for (const char* name : {"A", "B", "C"}) {
        EXPECT_EQ(make({"--target", entry.string(), "--name", name, "--open-with"}).status, 0);
        write(wrapper(name) / "Contents/MacOS/runner", "an older one");
    }
    apps.addScript("update-desktop-database",
                   "echo run >> '" + (harness.home / "runs").string() + "'");
    const pid_t command = ::fork();
    if (command == 0) {
        InterruptedOutput interrupted;
        std::ostream output(&interrupted);
        std::istringstream input;
        std::ostringstream errors;
        const CommandContext context{
            input, output, errors, false, false, harness.workspace, InstanceRegistry()};
        ::_exit(runCommandLine({"refresh", "A", "B", "C", "--runner", runnerProgram().string()},
                               context));
    }
    int status = 0;
    ::waitpid(command, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
    EXPECT_TRUE(read(wrapper("A") / "Contents/MacOS/runner") == read(runnerProgram()));
    EXPECT_EQ(read(wrapper("B") / "Contents/MacOS/runner"), "an older one");
    EXPECT_EQ(read(harness.home / "runs"), "run\n");
}

TEST_F(ChangeCommandsTest, StaleClonesAreListedWithTheReasons) {
    EXPECT_EQ(harness.run({"list", "--stale"}).output, "");
    write(wrapper() / "Contents/MacOS/runner", "an older one");
    EXPECT_EQ(harness.run({"list", "--stale"}).output, "Work: runner\n");
    const auto json = harness.run({"list", "--stale", "--json"}).json();
    ASSERT_EQ(json.size(), 1U);
    EXPECT_EQ(json[0]["stale"], (nlohmann::json{"runner"}));
    const std::string own = wrapper() / "Contents/MacOS/runner";
    EXPECT_EQ(harness.run({"list", "--stale", "--runner", own}).output, "");
    EXPECT_EQ(harness.run({"list", "--runner", own}).status, 2);
}

TEST_F(ChangeCommandsTest, AStaleListGoesOnAfterAFailure) {
    (void)make({"--kind", "web", "--name", "Broken", "--url", "https://a.test"});
    InstanceConfig config = minimalConfig("Broken");
    config.instanceHome = wrapper("Broken") / "data";
    write(wrapper("Broken") / "Contents/Resources/instance.json", config.json());
    write(wrapper() / "Contents/MacOS/runner", "an older one");
    const CommandResult result = harness.run({"list", "--stale"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "Work: runner\n");
    EXPECT_THAT(result.errors, HasSubstr("The data folder of “Broken” is inside the clone"));
    EXPECT_THAT(result.errors, HasSubstr("1 of 2 clones couldn’t be checked."));
    EXPECT_EQ(harness.run({"list", "--stale", "--json"}).json().size(), 1U);
}

TEST_F(ChangeCommandsTest, ACloneElsewhereThatAnInterruptedDeletionHidesIsFoundByItsPath) {
    const fs::path folder = harness.home / "elsewhere";
    for (const char* command : {"show", "edit"}) {
        const fs::path clone = makeWrapper(folder / "Away.app", minimalConfig("Away"));
        write(harness.home / "QuorvelInstances/Work/file", "data");
        {
            StagedChange change(folder);
            ChangeJournal{.wrapper = "Away.app", .home = harness.home / "QuorvelInstances/Work"}
                .keepWith(change);
            ASSERT_TRUE(change.withdraw("Away.app", "Away.app", *identityOf(clone)));
            change.keep();
        }
        EXPECT_EQ(harness.run({command, clone.string()}).status, 0) << command;
        EXPECT_TRUE(fs::exists(clone));
    }
}

TEST_F(ChangeCommandsTest, ChangingCommandsPutRightWhatWasInterrupted) {
    const fs::path left =
        harness.home / "Applications/.quorvel-change-0F2504E0-4F89-41D3-9A0C-0305E82C3301";
    for (const Words& words :
         {Words{"edit", "Work"}, Words{"refresh", "None"}, Words{"delete", "None", "--yes"},
          Words{"migrate", "None"}, Words{"rename", "None", "x"}, Words{"create"},
          Words{"duplicate", "None", "x"}}) {
        write(left / "Gone.app/file", "x");
        (void)harness.run({"list"});
        EXPECT_TRUE(fs::exists(left)) << "listing changes nothing";
        (void)harness.run(words);
        EXPECT_FALSE(fs::exists(left)) << words.front();
    }
}

} // namespace
} // namespace quorvel
