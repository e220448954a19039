#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sqlite3.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
namespace fs = std::filesystem;

class DesktopCommandsTest : public ::testing::Test {
protected:
    DesktopCommandsTest() {
        apps.addProgram("app", helperProgram());
        write(apps.at("runner"), "runner");
    }

    // Returns the configuration of the clone that these options make.
    [[nodiscard]] nlohmann::json created(std::vector<std::string> options) {
        options.insert(options.begin(), {"create", "--json", "--replace", "--name", "Work",
                                         "--runner", apps.at("runner").string()});
        const CommandResult result = harness.run(options);
        EXPECT_EQ(result.status, 0) << result.errors;
        return result.json()["config"];
    }

    CommandLineHarness harness;
    DesktopApps apps;
};

TEST_F(DesktopCommandsTest, InspectShowsWhatAnEntrySays) {
    const fs::path entry = apps.addEntry("org.a.Thing", "app --own %U");
    const nlohmann::json json = harness.run({"inspect", entry, "--json"}).json();
    EXPECT_EQ(json["format"], "desktop-entry");
    EXPECT_EQ(json["arguments"], (nlohmann::json{"--own", "%U"}));
    EXPECT_EQ(json["bundleId"], "org.a.Thing.desktop");
    EXPECT_EQ(json["executableURL"], apps.at("bin/app").string());
    const std::string text = harness.run({"inspect", entry}).output;
    EXPECT_THAT(text, HasSubstr("Own arguments  --own %U\n"));
}

TEST_F(DesktopCommandsTest, ApplicationsAreFoundByIdAndName) {
    const fs::path entry = apps.addEntry("org.a.Thing", "app");
    apps.addEntry("other", "app");
    for (const char* words : {"org.a.Thing", "org.a.Thing.desktop", "ORG.a.thing"}) {
        EXPECT_EQ(harness.run({"inspect", words, "--json"}).json()["url"], entry.string()) << words;
        EXPECT_EQ(created({"--target", words})["targetAppPath"], entry.string()) << words;
    }
}

TEST_F(DesktopCommandsTest, AFileComesBeforeAnInstalledApplicationOfThatName) {
    apps.addEntry("thing", "app");
    const fs::path old = fs::current_path();
    fs::current_path(apps.at(""));
    const fs::path bundle = makeAppBundle(apps.at("thing"));
    EXPECT_EQ(harness.run({"inspect", "thing", "--json"}).json()["format"], "bundle");
    fs::current_path(old);
}

