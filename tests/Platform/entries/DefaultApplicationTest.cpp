#include "Platform/entries/DefaultApplication.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// A session with its own folders, and a system with its own.
class DefaultApplicationTest : public ::testing::Test {
protected:
    static void install(const fs::path& file, const std::string& more = "") {
        write(file, "[Desktop Entry]\nType=Application\nName=" + file.stem().string() +
                        "\nExec=/bin/true %u\n" + more);
    }
    static void list(const fs::path& file, const std::string& ids) {
        write(file, "[Default Applications]\nx-scheme-handler/http=" + ids + "\n");
    }
    static std::string chosen() {
        const auto found = defaultApplication("x-scheme-handler/http");
        return found ? found->id : "none";
    }

    const TemporaryHome home;
    const TemporaryFolder folder;
    const fs::path entries = home / ".local/share/applications";
    const ScopedEnvironment config{"XDG_CONFIG_DIRS",
                                   (folder / "xdg").string() + ":" + (folder / "xdg2").string()};
    const ScopedEnvironment data{"XDG_DATA_DIRS", (folder / "data").string()};
    const ScopedEnvironment ownConfig{"XDG_CONFIG_HOME", ""};
    const ScopedEnvironment ownData{"XDG_DATA_HOME", ""};
    const ScopedEnvironment desktop{"XDG_CURRENT_DESKTOP", "Ubuntu:GNOME"};
};

TEST_F(DefaultApplicationTest, TheMoreImportantListDecides) {
    const std::vector<fs::path> lists{
        folder / "data/applications/mimeapps.list",
        folder / "data/applications/gnome-mimeapps.list",
        home / ".local/share/applications/mimeapps.list",
        home / ".local/share/applications/ubuntu-mimeapps.list",
        folder / "xdg2/mimeapps.list",
        folder / "xdg/mimeapps.list",
        folder / "xdg/gnome-mimeapps.list",
        home / ".config/mimeapps.list",
        home / ".config/gnome-mimeapps.list",
        home / ".config/ubuntu-mimeapps.list",
    };
    EXPECT_EQ(chosen(), "none");
    for (std::size_t index = 0; index < lists.size(); ++index) {
        const std::string id = "app" + std::to_string(index) + ".desktop";
        install(entries / id);
        list(lists[index], id);
        EXPECT_EQ(chosen(), id) << lists[index];
    }
    list(home / ".config/xfce-mimeapps.list", "app0.desktop");
    EXPECT_EQ(chosen(), "app9.desktop") << "another desktop's list";
    const ScopedEnvironment elsewhere{"XDG_CONFIG_HOME", (folder / "xdg2").string()};
    EXPECT_EQ(chosen(), "app4.desktop") << "its own list comes before the system's";
}

TEST_F(DefaultApplicationTest, WhatIsNotInstalledIsPassedOver) {
    list(home / ".config/mimeapps.list",
         "missing.desktop;hidden.desktop;gone.desktop;broken.desktop;noprogram.desktop;"
         "../../escape.desktop;..-..-escape.desktop;here.desktop");
    install(entries / "hidden.desktop", "Hidden=true\n");
    install(folder / "data/applications/hidden.desktop");
    install(entries / "gone.desktop", "TryExec=/no/such/program\n");
    write(entries / "broken.desktop", "no entry");
    write(entries / "noprogram.desktop",
          "[Desktop Entry]\nType=Application\nName=N\nExec=/no/it\n");
    install(folder / "escape.desktop");
    install(home / "escape.desktop");
    ASSERT_EQ(::mkfifo((entries / "pipe.desktop").c_str(), 0600), 0);
    EXPECT_EQ(chosen(), "none");
    install(folder / "data/applications/here.desktop");
    EXPECT_EQ(chosen(), "here.desktop");
    list(home / ".config/mimeapps.list", "pipe.desktop");
    EXPECT_EQ(chosen(), "none");
}

TEST_F(DefaultApplicationTest, AnIdMayNameASubfolder) {
    list(home / ".config/mimeapps.list", "kde-net-web-browser.desktop");
    install(entries / "kde/net/web-browser.desktop");
    EXPECT_EQ(chosen(), "kde-net-web-browser.desktop");
    const auto found = defaultApplication("x-scheme-handler/http");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->file, entries / "kde/net/web-browser.desktop");
}

TEST_F(DefaultApplicationTest, EntriesThatMenusDoNotShowAreStillDefaults) {
    list(home / ".config/mimeapps.list", "clone.desktop");
    install(entries / "clone.desktop", "NoDisplay=true\nOnlyShowIn=KDE;\nX-Quorvel-Clone=x\n");
    EXPECT_EQ(chosen(), "clone.desktop");
}

TEST_F(DefaultApplicationTest, ListsThatCanNotBeReadArePassedOver) {
    install(entries / "here.desktop");
    list(folder / "xdg/mimeapps.list", "here.desktop");
    fs::create_directories(home / ".config");
    ASSERT_EQ(::mkfifo((home / ".config/mimeapps.list").c_str(), 0600), 0);
    write(home / ".config/gnome-mimeapps.list", std::string(2 << 20, 'x'));
    fs::create_directories(home / ".config/ubuntu-mimeapps.list");
    EXPECT_EQ(chosen(), "here.desktop");
}

} // namespace
} // namespace quorvel
