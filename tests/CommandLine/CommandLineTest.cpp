#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "Platform/windows/ActivationError.h"
#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"
#include "tests/support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// One clone called `name` in the default folder.
std::filesystem::path addClone(const CommandLineHarness& harness, const std::string& name,
                               const std::string& bundleId = "app.quorvel.instance.test") {
    InstanceConfig config = minimalConfig(name);
    config.bundleId = bundleId;
    config.kind = ShortcutKind::command;
    config.commandPath = "/bin/true";
    return makeWrapper(harness.home / "Applications" / (name + ".app"), config);
}

std::size_t lines(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST(CommandLineTest, WithoutACommandTheUsageIsShownAndTheStatusIsTwo) {
    CommandLineHarness harness;
    const CommandResult result = harness.run({});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, HasSubstr("Usage: quorvelctl"));
}

TEST(CommandLineTest, AnUnknownOptionIsWrongUsageOfItsCommand) {
    CommandLineHarness harness;
    const CommandResult result = harness.run({"list", "--wrong"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, HasSubstr("--wrong"));
    EXPECT_THAT(result.errors, HasSubstr("Usage: quorvelctl list"));
}

TEST(CommandLineTest, EveryCommandHasHelp) {
    CommandLineHarness harness;
    for (const char* command : {"inspect", "list", "show", "create", "open", "delete", "migrate",
                                "icon", "apps", "probe", "running"}) {
        const CommandResult result = harness.run({command, "--help"});
        EXPECT_EQ(result.status, 0) << command;
        EXPECT_EQ(result.errors, "") << command;
        EXPECT_THAT(result.output, HasSubstr(std::string("Usage: quorvelctl ") + command));
    }
}

TEST(CommandLineTest, InspectPrintsTheFactsAboutAnApplication) {
    CommandLineHarness harness;
    const auto app = makeAppBundle(
        harness.home / "Browser.app",
        {{"CFBundleIdentifier", "org.chromium.Chromium"}, {"LSMultipleInstancesProhibited", true}});
    const nlohmann::json json = harness.run({"inspect", app.string(), "--json"}).json();
    EXPECT_EQ(json["url"], app.string());
    EXPECT_EQ(json["bundleId"], "org.chromium.Chromium");
    EXPECT_EQ(json["executableName"], "Browser");
    EXPECT_EQ(json["executableURL"], (app / "Contents/MacOS/Browser").string());
    EXPECT_EQ(json["sandboxed"], false);
    EXPECT_EQ(json["prohibitsMultipleInstances"], true);
    EXPECT_EQ(json["engine"], "chromium");
    EXPECT_EQ(json["defaultArguments"],
              nlohmann::json::array({"--user-data-dir={{instanceHome}}/QuorvelData"}));
    EXPECT_EQ(json["format"], "bundle");
    EXPECT_EQ(json["arguments"], nlohmann::json::array());
    EXPECT_EQ(json.size(), 10U);
}

TEST(CommandLineTest, InspectRefusesWhatIsNotAnApplication) {
    CommandLineHarness harness;
    const CommandResult result = harness.run({"inspect", "/no/such.app", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "Not a readable .app: /no/such.app\n");
}

TEST(CommandLineTest, ListPrintsTheClonesInOrder) {
    CommandLineHarness harness;
    addClone(harness, "beta");
    const auto alpha = addClone(harness, "Alpha", "com.example.alpha");
    harness.workspace.running = {{"com.example.alpha", alpha, 1}};
    const nlohmann::json json = harness.run({"list", "--json"}).json();
    ASSERT_EQ(json.size(), 2U);
    EXPECT_EQ(json[0]["bundleURL"], alpha.string());
    EXPECT_EQ(json[0]["running"], true);
    EXPECT_EQ(json[0]["config"]["displayName"], "Alpha");
    EXPECT_FALSE(json[0].contains("iconURL"));
    EXPECT_EQ(json[1]["running"], false);
}

TEST(CommandLineTest, ListLooksOnceForWhatRunsHoweverManyClonesThereAre) {
    CommandLineHarness harness;
    for (int number = 0; number < 50; ++number) {
        addClone(harness, "Clone " + std::to_string(number));
    }
    EXPECT_EQ(harness.run({"list", "--json"}).json().size(), 50U);
    EXPECT_EQ(harness.workspace.snapshots, 1);
}

TEST(CommandLineTest, ListSearchesTheGivenFolders) {
    CommandLineHarness harness;
    addClone(harness, "At home");
    makeWrapper(harness.home / "a/One.app", minimalConfig("One"));
    makeWrapper(harness.home / "b/Two.app", minimalConfig("Two"));
    const auto json = harness
                          .run({"list", "--json", "--search-dir", (harness.home / "a").string(),
                                "--search-dir", (harness.home / "b").string() + "/"})
                          .json();
    ASSERT_EQ(json.size(), 2U);
    EXPECT_EQ(json[1]["bundleURL"], (harness.home / "b/Two.app").string());
}

TEST(CommandLineTest, ListOfNothingIsAnEmptyArray) {
    CommandLineHarness harness;
    EXPECT_EQ(harness.run({"list", "--json"}).json(), nlohmann::json::array());
    EXPECT_EQ(harness.run({"list"}).output, "");
}

TEST(CommandLineTest, AnIconIsNamedWhereThereIsOne) {
    CommandLineHarness harness;
    const auto wrapper = addClone(harness, "Work");
    write(wrapper / "Contents/Resources/AppIcon.icns", "icns");
    const auto json = harness.run({"show", "Work", "--json"}).json();
    EXPECT_EQ(json["iconURL"], (wrapper / "Contents/Resources/AppIcon.icns").string());
}

TEST(CommandLineTest, ShowFindsACloneByNameAndByPath) {
    CommandLineHarness harness;
    const auto wrapper = addClone(harness, "Work");
    for (const std::string& words : {std::string("Work"), wrapper.string(), wrapper.string() + "/",
                                     std::string("~/Applications/Work.app")}) {
        EXPECT_EQ(harness.run({"show", words, "--json"}).json()["bundleURL"], wrapper.string());
    }
}

TEST(CommandLineTest, ShowPrintsTheConfigurationAsItIsInTheFile) {
    CommandLineHarness harness;
    const auto wrapper = addClone(harness, "Work");
    EXPECT_EQ(harness.run({"show", "Work", "--json"}).json()["config"],
              nlohmann::json::parse(read(wrapper / "Contents/Resources/instance.json")));
}

TEST(CommandLineTest, AnAmbiguousNameIsAnErrorThatListsThePaths) {
    CommandLineHarness harness;
    const auto first = makeWrapper(harness.home / "Applications/1.app", minimalConfig("Same"));
    const auto second = makeWrapper(harness.home / "Applications/2.app", minimalConfig("Same"));
    const CommandResult result = harness.run({"delete", "Same", "--yes"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr(first.string()));
    EXPECT_THAT(result.errors, HasSubstr(second.string()));
    EXPECT_EQ(lines(result.errors), 1U);
    EXPECT_TRUE(std::filesystem::exists(first));
}

TEST(CommandLineTest, APathIsAPathEvenIfACloneHasThatName) {
    CommandLineHarness harness;
    const auto meant = addClone(harness, "Mail");
    makeWrapper(harness.home / "Applications/Trap.app", minimalConfig(meant.string()));
    EXPECT_EQ(harness.run({"show", meant.string(), "--json"}).json()["bundleURL"], meant.string());
}

TEST(CommandLineTest, APathThroughALinkLeadsWhereTheLinkLeads) {
    CommandLineHarness harness;
    const auto inner = makeWrapper(harness.home / "a/b/Work.app", minimalConfig("Inner"));
    std::filesystem::create_directories(harness.home / "a/b/c");
    std::filesystem::create_symlink(harness.home / "a/b/c", harness.home / "link");
    EXPECT_EQ(harness.run({"show", (harness.home / "link/../Work.app").string(), "--json"})
                  .json()["bundleURL"],
              inner.string());
}

TEST(CommandLineTest, AnUnknownCloneIsAnErrorOfOneLine) {
    CommandLineHarness harness;
    const CommandResult result = harness.run({"show", "no\nsuch\x1b[31m"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "There is no clone named “no\\nsuch\\u{1b}[31m”.\n");
}

TEST(CommandLineTest, AnApplicationThatIsNotACloneIsRefused) {
    CommandLineHarness harness;
    const auto app = makeAppBundle(harness.home / "Applications/Mail.app");
    const CommandResult result = harness.run({"delete", app.string(), "--yes"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "Not a clone: " + app.string() + "\n");
    EXPECT_TRUE(std::filesystem::exists(app));
}

TEST(CommandLineTest, NamesNeverReachATerminalRaw) {
    CommandLineHarness harness;
    InstanceConfig config = minimalConfig("evil\x1b]0;owned\x07\nname");
    makeWrapper(harness.home / "Applications/Evil.app", config);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"list"}, {"show", "~/Applications/Evil.app"}}) {
        const std::string output = harness.run(arguments).output;
        EXPECT_EQ(output.find('\x1b'), std::string::npos);
        EXPECT_THAT(output, HasSubstr("evil\\u{1b}]0;owned\\u{7}\\nname"));
    }
}

TEST(CommandLineTest, OpenPreparesTheHomeOfAnAppCloneAndOpensItsWrapper) {
    CommandLineHarness harness;
    std::filesystem::create_directories(harness.home / "Library/Keychains");
    std::filesystem::create_directories(harness.home / "Documents");
    const auto wrapper = makeWrapper(harness.home / "Applications/Work.app", minimalConfig("Work"));
    const CommandResult result = harness.run({"open", "Work", "--json"});
    EXPECT_EQ(result.json(), nlohmann::json({{"bundleURL", wrapper.string()}}));
    EXPECT_EQ(harness.workspace.opened, std::vector{wrapper});
    EXPECT_TRUE(harness.workspace.activated);
    const auto data = harness.home / "QuorvelInstances/Work";
    EXPECT_EQ(std::filesystem::read_symlink(data / "Library/Keychains"),
              harness.home / "Library/Keychains");
    EXPECT_EQ(std::filesystem::read_symlink(data / "Documents"), harness.home / "Documents");
    EXPECT_FALSE(std::filesystem::exists(data / "Desktop"));
}

TEST(CommandLineTest, OpenLeavesTheHomeOfOtherKindsAlone) {
    CommandLineHarness harness;
    std::filesystem::create_directories(harness.home / "Documents");
    addClone(harness, "Script");
    EXPECT_EQ(harness.run({"open", "Script"}).status, 0);
    EXPECT_FALSE(std::filesystem::exists(harness.home / "QuorvelInstances"));
}

TEST(CommandLineTest, OpenSaysWhyACloneCantBeOpened) {
    CommandLineHarness harness;
    addClone(harness, "Work");
    harness.workspace.openError =
        PlatformError(std::make_error_code(std::errc::permission_denied), "/x/Work.app", "opened");
    const CommandResult result = harness.run({"open", "Work", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "“Work.app” couldn’t be opened: permission denied\n");
}

TEST(CommandLineTest, OpenSucceedsForACloneThatRunsButStaysInTheBackground) {
    CommandLineHarness harness;
    addClone(harness, "Work");
    harness.workspace.openError = activationError(ActivationFailure::notAllowed, "/x/Work.app");
    const CommandResult result = harness.run({"open", "Work"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, harness.workspace.openError->description() + "\n");
}

TEST(CommandLineTest, DeleteNeedsYesWhenInputIsNotATerminal) {
    CommandLineHarness harness;
    const auto wrapper = addClone(harness, "Work");
    const CommandResult result = harness.run({"delete", "Work"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(std::filesystem::exists(wrapper));
    EXPECT_EQ(harness.run({"delete", "Work", "--yes", "--json"}).json(),
              nlohmann::json({{"bundleURL", wrapper.string()}, {"deletedData", false}}));
    EXPECT_FALSE(std::filesystem::exists(wrapper));
}

TEST(CommandLineTest, DeleteAsksOnATerminalAndTakesNoForAnAnswer) {
    CommandLineHarness harness;
    const auto wrapper = addClone(harness, "Work");
    harness.inputIsTerminal = true;
    for (const char* answer : {"n\n", "\n", "", "maybe\n"}) {
        harness.typed = answer;
        const CommandResult result = harness.run({"delete", "Work"});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.errors, StartsWith("Delete “Work”? [y/N] "));
        EXPECT_TRUE(std::filesystem::exists(wrapper));
    }
    harness.typed = "y\n";
    EXPECT_EQ(harness.run({"delete", "Work"}).status, 0);
    EXPECT_FALSE(std::filesystem::exists(wrapper));
}

TEST(CommandLineTest, DeleteRemovesTheDataOnlyWhenAsked) {
    CommandLineHarness harness;
    addClone(harness, "Work");
    const auto data = harness.home / "QuorvelInstances/Work";
    write(data / "file", "x");
    EXPECT_EQ(harness.run({"delete", "Work", "--yes", "--json"}).json()["deletedData"], false);
    EXPECT_TRUE(std::filesystem::exists(data));
    addClone(harness, "Work");
    const auto json = harness.run({"delete", "Work", "--yes", "--including-data", "--json"}).json();
    EXPECT_EQ(json["deletedData"], true);
    EXPECT_FALSE(std::filesystem::exists(data));
}

TEST(CommandLineTest, DeleteNeverRemovesTheUsersHome) {
    CommandLineHarness harness;
    InstanceConfig config = minimalConfig("Work");
    config.instanceHome = "~/Documents/..";
    makeWrapper(harness.home / "Applications/Work.app", config);
    std::filesystem::create_directories(harness.home / "Documents");
    const CommandResult result =
        harness.run({"delete", "Work", "--yes", "--including-data", "--json"});
    EXPECT_EQ(result.json()["deletedData"], false);
    EXPECT_TRUE(std::filesystem::exists(harness.home / "Documents"));
}

TEST(CommandLineTest, ShowPrintsTheSizeOfTheLog) {
    CommandLineHarness harness;
    addClone(harness, "Work");
    EXPECT_FALSE(harness.run({"show", "Work", "--json"}).json().contains("logSize"));
    EXPECT_THAT(harness.run({"show", "Work"}).output, ::testing::Not(HasSubstr("Log")));
    write(harness.home / "QuorvelInstances/Work/quorvel-instance.log", std::string(1'534, 'x'));
    EXPECT_EQ(harness.run({"show", "Work", "--json"}).json()["logSize"], 1534);
    EXPECT_THAT(harness.run({"show", "Work"}).output, ::testing::ContainsRegex("Log +1\\.5 kB\n"));
    EXPECT_FALSE(harness.run({"list", "--json"}).json()[0].contains("logSize"));
}

TEST(CommandLineTest, MigrateMovesTheFilesAndThenShares) {
    CommandLineHarness harness;
    InstanceConfig config = minimalConfig("Work");
    config.shareUserFolders = false;
    const auto wrapper = makeWrapper(harness.home / "Applications/Work.app", config);
    const auto data = harness.home / "QuorvelInstances/Work";
    write(data / "Downloads/a", "1");
    write(data / "Downloads/b", "2");
    std::filesystem::create_directories(data / "Desktop");
    const CommandResult result = harness.run({"migrate", "Work", "--json"});
    EXPECT_EQ(result.json(), nlohmann::json({{"moved", {{"Downloads", 2}, {"Desktop", 0}}}}));
    EXPECT_EQ(read(harness.home / "Downloads/b"), "2");
    EXPECT_TRUE(InstanceRegistry().record(wrapper)->config.shareUserFolders);
}

TEST(CommandLineTest, MigrateRefusesWhileATargetRunsInTheHome) {
    CommandLineHarness harness;
    InstanceConfig config = minimalConfig("Work");
    config.shareUserFolders = false;
    const auto wrapper = makeWrapper(harness.home / "Applications/Work.app", config);
    const auto document = harness.home / "QuorvelInstances/Work/Documents/a";
    write(document, "1");
    std::optional<FileLock> running = lockHome(config);
    const CommandResult refused = harness.run({"migrate", "Work"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, HomeInUse("Work").description() + "\n");
    EXPECT_EQ(read(document), "1");
    EXPECT_FALSE(InstanceRegistry().record(wrapper)->config.shareUserFolders);
    running.reset();
    EXPECT_EQ(harness.run({"migrate", "Work"}).status, 0);
    EXPECT_EQ(read(harness.home / "Documents/a"), "1");
}

TEST(CommandLineTest, MigrateNamesWhatStaysAndDoesNotShareThen) {
    CommandLineHarness harness;
    InstanceConfig config = minimalConfig("Work");
    config.shareUserFolders = false;
    const auto wrapper = makeWrapper(harness.home / "Applications/Work.app", config);
    const auto data = harness.home / "QuorvelInstances/Work";
    const auto stayed = data / "Documents/a\x1b[31m";
    write(stayed, "1");
    write(data / "Documents/b", "2");
    std::filesystem::create_directories(harness.home / "Documents");
    std::filesystem::create_symlink("nowhere", harness.home / "Documents" / stayed.filename());
    const std::string expected = "“a\\u{1b}[31m” couldn’t be moved: file exists\n"
                                 "Not everything was moved; the rest is still in " +
                                 data.string() + ".\n";
    CommandResult result = harness.run({"migrate", "Work"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "Moved 1 from Documents\n");
    EXPECT_EQ(result.errors, expected);
    EXPECT_FALSE(InstanceRegistry().record(wrapper)->config.shareUserFolders);
    EXPECT_EQ(read(stayed), "1");

    result = harness.run({"migrate", "Work", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(nlohmann::json::parse(result.output),
              nlohmann::json({{"moved", {{"Documents", 0}}},
                              {"unmoved",
                               {{{"path", stayed.string()},
                                 {"reason", "“a\x1b[31m” couldn’t be moved: file exists"}}}}}));
    EXPECT_EQ(result.errors, expected);
    EXPECT_FALSE(InstanceRegistry().record(wrapper)->config.shareUserFolders);
}

TEST(CommandLineTest, MigrateSaysWhenSharingCantBeSwitchedOn) {
    CommandLineHarness harness;
    const TemporaryFolder home;
    const ScopedEnvironment usersHome("CFFIXED_USER_HOME", home.path().string());
    const std::filesystem::path wrapper = home / "Applications/Work.app";
    EXPECT_TRUE(asUnprivilegedUser(home.path(), [&] {
        InstanceConfig config = minimalConfig("Work");
        config.shareUserFolders = false;
        makeWrapper(wrapper, config);
        write(home / "QuorvelInstances/Work/Downloads/a", "1");
        std::filesystem::permissions(wrapper / "Contents/Resources/instance.json",
                                     std::filesystem::perms{0444});
        const CommandResult result = harness.run({"migrate", "Work", "--json"});
        const auto now = InstanceRegistry().record(wrapper);
        return result.status == 1 &&
               nlohmann::json::parse(result.output) ==
                   nlohmann::json({{"moved", {{"Downloads", 1}}}}) &&
               result.errors == "The clone at " + wrapper.string() +
                                    " couldn’t be changed, so folder sharing is still off.\n" &&
               now && !now->config.shareUserFolders && read(home / "Downloads/a") == "1";
    }));
}

TEST(CommandLineTest, MigrateWithNothingToMoveStillTurnsSharingOn) {
    CommandLineHarness harness;
    InstanceConfig config = minimalConfig("Work");
    config.shareUserFolders = false;
    const auto wrapper = makeWrapper(harness.home / "Applications/Work.app", config);
    EXPECT_EQ(harness.run({"migrate", "Work", "--json"}).json(),
              nlohmann::json({{"moved", nlohmann::json::object()}}));
    EXPECT_TRUE(InstanceRegistry().record(wrapper)->config.shareUserFolders);
}

} // namespace
} // namespace quorvel
