#include "LaunchKit/InstanceLauncher.h"

#include "LaunchKit/InstanceConfig.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
using ::testing::HasSubstr;
using ::testing::Not;
using LaunchError = InstanceLauncher::LaunchError;
namespace fs = std::filesystem;

class InstanceLauncherTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }
    [[nodiscard]] fs::path cloneHome() const { return home_ / "I"; }
    [[nodiscard]] std::string log() const { return read(cloneHome() / "quorvel-instance.log"); }

    [[nodiscard]] InstanceConfig appConfig(std::vector<std::string> steps) const {
        InstanceConfig config = minimalConfig();
        config.instanceHome = "~/I";
        config.targetAppPath = makeAppBundle(at("Thing.app"));
        config.extraArgs = std::move(steps);
        return config;
    }

    [[nodiscard]] static InstanceConfig commandConfig(std::vector<std::string> steps) {
        InstanceConfig config = minimalConfig();
        config.kind = ShortcutKind::command;
        config.instanceHome = "~/I";
        config.commandPath = helperProgram();
        config.commandArgs = std::move(steps);
        return config;
    }

    static int run(const InstanceConfig& config, const std::vector<std::string>& documents = {}) {
        return InstanceLauncher().launch(config, documents).waitUntilExit();
    }

    static std::string errorOf(const InstanceConfig& config) {
        try {
            run(config);
        } catch (const LaunchError& error) {
            EXPECT_STREQ(error.what(), error.description().c_str());
            return error.description();
        }
        return "no error";
    }

    TemporaryFolder folder_;
    TemporaryHome home_;
};

TEST_F(InstanceLauncherTest, AnAppRunsWithItsArgumentsAndNothingAdded) {
    EXPECT_EQ(run(appConfig({"arguments", "a b", "{{instanceHome}}/d", ""})), 0);
    EXPECT_EQ(log(), "3\na b\n" + cloneHome().string() + "/d\n\n");
}

TEST_F(InstanceLauncherTest, DocumentsFollowTheArgumentsAsTheyAre) {
    EXPECT_EQ(run(appConfig({"arguments", "a"}), {"/doc {{instanceHome}}", "~/x"}), 0);
    EXPECT_EQ(log(), "3\na\n/doc {{instanceHome}}\n~/x\n");
}

TEST_F(InstanceLauncherTest, AnAppFindsTheCloneHomeAsItsHome) {
    EXPECT_EQ(run(appConfig({"environment"})), 0);
    EXPECT_THAT(log(), HasSubstr("\nHOME=" + cloneHome().string() + "\n"));
    EXPECT_THAT(log(), HasSubstr("CFFIXED_USER_HOME=" + cloneHome().string() + "\n"));
}

TEST_F(InstanceLauncherTest, AnAppAlsoGetsOurEnvironment) {
    const ScopedEnvironment variable("QUORVEL_TEST_VARIABLE", "ours");
    EXPECT_EQ(run(appConfig({"environment"})), 0);
    EXPECT_THAT(log(), HasSubstr("QUORVEL_TEST_VARIABLE=ours\n"));
}

TEST_F(InstanceLauncherTest, TheThreeStrategiesLaunchTheSameWay) {
    for (const Strategy strategy :
         {Strategy::homeOverride, Strategy::containerRedirect, Strategy::wrapperIdentity}) {
        InstanceConfig config = appConfig({"environment"});
        config.strategy = strategy;
        EXPECT_EQ(run(config), 0);
        EXPECT_THAT(log(), HasSubstr("CFFIXED_USER_HOME=" + cloneHome().string() + "\n"));
        fs::remove_all(cloneHome());
    }
}

