#include "LaunchKit/Targets/DesktopTarget.h"

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/Targets/AppEngine.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

class DesktopTargetTest : public ::testing::Test {
protected:
    DesktopTargetTest() { apps.addProgram("app", helperProgram()); }

    // The reason that users see for an entry with this text.
    [[nodiscard]] std::string reasonFor(const std::string& text) const {
        const fs::path file = apps.at("share/applications/a.desktop");
        write(file, text);
        EXPECT_FALSE(AppBundle::read(file, noEntitlements)) << text;
        return unreadableAppText(file, "");
    }

    [[nodiscard]] std::string reasonForKeys(const std::string& keys) const {
        return reasonFor("[Desktop Entry]\nType=Application\nName=A\n" + keys);
    }

    [[nodiscard]] fs::path addImage(const std::string& name) const {
        fs::path file = apps.addProgram(name, helperProgram());
        std::string bytes = read(file);
        bytes.replace(8, 3, "AI\x02");
        write(file, bytes);
        return file;
    }

    TemporaryHome home;
    DesktopApps apps;
};

TEST_F(DesktopTargetTest, AnEntryIsAnApp) {
    const fs::path real = apps.at("lib/real");
    write(real, read(helperProgram()));
    makeExecutable(real);
    fs::create_symlink(real, apps.at("bin/linked"));
    const fs::path file = apps.addEntry("sub/one", "env A=b linked --own %U", "Icon=i\n");
    const auto app = AppBundle::read(file, noEntitlements);
    ASSERT_TRUE(app);
    EXPECT_EQ(app->url, file);
    EXPECT_EQ(app->format, AppFormat::desktopEntry);
    EXPECT_EQ(rawString(app->format), "desktop-entry");
    EXPECT_EQ(app->bundleId, "sub-one.desktop");
    EXPECT_EQ(app->executableURL(), real);
    EXPECT_EQ(app->executableName, "real");
    EXPECT_THAT(app->arguments, ElementsAre("--own", "%U"));
    EXPECT_FALSE(app->sandboxed);
    EXPECT_FALSE(app->prohibitsMultipleInstances);
    EXPECT_EQ(app->desktop->entry.icon, "i");
    EXPECT_EQ(app->desktop->program.launcher, apps.at("bin/linked"));
}

TEST_F(DesktopTargetTest, AnEntryOutsideTheFoldersOfApplicationsIsKnownByItsName) {
    const fs::path file = apps.at("elsewhere/deep/two.desktop");
    write(file, "[Desktop Entry]\nType=Application\nName=Two\nExec=app\n");
    EXPECT_EQ(AppBundle::read(file, noEntitlements).value().bundleId, "two.desktop");
}

TEST_F(DesktopTargetTest, AFolderWithAnEntrysNameIsABundle) {
    const fs::path bundle = makeAppBundle(apps.at("odd.desktop"));
    EXPECT_EQ(AppBundle::read(bundle, noEntitlements).value().format, AppFormat::bundle);
}

TEST_F(DesktopTargetTest, ASnapCountsAsSandboxed) {
    const fs::path file = apps.addEntry("s", "app", "X-SnapInstanceName=thing\n");
    EXPECT_TRUE(AppBundle::read(file, noEntitlements).value().sandboxed);
    const fs::path other = apps.addEntry("t", "app", "X-Flatpak=org.example.Thing\n");
    EXPECT_FALSE(AppBundle::read(other, noEntitlements).value().sandboxed);
}

TEST_F(DesktopTargetTest, SaysWhyAnEntryIsNotAnApp) {
    const std::string start = "“a.desktop” couldn’t be used: ";
    EXPECT_EQ(reasonForKeys("Exec=nothing %U\n"), start + "its program “nothing” is not installed");
    EXPECT_EQ(reasonForKeys("Exec=app\nTryExec=other\n"),
              start + "its program “other” is not installed");
    EXPECT_EQ(reasonForKeys("Exec=app \"open\n"),
              start + "in its command, a quote is never closed");
    EXPECT_EQ(reasonForKeys(""), start + "in its command, no program is named");
    EXPECT_EQ(reasonForKeys("Exec=app\nHidden=true\n"), start + "it is marked as deleted");
    EXPECT_EQ(reasonFor("[Desktop Entry]\nType=Link\nName=A\nURL=https://example.org\n"),
              start + "it is not an application");
    EXPECT_EQ(reasonFor("no group"),
              "“a.desktop” couldn’t be read: it is not in the form of a desktop entry");
}

