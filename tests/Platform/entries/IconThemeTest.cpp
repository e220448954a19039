#include "Platform/entries/IconTheme.h"

#include "Platform/entries/IconThemeFolder_linux.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <sys/stat.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

class IconThemeTest : public ::testing::Test {
protected:
    // A theme whose folders are "16", "128", "scalable" and the like, by their sizes.
    void theme(const std::string& folder, const std::string& inherits = "",
               const std::vector<std::string>& sizes = {"16", "48", "64", "128", "256",
                                                        "scalable"}) const {
        std::string list;
        std::string groups;
        for (const std::string& size : sizes) {
            list += size + "/apps,";
            groups += "[" + size + "/apps]\nSize=" + (size == "scalable" ? "48" : size) + "\n";
        }
        // Lists are divided by commas here, unlike in other files of this form.
        write(folder_ / (folder + "/index.theme"), "[Icon Theme]\nName=x\nInherits=" + inherits +
                                                       "\nDirectories=" + list + "\n" + groups);
    }

    void icons(const std::vector<std::string>& paths) const {
        for (const std::string& path : paths) {
            write(folder_ / path, "x");
        }
    }

    [[nodiscard]] std::string find(const std::string& icon, const std::string& name = "hicolor",
                                   const std::vector<std::string>& folders = {"own", "all"}) const {
        std::vector<fs::path> paths;
        paths.reserve(folders.size());
        for (const std::string& folder : folders) {
            paths.push_back(folder_ / folder);
        }
        const auto file = IconTheme(name, paths).find(icon);
        return file ? fs::relative(*file, folder_.path()).string() : "none";
    }

    TemporaryFolder folder_{};
};

TEST_F(IconThemeTest, TakesTheLargestPng) {
    theme("all/hicolor");
    icons({"all/hicolor/16/apps/a.png", "all/hicolor/256/apps/a.png", "all/hicolor/128/apps/a.png",
           "all/hicolor/scalable/apps/a.svg"});
    EXPECT_EQ(find("a"), "all/hicolor/256/apps/a.png");
    EXPECT_EQ(find("b"), "none");
    EXPECT_EQ(find(""), "none");
}

TEST_F(IconThemeTest, TakesTheScalableOneWherePngsAreSmall) {
    theme("all/hicolor");
    icons({"all/hicolor/16/apps/a.png", "all/hicolor/48/apps/a.png",
           "all/hicolor/scalable/apps/a.svg", "all/hicolor/16/apps/b.png",
           "all/hicolor/48/apps/b.png", "all/hicolor/64/apps/c.png",
           "all/hicolor/scalable/apps/c.svg", "all/hicolor/scalable/apps/d.svg"});
    EXPECT_EQ(find("a"), "all/hicolor/scalable/apps/a.svg");
    EXPECT_EQ(find("b"), "all/hicolor/48/apps/b.png");
    EXPECT_EQ(find("c"), "all/hicolor/64/apps/c.png");
    EXPECT_EQ(find("d"), "all/hicolor/scalable/apps/d.svg");
}

TEST_F(IconThemeTest, CountsThePixelsOfScaledFolders) {
    write(folder_ / "all/hicolor/index.theme",
          "[Icon Theme]\nDirectories=128,96@2\nScaledDirectories=96@2\n"
          "[128]\nSize=128\n[96@2]\nSize=96\nScale=2\n");
    icons({"all/hicolor/128/a.png", "all/hicolor/96@2/a.png"});
    EXPECT_EQ(find("a"), "all/hicolor/96@2/a.png");
}

TEST_F(IconThemeTest, TheUsersThemeComesBeforeWhatItInherits) {
    theme("all/mine", "base,other");
    theme("all/base");
    theme("all/other");
    theme("all/hicolor");
    icons({"all/mine/48/apps/a.png", "all/base/256/apps/a.png", "all/base/48/apps/b.png",
           "all/other/256/apps/b.png", "all/other/48/apps/c.png", "all/hicolor/256/apps/c.png",
           "all/hicolor/48/apps/d.png"});
    EXPECT_EQ(find("a", "mine"), "all/mine/48/apps/a.png");
    EXPECT_EQ(find("b", "mine"), "all/base/48/apps/b.png");
    EXPECT_EQ(find("c", "mine"), "all/other/48/apps/c.png");
    EXPECT_EQ(find("d", "mine"), "all/hicolor/48/apps/d.png");
    EXPECT_EQ(find("d", "no-such-theme"), "all/hicolor/48/apps/d.png");
    EXPECT_EQ(find("a", "../all/mine"), "none");
}