TEST_F(InstanceLauncherTest, PlaceholdersAreExpandedInValuesAndNotInKeys) {
    InstanceConfig config = appConfig({"environment"});
    config.environment = {{"CACHE", "{{instanceHome}}/cache"}, {"K{{instanceHome}}", "v"}};
    EXPECT_EQ(run(config), 0);
    EXPECT_THAT(log(), HasSubstr("CACHE=" + cloneHome().string() + "/cache\n"));
    EXPECT_THAT(log(), HasSubstr("K{{instanceHome}}=v\n"));
}

TEST_F(InstanceLauncherTest, ConfiguredVariablesWin) {
    const ScopedEnvironment variable("QUORVEL_TEST_VARIABLE", "ours");
    InstanceConfig config = appConfig({"environment"});
    config.environment = {
        {"HOME", "/mine"}, {"CFFIXED_USER_HOME", "/too"}, {"QUORVEL_TEST_VARIABLE", "theirs"}};
    EXPECT_EQ(run(config), 0);
    EXPECT_THAT(log(), HasSubstr("\nHOME=/mine\n"));
    EXPECT_THAT(log(), HasSubstr("CFFIXED_USER_HOME=/too\n"));
    EXPECT_THAT(log(), HasSubstr("QUORVEL_TEST_VARIABLE=theirs\n"));
    EXPECT_THAT(log(), Not(HasSubstr("ours")));
}

TEST_F(InstanceLauncherTest, OutputAndErrorsOfEveryRunAreCollectedInTheLog) {
    write(cloneHome() / "quorvel-instance.log", "earlier\n");
    EXPECT_EQ(run(appConfig({"print", "said", "complain", "complained"})), 0);
    EXPECT_EQ(run(appConfig({"print", "again"})), 0);
    EXPECT_EQ(log(), "earlier\nsaid\ncomplained\nagain\n");
}

TEST_F(InstanceLauncherTest, ALogThatCantBeOpenedDoesntBlock) {
    fs::create_directories(cloneHome());
    ::mkfifo((cloneHome() / "quorvel-instance.log").c_str(), 0600);
    EXPECT_FALSE(InstanceLauncher::instanceLogHandle(cloneHome()));
    EXPECT_EQ(run(appConfig({"exit", "4"})), 4);
}

TEST_F(InstanceLauncherTest, SharedFoldersAreLinkedBeforeTheAppRunsWhenAsked) {
    fs::create_directory(home_ / "Downloads");
    InstanceConfig config = appConfig({"write", "~/Downloads/file", "x"});
    EXPECT_EQ(run(config), 0);
    EXPECT_EQ(read(home_ / "Downloads/file"), "x");
    config.shareUserFolders = false;
    config.instanceHome = "~/J";
    EXPECT_EQ(run(config), 0);
    EXPECT_FALSE(itemOrLinkExists(home_ / "J/Downloads"));
}

TEST_F(InstanceLauncherTest, SharedFoldersAreLinkedEvenForATargetThatIsNotABundle) {
    fs::create_directory(home_ / "Downloads");
    InstanceConfig config = appConfig({});
    config.targetAppPath = "/no/such.app";
    EXPECT_EQ(errorOf(config), "Not a readable .app bundle: /no/such.app");
    EXPECT_EQ(fs::read_symlink(cloneHome() / "Downloads"), home_ / "Downloads");
}

TEST_F(InstanceLauncherTest, TheKeychainsAreLinkedIntoAnyConfiguredHome) {
    fs::create_directories(home_ / "Library/Keychains");
    InstanceConfig config = appConfig({"environment"});
    config.environment = {{"HOME", at("elsewhere").string()}};
    EXPECT_EQ(run(config), 0);
    EXPECT_THAT(log(), HasSubstr("\nHOME=" + at("elsewhere").string() + "\n"));
    EXPECT_EQ(fs::read_symlink(cloneHome() / "Library/Keychains"), home_ / "Library/Keychains");
    EXPECT_FALSE(fs::exists(at("elsewhere")));
}

