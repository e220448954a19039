#include "tests/EndToEnd/Programs.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;
using ::testing::IsSupersetOf;

// Installs what is built below `prefix`.
void installTo(const fs::path& prefix) {
    Process::Options options;
    options.executable = QUORVEL_CMAKE;
    options.arguments = {"--install", QUORVEL_BUILD, "--prefix", prefix.string()};
    options.standardOutput = Process::Discard{};
    ASSERT_EQ(Process::run(options).waitUntilExit(), 0);
}

std::vector<std::string> filesBelow(const fs::path& folder) {
    std::vector<std::string> files;
    for (const auto& item : fs::recursive_directory_iterator(folder)) {
        if (!item.is_directory()) {
            files.push_back(item.path().lexically_relative(folder).string());
        }
    }
    return files;
}

TEST(InstalledTest, HasItsFilesWhereADesktopLooksForThem) {
    const TemporaryFolder folder;
    installTo(folder.path());
    EXPECT_THAT(
        filesBelow(folder.path()),
        IsSupersetOf({"bin/quorvelctl", "libexec/quorvel/quorvel-link-door",
                      "libexec/quorvel/quorvel-runner", "libexec/quorvel/quorvel-status-item",
                      "libexec/quorvel/quorvel-window-names", "share/man/man1/quorvelctl.1",
                      "share/bash-completion/completions/quorvelctl",
                      "share/zsh/site-functions/_quorvelctl"}));
#ifdef QUORVEL_WITH_WEB_HOST
    EXPECT_THAT(filesBelow(folder.path()), IsSupersetOf({"libexec/quorvel/quorvel-site-preview",
                                                         "libexec/quorvel/quorvel-web-host.so"}));
#endif
#ifdef QUORVEL_WITH_APP
    EXPECT_THAT(filesBelow(folder.path()),
                IsSupersetOf({"bin/quorvel", "share/man/man1/quorvel.1",
                              "share/icons/hicolor/16x16/apps/app.quorvel.Quorvel.png",
                              "share/icons/hicolor/48x48/apps/app.quorvel.Quorvel.png",
                              "share/icons/hicolor/512x512/apps/app.quorvel.Quorvel.png",
                              "share/applications/app.quorvel.Quorvel.desktop",
                              "share/metainfo/app.quorvel.Quorvel.metainfo.xml",
                              "share/icons/hicolor/scalable/apps/app.quorvel.Quorvel.svg"}));
#endif
}

TEST(InstalledTest, MakesClonesThatRunWithoutIt) {
    QuorvelctlInAHome quorvelctl;
    {
        const TemporaryFolder folder;
        installTo(folder.path());
        quorvelctl.program = folder / "bin/quorvelctl";
        quorvelctl.run({"create", "--kind", "command", "--name", "Greet", "--command",
                        "/usr/bin/printf", "--arg", "hello"});
    }
    Process::Options options;
    options.executable = quorvelctl.home / "Applications/Greet.app/Contents/MacOS/runner";
    options.environment = quorvelctl.environment;
    EXPECT_EQ(Process::run(options).waitUntilExit(), 0);
    EXPECT_EQ(quorvelctl.log("Greet"), "hello");
}

// The build was made for another place.
TEST(InstalledTest, ClonesFindThePrograms) {
    QuorvelctlInAHome quorvelctl;
    const TemporaryFolder folder;
    installTo(folder.path());
    quorvelctl.program = folder / "bin/quorvelctl";
    quorvelctl.environment.erase("QUORVEL_LINK_DOOR");
    const fs::path app = quorvelctl.home / "thing.desktop";
    write(app, "[Desktop Entry]\nType=Application\nName=Thing\nExec=/bin/true\n");
    quorvelctl.run({"create", "--name", "Thing", "--target", app.string()});
    const fs::path wrapper = quorvelctl.home / "Applications/Thing.app";
    const fs::path door = quorvelctl.data("Thing") / ".local/share/quorvel/links/bin/xdg-open";
    const auto doorAfterAStart = [&] {
        Process::Options options;
        options.executable = wrapper / "Contents/MacOS/runner";
        options.environment = quorvelctl.environment;
        EXPECT_EQ(Process::run(options).waitUntilExit(), 0);
        return fs::read_symlink(door);
    };
    EXPECT_EQ(doorAfterAStart(), folder / "libexec/quorvel/quorvel-link-door");
    // What lies beside the runner itself, as beside other programs, comes first.
    const fs::path own = wrapper / "Contents/libexec/quorvel/quorvel-link-door";
    write(own, "#!/bin/sh\n");
    fs::permissions(own, fs::perms{0755});
    EXPECT_EQ(doorAfterAStart(), own);
}

} // namespace
} // namespace quorvel