TEST_F(IconThemeTest, ThemesThatInheritThemselvesEnd) {
    theme("all/one", "two,one,hicolor");
    theme("all/two", "one,two");
    theme("all/hicolor", "hicolor,one");
    icons({"all/two/48/apps/a.png", "all/hicolor/48/apps/b.png"});
    EXPECT_EQ(find("a", "one"), "all/two/48/apps/a.png");
    EXPECT_EQ(find("b", "one"), "all/hicolor/48/apps/b.png");
    std::string selves;
    for (int number = 0; number < 100; ++number) {
        selves += "self,";
    }
    theme("all/self", selves + "two");
    EXPECT_EQ(find("a", "self"), "all/two/48/apps/a.png");
    for (int number = 0; number < 100; ++number) {
        theme("all/t" + std::to_string(number), "t" + std::to_string(number + 1));
    }
    EXPECT_EQ(find("b", "t0"), "all/hicolor/48/apps/b.png");
}

TEST_F(IconThemeTest, AThemesPartsLieInSeveralFolders) {
    theme("all/hicolor");
    icons({"own/hicolor/48/apps/a.png", "all/hicolor/48/apps/a.png", "all/hicolor/256/apps/b.png",
           "own/hicolor/48/apps/b.png", "own/hicolor/32/apps/c.png"});
    EXPECT_EQ(find("a"), "own/hicolor/48/apps/a.png") << "the user's own comes first";
    EXPECT_EQ(find("b"), "all/hicolor/256/apps/b.png") << "but not before a larger one";
    EXPECT_EQ(find("c"), "none") << "a folder that the index does not name";
}

TEST_F(IconThemeTest, LooksBesideTheThemesLast) {
    theme("all/hicolor");
    icons({"all/a.svg", "all/b.png", "all/b.svg", "all/hicolor/16/apps/b.png", "all/c.xpm"});
    EXPECT_EQ(find("a"), "all/a.svg");
    EXPECT_EQ(find("b"), "all/hicolor/16/apps/b.png");
    EXPECT_EQ(find("c"), "none");
    fs::create_directory(folder_ / "all/d.png");
    EXPECT_EQ(find("d"), "none");
}

TEST_F(IconThemeTest, TakesNamesWithEndingsAndWholePaths) {
    theme("all/hicolor");
    icons({"all/hicolor/48/apps/a.png", "all/hicolor/48/apps/org.png.png", "all/x.svg", "all/y.xpm",
           "all/hicolor/48/apps/a.b.png"});
    EXPECT_EQ(find("a.png"), "all/hicolor/48/apps/a.png");
    EXPECT_EQ(find("a.xpm"), "all/hicolor/48/apps/a.png");
    EXPECT_EQ(find("org.png"), "all/hicolor/48/apps/org.png.png");
    EXPECT_EQ(find("a.b"), "all/hicolor/48/apps/a.b.png");
    EXPECT_EQ(find((folder_ / "all/x.svg").string()), "all/x.svg");
    EXPECT_EQ(find((folder_ / "all/y.xpm").string()), "none");
    EXPECT_EQ(find((folder_ / "all/missing.png").string()), "none");
    EXPECT_EQ(find((folder_ / "all/x.svg").string() + std::string("\0.svg", 5)), "none");
    EXPECT_EQ(find("hicolor/48/apps/a"), "none");
    ASSERT_EQ(::mkfifo((folder_ / "all/fifo.png").c_str(), 0600), 0);
    EXPECT_EQ(find((folder_ / "all/fifo.png").string()), "none");
}

TEST_F(IconThemeTest, AnIndexLeadsNowhereElse) {
    icons({"secret/a.png", "all/hicolor/48/a.png"});
    write(folder_ / "all/hicolor/index.theme",
          "[Icon Theme]\nDirectories=../../secret,48/../../../secret," +
              (folder_ / "secret").string() +
              ",\n[../../secret]\nSize=512\n[48/../../../secret]\nSize=512\n");
    EXPECT_EQ(find("a"), "none");
}

TEST_F(IconThemeTest, AHugeIndexTakesNoTime) {
    std::string list;
    while (list.size() < (IconThemeFolder::maxIndexSize / 2)) {
        list += std::to_string(list.size()) + ",";
    }
    write(folder_ / "all/mine/index.theme",
          "[Icon Theme]\nInherits=" + list + "\nDirectories=" + list.substr(0, list.size() / 2));
    write(folder_ / "all/larger/index.theme",
          "[Icon Theme]\nDirectories=48\n#" + std::string(4U << 20U, 'x') + "\n[48]\nSize=48\n");
    theme("all/hicolor");
    icons({"all/hicolor/48/apps/a.png", "all/larger/48/a.png"});
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(find("a", "mine"), "all/hicolor/48/apps/a.png");
    EXPECT_EQ(find("a", "larger"), "all/hicolor/48/apps/a.png");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
}

