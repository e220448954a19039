#include "LaunchKit/AppCatalog.h"
#include "Platform/files/FileSystem.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"
#include "tests/support/PrivateMounts.h"

#include <gmock/gmock.h>

#include <chrono>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

// Installed applications, and those of the machine that Flatpak and Snap export.
class DesktopCatalogTest : public ::testing::Test {
protected:
    DesktopCatalogTest() { apps.addProgram("app", helperProgram()); }

    [[nodiscard]] std::vector<InstalledApp> scan() const {
        std::vector<InstalledApp> found;
        const std::string ours = apps.at("").string();
        for (InstalledApp& app : AppCatalog::scan(noEntitlements)) {
            if (app.url.native().starts_with(ours) ||
                app.url.native().starts_with(home.path().native())) {
                found.push_back(std::move(app));
            }
        }
        return found;
    }

    [[nodiscard]] static std::vector<std::string> idsOf(const std::vector<InstalledApp>& found) {
        std::vector<std::string> result;
        for (const InstalledApp& app : found) {
            result.push_back(app.bundleId);
        }
        return result;
    }

    [[nodiscard]] std::vector<std::string> ids() const { return idsOf(scan()); }

    TemporaryHome home;
    DesktopApps apps;
};

TEST_F(DesktopCatalogTest, ListsBundlesAndEntriesByName) {
    const ScopedEnvironment language("LANGUAGE", "");
    const fs::path bundle = makeAppBundle(home / "Applications/Middle.app");
    const fs::path first = apps.addEntry("org.a", "app");
    const fs::path last = apps.addEntry("org.z", "app");
    const std::vector<InstalledApp> found = scan();
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].url, bundle);
    EXPECT_EQ(found[1], (InstalledApp{first, "org.a", "org.a.desktop"}));
    EXPECT_EQ(found[2], (InstalledApp{last, "org.z", "org.z.desktop"}));
}

TEST_F(DesktopCatalogTest, NamesAreInTheUsersLanguage) {
    apps.addEntry("editor", "app", "Name[de]=Texteditor\n");
    const ScopedEnvironment locale("LC_ALL", "de_DE.UTF-8");
    const ScopedEnvironment language("LANGUAGE", "de");
    EXPECT_EQ(scan().at(0).name, "Texteditor");
}

TEST_F(DesktopCatalogTest, OnlyTheDefaultSearchListsEntries) {
    apps.addEntry("one", "app");
    EXPECT_THAT(AppCatalog::scan({apps.at("share/applications")}, noEntitlements), IsEmpty());
    EXPECT_THAT(ids(), ElementsAre("one.desktop"));
}

TEST_F(DesktopCatalogTest, LeavesOutClonesAndWhatIsNotThere) {
    apps.addEntry("one", "app");
    apps.addEntry("clone", "app", "X-Quorvel-Clone=app.quorvel.instance.work\n");
    apps.addEntry("app.quorvel.Quorvel", "app");
    apps.addEntry("gone", "nothing");
    apps.addEntry("quiet", "app", "NoDisplay=true\n");
    apps.addEntry("console", "app", "Terminal=true\n");
    EXPECT_THAT(ids(), ElementsAre("one.desktop"));
}

TEST_F(DesktopCatalogTest, FindsTheLargestIcon) {
    apps.addIcon("48x48", "picture.png", "x");
    const fs::path large = apps.addIcon("256x256", "picture.png", "x");
    const fs::path drawn = apps.addIcon("scalable", "drawing.svg", "x");
    apps.addEntry("a", "app", "Icon=picture\n");
    apps.addEntry("b", "app", "Icon=drawing\n");
    apps.addEntry("c", "app", "Icon=missing\n");
    const std::vector<InstalledApp> found = scan();
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].iconURL(), large);
    EXPECT_EQ(found[1].iconURL(), drawn);
    EXPECT_EQ(found[2].iconURL(), std::nullopt);
    EXPECT_EQ(InstalledApp{.url = found[0].url}.iconURL(), large);
}

