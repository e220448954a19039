#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"

#include <gmock/gmock.h>

#include <sstream>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Key;
using ::testing::Not;
using LaunchError = InstanceLauncher::LaunchError;
namespace fs = std::filesystem;

class DesktopLaunchTest : public ::testing::Test {
protected:
    DesktopLaunchTest() { apps.addProgram("app", helperProgram()); }

    [[nodiscard]] std::string cloneHome() const { return (home / "I").string(); }

    [[nodiscard]] static InstanceConfig clone(const fs::path& entry,
                                              std::vector<std::string> arguments = {}) {
        InstanceConfig config = minimalConfig();
        config.instanceHome = "~/I";
        config.targetAppPath = entry;
        config.extraArgs = std::move(arguments);
        return config;
    }

    // Starts the clone, waits for its end and returns what it printed.
    [[nodiscard]] std::string run(const InstanceConfig& config,
                                  const std::vector<std::string>& documents = {}) const {
        fs::remove(cloneHome() + "/quorvel-instance.log");
        EXPECT_EQ(InstanceLauncher().launch(config, documents).waitUntilExit(), 0);
        return read(cloneHome() + "/quorvel-instance.log");
    }

    [[nodiscard]] Environment environmentOf(const InstanceConfig& config) const {
        Environment environment;
        std::istringstream lines(run(config));
        for (std::string line; std::getline(lines, line);) {
            environment[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
        }
        return environment;
    }

    [[nodiscard]] static std::string errorOf(const InstanceConfig& config) {
        try {
            (void)InstanceLauncher().launch(config).waitUntilExit();
        } catch (const LaunchError& error) {
            return error.description();
        }
        return "no error";
    }

    TemporaryHome home;
    DesktopApps apps;
};

TEST_F(DesktopLaunchTest, TheProgramGetsTheClonesArgumentsThenTheEntrysOwn) {
    const fs::path entry = apps.addEntry("a", "app --own %U");
    EXPECT_EQ(run(clone(entry, {"arguments", "{{instanceHome}}/d"}), {"/doc", "https://x"}),
              "4\n" + cloneHome() + "/d\n--own\n/doc\nhttps://x\n");
}

TEST_F(DesktopLaunchTest, TheEntryIsReadAgainAtEachStart) {
    const fs::path entry = apps.addEntry("a", "app print old");
    const InstanceConfig config = clone(entry);
    EXPECT_EQ(run(config), "old\n");
    apps.addProgram("updated", helperProgram());
    (void)apps.addEntry("a", "updated print new");
    EXPECT_EQ(run(config), "new\n");
    fs::remove(entry);
    EXPECT_EQ(errorOf(config), "“a.desktop” couldn’t be read: no such file or directory");
}

TEST_F(DesktopLaunchTest, EachSourceOfVariablesOverridesTheOneBefore) {
    const ScopedEnvironment inherited("INHERITED", "session");
    const ScopedEnvironment removed("REMOVED", "session");
    const ScopedEnvironment replaced("REPLACED", "session");
    InstanceConfig config =
        clone(apps.addEntry("a", "env -u REMOVED REPLACED=entry HOME=/entry XDG_CACHE_HOME=/entry "
                                 "OWN=entry app environment"));
    config.environment = {{"OWN", "configured"}, {"XDG_STATE_HOME", "{{instanceHome}}/s"}};
    const Environment environment = environmentOf(config);
    EXPECT_EQ(environment.at("INHERITED"), "session");
    EXPECT_THAT(environment, Not(Contains(Key("REMOVED"))));
    EXPECT_EQ(environment.at("REPLACED"), "entry");
    EXPECT_EQ(environment.at("HOME"), cloneHome());
    EXPECT_EQ(environment.at("CFFIXED_USER_HOME"), cloneHome());
    EXPECT_EQ(environment.at("XDG_CACHE_HOME"), cloneHome() + "/.cache");
    EXPECT_EQ(environment.at("XDG_CONFIG_HOME"), cloneHome() + "/.config");
    EXPECT_EQ(environment.at("OWN"), "configured");
    EXPECT_EQ(environment.at("XDG_STATE_HOME"), cloneHome() + "/s");
}

TEST_F(DesktopLaunchTest, ABundlesDataIsKeptApartInTheSameWay) {
    const ScopedEnvironment elsewhere("XDG_CONFIG_HOME", "/elsewhere");
    const Environment environment =
        environmentOf(clone(makeAppBundle(apps.at("Thing.app")), {"environment"}));
    EXPECT_EQ(environment.at("XDG_CONFIG_HOME"), cloneHome() + "/.config");
}

TEST_F(DesktopLaunchTest, JavaIsToldItsHome) {
    const fs::path script = apps.addScript("jar", "java=1\n" + apps.at("bin/app").string() +
                                                      " environment\n# java\nexit\njava\n");
    write(apps.at("bin/thing.jar"), "x");
    const Environment environment = environmentOf(clone(apps.addEntry("j", "jar")));
    EXPECT_THAT(environment.at("JAVA_TOOL_OPTIONS"), HasSubstr("-Duser.home=" + cloneHome()));
    EXPECT_THAT(environmentOf(clone(apps.addEntry("a", "app environment"))),
                Not(Contains(Key("JAVA_TOOL_OPTIONS"))));
}

TEST_F(DesktopLaunchTest, OnlyTheApplicationOfAFlatpakDoesWithoutTheBus) {
    const ScopedEnvironment bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/session/bus");
    apps.addScript("flatpak", "echo \"$DBUS_SESSION_BUS_ADDRESS $*\"");
    InstanceConfig config =
        clone(apps.addEntry("f", "flatpak run org.example.App", "X-Flatpak=org.example.App\n"));
    EXPECT_EQ(run(config), "unix:path=/session/bus run --die-with-parent org.example.App\n");
    config.environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
    EXPECT_EQ(run(config), "unix:path=/session/bus run --no-session-bus --nosocket=session-bus "
                           "--die-with-parent org.example.App\n");
    config.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/other/bus";
    EXPECT_EQ(run(config), "unix:path=/other/bus run --die-with-parent org.example.App\n");
}

TEST_F(DesktopLaunchTest, FlatpakFindsWhatTheUserInstalled) {
    apps.addProgram("flatpak", helperProgram());
    const fs::path entry =
        apps.addEntry("f", "flatpak run org.example.App @@u %U @@", "X-Flatpak=org.example.App\n");
    const Environment environment = environmentOf(clone(entry, {"environment"}));
    EXPECT_EQ(environment.at("FLATPAK_USER_DIR"), apps.at("share/flatpak"));
    EXPECT_EQ(environment.at("HOME"), cloneHome());
    EXPECT_THAT(environmentOf(clone(apps.addEntry("a", "app environment"))),
                Not(Contains(Key("FLATPAK_USER_DIR"))));
}

TEST_F(DesktopLaunchTest, SharedFoldersAreTheUsersOwnWhateverTheirNames) {
    const ScopedEnvironment settings("XDG_CONFIG_HOME", (home / "settings").string());
    write(home / "settings/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
    fs::create_directories(home / "Dokumente");
    fs::create_directories(home / "Documents");
    InstanceConfig config = clone(apps.addEntry("a", "app"));
    EXPECT_EQ(run(config), "");
    EXPECT_EQ(fs::read_symlink(cloneHome() + "/Documents"), home / "Dokumente");
    EXPECT_THAT(read(cloneHome() + "/.config/user-dirs.dirs"),
                HasSubstr("XDG_DOCUMENTS_DIR=\"" + (home / "Dokumente").string() + "\"\n"));
    fs::remove_all(cloneHome());
    config.shareUserFolders = false;
    EXPECT_EQ(run(config), "");
    EXPECT_FALSE(fs::exists(cloneHome() + "/Documents"));
    EXPECT_THAT(read(cloneHome() + "/.config/user-dirs.dirs"),
                HasSubstr("XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n"));
}

TEST_F(DesktopLaunchTest, TheEntrysFolderIsTheWorkingFolder) {
    fs::create_directory(apps.at("work"));
    const std::string folder = apps.at("work").string();
    EXPECT_EQ(run(clone(apps.addEntry("a", "app directory", "Path=" + folder + "\n"))),
              folder + "\n");
}

TEST_F(DesktopLaunchTest, SaysWhyAnEntryIsNotStarted) {
    EXPECT_EQ(errorOf(clone(apps.addEntry("a", "nothing"))),
              "“a.desktop” couldn’t be used: its program “nothing” is not installed");
    EXPECT_EQ(errorOf(clone(apps.addEntry("t", "app", "Terminal=true\n"))),
              "App not clonable: t.desktop: it runs in a terminal");
}

TEST_F(DesktopLaunchTest, AnAppImageRunsUnlessAFolderWouldReplaceTheClones) {
    const fs::path image = apps.addProgram("Thing.AppImage", helperProgram());
    std::string bytes = read(image);
    bytes.replace(8, 3, "AI\x02");
    write(image, bytes);
    EXPECT_EQ(run(clone(image, {"arguments", "own"}), {"/doc"}), "2\nown\n/doc\n");
    fs::create_directory(image.string() + ".home");
    EXPECT_EQ(errorOf(clone(image)),
              "App not clonable: Thing: it would use “" + image.string() +
                  ".home” instead of the clone’s own folder; rename or remove that first");
}

} // namespace
} // namespace quorvel