TEST_F(InstanceLauncherTest, AProfilesFolderIsThereBeforeTheAppRuns) {
    for (const char* option : {"-profile", "--profile"}) {
        const InstanceConfig config = appConfig({"write", "~/Profile/deep/file", "x", option,
                                                 "{{instanceHome}}/Profile/deep", "-no-remote"});
        EXPECT_EQ(run(config), 0);
        EXPECT_EQ(read(cloneHome() / "Profile/deep/file"), "x") << option;
        fs::remove_all(cloneHome());
    }
}

TEST_F(InstanceLauncherTest, AProfilesFolderElsewhereIsNotMade) {
    fs::create_directory(at("outside"));
    fs::create_directories(cloneHome());
    fs::create_directory_symlink(at("outside"), cloneHome() / "link");
    EXPECT_EQ(run(appConfig({"-profile", at("outside/a"), "-profile", "{{instanceHome}}/link/b",
                             "-profile", "{{instanceHome}}/../c", "-other", "{{instanceHome}}/d",
                             "-profile"})),
              0);
    EXPECT_TRUE(fs::is_empty(at("outside")));
    EXPECT_FALSE(fs::exists(home_ / "c"));
    EXPECT_FALSE(fs::exists(cloneHome() / "d"));
}

TEST_F(InstanceLauncherTest, TheKeychainsAreLinkedWhenTheUserHasSome) {
    EXPECT_EQ(run(appConfig({})), 0);
    EXPECT_FALSE(itemOrLinkExists(cloneHome() / "Library"));
    fs::create_directories(home_ / "Library/Keychains");
    EXPECT_EQ(run(appConfig({})), 0);
    EXPECT_EQ(fs::read_symlink(cloneHome() / "Library/Keychains"), home_ / "Library/Keychains");
}

TEST_F(InstanceLauncherTest, KeychainsOfTheClonesOwnStay) {
    fs::create_directories(home_ / "Library/Keychains");
    write(cloneHome() / "Library/Keychains/own", "x");
    InstanceLauncher::ensureKeychainAccess(cloneHome());
    EXPECT_EQ(read(cloneHome() / "Library/Keychains/own"), "x");
}

TEST_F(InstanceLauncherTest, AnUnsupportedAppIsRefusedAfterItsHomeAndLogWereMade) {
    InstanceConfig config = appConfig({"write", at("started"), "x"});
    config.strategy = Strategy::unsupported;
    fs::create_directories(home_ / "Library/Keychains");
    EXPECT_EQ(errorOf(config), "App not clonable: com.example.Thing");
    EXPECT_TRUE(fs::exists(cloneHome() / "quorvel-instance.log"));
    EXPECT_EQ(log(), "");
    EXPECT_FALSE(fs::exists(at("started")));
    EXPECT_FALSE(itemOrLinkExists(cloneHome() / "Library"));
}

TEST_F(InstanceLauncherTest, ATargetThatIsNotABundleIsRefused) {
    InstanceConfig config = appConfig({});
    config.targetAppPath = "/no/such.app";
    EXPECT_EQ(errorOf(config), "Not a readable .app bundle: /no/such.app");
    EXPECT_FALSE(fs::exists(cloneHome() / "quorvel-instance.log"));
    try {
        run(config);
    } catch (const LaunchError& error) {
        EXPECT_EQ(error.kind(), LaunchError::Case::badBundle);
        EXPECT_EQ(error.payload(), "/no/such.app");
    }
}

TEST_F(InstanceLauncherTest, ATargetsTildeIsNotExpanded) {
    InstanceConfig config = appConfig({});
    makeAppBundle(home_ / "Thing.app");
    config.targetAppPath = "~/Thing.app";
    EXPECT_EQ(errorOf(config), "Not a readable .app bundle: ~/Thing.app");
}

TEST_F(InstanceLauncherTest, AnAppsHomeThatCantBeMadeIsAnError) {
    write(home_ / "file", "");
    for (const std::string& bad : {"~/file"s, "~/file/below"s, ""s, "~/x\0y"s}) {
        InstanceConfig config = appConfig({});
        config.instanceHome = bad;
        config.shareUserFolders = false;
        EXPECT_THROW(run(config), PlatformError) << bad;
    }
}