// Each of these is skipped, soon, and hides nothing else.
TEST_F(DesktopCatalogTest, HostileEntriesAreSkipped) {
    const fs::path folder = apps.at("share/applications");
    const std::string head = "[Desktop Entry]\nType=Application\nName=Bad\n";
    apps.addEntry("good", "app");
    write(folder / "huge.desktop", head + "Exec=app\n#" + std::string(4U << 20U, 'x') + "\n");
    write(folder / "groupless.desktop", "Type=Application\nName=Bad\nExec=app\n");
    write(folder / "quote.desktop", head + "Exec=app \"never\n");
    write(folder / "nul.desktop", head + "Exec=app\n" + std::string("X=\0\n", 4));
    fs::create_symlink("loop.desktop", folder / "loop.desktop");
    ASSERT_EQ(::mkfifo((folder / "fifo.desktop").c_str(), 0600), 0);
    fs::create_directory_symlink(".", folder / "again");
    EXPECT_THAT(ids(), ElementsAre("good.desktop"));
}

TEST_F(DesktopCatalogTest, ALineBreakInACommandOnlyEndsAWord) {
    const fs::path entry = apps.addEntry("line", "app\\npp");
    EXPECT_THAT(ids(), ElementsAre("line.desktop"));
    const AppBundle app = AppBundle::read(entry, noEntitlements).value();
    EXPECT_EQ(app.executableURL(), apps.at("bin/app"));
    EXPECT_THAT(app.desktop->arguments({}, {}), ElementsAre("pp"));
}

TEST_F(DesktopCatalogTest, ThirtyThousandActionsTakeNoTime) {
    std::string list = "Actions=";
    std::string groups;
    for (int number = 0; number < 30000; ++number) { // as many as 1 MiB holds
        const std::string id = std::to_string(number);
        list += id + ";";
        groups += "[Desktop Action " + id + "]\nN=x\n";
    }
    apps.addEntry("many", "app", list + "\n" + groups);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(ids(), ElementsAre("many.desktop"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(DesktopCatalogTest, AFolderThatDoesNotAnswerDelaysTheOthersLittle) {
    const fs::path slow = apps.at("slow");
    fs::create_directory(slow);
    apps.addEntry("good", "app");
    const std::string icon = apps.addIcon("48x48", "picture.png", "x").string();
    apps.addEntry("absolute", apps.at("bin/app").string(), "Icon=" + icon + "\n");
    std::vector<std::string> expected{"absolute.desktop", "good.desktop"};
    for (int number = 0; number < 50; ++number) {
        apps.addEntry("slow" + std::to_string(number), "app",
                      "TryExec=" + (slow / std::to_string(number)).string() + "\n");
        const std::string id = "picture" + std::to_string(100 + number); // in the order of names
        apps.addEntry(id, "app", "Icon=" + (slow / id / "large.png").string() + "\n");
        expected.push_back(id + ".desktop");
    }
    const auto problem = inPrivateMounts([&]() -> std::string {
        if (!mountWithoutAnswers(slow)) {
            return "skip";
        }
        const auto start = std::chrono::steady_clock::now();
        const std::vector<InstalledApp> found = scan();
        const auto passed = std::chrono::steady_clock::now() - start;
        if (idsOf(found) != expected) {
            return "found " + std::to_string(found.size());
        }
        if (found.front().themeIcon != icon || found.back().themeIcon) {
            return "an icon is not the right one";
        }
        return passed < std::chrono::seconds(10) ? "" : "it took too long";
    });
    if (!problem || *problem == "skip") {
        GTEST_SKIP() << "the system allows no mounts";
    }
    EXPECT_EQ(*problem, "");
}

TEST_F(DesktopCatalogTest, AThemeThatInheritsItselfEnds) {
    write(apps.at("share/icons/hicolor/index.theme"),
          "[Icon Theme]\nName=hicolor\nInherits=hicolor,other\nDirectories=48x48/apps\n"
          "[48x48/apps]\nSize=48\n");
    write(apps.at("share/icons/other/index.theme"), "[Icon Theme]\nInherits=hicolor,other\n");
    const fs::path icon = apps.addIcon("48x48", "picture.png", "x");
    apps.addEntry("a", "app", "Icon=picture\n");
    EXPECT_EQ(scan().at(0).iconURL(), icon);
}

} // namespace
} // namespace quorvel