TEST_F(DesktopCommandsTest, ThePathsOfSeveralApplicationsWithOneNameAreListed) {
    const fs::path one = apps.addEntry("one", "app");
    const fs::path two = apps.addEntry("two", "app");
    for (const fs::path& entry : {one, two}) {
        write(entry, "[Desktop Entry]\nType=Application\nName=Same\nExec=app\n");
    }
    const CommandResult result = harness.run({"inspect", "Same"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "Several applications are named “Same”; give a path: " + one.string() +
                                 " " + two.string() + "\n");
}

TEST_F(DesktopCommandsTest, WordsThatNameNothingAreAPath) {
    const fs::path folder = fs::current_path();
    EXPECT_EQ(harness.run({"inspect", "nothing"}).errors,
              "Not a readable .app: " + (folder / "nothing").string() + "\n");
}

TEST_F(DesktopCommandsTest, SaysWhyAnEntryIsNotAnApplication) {
    const fs::path entry = apps.addEntry("a", "nothing");
    EXPECT_EQ(harness.run({"inspect", entry}).errors,
              "“a.desktop” couldn’t be used: its program “nothing” is not installed\n");
}

TEST_F(DesktopCommandsTest, AppsListsEntriesWithTheirIcons) {
    const fs::path icon = apps.addIcon("48x48", "picture.png", "x");
    const fs::path entry = apps.addEntry("org.a.Thing", "app", "Icon=picture\n");
    EXPECT_THAT(harness.run({"apps"}).output,
                HasSubstr("org.a.Thing  org.a.Thing.desktop  " + entry.string() + "\n"));
    for (const nlohmann::json& app : harness.run({"apps", "--json"}).json()) {
        if (app["url"] == entry.string()) {
            EXPECT_EQ(app["iconURL"], icon.string());
            return;
        }
    }
    ADD_FAILURE() << "the application is not listed";
}

TEST_F(DesktopCommandsTest, KnownVariablesAreSetUnlessTheUserSaysOtherwise) {
    apps.addEntry("org.gnome.gedit", "app");
    const std::string variable = "DBUS_SESSION_BUS_ADDRESS";
    const std::vector<std::string> target{"--target", "org.gnome.gedit"};
    EXPECT_EQ(created(target)["environment"], (nlohmann::json{{variable, "disabled:"}}));
    EXPECT_EQ(created({"--target", "org.gnome.gedit", "--env", variable + "=own", "--env",
                       "A=b"})["environment"],
              (nlohmann::json{{variable, "own"}, {"A", "b"}}));
    EXPECT_EQ(created({"--target", "org.gnome.gedit", "--no-default-env"})["environment"],
              nlohmann::json::object());
}

TEST_F(DesktopCommandsTest, ShowSaysWhatTheVariablesCost) {
    apps.addEntry("org.gnome.gedit", "app");
    (void)created({"--target", "org.gnome.gedit"});
    EXPECT_THAT(harness.run({"show", "Work"}).output, HasSubstr("Without the session bus"));
    (void)created({"--target", "org.gnome.gedit", "--no-default-env"});
    EXPECT_THAT(harness.run({"show", "Work"}).output, Not(HasSubstr("Without the session bus")));
}

TEST_F(DesktopCommandsTest, WhereEntriesAreNoticedLateALaunchSaysSo) {
    apps.addEntry("plain", "app");
    const auto errors = [&](const char* desktop, const std::vector<std::string>& more) {
        const ScopedEnvironment current("XDG_CURRENT_DESKTOP", desktop);
        std::vector<std::string> command{"create", "--name", "Work", "--replace"};
        command.insert(command.end(), more.begin(), more.end());
        const CommandResult result = harness.run(command);
        EXPECT_EQ(result.status, 0);
        return result.errors;
    };
    const std::vector<std::string> launch{"--target", "plain", "--launch"};
    EXPECT_THAT(errors("ubuntu:GNOME", launch), HasSubstr("first window under the original"));
    EXPECT_EQ(errors("KDE", launch), "");
    EXPECT_EQ(errors("ubuntu:GNOME", {"--target", "plain"}), "");
    EXPECT_EQ(errors("ubuntu:GNOME", {"--kind", "command", "--command", "/bin/true", "--launch"}),
              "");
    EXPECT_EQ(errors("ubuntu:GNOME", {"--target", "plain", "--launch", "--env",
                                      "DBUS_SESSION_BUS_ADDRESS=disabled:"}),
              "");
}

// The entry is as snapd 2.57 writes it, but for the program's folder.
TEST_F(DesktopCommandsTest, ASnapIsRefusedAndInspectSaysHowToInstallItTwice) {
    const fs::path entry = apps.at("thing_thing.desktop");
    write(entry, "[Desktop Entry]\nX-SnapInstanceName=thing\nType=Application\nName=Thing\n"
                 "Exec=env BAMF_DESKTOP_FILE_HINT=/var/lib/snapd/desktop/applications/"
                 "thing_thing.desktop " +
                     apps.at("bin/app").string() + " %U\nIcon=/snap/thing/x1/meta/gui/icon.png\n");
    EXPECT_THAT(harness.run({"inspect", entry}).output, HasSubstr("sudo snap install thing_2"));
    EXPECT_EQ(harness.run({"inspect", entry, "--json"}).json()["sandboxed"], true);
    const auto refused = harness.run({"create", "--name", "Work", "--target", entry});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("It is a Snap"));
    const auto forced =
        harness.run({"create", "--name", "Work", "--target", entry, "--strategy", "unsupported"});
    EXPECT_EQ(forced.status, 1);
    EXPECT_EQ(forced.errors, refused.errors) << "no clone of it could ever be opened";
}

TEST_F(DesktopCommandsTest, SeedingReportsWhatNeedsTheKeyringAndWhatNamesTheOriginal) {
    apps.addProgram("chromium", helperProgram());
    for (const char* name : {"icudtl.dat", "resources.pak", "chrome_100_percent.pak"}) {
        write(apps.at("bin") / name, "");
    }
    apps.addEntry("chromium", "chromium %U");
    const fs::path original = harness.home / ".config/chromium";
    write(original / "Local State", "{\"path\": \"" + original.string() + "/Default\"}");
    fs::create_directory(original / "Default");
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open((original / "Default/Cookies").c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database,
                           "create table cookies(name, encrypted_value blob);"
                           "insert into cookies values('a', x'763131aa'), ('b', x'763130aa');",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(database);
    const CommandResult result =
        harness.run({"create", "--target", "chromium", "--name", "Seeded", "--seed", "--json",
                     "--runner", apps.at("runner").string()});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.errors, StartsWith("1 cookie can only be decrypted with the keyring "));
    EXPECT_THAT(result.errors, HasSubstr("1 file of the copy names the original’s data folder and "
                                         "may lead there:\n  QuorvelData/Local State\n"));
    EXPECT_EQ(result.json()["data"]["lockedCookies"], 1);
}

} // namespace
} // namespace quorvel