TEST_F(InstanceLauncherTest, AnAppThatCantBeStartedIsAnError) {
    const InstanceConfig config = appConfig({});
    fs::remove(at("Thing.app/Contents/MacOS/Thing"));
    EXPECT_THROW(run(config), PlatformError);
    fs::create_symlink("nowhere", at("Thing.app/Contents/MacOS/Thing"));
    EXPECT_THROW(run(config), PlatformError);
}

TEST_F(InstanceLauncherTest, AnAppCanBeLaunchedByItsLocation) {
    const fs::path bundle = makeAppBundle(at("Thing.app"));
    CloneOptions options;
    options.environment = {{"A", "{{instanceHome}}"}};
    Process process = InstanceLauncher().launch(bundle, cloneHome(), options, {"environment"});
    EXPECT_EQ(process.waitUntilExit(), 0);
    EXPECT_THAT(log(), HasSubstr("A={{instanceHome}}\n")) << "the values are ready here";
    EXPECT_THROW((void)InstanceLauncher().launch(fs::path("/none.app"), cloneHome(), {}, {}),
                 LaunchError);
}

TEST_F(InstanceLauncherTest, AWebShortcutIsNotLaunchedHere) {
    InstanceConfig config = minimalConfig();
    config.kind = ShortcutKind::web;
    EXPECT_EQ(errorOf(config), "App not clonable: web shortcuts run in the runner's web host");
}

TEST_F(InstanceLauncherTest, AFileShortcutNeedsAPath) {
    InstanceConfig config = minimalConfig();
    config.kind = ShortcutKind::file;
    EXPECT_EQ(errorOf(config), "App not clonable: file shortcut has no target path");
    config.openPath = "";
    EXPECT_EQ(errorOf(config), "App not clonable: file shortcut has no target path");
}

TEST_F(InstanceLauncherTest, ACommandShortcutNeedsAnExecutable) {
    InstanceConfig config = commandConfig({});
    config.commandPath = "";
    EXPECT_EQ(errorOf(config), "App not clonable: command shortcut has no executable");
    config.commandPath.reset();
    EXPECT_EQ(errorOf(config), "App not clonable: command shortcut has no executable");
    EXPECT_FALSE(fs::exists(cloneHome()));
}

TEST_F(InstanceLauncherTest, ACommandRunsWithItsArgumentsAndItsLog) {
    EXPECT_EQ(run(commandConfig({"print", "{{instanceHome}}", "exit", "9"})), 9);
    EXPECT_EQ(log(), cloneHome().string() + "\n");
}

TEST_F(InstanceLauncherTest, ACommandKeepsTheUsersHome) {
    const ScopedEnvironment variable("HOME", "/users/own");
    InstanceConfig config = commandConfig({"environment"});
    config.environment = {{"A", "{{instanceHome}}"}};
    EXPECT_EQ(run(config), 0);
    EXPECT_THAT(log(), HasSubstr("HOME=/users/own\n"));
    EXPECT_THAT(log(), HasSubstr("CFFIXED_USER_HOME=" + home_.path().string() + "\n"));
    EXPECT_THAT(log(), HasSubstr("A=" + cloneHome().string() + "\n"));
}

TEST_F(InstanceLauncherTest, ACommandsConfiguredVariablesWin) {
    const ScopedEnvironment variable("QUORVEL_TEST_VARIABLE", "ours");
    const ScopedEnvironment other("QUORVEL_OTHER_VARIABLE", "ours too");
    InstanceConfig config = commandConfig({"environment"});
    config.environment = {{"QUORVEL_TEST_VARIABLE", "theirs"}, {"HOME", "/mine"}};
    EXPECT_EQ(run(config), 0);
    EXPECT_THAT(log(), HasSubstr("QUORVEL_TEST_VARIABLE=theirs\n"));
    EXPECT_THAT(log(), HasSubstr("\nHOME=/mine\n"));
    EXPECT_THAT(log(), HasSubstr("QUORVEL_OTHER_VARIABLE=ours too\n"));
    EXPECT_THAT(log(), Not(HasSubstr("=ours\n")));
}

