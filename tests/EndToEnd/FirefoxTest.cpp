#include "Platform/processes/ProcessFamily.h"
#include "tests/EndToEnd/Programs.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
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
        ASSERT_TRUE(runnerOf(wrapper)) << quorvelctl.log("Fox (2)");
        EXPECT_THAT(quorvelctl.run({"stop", "Fox (2)"}), HasSubstr("has ended: "));
        EXPECT_FALSE(quorvelctl.isListedAsRunning("Fox (2)"));
        EXPECT_TRUE(processesWithHome(quorvelctl.data("Fox (2)").string()).empty());
    }
}

// Asks Firefox to restart itself, as its menus do, by the protocol of its test drivers.
constexpr const char* restart = R"(
import json, socket, sys
driver = socket.create_connection(('127.0.0.1', int(open(sys.argv[1]).read())), 60)
stream = driver.makefile('rb')
def receive():
    length = b''
    while not length.endswith(b':'):
        length += stream.read(1)
    return json.loads(stream.read(int(length[:-1])))
def ask(number, command, parameters):
    text = json.dumps([0, number, command, parameters])
    driver.sendall(f'{len(text)}:{text}'.encode())
    return receive()
receive()
ask(1, 'WebDriver:NewSession', {})
print(ask(2, 'Marionette:Quit', {'flags': ['eForceQuit', 'eRestart']})[3]['cause'])
)";

// Firefox drops its arguments when it restarts, so that only its home shows whose it is.
class ProcessesWithHome {
public:
    explicit ProcessesWithHome(std::string home) : home_(std::move(home)) {}
    ProcessesWithHome(const ProcessesWithHome&) = delete;
    ProcessesWithHome& operator=(const ProcessesWithHome&) = delete;
    ~ProcessesWithHome() {
        for (const ProcessIdentity& process : processesWithHome(home_)) {
            ::kill(process.pid, SIGKILL);
        }
    }

private:
    std::string home_;
};

// The processes that the runner waits for, but for those that only look after a crash.
std::vector<pid_t> browsersOf(pid_t runner) {
    std::vector<pid_t> found;
    for (const ProcessIdentity& child : childrenOf(runner)) {
        const std::string process = "/proc/" + std::to_string(child.pid);
        std::error_code code;
        if (fs::read_symlink(process + "/exe", code).filename() == "firefox-esr") {
            found.push_back(child.pid);
        }
    }
    return found;
}

TEST(FirefoxTest, ACloneKeepsRunningWhenFirefoxRestartsItself) {
    for (const char* program : {"/usr/bin/firefox-esr", "/usr/bin/python3"}) {
        if (!fs::exists(program)) {
            GTEST_SKIP() << program << " is not installed";
        }
    }
    QuorvelctlInAHome quorvelctl;
    quorvelctl.run({"create", "--target", "firefox-esr.desktop", "--name", "Fox", "--env",
                    "MOZ_HEADLESS=1", "--env", "MOZ_MARIONETTE=1"});
    const fs::path home = quorvelctl.data("Fox");
    const ProcessesWithHome ending(home.string());
    const fs::path profile = home / "FirefoxProfile";
    write(profile / "user.js", "user_pref('marionette.port', 0);\n");
    quorvelctl.run({"open", "Fox"});
    const auto port = profile / "MarionetteActivePort";
    ASSERT_TRUE(waitUntil([&] { return fs::exists(port); }, std::chrono::seconds(90)))
        << quorvelctl.log("Fox");
    const auto runner = runnerOf(quorvelctl.home / "Applications/Fox.app");
    ASSERT_TRUE(runner);
    const std::vector<pid_t> first = browsersOf(*runner);
    ASSERT_EQ(first.size(), 1U);

    Process::Options driver;
    driver.executable = "/usr/bin/python3";
    driver.arguments = {"-c", restart, port.string()};
    EXPECT_EQ(Process::capture(driver, 100), "restart\n");
    ASSERT_TRUE(waitUntil(
        [&] {
            const std::vector<pid_t> now = browsersOf(*runner);
            return now.size() == 1 && now != first;
        },
        std::chrono::seconds(60)))
        << "it goes on in another process, which its runner has adopted";
    EXPECT_TRUE(waitUntil([&] { return ::kill(first.front(), 0) != 0; }));
    std::vector<pid_t> second;
    EXPECT_TRUE(waitUntil([&] { return (second = browsersOf(*runner)).size() == 1; }));
    EXPECT_TRUE(quorvelctl.isListedAsRunning("Fox"));
    (void)quorvelctl.outcomeOf({"open", "Fox"}); // it has no window to bring to the front
    EXPECT_EQ(browsersOf(*runner), second);
    Process::Options again;
    again.executable = quorvelctl.home / "Applications/Fox.app/Contents/MacOS/runner";
    again.environment = quorvelctl.environment;
    again.standardError = Process::Discard{};
    EXPECT_EQ(Process::run(again).waitUntilExit(), 75) << "one target in a home";

    EXPECT_THAT(quorvelctl.run({"stop", "Fox"}), HasSubstr("has ended: "));
    EXPECT_TRUE(processesWithHome(home.string()).empty());
    EXPECT_FALSE(quorvelctl.isListedAsRunning("Fox"));
    EXPECT_TRUE(waitUntil([&] { return ::kill(second.front(), 0) != 0; }));
}

} // namespace
} // namespace quorvel
