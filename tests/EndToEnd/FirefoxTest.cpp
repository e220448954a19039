#include "tests/EndToEnd/Programs.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

TEST(FirefoxTest, AClonesProfileIsMadeAndUsed) {
    if (!fs::exists("/usr/bin/firefox-esr")) {
        GTEST_SKIP() << "the package firefox-esr is not installed";
    }
    QuorvelctlInAHome quorvelctl;
    const fs::path app =
        makeScriptedAppBundle(quorvelctl.home / "Applications/Fox.app",
                              "exec /usr/bin/firefox-esr --headless \"$@\" about:blank",
                              {{"CFBundleIdentifier", "org.mozilla.firefox"}});
    const auto clone = quorvelctl.json({"create", "--target", app.string(), "--name", "Fox (2)"});
    EXPECT_EQ(clone["config"]["extraArgs"],
              nlohmann::json({"-profile", "{{instanceHome}}/FirefoxProfile", "-no-remote"}));
    const fs::path profile = quorvelctl.data("Fox (2)") / "FirefoxProfile";
    const fs::path wrapper = quorvelctl.home / "Applications/Fox (2).app";

    // The second time shows that the first one's end left nothing in the way.
    for (const char* used : {"prefs.js", "places.sqlite"}) {
        quorvelctl.run({"open", "Fox (2)"});
        EXPECT_TRUE(waitUntil([&] { return fs::exists(profile / used); }, std::chrono::seconds(90)))
            << quorvelctl.log("Fox (2)");
        EXPECT_TRUE(waitUntil([&] { return fs::is_symlink(profile / "lock"); }))
            << "the profile is in use";
        const auto runner = runnerOf(wrapper);
        ASSERT_TRUE(runner) << quorvelctl.log("Fox (2)");
        ::kill(*runner, SIGTERM);
        EXPECT_TRUE(waitUntil([&] { return !quorvelctl.isListedAsRunning("Fox (2)"); }));
    }
}

} // namespace
} // namespace quorvel
