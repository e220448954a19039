#include "Platform/windows/WindowActivation_linux.h"

#include "Platform/desktop/Workspace.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/processes/ProcessFamily.h"
#include "Platform/windows/X11Windows_linux.h"
#include "tests/support/AppBundles.h"
#include "tests/support/SessionBus.h"
#include "tests/support/Waiting.h"
#include "tests/support/XServer.h"

#include <csignal>
#include <future>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class WindowActivationTest : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        const auto missing = XServer::missingPrograms(GetParam());
        if (!missing.empty()) {
            GTEST_SKIP() << missing.front() << " is not installed";
        }
        wayland_.emplace("WAYLAND_DISPLAY", "");
        sway_.emplace("SWAYSOCK", "");
        (void)SessionBus::shared(); // xfwm4 has its settings from a service
        server_.emplace(GetParam());
        screen_ = X11Windows::connect();
        ASSERT_TRUE(screen_);
    }

    void TearDown() override {
        windows_.clear();
        screen_.reset();
    }

    // Opens a window that has the focus then, and returns its process.
    BackgroundProgram& openWindow(const std::string& name, bool anonymous = false) {
        const fs::path file = folder_ / name;
        std::vector<std::string> arguments{file.string(), name};
        if (anonymous) {
            arguments.emplace_back("anonymous");
        }
        windows_.push_back(std::make_unique<BackgroundProgram>(QUORVEL_X11_WINDOW, arguments));
        // On a busy machine, a window manager may leave the focus where it is.
        if (!comesToFront(name, std::chrono::seconds(5))) {
            xdotool("windowactivate", name);
        }
        EXPECT_TRUE(comesToFront(name)) << "a new window does not get the focus";
        return *windows_.back();
    }

    [[nodiscard]] std::uint32_t window(const std::string& name) const {
        const std::string number = read(folder_ / name);
        return number.ends_with('\n') ? static_cast<std::uint32_t>(std::stoul(number)) : 0;
    }

    [[nodiscard]] bool isInFront(const std::string& name) const {
        return window(name) != 0 && screen_->active() == window(name);
    }

    [[nodiscard]] bool
    comesToFront(const std::string& name,
                 std::chrono::milliseconds deadline = std::chrono::seconds(20)) const {
        return waitUntil([&] { return isInFront(name); }, deadline);
    }

    void xdotool(const std::string& command, const std::string& name) const {
        Process::Options options;
        options.executable = "/usr/bin/xdotool";
        options.arguments = {command, std::to_string(window(name))};
        (void)Process::capture(options, 64);
    }

    void minimize(const std::string& name) {
        xdotool("windowminimize", name);
        ASSERT_TRUE(waitUntil([&] { return !isInFront(name); }));
    }

    TemporaryFolder folder_;
    std::optional<ScopedEnvironment> wayland_{};
    std::optional<ScopedEnvironment> sway_{};
    std::optional<XServer> server_{};
    std::optional<X11Windows> screen_{};
    std::vector<std::unique_ptr<BackgroundProgram>> windows_{};
};

TEST_P(WindowActivationTest, BringsTheWindowOfThatProcessToTheFront) {
    const pid_t first = openWindow("First").pid();
    const pid_t second = openWindow("Second").pid();
    openWindow("Third");
    EXPECT_EQ(bringToFront({.processes = {first}}), std::nullopt);
    EXPECT_TRUE(isInFront("First"));
    EXPECT_EQ(bringToFront({.processes = {second, 1}}), std::nullopt);
    EXPECT_TRUE(isInFront("Second"));
}

TEST_P(WindowActivationTest, ChangesThatArriveBetweenTwoWaitsEndTheSecondAtOnce) {
    using namespace std::chrono_literals;
    ASSERT_TRUE(screen_->waitForChanges(0ms));
    openWindow("First");
    // Each answer of the server takes the changes before it out of the socket.
    (void)waitUntil([&] { return screen_->active() == 0; }, 1s);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(screen_->waitForChanges(60s));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
}

TEST_P(WindowActivationTest, BringsBackAMinimizedWindow) {
    const pid_t first = openWindow("First").pid();
    minimize("First");
    openWindow("Second");
    EXPECT_EQ(bringToFront({.processes = {first}}), std::nullopt);
    EXPECT_TRUE(isInFront("First"));
}

TEST_P(WindowActivationTest, FindsAWindowThatDoesNotNameItsProcessByItsClass) {
    const pid_t first = openWindow("First", true).pid();
    openWindow("Second", true);
    EXPECT_EQ(bringToFront({.processes = {first}}), ActivationFailure::noWindow);
    EXPECT_TRUE(isInFront("Second"));
    EXPECT_EQ(bringToFront({.processes = {first}, .windowClass = "First"}), std::nullopt);
    EXPECT_TRUE(isInFront("First"));
}

