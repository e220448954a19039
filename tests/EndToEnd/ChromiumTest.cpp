#include "tests/EndToEnd/Programs.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// An application bundle around the installed browser. It keeps running, and prints on standard
// error where its debugger listens.
fs::path makeChromiumBundle(const fs::path& bundle) {
    return makeScriptedAppBundle(
        bundle,
        "exec /usr/bin/chromium --headless --no-sandbox --disable-gpu --disable-quic "
        "--no-first-run --disable-background-networking --disable-component-update "
        "--disable-sync --disable-dev-shm-usage --remote-debugging-port=0 \"$@\" about:blank",
        {{"CFBundleIdentifier", "org.chromium.Chromium"}});
}

std::vector<pid_t> browsersWith(const fs::path& data) {
    return processesWhose([&](const std::string& commandLine) {
        return commandLine.find("--user-data-dir=" + data.string()) != std::string::npos;
    });
}

std::map<std::string, std::string> realHomeWithoutClones(const fs::path& home) {
    std::map<std::string, std::string> tree;
    for (const auto& entry : fs::directory_iterator(home)) {
        const std::string name = entry.path().filename().string();
        // Clones are in the menu, too.
        if (name != "QuorvelInstances" && name != "Applications" && name != ".local") {
            tree[name] = entry.is_directory() ? "<folder>" : read(entry.path());
        }
    }
    return tree;
}

// Expects that only the clones' menu entries are among the user's data.
void expectOnlyMenuData(const fs::path& home) {
    for (const char* folder : {".local", ".local/share"}) {
        for (const auto& entry : fs::directory_iterator(home / folder)) {
            EXPECT_THAT((std::vector<std::string>{"share", "applications", "icons"}),
                        ::testing::Contains(entry.path().filename().string()));
        }
    }
}

// Waits until the clone is listed as running and its browser has written its data and its log.
void expectRunning(QuorvelctlInAHome& quorvelctl, const std::string& name) {
    EXPECT_TRUE(waitUntil([&] { return quorvelctl.isListedAsRunning(name); })) << name;
    EXPECT_TRUE(
        waitUntil([&] { return fs::exists(quorvelctl.data(name) / "QuorvelData/Local State"); },
                  std::chrono::seconds(60)))
        << name;
    EXPECT_TRUE(waitUntil(
        [&] { return quorvelctl.log(name).find("DevTools listening") != std::string::npos; },
        std::chrono::seconds(60)))
        << quorvelctl.log(name);
}

TEST(ChromiumTest, TwoClonesRunSideBySideEachWithItsOwnData) {
    if (!fs::exists("/usr/bin/chromium")) {
        GTEST_SKIP() << "the package chromium is not installed";
    }
    QuorvelctlInAHome quorvelctl;
    write(quorvelctl.home / "mine.txt", "mine");
    const fs::path app = makeChromiumBundle(quorvelctl.home / "Applications/Browser.app");
    const auto before = realHomeWithoutClones(quorvelctl.home.path());

    const std::vector<std::string> names{"Browser (Work)", "Browser (Home)"};
    for (const std::string& name : names) {
        const auto clone = quorvelctl.json({"create", "--target", app.string(), "--name", name});
        EXPECT_EQ(clone["config"]["extraArgs"],
                  nlohmann::json({"--user-data-dir={{instanceHome}}/QuorvelData"}));
        quorvelctl.run({"open", name});
    }

    for (const std::string& name : names) {
        expectRunning(quorvelctl, name);
    }
    EXPECT_FALSE(browsersWith(quorvelctl.data(names[0]) / "QuorvelData").empty());
    EXPECT_FALSE(browsersWith(quorvelctl.data(names[1]) / "QuorvelData").empty());
    EXPECT_NE(quorvelctl.log(names[0]), quorvelctl.log(names[1]));

    // Opening a running clone does not start a second browser.
    const auto runner = runnerOf(quorvelctl.home / "Applications/Browser (Work).app");
    ASSERT_TRUE(runner.has_value());
    quorvelctl.run({"open", names[0]});
    EXPECT_EQ(runnerOf(quorvelctl.home / "Applications/Browser (Work).app"), runner);

    // Asking the clone to quit ends its browser, and no other.
    ::kill(*runner, SIGTERM);
    EXPECT_TRUE(
        waitUntil([&] { return browsersWith(quorvelctl.data(names[0]) / "QuorvelData").empty(); }));
    EXPECT_TRUE(waitUntil([&] { return !quorvelctl.isListedAsRunning(names[0]); }));
    EXPECT_TRUE(quorvelctl.isListedAsRunning(names[1]));
    EXPECT_FALSE(browsersWith(quorvelctl.data(names[1]) / "QuorvelData").empty());

    EXPECT_EQ(realHomeWithoutClones(quorvelctl.home.path()), before);
    expectOnlyMenuData(quorvelctl.home.path());

    const auto deleted = quorvelctl.json({"delete", names[0], "--including-data", "--yes"});
    EXPECT_EQ(deleted["deletedData"], true);
    EXPECT_FALSE(fs::exists(quorvelctl.data(names[0])));
    EXPECT_TRUE(fs::exists(quorvelctl.data(names[1])));
}

} // namespace
} // namespace quorvel
