#include "LaunchKit/Targets/ShippedProfiles.h"

#include "LaunchKit/AppBundle.h"
#include "Platform/entries/EntryFolders.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
namespace fs = std::filesystem;

const char* const disabledBus = "disabled:";

TEST(ShippedProfilesTest, AppsThatWouldHandOverToARunningCopyAreKnown) {
    for (const char* id :
         {"org.gnome.gedit", "org.gnome.TextEditor", "org.gnome.Meld", "org.inkscape.Inkscape",
          "org.xfce.mousepad", "featherpad", "gimp", "vlc"}) {
        const auto profile = ShippedProfiles::find(std::string(id) + ".desktop");
        ASSERT_TRUE(profile) << id;
        EXPECT_EQ(profile->singleton, SingletonTier::machPort);
        EXPECT_EQ(profile->strategy, Strategy::homeOverride);
        EXPECT_THAT(profile->environment.value(),
                    ElementsAre(Pair("DBUS_SESSION_BUS_ADDRESS", disabledBus)));
    }
    EXPECT_FALSE(ShippedProfiles::find("org.example.Unknown.desktop"));
}

TEST(ShippedProfilesTest, AreBesideTheProgramsOrInTheirResources) {
    EXPECT_THAT(
        ShippedProfiles::folders({.resources = "/a/libexec/quorvel", .executables = "/a/bin"}),
        ElementsAre("/a/libexec/quorvel/profiles", "/a/share/quorvel/profiles"));
    EXPECT_THAT(ShippedProfiles::folders({}), IsEmpty());
}

TEST(ShippedProfilesTest, TheFirstThatCanBeReadCounts) {
    const TemporaryFolder folder;
    AppProfile profile;
    profile.bundleId = "a.desktop";
    profile.displayName = "second";
    write(folder / "1/a.json", "{");
    write(folder / "2/a.json", profile.encodedJSON());
    profile.displayName = "third";
    write(folder / "3/a.json", profile.encodedJSON());
    const std::vector<fs::path> places{folder / "0", folder / "1", folder / "2", folder / "3"};
    EXPECT_EQ(ShippedProfiles::find("a.desktop", places).value().displayName, "second");
    // The file's name alone proves nothing, and an identifier leads nowhere else.
    EXPECT_FALSE(ShippedProfiles::find("a", places));
    EXPECT_FALSE(ShippedProfiles::find("../2/a.desktop", {folder / "1"}));
    EXPECT_FALSE(ShippedProfiles::find("", places));
}

TEST(ShippedProfilesTest, VariablesAreSuggestedForAFlatpakToo) {
    const TemporaryHome home;
    const DesktopApps apps;
    apps.addProgram("app", helperProgram());
    const auto suggested = [](const fs::path& entry) {
        return ShippedProfiles::suggestedEnvironment(
            AppBundle::read(entry, noEntitlements).value());
    };
    EXPECT_THAT(suggested(apps.addEntry("org.gnome.gedit", "app")),
                ElementsAre(Pair("DBUS_SESSION_BUS_ADDRESS", disabledBus)));
    EXPECT_THAT(suggested(apps.addEntry("org.gnome.gedit", "app", "X-Flatpak=org.gnome.gedit\n")),
                ElementsAre(Pair("DBUS_SESSION_BUS_ADDRESS", disabledBus)));
    EXPECT_THAT(suggested(apps.addEntry("org.example.Other", "app")), IsEmpty());
}

TEST(ShippedProfilesTest, AnAppThatTheBusCanStartDoesWithoutItUnlessItsProfileSaysOtherwise) {
    const TemporaryHome home;
    const DesktopApps apps;
    apps.addProgram("app", helperProgram());
    const auto suggested = [&](const std::string& id, const std::string& keys) {
        return ShippedProfiles::suggestedEnvironment(
            AppBundle::read(apps.addEntry(id, "app", keys), noEntitlements).value());
    };
    EXPECT_THAT(suggested("org.example.Other", "DBusActivatable=true\n"),
                ElementsAre(Pair("DBUS_SESSION_BUS_ADDRESS", disabledBus)));
    EXPECT_THAT(suggested("org.example.Other", "DBusActivatable=false\n"), IsEmpty());
    EXPECT_THAT(
        suggested("org.example.Other", "DBusActivatable=true\nX-Flatpak=org.example.Other\n"),
        IsEmpty())
        << "it would lose its dialogs for files";
    EXPECT_THAT(ShippedProfiles::suggestedEnvironment({.bundleId = "com.example.Bundle"}),
                IsEmpty());
}

TEST(ShippedProfilesTest, ABusServiceCountsLikeAnEntryThatTheBusCanStart) {
    const TemporaryHome home;
    const DesktopApps apps;
    apps.addProgram("app", helperProgram());
    const auto serve = [&](const std::string& file, const std::string& name) {
        write(apps.at(file),
              "[D-BUS Service]\nName=" + name + "\nExec=/usr/bin/app --gapplication-service\n");
    };
    serve("share/dbus-1/services/org.example.Own.service", "org.example.Own");
    serve("none/dbus-1/services/org.example.Installed.service", "org.example.Installed");
    serve("share/dbus-1/services/org.example.Misnamed.service", "org.example.Other");
    write(apps.at("share/dbus-1/services/org.example.Broken.service"), "Name=org.example.Broken\n");
    const auto suggested = [&](const std::string& id, const std::string& keys = "") {
        return ShippedProfiles::suggestedEnvironment(
            AppBundle::read(apps.addEntry(id, "app", keys), noEntitlements).value());
    };
    for (const char* id : {"org.example.Own", "org.example.Installed"}) {
        EXPECT_THAT(suggested(id), ElementsAre(Pair("DBUS_SESSION_BUS_ADDRESS", disabledBus)))
            << id;
    }
    for (const char* id :
         {"org.example.Misnamed", "org.example.Other", "org.example.Broken", "org.example.None"}) {
        EXPECT_THAT(suggested(id), IsEmpty()) << id;
    }
    EXPECT_THAT(suggested("org.example.Own", "X-Flatpak=org.example.Own\n"), IsEmpty());
}

// The files that packages bring.
TEST(ShippedProfilesTest, InstalledBusServicesAreRead) {
    if (!fs::exists("/usr/share/dbus-1/services/org.gnome.TextEditor.service")) {
        GTEST_SKIP() << "the editor is not installed";
    }
    const TemporaryHome home;
    const DesktopApps apps;
    const ScopedEnvironment installed("XDG_DATA_DIRS", "/usr/share");
    apps.addProgram("app", helperProgram());
    // Another name than the one that has a profile.
    write(apps.at("share/dbus-1/services/org.example.Editor.service"),
          "[D-BUS Service]\nName=org.gnome.TextEditor\n");
    EXPECT_TRUE(hasBusService("org.gnome.TextEditor"));
    EXPECT_FALSE(hasBusService("org.example.Editor"));
    EXPECT_FALSE(hasBusService("../services/org.gnome.TextEditor"));
}

} // namespace
} // namespace quorvel