TEST_P(WindowActivationTest, PrefersTheTopmostOfSeveralWindows) {
    const pid_t first = openWindow("First").pid();
    const pid_t second = openWindow("Second").pid();
    openWindow("Third");
    EXPECT_EQ(bringToFront({.processes = {first, second}}), std::nullopt);
    EXPECT_TRUE(isInFront("Second"));
}

TEST_P(WindowActivationTest, FailsForAProcessWithoutAWindow) {
    openWindow("First");
    EXPECT_EQ(bringToFront({.processes = {::getpid()}}), ActivationFailure::noWindow);
    EXPECT_TRUE(isInFront("First"));
}

/// Wrappers that are opened again.
class WindowActivationTestOpeningAgain : public WindowActivationTest {
protected:
    void TearDown() override {
        const RunningApplications running = workspace_->runningApplications();
        for (const RunningApplication& application : running.all()) {
            if (application.bundleURL.parent_path() == fs::canonical(folder_.path())) {
                for (const ProcessIdentity& process : descendantsOf(application.pid)) {
                    ::kill(process.pid, SIGTERM);
                }
                ::kill(application.pid, SIGTERM);
            }
        }
        WindowActivationTest::TearDown();
    }

    [[nodiscard]] std::optional<std::string> open(const fs::path& bundle) const {
        std::promise<std::optional<PlatformError>> opened;
        workspace_->openApplication(bundle, true,
                                    [&](const auto& error) { opened.set_value(error); });
        const auto error = opened.get_future().get();
        return error ? std::optional(error->description()) : std::nullopt;
    }

    std::unique_ptr<Workspace> workspace_ = makeSystemWorkspace();
};

TEST_P(WindowActivationTestOpeningAgain,
       BringsTheWindowOfTheProgramThatTheWrapperStartedToTheFront) {
    const fs::path bundle = makeScriptedAppBundle(
        folder_ / "Clone.app",
        std::string(QUORVEL_X11_WINDOW) + " " + (folder_ / "Clone").string() + " Clone & wait");
    EXPECT_EQ(open(bundle), std::nullopt);
    ASSERT_TRUE(comesToFront("Clone"));
    openWindow("Other");
    EXPECT_EQ(open(bundle), std::nullopt);
    EXPECT_TRUE(isInFront("Clone"));
}

TEST_P(WindowActivationTestOpeningAgain,
       FindsAWindowWithoutAProcessByTheClassInTheMenuEntryOfTheClone) {
    const ScopedEnvironment data("XDG_DATA_HOME", (folder_ / "data").string());
    const fs::path bundle = makeScriptedAppBundle(
        folder_ / "Clone.app", std::string(QUORVEL_X11_WINDOW) + " " +
                                   (folder_ / "Clone").string() + " Quorvel-1 anonymous & wait");
    DesktopEntry entry{.type = "Application", .name = "Clone", .exec = "/bin/true"};
    entry.startupWmClass = "Quorvel-1";
    entry.cloneId = fs::canonical(bundle).string();
    publishMenuEntry({.word = "Quorvel-1", .fileName = "Quorvel-1.desktop", .entry = entry}, {});
    EXPECT_EQ(open(bundle), std::nullopt);
    ASSERT_TRUE(comesToFront("Clone"));
    openWindow("Other");
    EXPECT_EQ(open(bundle), std::nullopt);
    EXPECT_TRUE(isInFront("Clone"));
}

TEST_P(WindowActivationTestOpeningAgain, SaysThatThereIsNoWindowOnceTheProgramHadTimeToOpenOne) {
    const fs::path bundle = makeScriptedAppBundle(folder_ / "Clone.app", "sleep 600 & wait");
    EXPECT_EQ(open(bundle), std::nullopt);
    EXPECT_EQ(open(bundle), std::nullopt) << "as when the user clicks twice";
    std::optional<std::string> failure;
    EXPECT_TRUE(waitUntil([&] { return (failure = open(bundle)).has_value(); }));
    EXPECT_EQ(failure,
              "“Clone.app” couldn’t be brought to the front: it is running, but has no window");
}

TEST_P(WindowActivationTest, SaysThatTheDesktopRefusesWhereNoWindowManagerListens) {
    const pid_t first = openWindow("First").pid();
    openWindow("Second");
    // With a compositor that keeps its windows to itself.
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", "wayland-none");
    EXPECT_EQ(bringToFront({.processes = {::getpid()}}), ActivationFailure::notAllowed);
    EXPECT_EQ(bringToFront({.processes = {first}}), std::nullopt) << "a window for X11";
}