TEST_F(DesktopTargetTest, SaysWhyAFileWithAnEntrysNameIsNotRead) {
    const auto reason = [&](const fs::path& file) {
        EXPECT_FALSE(AppBundle::read(file, noEntitlements));
        return unreadableAppText(file, "Not a readable .app: ");
    };
    EXPECT_EQ(reason(apps.at("none.desktop")),
              "“none.desktop” couldn’t be read: no such file or directory");
    const fs::path fifo = apps.at("fifo.desktop");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(reason(fifo), "“fifo.desktop” couldn’t be read: it is not a regular file");
    fs::create_symlink("loop.desktop", apps.at("loop.desktop"));
    EXPECT_EQ(reason(apps.at("loop.desktop")),
              "“loop.desktop” couldn’t be read: too many levels of symbolic links");
    EXPECT_EQ(reason(apps.at("none.app")), "Not a readable .app: " + apps.at("none.app").string());
}

TEST_F(DesktopTargetTest, AnAppImageIsAnApp) {
    const fs::path file = addImage("Thing-1.2.AppImage");
    const auto app = AppBundle::read(file, noEntitlements);
    ASSERT_TRUE(app);
    EXPECT_EQ(rawString(app->format), "appimage");
    EXPECT_EQ(app->bundleId, "Thing-1.2");
    EXPECT_EQ(app->executableURL(), file);
    EXPECT_THAT(app->arguments, IsEmpty());
    EXPECT_EQ(app->desktop->entry.name, "Thing-1.2");
    EXPECT_FALSE(app->obstacle());
}

TEST_F(DesktopTargetTest, AnAppImageThatWasOnlyDownloadedSaysWhatIsMissing) {
    const fs::path file = addImage("Thing.AppImage");
    fs::permissions(file, fs::perms{0644});
    EXPECT_FALSE(AppBundle::read(file, noEntitlements));
    EXPECT_EQ(unreadableAppText(file, ""),
              "“Thing.AppImage” couldn’t be used: it is not marked as executable");
}

TEST_F(DesktopTargetTest, AnOrdinaryProgramIsNotAnApp) {
    const fs::path file = apps.at("bin/app");
    EXPECT_FALSE(AppBundle::read(file, noEntitlements));
    EXPECT_EQ(unreadableAppText(file, "No app: "), "No app: " + file.string());
}

TEST_F(DesktopTargetTest, AFolderThatWouldReplaceTheClonesIsAnObstacle) {
    const fs::path file = addImage("Thing.AppImage");
    for (const char* ending : {".home", ".config", ".share", ".cache"}) {
        const std::string folder = file.string() + ending;
        fs::create_directory(folder);
        const auto obstacle = AppBundle::read(file, noEntitlements).value().obstacle();
        EXPECT_THAT(obstacle.value_or("none"), ::testing::HasSubstr("“" + folder + "”"));
        fs::remove(folder);
    }
}

TEST_F(DesktopTargetTest, ATerminalIsAnObstacle) {
    const fs::path file = apps.addEntry("t", "app", "Terminal=true\n");
    EXPECT_EQ(AppBundle::read(file, noEntitlements).value().obstacle(), "it runs in a terminal");
}

TEST_F(DesktopTargetTest, ASnapIsAnObstacle) {
    const fs::path file = apps.addEntry("s", "app", "X-SnapInstanceName=s\n");
    EXPECT_EQ(AppBundle::read(file, noEntitlements).value().obstacle(),
              "it is a Snap, whose data stays in the user’s own home");
}