TEST_F(IconThemeTest, TheChosenThemeIsThatOfTheDesktopsSettings) {
    const TemporaryHome home;
    const ScopedEnvironment settings("XDG_CONFIG_HOME", (home / "settings").string());
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "GNOME");
    EXPECT_EQ(IconTheme::chosenTheme(), "hicolor");
    write(home / "settings/kdeglobals", "[Icons]\nTheme=breeze-dark\n");
    EXPECT_EQ(IconTheme::chosenTheme(), "hicolor");
    write(home / "settings/gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name=Papirus\n");
    EXPECT_EQ(IconTheme::chosenTheme(), "Papirus");
    for (const char* kde : {"KDE", "X:KDE"}) {
        const ScopedEnvironment plasma("XDG_CURRENT_DESKTOP", kde);
        EXPECT_EQ(IconTheme::chosenTheme(), "breeze-dark") << kde;
    }
}

TEST_F(IconThemeTest, TheThemesOfDesktopsComeLast) {
    theme("own/hicolor");
    theme("own/Adwaita");
    icons({"own/hicolor/48/apps/both.png", "own/Adwaita/256/apps/both.png", "own/beside.png",
           "own/Adwaita/48/apps/beside.png", "own/Adwaita/48/apps/other.png"});
    EXPECT_EQ(find("both"), "own/hicolor/48/apps/both.png");
    EXPECT_EQ(find("beside"), "own/beside.png");
    EXPECT_EQ(find("other"), "own/Adwaita/48/apps/other.png");
    EXPECT_EQ(find("missing"), "none");
}

TEST_F(IconThemeTest, FoldersComeFromTheSession) {
    const TemporaryHome home;
    const ScopedEnvironment dataHome("XDG_DATA_HOME", "/data");
    const ScopedEnvironment others("XDG_DATA_DIRS", "/x");
    EXPECT_THAT(IconTheme::iconFolders(),
                ElementsAre("/data/icons", home / ".icons", "/x/icons",
                            "/data/flatpak/exports/share/icons",
                            "/var/lib/flatpak/exports/share/icons", "/var/lib/snapd/desktop/icons",
                            "/usr/share/pixmaps"));
}

TEST_F(IconThemeTest, FoldersAndThemesOnADeadMountAreLeftOut) {
    theme("own/hicolor");
    icons({"own/hicolor/48/apps/a.png", "own/beside.png"});
    const auto problem = inPrivateMounts([&]() -> std::string {
        for (const char* folder : {"dead", "own/mine"}) {
            fs::create_directories(folder_ / folder);
            if (!mountWithoutAnswers(folder_ / folder)) {
                return "skip";
            }
        }
        const auto start = std::chrono::steady_clock::now();
        IconTheme icons("mine", {folder_ / "dead", folder_ / "own"});
        const auto files = icons.findAll({"a", "beside", "missing", "others"});
        // Two seconds for each mount, however many themes are looked for in it.
        if (std::chrono::steady_clock::now() - start > std::chrono::seconds(7)) {
            return "it took too long";
        }
        const bool isRight = files[0] == folder_ / "own/hicolor/48/apps/a.png" &&
                             files[1] == folder_ / "own/beside.png" && !files[2] && !files[3];
        return isRight ? "" : "not found";
    });
    if (!problem || *problem == "skip") {
        GTEST_SKIP() << "nothing can be mounted here";
    }
    EXPECT_EQ(*problem, "");
}

TEST(IconThemeTestInstalled, AreFoundInTheSystemsTheme) {
    IconTheme theme("hicolor");
    int found = 0;
    for (const auto& [name, entry, ending] :
         {std::tuple{"org.gnome.gedit", "org.gnome.gedit", "scalable/apps/org.gnome.gedit.svg"},
          std::tuple{"firefox-esr", "firefox-esr", "128x128/apps/firefox-esr.png"},
          std::tuple{"chromium", "chromium", "256x256/apps/chromium.png"}}) {
        if (!fs::exists("/usr/share/applications/" + std::string(entry) + ".desktop")) {
            continue;
        }
        ++found;
        const auto file = theme.find(name);
        ASSERT_TRUE(file) << name;
        EXPECT_TRUE(file->string().ends_with(ending)) << *file;
    }
    if (found == 0) {
        GTEST_SKIP() << "none of the applications is installed";
    }
}

} // namespace
} // namespace quorvel::testing