constexpr auto nameOf = [](const auto& manager) { return std::string(manager.param); };
INSTANTIATE_TEST_SUITE_P(WindowManagers, WindowActivationTest,
                         ::testing::Values("openbox", "xfwm4"), nameOf);
INSTANTIATE_TEST_SUITE_P(WindowManagers, WindowActivationTestOpeningAgain,
                         ::testing::Values("openbox"), nameOf);

/// A Wayland compositor without a screen, whose windows no X server knows.
class WindowActivationTestSway : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* program : {"/usr/bin/sway", "/usr/bin/swaymsg", "/usr/bin/foot"}) {
            if (!fs::exists(program)) {
                GTEST_SKIP() << program << " is not installed";
            }
        }
        write(folder_ / "config", "xwayland disable\n");
        for (const auto& [name, value] :
             std::map<std::string, std::string>{{"XDG_RUNTIME_DIR", folder_.path().string()},
                                                {"WLR_BACKENDS", "headless"},
                                                {"WLR_LIBINPUT_NO_DEVICES", "1"},
                                                {"WLR_RENDERER", "pixman"},
                                                {"DISPLAY", ""},
                                                {"WAYLAND_DISPLAY", ""},
                                                {"SWAYSOCK", (folder_ / "sway").string()}}) {
            variables_.push_back(std::make_unique<ScopedEnvironment>(name, value));
        }
        startSway();
        ASSERT_TRUE(
            waitUntil([&] { return fs::exists(folder_ / "wayland-1") && !tree().empty(); }));
        variables_.push_back(std::make_unique<ScopedEnvironment>("WAYLAND_DISPLAY", "wayland-1"));
    }

    // It refuses to run as root.
    void startSway() {
        std::vector<std::string> command{"/usr/bin/sway", "-c", (folder_ / "config").string()};
        if (::geteuid() == 0) {
            constexpr uid_t nobody = 65534;
            ASSERT_EQ(::chown(folder_.path().c_str(), nobody, nobody), 0);
            const std::string number = std::to_string(nobody);
            command.insert(command.begin(), {"/usr/bin/setpriv", "--reuid", number, "--regid",
                                             number, "--clear-groups"});
        }
        sway_.emplace(command.front(),
                      std::vector<std::string>(command.begin() + 1, command.end()));
    }

    static std::string tree() {
        Process::Options options;
        options.executable = "/usr/bin/swaymsg";
        options.arguments = {"-r", "-t", "get_tree"};
        return Process::capture(options, std::size_t{1} << 20U);
    }

    // The process of the focused window.
    static pid_t focused() {
        const auto walk = [](const auto& self, const nlohmann::json& node) -> pid_t {
            if (node.value("focused", false)) {
                return node.value("pid", 0);
            }
            for (const char* kind : {"nodes", "floating_nodes"}) {
                for (const nlohmann::json& child : node[kind]) {
                    if (const pid_t found = self(self, child); found != 0) {
                        return found;
                    }
                }
            }
            return 0;
        };
        const auto whole = nlohmann::json::parse(tree(), nullptr, false);
        return whole.is_discarded() ? 0 : walk(walk, whole);
    }

    pid_t openWindow() {
        windows_.push_back(std::make_unique<BackgroundProgram>(
            "/usr/bin/foot", std::vector<std::string>{"/bin/sleep", "600"}));
        const pid_t pid = windows_.back()->pid();
        EXPECT_TRUE(waitUntil([&] { return focused() == pid; }));
        return pid;
    }

    TemporaryFolder folder_;
    std::vector<std::unique_ptr<ScopedEnvironment>> variables_{};
    std::optional<BackgroundProgram> sway_{};
    std::vector<std::unique_ptr<BackgroundProgram>> windows_{};
};

TEST_F(WindowActivationTestSway, BringsTheWindowOfThatProcessToTheFront) {
    const pid_t first = openWindow();
    const pid_t second = openWindow();
    EXPECT_EQ(bringToFront({.processes = {1, first}}), std::nullopt);
    EXPECT_EQ(focused(), first);
    EXPECT_EQ(bringToFront({.processes = {second}}), std::nullopt);
    EXPECT_EQ(focused(), second);
    EXPECT_EQ(bringToFront({.processes = {1}}), ActivationFailure::noWindow);
    EXPECT_EQ(focused(), second);
}

TEST(WindowActivationTestWithoutADesktop, SaysThatThereIsNoDisplay) {
    const ScopedEnvironment display("DISPLAY", "");
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", "");
    const ScopedEnvironment sway("SWAYSOCK", "");
    EXPECT_EQ(bringToFront({.processes = {::getpid()}}), ActivationFailure::noDisplay);
}

} // namespace
} // namespace quorvel