TEST_F(DesktopTargetTest, TheEngineIsThatOfTheRealProgram) {
    const fs::path browser = apps.at("lib/browser/browser");
    write(browser, read(helperProgram()));
    makeExecutable(browser);
    for (const char* mark : {"icudtl.dat", "resources.pak", "chrome_100_percent.pak"}) {
        write(apps.at("lib/browser") / mark, "x");
    }
    apps.addScript("start", "D=" + apps.at("lib/browser").string() + "\nexec $D/browser \"$@\"\n");
    const fs::path file = apps.addEntry("b", "start %U");
    EXPECT_EQ(AppBundle::read(file, noEntitlements).value().executableURL(), browser);
    EXPECT_EQ(detectEngine(file), AppEngine::chromium);
    EXPECT_EQ(detectEngine(file, "org.mozilla.firefox"), AppEngine::chromium);
    EXPECT_EQ(detectEngine(apps.addEntry("org.mozilla.fake", "app")), AppEngine::other);
    // The sandbox doesn't see the clone's folder, so its arguments would lose the data.
    const fs::path boxed = apps.addEntry("f", "app run org.example.App", "X-Flatpak=org.example\n");
    EXPECT_EQ(detectEngine(boxed), AppEngine::other);
}

TEST_F(DesktopTargetTest, AnAppThatTakesOneDocumentIsABrowserOrLeavesTheOthersOut) {
    const std::vector<std::string> documents{"/a", "https://b", "/c"};
    const auto target = [&](const std::string& exec) {
        return DesktopTarget::readEntry(apps.addEntry("x", exec));
    };
    EXPECT_THAT(target("app %f").arguments({}, documents), ElementsAre("/a"));
    EXPECT_EQ(target("app %f").documentsLeftOut(3), 2U);
    EXPECT_EQ(target("app %u").documentsLeftOut(1), 0U);
    EXPECT_EQ(target("app %u").documentsLeftOut(0), 0U);
    EXPECT_EQ(target("app %F").documentsLeftOut(3), 0U);
    EXPECT_EQ(target("app").documentsLeftOut(3), 0U);

    write(apps.at("lib/fox/fox"), read(helperProgram()));
    makeExecutable(apps.at("lib/fox/fox"));
    write(apps.at("lib/fox/application.ini"), "[App]\n");
    write(apps.at("lib/fox/libxul.so"), "x");
    fs::create_symlink(apps.at("lib/fox/fox"), apps.at("bin/fox"));
    EXPECT_THAT(target("fox -- %u").arguments({}, documents),
                ElementsAre("--", "/a", "https://b", "/c"));
    EXPECT_EQ(target("fox -- %u").documentsLeftOut(3), 0U);
    EXPECT_THAT(target("fox --open=%u").arguments({}, documents), ElementsAre("--open=/a"));
    EXPECT_EQ(target("fox --open=%u").documentsLeftOut(3), 2U);
}

TEST_F(DesktopTargetTest, ArgumentsComeDirectlyAfterTheProgram) {
    const auto arguments = [&](const std::string& exec, const std::vector<std::string>& documents) {
        return DesktopTarget::readEntry(apps.addEntry("x", exec)).arguments({"-e", "E"}, documents);
    };
    EXPECT_THAT(arguments("app -- %u", {"/a", "/b"}), ElementsAre("-e", "E", "--", "/a"));
    EXPECT_THAT(arguments("app %U --end", {"/a", "https://b"}),
                ElementsAre("-e", "E", "/a", "https://b", "--end"));
    EXPECT_THAT(arguments("app --own", {}), ElementsAre("-e", "E", "--own"));
    EXPECT_THAT(arguments("app --own", {"/a", "https://b"}),
                ElementsAre("-e", "E", "--own", "/a", "https://b"));
    EXPECT_THAT(arguments("app %i %c %k", {}),
                ElementsAre("-e", "E", "x", apps.at("share/applications/x.desktop").string()));
    apps.addProgram("flatpak", helperProgram());
    EXPECT_THAT(
        arguments("flatpak run --branch=stable --file-forwarding org.a.B @@u %U @@", {"/a"}),
        ElementsAre("run", "--die-with-parent", "--branch=stable", "--file-forwarding", "org.a.B",
                    "-e", "E", "@@u", "/a", "@@"));
}

} // namespace
} // namespace quorvel