TEST_F(InstanceLauncherTest, ACommandTakesNoDocuments) {
    EXPECT_EQ(run(commandConfig({"arguments"}), {"/doc"}), 0);
    EXPECT_EQ(log(), "0\n");
}

TEST_F(InstanceLauncherTest, ACommandsPathsTildeIsExpanded) {
    InstanceConfig config = commandConfig({"directory"});
    fs::copy_file(helperProgram(), home_ / "tool");
    fs::create_directory(home_ / "folder");
    config.commandPath = "~/tool";
    config.workingDirectory = "~/folder";
    EXPECT_EQ(run(config), 0);
    EXPECT_EQ(log(), (home_ / "folder").string() + "\n");
}

TEST_F(InstanceLauncherTest, ACommandWithAnEmptyFolderRunsInOurs) {
    InstanceConfig config = commandConfig({"directory"});
    config.workingDirectory = "";
    EXPECT_EQ(run(config), 0);
    EXPECT_EQ(log(), fs::current_path().string() + "\n");
}

TEST_F(InstanceLauncherTest, ACommandWhoseHomeCantBeMadeStillStarts) {
    write(home_ / "I", "a file");
    EXPECT_EQ(run(commandConfig({"exit", "5"})), 5);
    InstanceConfig config = commandConfig({"exit", "6"});
    config.instanceHome = "~/x\0y"s;
    EXPECT_EQ(run(config), 6);
}

TEST_F(InstanceLauncherTest, ACommandThatCantBeStartedIsAnError) {
    InstanceConfig config = commandConfig({});
    config.commandPath = "/no/such/command";
    EXPECT_THROW(run(config), PlatformError);
    config = commandConfig({});
    config.workingDirectory = "/no/such/folder";
    EXPECT_THROW(run(config), PlatformError);
}

TEST_F(InstanceLauncherTest, AFileShortcutOpensExactlyTheExpandedPath) {
    if (!fs::exists("/usr/bin/xdg-open") ||
        fs::canonical("/usr/bin/open") != fs::canonical("/usr/bin/xdg-open")) {
        GTEST_SKIP() << "/usr/bin/open is not the desktop's";
    }
    // The desktop's tool passes an address to the configured browser: here, a script.
    write(at("browser"), "#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" \"$QUORVEL_TEST_VARIABLE\" "
                         "\"$QUORVEL_CONFIGURED_VARIABLE\" \"$HOME\" > " +
                             at("opened").string());
    makeExecutable(at("browser"));
    const ScopedEnvironment inherited("QUORVEL_TEST_VARIABLE", "inherited");
    const ScopedEnvironment ownHome("HOME", home_.path());
    const ScopedEnvironment browser("BROWSER", at("browser"));
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "");
    const ScopedEnvironment display("DISPLAY", "");
    write(home_ / "Notes one", "text");
    InstanceConfig config = minimalConfig();
    config.kind = ShortcutKind::file;
    config.instanceHome = "~/I";
    config.openPath = "~/Notes one";
    config.environment = {{"QUORVEL_CONFIGURED_VARIABLE", "configured"}};
    EXPECT_EQ(run(config), 0);
    EXPECT_THAT(read(at("opened")), HasSubstr((home_ / "Notes one").string() + "\ninherited\n\n" +
                                              home_.path().string() + "\n"))
        << "it inherits our environment, and nothing that is configured";
    EXPECT_FALSE(fs::exists(cloneHome()));
}

} // namespace
} // namespace quorvel
