#include "LinkDoor/DefaultBrowser.h"

#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// A session whose default browser has this command; PROGRAM is replaced by one that records its
// arguments, one per line.
class DefaultBrowserTest : public ::testing::Test {
protected:
    DefaultBrowserTest() {
        write(home / ".config/mimeapps.list",
              "[Default Applications]\nx-scheme-handler/https=it.desktop\n");
        write(folder / "program", "#!/bin/sh\n{ printf '%s\\n' \"$@\"; echo \"$MARK\"; } >" +
                                      (folder / "part").string() + "\n/bin/mv " +
                                      (folder / "part").string() + " " + record.string() + "\n");
        fs::permissions(folder / "program", fs::perms{0755});
        fs::create_directory(folder / "bin");
        fs::create_symlink("/bin/sh", folder / "bin/sh");
    }

    std::string opened(std::string exec, const std::string& more = "") {
        const std::string placeholder = "PROGRAM";
        exec.replace(exec.find(placeholder), placeholder.size(), (folder / "program").string());
        write(home / ".local/share/applications/it.desktop",
              "[Desktop Entry]\nType=Application\nName=It\nIcon=icon\nExec=" + exec + "\n" + more);
        fs::remove(record);
        if (!openWithDefault("https", address)) {
            return "nothing";
        }
        EXPECT_TRUE(waitUntil([&] { return fs::exists(record); })) << exec;
        return read(record);
    }

    const std::string address = "https://good.test/$(id)?a b";
    const TemporaryHome home;
    const TemporaryFolder folder;
    const fs::path record = folder / "record";
    const ScopedEnvironment data{"XDG_DATA_DIRS", (folder / "none").string()};
    const ScopedEnvironment config{"XDG_CONFIG_DIRS", (folder / "none").string()};
    const ScopedEnvironment path{"PATH", (folder / "bin").string()};
    const ScopedEnvironment mark{"MARK", "before"};
    const ScopedEnvironment own{"XDG_CONFIG_HOME", ""};
    const ScopedEnvironment ownData{"XDG_DATA_HOME", ""};
};

TEST_F(DefaultBrowserTest, TheAddressTakesThePlaceOfTheCode) {
    EXPECT_EQ(opened("PROGRAM %u"), address + "\nbefore\n");
    EXPECT_EQ(opened("PROGRAM -new-tab %U --"), "-new-tab\n" + address + "\n--\nbefore\n");
    EXPECT_EQ(opened("PROGRAM --app=%u"), "--app=" + address + "\nbefore\n");
}

TEST_F(DefaultBrowserTest, ACommandWithoutACodeForAddressesGetsItAtTheEnd) {
    EXPECT_EQ(opened("PROGRAM"), address + "\nbefore\n");
    EXPECT_EQ(opened("PROGRAM %f --x"), "--x\n" + address + "\nbefore\n");
}

TEST_F(DefaultBrowserTest, AnEnvBeforeTheProgramIsFollowed) {
    EXPECT_EQ(opened("env MARK=after PROGRAM %u"), address + "\nafter\n");
    EXPECT_EQ(opened("env -u MARK PROGRAM %u"), address + "\n\n");
}

TEST_F(DefaultBrowserTest, NoShellEverReadsTheAddress) {
    EXPECT_EQ(opened("sh -c \"PROGRAM %u\""), "nothing");
    EXPECT_EQ(opened("/bin/sh -c \"PROGRAM %u\""), "nothing");
    EXPECT_EQ(opened("sh -c \"PROGRAM \\\\\"\\\\$1\\\\\"\" sh %u"), address + "\nbefore\n")
        << "as an argument of its own it is not read";
}

TEST_F(DefaultBrowserTest, NoShellThatAnotherProgramStartsReadsTheAddress) {
    fs::create_symlink("/usr/bin/setsid", folder / "bin/setsid");
    write(folder / "bin/terminal", "#!/bin/sh\nshift\nexec /bin/sh -c \"$*\"\n");
    write(folder / "bin/busybox", "#!/bin/sh\nshift\nexec /bin/sh \"$@\"\n");
    for (const char* program : {"bin/terminal", "bin/busybox"}) {
        fs::permissions(folder / program, fs::perms{0755});
    }
    EXPECT_EQ(opened("setsid sh -c \"PROGRAM %u\""), "nothing");
    EXPECT_EQ(opened("busybox sh -c \"PROGRAM %u\""), "nothing");
    EXPECT_EQ(opened("terminal -e \"PROGRAM %u\""), "nothing");
    EXPECT_EQ(opened("setsid PROGRAM %u"), address + "\nbefore\n");
    EXPECT_EQ(opened("setsid PROGRAM --app=%u"), "--app=" + address + "\nbefore\n");
}

TEST_F(DefaultBrowserTest, AnAddressThatIsTheWholeCommandOfAShellIsNotOpened) {
    for (const char* exec : {"sh -c %u", "sh -ec %u PROGRAM", "env sh -c %u"}) {
        write(home / ".local/share/applications/it.desktop",
              std::string("[Desktop Entry]\nType=Application\nName=It\nExec=") + exec + "\n");
        EXPECT_FALSE(openWithDefault("https", address)) << exec;
    }
}

TEST_F(DefaultBrowserTest, ABrowserForTheTerminalIsNotOpenedWithoutOne) {
    EXPECT_EQ(opened("PROGRAM %u", "Terminal=true\n"), "nothing");
    fs::create_symlink(folder / "program", folder / "bin/xdg-open");
    EXPECT_EQ(opened("PROGRAM -e %u", "Terminal=true\n"), address + "\nbefore\n")
        << "by way of xdg-open";
}

} // namespace
} // namespace quorvel
