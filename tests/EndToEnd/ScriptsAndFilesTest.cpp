#include "tests/EndToEnd/Programs.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

TEST(ScriptsAndFilesTest, CommandCloneRunsAScriptWithItsArgumentsFolderAndEnvironment) {
    QuorvelctlInAHome quorvelctl;
    const fs::path script = quorvelctl.home / "bin/report";
    write(script, "#!/bin/sh\necho \"in $(pwd) with $# arguments: $*\"\n"
                  "echo \"color $COLOR\" >&2\necho \"cache $CACHE\"\n");
    makeExecutable(script);
    fs::create_directories(quorvelctl.home / "a folder");
    quorvelctl.run({"create", "--kind", "command", "--name", "Report", "--command", script.string(),
                    "--arg=--all", "--arg", "two words", "--workdir",
                    (quorvelctl.home / "a folder").string(), "--env", "COLOR=blue", "--env",
                    "CACHE={{instanceHome}}/cache", "--launch"});
    const std::string expected = "in " + (quorvelctl.home / "a folder").string() +
                                 " with 2 arguments: --all two words\ncolor blue\ncache " +
                                 quorvelctl.data("Report").string() + "/cache\n";
    EXPECT_TRUE(waitUntil([&] { return quorvelctl.log("Report") == expected; }))
        << quorvelctl.log("Report");

    // Each start adds to the log.
    EXPECT_TRUE(waitUntil([&] { return !quorvelctl.isListedAsRunning("Report"); }));
    quorvelctl.run({"open", "Report"});
    EXPECT_TRUE(waitUntil([&] { return quorvelctl.log("Report") == expected + expected; }));
}

TEST(ScriptsAndFilesTest, FileCloneOpensAFileThroughTheDesktopsOpener) {
    if (!fs::exists("/usr/bin/open")) {
        GTEST_SKIP() << "there is no /usr/bin/open; the package xdg-utils brings one";
    }
    QuorvelctlInAHome quorvelctl;
    const fs::path note = quorvelctl.home / "a note.txt";
    write(note, "text");
    // Where no desktop is running, the opener hands files to the browser that this names.
    const fs::path opener = quorvelctl.home / "bin/opener";
    write(opener,
          "#!/bin/sh\nprintf '%s' \"$1\" > '" + (quorvelctl.home / "opened").string() + "'\n");
    makeExecutable(opener);
    quorvelctl.environment["BROWSER"] = opener.string();
    quorvelctl.run({"create", "--kind", "file", "--name", "Note", "--open", "~/a note.txt"});
    quorvelctl.run({"open", "Note"});
    EXPECT_TRUE(waitUntil([&] { return read(quorvelctl.home / "opened").ends_with("a note.txt"); }))
        << read(quorvelctl.home / "opened");
}

} // namespace
} // namespace quorvel
